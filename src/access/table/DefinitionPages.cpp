#include <algorithm>
#include <span>
#include <string>

#include "access/file/EngineError.h"
#include "access/file/Format.h"
#include "access/file/PageAllocator.h"
#include "access/table/DefinitionBytes.h"
#include "access/table/FormatVersion.h"
#include "access/table/TableDefinition.h"

// A definition that is longer than a page goes on in further ones, linked from each to the next. It is always read and
// written whole: records and names lie across the borders of pages, and a change of one column moves all that is behind
// it. Only the counters that change with each row (rows, automatic number, statistics of indexes) are read and written
// in place; they lie on the first page always: the header has 63 bytes and a table at most 32 indexes with a slot of
// 12.

namespace tavi::access {

namespace {

namespace table = format::table;

// 255 columns and 32 indexes with the longest names take 14 pages (Jet 4), 28 (Jet 3). More are links in a circle, or
// lead astray.
constexpr std::size_t kMaximumPages = 64;

const DefinitionLayout& LayoutOf(const Pager& pager) {
  return pager.IsJet3() ? Jet3DefinitionLayout() : Jet4DefinitionLayout();
}

// The first page whole, of the others what lies behind the page header, so that all offsets count from the start of the
// first page.
std::vector<std::uint8_t> ReadBytes(Pager& pager, const std::vector<PageNumber>& pages) {
  const std::size_t pageSize = LayoutOf(pager).pageSize;
  std::vector<std::uint8_t> bytes;
  for (const PageNumber number : pages) {
    const std::size_t skipped = number == pages.front() ? 0 : table::kPageHeaderSize;
    const PageHandle page = pager.Read(number);
    const auto part = page->Slice(skipped, pageSize - skipped);
    bytes.insert(bytes.end(), part.begin(), part.end());
  }
  return bytes;
}

bool IsDefinitionPage(Pager& pager, PageNumber page) {
  return pager.Read(page)->U8(format::kPageTypeOffset) == format::page_type::kTableDefinition;
}

// Jet 4 only, as nothing else is written.
std::size_t PagesNeeded(std::size_t length) {
  constexpr std::size_t kPerFurtherPage = kPageSize - table::kPageHeaderSize;
  return length <= kPageSize ? 1 : 1 + (length - kPageSize + kPerFurtherPage - 1) / kPerFurtherPage;
}

// Makes the list as long as it must be, with pages taken from the file or given back to it. A page that goes gets the
// type that Access gives it, so that nobody who still has its number takes it for a definition.
void FitPages(Pager& pager, std::vector<PageNumber>& pages, std::size_t needed) {
  PageAllocator allocator(pager);
  while (pages.size() < needed) pages.push_back(allocator.Allocate().Number());
  while (pages.size() > needed) {
    pager.Write(pages.back()).SetU8(format::kPageTypeOffset, format::page_type::kDroppedTableDefinition);
    allocator.Free(pages.back());
    pages.pop_back();
  }
}

void WriteBytes(Pager& pager, const std::vector<PageNumber>& pages, std::span<const std::uint8_t> bytes) {
  for (std::size_t i = 0; i < pages.size(); ++i) {
    const std::size_t begin = i == 0 ? 0 : table::kPageHeaderSize;
    const std::size_t length = std::min(bytes.size(), kPageSize - begin);
    // The free bytes are stated without a reserve of 8, as Access does; never less than 0.
    const std::size_t unused = kPageSize - begin - length;
    Page& page = pager.Write(pages[i]);
    // What a longer definition left behind it must not stay: names of dropped columns, say.
    page.Fill(0, kPageSize, 0);
    page.Put(begin, bytes.first(length));
    page.SetU8(format::kPageTypeOffset, format::page_type::kTableDefinition);
    page.SetU8(format::kPageMarkOffset, format::kPageMark);
    page.SetU16(table::kFreeBytesOffset,
                static_cast<std::uint16_t>(unused - std::min(unused, table::kFreeBytesReserve)));
    page.SetU32(table::kNextPageOffset, i + 1 < pages.size() ? pages[i + 1] : 0);
    bytes = bytes.subspan(length);
  }
}

std::size_t SlotOffset(const DefinitionLayout& layout, const TableDefinition& definition, std::size_t realIndex) {
  // A definition that was read before somebody dropped the index.
  if (realIndex >= definition.realIndexes.size()) {
    RaiseFailure("The table definition on page " + std::to_string(definition.page) + " has no index number " +
                 std::to_string(realIndex) + ".");
  }
  return layout.header.size + realIndex * layout.indexSlot.size;
}

}  // namespace

// The type of each page is checked before it is believed: a freed page keeps its content, the link to the next one
// included.
std::vector<PageNumber> TableDefinitionPages(Pager& pager, PageNumber page) {
  std::vector<PageNumber> pages;
  for (PageNumber next = page; pages.empty() || next != 0;) {
    if (pages.size() == kMaximumPages || std::ranges::find(pages, next) != pages.end()) {
      RaiseDamage("the pages of the table definition on page " + std::to_string(page) + " are linked in a circle.");
    }
    if (next == 0 || next >= pager.PageCount() || !IsDefinitionPage(pager, next)) {
      RaiseDamage("page " + std::to_string(next) + ", which the table definition on page " + std::to_string(page) +
                  " needs, is no page of a table definition.");
    }
    pages.push_back(next);
    next = pager.Read(next)->U32(table::kNextPageOffset);
  }
  return pages;
}

TableDefinition ReadTableDefinition(Pager& pager, PageNumber page) {
  return ParseTableDefinition(ReadBytes(pager, TableDefinitionPages(pager, page)), page, FormatVersionOf(pager));
}

void WriteTableDefinition(Pager& pager, const TableDefinition& definition, bool keepCounters) {
  std::vector<PageNumber> pages = {definition.page};
  DefinitionCounters counters;
  if (IsDefinitionPage(pager, definition.page)) {
    pages = TableDefinitionPages(pager, definition.page);
    if (keepCounters) counters = ParseCounters(ReadBytes(pager, pages), definition.page);
  }
  const std::vector<std::uint8_t> bytes = SerializeTableDefinition(definition, counters);
  FitPages(pager, pages, PagesNeeded(bytes.size()));
  WriteBytes(pager, pages, bytes);
}

std::uint32_t RowCount(Pager& pager, const TableDefinition& definition) {
  return pager.Read(definition.page)->U32(LayoutOf(pager).header.rowCount);
}

void SetRowCount(Pager& pager, const TableDefinition& definition, std::uint32_t count) {
  pager.Write(definition.page).SetU32(table::kRowCountOffset, count);
}

std::int32_t LastAutoNumber(Pager& pager, const TableDefinition& definition) {
  return static_cast<std::int32_t>(pager.Read(definition.page)->U32(LayoutOf(pager).header.lastAutonumber));
}

void SetLastAutoNumber(Pager& pager, const TableDefinition& definition, std::int32_t value) {
  pager.Write(definition.page).SetU32(table::kLastAutonumberOffset, static_cast<std::uint32_t>(value));
}

IndexStatistics ReadIndexStatistics(Pager& pager, const TableDefinition& definition, std::size_t realIndex) {
  const DefinitionLayout& layout = LayoutOf(pager);
  const std::size_t slot = SlotOffset(layout, definition, realIndex);
  const PageHandle page = pager.Read(definition.page);
  return {page->U32(slot + layout.indexSlot.entryCount), page->U32(slot + layout.indexSlot.distinctCount)};
}

void WriteIndexStatistics(Pager& pager, const TableDefinition& definition, std::size_t realIndex,
                          const IndexStatistics& statistics) {
  const DefinitionLayout& layout = Jet4DefinitionLayout();
  const std::size_t slot = SlotOffset(layout, definition, realIndex);
  Page& page = pager.Write(definition.page);
  page.SetU32(slot + layout.indexSlot.entryCount, statistics.entries);
  page.SetU32(slot + layout.indexSlot.distinctCount, statistics.distinctKeys);
}

}  // namespace tavi::access
