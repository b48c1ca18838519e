// The type of a column changed. A longer or shorter text changes a number in the definition; anything else makes a new
// column, copies the values over, drops the old column and gives the new one its name and its place among the others:
//
//   before           Id, Amount (Long)
//   column added     Id, Amount (Long), NewColumn1 (Currency)
//   values copied, old column dropped, new one renamed
//   after            Id, Amount (Currency)
//
// All in one statement, so that a value that does not fit undoes the whole. Reads and writes each row once.
#include <algorithm>

#include "access/catalog/Catalog.h"
#include "access/catalog/ChangeErrors.h"
#include "access/catalog/DefinitionChanges.h"
#include "access/file/EngineError.h"

namespace tavi::access {

namespace {

/// Puts a column's new description in the place of the old one. What it does not speak of (a caption) stays.
void DescribeAnew(PropertyBlob& properties, ColumnDesign design, const Column& before) {
  design.name = before.definition.name;
  if (design.defaultExpression.empty()) design.defaultExpression = before.defaultExpression;
  properties.SetColumnFlag(design.name, property_name::kRequired, design.required);
  DescribeColumn(properties, design);
}

/// A longer or shorter text stays where it is: rows hold only what is written.
void ChangeLength(Catalog& catalog, StoredTable& table, std::size_t position, const ColumnDefinition& wanted) {
  TableDefinition definition = table.Definition();
  const auto column =
      std::ranges::find(definition.columns, table.Columns()[position].definition.id, &ColumnDefinition::id);
  column->length = wanted.length;
  std::vector<bool> only(table.Columns().size());
  only[position] = true;
  table.Rows().Walk([&](RowPointer row) {
    // Asked of every row before the length changes: a text that would be too long is the error of the change.
    static_cast<void>(ConvertForColumn(table.Read(row, only)[position], *column));
    return true;
  });
  WriteTableDefinition(catalog.GetPager(), definition, true);
}

/// Copies the values of one column into another, converted.
void CopyValues(StoredTable& table, std::size_t from, std::size_t to) {
  std::vector<RowPointer> rows;
  table.Rows().Walk([&](RowPointer row) {
    rows.push_back(row);
    return true;
  });
  for (const RowPointer row : rows) {
    RowValues values = table.Read(row);
    values[to] = ConvertForColumn(values[from], table.Columns()[to].definition);
    table.Rows().Update(row, values);
  }
}

std::string UnusedColumnName(const StoredTable& table) {
  for (std::size_t number = 1;; ++number) {
    std::string name = "NewColumn" + std::to_string(number);
    if (!table.FindColumn(name)) return name;
  }
}

/// Gives a column the name and the place of the one that it stands for.
void TakePlaceOf(Catalog& catalog, std::string_view table, const std::string& name, const Column& before) {
  TableDefinition definition = catalog.OpenTable(table)->Definition();
  const auto column = std::ranges::find(definition.columns, name, &ColumnDefinition::name);
  column->name = before.definition.name;
  column->ordinal = before.definition.ordinal;
  SortRecords(definition);
  WriteTableDefinition(catalog.GetPager(), definition, true);
}

/// A column of the new type with the values of the old one, which goes. Another type takes another place in the rows,
/// so it costs one of the 255 columns that a table can ever have, as in Access.
void ReplaceColumn(Catalog& catalog, std::string_view table, const ColumnDesign& design, const Column& before,
                   std::optional<Date> now) {
  ColumnDesign fresh = design;
  fresh.name = UnusedColumnName(*catalog.OpenTable(table));
  AddColumn(catalog, table, fresh, now);
  const std::shared_ptr<StoredTable> widened = catalog.OpenTable(table);
  const std::size_t from = widened->FindColumn(before.definition.name).value();
  const std::size_t to = widened->FindColumn(fresh.name).value();
  if (widened->Columns()[to].definition.IsAutoNumber() && widened->RowCount() != 0)
    RaiseFailure("The field '" + before.definition.name + "' of the table '" + widened->Name() +
                 "' cannot become an automatic number, as the table has records. Add a new field instead.");
  CopyValues(*widened, from, to);
  DropColumn(catalog, table, before.definition.name, now);
  TakePlaceOf(catalog, table, fresh.name, before);
}

}  // namespace

void ChangeColumn(Catalog& catalog, std::string_view table, const ColumnDesign& design, std::optional<Date> now) {
  const CatalogObject object = ChangeableTable(catalog, table);
  const std::shared_ptr<StoredTable> stored = catalog.OpenTable(table);
  const std::optional<std::size_t> position = stored->FindColumn(design.name);
  if (!position) RaiseNoColumn(object.name, design.name);
  // A copy: the column goes while it is still needed.
  const Column before = stored->Columns()[*position];
  const ColumnDefinition wanted = MakeColumn(design, FileSortOrder(catalog));
  PropertyBlob properties = catalog.Properties(object);
  if (before.definition.type == ColumnType::Text && wanted.type == ColumnType::Text) {
    ChangeLength(catalog, *stored, *position, wanted);
  } else {
    ReplaceColumn(catalog, table, design, before, now);
  }
  // The properties as they were before, so that nothing is left of the helping column.
  DescribeAnew(properties, design, before);
  ChangeObject(catalog, object, &properties, now);
}

}  // namespace tavi::access
