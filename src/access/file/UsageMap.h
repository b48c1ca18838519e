#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "access/file/Page.h"
#include "access/file/PageAllocator.h"
#include "access/file/Pager.h"

namespace tavi::access {

// The rows of usage-map pages, byte by byte; UsageMap and PageAllocator give them their meaning.
//
// A usage-map page is a data page with owner 0 (page 1: owner 1). Its rows are packed from the end of the page
// downwards, each a usage map:
//   inline     +0 kind 0 [1], +1 start page [4], +5 bitmap: bit k (least significant first) = page start + k
//   reference  +0 kind 1 [1], +1 + 4 k page number of bitmap page k [4], 0 = no such page
// A bitmap page is 05 01 00 00 and then the bits; bitmap page k covers the pages k x 32736 ...
//
// Example, page 1 of a file of 16 pages:
//   0000  01 01 64 0f 01 00 00 00 00 00 00 00 02 00 bb 0f 76 0f    free 0x0F64, owner 1, 2 rows at 0x0FBB and 0x0F76
//   0fbb  00 00 00 00 00 00 00 ff ff ff ...                        row 0: inline, start 0, pages 16-511 are members

/// Where things lie on the map pages of this file's version.
struct MapLayout {
  std::size_t pageSize;
  std::size_t rowCountOffset;
  std::size_t rowDirectoryOffset;
  std::size_t bitmapSize;
  std::uint32_t pagesPerBitmap;
};
[[nodiscard]] const MapLayout& MapLayoutOf(const Pager& pager);

/// A usage map's row on its page.
struct MapRow {
  std::size_t offset = 0;  // of its first byte
  std::size_t length = 0;  // bytes

  [[nodiscard]] std::size_t End() const { return offset + length; }
  [[nodiscard]] std::size_t BitmapSize() const;        // inline: bytes of bitmap
  [[nodiscard]] std::uint32_t ReferenceCount() const;  // reference: how many bitmap pages it can name
  [[nodiscard]] std::size_t ReferenceOffset(std::uint32_t index) const;
};

/// Finds a row. Raises ProviderFailure that names page and row when there is no usable row of that number.
[[nodiscard]] MapRow FindMapRow(const Page& page, std::uint8_t row, const MapLayout& layout);
/// The kind of a map (format::usage); raises ProviderFailure for an unknown one.
[[nodiscard]] std::uint8_t KindOfMap(const Page& page, std::uint8_t row, const MapRow& place);

/// Where the bit of a page number lies.
struct BitPlace {
  PageNumber page = 0;
  std::size_t offset = 0;
  std::uint8_t mask = 0;
};
/// The bit of `number` in the map at `map`; nothing where the map does not reach.
[[nodiscard]] std::optional<BitPlace> LocateBit(Pager& pager, RowPointer map, PageNumber number);
/// Reads a bitmap page of a reference map and checks that it is one.
[[nodiscard]] PageHandle ReadBitmapPage(Pager& pager, RowPointer map, PageNumber number);

/// First page number >= `from` and < `limit` whose bit is set in a bitmap that begins with page `start`.
[[nodiscard]] std::optional<PageNumber> FirstMember(std::span<const std::uint8_t> bitmap, std::uint64_t start,
                                                    std::uint64_t from, std::uint64_t limit);

// Changing usage-map pages (Jet 4 only). The free-byte field is kept exact.

/// Bytes that are free on the page, as counted from its rows.
[[nodiscard]] std::size_t FreeBytesOfMapPage(const Page& page);
void MakeMapPage(Page& page);
/// True for a usage-map page (not page 1) that has room for a fresh row, or a deleted one to use again.
[[nodiscard]] bool TakesMapRow(const Page& page);
/// Adds an empty inline map to a page that TakesMapRow; returns its row number.
[[nodiscard]] std::uint8_t AddMapRow(Page& page);
/// Makes a row longer; the new bytes at its end are `fill`, the rows below it slide down. The page must have room.
void LengthenMapRow(Page& page, std::uint8_t row, std::size_t bytes, std::uint8_t fill);
void DeleteMapRow(Page& page, std::uint8_t row);
/// True when all rows of the page are deleted.
[[nodiscard]] bool HasOnlyDeletedRows(const Page& page);

/// A set of page numbers, stored as one row of a usage-map page (inline bitmap, or references to bitmap pages). Holds
/// no state of its own: every call reads and changes the pages of the current statement. A default-made or "none" map
/// is empty and takes no pages. Damage of the map raises ProviderFailure that names its page and row.
class UsageMap {
 public:
  UsageMap(Pager& pager, RowPointer row) : pager_(&pager), row_(row) {}

  [[nodiscard]] bool Contains(PageNumber page) const;
  /// The smallest member that is >= `from`; nothing when there is none. Members past the end of the file are left out.
  [[nodiscard]] std::optional<PageNumber> Next(PageNumber from) const;
  /// All members in ascending order (those past the end of the file left out).
  [[nodiscard]] std::vector<PageNumber> Pages() const;
  /// Adds a page. Where the map does not reach it, its start is moved, else the row is made longer, else the map
  /// becomes a reference map (the first that is possible); bitmap pages come from PageAllocator.
  void Add(PageNumber page);
  /// Takes a page out; does nothing when it is not a member.
  void Remove(PageNumber page);
  /// The pages that hold the bitmap of a reference map (empty for an inline map).
  [[nodiscard]] std::vector<PageNumber> BitmapPages() const;
  [[nodiscard]] RowPointer Row() const { return row_; }

 private:
  [[nodiscard]] std::vector<PageNumber> MembersBelow(std::uint64_t limit) const;
  void Reach(PageNumber page);
  [[nodiscard]] bool RewriteInline(PageNumber page);
  void ConvertToReferences();
  void AddBitmapPage(std::uint32_t index);
  void SetBit(PageNumber page, bool member);

  Pager* pager_;
  RowPointer row_;
};

}  // namespace tavi::access
