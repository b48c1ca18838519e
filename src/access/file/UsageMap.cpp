#include "access/file/UsageMap.h"

#include <algorithm>
#include <limits>
#include <string>

#include "access/file/EngineError.h"
#include "access/file/Format.h"

// A set of pages as Access stores it. Small tables have an inline map, one row of 69 bytes with 512 bits from a start
// page on; it is moved, then lengthened, then turned into references as pages come that it does not reach; all three
// are seen in files of Access. Nothing is kept in memory: each call finds its row and bit anew, which is two pages of
// the cache, so that a map is right after a rollback and after what others commit.
//
// Members past the end of the file are left out when pages are asked for: such bits stand in files of other programs,
// and mean nothing until the file is so long.

namespace tavi::access {

namespace {

namespace usage = format::usage;

constexpr std::uint64_t kEverywhere = std::numeric_limits<PageNumber>::max();

/// Calls visit(bitmap, first page) for each bitmap of the map from page `from` on, until it returns false. An inline
/// map is one bitmap, which is visited whatever `from` is. Bitmap pages that are not there stand for bits that are all
/// 0.
template <typename Visit>
void ForEachBitmap(Pager& pager, RowPointer map, PageNumber from, Visit visit) {
  if (map.IsNone()) return;
  const MapLayout& layout = MapLayoutOf(pager);
  const PageHandle page = pager.Read(map.page);
  const MapRow place = FindMapRow(*page, map.row, layout);
  if (KindOfMap(*page, map.row, place) == usage::kKindInline) {
    visit(page->Slice(place.offset + usage::kInlineBitmapOffset, place.BitmapSize()),
          std::uint64_t{page->U32(place.offset + usage::kInlineStartOffset)});
    return;
  }
  for (std::uint32_t index = from / layout.pagesPerBitmap; index < place.ReferenceCount(); ++index) {
    const PageNumber bitmapPage = page->U32(place.ReferenceOffset(index));
    if (bitmapPage == 0) continue;
    const PageHandle bitmap = ReadBitmapPage(pager, map, bitmapPage);
    const bool goOn =
        visit(bitmap->Slice(usage::kBitmapOffset, layout.bitmapSize), std::uint64_t{index} * layout.pagesPerBitmap);
    if (!goOn) return;
  }
}

}  // namespace

bool UsageMap::Contains(PageNumber page) const {
  if (row_.IsNone()) return false;
  // What the map does not reach is no member.
  const std::optional<BitPlace> place = LocateBit(*pager_, row_, page);
  return place && (pager_->Read(place->page)->U8(place->offset) & place->mask) != 0;
}

// Skips whole bitmap pages before `from`, so a walk over a large table looks at each only once.
std::optional<PageNumber> UsageMap::Next(PageNumber from) const {
  std::optional<PageNumber> found;
  const PageNumber limit = pager_->PageCount();
  ForEachBitmap(*pager_, row_, from, [&](std::span<const std::uint8_t> bitmap, std::uint64_t start) {
    found = FirstMember(bitmap, start, from, limit);
    return !found && start < limit;
  });
  return found;
}

std::vector<PageNumber> UsageMap::Pages() const {
  return MembersBelow(pager_->PageCount());
}

std::vector<PageNumber> UsageMap::MembersBelow(std::uint64_t limit) const {
  std::vector<PageNumber> members;
  ForEachBitmap(*pager_, row_, 0, [&](std::span<const std::uint8_t> bitmap, std::uint64_t start) {
    for (auto member = FirstMember(bitmap, start, 0, limit); member;
         member = FirstMember(bitmap, start, std::uint64_t{*member} + 1, limit)) {
      members.push_back(*member);
    }
    return start < limit;
  });
  return members;
}

std::vector<PageNumber> UsageMap::BitmapPages() const {
  std::vector<PageNumber> pages;
  if (row_.IsNone()) return pages;
  const PageHandle page = pager_->Read(row_.page);
  const MapRow place = FindMapRow(*page, row_.row, MapLayoutOf(*pager_));
  if (KindOfMap(*page, row_.row, place) == usage::kKindInline) return pages;
  for (std::uint32_t index = 0; index < place.ReferenceCount(); ++index) {
    const PageNumber number = page->U32(place.ReferenceOffset(index));
    if (number != 0) pages.push_back(number);
  }
  return pages;
}

void UsageMap::Add(PageNumber page) {
  if (row_.IsNone())
    RaiseFailure("Page " + std::to_string(page) + " was to be added to a usage map that is not there.");
  if (page >= format::kMaximumPageCount) {
    RaiseFailure("Page " + std::to_string(page) + " lies past the 2 GB that a database can have.");
  }
  // Nearly always the bit is there already.
  if (!LocateBit(*pager_, row_, page)) Reach(page);
  SetBit(page, true);
}

void UsageMap::Remove(PageNumber page) {
  if (Contains(page)) SetBit(page, false);
}

void UsageMap::SetBit(PageNumber page, bool member) {
  const std::optional<BitPlace> place = LocateBit(*pager_, row_, page);
  if (!place) RaiseDamage("a usage map does not reach page " + std::to_string(page) + ".");
  Page& target = pager_->Write(place->page);
  const unsigned old = target.U8(place->offset);
  target.SetU8(place->offset, static_cast<std::uint8_t>(member ? old | place->mask : old & ~unsigned{place->mask}));
}

// Makes a bit for a page that the map does not cover. The conversion can reach it already, by a member in the same
// stretch.
void UsageMap::Reach(PageNumber page) {
  const PageHandle holder = pager_->Read(row_.page);
  const MapRow place = FindMapRow(*holder, row_.row, MapLayoutOf(*pager_));
  if (KindOfMap(*holder, row_.row, place) == usage::kKindInline) {
    if (RewriteInline(page)) return;
    ConvertToReferences();
  }
  if (!LocateBit(*pager_, row_, page)) AddBitmapPage(page / usage::kPagesPerBitmap);
}

// Moves the start of an inline map, and makes the row longer if need be; false when both are not enough. Members past
// the end of the file count here: their bits are moved along.
bool UsageMap::RewriteInline(PageNumber page) {
  const std::vector<PageNumber> members = MembersBelow(kEverywhere);
  const PageNumber lowest = members.empty() ? page : std::min(page, members.front());
  const PageNumber highest = members.empty() ? page : std::max(page, members.back());
  // Access begins a map at a multiple of 8, so that bytes of the map are whole.
  const PageNumber start = lowest - lowest % usage::kInlineStartStep;
  const std::size_t needed = usage::kInlineBitmapOffset + (highest - start) / format::kBitsPerByte + 1;

  Page& holder = pager_->Write(row_.page);
  MapRow place = FindMapRow(holder, row_.row, MapLayoutOf(*pager_));
  if (needed > place.length) {
    const std::size_t steps = (needed - place.length + usage::kLengthenStep - 1) / usage::kLengthenStep;
    const std::size_t growth = steps * usage::kLengthenStep;
    // Neither longer rows nor other steps are seen in files of Access.
    if (place.length + growth > usage::kLongestInlineRow || growth > FreeBytesOfMapPage(holder)) return false;
    LengthenMapRow(holder, row_.row, growth, 0);
    place = FindMapRow(holder, row_.row, MapLayoutOf(*pager_));
  }
  // All bits are set again, since their places depend on the start.
  holder.SetU32(place.offset + usage::kInlineStartOffset, start);
  holder.Fill(place.offset + usage::kInlineBitmapOffset, place.BitmapSize(), 0);
  for (const PageNumber member : members) SetBit(member, true);
  return true;
}

// The row keeps its length: 69 bytes hold 17 references, just what 524,288 pages need. Bitmap pages are made for
// stretches that have members, and for no others.
void UsageMap::ConvertToReferences() {
  // What lies past the largest possible file is damage and is not taken along.
  const std::vector<PageNumber> members = MembersBelow(format::kMaximumPageCount);
  Page& holder = pager_->Write(row_.page);
  const MapRow place = FindMapRow(holder, row_.row, MapLayoutOf(*pager_));
  holder.Fill(place.offset, place.length, 0);
  holder.SetU8(place.offset + usage::kKindOffset, usage::kKindReference);
  for (const PageNumber member : members) {
    if (!LocateBit(*pager_, row_, member)) AddBitmapPage(member / usage::kPagesPerBitmap);
    SetBit(member, true);
  }
}

// The page comes from the allocator like any other, and belongs to this map alone. It is all 0, so nobody is a member
// yet.
void UsageMap::AddBitmapPage(std::uint32_t index) {
  Page& bitmap = PageAllocator(*pager_).Allocate();
  bitmap.SetU8(format::kPageTypeOffset, format::page_type::kUsageBitmap);
  bitmap.SetU8(format::kPageMarkOffset, format::kPageMark);
  Page& holder = pager_->Write(row_.page);
  const MapRow place = FindMapRow(holder, row_.row, MapLayoutOf(*pager_));
  if (index >= place.ReferenceCount()) {
    RaiseDamage("the usage map in row " + std::to_string(row_.row) + " of page " + std::to_string(row_.page) +
                " is too short for bitmap page " + std::to_string(index) + ".");
  }
  holder.SetU32(place.ReferenceOffset(index), bitmap.Number());
}

}  // namespace tavi::access
