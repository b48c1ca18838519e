// Writing table definitions, and the counters in them.

#include <algorithm>

#include "access/file/EngineError.h"
#include "access/file/Format.h"
#include "access/file/UsageMap.h"
#include "access/table/ByteBuffer.h"
#include "access/table/DefinitionBytes.h"
#include "access/table/TextEncoding.h"

namespace tavi::access {
namespace {

namespace t = format::table;

void AppendColumn(ByteWriter& out, const ColumnDefinition& column) {
  namespace c = format::column;
  const std::size_t at = out.Size();
  out.AppendZeros(c::kSize);
  out.Put(at + c::kTypeOffset, static_cast<std::uint8_t>(column.type));
  out.Put(at + c::kConstantOffset, t::kConstant);
  out.Put(at + c::kIdOffset, column.id);
  out.Put(at + c::kVariableIndexOffset, column.variableIndex);
  out.Put(at + c::kOrdinalOffset, column.ordinal);
  if (column.type == ColumnType::Numeric) {
    out.Put(at + c::kPrecisionOffset, column.precision);
    out.Put(at + c::kScaleOffset, column.scale);
  } else {
    out.Put(at + c::kSortOrderOffset, column.sortOrder);
    out.Put(at + c::kSortOrderOffset + 3, column.sortVersion);
  }
  out.Put(at + c::kFlagsOffset, column.flags);
  out.Put(at + c::kExtendedFlagsOffset, column.extendedFlags);
  out.Put(at + c::kFixedOffsetOffset, column.IsFixed() ? column.fixedOffset : std::uint16_t{0});
  out.Put(at + c::kLengthOffset, column.length);
}

void AppendName(ByteWriter& out, const std::string& name) {
  const std::vector<std::uint8_t> bytes = EncodePlainText(name);
  out.Append(static_cast<std::uint16_t>(bytes.size()));
  out.AppendBytes(bytes);
}

void AppendRealIndex(ByteWriter& out, const RealIndexDefinition& index) {
  namespace r = format::real_index;
  const std::size_t at = out.Size();
  out.AppendZeros(r::kSize);
  out.Put(at, r::kConstant);
  for (std::size_t i = 0; i < r::kMaximumColumnCount; ++i) {
    const std::size_t place = at + r::kColumnsOffset + i * r::kColumnSize;
    if (i >= index.columns.size()) {
      out.Put(place, r::kNoColumn);
      continue;
    }
    out.Put(place, index.columns[i].columnId);
    out.Put(place + r::kColumnOrderOffset, index.columns[i].ascending ? r::kAscending : r::kDescending);
  }
  out.Put(at + r::kUsageMapOffset, index.ownedPages.Packed());
  out.Put(at + r::kRootPageOffset, index.root);
  out.Put(at + r::kFlagsOffset, index.flags);
}

void AppendLogicalIndex(ByteWriter& out, const LogicalIndexDefinition& index) {
  namespace l = format::logical_index;
  const std::size_t at = out.Size();
  out.AppendZeros(l::kSize);
  out.Put(at + l::kConstantOffset, t::kConstant);
  out.Put(at + l::kNumberOffset, index.number);
  out.Put(at + l::kRealIndexOffset, index.realIndex);
  out.Put(at + l::kSideOffset, static_cast<std::uint8_t>(index.side));
  out.Put(at + l::kPartnerOffset, index.partnerNumber);
  out.Put(at + l::kOtherTableOffset, index.partnerTable);
  out.Put(at + l::kCascadeUpdatesOffset, index.cascadeUpdates);
  out.Put(at + l::kCascadeDeletesOffset, index.cascadeDeletes);
  out.Put(at + l::kTypeOffset, static_cast<std::uint8_t>(index.kind));
}

/// How many pages a definition of so many bytes takes.
std::size_t PagesFor(std::size_t length) {
  if (length <= kPageSize) return 1;
  const std::size_t more = kPageSize - t::kPageHeaderSize;
  return 1 + (length - kPageSize + more - 1) / more;
}

/// The counters that rows change, carried over to a definition's new bytes.
void KeepCounters(Pager& pager, const TableDefinition& definition, std::vector<std::uint8_t>& bytes) {
  const std::vector<std::uint8_t> old = ReadDefinitionBytes(pager, definition.page);
  const auto copy = [&](std::size_t offset, std::size_t length) {
    std::copy_n(old.begin() + static_cast<std::ptrdiff_t>(offset), length,
                bytes.begin() + static_cast<std::ptrdiff_t>(offset));
  };
  copy(t::kRowCountOffset, 4);
  copy(t::kLastAutonumberOffset, 4);
  const auto oldSlots = GetLittle<std::uint32_t>(old, t::kRealIndexCountOffset);
  const std::size_t slots = std::min<std::size_t>(oldSlots, definition.realIndexes.size());
  copy(t::kHeaderSize, std::min(slots * format::index_slot::kSize, old.size() - t::kHeaderSize));
}

/// The pages that the new bytes go to: those of the old definition, more or fewer.
std::vector<PageNumber> PagesToWrite(Pager& pager, PageNumber first, std::size_t count) {
  const bool exists = pager.Read(first)->U8(format::kPageTypeOffset) == format::page_type::kTableDefinition;
  std::vector<PageNumber> pages = exists ? TableDefinitionPages(pager, first) : std::vector<PageNumber>{first};
  PageAllocator allocator(pager);
  while (pages.size() < count) pages.push_back(allocator.Allocate().Number());
  while (pages.size() > count) {
    allocator.Free(pages.back());
    pages.pop_back();
  }
  return pages;
}

/// Where a counter of the definition lies: its page and the offset in that page.
std::pair<PageNumber, std::size_t> Locate(Pager& pager, const TableDefinition& definition, std::size_t offset) {
  if (offset < kPageSize) return {definition.page, offset};
  const std::size_t more = kPageSize - t::kPageHeaderSize;
  const std::size_t beyond = offset - kPageSize;
  const std::vector<PageNumber> pages = TableDefinitionPages(pager, definition.page);
  return {pages.at(1 + beyond / more), t::kPageHeaderSize + beyond % more};
}

std::uint32_t ReadCounter(Pager& pager, const TableDefinition& definition, std::size_t offset) {
  const auto [page, place] = Locate(pager, definition, offset);
  return pager.Read(page)->U32(place);
}

void WriteCounter(Pager& pager, const TableDefinition& definition, std::size_t offset, std::uint32_t value) {
  const auto [page, place] = Locate(pager, definition, offset);
  if (pager.Read(page)->U32(place) != value) pager.Write(page).SetU32(place, value);
}

}  // namespace

std::vector<std::uint8_t> SerializeTableDefinition(const TableDefinition& definition) {
  ByteWriter out;
  out.AppendZeros(t::kHeaderSize);
  out.Put(format::kPageTypeOffset, format::page_type::kTableDefinition);
  out.Put(format::kPageMarkOffset, format::kPageMark);
  out.Put(t::kConstantOffset, t::kConstant);
  out.Put(t::kAutonumberIncrementOffset, std::uint32_t{1});
  out.Put(t::kTypeOffset, definition.isSystem ? t::kTypeSystem : t::kTypeUser);
  out.Put(t::kColumnIdCounterOffset, definition.columnIdCounter);
  out.Put(t::kVariableCountOffset, definition.variableColumnCounter);
  out.Put(t::kColumnCountOffset, static_cast<std::uint16_t>(definition.columns.size()));
  out.Put(t::kLogicalIndexCountOffset, static_cast<std::uint32_t>(definition.logicalIndexes.size()));
  out.Put(t::kRealIndexCountOffset, static_cast<std::uint32_t>(definition.realIndexes.size()));
  out.Put(t::kOwnedPagesOffset, definition.ownedPages.Packed());
  out.Put(t::kFreeSpacePagesOffset, definition.freeSpacePages.Packed());
  out.AppendZeros(definition.realIndexes.size() * format::index_slot::kSize);
  for (const ColumnDefinition& column : definition.columns) AppendColumn(out, column);
  for (const ColumnDefinition& column : definition.columns) AppendName(out, column.name);
  for (const RealIndexDefinition& index : definition.realIndexes) AppendRealIndex(out, index);
  for (const LogicalIndexDefinition& index : definition.logicalIndexes) AppendLogicalIndex(out, index);
  for (const LogicalIndexDefinition& index : definition.logicalIndexes) AppendName(out, index.name);
  for (const LongValueMaps& maps : definition.longValueMaps) {
    out.Append(maps.columnId);
    out.Append(maps.ownedPages.Packed());
    out.Append(maps.freeSpacePages.Packed());
  }
  out.Append(t::kTerminator);
  out.Put(t::kLengthOffset, static_cast<std::uint32_t>(out.Size()));
  return std::move(out.Bytes());
}

void WriteTableDefinition(Pager& pager, const TableDefinition& definition, bool keepCounters) {
  std::vector<std::uint8_t> bytes = SerializeTableDefinition(definition);
  if (keepCounters) KeepCounters(pager, definition, bytes);
  const std::vector<PageNumber> pages = PagesToWrite(pager, definition.page, PagesFor(bytes.size()));
  std::span<const std::uint8_t> rest(bytes);
  for (std::size_t i = 0; i < pages.size(); ++i) {
    Page& page = pager.Write(pages[i]);
    const std::size_t start = i == 0 ? 0 : t::kPageHeaderSize;
    const std::size_t length = std::min(rest.size(), kPageSize - start);
    page.Fill(0, kPageSize, 0);
    page.Put(start, rest.first(length));
    page.SetU8(format::kPageTypeOffset, format::page_type::kTableDefinition);
    page.SetU8(format::kPageMarkOffset, format::kPageMark);
    const std::size_t unused = kPageSize - start - length;
    page.SetU16(t::kFreeBytesOffset,
                static_cast<std::uint16_t>(unused > t::kFreeBytesReserve ? unused - t::kFreeBytesReserve : 0));
    page.SetU32(t::kNextPageOffset, i + 1 < pages.size() ? pages[i + 1] : 0);
    rest = rest.subspan(length);
  }
}

std::uint32_t RowCount(Pager& pager, const TableDefinition& definition) {
  return ReadCounter(pager, definition, t::kRowCountOffset);
}

void SetRowCount(Pager& pager, const TableDefinition& definition, std::uint32_t count) {
  WriteCounter(pager, definition, t::kRowCountOffset, count);
}

std::int32_t LastAutoNumber(Pager& pager, const TableDefinition& definition) {
  return static_cast<std::int32_t>(ReadCounter(pager, definition, t::kLastAutonumberOffset));
}

void SetLastAutoNumber(Pager& pager, const TableDefinition& definition, std::int32_t value) {
  WriteCounter(pager, definition, t::kLastAutonumberOffset, static_cast<std::uint32_t>(value));
}

IndexStatistics ReadIndexStatistics(Pager& pager, const TableDefinition& definition, std::size_t realIndex) {
  const std::size_t slot = t::kHeaderSize + realIndex * format::index_slot::kSize;
  return {ReadCounter(pager, definition, slot + format::index_slot::kEntryCountOffset),
          ReadCounter(pager, definition, slot + format::index_slot::kDistinctCountOffset)};
}

void WriteIndexStatistics(Pager& pager, const TableDefinition& definition, std::size_t realIndex,
                          const IndexStatistics& statistics) {
  const std::size_t slot = t::kHeaderSize + realIndex * format::index_slot::kSize;
  WriteCounter(pager, definition, slot + format::index_slot::kEntryCountOffset, statistics.entries);
  WriteCounter(pager, definition, slot + format::index_slot::kDistinctCountOffset, statistics.distinctKeys);
}

}  // namespace tavi::access
