#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "access/table/TableDefinition.h"

namespace tavi::access {

/// The outline of a stored row (Jet 4): which columns have values and where they lie, without decoding them. For checks
/// and for finding out how much room old rows take; rows are read and written by TableRows.
class RowShape {
 public:
  /// Raises ProviderFailure that says what does not fit when the bytes are no row of the table.
  RowShape(std::span<const std::uint8_t> row, const TableDefinition& definition);

  /// Columns that the table had when the row was written.
  [[nodiscard]] std::size_t ColumnCount() const { return columnCount_; }
  /// Whether the row says that a column (by id) has a value.
  [[nodiscard]] bool HasValue(std::uint16_t columnId) const;
  /// The bytes of a variable column (by slot); nothing when the row has none.
  [[nodiscard]] std::optional<std::span<const std::uint8_t>> Variable(std::size_t variableIndex) const;
  /// Bytes of the fixed area.
  [[nodiscard]] std::size_t FixedAreaSize() const { return fixedEnd_ - fixedStart_; }

 private:
  [[nodiscard]] std::uint16_t Word(std::size_t offset) const;
  [[nodiscard]] std::size_t VariableOffset(std::size_t variableIndex) const;
  [[nodiscard]] bool TakeVariableOffsets(std::size_t mostVariables);

  std::span<const std::uint8_t> row_;
  std::size_t columnCount_ = 0;
  std::size_t maskSize_ = 0;
  std::size_t variableCount_ = 0;
  std::size_t fixedStart_ = 0;
  std::size_t fixedEnd_ = 0;
};

}  // namespace tavi::access
