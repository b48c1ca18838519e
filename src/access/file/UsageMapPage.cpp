#include <algorithm>
#include <bit>
#include <string>

#include "access/file/EngineError.h"
#include "access/file/Format.h"
#include "access/file/UsageMap.h"

// Rows of usage-map pages. They look like data pages, but their rows are changed where they lie and never move to other
// pages, as definitions and index records name them by page and row. A deleted row keeps its bytes and is used again
// for the next map: so the pages that hold maps do not multiply when tables are made and dropped.
//
// Places are checked here, and only here: every bit that is read or written comes from a row whose offset and length
// lie on its page.

namespace tavi::access {

namespace {

namespace data = format::data;
namespace usage = format::usage;

// Jet 3 differs in the size of pages and the places on them; its maps are only read.
constexpr MapLayout kJet4Layout = {kPageSize, data::kRowCountOffset, data::kRowDirectoryOffset, usage::kBitmapSize,
                                   usage::kPagesPerBitmap};
constexpr MapLayout kJet3Layout = {format::jet3::kPageSize, format::jet3::data::kRowCountOffset,
                                   format::jet3::data::kRowDirectoryOffset, format::jet3::usage::kBitmapSize,
                                   format::jet3::usage::kPagesPerBitmap};

std::string NameOf(PageNumber page, std::uint8_t row) {
  return "the usage map in row " + std::to_string(row) + " of page " + std::to_string(page);
}

std::uint16_t Entry(const Page& page, std::size_t row, const MapLayout& layout) {
  return page.U16(layout.rowDirectoryOffset + row * data::kRowEntrySize);
}

/// Only Jet 4 pages are written.
void SetEntry(Page& page, std::size_t row, std::size_t offset, unsigned flags) {
  page.SetU16(data::kRowDirectoryOffset + row * data::kRowEntrySize, static_cast<std::uint16_t>(offset | flags));
}

std::size_t OffsetIn(std::uint16_t entry) {
  return entry & data::kRowOffsetMask;
}
unsigned FlagsIn(std::uint16_t entry) {
  return entry & data::kRowFlagsMask;
}

/// A row number is one byte, so more rows than 255 are damage; offsets of rows that are not there would be read as
/// such.
std::size_t CountRows(const Page& page) {
  const std::size_t count = page.U16(data::kRowCountOffset);
  if (count > data::kMaximumRowCount) {
    RaiseDamage("page " + std::to_string(page.Number()) + " is said to have " + std::to_string(count) + " rows.");
  }
  return count;
}

std::size_t LowestOffset(const Page& page) {
  const std::size_t count = CountRows(page);
  return count == 0 ? kPageSize : OffsetIn(Entry(page, count - 1, kJet4Layout));
}

void SetFreeBytes(Page& page) {
  page.SetU16(data::kFreeBytesOffset, static_cast<std::uint16_t>(FreeBytesOfMapPage(page)));
}

/// Start and length of a row, without regard to its flags. It ends where the row before it begins, and must not lie in
/// the directory, of which the entries up to its own are counted.
MapRow Extent(const Page& page, std::size_t row, const MapLayout& layout) {
  const std::size_t offset = OffsetIn(Entry(page, row, layout));
  const std::size_t end = row == 0 ? layout.pageSize : OffsetIn(Entry(page, row - 1, layout));
  const std::size_t directoryEnd = layout.rowDirectoryOffset + (row + 1) * data::kRowEntrySize;
  if (offset > end || end > layout.pageSize || offset < directoryEnd) {
    RaiseDamage(NameOf(page.Number(), static_cast<std::uint8_t>(row)) + " lies at bytes " + std::to_string(offset) +
                " to " + std::to_string(end) + ", which is no place for it.");
  }
  return {offset, end - offset};
}

/// A deleted row whose bytes are still there, to be used again; nothing when there is none. Other programs may have
/// reclaimed them.
std::optional<std::uint8_t> FindDeletedRow(const Page& page) {
  const std::size_t count = CountRows(page);
  for (std::size_t row = 0; row < count; ++row) {
    if (FlagsIn(Entry(page, row, kJet4Layout)) != data::kRowDeleted) continue;
    if (Extent(page, row, kJet4Layout).length >= usage::kRowSize) return static_cast<std::uint8_t>(row);
  }
  return std::nullopt;
}

}  // namespace

const MapLayout& MapLayoutOf(const Pager& pager) {
  return pager.IsJet3() ? kJet3Layout : kJet4Layout;
}

std::size_t MapRow::BitmapSize() const {
  return length - usage::kInlineBitmapOffset;
}

std::uint32_t MapRow::ReferenceCount() const {
  return static_cast<std::uint32_t>((length - usage::kReferencesOffset) / usage::kReferenceSize);
}

std::size_t MapRow::ReferenceOffset(std::uint32_t index) const {
  return offset + usage::kReferencesOffset + index * usage::kReferenceSize;
}

// At least one byte of bitmap, so that its size never wraps below zero.
MapRow FindMapRow(const Page& page, std::uint8_t row, const MapLayout& layout) {
  const std::size_t count = page.U16(layout.rowCountOffset);
  if (page.U8(format::kPageTypeOffset) != format::page_type::kData || row >= count) {
    RaiseDamage(NameOf(page.Number(), row) + " is not there; the page has type " +
                std::to_string(page.U8(format::kPageTypeOffset)) + " and " + std::to_string(count) + " rows.");
  }
  const MapRow place = Extent(page, row, layout);
  if (FlagsIn(Entry(page, row, layout)) != data::kRowNormal || place.length <= usage::kInlineBitmapOffset) {
    RaiseDamage(NameOf(page.Number(), row) + " is deleted or too short (" + std::to_string(place.length) + " bytes).");
  }
  return place;
}

std::uint8_t KindOfMap(const Page& page, std::uint8_t row, const MapRow& place) {
  const std::uint8_t kind = page.U8(place.offset + usage::kKindOffset);
  if (kind != usage::kKindInline && kind != usage::kKindReference) {
    RaiseDamage(NameOf(page.Number(), row) + " has the unknown kind " + std::to_string(kind) + ".");
  }
  return kind;
}

// An inline map reaches from its start page as far as its bits go; a reference map wherever it has a bitmap page. The
// place is given, not the bit, so that the same search serves for reading and for writing.
std::optional<BitPlace> LocateBit(Pager& pager, RowPointer map, PageNumber number) {
  const MapLayout& layout = MapLayoutOf(pager);
  const PageHandle page = pager.Read(map.page);
  const MapRow place = FindMapRow(*page, map.row, layout);
  // The same counting for both kinds: bits from the least significant one up.
  const auto bitPlace = [](PageNumber holder, std::size_t bitmapOffset, std::size_t bit) {
    return BitPlace{holder, bitmapOffset + bit / format::kBitsPerByte,
                    static_cast<std::uint8_t>(1U << (bit % format::kBitsPerByte))};
  };
  if (KindOfMap(*page, map.row, place) == usage::kKindInline) {
    const PageNumber start = page->U32(place.offset + usage::kInlineStartOffset);
    if (number < start || number - start >= place.BitmapSize() * format::kBitsPerByte) return std::nullopt;
    return bitPlace(map.page, place.offset + usage::kInlineBitmapOffset, number - start);
  }
  const std::uint32_t index = number / layout.pagesPerBitmap;
  if (index >= place.ReferenceCount()) return std::nullopt;
  const PageNumber bitmapPage = page->U32(place.ReferenceOffset(index));
  if (bitmapPage == 0) return std::nullopt;
  // Read for its check: whoever sets the bit writes to the page that the row names.
  static_cast<void>(ReadBitmapPage(pager, map, bitmapPage));
  return bitPlace(bitmapPage, usage::kBitmapOffset, number % layout.pagesPerBitmap);
}

PageHandle ReadBitmapPage(Pager& pager, RowPointer map, PageNumber number) {
  PageHandle page = pager.Read(number);
  if (page->U8(format::kPageTypeOffset) != format::page_type::kUsageBitmap) {
    RaiseDamage(NameOf(map.page, map.row) + " refers to page " + std::to_string(number) +
                ", which is no bitmap page (its type is " + std::to_string(page->U8(format::kPageTypeOffset)) + ").");
  }
  return page;
}

std::optional<PageNumber> FirstMember(std::span<const std::uint8_t> bitmap, std::uint64_t start, std::uint64_t from,
                                      std::uint64_t limit) {
  // In 64 bits, as a start page near the largest number plus the bitmap's bits has more than 32.
  const std::uint64_t end = std::min(limit, start + bitmap.size() * format::kBitsPerByte);
  for (std::uint64_t number = std::max(from, start); number < end;) {
    const auto index = static_cast<std::size_t>((number - start) / format::kBitsPerByte);
    // A byte at a time: bytes of 0 are passed over, in others the lowest bit that is left is the member.
    const auto rest = static_cast<std::uint8_t>(bitmap[index] >> ((number - start) % format::kBitsPerByte));
    if (rest != 0) {
      number += static_cast<std::uint64_t>(std::countr_zero(rest));
      if (number >= end) return std::nullopt;
      return static_cast<PageNumber>(number);
    }
    number = start + (std::uint64_t{index} + 1) * format::kBitsPerByte;
  }
  return std::nullopt;
}

std::size_t FreeBytesOfMapPage(const Page& page) {
  const std::size_t directoryEnd = data::kRowDirectoryOffset + CountRows(page) * data::kRowEntrySize;
  const std::size_t lowest = LowestOffset(page);
  return lowest > directoryEnd ? lowest - directoryEnd : 0;
}

void MakeMapPage(Page& page) {
  page.Fill(0, kPageSize, 0);
  page.SetU8(format::kPageTypeOffset, format::page_type::kData);
  page.SetU8(format::kPageMarkOffset, format::kPageMark);
  page.SetU32(data::kOwnerOffset, data::kOwnerUsageMaps);
  SetFreeBytes(page);
}

// Asked of any page that is near, so everything is looked at that makes it a usable map page; page 1 has another owner.
bool TakesMapRow(const Page& page) {
  if (page.U8(format::kPageTypeOffset) != format::page_type::kData) return false;
  if (page.U32(data::kOwnerOffset) != data::kOwnerUsageMaps) return false;
  const std::size_t count = page.U16(data::kRowCountOffset);
  if (count > data::kMaximumRowCount) return false;
  const bool hasRoom =
      count < data::kMaximumRowCount && FreeBytesOfMapPage(page) >= usage::kRowSize + data::kRowEntrySize;
  return hasRoom || FindDeletedRow(page).has_value();
}

// An empty inline map is all zeros: kind 0, start 0, no bits.
std::uint8_t AddMapRow(Page& page) {
  if (const std::optional<std::uint8_t> deleted = FindDeletedRow(page)) {
    const MapRow place = Extent(page, *deleted, kJet4Layout);
    page.Fill(place.offset, place.length, 0);
    SetEntry(page, *deleted, place.offset, data::kRowNormal);
    return *deleted;
  }
  const std::size_t count = CountRows(page);
  const std::size_t offset = LowestOffset(page) - usage::kRowSize;
  page.Fill(offset, usage::kRowSize, 0);
  SetEntry(page, count, offset, data::kRowNormal);
  page.SetU16(data::kRowCountOffset, static_cast<std::uint16_t>(count + 1));
  SetFreeBytes(page);
  return static_cast<std::uint8_t>(count);
}

// The row and all below it move down by so many bytes, and the new ones appear at the end of the row, behind its last
// bits. Rows that are not there where their entries say would be torn; they are damage.
void LengthenMapRow(Page& page, std::uint8_t row, std::size_t bytes, std::uint8_t fill) {
  const std::size_t count = CountRows(page);
  const MapRow place = FindMapRow(page, row, kJet4Layout);
  if (FreeBytesOfMapPage(page) < bytes) RaiseFailure(NameOf(page.Number(), row) + " cannot be made longer.");
  const std::size_t lowest = LowestOffset(page);
  if (lowest > place.offset) RaiseDamage(NameOf(page.Number(), row) + " lies below the last row of its page.");
  page.Put(lowest - bytes, page.Slice(lowest, place.End() - lowest));
  page.Fill(place.End() - bytes, bytes, fill);
  for (std::size_t moved = row; moved < count; ++moved) {
    const std::uint16_t entry = Entry(page, moved, kJet4Layout);
    if (OffsetIn(entry) < bytes) RaiseDamage(NameOf(page.Number(), row) + " shares its page with a row at no place.");
    SetEntry(page, moved, OffsetIn(entry) - bytes, FlagsIn(entry));
  }
  SetFreeBytes(page);
}

// Only the flags change. The free bytes stay as they are: bytes of deleted rows do not count as free.
void DeleteMapRow(Page& page, std::uint8_t row) {
  const MapRow place = FindMapRow(page, row, kJet4Layout);
  SetEntry(page, row, place.offset, data::kRowDeleted);
}

// Such a page can be given back: nobody names a row of it any more.
bool HasOnlyDeletedRows(const Page& page) {
  for (std::size_t row = 0; row < CountRows(page); ++row) {
    if (FlagsIn(Entry(page, row, kJet4Layout)) != data::kRowDeleted) return false;
  }
  return true;
}

}  // namespace tavi::access
