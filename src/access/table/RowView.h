#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "access/file/Page.h"
#include "access/table/FormatVersion.h"
#include "access/table/TableDefinition.h"
#include "platform/values/Value.h"

namespace tavi::access {

// A stored row (Jet 4; sizes in bytes):
//
//   column count [2]      columns that the table had ever had when the row was written
//   fixed area            fixed columns at 2 + their fixed offset
//   variable data         variable columns in the order of their index, back to back
//   (padding)
//   end of data [2]       offset from the start of the row
//   offsets [2 each]      of the variable columns, the last one first
//   variable count v [2]
//   null mask             a bit for each column id, least significant first; 1 = has a value. A Boolean's value is its
//   bit
//
// A table that had no variable columns has neither offsets nor the words around them. Example, columns Byte = 2,
// Text "abc" (compressed), Boolean = True with the ids 0, 1, 2:
//
//   03 00 | 02 | FF FE 61 62 63 | 08 00 | 03 00 | 01 00 | 07

/// Reads the values of one stored row, whichever the caller asks for. Holds no copy of the bytes. Rows may be older
/// than the definition: columns that they do not know are null. Damage raises ProviderFailure that names the row.
class RowView {
 public:
  /// `row` says where the bytes lie, for errors. Raises ProviderFailure for bytes that are no row.
  RowView(std::span<const std::uint8_t> bytes, const FormatVersion& version, RowPointer row);

  /// True when a column has no value. A Boolean always has one.
  [[nodiscard]] bool IsNull(const ColumnDefinition& column) const;
  /// The stored bytes of a column that is not null and not Boolean: of a fixed column those of its length, of a
  /// variable one all that it has. For MEMO and OLE that is the descriptor (see LongValues.h).
  [[nodiscard]] std::span<const std::uint8_t> Stored(const ColumnDefinition& column) const;
  /// The value of a column that is not MEMO or OLE.
  [[nodiscard]] Value Get(const ColumnDefinition& column) const;

  /// Columns that the table had when the row was written.
  [[nodiscard]] std::size_t ColumnCount() const { return columnCount_; }

 private:
  [[nodiscard]] bool MaskBit(std::uint16_t columnId) const;
  [[nodiscard]] std::span<const std::uint8_t> FixedBytes(const ColumnDefinition& column) const;
  [[nodiscard]] std::span<const std::uint8_t> VariableBytes(const ColumnDefinition& column) const;
  [[nodiscard]] std::size_t VariableCount() const;
  [[noreturn]] void Raise(const std::string& what) const;

  std::span<const std::uint8_t> bytes_;
  FormatVersion version_;
  RowPointer row_;
  std::size_t columnCount_ = 0;
  std::size_t maskSize_ = 0;
};

// The variable part of a Jet 3 row. Its trailer, from the end of the row: null mask, number of variable columns v [1],
// a jump table [1 for each 256 bytes of row], v + 1 offsets [1 each] in reverse order, the last one that of the end of
// the data. An offset has only its low byte there; each entry of the jump table names the first column from which
// another 256 is to be added.

/// Where the value of a variable column lies in a Jet 3 row, or nothing when the row has no such column. `row` has at
/// least `maskSize` bytes. `first` may be behind `end` or past the row in a damaged one.
struct Jet3Extent {
  std::size_t first = 0;
  std::size_t end = 0;
};
[[nodiscard]] std::optional<Jet3Extent> FindJet3Variable(std::span<const std::uint8_t> row, std::size_t maskSize,
                                                         std::size_t variableIndex);

/// Number of variable columns of a Jet 3 row; 0 when it is too short to have any.
[[nodiscard]] std::size_t Jet3VariableCount(std::span<const std::uint8_t> row, std::size_t maskSize);

}  // namespace tavi::access
