#include "access/file/PageAllocator.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "access/file/EngineError.h"
#include "access/file/Format.h"
#include "access/file/UsageMap.h"

// The global map has a bit for each page, 1 where it is free. It is a map like any other (UsageMap) but for one thing:
// it cannot ask the allocator for pages to grow by, since it is what the allocator goes by. So it grows here, in steps
// of its own: the row on page 1 is lengthened as long as that page and the longest row that is seen in files of Access
// allow (row 0 of 113 bytes reaches 864 pages), then it becomes a list of bitmap pages of 32,736 bits, which are taken
// from the end of the file without asking.
//
// What the map does not reach is in use as far as the file goes, and free behind it. The lowest free page is taken
// first: files stay short, and what belongs together is written near each other. Freed pages keep their content until
// they are handed out again; only then they are zeroed. All of it belongs to the caller's statement: when that is
// rolled back the map is as before.

namespace tavi::access {

namespace {

namespace usage = format::usage;

// Page 1 row 0; the second row of that page is an empty map in all files.
constexpr RowPointer kGlobalMap = {format::kGlobalMapPage, format::kGlobalFreeMapRow};
// The pages before have a fixed place in every file. A damaged map may show them as free.
constexpr PageNumber kFirstAllocatable = format::kRelationshipsTablePage + 1;
constexpr std::uint8_t kAllFree = 0xFF;

void MakeBitmapPage(Page& page) {
  page.SetU8(format::kPageTypeOffset, format::page_type::kUsageBitmap);
  page.SetU8(format::kPageMarkOffset, format::kPageMark);
}

}  // namespace

Page& PageAllocator::Allocate() {
  UsageMap global(*pager_, kGlobalMap);
  // A bitmap page of the map itself is never free, whatever its bit says.
  for (auto free = global.Next(kFirstAllocatable); free; free = global.Next(*free + 1)) {
    if (IsGlobalBitmapPage(*free)) continue;
    global.Remove(*free);
    return pager_->WriteNew(*free);
  }
  Cover(pager_->PageCount());
  // Covering may have taken the page that was next; the one behind it is covered too, or is now.
  if (!LocateBit(*pager_, kGlobalMap, pager_->PageCount())) Cover(pager_->PageCount());
  const PageNumber number = pager_->PageCount();
  // Asked last, so that a file of 2 GB still hands out the pages that were given back.
  if (number >= format::kMaximumPageCount) {
    RaiseFailure("'" + pager_->Path() +
                 "' has reached the 2 GB that an Access database can have. Delete what is not "
                 "needed.");
  }
  global.Remove(number);
  return pager_->WriteNew(number);
}

// The checks are for numbers that come from damaged maps: a page that was freed wrongly would be given to somebody else
// while its owner goes on using it.
void PageAllocator::Free(PageNumber page) {
  if (page < kFirstAllocatable || page >= pager_->PageCount() || IsGlobalBitmapPage(page)) {
    RaiseDamage("page " + std::to_string(page) + " was to be given back, but it is not a page that anything can own.");
  }
  Cover(page);
  UsageMap(*pager_, kGlobalMap).Add(page);
}

bool PageAllocator::IsFree(PageNumber page) const {
  return page < pager_->PageCount() && UsageMap(*pager_, kGlobalMap).Contains(page);
}

bool PageAllocator::IsGlobalBitmapPage(PageNumber page) const {
  const std::vector<PageNumber> bitmaps = UsageMap(*pager_, kGlobalMap).BitmapPages();
  return std::find(bitmaps.begin(), bitmaps.end(), page) != bitmaps.end();
}

// Makes the global map reach a page. Pages that it has not reached so far are in use when the file has them, else free.
void PageAllocator::Cover(PageNumber number) {
  if (number >= format::kMaximumPageCount || LocateBit(*pager_, kGlobalMap, number)) return;
  const PageHandle holder = pager_->Read(kGlobalMap.page);
  const MapRow place = FindMapRow(*holder, kGlobalMap.row, MapLayoutOf(*pager_));
  if (KindOfMap(*holder, kGlobalMap.row, place) == usage::kKindInline) {
    if (LengthenGlobalMap(number)) return;
    ConvertGlobalMap();
  }
  if (!LocateBit(*pager_, kGlobalMap, number)) AddGlobalBitmap(number / usage::kPagesPerBitmap);
}

// False, and nothing is changed, where the row cannot be long enough. The new bits begin as free, as the map counts
// pages behind the end of the file; those that the file has already, which no map has reached so far, are in use.
bool PageAllocator::LengthenGlobalMap(PageNumber number) {
  Page& holder = pager_->Write(kGlobalMap.page);
  const MapRow place = FindMapRow(holder, kGlobalMap.row, MapLayoutOf(*pager_));
  const PageNumber start = holder.U32(place.offset + usage::kInlineStartOffset);
  if (number < start) return false;
  const std::size_t needed = usage::kInlineBitmapOffset + (number - start) / format::kBitsPerByte + 1;
  const std::size_t growth =
      (needed - place.length + usage::kLengthenStep - 1) / usage::kLengthenStep * usage::kLengthenStep;
  if (place.length + growth > usage::kLongestInlineRow || growth > FreeBytesOfMapPage(holder)) return false;
  const PageNumber firstNew = start + static_cast<PageNumber>(place.BitmapSize()) * format::kBitsPerByte;
  LengthenMapRow(holder, kGlobalMap.row, growth, kAllFree);
  UsageMap global(*pager_, kGlobalMap);
  for (PageNumber used = firstNew; used < pager_->PageCount(); ++used) global.Remove(used);
  return true;
}

// From the inline form to references; the first bitmap page takes over what the row said. The row keeps its length: its
// old start page and bits become the list, which is why they are read before.
void PageAllocator::ConvertGlobalMap() {
  const std::vector<PageNumber> free = UsageMap(*pager_, kGlobalMap).Pages();
  Page& holder = pager_->Write(kGlobalMap.page);
  const MapRow place = FindMapRow(holder, kGlobalMap.row, MapLayoutOf(*pager_));
  holder.Fill(place.offset, place.length, 0);
  holder.SetU8(place.offset + usage::kKindOffset, usage::kKindReference);
  UsageMap global(*pager_, kGlobalMap);
  AddGlobalBitmap(0);
  for (const PageNumber page : free) {
    if (!LocateBit(*pager_, kGlobalMap, page)) AddGlobalBitmap(page / usage::kPagesPerBitmap);
    global.Add(page);
  }
}

// A bitmap page of the global map goes to the end of the file, as no map says yet what is free.
void PageAllocator::AddGlobalBitmap(std::uint32_t index) {
  const PageNumber number = pager_->PageCount();
  Page& bitmap = pager_->WriteNew(number);
  MakeBitmapPage(bitmap);
  const PageNumber first = index * usage::kPagesPerBitmap;
  // Pages behind the new end of the file are free, those before it in use; clamped to the stretch of this bitmap page.
  const PageNumber firstFree = std::clamp(number + 1, first, first + usage::kPagesPerBitmap);
  for (PageNumber bit = firstFree - first; bit < usage::kPagesPerBitmap; ++bit) {
    const std::size_t offset = usage::kBitmapOffset + bit / format::kBitsPerByte;
    bitmap.SetU8(offset, static_cast<std::uint8_t>(bitmap.U8(offset) | (1U << (bit % format::kBitsPerByte))));
  }
  Page& holder = pager_->Write(kGlobalMap.page);
  const MapRow place = FindMapRow(holder, kGlobalMap.row, MapLayoutOf(*pager_));
  if (index >= place.ReferenceCount()) RaiseDamage("the global map on page 1 is too short for the file.");
  holder.SetU32(place.ReferenceOffset(index), number);
  // Where an earlier bitmap page covers this one, it counted it as free.
  UsageMap(*pager_, kGlobalMap).Remove(number);
}

// `near` may be a number from a damaged definition: a page that is free, or of something else, is not written to.
RowPointer PageAllocator::AddUsageMap(PageNumber near) {
  if (near >= kFirstAllocatable && near < pager_->PageCount() && !IsFree(near) && TakesMapRow(*pager_->Read(near))) {
    return {near, AddMapRow(pager_->Write(near))};
  }
  Page& page = Allocate();
  MakeMapPage(page);
  return {page.Number(), AddMapRow(page)};
}

void PageAllocator::RemoveUsageMap(RowPointer row) {
  for (const PageNumber bitmap : UsageMap(*pager_, row).BitmapPages()) {
    // A map that is given up may be damaged; what it wrongly names belongs to somebody else.
    const bool isBitmap = bitmap < pager_->PageCount() &&
                          pager_->Read(bitmap)->U8(format::kPageTypeOffset) == format::page_type::kUsageBitmap;
    if (isBitmap) Free(bitmap);
  }
  Page& page = pager_->Write(row.page);
  DeleteMapRow(page, row.row);
  if (page.U32(format::data::kOwnerOffset) != format::data::kOwnerUsageMaps || !HasOnlyDeletedRows(page)) return;
  // Page 1 holds the global map, and is never given back.
  if (row.page < kFirstAllocatable) return;
  page.SetU8(format::kPageTypeOffset, format::page_type::kReleasedData);
  Free(row.page);
}

}  // namespace tavi::access
