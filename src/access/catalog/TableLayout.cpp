// From a design to a definition with places in the file, in three steps that callers take in this order:
//
//   MakeColumn      type, length and flags of a column by its design; nothing of the table yet
//   AppendColumn    its permanent number, and its place in the rows: a fixed offset, or a slot for a variable value
//   AllocateParts   pages and map rows for all that the definition names and the file has not got yet
//
// Example, a table of a Long, a Text(50), a Boolean and a Double:
//
//   number   type      place                               record
//   0        Long      fixed, bytes 0 to 3                 flags 03, length 4
//   1        Text(50)  slot 0 of the variable values       flags 02, length 100 (bytes)
//   2        Boolean   none: its value is bit 2 of the     flags 03, length 1
//                      null mask
//   3        Double    fixed, bytes 4 to 11                flags 03, length 8
//
// Fixed places are packed without alignment. Numbers, slots and places are never given again when a column is dropped,
// since rows that were written before still hold its bytes there.
#include "access/catalog/TableLayout.h"

#include <algorithm>

#include "access/catalog/Names.h"
#include "access/file/EngineError.h"
#include "access/file/Format.h"
#include "access/file/PageAllocator.h"
#include "access/file/UsageMap.h"
#include "access/index/BTree.h"

namespace tavi::access {

namespace {

/// Bytes that a value of a fixed-length type takes; 0 for the variable types.
std::uint16_t FixedLength(ColumnType type) {
  switch (type) {
    case ColumnType::Boolean:
    case ColumnType::Byte:
      return 1;
    case ColumnType::Integer:
      return 2;
    case ColumnType::Long:
    case ColumnType::Single:
      return 4;
    case ColumnType::Currency:
    case ColumnType::Double:
    case ColumnType::Date:
      return 8;
    case ColumnType::Guid:
      return 16;
    case ColumnType::Numeric:
      return format::numeric::kSize;
    default:
      return 0;
  }
}

[[noreturn]] void RaiseImpossible(const ColumnDesign& design, const std::string& reason) {
  throw Error(ErrorNumber::ProviderSyntax, kErrorSource, "The column '" + design.name + "' cannot be made: " + reason);
}

/// The stored length of a variable column.
/// Text is measured in characters by those who design it and in bytes, two for each, in the file. Long values have no
/// length: they lie elsewhere.
std::uint16_t VariableLength(const ColumnDesign& design) {
  if (design.type == ColumnType::Text) {
    if (design.length == 0 || design.length > format::text::kMaximumLength)
      RaiseImpossible(design, "the size of a Text column is 1 to 255 characters.");
    return static_cast<std::uint16_t>(design.length * 2);
  }
  if (design.type == ColumnType::Binary) {
    if (design.length == 0 || design.length > 2 * format::text::kMaximumLength)
      RaiseImpossible(design, "the size of a Binary column is 1 to 510 bytes.");
    return design.length;
  }
  if (design.type == ColumnType::Memo || design.type == ColumnType::Ole) return 0;
  RaiseImpossible(design, "columns of this type cannot be created.");
}

/// The largest row that a table can have without any variable value: its null columns take their place too.
std::size_t SmallestRow(const TableDefinition& definition) {
  std::size_t size = format::row::kColumnCountSize + FixedAreaEnd(definition) + (definition.columnIdCounter + 7U) / 8U;
  if (definition.variableColumnCounter > 0) {
    size += format::row::kEndOfDataSize + format::row::kVariableCountSize +
            format::row::kVariableOffsetSize * definition.variableColumnCounter;
  }
  return size;
}

/// Fills one page of maps after another: `mapPage` is where the next map goes when there is room.
RowPointer AddMap(PageAllocator& allocator, PageNumber& mapPage) {
  const RowPointer map = allocator.AddUsageMap(mapPage);
  mapPage = map.page;
  return map;
}

/// Gives each Memo and OLE column that has none its two maps. Maps are taken in the order of the columns' numbers and
/// listed in that of their records, as Access does.
void AllocateLongValueMaps(PageAllocator& allocator, TableDefinition& definition, PageNumber& mapPage) {
  std::vector<const ColumnDefinition*> byId;
  for (const ColumnDefinition& column : definition.columns)
    if (column.IsLongValue()) byId.push_back(&column);
  std::ranges::sort(byId, {}, &ColumnDefinition::id);
  for (const ColumnDefinition* column : byId) {
    if (std::ranges::find(definition.longValueMaps, column->id, &LongValueMaps::columnId) !=
        definition.longValueMaps.end()) {
      continue;
    }
    LongValueMaps maps;
    maps.columnId = column->id;
    maps.ownedPages = AddMap(allocator, mapPage);
    maps.freeSpacePages = AddMap(allocator, mapPage);
    definition.longValueMaps.push_back(maps);
  }
  // The records stand in the order of the column records.
  const auto place = [&](const LongValueMaps& maps) {
    return std::ranges::find(definition.columns, maps.columnId, &ColumnDefinition::id) - definition.columns.begin();
  };
  std::ranges::stable_sort(definition.longValueMaps, {}, place);
}

/// An index begins as one empty leaf, which stays its root for ever, however the tree grows.
void AllocateIndex(Pager& pager, PageAllocator& allocator, PageNumber table, RealIndexDefinition& index,
                   PageNumber& mapPage) {
  index.ownedPages = AddMap(allocator, mapPage);
  Page& root = allocator.Allocate();
  index.root = root.Number();
  BTree::FormatRoot(root, table);
  UsageMap(pager, index.ownedPages).Add(index.root);
}

}  // namespace

ColumnDefinition MakeColumn(const ColumnDesign& design, SortOrder sortOrder) {
  CheckName(design.name, "column");
  ColumnDefinition column;
  column.name = design.name;
  column.type = design.type;
  column.sortOrder = sortOrder.order;
  column.sortVersion = sortOrder.version;
  column.flags = format::column_flag::kUpdatable;
  column.length = FixedLength(design.type);
  // A flag, and not the type, decides where readers look for the value.
  if (column.length > 0) {
    column.flags |= format::column_flag::kFixed;
  } else {
    column.length = VariableLength(design);
  }
  if (design.type == ColumnType::Numeric) {
    if (design.precision == 0 || design.precision > format::numeric::kMaximumPrecision ||
        design.scale > design.precision) {
      RaiseImpossible(design, "the precision of a Decimal column is 1 to 28 digits, the scale not above it.");
    }
    column.precision = design.precision;
    column.scale = design.scale;
  }
  if (design.autoNumber) {
    if (design.type != ColumnType::Long && design.type != ColumnType::Guid)
      RaiseImpossible(design, "an automatic number is a Long or a GUID column.");
    column.flags |=
        design.type == ColumnType::Long ? format::column_flag::kAutonumber : format::column_flag::kAutonumberGuid;
  }
  const bool isText = design.type == ColumnType::Text || design.type == ColumnType::Memo;
  if (isText && design.compressed) column.extendedFlags = format::column_extended_flag::kCompressed;
  return column;
}

// Behind the highest-lying column, which need not be the last one in any list. Gaps that dropped columns have left
// below it are not filled.
std::size_t FixedAreaEnd(const TableDefinition& definition) {
  std::size_t end = 0;
  for (const ColumnDefinition& column : definition.columns) {
    if (column.IsFixed() && column.type != ColumnType::Boolean)
      end = std::max<std::size_t>(end, std::size_t{column.fixedOffset} + column.length);
  }
  return end;
}

void AppendColumn(TableDefinition& definition, ColumnDefinition column, std::size_t fixedOffset) {
  if (definition.columnIdCounter >= format::table::kMaximumColumnCount) {
    throw Error(ErrorNumber::ProviderFailure, kErrorSource,
                "Too many fields defined. The table has had 255 columns, deleted ones included; compact the database "
                "to make room for the column '" +
                    column.name + "'.");
  }
  if (column.IsAutoNumber() && std::ranges::any_of(definition.columns, &ColumnDefinition::IsAutoNumber)) {
    throw Error(ErrorNumber::ProviderSyntax, kErrorSource,
                "The column '" + column.name + "' cannot be an automatic number: a table has one at most.");
  }
  column.id = definition.columnIdCounter++;
  column.variableIndex = definition.variableColumnCounter;
  column.fixedOffset = 0;
  if (!column.IsFixed()) {
    ++definition.variableColumnCounter;
  } else if (column.type != ColumnType::Boolean) {
    column.fixedOffset = static_cast<std::uint16_t>(fixedOffset);
  }
  definition.columns.push_back(std::move(column));
  if (SmallestRow(definition) > format::row::kMaximumSize) {
    throw Error(ErrorNumber::ProviderFailure, kErrorSource,
                "Record is too large. No row of the table would fit a page with the column '" +
                    definition.columns.back().name + "'; use fewer or shorter columns.");
  }
}

void SortRecords(TableDefinition& definition) {
  std::ranges::stable_sort(definition.columns, [](const ColumnDefinition& left, const ColumnDefinition& right) {
    return left.ordinal != right.ordinal ? left.ordinal < right.ordinal : NameBefore(left.name, right.name);
  });
  SortIndexRecords(definition);
}

void SortIndexRecords(TableDefinition& definition) {
  std::ranges::stable_sort(definition.logicalIndexes, NameBefore, &LogicalIndexDefinition::name);
}

std::uint8_t IndexFlags(const RealIndexDefinition& index) {
  std::uint8_t flags = format::real_index::kFlagAlways;
  if (index.unique) flags |= format::real_index::kFlagUnique;
  if (index.ignoreNulls) flags |= format::real_index::kFlagIgnoreNulls;
  if (index.required) flags |= format::real_index::kFlagRequired;
  return flags;
}

void AllocateParts(Pager& pager, TableDefinition& definition, PageNumber mapPage) {
  PageAllocator allocator(pager);
  if (definition.ownedPages.IsNone()) {
    definition.ownedPages = AddMap(allocator, mapPage);
    definition.freeSpacePages = AddMap(allocator, mapPage);
  } else {
    mapPage = definition.ownedPages.page;
  }
  AllocateLongValueMaps(allocator, definition, mapPage);
  for (RealIndexDefinition& index : definition.realIndexes)
    if (index.root == 0) AllocateIndex(pager, allocator, definition.page, index, mapPage);
}

}  // namespace tavi::access
