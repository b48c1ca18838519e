#include "access/table/RowCodec.h"

#include <algorithm>
#include <span>
#include <string>

#include "access/file/Bytes.h"
#include "access/file/EngineError.h"
#include "access/file/Format.h"
#include "access/table/ValueCodec.h"

namespace tavi::access {

namespace {

namespace row_layout = format::row;

std::size_t FixedAreaEnd(const TableDefinition& definition) {
  std::size_t end = row_layout::kFixedAreaOffset;
  for (const ColumnDefinition& column : definition.columns) {
    if (!column.IsFixed() || column.type == ColumnType::Boolean) continue;
    const std::size_t size = SizeOfType(column.type).value_or(column.length);
    end = std::max(end, row_layout::kFixedAreaOffset + column.fixedOffset + size);
  }
  return end;
}

void AppendWord(Bytes& bytes, std::size_t word) {
  bytes.push_back(static_cast<std::uint8_t>(word & 0xFFU));
  bytes.push_back(static_cast<std::uint8_t>(word >> 8U));
}

bool MaskBitOf(const Value& value) {
  if (const bool* truth = std::get_if<bool>(&value)) return *truth;
  return !IsNull(value);
}

/// Puts the parts of a row together.
class RowWriter {
 public:
  RowWriter(const TableDefinition& definition, const RowValues& values, const std::vector<Bytes>& longValues)
      : definition_(definition), values_(values), longValues_(longValues), row_(FixedAreaEnd(definition)) {}

  Bytes Write() {
    PutLittle(std::span(row_), row_layout::kColumnCountOffset, definition_.columnIdCounter);
    PutFixed();
    if (definition_.variableColumnCounter > 0) AppendVariable();
    AppendMask();
    if (row_.size() > row_layout::kMaximumSize) {
      RaiseFailure("Record is too large. It needs " + std::to_string(row_.size()) +
                   " bytes, of which a record can have " + std::to_string(row_layout::kMaximumSize) +
                   "; shorten its texts or keep them in Memo fields.");
    }
    return std::move(row_);
  }

 private:
  void PutFixed() {
    for (std::size_t i = 0; i < definition_.columns.size(); ++i) {
      const ColumnDefinition& column = definition_.columns[i];
      if (!column.IsFixed() || column.type == ColumnType::Boolean || IsNull(values_[i])) continue;
      const Bytes stored = EncodeValue(values_[i], column);
      std::ranges::copy(stored, row_.begin() + row_layout::kFixedAreaOffset + column.fixedOffset);
    }
  }

  void AppendVariable() {
    const std::vector<Bytes> stored = StoredByIndex();
    std::vector<std::size_t> offsets;
    for (const Bytes& value : stored) {
      offsets.push_back(row_.size());
      row_.insert(row_.end(), value.begin(), value.end());
    }
    // Longer ones are refused in the end, but offsets must fit in a word before.
    AppendWord(row_, row_.size());
    for (auto offset = offsets.rbegin(); offset != offsets.rend(); ++offset) AppendWord(row_, *offset);
    AppendWord(row_, stored.size());
  }

  [[nodiscard]] std::vector<Bytes> StoredByIndex() const {
    std::vector<Bytes> stored(definition_.variableColumnCounter);
    for (std::size_t i = 0; i < definition_.columns.size(); ++i) {
      const ColumnDefinition& column = definition_.columns[i];
      if (column.IsFixed() || column.type == ColumnType::Boolean || IsNull(values_[i])) continue;
      stored.at(column.variableIndex) = column.IsLongValue() ? longValues_.at(i) : EncodeValue(values_[i], column);
    }
    return stored;
  }

  void AppendMask() {
    Bytes mask((definition_.columnIdCounter + format::kBitsPerByte - 1) / format::kBitsPerByte);
    for (std::size_t i = 0; i < definition_.columns.size(); ++i) {
      if (!MaskBitOf(values_[i])) continue;
      const std::uint16_t id = definition_.columns[i].id;
      mask.at(id / format::kBitsPerByte) |= static_cast<std::uint8_t>(1U << (id % format::kBitsPerByte));
    }
    // A row must be able to hold the pointer that it leaves behind when it moves.
    if (row_.size() + mask.size() < row_layout::kMinimumSize) row_.resize(row_layout::kMinimumSize - mask.size());
    row_.insert(row_.end(), mask.begin(), mask.end());
  }

  const TableDefinition& definition_;
  const RowValues& values_;
  const std::vector<Bytes>& longValues_;
  Bytes row_;
};

}  // namespace

void RequireValuePerColumn(const TableDefinition& definition, const RowValues& values) {
  if (values.size() == definition.columns.size()) return;
  RaiseFailure("A row of " + std::to_string(values.size()) + " values was given for a table of " +
               std::to_string(definition.columns.size()) + " fields. Open the table again; it was altered.");
}

Bytes EncodeRow(const TableDefinition& definition, const RowValues& values, const std::vector<Bytes>& longValues) {
  RequireValuePerColumn(definition, values);
  return RowWriter(definition, values, longValues).Write();
}

}  // namespace tavi::access
