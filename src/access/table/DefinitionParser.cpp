#include <algorithm>
#include <string>

#include "access/file/Bytes.h"
#include "access/file/EngineError.h"
#include "access/file/Format.h"
#include "access/table/DefinitionBytes.h"
#include "access/table/FormatVersion.h"
#include "access/table/TextEncoding.h"
#include "platform/values/CodePages.h"

// A definition is a run of lists whose lengths stand in its header, so each list is found only by reading those before
// it. What is read is checked in three steps: each count against the bytes that there are, before anything is made of
// it; each field against the end of its record; and at the end what the parts say of each other (CheckColumns,
// CheckIndexes). Everybody above takes a definition that came through here for consistent: a column's number is below
// the counter and nobody else's, an index uses columns that exist.
//
// Jet 3 and Jet 4 differ in places and sizes only (DefinitionLayout), apart from names, which Jet 3 has in the code
// page of its file.

namespace tavi::access {

void DefinitionReader::Raise(const std::string& what) const {
  RaiseDamage("the table definition on page " + std::to_string(page_) + ": " + what);
}

// Without a sum that could overflow: both numbers may come from a damaged file.
void DefinitionReader::Check(std::size_t offset, std::size_t size, const char* field) const {
  if (offset <= bytes_.size() && size <= bytes_.size() - offset) return;
  Raise(std::string(field) + " at byte " + std::to_string(offset) + " lies past the end, after " +
        std::to_string(bytes_.size()) + " bytes.");
}

std::uint8_t DefinitionReader::U8(std::size_t offset, const char* field) const {
  Check(offset, sizeof(std::uint8_t), field);
  return bytes_[offset];
}

std::uint16_t DefinitionReader::U16(std::size_t offset, const char* field) const {
  Check(offset, sizeof(std::uint16_t), field);
  return GetLittle<std::uint16_t>(bytes_, offset);
}

std::uint32_t DefinitionReader::U32(std::size_t offset, const char* field) const {
  Check(offset, sizeof(std::uint32_t), field);
  return GetLittle<std::uint32_t>(bytes_, offset);
}

RowPointer DefinitionReader::Pointer(std::size_t offset, const char* field) const {
  return RowPointer::FromPacked(U32(offset, field));
}

// The record is a reader of its own, whose end is the end of the record: a field past it is noticed even where other
// records follow.
DefinitionReader DefinitionReader::Record(std::size_t size, const char* what) {
  Check(position_, size, what);
  const DefinitionReader record(bytes_.subspan(position_, size), page_);
  position_ += size;
  return record;
}

namespace {

const DefinitionLayout& LayoutOf(const FormatVersion& version) {
  return version.isJet3 ? Jet3DefinitionLayout() : Jet4DefinitionLayout();
}

/// How many records of each kind follow the header.
struct RecordCounts {
  std::size_t columns;
  std::size_t realIndexes;
  std::size_t logicalIndexes;
};

/// Records are far smaller than the definition, so that a hostile count is found before anything is allocated for it.
/// The count may still be wrong; then a record or a name lies past the end.
std::size_t CheckedCount(const DefinitionReader& reader, std::size_t count, std::size_t size, const char* what) {
  if (count > reader.Bytes().size() / size) {
    reader.Raise("it is said to have " + std::to_string(count) + " " + what + ", more than its " +
                 std::to_string(reader.Bytes().size()) + " bytes can hold.");
  }
  return count;
}

/// The counters for rows and automatic numbers are not read here: they change with each row, and a definition is kept
/// longer than that.
RecordCounts ReadHeader(const DefinitionReader& reader, const DefinitionLayout& layout, TableDefinition& definition) {
  const DefinitionLayout::Header& header = layout.header;
  definition.isSystem = reader.U8(header.type, "the table type") == format::table::kTypeSystem;
  definition.columnIdCounter = reader.U16(header.columnIdCounter, "the column counter");
  definition.variableColumnCounter = reader.U16(header.variableCount, "the counter of variable columns");
  definition.ownedPages = reader.Pointer(header.ownedPages, "the map of owned pages");
  definition.freeSpacePages = reader.Pointer(header.freeSpacePages, "the map of pages with room");
  return {CheckedCount(reader, reader.U16(header.columnCount, "the column count"), layout.column.size, "columns"),
          CheckedCount(reader, reader.U32(header.realIndexCount, "the index count"), layout.realIndex.size, "indexes"),
          CheckedCount(reader, reader.U32(header.logicalIndexCount, "the count of named indexes"),
                       layout.logicalIndex.size, "named indexes")};
}

ColumnDefinition ReadColumn(const DefinitionReader& record, const DefinitionLayout::Column& layout) {
  constexpr const char* kField = "a column";
  ColumnDefinition column;
  column.type = static_cast<ColumnType>(record.U8(layout.type, kField));
  column.id = record.U16(layout.id, kField);
  column.variableIndex = record.U16(layout.variableIndex, kField);
  column.ordinal = record.U16(layout.ordinal, kField);
  // The same bytes: precision and scale of a Numeric, the sort order of all others.
  if (column.type == ColumnType::Numeric) {
    column.precision = record.U8(layout.precision, kField);
    column.scale = record.U8(layout.scale, kField);
  } else {
    column.sortOrder = record.U16(layout.sortOrder, kField);
    if (layout.sortVersion != DefinitionLayout::kNotStored) column.sortVersion = record.U8(layout.sortVersion, kField);
  }
  column.flags = record.U8(layout.flags, kField);
  if (layout.extendedFlags != DefinitionLayout::kNotStored) {
    column.extendedFlags = record.U8(layout.extendedFlags, kField);
  }
  // Of a variable column the field is garbage in files of Access.
  column.fixedOffset = column.IsFixed() ? record.U16(layout.fixedOffset, kField) : std::uint16_t{0};
  column.length = record.U16(layout.length, kField);
  return column;
}

/// The length counts bytes, not characters.
std::string ReadName(DefinitionReader& reader, const DefinitionLayout& layout, const FormatVersion& version,
                     const char* what) {
  const DefinitionReader prefix = reader.Record(layout.nameLengthSize, what);
  const std::size_t length = version.isJet3 ? prefix.U8(0, what) : prefix.U16(0, what);
  const auto stored = reader.Record(length, what).Bytes();
  return version.isJet3 ? DecodeCodePage(stored, version.codePage) : DecodePlainText(stored);
}

RealIndexDefinition ReadRealIndex(const DefinitionReader& record, const DefinitionLayout::RealIndex& layout) {
  namespace real_index = format::real_index;
  constexpr const char* kField = "an index";
  RealIndexDefinition index;
  for (std::size_t i = 0; i < real_index::kMaximumColumnCount; ++i) {
    const std::size_t place = layout.columns + i * real_index::kColumnSize;
    const std::uint16_t id = record.U16(place, kField);
    // Unused places have the number FFFF; the byte for the order is garbage there.
    if (id == real_index::kNoColumn) continue;
    const std::uint8_t order = record.U8(place + real_index::kColumnOrderOffset, kField);
    index.columns.push_back({id, order == real_index::kAscending});
  }
  index.ownedPages = record.Pointer(layout.usageMap, kField);
  index.root = record.U32(layout.rootPage, kField);
  index.flags = record.U8(layout.flags, kField);
  index.unique = (index.flags & real_index::kFlagUnique) != 0;
  index.ignoreNulls = (index.flags & real_index::kFlagIgnoreNulls) != 0;
  index.required = (index.flags & real_index::kFlagRequired) != 0;
  return index;
}

/// Bytes beyond the known values are damage of no consequence: the index then counts as an ordinary one, and its
/// entries are kept like those of any other.
template <typename Kind>
Kind KnownKind(std::uint8_t stored, Kind last) {
  return stored <= static_cast<std::uint8_t>(last) ? static_cast<Kind>(stored) : Kind{};
}

LogicalIndexDefinition ReadLogicalIndex(const DefinitionReader& record, const DefinitionLayout::LogicalIndex& layout) {
  constexpr const char* kField = "a named index";
  LogicalIndexDefinition index;
  index.number = record.U32(layout.number, kField);
  index.realIndex = record.U32(layout.realIndex, kField);
  index.side = KnownKind(record.U8(layout.side, kField), LogicalIndexDefinition::Side::Foreign);
  index.partnerNumber = record.U32(layout.partner, kField);
  index.partnerTable = record.U32(layout.otherTable, kField);
  index.cascadeUpdates = record.U8(layout.cascadeUpdates, kField);
  index.cascadeDeletes = record.U8(layout.cascadeDeletes, kField);
  index.kind = KnownKind(record.U8(layout.type, kField), LogicalIndexDefinition::Kind::Relationship);
  return index;
}

/// The only list without a count: it ends with FFFF, which is no column's number. Files of Access have one record for
/// each Memo and OLE column, in some of which the maps are missing.
std::vector<LongValueMaps> ReadLongValueMaps(DefinitionReader& reader) {
  namespace maps = format::long_value_maps;
  constexpr const char* kField = "the maps of a long-value column";
  std::vector<LongValueMaps> all;
  while (reader.U16(reader.Position(), "the terminator") != format::table::kTerminator) {
    const DefinitionReader record = reader.Record(maps::kSize, kField);
    all.push_back({record.U16(maps::kColumnIdOffset, kField), record.Pointer(maps::kOwnedPagesOffset, kField),
                   record.Pointer(maps::kFreeSpaceOffset, kField)});
  }
  return all;
}

/// What everybody above relies on: numbers that are unique and below their counters, fixed places inside of a row. Rows
/// index their masks and offset tables with these numbers, without asking again.
void CheckColumns(const DefinitionReader& reader, const TableDefinition& definition) {
  std::vector<bool> ids(definition.columnIdCounter);
  std::vector<bool> slots(definition.variableColumnCounter);
  for (const ColumnDefinition& column : definition.columns) {
    const std::string name = "the column '" + column.name + "' has ";
    if (column.id >= ids.size() || ids[column.id]) {
      reader.Raise(name + "the number " + std::to_string(column.id) + ", which is taken or not below the counter " +
                   std::to_string(ids.size()) + ".");
    }
    ids[column.id] = true;
    if (column.IsFixed()) {
      // Overlaps are not looked for: a Boolean states the place 0 and has no bytes there.
      if (std::size_t{column.fixedOffset} + column.length > kPageSize) {
        reader.Raise(name + "the place " + std::to_string(column.fixedOffset) + " and the length " +
                     std::to_string(column.length) + ", more than a row has.");
      }
    } else if (column.variableIndex >= slots.size() || slots[column.variableIndex]) {
      reader.Raise(name + "the slot " + std::to_string(column.variableIndex) +
                   ", which is taken or not below the counter " + std::to_string(slots.size()) + ".");
    } else {
      slots[column.variableIndex] = true;
    }
  }
}

/// Several named indexes may share one tree; none may name a tree that is not there.
void CheckIndexes(const DefinitionReader& reader, const TableDefinition& definition) {
  for (const RealIndexDefinition& index : definition.realIndexes) {
    for (const IndexColumn& column : index.columns) {
      if (definition.FindColumn(column.columnId) != nullptr) continue;
      reader.Raise("an index uses the column number " + std::to_string(column.columnId) + ", which does not exist.");
    }
  }
  for (const LogicalIndexDefinition& index : definition.logicalIndexes) {
    if (index.realIndex < definition.realIndexes.size()) continue;
    reader.Raise("the index '" + index.name + "' refers to tree number " + std::to_string(index.realIndex) + " of " +
                 std::to_string(definition.realIndexes.size()) + ".");
  }
}

}  // namespace

TableDefinition ParseTableDefinition(std::span<const std::uint8_t> bytes, PageNumber page,
                                     const FormatVersion& version) {
  const DefinitionLayout& layout = LayoutOf(version);
  const std::size_t length = DefinitionReader(bytes, page).U32(layout.header.length, "the length");
  if (length < layout.header.size || length > bytes.size()) {
    DefinitionReader(bytes, page)
        .Raise("its length is stated as " + std::to_string(length) + ", its pages have " +
               std::to_string(bytes.size()) + " bytes.");
  }
  // Cut to the length that the definition states: the rest of its last page is what an earlier, longer one left.
  DefinitionReader reader(bytes.first(length), page);
  TableDefinition definition;
  definition.page = page;
  const RecordCounts counts = ReadHeader(reader, layout, definition);
  // The slots hold statistics (ParseCounters); the records of columns begin behind them.
  reader.MoveTo(layout.header.size + counts.realIndexes * layout.indexSlot.size);
  for (std::size_t i = 0; i < counts.columns; ++i) {
    definition.columns.push_back(ReadColumn(reader.Record(layout.column.size, "a column"), layout.column));
  }
  // All records come before all names, in the same order.
  for (ColumnDefinition& column : definition.columns) column.name = ReadName(reader, layout, version, "a column name");
  for (std::size_t i = 0; i < counts.realIndexes; ++i) {
    definition.realIndexes.push_back(ReadRealIndex(reader.Record(layout.realIndex.size, "an index"), layout.realIndex));
  }
  for (std::size_t i = 0; i < counts.logicalIndexes; ++i) {
    definition.logicalIndexes.push_back(
        ReadLogicalIndex(reader.Record(layout.logicalIndex.size, "a named index"), layout.logicalIndex));
  }
  for (LogicalIndexDefinition& index : definition.logicalIndexes) {
    index.name = ReadName(reader, layout, version, "an index name");
  }
  definition.longValueMaps = ReadLongValueMaps(reader);
  CheckColumns(reader, definition);
  CheckIndexes(reader, definition);
  return definition;
}

// For a definition that is written anew and keeps its counters, hence only of Jet 4, which alone is written.
DefinitionCounters ParseCounters(std::span<const std::uint8_t> bytes, PageNumber page) {
  const DefinitionLayout& layout = Jet4DefinitionLayout();
  const DefinitionReader reader(bytes, page);
  DefinitionCounters counters;
  counters.rows = reader.U32(layout.header.rowCount, "the row count");
  counters.lastAutoNumber = static_cast<std::int32_t>(reader.U32(layout.header.lastAutonumber, "the last autonumber"));
  const std::size_t count = CheckedCount(reader, reader.U32(layout.header.realIndexCount, "the index count"),
                                         layout.indexSlot.size, "indexes");
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t slot = layout.header.size + i * layout.indexSlot.size;
    counters.indexes.push_back({reader.U32(slot + layout.indexSlot.entryCount, "an index slot"),
                                reader.U32(slot + layout.indexSlot.distinctCount, "an index slot")});
  }
  return counters;
}

}  // namespace tavi::access
