#include "access/index/IndexPages.h"

#include <string>

#include "access/file/EngineError.h"

// Every page of an index is reached through here, and every number that comes from a page is doubted: that it lies in
// the file, that the page is an index page, that it belongs to this table. So a wrong link is an error with a name, and
// never a change to a page of something else.
//
// A new page is entered in two maps (taken out of the file's free pages, put in among the index's own), a freed one
// likewise: that is what keeps the map equal to the tree, by which a damaged index can still be cleared.

namespace tavi::access {

namespace layout = format::index;

PageHandle IndexPages::Read(PageNumber number) const {
  return ReadIndexPage(*this, number).handle;
}

PageHandle IndexPages::ReadUnchecked(PageNumber number) const {
  // Access 97 has pages of 2048 bytes with other places and, for texts, another order of keys.
  if (pager_->IsJet3())
    RaiseFailure("The indexes of Access 97 files cannot be used here. Read the table without them.");
  if (number == 0 || number >= pager_->PageCount()) {
    RaiseDamage("an index of the table with definition page " + std::to_string(table_) + " leads to page " +
                std::to_string(number) + ", which is not in the file.");
  }
  return pager_->Read(number);
}

void IndexPages::RequireOwn(const IndexPage& page) const {
  if (page.Table() == table_) return;
  RaiseDamage("index page " + std::to_string(page.Number()) + " belongs to the table with definition page " +
              std::to_string(page.Table()) + " instead of " + std::to_string(table_) + ".");
}

Page& IndexPages::Allocate(std::uint8_t level) {
  Page& page = PageAllocator(*pager_).Allocate();
  UsageMap(*pager_, ownedPages_).Add(page.Number());
  FormatIndexPage(page, table_, level);
  return page;
}

void IndexPages::Free(PageNumber number) {
  // Out of the index's map whatever the page is, so that what does not belong there is gone from it afterwards.
  UsageMap(*pager_, ownedPages_).Remove(number);
  const PageHandle page = pager_->Read(number);
  const std::uint8_t type = page->U8(format::kPageTypeOffset);
  const bool isIndexPage = type == format::page_type::kIndexLeaf || type == format::page_type::kIndexNode;
  if (isIndexPage && page->U32(layout::kTableOffset) == table_) PageAllocator(*pager_).Free(number);
}

// Three links at most: the page before the neighbour, if there is one, the fresh one, the neighbour.
void IndexPages::LinkBefore(PageNumber fresh, PageNumber neighbour) {
  const PageNumber previous = Read(neighbour)->U32(layout::kPreviousOffset);
  if (previous != 0) {
    // Read for its checks only: a damaged link must not make us write into a page of something else.
    (void)Read(previous);
    Write(previous).SetU32(layout::kNextOffset, fresh);
  }
  Page& page = Write(fresh);
  page.SetU32(layout::kPreviousOffset, previous);
  page.SetU32(layout::kNextOffset, neighbour);
  Write(neighbour).SetU32(layout::kPreviousOffset, fresh);
}

// The page itself keeps its links; it is freed, or its number is used anew with all bytes 0.
void IndexPages::Unlink(PageNumber number) {
  const PageHandle page = Read(number);
  const PageNumber previous = page->U32(layout::kPreviousOffset);
  const PageNumber next = page->U32(layout::kNextOffset);
  if (previous != 0) {
    (void)Read(previous);
    Write(previous).SetU32(layout::kNextOffset, next);
  }
  if (next != 0) {
    (void)Read(next);
    Write(next).SetU32(layout::kPreviousOffset, previous);
  }
}

}  // namespace tavi::access
