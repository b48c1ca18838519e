#pragma once

#include <optional>
#include <span>
#include <vector>

#include "access/file/Pager.h"

namespace tavi::access {

/// The row directory of a data page (rows of a table or long values), for reading. Row r begins at the offset in its
/// directory entry and ends where row r-1 begins (row 0: at the end of the page). Entries that do not fit raise
/// ProviderFailure naming page and row.
class DataPageView {
 public:
  explicit DataPageView(const Page& page);

  [[nodiscard]] std::size_t RowCount() const { return rowCount_; }
  [[nodiscard]] std::uint16_t Flags(std::size_t row) const;
  [[nodiscard]] std::span<const std::uint8_t> RowBytes(std::size_t row) const;
  [[nodiscard]] std::uint32_t Owner() const;
  /// Bytes between the directory and the lowest row.
  [[nodiscard]] std::size_t FreeBytes() const;

 private:
  friend class DataPageEditor;
  [[nodiscard]] std::size_t Start(std::size_t row) const;
  [[nodiscard]] std::size_t End(std::size_t row) const { return row == 0 ? kPageSize : Start(row - 1); }

  const Page& page_;
  std::size_t rowCount_;
};

/// The same for changing: rows stay packed from the end of the page downwards, the free-byte field exact.
class DataPageEditor {
 public:
  /// Makes a zeroed page an empty data page.
  static void Format(Page& page, std::uint32_t owner);

  explicit DataPageEditor(Page& page) : page_(page) {}

  /// True when a new row of this size fits.
  [[nodiscard]] bool HasRoom(std::size_t size) const;
  /// True when a row can be given this size in its place.
  [[nodiscard]] bool CanResize(std::size_t row, std::size_t size) const;
  /// Adds a row; the page has room for it.
  std::uint8_t Add(std::span<const std::uint8_t> bytes, std::uint16_t flags);
  /// Gives a row new bytes and flags under its number, moving the rows behind it.
  void Replace(std::size_t row, std::span<const std::uint8_t> bytes, std::uint16_t flags);
  /// Marks a row deleted and takes its bytes back.
  void Delete(std::size_t row);

 private:
  void SetEntry(std::size_t row, std::size_t offset, std::uint16_t flags);
  void UpdateFreeBytes();

  Page& page_;
};

}  // namespace tavi::access
