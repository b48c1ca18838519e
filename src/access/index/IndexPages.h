#pragma once

#include "access/file/UsageMap.h"
#include "access/index/IndexPage.h"

namespace tavi::access {

/// The deepest tree that is followed. Real ones have three or four levels.
inline constexpr std::size_t kMaximumIndexLevels = 32;

/// The pages of one index: read with checks, made, freed, and linked to their neighbours on a level. Every call works
/// in the pager's current statement.
class IndexPages {
 public:
  IndexPages(Pager& pager, PageNumber table, RowPointer ownedPages)
      : pager_(&pager), table_(table), ownedPages_(ownedPages) {}

  [[nodiscard]] PageNumber Table() const { return table_; }
  [[nodiscard]] PageNumber PageCount() const { return pager_->PageCount(); }

  /// A page of the index. Raises ProviderFailure naming the page when it is past the end of the file or belongs to
  /// another table.
  [[nodiscard]] PageHandle Read(PageNumber number) const;
  /// The same page, to be changed.
  [[nodiscard]] Page& Write(PageNumber number) { return pager_->Write(number); }

  /// A new empty page, entered in the index's map of owned pages.
  [[nodiscard]] Page& Allocate(std::uint8_t level);
  /// The pages in the map of owned pages.
  [[nodiscard]] std::vector<PageNumber> Owned() const { return UsageMap(*pager_, ownedPages_).Pages(); }
  /// Takes a page out of the map and frees it. Nothing may lead to it any more. A page that is no index page of this
  /// table, which only a damaged map names, is not freed.
  void Free(PageNumber number);

  /// Puts a page that has no neighbours yet before another one of its level.
  void LinkBefore(PageNumber fresh, PageNumber neighbour);
  /// Takes a page out between its neighbours.
  void Unlink(PageNumber number);

 private:
  friend struct ReadIndexPage;

  [[nodiscard]] PageHandle ReadUnchecked(PageNumber number) const;
  void RequireOwn(const IndexPage& page) const;

  Pager* pager_;
  PageNumber table_;
  RowPointer ownedPages_;
};

/// One page of an index as it is read: the handle keeps the bytes, `view` reads them.
struct ReadIndexPage {
  /// Raises as IndexPages::Read.
  ReadIndexPage(const IndexPages& pages, PageNumber number) : handle(pages.ReadUnchecked(number)), view(*handle) {
    pages.RequireOwn(view);
  }

  PageHandle handle;
  IndexPage view;
};

}  // namespace tavi::access
