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

}  // namespace tavi::access
