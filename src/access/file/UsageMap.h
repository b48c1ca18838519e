#pragma once

#include <optional>
#include <vector>

#include "access/file/Pager.h"

namespace tavi::access {

/// A set of page numbers, stored as one row of a usage-map page (inline bitmap, or references to bitmap pages). Holds no
/// state of its own: every call reads and changes the pages of the current statement. A default-made or "none" map is
/// empty and takes no pages.
class UsageMap {
 public:
  UsageMap(Pager& pager, RowPointer row) : pager_(&pager), row_(row) {}

  [[nodiscard]] bool Contains(PageNumber page) const;
  /// The smallest member that is >= `from`; nothing when there is none. Members past the end of the file are left out.
  [[nodiscard]] std::optional<PageNumber> Next(PageNumber from) const;
  /// All members in ascending order (those past the end of the file left out).
  [[nodiscard]] std::vector<PageNumber> Pages() const;
  void Add(PageNumber page);
  void Remove(PageNumber page);
  /// The pages that hold the bitmap of a reference map (empty for an inline map).
  [[nodiscard]] std::vector<PageNumber> BitmapPages() const;
  [[nodiscard]] RowPointer Row() const { return row_; }

 private:
  Pager* pager_;
  RowPointer row_;
};

/// Hands out and takes back pages by the file's global free-page map (page 1 row 0), extending the file when no page is
/// free. What the page is used for goes into the owner's map, which is the caller's business.
class PageAllocator {
 public:
  explicit PageAllocator(Pager& pager) : pager_(&pager) {}
  /// Takes a free page (the lowest) and returns it zeroed, writable. Raises ProviderFailure at the 2 GB limit.
  [[nodiscard]] Page& Allocate();
  /// Gives a page back.
  void Free(PageNumber page);
  [[nodiscard]] bool IsFree(PageNumber page) const;

  /// Makes a new usage-map row (inline, empty, 69 bytes): on the usage-map page `near` when it has room, otherwise on a
  /// new usage-map page (pass 0 to force that).
  [[nodiscard]] RowPointer AddUsageMap(PageNumber near);
  /// Deletes a usage-map row and frees its bitmap pages (the member pages are the caller's business).
  void RemoveUsageMap(RowPointer row);

 private:
  Pager* pager_;
};

}  // namespace tavi::access
