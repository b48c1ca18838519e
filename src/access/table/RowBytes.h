#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "access/table/TableDefinition.h"

namespace tavi::access {

/// The parts of a stored row, taken apart as needed. Layout: column count [2], fixed area, variable data, end of data
/// [2], offsets of the variable values in reverse order [2 each], their count [2], null mask (bit = column id, 1 = not
/// null). A table without variable columns has no part between fixed area and mask. The bytes must outlive the view.
/// Places that do not fit raise ProviderFailure.
class RowView {
 public:
  RowView(std::span<const std::uint8_t> bytes, bool hasVariablePart);

  /// True when the row holds a value of the column (its bit is set; for a Boolean the bit is the value).
  [[nodiscard]] bool HasBit(std::uint16_t columnId) const;
  /// The stored bytes of a column's value; nothing when it is null or the row is older than the column.
  [[nodiscard]] std::optional<std::span<const std::uint8_t>> ValueBytes(const ColumnDefinition& column) const;

 private:
  [[nodiscard]] std::uint16_t At(std::size_t offset) const;

  std::span<const std::uint8_t> bytes_;
  std::size_t columnCount_ = 0;
  std::size_t variableCount_ = 0;
  std::size_t maskOffset_ = 0;
};

/// The stored bytes of one column's value, or nothing for null. A Boolean's bytes are empty; `set` is its bit.
struct ColumnBytes {
  bool set = false;
  std::vector<std::uint8_t> bytes;
};

/// Puts a row together; `columns` are in the order of definition.columns. Raises ProviderFailure when it is larger than
/// a page takes.
std::vector<std::uint8_t> AssembleRow(const TableDefinition& definition, const std::vector<ColumnBytes>& columns);

}  // namespace tavi::access
