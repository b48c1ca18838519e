#pragma once

#include <map>
#include <unordered_map>

#include "access/catalog/Database.h"
#include "access/catalog/StoredTable.h"
#include "access/file/Format.h"

namespace tavi::access {

/// A row of MSysObjects.
struct CatalogObject {
  std::int32_t id = 0;  ///< of a table: the page of its definition
  std::int32_t parentId = 0;
  std::int16_t type = 0;  ///< format::catalog::kType...
  std::uint32_t flags = 0;
  std::string name;
  RowPointer row;

  [[nodiscard]] bool IsTable() const;   ///< a table of this file
  [[nodiscard]] bool IsLinked() const;  ///< a link to a table elsewhere
  [[nodiscard]] bool IsSystem() const;
};

/// What the system tables say, remembered until it may have become untrue. Works in the pager's current statement.
class Catalog final : public RelatedTables {
 public:
  explicit Catalog(Pager& pager) : pager_(pager) {}

  [[nodiscard]] Pager& GetPager() { return pager_; }

  /// All objects, in the order of their rows.
  [[nodiscard]] const std::vector<CatalogObject>& Objects();
  /// The table, link or query of a name; null when there is none.
  [[nodiscard]] const CatalogObject* FindNamed(std::string_view name);
  /// The table of a name. Raises ProviderNoTable when there is none, ProviderFailure for a link.
  [[nodiscard]] std::shared_ptr<StoredTable> OpenTable(std::string_view name);
  /// A table whose properties (required columns, defaults) are damaged can be read, but not opened in a write
  /// statement.
  [[nodiscard]] std::shared_ptr<StoredTable> TableAt(PageNumber page) override;
  [[nodiscard]] const std::vector<Relationship>& Relationships();
  /// The properties of an object; empty when it has none.
  [[nodiscard]] PropertyBlob Properties(const CatalogObject& object);

  /// Drops all that is remembered: call it after each change of a definition or of a system table's rows.
  void Forget();

 private:
  void Refresh();
  /// Raises ProviderFailure when a definition is that of far more names than one.
  void RefuseManyNames(PageNumber page, const std::string& name);
  [[nodiscard]] std::shared_ptr<StoredTable> OpenSystemTable(PageNumber page, const char* name);

  Pager& pager_;
  std::optional<std::uint64_t> generation_;
  std::optional<std::vector<CatalogObject>> objects_;
  std::unordered_map<std::string, std::size_t> byName_;  ///< NameKey of what lies in the container of tables
  std::optional<std::vector<Relationship>> relationships_;
  std::map<PageNumber, std::shared_ptr<StoredTable>> tables_;
};

// Writes the rows of the system tables that stand for objects.

/// A new object: its row in MSysObjects, and the container whose rights it inherits.
struct NewObject {
  std::int32_t id = 0;
  std::uint32_t container = format::catalog::kTablesId;
  std::int16_t type = format::catalog::kTypeTable;
  std::string name;
  PropertyBlob properties;
};

/// Adds the row of a new object to MSysObjects and its rights to MSysACEs: those that the container hands down, the
/// creator's for the owner of the file.
void AddObject(Catalog& catalog, const NewObject& object, Date now);

/// A number for a new object that is no table.
std::int32_t FreeObjectId(Catalog& catalog);

/// Removes an object's row and rights.
void RemoveObject(Catalog& catalog, const CatalogObject& object);

/// Puts new properties (null: the old ones stay) and the time of the change (none: the old one stays) into the row.
void ChangeObject(Catalog& catalog, const CatalogObject& object, const PropertyBlob* properties,
                  std::optional<Date> now);

/// A security id as files hold it: the masked form of a plain one (format::security), from the masked one of the
/// administrator.
Bytes MaskedSecurityId(std::span<const std::uint8_t, 2> maskedAdmin, std::span<const std::uint8_t, 2> plain);

}  // namespace tavi::access
