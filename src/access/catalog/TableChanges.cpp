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

void RefuseRelated(Catalog& catalog, std::string_view table) {
  for (const Relationship& relationship : catalog.Relationships()) {
    if (SameName(relationship.primaryTable, table) || SameName(relationship.foreignTable, table))
      RaiseInRelationship(table, relationship.name);
  }
}

void FreeDefinition(Pager& pager, PageNumber page) {
  PageAllocator allocator(pager);
  for (const PageNumber part : TableDefinitionPages(pager, page)) {
    pager.Write(part).SetU8(format::kPageTypeOffset, format::page_type::kDroppedTableDefinition);
    allocator.Free(part);
  }
}

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

SortOrder FileSortOrder(Catalog& catalog) {
  const std::shared_ptr<StoredTable> objects = catalog.TableAt(format::kObjectsTablePage);
  for (const Column& column : objects->Columns())
    if (column.definition.type == ColumnType::Text) return {column.definition.sortOrder, column.definition.sortVersion};
  return {};
}

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
    RemoveObject(catalog, CatalogObject(*found));
    return;
  }
  const CatalogObject object = ChangeableTable(catalog, name);
  RefuseRelated(catalog, name);
  Pager& pager = catalog.GetPager();
  const std::shared_ptr<StoredTable> table = catalog.OpenTable(name);
  table->Rows().RemoveAll();
  for (std::size_t i = 0; i < table->Indexes().size(); ++i) table->Tree(i).Clear(false);
  FreeMaps(pager, table->Definition());
  FreeDefinition(pager, table->Definition().page);
  RemoveObject(catalog, object);
}

}  // namespace tavi::access
