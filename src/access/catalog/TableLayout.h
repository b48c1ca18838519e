#pragma once

#include "access/catalog/Database.h"
#include "access/table/TableDefinition.h"

/// How designs become table definitions: types, permanent numbers and places of columns, order of records, maps and
/// roots.
namespace tavi::access {

/// A text sort order as the definition holds it.
struct SortOrder {
  std::uint16_t order = 1033;
  std::uint8_t version = 0;
};

/// The column record of a design, without number and place. Raises ProviderSyntax when the design is impossible (name,
/// length, precision, an autonumber that is neither Long nor GUID).
ColumnDefinition MakeColumn(const ColumnDesign& design, SortOrder sortOrder);

/// Where the fixed area of a row ends by the columns that the definition has now, in bytes from its start.
std::size_t FixedAreaEnd(const TableDefinition& definition);

/// Gives a column the next permanent number, variable slot or fixed place (at `fixedOffset`) and adds it to the
/// definition. Raises ProviderFailure ("Too many fields defined.") when 255 columns were ever created, and ("Record is
/// too large.") when no row would fit a page any more.
void AppendColumn(TableDefinition& definition, ColumnDefinition column, std::size_t fixedOffset);

/// Puts columns (by ordinal, then name) and logical indexes (by name) into their stored order.
void SortRecords(TableDefinition& definition);
/// The logical indexes alone: the order of columns is that of all row values.
void SortIndexRecords(TableDefinition& definition);

/// The flags byte of a physical index as its members state it.
std::uint8_t IndexFlags(const RealIndexDefinition& index);

/// Takes pages and map rows for what the definition still lacks: table maps, long-value maps, index maps and roots
/// (empty leaves). New map rows go to the table's own usage-map page, or behind `mapPage` when it has none (0: a new
/// page).
void AllocateParts(Pager& pager, TableDefinition& definition, PageNumber mapPage);

}  // namespace tavi::access
