#pragma once

#include "access/catalog/Catalog.h"
#include "access/catalog/TableLayout.h"

/// Changes of definitions. Each is one part of a write statement; what it raises is promised at Database. All of them
/// make the catalogue forget what it remembers.
namespace tavi::access {

// TableChanges.cpp
void CreateTable(Catalog& catalog, const TableDesign& design, Date now);
void DropTable(Catalog& catalog, std::string_view name);

// ColumnChanges.cpp
void AddColumn(Catalog& catalog, std::string_view table, const ColumnDesign& design, std::optional<Date> now);
void DropColumn(Catalog& catalog, std::string_view table, std::string_view column, std::optional<Date> now);
/// Puts what the properties hold of a new column into them.
void DescribeColumn(PropertyBlob& properties, const ColumnDesign& design);

// ColumnTypeChange.cpp
void ChangeColumn(Catalog& catalog, std::string_view table, const ColumnDesign& design, std::optional<Date> now);

// IndexChanges.cpp
void CreateIndex(Catalog& catalog, std::string_view table, const IndexDesign& design, std::optional<Date> now);
void DropIndex(Catalog& catalog, std::string_view table, std::string_view index, std::optional<Date> now);
/// Adds a physical and a logical index to a definition, without pages.
void AppendIndex(TableDefinition& definition, const std::string& table, const IndexDesign& design);

/// Builds an index (by position in Indexes()) from the rows of its table, with its statistics. Raises when the rows do
/// not allow it.
void FillIndex(Pager& pager, StoredTable& table, std::size_t index);
/// Takes a physical index out of a definition and frees its pages. Later ones move up. Writes the definition.
void RemoveRealIndex(Pager& pager, StoredTable& table, TableDefinition& definition, std::uint32_t realIndex);
/// Raises ProviderFailure when the table has as many logical indexes as it can have.
void RefuseFullIndexList(const TableDefinition& definition, const std::string& table);

// RelationshipChanges.cpp
void CreateRelationship(Catalog& catalog, const Relationship& relationship, Date now);
void DropRelationship(Catalog& catalog, std::string_view name);

/// The sort order of the file's own names, which new columns take over.
SortOrder FileSortOrder(Catalog& catalog);
/// The catalogue row of a table whose definition may be changed. Raises ProviderNoTable when there is none,
/// ProviderPermission for a table of the system.
CatalogObject ChangeableTable(Catalog& catalog, std::string_view name);

}  // namespace tavi::access
