#pragma once

#include <cstdint>
#include <span>

#include "access/table/TableDefinition.h"

namespace tavi::access {

/// The outline of a stored row (Jet 4): whether its parts fit together and how long they are. For checks, and for
/// finding out how much room old rows take; values are read by RowView.
class RowShape {
 public:
  /// Raises ProviderFailure that says what does not fit when the bytes are no row of the table.
  RowShape(std::span<const std::uint8_t> row, const TableDefinition& definition);

  /// Columns that the table had when the row was written.
  [[nodiscard]] std::size_t ColumnCount() const { return columnCount_; }
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
