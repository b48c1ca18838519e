// Pages of a file that is being made. Nobody else sees it, so there is nothing to lock, to commit or to take back: an
// error ends the making, and the pages go with this object.
#include "access/catalog/MemoryPager.h"

#include "access/file/EngineError.h"

namespace tavi::access {

MemoryPager::MemoryPager(PageNumber pageCount) {
  for (PageNumber number = 0; number < pageCount; ++number) pages_.push_back(std::make_unique<Page>(number));
}

std::vector<Page> MemoryPager::Pages() const {
  std::vector<Page> pages;
  pages.reserve(pages_.size());
  for (const auto& page : pages_) pages.push_back(*page);
  return pages;
}

// A writer that fails here has spoilt the file that is being made, which is thrown away.
void MemoryPager::Rollback() {
  RaiseFailure("A file that is being made cannot be rolled back.");
}

std::int32_t MemoryPager::BeginTransaction() {
  RaiseFailure("A file that is being made has no transactions.");
}

// Refused in the words of the first.
void MemoryPager::CommitTransaction() {
  static_cast<void>(BeginTransaction());
}

void MemoryPager::RollbackTransaction() {
  static_cast<void>(BeginTransaction());
}

PageNumber MemoryPager::PageCount() const {
  return static_cast<PageNumber>(pages_.size());
}

// A handle keeps its content while writers go on with theirs.
PageHandle MemoryPager::Read(PageNumber number) {
  return std::make_shared<Page>(At(number));
}

Page& MemoryPager::Write(PageNumber number) {
  return At(number);
}

Page& MemoryPager::WriteNew(PageNumber number) {
  // Each page is held apart, so that a reference to one stays valid while others are added.
  while (pages_.size() <= number) pages_.push_back(std::make_unique<Page>(PageCount()));
  Page& page = At(number);
  page.Fill(0, kPageSize, 0);
  return page;
}

Page& MemoryPager::At(PageNumber number) {
  if (number >= pages_.size()) {
    throw Error(ErrorNumber::ProviderFailure, kErrorSource,
                "Page " + std::to_string(number) + " lies past the end of the new file.");
  }
  return *pages_[number];
}

}  // namespace tavi::access
