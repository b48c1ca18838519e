#include "access/table/ValueCodec.h"

#include <algorithm>
#include <bit>
#include <string>
#include <utility>

#include "access/file/Bytes.h"
#include "access/file/EngineError.h"
#include "access/file/Format.h"
#include "access/table/TextEncoding.h"
#include "platform/values/CodePages.h"

// What a value is in a row, type by type. Both ways stand side by side, so that the one is seen to undo the other.
// Nothing is converted here: a value of another type than its column's is refused (see ConvertForColumn for bringing it
// there), because a silent conversion would store what nobody checked.
//
// Whether a column has a fixed place in the row is the column's own matter (its flag), not its type's: there are texts
// of fixed length and numbers of variable place. Only the length of the bytes follows from the type.

namespace tavi::access {

namespace {

namespace numeric = format::numeric;

using Stored = std::span<const std::uint8_t>;

constexpr std::uint8_t kBlank = 0x20;
constexpr std::size_t kGuidSize = 16;

double GetDouble(Stored stored) {
  return std::bit_cast<double>(GetLittle<std::uint64_t>(stored, 0));
}

/// Stored bytes are swapped in the first three groups against the printed order; the same map leads back.
/// {0FC49B7B-E656-4228-...} is stored as 7B 9B C4 0F 56 E6 28 42 ...
constexpr std::array<std::size_t, kGuidSize> kGuidOrder = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};

Guid DecodeGuid(Stored stored) {
  Guid guid;
  for (std::size_t i = 0; i < kGuidSize; ++i) guid.bytes[i] = stored[kGuidOrder[i]];
  return guid;
}

/// Four words, the most significant first, each of them little-endian: neither order of 16 bytes.
Decimal DecodeNumeric(Stored stored, std::uint8_t scale) {
  std::array<std::uint64_t, numeric::kWordCount> words{};
  for (std::size_t i = 0; i < words.size(); ++i) {
    words[i] = GetLittle<std::uint32_t>(stored, numeric::kMagnitudeOffset + i * sizeof(std::uint32_t));
  }
  Decimal number;
  number.negative = (stored[0] & numeric::kNegative) != 0;
  number.high = (words[0] << 32U) | words[1];
  number.low = (words[2] << 32U) | words[3];
  number.scale = scale;
  return number;
}

/// A text of fixed length is never compressed, so FF FE at its start are characters like others.
std::string DecodeTextColumn(Stored stored, const ColumnDefinition& column, const FormatVersion& version) {
  if (version.isJet3) return DecodeCodePage(stored, version.codePage);
  return column.IsFixed() ? DecodePlainText(stored) : DecodeText(stored);
}

template <typename Integer>
Bytes LittleEndian(Integer value) {
  Bytes bytes(sizeof(Integer));
  PutLittle(std::span(bytes), 0, value);
  return bytes;
}

Bytes EncodeGuid(const Guid& guid) {
  Bytes bytes(kGuidSize);
  for (std::size_t i = 0; i < kGuidSize; ++i) bytes[kGuidOrder[i]] = guid.bytes[i];
  return bytes;
}

Bytes EncodeNumeric(const Decimal& number) {
  const std::array<std::uint64_t, numeric::kWordCount> words = {number.high >> 32U, number.high, number.low >> 32U,
                                                                number.low};
  Bytes bytes(numeric::kSize);
  // Zero has no sign, so that equal numbers have equal bytes and equal keys.
  const bool isZero = number.high == 0 && number.low == 0;
  // The value itself is not scaled here: it comes with the scale of its column.
  bytes[0] = number.negative && !isZero ? numeric::kNegative : numeric::kPositive;
  for (std::size_t i = 0; i < words.size(); ++i) {
    PutLittle(std::span(bytes), numeric::kMagnitudeOffset + i * sizeof(std::uint32_t),
              static_cast<std::uint32_t>(words[i]));
  }
  return bytes;
}

/// A text of fixed length is filled up with blanks, which are read with it. Its length was checked before
/// (ConvertForColumn); the last step is for an odd number of bytes in a damaged definition.
Bytes EncodeTextColumn(const std::string& text, const ColumnDefinition& column) {
  if (!column.IsFixed()) return EncodeText(text, column.IsCompressed());
  Bytes bytes = EncodePlainText(text);
  while (bytes.size() + 1 < column.length) {
    bytes.push_back(kBlank);
    bytes.push_back(0);
  }
  bytes.resize(column.length);
  return bytes;
}

/// Bytes of a fixed length are filled up with zeros; the column's length was checked before.
Bytes EncodeBinary(Bytes bytes, const ColumnDefinition& column) {
  if (column.IsFixed()) bytes.resize(column.length);
  return bytes;
}

[[noreturn]] void RaiseWrongType(const ColumnDefinition& column) {
  throw Error(ErrorNumber::ProviderTypeConflict, kErrorSource,
              "Data type mismatch in criteria expression. The value for the field '" + column.name +
                  "' is not of the field's type.");
}

/// The error that programs know for a value of a wrong type; it names the field.
template <typename Type>
const Type& Require(const Value& value, const ColumnDefinition& column) {
  const Type* held = std::get_if<Type>(&value);
  if (held == nullptr) RaiseWrongType(column);
  return *held;
}

}  // namespace

