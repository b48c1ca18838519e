#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "access/file/Pager.h"

namespace tavi::access {

/// Finds room for the rows of one owner (a table, or the long values of a column), as plain bytes: keeps the owner's
/// two usage maps and the pages in step. Every call belongs to the current write statement. Damage raises
/// ProviderFailure.
class RowSpace {
 public:
  /// `owner` is what the owner field of the pages holds; `ownedPages` and `freeSpacePages` are the maps (the latter may
  /// be none; then every page that does not take a row is followed by a new one).
  RowSpace(Pager& pager, std::uint32_t owner, RowPointer ownedPages, RowPointer freeSpacePages)
      : pager_(&pager), owner_(owner), ownedPages_(ownedPages), freeSpacePages_(freeSpacePages) {}

  /// Stores bytes as a new row with directory flags; `hint` is a page to try first (0: none). The bytes fit an empty
  /// page.
  RowPointer Insert(std::span<const std::uint8_t> bytes, std::uint16_t flags, PageNumber hint);
  /// Gives a row other bytes and flags where it is; false, and nothing done, when its page has no room for them.
  [[nodiscard]] bool TryReplace(RowPointer row, std::span<const std::uint8_t> bytes, std::uint16_t flags);
  /// Deletes a row. A page that has no live rows any more is given back to the file.
  void Delete(RowPointer row);
  /// Takes an empty page for the owner; it is not offered for other rows.
  [[nodiscard]] Page& AddPage();
  /// Gives back a page of the owner. A page that is not the owner's is only taken out of the maps.
  void ReleasePage(PageNumber page);
  /// Gives back all pages of the owner; the maps are empty then.
  void ReleaseAll();
  /// True when the page is one of the owner's, by its map and by what it says itself.
  [[nodiscard]] bool Owns(PageNumber page) const;

 private:
  [[nodiscard]] std::optional<RowPointer> InsertOn(PageNumber number, std::span<const std::uint8_t> bytes,
                                                   std::uint16_t flags);
  void Offer(PageNumber page, bool isOffered);

  Pager* pager_;
  std::uint32_t owner_;
  RowPointer ownedPages_;
  RowPointer freeSpacePages_;
};

}  // namespace tavi::access
