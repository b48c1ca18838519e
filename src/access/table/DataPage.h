#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "access/file/Page.h"
#include "access/file/Pager.h"

namespace tavi::access {

// A data page (Jet 4; offset, size):
//
//   00 [2] 01 01      02 [2] free bytes      04 [4] owner      08 [4] stamp or 0      0C [2] row count n
//   0E [2 n] row directory, then free bytes, then the rows, packed from the end of the page downwards
//
// A directory entry is the offset of the row's first byte with two flags; row r ends where row r-1 begins. Example,
// three rows of 15 bytes, the middle one deleted and gone:
//   01 01 ce 0f 17 00 00 00 00 00 00 00 03 00 | f1 0f | f1 cf | e2 0f     free 0FCE = 0FE2 - (0E + 6), owner page 17

/// Where things lie on the data pages of a file's version.
struct DataPageLayout {
  std::size_t pageSize;
  std::size_t rowCountOffset;
  std::size_t rowDirectoryOffset;
};
[[nodiscard]] const DataPageLayout& DataPageLayoutOf(const Pager& pager);
[[nodiscard]] const DataPageLayout& Jet4DataPageLayout();

/// A row directory entry.
struct RowEntry {
  std::size_t offset = 0;
  std::size_t length = 0;
  std::uint16_t flags = 0;  ///< format::data::kRow...

  [[nodiscard]] bool IsDeleted() const;
  [[nodiscard]] bool IsMoved() const;        ///< its bytes begin with a pointer to the row
  [[nodiscard]] bool IsMovedTarget() const;  ///< the bytes of a row that is known by another place
};

/// Reads a data page. Damage (no data page, more rows than can be, entries that overlap) raises ProviderFailure that
/// names the page.
class DataPageReader {
 public:
  DataPageReader(const Page& page, const DataPageLayout& layout);

  /// True for a data page of an owner (a table's definition page, or format::data::kOwner...).
  [[nodiscard]] static bool IsOwnedBy(const Page& page, std::uint32_t owner);

  [[nodiscard]] std::size_t RowCount() const { return rowCount_; }
  /// `row` must be below RowCount().
  [[nodiscard]] RowEntry Entry(std::size_t row) const;
  [[nodiscard]] std::span<const std::uint8_t> Bytes(const RowEntry& entry) const;

 private:
  [[nodiscard]] std::uint16_t StoredEntry(std::size_t row) const;

  const Page* page_;
  const DataPageLayout* layout_;
  std::size_t rowCount_;
};

/// Changes a data page of a Jet 4 file. The count of free bytes stays exact. Row numbers never change.
class DataPageEditor {
 public:
  /// Raises ProviderFailure when the page is damaged.
  explicit DataPageEditor(Page& page);
  /// Makes an empty data page of a zeroed one.
  static void Format(Page& page, std::uint32_t owner);

  [[nodiscard]] std::size_t FreeBytes() const;
  /// True when a row of `size` bytes can be appended, perhaps after the bytes of deleted rows are reclaimed.
  [[nodiscard]] bool Takes(std::size_t size) const;
  /// Appends a row and returns its number. The page Takes it.
  std::uint8_t Append(std::span<const std::uint8_t> bytes, std::uint16_t flags);
  /// True when row `row` can have `size` bytes.
  [[nodiscard]] bool TakesInstead(std::uint8_t row, std::size_t size) const;
  /// Gives a row other bytes and flags; the rows below slide. The page TakesInstead them.
  void Replace(std::uint8_t row, std::span<const std::uint8_t> bytes, std::uint16_t flags);
  /// Deletes a row and reclaims its bytes.
  void Delete(std::uint8_t row);

  /// True when no row of the page is alive.
  [[nodiscard]] bool HasOnlyDeletedRows() const;
  /// True when it is worth trying to put further rows here: there is room for one as long as those that are here.
  [[nodiscard]] bool HasRoomForTypicalRow() const;

 private:
  [[nodiscard]] RowEntry Entry(std::size_t row) const;
  [[nodiscard]] std::size_t RowCount() const;
  [[nodiscard]] std::size_t LowestOffset() const;
  [[nodiscard]] std::size_t ReclaimableBytes() const;
  void Resize(std::size_t row, std::size_t size, std::uint16_t flags);
  void ReclaimDeleted();
  void SetEntry(std::size_t row, std::size_t offset, unsigned flags);
  void UpdateFreeBytes();

  Page* page_;
};

}  // namespace tavi::access
