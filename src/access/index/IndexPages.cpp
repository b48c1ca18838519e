#include "access/index/IndexPages.h"

#include <string>

#include "access/file/EngineError.h"

namespace tavi::access {

namespace layout = format::index;

PageHandle IndexPages::Read(PageNumber number) const {
  if (pager_->IsJet3())
    RaiseFailure("The indexes of Access 97 files cannot be used here. Read the table without them.");
  if (number == 0 || number >= pager_->PageCount()) {
    RaiseDamage("an index of the table with definition page " + std::to_string(table_) + " leads to page " +
                std::to_string(number) + ", which is not in the file.");
  }
  PageHandle page = pager_->Read(number);
  const IndexPage view(*page);
  if (view.Table() != table_) {
    RaiseDamage("index page " + std::to_string(number) + " belongs to the table with definition page " +
                std::to_string(view.Table()) + " instead of " + std::to_string(table_) + ".");
  }
  return page;
}

Page& IndexPages::Allocate(std::uint8_t level) {
  Page& page = PageAllocator(*pager_).Allocate();
  UsageMap(*pager_, ownedPages_).Add(page.Number());
  FormatIndexPage(page, table_, level);
  return page;
}

void IndexPages::Free(PageNumber number) {
  UsageMap(*pager_, ownedPages_).Remove(number);
  const PageHandle page = pager_->Read(number);
  const std::uint8_t type = page->U8(format::kPageTypeOffset);
  const bool isIndexPage = type == format::page_type::kIndexLeaf || type == format::page_type::kIndexNode;
  if (isIndexPage && page->U32(layout::kTableOffset) == table_) PageAllocator(*pager_).Free(number);
}

void IndexPages::LinkBefore(PageNumber fresh, PageNumber neighbour) {
  const PageNumber previous = Read(neighbour)->U32(layout::kPreviousOffset);
  if (previous != 0) {
    (void)Read(previous);
    Write(previous).SetU32(layout::kNextOffset, fresh);
  }
  Page& page = Write(fresh);
  page.SetU32(layout::kPreviousOffset, previous);
  page.SetU32(layout::kNextOffset, neighbour);
  Write(neighbour).SetU32(layout::kPreviousOffset, fresh);
}

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
