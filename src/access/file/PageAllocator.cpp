#include "access/file/PageAllocator.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "access/file/EngineError.h"
#include "access/file/Format.h"
#include "access/file/UsageMap.h"

namespace tavi::access {

namespace {

namespace usage = format::usage;

constexpr RowPointer kGlobalMap = {format::kGlobalMapPage, format::kGlobalFreeMapRow};
// The pages before have a fixed place in every file.
constexpr PageNumber kFirstAllocatable = format::kRelationshipsTablePage + 1;
constexpr std::uint8_t kAllFree = 0xFF;

void MakeBitmapPage(Page& page) {
  page.SetU8(format::kPageTypeOffset, format::page_type::kUsageBitmap);
  page.SetU8(format::kPageMarkOffset, format::kPageMark);
}

}  // namespace

Page& PageAllocator::Allocate() {
  UsageMap global(*pager_, kGlobalMap);
  for (auto free = global.Next(kFirstAllocatable); free; free = global.Next(*free + 1)) {
    if (IsGlobalBitmapPage(*free)) continue;
    global.Remove(*free);
    return pager_->WriteNew(*free);
  }
  Cover(pager_->PageCount());
  // Covering may have taken the page that was next; the one behind it is covered too, or is now.
  if (!LocateBit(*pager_, kGlobalMap, pager_->PageCount())) Cover(pager_->PageCount());
  const PageNumber number = pager_->PageCount();
  if (number >= format::kMaximumPageCount) {
    RaiseFailure("'" + pager_->Path() +
                 "' has reached the 2 GB that an Access database can have. Delete what is not "
                 "needed.");
  }
  global.Remove(number);
  return pager_->WriteNew(number);
}

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

// From the inline form to references; the first bitmap page takes over what the row said.
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
    const bool isBitmap = bitmap < pager_->PageCount() &&
                          pager_->Read(bitmap)->U8(format::kPageTypeOffset) == format::page_type::kUsageBitmap;
    if (isBitmap) Free(bitmap);
  }
  Page& page = pager_->Write(row.page);
  DeleteMapRow(page, row.row);
  if (page.U32(format::data::kOwnerOffset) != format::data::kOwnerUsageMaps || !HasOnlyDeletedRows(page)) return;
  if (row.page < kFirstAllocatable) return;
  page.SetU8(format::kPageTypeOffset, format::page_type::kReleasedData);
  Free(row.page);
}

}  // namespace tavi::access
