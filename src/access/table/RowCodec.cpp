#include "access/table/RowCodec.h"

#include <algorithm>
#include <span>
#include <string>

#include "access/file/Bytes.h"
#include "access/file/EngineError.h"
#include "access/file/Format.h"
#include "access/table/ValueCodec.h"

// A row is always written as the definition is at that moment: with a place for every fixed column, an offset for every
// variable one that the table ever had, and a bit for every number given out. So a dropped column still costs a row its
// fixed place, or two bytes of offset, and all rows of one age have their values in the same places. A row that changes
// is laid out anew, whatever its age, but for one in which numbers take the place of numbers.

namespace tavi::access {

namespace {

namespace row_layout = format::row;

/// Behind the last fixed column that there is now. What dropped columns before it had is left zero; the place of those
/// behind it may be used again, as Access does.
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

/// A Boolean's value is its bit.
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
  // The area is zero already, and a null leaves it so.
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
    // The end of the data. In a row of more than 65,535 bytes offsets are cut; it is refused by its length in the end.
    AppendWord(row_, row_.size());
    for (auto offset = offsets.rbegin(); offset != offsets.rend(); ++offset) AppendWord(row_, *offset);
    AppendWord(row_, stored.size());
  }

  // By their place in the offset table, not in the order of the definition. Places of dropped columns and nulls stay
  // empty: start and end of the value are the same.
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
      // The bit goes by the column's number; those of dropped columns stay 0.
      const std::uint16_t id = definition_.columns[i].id;
      mask.at(id / format::kBitsPerByte) |= static_cast<std::uint8_t>(1U << (id % format::kBitsPerByte));
    }
    // A row must be able to hold the pointer that it leaves behind when it moves. Only a row without variable columns
    // can be so short, and in it nothing says where the fixed area ends.
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
