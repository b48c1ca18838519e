#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "access/file/Pager.h"
#include "access/table/DataPage.h"

namespace tavi::access {

/// A live row as it is stored. `bytes` is valid as long as `page` is held.
struct FoundRow {
  RowPointer body;  ///< where the bytes are; another place than the row's own one when it was moved
  PageHandle page;  ///< the page of the bytes
  std::span<const std::uint8_t> bytes;
};

/// Finds rows by their places on the data pages of one owner, following the pointer of a moved row.
class RowFinder {
 public:
  RowFinder(Pager& pager, std::uint32_t owner) : pager_(&pager), owner_(owner) {}

  /// The row, or nothing when no live row of the owner is there (deleted, the body of a moved row, another page).
  /// Raises ProviderFailure when the page, or the place that a moved row points to, is damaged.
  [[nodiscard]] std::optional<FoundRow> Find(RowPointer row) const;
  /// True when row `row` of a page, below its row count, is a live one. Raises ProviderFailure when its place makes no
  /// sense.
  [[nodiscard]] bool IsRow(const Page& page, std::size_t row) const;
  /// How many live rows a page has.
  [[nodiscard]] std::int64_t CountOnPage(const Page& page) const;
  /// The first live row of a page whose number is at least `from`.
  [[nodiscard]] std::optional<std::uint8_t> NextOnPage(const Page& page, std::size_t from) const;

 private:
  [[nodiscard]] FoundRow FollowMoved(RowPointer row, std::span<const std::uint8_t> pointer) const;

  Pager* pager_;
  std::uint32_t owner_;
};

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
