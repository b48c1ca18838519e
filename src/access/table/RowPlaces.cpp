#include "access/table/RowPlaces.h"

#include <string>
#include <utility>

#include "access/file/Bytes.h"
#include "access/file/EngineError.h"
#include "access/file/Format.h"
#include "access/file/PageAllocator.h"
#include "access/file/UsageMap.h"
#include "access/table/DataPage.h"

// A row is known by the place where it was first stored: index entries and other rows hold that, so it stays the row's
// name for life. A row that no longer fits there lies elsewhere, and its place holds a pointer; the place of its body
// is nobody's name, and a walk over the table passes it over. A body never moves on by itself: the pointer is changed
// instead, so one step always ends it.
//
// Whose a page is, is asked each time. Pages are given back and used again, and keep their content meanwhile.

namespace tavi::access {

namespace {

/// The flags are looked at together: both set mean deleted, one alone moved or moved here. A test of one bit would take
/// a deleted row for a moved one.
bool IsRowOfItsOwn(const RowEntry& entry) {
  return !entry.IsDeleted() && !entry.IsMovedTarget();
}

}  // namespace

std::optional<FoundRow> RowFinder::Find(RowPointer row) const {
  if (row.page == 0 || row.page >= pager_->PageCount()) return std::nullopt;
  PageHandle page = pager_->Read(row.page);
  // No error: the page went back to the file when its last row was deleted, and somebody else has it by now.
  if (!DataPageReader::IsOwnedBy(*page, owner_)) return std::nullopt;
  const DataPageReader reader(*page, DataPageLayoutOf(*pager_));
  if (row.row >= reader.RowCount()) return std::nullopt;
  const RowEntry entry = reader.Entry(row.row);
  if (!IsRowOfItsOwn(entry)) return std::nullopt;
  const auto bytes = reader.Bytes(entry);
  if (entry.IsMoved()) return FollowMoved(row, bytes);
  return FoundRow{row, std::move(page), bytes};
}

// Where the pointer does not lead to a body, the row's bytes are lost, and that is damage. Bytes behind the pointer are
// what is left of the old row.
FoundRow RowFinder::FollowMoved(RowPointer row, std::span<const std::uint8_t> pointer) const {
  const std::string name = "row " + std::to_string(row.row) + " of page " + std::to_string(row.page);
  if (pointer.size() < format::row::kRowPointerSize) RaiseDamage(name + " was moved, but does not say where to.");
  const RowPointer body = RowPointer::FromPacked(GetLittle<std::uint32_t>(pointer, 0));
  if (body.page != 0 && body.page < pager_->PageCount()) {
    PageHandle page = pager_->Read(body.page);
    if (DataPageReader::IsOwnedBy(*page, owner_)) {
      const DataPageReader reader(*page, DataPageLayoutOf(*pager_));
      const RowEntry entry = body.row < reader.RowCount() ? reader.Entry(body.row) : RowEntry{};
      if (entry.IsMovedTarget()) return FoundRow{body, page, reader.Bytes(entry)};
    }
  }
  RaiseDamage(name + " was moved to row " + std::to_string(body.row) + " of page " + std::to_string(body.page) +
              ", where no moved row is.");
}

bool RowFinder::IsRow(const Page& page, std::size_t row) const {
  return IsRowOfItsOwn(DataPageReader(page, DataPageLayoutOf(*pager_)).Entry(row));
}

std::int64_t RowFinder::CountOnPage(const Page& page) const {
  const DataPageReader reader(page, DataPageLayoutOf(*pager_));
  std::int64_t count = 0;
  for (std::size_t row = 0; row < reader.RowCount(); ++row) count += IsRowOfItsOwn(reader.Entry(row)) ? 1 : 0;
  return count;
}

// The page is held by the caller, who asks for one row after the other; each costs a look at its directory entry.
std::optional<std::uint8_t> RowFinder::NextOnPage(const Page& page, std::size_t from) const {
  const DataPageReader reader(page, DataPageLayoutOf(*pager_));
  for (std::size_t row = from; row < reader.RowCount(); ++row) {
    if (IsRowOfItsOwn(reader.Entry(row))) return static_cast<std::uint8_t>(row);
  }
  return std::nullopt;
}

// Two maps belong to an owner: the pages that it has, and among them those that are worth trying for another row. The
// second one is advice. A page is offered while there is room for a row as long as those on it, and withdrawn when an
// attempt shows that there is not; a page that is wrongly offered costs one look, one wrongly withheld only room. So
// inserting a row looks at few pages, whatever the size of the table: the one of the last insertion, some candidates,
// then a new page.

namespace {

// Pages with room that are looked at before the file is made longer. Long rows that fit on none would otherwise be
// tried against each page of a large table.
constexpr int kMostCandidates = 16;

/// Puts bytes of the same length in the place of a row's, where nothing else on the page changes.
bool ReplaceEqualBytes(Page& page, std::uint8_t row, std::span<const std::uint8_t> bytes, std::uint16_t flags) {
  const DataPageReader reader(page, Jet4DataPageLayout());
  if (row >= reader.RowCount()) return false;
  const RowEntry entry = reader.Entry(row);
  if (entry.length != bytes.size() || entry.flags != flags) return false;
  page.Put(entry.offset, bytes);
  return true;
}

}  // namespace

RowPointer RowSpace::Insert(std::span<const std::uint8_t> bytes, std::uint16_t flags, PageNumber hint) {
  const UsageMap withRoom(*pager_, freeSpacePages_);
  // Rows that are stored one after the other then lie together, which costs fewer pages in the log, and less when they
  // are read again.
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
// their pages, so that of them only the map tells whose a page is. Nothing is changed on a page that does not take the
// row, but for the offer.
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
    // Too long for this page need not mean that the page is full.
    if (!editor.HasRoomForTypicalRow()) Offer(number, false);
    return std::nullopt;
  }
  const RowPointer row = {number, editor.Append(bytes, flags)};
  Offer(number, editor.HasRoomForTypicalRow());
  return row;
}

// The page stays on offer or goes by the room that is left: a shorter row makes room for others.
bool RowSpace::TryReplace(RowPointer row, std::span<const std::uint8_t> bytes, std::uint16_t flags) {
  Page& page = pager_->Write(row.page);
  if (ReplaceEqualBytes(page, row.row, bytes, flags)) return true;
  DataPageEditor editor(page);
  if (!editor.TakesInstead(row.row, bytes.size())) return false;
  editor.Replace(row.row, bytes, flags);
  Offer(row.page, editor.HasRoomForTypicalRow());
  return true;
}

// A page without live rows goes back to the file at once, as its row numbers are nobody's names any more.
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
  // Only owned, not offered: pages of a chain of long values are full by what they are, and other programs must not put
  // rows there.
  UsageMap(*pager_, ownedPages_).Add(page.Number());
  return page;
}

bool RowSpace::Owns(PageNumber page) const {
  return page != 0 && page < pager_->PageCount() && UsageMap(*pager_, ownedPages_).Contains(page) &&
         DataPageReader::IsOwnedBy(*pager_->Read(page), owner_);
}

// The maps first, whatever the page is: what is not ours is to be gone from them. The type byte is changed as Access
// does it, so that a number of the page that is left somewhere leads to no data page.
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
  // What is offered without being owned is withdrawn, too.
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
