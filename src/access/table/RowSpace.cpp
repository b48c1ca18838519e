#include "access/table/RowSpace.h"

#include "access/file/EngineError.h"
#include "access/file/Format.h"
#include "access/file/PageAllocator.h"
#include "access/file/UsageMap.h"
#include "access/table/DataPage.h"

namespace tavi::access {

namespace {

// Pages with room that are looked at before the file is made longer.
constexpr int kMostCandidates = 16;

}  // namespace

RowPointer RowSpace::Insert(std::span<const std::uint8_t> bytes, std::uint16_t flags, PageNumber hint) {
  const UsageMap withRoom(*pager_, freeSpacePages_);
  if (hint != 0 && withRoom.Contains(hint)) {
    if (const auto row = InsertOn(hint, bytes, flags)) return *row;
  }
  auto candidate = withRoom.Next(0);
  for (int i = 0; candidate && i < kMostCandidates; ++i) {
    if (const auto row = InsertOn(*candidate, bytes, flags)) return *row;
    candidate = withRoom.Next(*candidate + 1);
  }
  Page& page = AddPage();
  DataPageEditor editor(page);
  const RowPointer row = {page.Number(), editor.Append(bytes, flags)};
  Offer(page.Number(), editor.HasRoomForTypicalRow());
  return row;
}

// A page that another program lists although it is not the owner's is passed over. All long values name one owner on
// their pages, so that of them only the map tells whose a page is.
std::optional<RowPointer> RowSpace::InsertOn(PageNumber number, std::span<const std::uint8_t> bytes,
                                             std::uint16_t flags) {
  Page& page = pager_->Write(number);
  if (!DataPageReader::IsOwnedBy(page, owner_)) return std::nullopt;
  if (owner_ == format::data::kOwnerLongValues && !Owns(number)) {
    Offer(number, false);
    return std::nullopt;
  }
  DataPageEditor editor(page);
  if (!editor.Takes(bytes.size())) {
    if (!editor.HasRoomForTypicalRow()) Offer(number, false);
    return std::nullopt;
  }
  const RowPointer row = {number, editor.Append(bytes, flags)};
  Offer(number, editor.HasRoomForTypicalRow());
  return row;
}

bool RowSpace::TryReplace(RowPointer row, std::span<const std::uint8_t> bytes, std::uint16_t flags) {
  DataPageEditor editor(pager_->Write(row.page));
  if (!editor.TakesInstead(row.row, bytes.size())) return false;
  editor.Replace(row.row, bytes, flags);
  Offer(row.page, editor.HasRoomForTypicalRow());
  return true;
}

void RowSpace::Delete(RowPointer row) {
  DataPageEditor editor(pager_->Write(row.page));
  editor.Delete(row.row);
  if (editor.HasOnlyDeletedRows()) {
    ReleasePage(row.page);
  } else {
    Offer(row.page, editor.HasRoomForTypicalRow());
  }
}

Page& RowSpace::AddPage() {
  Page& page = PageAllocator(*pager_).Allocate();
  DataPageEditor::Format(page, owner_);
  UsageMap(*pager_, ownedPages_).Add(page.Number());
  return page;
}

bool RowSpace::Owns(PageNumber page) const {
  return page != 0 && page < pager_->PageCount() && UsageMap(*pager_, ownedPages_).Contains(page) &&
         DataPageReader::IsOwnedBy(*pager_->Read(page), owner_);
}

void RowSpace::ReleasePage(PageNumber page) {
  const bool isOurs = Owns(page);
  UsageMap(*pager_, ownedPages_).Remove(page);
  Offer(page, false);
  if (!isOurs) return;
  pager_->Write(page).SetU8(format::kPageTypeOffset, format::page_type::kReleasedData);
  PageAllocator(*pager_).Free(page);
}

void RowSpace::ReleaseAll() {
  for (const PageNumber page : UsageMap(*pager_, ownedPages_).Pages()) ReleasePage(page);
  UsageMap withRoom(*pager_, freeSpacePages_);
  for (const PageNumber page : withRoom.Pages()) withRoom.Remove(page);
}

void RowSpace::Offer(PageNumber page, bool isOffered) {
  if (freeSpacePages_.IsNone()) return;
  UsageMap withRoom(*pager_, freeSpacePages_);
  if (withRoom.Contains(page) == isOffered) return;
  if (isOffered) {
    withRoom.Add(page);
  } else {
    withRoom.Remove(page);
  }
}

}  // namespace tavi::access
