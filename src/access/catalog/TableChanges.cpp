// Tables made and dropped. A new one is put together in memory until nothing can be wrong with its design any more;
// only then pages are taken, in the order in which later parts name earlier ones:
//
//   definition page  ->  maps and roots  ->  definition  ->  row in MSysObjects  ->  rights in MSysACEs
//
// A dropped one goes part by part: rows and long values, trees, maps, definition, then its rows in the system's tables.
// Pages are marked free and keep their content; nothing is overwritten.
#include "access/catalog/Catalog.h"
#include "access/catalog/ChangeErrors.h"
#include "access/catalog/DefinitionChanges.h"
#include "access/catalog/Names.h"
#include "access/catalog/TableLayout.h"
#include "access/file/EngineError.h"
#include "access/file/Format.h"
#include "access/file/PageAllocator.h"

namespace tavi::access {

namespace {

/// Relationships that are not enforced count too: a table that is gone would stay named in them.
void RefuseRelated(Catalog& catalog, std::string_view table) {
  for (const Relationship& relationship : catalog.Relationships()) {
    if (SameName(relationship.primaryTable, table) || SameName(relationship.foreignTable, table))
      RaiseInRelationship(table, relationship.name);
  }
}

/// The pages get the type that Access gives those of a dropped table, so that none of them is taken for a definition.
void FreeDefinition(Pager& pager, PageNumber page) {
  PageAllocator allocator(pager);
  for (const PageNumber part : TableDefinitionPages(pager, page)) {
    pager.Write(part).SetU8(format::kPageTypeOffset, format::page_type::kDroppedTableDefinition);
    allocator.Free(part);
  }
}

/// Maps go one by one: their page may hold those of other tables, and is freed with its last map.
void FreeMaps(Pager& pager, const TableDefinition& definition) {
  std::vector<RowPointer> maps{definition.ownedPages, definition.freeSpacePages};
  for (const LongValueMaps& longValues : definition.longValueMaps) {
    maps.push_back(longValues.ownedPages);
    maps.push_back(longValues.freeSpacePages);
  }
  for (const RealIndexDefinition& index : definition.realIndexes) maps.push_back(index.ownedPages);
  PageAllocator allocator(pager);
  for (const RowPointer map : maps)
    if (!map.IsNone()) allocator.RemoveUsageMap(map);
}

}  // namespace

// All text columns of the catalogue have the same one.
SortOrder FileSortOrder(Catalog& catalog) {
  const std::shared_ptr<StoredTable> objects = catalog.TableAt(format::kObjectsTablePage);
  for (const Column& column : objects->Columns())
    if (column.definition.type == ColumnType::Text) return {column.definition.sortOrder, column.definition.sortVersion};
  return {};
}

// A copy of the catalogue's row, since the catalogue forgets its own with the first change. A link counts as no table.
CatalogObject ChangeableTable(Catalog& catalog, std::string_view name) {
  const CatalogObject* object = catalog.FindNamed(name);
  if (object == nullptr || !object->IsTable()) RaiseNoTable(name);
  if (object->IsSystem()) RaiseSystemTable(name);
  return *object;
}

void CreateTable(Catalog& catalog, const TableDesign& design, Date now) {
  CheckName(design.name, "table");
  if (catalog.FindNamed(design.name) != nullptr) RaiseTableExists(design.name);
  if (design.columns.empty())
    throw Error(ErrorNumber::ProviderSyntax, kErrorSource,
                "The table '" + design.name + "' needs one column at least.");

  Pager& pager = catalog.GetPager();
  const SortOrder sortOrder = FileSortOrder(catalog);
  TableDefinition definition;
  PropertyBlob properties;
  for (const ColumnDesign& column : design.columns) {
    for (const ColumnDefinition& other : definition.columns)
      if (SameName(other.name, column.name)) RaiseColumnExists(design.name, column.name);
    ColumnDefinition made = MakeColumn(column, sortOrder);
    made.ordinal = static_cast<std::uint16_t>(definition.columns.size());
    AppendColumn(definition, std::move(made), FixedAreaEnd(definition));
    DescribeColumn(properties, column);
  }
  // The row values of a new table have the order of the records; by their display positions that is the order of the
  // design.
  SortRecords(definition);
  for (const IndexDesign& index : design.indexes) AppendIndex(definition, design.name, index);

  definition.page = PageAllocator(pager).Allocate().Number();
  AllocateParts(pager, definition, 0);
  WriteTableDefinition(pager, definition, false);
  NewObject object;
  object.id = static_cast<std::int32_t>(definition.page);
  object.name = design.name;
  object.properties = std::move(properties);
  AddObject(catalog, object, now);
}

void DropTable(Catalog& catalog, std::string_view name) {
  const CatalogObject* found = catalog.FindNamed(name);
  if (found != nullptr && found->IsLinked()) {
    // Of a link there is nothing here but its row; the other database is not touched.
    RemoveObject(catalog, CatalogObject(*found));
    return;
  }
  const CatalogObject object = ChangeableTable(catalog, name);
  RefuseRelated(catalog, name);
  Pager& pager = catalog.GetPager();
  const std::shared_ptr<StoredTable> table = catalog.OpenTable(name);
  // By the maps, page by page, without reading rows: a damaged table can be dropped too.
  table->Rows().RemoveAll();
  for (std::size_t i = 0; i < table->Indexes().size(); ++i) table->Tree(i).Clear(false);
  FreeMaps(pager, table->Definition());
  FreeDefinition(pager, table->Definition().page);
  RemoveObject(catalog, object);
}

}  // namespace tavi::access
