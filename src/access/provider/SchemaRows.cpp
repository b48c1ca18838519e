// The lists by which programs find out what a file holds. They are made of the catalogue when asked for and stay as
// they were then. Rows come by name of table, then of column or index, whatever their order in the file; the numbers in
// ORDINAL_POSITION tell the file's own order. Types are the numbers that ADO has for them.
#include <algorithm>

#include "access/file/Format.h"
#include "access/provider/AccessConnection.h"
#include "access/sql/plan/ExecutionErrors.h"
#include "access/sql/plan/Plan.h"
#include "access/sql/run/ResultSet.h"
#include "platform/values/Text.h"

namespace tavi::access {

namespace {

using ado::DataType;

// What programs expect in COLLATION.
constexpr std::int16_t kAscending = 1;
constexpr std::int16_t kDescending = 2;

/// Columns of a list belong to no table.
std::vector<sql::ResultColumn> Named(std::initializer_list<std::pair<const char*, DataType>> columns) {
  std::vector<sql::ResultColumn> named;
  for (const auto& [name, type] : columns) named.push_back({name, "", "", type});
  return named;
}

/// The tables that can be described, by name.
std::vector<std::shared_ptr<Table>> UserTables(Database& database) {
  std::vector<std::shared_ptr<Table>> tables;
  for (const CatalogEntry& entry : database.Tables()) {
    if (entry.isSystem || entry.isLinked) continue;
    try {
      if (auto table = database.FindTable(entry.name)) tables.push_back(std::move(table));
    } catch (const Error&) {
      continue;  // damaged: the other tables can be described all the same
    }
  }
  std::sort(tables.begin(), tables.end(),
            [](const auto& left, const auto& right) { return CompareIgnoringCase(left->Name(), right->Name()) < 0; });
  return tables;
}

/// OLE columns are told apart from other bytes only by having no limit.
std::int32_t SchemaType(const ColumnDefinition& column) {
  const DataType type = sql::TypeOf(column);
  return static_cast<std::int32_t>(type == DataType::LongVarBinary ? DataType::Binary : type);
}

/// In characters for texts, of which a column's record has two bytes each; 0 where there is no limit, null where there
/// is no length.
Value MaximumLength(const ColumnDefinition& column) {
  switch (column.type) {
    case ColumnType::Text:
      return static_cast<std::int32_t>(column.length / 2);
    case ColumnType::Binary:
    case ColumnType::FixedBinary:
      return static_cast<std::int32_t>(column.length);
    case ColumnType::Memo:
    case ColumnType::Ole:
      return std::int32_t{0};
    default:
      return Null{};
  }
}

/// The values in the order of the columns in ListColumns.
RowValues ColumnRow(const Table& table, std::size_t position) {
  const Column& column = table.Columns()[position];
  const bool hasDefault = !column.defaultExpression.empty();
  return {table.Name(),
          column.definition.name,
          static_cast<std::int32_t>(position + 1),
          SchemaType(column.definition),
          MaximumLength(column.definition),
          !column.required,
          hasDefault,
          hasDefault ? Value{column.defaultExpression} : Value{}};
}

/// Positions are sorted and not columns, as a row tells the position in the table too.
std::unique_ptr<sql::ResultSet> ListColumns(Database& database) {
  std::vector<RowValues> rows;
  for (const auto& table : UserTables(database)) {
    std::vector<std::size_t> positions;
    for (std::size_t i = 0; i < table->Columns().size(); ++i) positions.push_back(i);
    std::sort(positions.begin(), positions.end(), [&](std::size_t left, std::size_t right) {
      const auto& columns = table->Columns();
      return CompareIgnoringCase(columns[left].definition.name, columns[right].definition.name) < 0;
    });
    for (const std::size_t position : positions) rows.push_back(ColumnRow(*table, position));
  }
  return std::make_unique<sql::ValuesResult>(Named({{"TABLE_NAME", DataType::WChar},
                                                    {"COLUMN_NAME", DataType::WChar},
                                                    {"ORDINAL_POSITION", DataType::Integer},
                                                    {"DATA_TYPE", DataType::Integer},
                                                    {"CHARACTER_MAXIMUM_LENGTH", DataType::Integer},
                                                    {"IS_NULLABLE", DataType::Boolean},
                                                    {"COLUMN_HASDEFAULT", DataType::Boolean},
                                                    {"COLUMN_DEFAULT", DataType::WChar}}),
                                             std::move(rows));
}

/// As the table states it; null when it cannot be read, or is more than the file has room for.
Value StatedRowCount(Database& database, const CatalogEntry& entry) {
  // The rows of a link are in another file, which is not opened.
  if (entry.isLinked) return Null{};
  try {
    const auto table = database.FindTable(entry.name);
    const std::uint64_t count = table ? table->RowCount() : 0;
    // A damaged counter may say anything; it must not be shown as a number of rows.
    const std::uint64_t room = std::uint64_t{database.GetPager().PageCount()} * format::data::kMaximumRowCount;
    if (!table || count > room) return Null{};
    return static_cast<std::int32_t>(count);
  } catch (const Error&) {
    return Null{};
  }
}

/// System tables and links are listed here alone: nothing else can be asked of them by these lists.
std::unique_ptr<sql::ResultSet> ListTables(Database& database) {
  std::vector<CatalogEntry> entries = database.Tables();
  std::sort(entries.begin(), entries.end(), [](const CatalogEntry& left, const CatalogEntry& right) {
    return CompareIgnoringCase(left.name, right.name) < 0;
  });
  std::vector<RowValues> rows;
  for (const CatalogEntry& entry : entries) {
    const std::string type = entry.isLinked ? "LINK" : entry.isSystem ? "SYSTEM TABLE" : "TABLE";
    rows.push_back({entry.name, type, StatedRowCount(database, entry)});
  }
  return std::make_unique<sql::ValuesResult>(
      Named({{"TABLE_NAME", DataType::WChar}, {"TABLE_TYPE", DataType::WChar}, {"CARDINALITY", DataType::Integer}}),
      std::move(rows));
}

/// A row for each column of an index, so that an index without columns has none.
void AddIndexRows(const Table& table, std::vector<RowValues>& rows) {
  std::vector<const Index*> indexes;
  for (const Index& index : table.Indexes()) indexes.push_back(&index);
  std::sort(indexes.begin(), indexes.end(),
            [](const Index* left, const Index* right) { return CompareIgnoringCase(left->name, right->name) < 0; });
  for (const Index* index : indexes) {
    for (std::size_t i = 0; i < index->columns.size(); ++i) {
      // The numbers of columns begin at 1, here as in ListColumns.
      rows.push_back({table.Name(), index->name, index->primaryKey, index->definition.unique,
                      static_cast<std::int32_t>(i + 1), table.Columns()[index->columns[i]].definition.name,
                      index->ascending[i] ? kAscending : kDescending});
    }
  }
}

/// By physical index, under the name that statements know it by: sides of relationships on the same tree are not
/// listed.
std::unique_ptr<sql::ResultSet> ListIndexes(Database& database) {
  std::vector<RowValues> rows;
  for (const auto& table : UserTables(database)) AddIndexRows(*table, rows);
  return std::make_unique<sql::ValuesResult>(Named({{"TABLE_NAME", DataType::WChar},
                                                    {"INDEX_NAME", DataType::WChar},
                                                    {"PRIMARY_KEY", DataType::Boolean},
                                                    {"UNIQUE", DataType::Boolean},
                                                    {"ORDINAL_POSITION", DataType::Integer},
                                                    {"COLUMN_NAME", DataType::WChar},
                                                    {"COLLATION", DataType::SmallInt}}),
                                             std::move(rows));
}

}  // namespace

std::unique_ptr<sql::ResultSet> ListSchema(Database& database, ado::SchemaKind kind) {
  // One statement for the whole list, which is then of one moment.
  const ReadStatement reading(database.GetPager());
  switch (kind) {
    case ado::SchemaKind::Columns:
      return ListColumns(database);
    case ado::SchemaKind::Tables:
      return ListTables(database);
    case ado::SchemaKind::Indexes:
      return ListIndexes(database);
  }
  // Programs ask by number, and may ask for one that ADO has and this provider has not.
  throw sql::StatementError("The schema list " + std::to_string(static_cast<int>(kind)) + " is not known.");
}

}  // namespace tavi::access
