// A stored row from its end, where its outline is. A row of a table with a Long and two texts, "ab" and "c", of which
// the bytes are counted from its start:
//
//   0    03 00         columns when it was written: 3
//   2    07 00 00 00   fixed area: the Long
//   6    61 00 62 00   "ab"
//   10   63 00         "c"
//   12   0C 00         end of the data: 12
//   14   0A 00 06 00   where the texts begin, the last first
//   18   02 00         two variable columns when it was written
//   20   07            null mask: all three have values
//
// A row of a table that had no variable column then ends its fixed area at the null mask. Nothing in the row says which
// of the two it is: the columns' records do, and where columns have come and gone, whether the numbers fit together.
#include "access/catalog/RowShape.h"

#include "access/file/Bytes.h"
#include "access/file/EngineError.h"
#include "access/file/Format.h"

namespace tavi::access {

namespace {

namespace row_layout = format::row;

/// How many variable columns a table can have had when it had `columnCount` columns. Each column record holds that
/// number for the time when its column was made.
std::size_t MostVariablesAt(const TableDefinition& definition, std::size_t columnCount) {
  std::size_t most = definition.variableColumnCounter;
  std::size_t nearest = definition.columnIdCounter;
  for (const ColumnDefinition& column : definition.columns) {
    if (column.id < columnCount || column.id >= nearest) continue;
    nearest = column.id;
    most = column.variableIndex;
  }
  return most;
}

}  // namespace

RowShape::RowShape(std::span<const std::uint8_t> row, const TableDefinition& definition) : row_(row) {
  if (row.size() < row_layout::kMinimumSize) RaiseDamage("a row has only " + std::to_string(row.size()) + " bytes.");
  columnCount_ = Word(row_layout::kColumnCountOffset);
  maskSize_ = (columnCount_ + 7) / 8;
  fixedStart_ = row_layout::kFixedAreaOffset;
  if (columnCount_ > definition.columnIdCounter)
    RaiseDamage("a row has " + std::to_string(columnCount_) + " columns, its table only ever had " +
                std::to_string(definition.columnIdCounter) + ".");
  if (fixedStart_ + maskSize_ > row.size()) RaiseDamage("a row is too short for its null mask.");
  const std::size_t mostVariables = MostVariablesAt(definition, columnCount_);
  if (mostVariables > 0 && TakeVariableOffsets(mostVariables)) return;
  // A table without variable columns: the rows have no offsets. Where columns came and went it may have been either.
  variableCount_ = 0;
  fixedEnd_ = row.size() - maskSize_;
}

// Starts ascend from the end of the fixed area, which is where the first value begins, to the end of the data. False
// when they do not.
bool RowShape::TakeVariableOffsets(std::size_t mostVariables) {
  const std::size_t trailer = maskSize_ + row_layout::kVariableCountSize + row_layout::kEndOfDataSize;
  if (fixedStart_ + trailer > row_.size()) return false;
  variableCount_ = Word(row_.size() - maskSize_ - row_layout::kVariableCountSize);
  const std::size_t directory = trailer + variableCount_ * row_layout::kVariableOffsetSize;
  if (variableCount_ > mostVariables || fixedStart_ + directory > row_.size()) return false;
  for (std::size_t i = 0; i <= variableCount_; ++i) {
    const std::size_t start = i == 0 ? fixedStart_ : VariableOffset(i - 1);
    if (VariableOffset(i) < start || VariableOffset(i) > row_.size() - directory) return false;
  }
  fixedEnd_ = VariableOffset(0);
  return true;
}

std::uint16_t RowShape::Word(std::size_t offset) const {
  return GetLittle<std::uint16_t>(row_, offset);
}

// The offset behind that of the last column is the end of the data.
std::size_t RowShape::VariableOffset(std::size_t variableIndex) const {
  return Word(row_.size() - maskSize_ - row_layout::kVariableCountSize -
              (variableIndex + 1) * row_layout::kVariableOffsetSize);
}

}  // namespace tavi::access
