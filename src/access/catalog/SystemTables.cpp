// The four tables that every file has, as the database engine itself makes them, and rows of them by column names.
//
// What the file holds of a column follows from its place in the lists below: permanent numbers and places in the rows
// by the order here, records by the order of names. MSysObjects, for instance:
//
//   Id           number 0, bytes 0 to 3      record 7
//   ParentId     number 1, bytes 4 to 7      record 14
//   Name         number 2, slot 0            record 12
//   Type         number 3, bytes 8 and 9     record 17
//
// The display positions of their columns are all 0, so that names alone decide the order. The lists must not be
// changed: all readers expect these numbers.
#include "access/catalog/SystemTables.h"

#include <vector>

#include "access/catalog/TableLayout.h"
#include "access/file/EngineError.h"
#include "access/file/Format.h"

namespace tavi::access {

namespace {

namespace names = system_name;

/// A column, in the order of permanent numbers.
struct ColumnPlan {
  const char* name;
  ColumnType type;
  bool securityId = false;
};

/// An index, in the order of physical indexes; its logical index has the same number.
struct IndexPlan {
  const char* name;
  std::vector<std::uint16_t> columnIds;
  std::uint8_t flags;
  bool primaryKey;
};

constexpr std::uint8_t kUnique = format::real_index::kFlagUnique;
constexpr std::uint8_t kIgnoreNulls = format::real_index::kFlagIgnoreNulls;
constexpr std::uint8_t kRequired = format::real_index::kFlagRequired;

/// Texts of these tables are of 255 characters, binary values of 510 bytes, and nothing is compressed.
ColumnDefinition MakeSystemColumn(const ColumnPlan& plan) {
  ColumnDesign design;
  design.name = plan.name;
  design.type = plan.type;
  design.length = plan.type == ColumnType::Binary ? 510 : 255;
  design.compressed = false;
  ColumnDefinition column = MakeColumn(design, SortOrder{});
  column.flags |= format::column_flag::kSystem;
  if (plan.securityId) column.flags |= format::column_flag::kSecurityId;
  return column;
}

/// The definitions have their pages already and get maps and roots when the file is made (NewFile.cpp).
SystemTable MakeTable(const char* tableName, PageNumber page, const std::vector<ColumnPlan>& columns,
                      const std::vector<IndexPlan>& indexes) {
  SystemTable table;
  table.name = tableName;
  table.definition.page = page;
  table.definition.isSystem = true;
  for (const ColumnPlan& plan : columns)
    AppendColumn(table.definition, MakeSystemColumn(plan), FixedAreaEnd(table.definition));
  // The flags that the file holds are made of the members, as for any other index; 80 is added to all.
  for (const IndexPlan& plan : indexes) {
    RealIndexDefinition real;
    for (const std::uint16_t id : plan.columnIds) real.columns.push_back({id, true});
    real.unique = (plan.flags & kUnique) != 0;
    real.ignoreNulls = (plan.flags & kIgnoreNulls) != 0;
    real.required = (plan.flags & kRequired) != 0;
    real.flags = IndexFlags(real);
    LogicalIndexDefinition logical;
    logical.name = plan.name;
    logical.number = logical.realIndex = static_cast<std::uint32_t>(table.definition.realIndexes.size());
    if (plan.primaryKey) logical.kind = LogicalIndexDefinition::Kind::PrimaryKey;
    table.definition.realIndexes.push_back(std::move(real));
    table.definition.logicalIndexes.push_back(std::move(logical));
  }
  SortRecords(table.definition);
  return table;
}

/// The catalogue: a row for each table, query, form, container and relationship. No two objects of one container have
/// the same name.
SystemTable MakeObjects() {
  return MakeTable(names::kObjects, format::kObjectsTablePage,
                   {{names::kId, ColumnType::Long},
                    {names::kParentId, ColumnType::Long},
                    {names::kName, ColumnType::Text},
                    {names::kType, ColumnType::Integer},
                    {names::kDateCreate, ColumnType::Date},
                    {names::kDateUpdate, ColumnType::Date},
                    {names::kOwner, ColumnType::Binary, true},
                    {names::kFlags, ColumnType::Long},
                    {"Database", ColumnType::Memo},
                    {"Connect", ColumnType::Memo},
                    {"ForeignName", ColumnType::Text},
                    {"RmtInfoShort", ColumnType::Binary},
                    {"RmtInfoLong", ColumnType::Ole},
                    {"Lv", ColumnType::Ole},
                    {names::kLvProp, ColumnType::Ole},
                    {"LvModule", ColumnType::Ole},
                    {"LvExtra", ColumnType::Ole}},
                   {{"ParentIdName", {1, 2}, kUnique, false}, {"Id", {0}, kUnique, true}});
}

/// Rights: a row for each object and holder. Several rows have one object's number, which must not be null.
SystemTable MakeAces() {
  return MakeTable(names::kAces, format::kAcesTablePage,
                   {{names::kObjectId, ColumnType::Long},
                    {names::kSid, ColumnType::Binary, true},
                    {names::kAcm, ColumnType::Long},
                    {names::kInheritable, ColumnType::Boolean}},
                   {{"ObjectId", {0}, kRequired, false}});
}

/// Stored queries, a row for each of their parts. They are kept, and not run here.
SystemTable MakeQueries() {
  return MakeTable(names::kQueries, format::kQueriesTablePage,
                   {{names::kObjectId, ColumnType::Long},
                    {"Attribute", ColumnType::Byte},
                    {"Order", ColumnType::Binary},
                    {"Name1", ColumnType::Text},
                    {"Name2", ColumnType::Text},
                    {"Expression", ColumnType::Memo},
                    {"Flag", ColumnType::Integer},
                    {"LvExtra", ColumnType::Long}},
                   {{"ObjectIdAttribute", {0, 1, 2}, kUnique, true}});
}

/// A row for each pair of columns of a relationship; see RelationshipChanges.cpp.
SystemTable MakeRelationships() {
  return MakeTable(names::kRelationships, format::kRelationshipsTablePage,
                   {{names::kRelationship, ColumnType::Text},
                    {names::kRelationFlags, ColumnType::Long},
                    {names::kColumnCount, ColumnType::Long},
                    {names::kColumnNumber, ColumnType::Long},
                    {names::kObject, ColumnType::Text},
                    {names::kColumn, ColumnType::Text},
                    {names::kReferencedObject, ColumnType::Text},
                    {names::kReferencedColumn, ColumnType::Text}},
                   {{names::kRelationship, {0}, kIgnoreNulls, false},
                    {names::kObject, {4}, kIgnoreNulls, false},
                    {names::kReferencedObject, {6}, kIgnoreNulls, false}});
}

}  // namespace

std::array<SystemTable, 4> MakeSystemTables() {
  return {MakeObjects(), MakeAces(), MakeQueries(), MakeRelationships()};
}

namespace {

/// By name, in each file anew: it may have been made by another program.
std::size_t PositionOf(const Table& table, std::string_view column) {
  const std::optional<std::size_t> position = table.FindColumn(column);
  if (!position.has_value())
    RaiseDamage("the system table '" + table.Name() + "' has no column '" + std::string(column) + "'.");
  return *position;
}

}  // namespace

std::size_t SystemRow::Position(std::string_view column) const {
  return PositionOf(table_, column);
}

SystemRow& SystemRow::Set(std::string_view column, Value value) {
  values_[Position(column)] = std::move(value);
  return *this;
}

const Value& SystemRow::Get(std::string_view column) const {
  return values_[Position(column)];
}

// Type in MSysObjects has 16 bits, the other numbers that are asked for have 32.
std::int32_t SystemRow::Number(std::string_view column) const {
  const Value& value = Get(column);
  if (const auto* number = std::get_if<std::int32_t>(&value)) return *number;
  if (const auto* number = std::get_if<std::int16_t>(&value)) return *number;
  return 0;
}

std::string SystemRow::Text(std::string_view column) const {
  const auto* text = std::get_if<std::string>(&Get(column));
  return text == nullptr ? std::string() : *text;
}

Bytes SystemRow::Binary(std::string_view column) const {
  const auto* bytes = std::get_if<Bytes>(&Get(column));
  return bytes == nullptr ? Bytes() : *bytes;
}

std::vector<bool> WantedColumns(const Table& table, const std::vector<const char*>& columns) {
  std::vector<bool> wanted(table.Columns().size());
  for (const char* column : columns) wanted[PositionOf(table, column)] = true;
  return wanted;
}

}  // namespace tavi::access
