#include <string>

#include "access/file/Bytes.h"
#include "access/file/Format.h"
#include "access/table/DefinitionBytes.h"
#include "access/table/TextEncoding.h"

// The counterpart of DefinitionParser.cpp: the lists in the same order, for Jet 4. Fields that Access leaves to chance
// (unused bytes, the fixed place of a variable column, the order of unused index columns) are written as 0, so that
// equal definitions have equal bytes. The lists come sorted already, columns by ordinal and name, named indexes by
// name: whoever changes a definition keeps them so.

namespace tavi::access {

namespace {

namespace table = format::table;

/// Bytes that records and names are appended to.
class DefinitionWriter {
 public:
  /// Appends `size` zero bytes and returns them; valid until the next call.
  std::span<std::uint8_t> Record(std::size_t size) {
    bytes_.resize(bytes_.size() + size);
    return std::span(bytes_).last(size);
  }
  // A name has a length in bytes of two, and characters of UTF-16, never compressed.
  void Name(const std::string& name) {
    const Bytes stored = EncodePlainText(name);
    PutLittle(Record(table::kNameLengthSize), 0, static_cast<std::uint16_t>(stored.size()));
    bytes_.insert(bytes_.end(), stored.begin(), stored.end());
  }
  std::vector<std::uint8_t> Finish() {
    PutLittle(Record(table::kTerminatorSize), 0, table::kTerminator);
    // Known only now; it counts the terminator.
    PutLittle(std::span(bytes_), table::kLengthOffset, static_cast<std::uint32_t>(bytes_.size()));
    return std::move(bytes_);
  }

