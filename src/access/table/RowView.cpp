#include "access/table/RowView.h"

#include <string>

#include "access/file/Bytes.h"
#include "access/file/EngineError.h"
#include "access/file/Format.h"
#include "access/table/ValueCodec.h"

// A row is read from both ends: the fixed columns from its start, everything else from its end, where the null mask and
// the offsets are. How many of each there are the row says itself, as it was when it was written: the table may have
// got columns since. A column that is asked for goes through the same questions in turn: did the row know it (its
// number against the row's count), has it a value (its bit), where is it. No number of the row is used before it was
// held against the row's length.

namespace tavi::access {

namespace {

namespace jet3_row = format::jet3::row;

/// Places of the trailer's parts, as offsets in the row.
struct Trailer {
  std::size_t variableCount = 0;  // columns, not a place
  std::size_t lastJump = 0;       // of the first entry of the jump table; the others lie below
  std::size_t jumpCount = 0;
  std::size_t firstOffset = 0;  // of column 0; the others lie below, the end of the data last
};

/// Every part's size depends on the one behind it, so the trailer is taken apart from the end. A row has a jump for
/// each 256 bytes before its last one.
std::optional<Trailer> FindTrailer(std::span<const std::uint8_t> row, std::size_t maskSize) {
  if (row.size() < maskSize + jet3_row::kVariableCountSize + jet3_row::kColumnCountSize) return std::nullopt;
  Trailer trailer;
  const std::size_t countPlace = row.size() - maskSize - jet3_row::kVariableCountSize;
  trailer.variableCount = row[countPlace];
  const std::size_t jumps = (row.size() - 1) / jet3_row::kJumpStep;
  const std::size_t size = jumps + trailer.variableCount + 1;
  if (countPlace < size + jet3_row::kColumnCountSize) return std::nullopt;
  trailer.lastJump = countPlace - 1;
  trailer.firstOffset = countPlace - jumps - 1;
  // The last entry is a dummy where the data end before the offset that it would be for.
  const bool hasDummy = (trailer.firstOffset - trailer.variableCount) / jet3_row::kJumpStep < jumps;
  trailer.jumpCount = hasDummy ? jumps - 1 : jumps;
  return trailer;
}

/// Offsets grow with the column, so 256 is added for each jump whose column is not behind this one. Also asked for the
/// column behind the last, whose offset is the end of the data.
std::size_t OffsetOf(std::span<const std::uint8_t> row, const Trailer& trailer, std::size_t variableIndex) {
  std::size_t offset = row[trailer.firstOffset - variableIndex];
  for (std::size_t i = 0; i < trailer.jumpCount; ++i) {
    if (row[trailer.lastJump - i] <= variableIndex) offset += jet3_row::kJumpStep;
  }
  return offset;
}

}  // namespace

std::optional<Jet3Extent> FindJet3Variable(std::span<const std::uint8_t> row, std::size_t maskSize,
                                           std::size_t variableIndex) {
  const std::optional<Trailer> trailer = FindTrailer(row, maskSize);
  if (!trailer || variableIndex >= trailer->variableCount) return std::nullopt;
  return Jet3Extent{OffsetOf(row, *trailer, variableIndex), OffsetOf(row, *trailer, variableIndex + 1)};
}

std::size_t Jet3VariableCount(std::span<const std::uint8_t> row, std::size_t maskSize) {
  const std::optional<Trailer> trailer = FindTrailer(row, maskSize);
  return trailer ? trailer->variableCount : 0;
}

namespace {

namespace row_layout = format::row;

}  // namespace

RowView::RowView(std::span<const std::uint8_t> bytes, const FormatVersion& version, RowPointer row)
    : bytes_(bytes), version_(version), row_(row) {
  const std::size_t countSize = version_.isJet3 ? format::jet3::row::kColumnCountSize : row_layout::kColumnCountSize;
  if (bytes_.size() >= countSize) {
    columnCount_ = version_.isJet3 ? bytes_[0] : GetLittle<std::uint16_t>(bytes_, row_layout::kColumnCountOffset);
  }
  // No table without columns has rows; a stretch of zeros would look like such a row.
  if (columnCount_ == 0) Raise("it says that it has no columns.");
  maskSize_ = (columnCount_ + format::kBitsPerByte - 1) / format::kBitsPerByte;
  if (bytes_.size() < countSize + maskSize_) {
    Raise("it is too short, " + std::to_string(bytes_.size()) + " bytes for " + std::to_string(columnCount_) +
          " columns.");
  }
}

void RowView::Raise(const std::string& what) const {
  RaiseDamage("row " + std::to_string(row_.row) + " of page " + std::to_string(row_.page) + ": " + what);
}

bool RowView::MaskBit(std::uint16_t columnId) const {
  // The column came later: null, or False.
  if (columnId >= columnCount_) return false;
  const std::size_t mask = bytes_.size() - maskSize_;
  const unsigned byte = bytes_[mask + columnId / format::kBitsPerByte];
  return ((byte >> (columnId % format::kBitsPerByte)) & 1U) != 0;
}

bool RowView::IsNull(const ColumnDefinition& column) const {
  if (column.type == ColumnType::Boolean) return false;
  if (!MaskBit(column.id)) return true;
  // Likewise for a variable column that the row has no offset for.
  return !column.IsFixed() && column.variableIndex >= VariableCount();
}

std::span<const std::uint8_t> RowView::Stored(const ColumnDefinition& column) const {
  return column.IsFixed() ? FixedBytes(column) : VariableBytes(column);
}

Value RowView::Get(const ColumnDefinition& column) const {
  if (column.type == ColumnType::Boolean) return MaskBit(column.id);
  if (IsNull(column)) return Null{};
  return DecodeValue(Stored(column), column, version_);
}

std::span<const std::uint8_t> RowView::FixedBytes(const ColumnDefinition& column) const {
  const std::size_t area = version_.isJet3 ? format::jet3::row::kFixedAreaOffset : row_layout::kFixedAreaOffset;
  const std::size_t begin = area + column.fixedOffset;
  // The type decides where it can: the length of a column is a number like any other in a damaged definition.
  const std::size_t size = SizeOfType(column.type).value_or(column.length);
  const std::size_t end = bytes_.size() - maskSize_;
  if (begin > end || size > end - begin) {
    Raise("the field '" + column.name + "' at byte " + std::to_string(begin) + " lies past the end, " +
          std::to_string(end) + ".");
  }
  return bytes_.subspan(begin, size);
}

// A column that has a mask bit existed when the row was written, so there is a variable part when it is a variable one.
std::size_t RowView::VariableCount() const {
  if (version_.isJet3) return Jet3VariableCount(bytes_, maskSize_);
  const std::size_t trailer = maskSize_ + row_layout::kVariableCountSize + row_layout::kEndOfDataSize;
  if (bytes_.size() < row_layout::kColumnCountSize + trailer) Raise("it is too short for its variable fields.");
  return GetLittle<std::uint16_t>(bytes_, bytes_.size() - maskSize_ - row_layout::kVariableCountSize);
}

std::span<const std::uint8_t> RowView::VariableBytes(const ColumnDefinition& column) const {
  std::size_t begin = 0;
  std::size_t end = 0;
  std::size_t limit = bytes_.size() - maskSize_;
  if (version_.isJet3) {
    const Jet3Extent extent = FindJet3Variable(bytes_, maskSize_, column.variableIndex).value_or(Jet3Extent{});
    begin = extent.first;
    end = extent.end;
  } else {
    const std::size_t count = VariableCount();
    const std::size_t trailer =
        row_layout::kVariableCountSize + count * row_layout::kVariableOffsetSize + row_layout::kEndOfDataSize;
    if (column.variableIndex >= count || limit < row_layout::kColumnCountSize + trailer) {
      Raise("its " + std::to_string(count) + " variable fields do not fit into " + std::to_string(bytes_.size()) +
            " bytes.");
    }
    // Offsets stand in reverse: that of column 0 just before the count, and before each the one of the next column.
    // Before the last there is the end of the data, so that "the next offset" is always right.
    const std::size_t place = limit - row_layout::kVariableCountSize - row_layout::kVariableOffsetSize -
                              column.variableIndex * row_layout::kVariableOffsetSize;
    begin = GetLittle<std::uint16_t>(bytes_, place);
    end = GetLittle<std::uint16_t>(bytes_, place - row_layout::kVariableOffsetSize);
    // Values end where the trailer begins. There may be padding between.
    limit -= trailer;
  }
  if (begin > end || end > limit) {
    Raise("the field '" + column.name + "' is said to lie at bytes " + std::to_string(begin) + " to " +
          std::to_string(end) + " of " + std::to_string(limit) + ".");
  }
  return bytes_.subspan(begin, end - begin);
}

}  // namespace tavi::access
