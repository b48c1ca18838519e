#pragma once

#include "access/file/Pager.h"

namespace tavi::access {

/// Hands out and takes back pages by the file's global free-page map (page 1 row 0), extending the file when no page is
/// free. What the page is used for goes into the owner's map, which is the caller's business. Every call belongs to the
/// current write statement (IsFree: any statement); damage of the map raises ProviderFailure.
class PageAllocator {
 public:
  explicit PageAllocator(Pager& pager) : pager_(&pager) {}

  /// Takes a free page (the lowest) and returns it zeroed, writable. Without a free page the file grows by one.
  /// Raises ProviderFailure at the 2 GB limit.
  [[nodiscard]] Page& Allocate();
  /// Gives a page back. Its content stays until it is handed out again. A page that is free already stays so; the fixed
  /// pages 0-5, pages past the end and pages of the global map itself raise ProviderFailure.
  void Free(PageNumber page);
  /// True for a page of the file that the global map counts as free.
  [[nodiscard]] bool IsFree(PageNumber page) const;

  /// Makes a new usage-map row (inline, empty, 69 bytes or as long as the deleted one that is used again): on the
  /// usage-map page `near` when it has room, otherwise on a new usage-map page (pass 0 to force that).
  [[nodiscard]] RowPointer AddUsageMap(PageNumber near);
  /// Deletes a usage-map row and frees its bitmap pages (the member pages are the caller's business). A usage-map page
  /// whose last row goes is freed too.
  void RemoveUsageMap(RowPointer row);

 private:
  [[nodiscard]] bool IsGlobalBitmapPage(PageNumber page) const;
  void Cover(PageNumber number);
  [[nodiscard]] bool LengthenGlobalMap(PageNumber number);
  void ConvertGlobalMap();
  void AddGlobalBitmap(std::uint32_t index);

  Pager* pager_;
};

}  // namespace tavi::access
