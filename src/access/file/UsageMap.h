#pragma once

#include <optional>
#include <vector>

#include "access/file/PageAllocator.h"
#include "access/file/Pager.h"

namespace tavi::access {

/// A set of page numbers, stored as one row of a usage-map page (inline bitmap, or references to bitmap pages). Holds
/// no state of its own: every call reads and changes the pages of the current statement. A default-made or "none" map
/// is empty and takes no pages. Damage of the map raises ProviderFailure that names its page and row.
class UsageMap {
 public:
  UsageMap(Pager& pager, RowPointer row) : pager_(&pager), row_(row) {}

  [[nodiscard]] bool Contains(PageNumber page) const;
  /// The smallest member that is >= `from`; nothing when there is none. Members past the end of the file are left out.
  [[nodiscard]] std::optional<PageNumber> Next(PageNumber from) const;
  /// All members in ascending order (those past the end of the file left out).
  [[nodiscard]] std::vector<PageNumber> Pages() const;
  /// Adds a page. Where the map does not reach it, its start is moved, else the row is made longer, else the map
  /// becomes a reference map (the first that is possible); bitmap pages come from PageAllocator.
  void Add(PageNumber page);
  /// Takes a page out; does nothing when it is not a member.
  void Remove(PageNumber page);
  /// The pages that hold the bitmap of a reference map (empty for an inline map).
  [[nodiscard]] std::vector<PageNumber> BitmapPages() const;
  [[nodiscard]] RowPointer Row() const { return row_; }

 private:
  [[nodiscard]] std::vector<PageNumber> MembersBelow(std::uint64_t limit) const;
  void Reach(PageNumber page);
  [[nodiscard]] bool RewriteInline(PageNumber page);
  void ConvertToReferences();
  void AddBitmapPage(std::uint32_t index);
  void SetBit(PageNumber page, bool member);

  Pager* pager_;
  RowPointer row_;
};

}  // namespace tavi::access