 private:
  std::vector<std::uint8_t> bytes_;
};

using Record = std::span<std::uint8_t>;

// The page header's free bytes and next page are left out: they belong to the pages, which DefinitionPages.cpp knows.
void PutHeader(Record header, const TableDefinition& definition, const DefinitionCounters& counters) {
  header[format::kPageTypeOffset] = format::page_type::kTableDefinition;
  header[format::kPageMarkOffset] = format::kPageMark;
  PutLittle(header, table::kConstantOffset, table::kConstant);
  PutLittle(header, table::kRowCountOffset, counters.rows);
  PutLittle(header, table::kLastAutonumberOffset, static_cast<std::uint32_t>(counters.lastAutoNumber));
  // 1 in every table of Access, with an automatic number or without; where it is missing Access numbers no new rows.
  PutLittle(header, table::kAutonumberIncrementOffset, std::uint32_t{1});
  header[table::kTypeOffset] = definition.isSystem ? table::kTypeSystem : table::kTypeUser;
  PutLittle(header, table::kColumnIdCounterOffset, definition.columnIdCounter);
  PutLittle(header, table::kVariableCountOffset, definition.variableColumnCounter);
  PutLittle(header, table::kColumnCountOffset, static_cast<std::uint16_t>(definition.columns.size()));
  PutLittle(header, table::kLogicalIndexCountOffset, static_cast<std::uint32_t>(definition.logicalIndexes.size()));
  PutLittle(header, table::kRealIndexCountOffset, static_cast<std::uint32_t>(definition.realIndexes.size()));
  PutLittle(header, table::kOwnedPagesOffset, definition.ownedPages.Packed());
  PutLittle(header, table::kFreeSpacePagesOffset, definition.freeSpacePages.Packed());
}

// A variable column has no fixed place; Access leaves any bytes there, here it is 0.
void PutColumn(Record record, const ColumnDefinition& column) {
  namespace layout = format::column;
  // The sort order is the LCID [2], an unused byte and the version.
  constexpr std::size_t kSortVersionOffset = layout::kSortOrderOffset + 3;
  record[layout::kTypeOffset] = static_cast<std::uint8_t>(column.type);
  PutLittle(record, layout::kConstantOffset, table::kConstant);
  PutLittle(record, layout::kIdOffset, column.id);
  PutLittle(record, layout::kVariableIndexOffset, column.variableIndex);
  PutLittle(record, layout::kOrdinalOffset, column.ordinal);
  if (column.type == ColumnType::Numeric) {
    record[layout::kPrecisionOffset] = column.precision;
    record[layout::kScaleOffset] = column.scale;
  } else {
    PutLittle(record, layout::kSortOrderOffset, column.sortOrder);
    record[kSortVersionOffset] = column.sortVersion;
  }
  record[layout::kFlagsOffset] = column.flags;
  record[layout::kExtendedFlagsOffset] = column.extendedFlags;
  PutLittle(record, layout::kFixedOffsetOffset, column.IsFixed() ? column.fixedOffset : std::uint16_t{0});
  PutLittle(record, layout::kLengthOffset, column.length);
}

/// Bits whose meaning is not known here are kept as they were read; the three that are known follow the definition.
std::uint8_t StoredFlags(const RealIndexDefinition& index) {
  namespace layout = format::real_index;
  constexpr unsigned kStated = layout::kFlagUnique | layout::kFlagIgnoreNulls | layout::kFlagRequired;
  unsigned flags = (index.flags & ~kStated) | layout::kFlagAlways;
  if (index.unique) flags |= layout::kFlagUnique;
  if (index.ignoreNulls) flags |= layout::kFlagIgnoreNulls;
  if (index.required) flags |= layout::kFlagRequired;
  return static_cast<std::uint8_t>(flags);
}

void PutRealIndex(Record record, const RealIndexDefinition& index) {
  namespace layout = format::real_index;
  PutLittle(record, layout::kConstantOffset, layout::kConstant);
  for (std::size_t i = 0; i < layout::kMaximumColumnCount; ++i) {
    const std::size_t place = layout::kColumnsOffset + i * layout::kColumnSize;
    // A definition always has ten places for columns.
    PutLittle(record, place, i < index.columns.size() ? index.columns[i].columnId : layout::kNoColumn);
    const bool ascending = i < index.columns.size() && index.columns[i].ascending;
    record[place + layout::kColumnOrderOffset] = ascending ? layout::kAscending : layout::kDescending;
  }
  PutLittle(record, layout::kUsageMapOffset, index.ownedPages.Packed());
  PutLittle(record, layout::kRootPageOffset, index.root);
  record[layout::kFlagsOffset] = StoredFlags(index);
}

// Cascades are kept as they were read: 4 where the index is no side of a relationship.
void PutLogicalIndex(Record record, const LogicalIndexDefinition& index) {
  namespace layout = format::logical_index;
  PutLittle(record, layout::kConstantOffset, table::kConstant);
  PutLittle(record, layout::kNumberOffset, index.number);
  PutLittle(record, layout::kRealIndexOffset, index.realIndex);
  record[layout::kSideOffset] = static_cast<std::uint8_t>(index.side);
  PutLittle(record, layout::kPartnerOffset, index.partnerNumber);
  PutLittle(record, layout::kOtherTableOffset, index.partnerTable);
  record[layout::kCascadeUpdatesOffset] = index.cascadeUpdates;
  record[layout::kCascadeDeletesOffset] = index.cascadeDeletes;
  record[layout::kTypeOffset] = static_cast<std::uint8_t>(index.kind);
}

void PutLongValueMaps(Record record, const LongValueMaps& maps) {
  namespace layout = format::long_value_maps;
  PutLittle(record, layout::kColumnIdOffset, maps.columnId);
  PutLittle(record, layout::kOwnedPagesOffset, maps.ownedPages.Packed());
  PutLittle(record, layout::kFreeSpaceOffset, maps.freeSpacePages.Packed());
}

}  // namespace

std::vector<std::uint8_t> SerializeTableDefinition(const TableDefinition& definition,
                                                   const DefinitionCounters& counters) {
  DefinitionWriter writer;
  PutHeader(writer.Record(table::kHeaderSize), definition, counters);
  for (std::size_t i = 0; i < definition.realIndexes.size(); ++i) {
    // An index that was added has no statistics yet; they begin at zero, as for an index that is made empty.
    const IndexStatistics statistics = i < counters.indexes.size() ? counters.indexes[i] : IndexStatistics{};
    const Record slot = writer.Record(format::index_slot::kSize);
    PutLittle(slot, format::index_slot::kEntryCountOffset, statistics.entries);
    PutLittle(slot, format::index_slot::kDistinctCountOffset, statistics.distinctKeys);
  }
  for (const ColumnDefinition& column : definition.columns) PutColumn(writer.Record(format::column::kSize), column);
  for (const ColumnDefinition& column : definition.columns) writer.Name(column.name);
  for (const RealIndexDefinition& index : definition.realIndexes) {
    PutRealIndex(writer.Record(format::real_index::kSize), index);
  }
  for (const LogicalIndexDefinition& index : definition.logicalIndexes) {
    PutLogicalIndex(writer.Record(format::logical_index::kSize), index);
  }
  for (const LogicalIndexDefinition& index : definition.logicalIndexes) writer.Name(index.name);
  for (const LongValueMaps& maps : definition.longValueMaps) {
    PutLongValueMaps(writer.Record(format::long_value_maps::kSize), maps);
  }
  return writer.Finish();
}

}  // namespace tavi::access
