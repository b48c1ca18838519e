#pragma once

#include <array>
#include <string>
#include <string_view>

#include "access/catalog/StoredTable.h"
#include "access/table/TableDefinition.h"

namespace tavi::access {

/// Names of the engine's own tables and of those of their columns that the engine uses.
namespace system_name {
inline constexpr char kObjects[] = "MSysObjects";
inline constexpr char kAces[] = "MSysACEs";
inline constexpr char kQueries[] = "MSysQueries";
inline constexpr char kRelationships[] = "MSysRelationships";

inline constexpr char kId[] = "Id";
inline constexpr char kParentId[] = "ParentId";
inline constexpr char kName[] = "Name";
inline constexpr char kType[] = "Type";
inline constexpr char kDateCreate[] = "DateCreate";
inline constexpr char kDateUpdate[] = "DateUpdate";
inline constexpr char kOwner[] = "Owner";
inline constexpr char kFlags[] = "Flags";
inline constexpr char kLvProp[] = "LvProp";

inline constexpr char kObjectId[] = "ObjectId";
inline constexpr char kSid[] = "SID";
inline constexpr char kAcm[] = "ACM";
inline constexpr char kInheritable[] = "FInheritable";

inline constexpr char kRelationship[] = "szRelationship";
inline constexpr char kRelationFlags[] = "grbit";
inline constexpr char kColumnCount[] = "ccolumn";
inline constexpr char kColumnNumber[] = "icolumn";
inline constexpr char kObject[] = "szObject";
inline constexpr char kColumn[] = "szColumn";
inline constexpr char kReferencedObject[] = "szReferencedObject";
inline constexpr char kReferencedColumn[] = "szReferencedColumn";
}  // namespace system_name

/// A system table of a new file: its name and its definition, with the definition page but without maps and roots.
struct SystemTable {
  std::string name;
  TableDefinition definition;
};

/// The four tables that every file has, in the order of their pages (2 to 5).
std::array<SystemTable, 4> MakeSystemTables();

/// A row of a system table, by column names. A column that the table lacks raises ProviderFailure (the file is
/// damaged).
class SystemRow {
 public:
  /// A row of nulls.
  explicit SystemRow(const Table& table) : table_(table), values_(table.Columns().size()) {}
  SystemRow(const Table& table, RowValues values) : table_(table), values_(std::move(values)) {}

  SystemRow& Set(std::string_view column, Value value);
  [[nodiscard]] const Value& Get(std::string_view column) const;
  /// The value as a number; 0 when it is null or of another type.
  [[nodiscard]] std::int32_t Number(std::string_view column) const;
  /// The value as a text; empty when it is null or of another type.
  [[nodiscard]] std::string Text(std::string_view column) const;
  /// The value as bytes; empty when it is null or of another type.
  [[nodiscard]] Bytes Binary(std::string_view column) const;

  [[nodiscard]] RowValues& Values() { return values_; }

 private:
  [[nodiscard]] std::size_t Position(std::string_view column) const;

  const Table& table_;
  RowValues values_;
};

/// Which columns of a table to read.
std::vector<bool> WantedColumns(const Table& table, const std::vector<const char*>& columns);

}  // namespace tavi::access