// Where the type does not decide, a fixed column has its own length, and a variable one what its offsets say. A Boolean
// has no bytes at all.
std::optional<std::size_t> SizeOfType(ColumnType type) {
  switch (type) {
    case ColumnType::Byte:
      return sizeof(std::uint8_t);
    case ColumnType::Integer:
      return sizeof(std::int16_t);
    case ColumnType::Long:
    case ColumnType::Complex:
      return sizeof(std::int32_t);
    case ColumnType::Single:
      return sizeof(float);
    case ColumnType::Currency:
    case ColumnType::Double:
    case ColumnType::Date:
      return sizeof(double);
    case ColumnType::Guid:
      return kGuidSize;
    case ColumnType::Numeric:
      return numeric::kSize;
    default:
      return std::nullopt;
  }
}

// What is of no known type is handed out as bytes, so that a row can be read, copied and compared without being
// understood.
Value DecodeValue(Stored stored, const ColumnDefinition& column, const FormatVersion& version) {
  const std::size_t size = SizeOfType(column.type).value_or(0);
  // Only for types of a fixed size. A variable one is what its offsets say, which RowView has checked.
  if (stored.size() < size) {
    RaiseDamage("the value of the field '" + column.name + "' has " + std::to_string(stored.size()) +
                " bytes instead of " + std::to_string(size) + ".");
  }
  switch (column.type) {
    case ColumnType::Byte:
      return stored[0];
    case ColumnType::Integer:
      return static_cast<std::int16_t>(GetLittle<std::uint16_t>(stored, 0));
    case ColumnType::Long:
    case ColumnType::Complex:
      return static_cast<std::int32_t>(GetLittle<std::uint32_t>(stored, 0));
    case ColumnType::Currency:
      return Currency{static_cast<std::int64_t>(GetLittle<std::uint64_t>(stored, 0))};
    case ColumnType::Single:
      return std::bit_cast<float>(GetLittle<std::uint32_t>(stored, 0));
    case ColumnType::Double:
      return GetDouble(stored);
    case ColumnType::Date:
      return Date{GetDouble(stored)};
    case ColumnType::Guid:
      return DecodeGuid(stored);
    case ColumnType::Numeric:
      return DecodeNumeric(stored, column.scale);
    case ColumnType::Text:
    case ColumnType::Memo:
      return DecodeTextColumn(stored, column, version);
    default:
      return Bytes(stored.begin(), stored.end());
  }
}

// The lists of types in both functions are alike on purpose; a type that is missing here falls under the bytes, where a
// value of another kind is refused.
Bytes EncodeValue(const Value& value, const ColumnDefinition& column) {
  switch (column.type) {
    case ColumnType::Byte:
      return {Require<std::uint8_t>(value, column)};
    case ColumnType::Integer:
      return LittleEndian(static_cast<std::uint16_t>(Require<std::int16_t>(value, column)));
    case ColumnType::Long:
    case ColumnType::Complex:
      return LittleEndian(static_cast<std::uint32_t>(Require<std::int32_t>(value, column)));
    case ColumnType::Currency:
      return LittleEndian(static_cast<std::uint64_t>(Require<Currency>(value, column).tenThousandths));
    case ColumnType::Single:
      return LittleEndian(std::bit_cast<std::uint32_t>(Require<float>(value, column)));
    case ColumnType::Double:
      return LittleEndian(std::bit_cast<std::uint64_t>(Require<double>(value, column)));
    case ColumnType::Date:
      return LittleEndian(std::bit_cast<std::uint64_t>(Require<Date>(value, column).days));
    case ColumnType::Guid:
      return EncodeGuid(Require<Guid>(value, column));
    case ColumnType::Numeric:
      return EncodeNumeric(Require<Decimal>(value, column));
    case ColumnType::Text:
      return EncodeTextColumn(Require<std::string>(value, column), column);
    default:
      return EncodeBinary(Require<Bytes>(value, column), column);
  }
}

}  // namespace tavi::access
