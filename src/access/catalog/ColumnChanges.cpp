// Columns added and dropped. As a rule neither touches the rows, so that both cost a few pages however large the table
// is:
//
//   added     the next number, slot or fixed place. Rows that are there were written with fewer columns: in this one
//             they read as null.
//   dropped   its record goes. Rows keep its bytes; number, slot and place are never given again, until the table is
//             laid out anew by compacting.
//
// Rows are written only for an automatic number, which numbers those that are there, for the first variable column of a
// table (GiveRowsOffsets), and read where fixed columns were dropped (LongestFixedArea). The pages of a dropped Memo or
// OLE column are freed.
#include <algorithm>
#include <functional>

#include "access/catalog/Catalog.h"
#include "access/catalog/ChangeErrors.h"
#include "access/catalog/DefinitionChanges.h"
#include "access/catalog/Names.h"
#include "access/catalog/RowShape.h"
#include "access/catalog/TableCheck.h"
#include "access/catalog/TableLayout.h"
#include "access/file/EngineError.h"
#include "access/file/Format.h"
#include "access/file/PageAllocator.h"
#include "access/file/UsageMap.h"

namespace tavi::access {

namespace {

const ColumnDefinition* FindSame(const TableDefinition& definition, std::string_view name) {
  const auto found = std::ranges::find_if(definition.columns,
                                          [&](const ColumnDefinition& column) { return SameName(column.name, name); });
  return found == definition.columns.end() ? nullptr : &*found;
}

/// Whether fixed columns were dropped: each column made was fixed or took one of the slots for variable ones.
/// Columns that were ever made, less those that are there, are those that were dropped. The slots that nobody has now
/// were of dropped variable ones; when there were more, some were fixed.
bool HasDroppedFixedColumns(const TableDefinition& definition) {
  const auto variable = std::ranges::count_if(definition.columns, [](const auto& column) { return !column.IsFixed(); });
  const std::size_t dropped = definition.columnIdCounter - definition.columns.size();
  return dropped > definition.variableColumnCounter - static_cast<std::size_t>(variable);
}

/// The end of the longest fixed area of the rows.
/// Reads every page of the table; asked only where fixed columns were dropped.
std::size_t LongestFixedArea(Pager& pager, const TableDefinition& definition) {
  std::size_t longest = 0;
  // Entries of a damaged page are left out. It is for the check to say so.
  CheckReport ignored;
  for (const PageNumber number : UsageMap(pager, definition.ownedPages).Pages()) {
    const PageHandle page = pager.Read(number);
    for (const RowEntry& entry : CheckDataPage(*page, definition.page, "", ignored)) {
      if (entry.IsDeleted() || entry.IsMoved()) continue;
      longest = std::max(longest, RowShape(page->Slice(entry.offset, entry.length), definition).FixedAreaSize());
    }
  }
  return longest;
}

/// Where a new fixed column may lie. Dropped columns may have lain behind all that are left, and rows keep their bytes:
/// these are passed by.
std::size_t FreeFixedOffset(Pager& pager, const TableDefinition& definition) {
  const std::size_t end = FixedAreaEnd(definition);
  return HasDroppedFixedColumns(definition) ? std::max(end, LongestFixedArea(pager, definition)) : end;
}

/// Gives one column of every row new values.
/// Rows are changed past indexes and relationships: the column is new, so that none of them knows it. Their places are
/// gathered first, since a walk must not be changed under its feet.
void ChangeRows(StoredTable& table, std::size_t column, const std::function<Value()>& makeValue) {
  std::vector<RowPointer> rows;
  table.Rows().Walk([&](RowPointer row) {
    rows.push_back(row);
    return true;
  });
  for (const RowPointer row : rows) {
    RowValues values = table.Read(row);
    values[column] = makeValue();
    table.Rows().Update(row, values);
  }
}

/// Numbers the rows that the table has already.
void NumberRows(Pager& pager, StoredTable& table, std::size_t column) {
  std::int32_t number = 0;
  ChangeRows(table, column, [&] { return Value(++number); });
  SetLastAutoNumber(pager, table.Definition(), number);
}

/// Rows of a table without variable columns have no table of offsets. Not every reader knows that a row may lack it
/// once the table has such a column, so the rows are written anew: with an empty value first, then without any.
void GiveRowsOffsets(StoredTable& table, std::size_t column) {
  const Value empty = IsText(table.Columns()[column].definition.type) ? Value(std::string()) : Value(Bytes());
  ChangeRows(table, column, [&] { return Value(empty); });
  ChangeRows(table, column, [] { return Value(Null{}); });
}

/// Indexes, the sides of relationships among them, then relationships that are not enforced and so have no index.
void RefuseUsedColumn(Catalog& catalog, const StoredTable& table, const ColumnDefinition& column) {
  for (const LogicalIndexDefinition& logical : table.Definition().logicalIndexes) {
    if (logical.realIndex >= table.Definition().realIndexes.size()) continue;
    const auto& used = table.Definition().realIndexes[logical.realIndex].columns;
    if (std::ranges::find(used, column.id, &IndexColumn::columnId) != used.end())
      RaiseColumnInUse(table.Name(), column.name, logical.name);
  }
  const auto isColumn = [&](const std::string& name) { return SameName(name, column.name); };
  for (const Relationship& relationship : catalog.Relationships()) {
    const bool primary =
        SameName(relationship.primaryTable, table.Name()) && std::ranges::any_of(relationship.primaryColumns, isColumn);
    const bool foreign =
        SameName(relationship.foreignTable, table.Name()) && std::ranges::any_of(relationship.foreignColumns, isColumn);
    if (primary || foreign) RaiseColumnInUse(table.Name(), column.name, relationship.name);
  }
}

/// The pages are the column's own and go by its map. The descriptors stay in the rows, where nobody reads them any
/// more.
void DropLongValues(Pager& pager, StoredTable& table, TableDefinition& definition, std::uint16_t columnId) {
  const auto maps = std::ranges::find(definition.longValueMaps, columnId, &LongValueMaps::columnId);
  if (maps == definition.longValueMaps.end()) return;
  table.Rows().RemoveLongValues(columnId);
  PageAllocator allocator(pager);
  if (!maps->ownedPages.IsNone()) allocator.RemoveUsageMap(maps->ownedPages);
  if (!maps->freeSpacePages.IsNone()) allocator.RemoveUsageMap(maps->freeSpacePages);
  definition.longValueMaps.erase(maps);
}

}  // namespace

// Required and the default are left out where they say what their absence says. AllowZeroLength is always there, as
// programs differ about what its absence means.
void DescribeColumn(PropertyBlob& properties, const ColumnDesign& design) {
  if (design.required) properties.SetColumnFlag(design.name, property_name::kRequired, true);
  if (IsText(design.type)) {
    properties.SetColumnFlag(design.name, property_name::kAllowZeroLength, design.allowZeroLength);
    properties.SetColumnFlag(design.name, property_name::kUnicodeCompression, design.compressed);
  }
  if (!design.defaultExpression.empty())
    properties.SetColumnText(design.name, property_name::kDefaultValue, design.defaultExpression);
}

void AddColumn(Catalog& catalog, std::string_view table, const ColumnDesign& design, std::optional<Date> now) {
  const CatalogObject object = ChangeableTable(catalog, table);
  Pager& pager = catalog.GetPager();
  TableDefinition definition = catalog.OpenTable(table)->Definition();
  PropertyBlob properties = catalog.Properties(object);
  if (FindSame(definition, design.name) != nullptr) RaiseColumnExists(object.name, design.name);

  ColumnDefinition column = MakeColumn(design, FileSortOrder(catalog));
  for (const ColumnDefinition& other : definition.columns)
    // The new column is shown behind all others.
    column.ordinal = std::max<std::uint16_t>(column.ordinal, static_cast<std::uint16_t>(other.ordinal + 1));
  AppendColumn(definition, std::move(column), FreeFixedOffset(pager, definition));
  SortRecords(definition);
  AllocateParts(pager, definition, 0);
  WriteTableDefinition(pager, definition, true);

  // Properties may be left from a column of that name that another program has dropped.
  properties.RemoveColumn(design.name);
  DescribeColumn(properties, design);
  ChangeObject(catalog, object, &properties, now);

  // Opened anew, as the rows are to be seen with the new column.
  const std::shared_ptr<StoredTable> altered = catalog.OpenTable(table);
  const std::size_t position = altered->FindColumn(design.name).value();
  if (altered->Columns()[position].definition.IsAutoNumber()) NumberRows(pager, *altered, position);
  const bool isFirstVariable =
      definition.variableColumnCounter == 1 && !altered->Columns()[position].definition.IsFixed();
  if (isFirstVariable) GiveRowsOffsets(*altered, position);
}

void DropColumn(Catalog& catalog, std::string_view table, std::string_view column, std::optional<Date> now) {
  const CatalogObject object = ChangeableTable(catalog, table);
  const std::shared_ptr<StoredTable> stored = catalog.OpenTable(table);
  TableDefinition definition = stored->Definition();
  const ColumnDefinition* found = FindSame(definition, column);
  if (found == nullptr) RaiseNoColumn(object.name, column);
  RefuseUsedColumn(catalog, *stored, *found);
  if (definition.columns.size() == 1)
    RaiseFailure("The field '" + found->name + "' is the only one of the table '" + object.name +
                 "' and cannot be deleted. Delete the table instead.");

  Pager& pager = catalog.GetPager();
  PropertyBlob properties = catalog.Properties(object);
  properties.RemoveColumn(found->name);
  const std::uint16_t id = found->id;
  DropLongValues(pager, *stored, definition, id);
  std::erase_if(definition.columns, [&](const ColumnDefinition& other) { return other.id == id; });
  WriteTableDefinition(pager, definition, true);
  ChangeObject(catalog, object, &properties, now);
}

}  // namespace tavi::access
