#pragma once

#include <map>
#include <unordered_map>

#include "access/catalog/Database.h"
#include "access/catalog/StoredTable.h"

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

}  // namespace tavi::access
