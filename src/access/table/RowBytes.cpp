#include "access/table/RowBytes.h"

#include <algorithm>

#include "access/file/Bytes.h"
#include "access/file/EngineError.h"
#include "access/file/Format.h"
#include "access/table/ValueCodec.h"

namespace tavi::access {
namespace {

namespace r = format::row;

constexpr std::size_t kBitsPerByte = 8;

std::size_t MaskSize(std::size_t columnCount) {
  return (columnCount + kBitsPerByte - 1) / kBitsPerByte;
}

/// End of the fixed area: behind the column that lies farthest.
std::size_t FixedAreaEnd(const TableDefinition& definition) {
  std::size_t end = 0;
  for (const ColumnDefinition& column : definition.columns) {
    if (column.IsFixed()) end = std::max(end, column.fixedOffset + FixedSize(column));
  }
  return r::kFixedAreaOffset + end;
}

}  // namespace

RowView::RowView(std::span<const std::uint8_t> bytes, bool hasVariablePart) : bytes_(bytes) {
  columnCount_ = At(r::kColumnCountOffset);
  const std::size_t mask = MaskSize(columnCount_);
  if (mask + r::kFixedAreaOffset > bytes.size())
    RaiseDamage("A row is too short for its " + std::to_string(columnCount_) + " columns");
  maskOffset_ = bytes.size() - mask;
  if (!hasVariablePart) return;
  if (maskOffset_ < r::kFixedAreaOffset + r::kVariableCountSize)
    RaiseDamage("A row is too short for its variable part");
  variableCount_ = At(maskOffset_ - r::kVariableCountSize);
  const std::size_t trailer = r::kVariableCountSize + (variableCount_ + 1) * r::kVariableOffsetSize;
  if (trailer > maskOffset_)
    RaiseDamage("A row is too short for its " + std::to_string(variableCount_) + " variable values");
}

std::uint16_t RowView::At(std::size_t offset) const {
  if (offset + sizeof(std::uint16_t) > bytes_.size())
    RaiseDamage("A row ends before byte " + std::to_string(offset + 2));
  return GetLittle<std::uint16_t>(bytes_, offset);
}

bool RowView::HasBit(std::uint16_t columnId) const {
  if (columnId >= columnCount_) return false;
  return (bytes_[maskOffset_ + columnId / kBitsPerByte] >> (columnId % kBitsPerByte) & 1U) != 0;
}

std::optional<std::span<const std::uint8_t>> RowView::ValueBytes(const ColumnDefinition& column) const {
  if (!HasBit(column.id)) return std::nullopt;
  if (column.IsFixed()) {
    const std::size_t start = r::kFixedAreaOffset + column.fixedOffset;
    const std::size_t size = FixedSize(column);
    if (start + size > maskOffset_) RaiseDamage("A row ends inside the value of column " + column.name);
    return bytes_.subspan(start, size);
  }
  if (column.variableIndex >= variableCount_) return std::nullopt;
  // The offset of variable value 0 lies last; the entry before an offset is where its value ends.
  const std::size_t entry = maskOffset_ - r::kVariableCountSize - (column.variableIndex + 1U) * r::kVariableOffsetSize;
  const std::size_t start = At(entry);
  const std::size_t end = At(entry - r::kVariableOffsetSize);
  if (start > end || end > maskOffset_) {
    RaiseDamage("The value of column " + column.name + " lies outside its row (bytes " + std::to_string(start) +
                " to " + std::to_string(end) + ")");
  }
  return bytes_.subspan(start, end - start);
}

std::vector<std::uint8_t> AssembleRow(const TableDefinition& definition, const std::vector<ColumnBytes>& columns) {
  std::vector<std::uint8_t> row(FixedAreaEnd(definition));
  PutLittle<std::uint16_t>(row, r::kColumnCountOffset, definition.columnIdCounter);
  std::vector<std::uint8_t> mask(MaskSize(definition.columnIdCounter));
  std::vector<const ColumnBytes*> variable(definition.variableColumnCounter);
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const ColumnDefinition& column = definition.columns[i];
    if (!columns[i].set) continue;
    mask.at(column.id / kBitsPerByte) |= static_cast<std::uint8_t>(1U << column.id % kBitsPerByte);
    if (column.IsFixed()) {
      std::copy(columns[i].bytes.begin(), columns[i].bytes.end(),
                row.begin() + static_cast<std::ptrdiff_t>(r::kFixedAreaOffset + column.fixedOffset));
    } else {
      variable.at(column.variableIndex) = &columns[i];
    }
  }
  if (definition.variableColumnCounter > 0) {
    std::vector<std::size_t> offsets;
    for (const ColumnBytes* value : variable) {
      offsets.push_back(row.size());
      if (value != nullptr) row.insert(row.end(), value->bytes.begin(), value->bytes.end());
    }
    offsets.push_back(row.size());
    if (row.size() > r::kMaximumSize) RaiseFailure("Record is too large.");
    const auto append = [&row](std::size_t number) {
      row.resize(row.size() + 2);
      PutLittle<std::uint16_t>(row, row.size() - 2, static_cast<std::uint16_t>(number));
    };
    for (auto offset = offsets.rbegin(); offset != offsets.rend(); ++offset) append(*offset);
    append(variable.size());
  }
  row.insert(row.end(), mask.begin(), mask.end());
  if (row.size() > r::kMaximumSize) RaiseFailure("Record is too large.");
  row.resize(std::max(row.size(), r::kMinimumSize));
  return row;
}

}  // namespace tavi::access
