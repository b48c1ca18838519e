#include "access/table/ValueCodec.h"

#include <algorithm>
#include <bit>

#include "access/file/Bytes.h"
#include "access/file/EngineError.h"
#include "access/file/Format.h"
#include "access/table/TextEncoding.h"

namespace tavi::access {
namespace {

constexpr std::uint8_t kBlank = 0x20;

template <typename Integer>
Integer Whole(std::span<const std::uint8_t> bytes, const ColumnDefinition& column) {
  if (bytes.size() < sizeof(Integer)) {
    RaiseDamage("The value of column " + column.name + " has " + std::to_string(bytes.size()) + " bytes instead of " +
                std::to_string(sizeof(Integer)));
  }
  return GetLittle<Integer>(bytes, 0);
}

template <typename Integer>
std::vector<std::uint8_t> Little(Integer value) {
  std::vector<std::uint8_t> bytes(sizeof(Integer));
  PutLittle<Integer>(bytes, 0, value);
  return bytes;
}

// Bytes 0-3 little-endian, 4-5, 6-7 likewise, the rest as written; this turns either form into the other.
void SwapGuidParts(std::array<std::uint8_t, 16>& bytes) {
  std::reverse(bytes.begin(), bytes.begin() + 4);
  std::reverse(bytes.begin() + 4, bytes.begin() + 6);
  std::reverse(bytes.begin() + 6, bytes.begin() + 8);
}

Value DecodeGuid(std::span<const std::uint8_t> bytes, const ColumnDefinition& column) {
  static_cast<void>(Whole<std::uint64_t>(bytes.size() < 16 ? bytes.first(0) : bytes, column));
  Guid guid;
  std::copy_n(bytes.begin(), guid.bytes.size(), guid.bytes.begin());
  SwapGuidParts(guid.bytes);
  return guid;
}

Value DecodeNumeric(std::span<const std::uint8_t> bytes, const ColumnDefinition& column) {
  namespace n = format::numeric;
  if (bytes.size() < n::kSize) static_cast<void>(Whole<std::uint64_t>(bytes.first(0), column));
  const auto word = [&](std::size_t i) {
    return std::uint64_t{GetLittle<std::uint32_t>(bytes, n::kMagnitudeOffset + 4 * i)};
  };
  Decimal number;
  number.negative = bytes[0] != n::kPositive;
  number.high = word(0) << 32U | word(1);
  number.low = word(2) << 32U | word(3);
  number.scale = column.scale;
  if (number.high == 0 && number.low == 0) number.negative = false;
  return number;
}

std::vector<std::uint8_t> EncodeNumeric(const Decimal& number) {
  namespace n = format::numeric;
  std::vector<std::uint8_t> bytes(n::kSize);
  bytes[0] = number.negative ? n::kNegative : n::kPositive;
  const std::uint64_t halves[] = {number.high, number.low};
  for (std::size_t i = 0; i < 2; ++i) {
    PutLittle<std::uint32_t>(bytes, n::kMagnitudeOffset + 8 * i, static_cast<std::uint32_t>(halves[i] >> 32U));
    PutLittle<std::uint32_t>(bytes, n::kMagnitudeOffset + 8 * i + 4, static_cast<std::uint32_t>(halves[i]));
  }
  return bytes;
}

std::vector<std::uint8_t> EncodeTextColumn(const std::string& text, const ColumnDefinition& column) {
  if (!column.IsFixed()) return EncodeText(text, column.IsCompressed());
  std::vector<std::uint8_t> bytes = EncodePlainText(text);
  while (bytes.size() + 1 < column.length) {
    bytes.push_back(kBlank);
    bytes.push_back(0);
  }
  bytes.resize(column.length);
  return bytes;
}

}  // namespace

std::size_t FixedSize(const ColumnDefinition& column) {
  return column.type == ColumnType::Boolean ? 0 : column.length;
}

Value DecodeValue(std::span<const std::uint8_t> bytes, const ColumnDefinition& column) {
  switch (column.type) {
    case ColumnType::Byte:
      return Whole<std::uint8_t>(bytes, column);
    case ColumnType::Integer:
      return static_cast<std::int16_t>(Whole<std::uint16_t>(bytes, column));
    case ColumnType::Long:
    case ColumnType::Complex:
      return static_cast<std::int32_t>(Whole<std::uint32_t>(bytes, column));
    case ColumnType::Currency:
      return Currency{static_cast<std::int64_t>(Whole<std::uint64_t>(bytes, column))};
    case ColumnType::Single:
      return std::bit_cast<float>(Whole<std::uint32_t>(bytes, column));
    case ColumnType::Double:
      return std::bit_cast<double>(Whole<std::uint64_t>(bytes, column));
    case ColumnType::Date:
      return Date{std::bit_cast<double>(Whole<std::uint64_t>(bytes, column))};
    case ColumnType::Guid:
      return DecodeGuid(bytes, column);
    case ColumnType::Numeric:
      return DecodeNumeric(bytes, column);
    case ColumnType::Text:
      return DecodeText(bytes);
    default:
      return Bytes(bytes.begin(), bytes.end());
  }
}

std::vector<std::uint8_t> EncodeValue(const Value& value, const ColumnDefinition& column) {
  switch (column.type) {
    case ColumnType::Byte:
      return Little(std::get<std::uint8_t>(value));
    case ColumnType::Integer:
      return Little(static_cast<std::uint16_t>(std::get<std::int16_t>(value)));
    case ColumnType::Long:
    case ColumnType::Complex:
      return Little(static_cast<std::uint32_t>(std::get<std::int32_t>(value)));
    case ColumnType::Currency:
      return Little(static_cast<std::uint64_t>(std::get<Currency>(value).tenThousandths));
    case ColumnType::Single:
      return Little(std::bit_cast<std::uint32_t>(std::get<float>(value)));
    case ColumnType::Double:
      return Little(std::bit_cast<std::uint64_t>(std::get<double>(value)));
    case ColumnType::Date:
      return Little(std::bit_cast<std::uint64_t>(std::get<Date>(value).days));
    case ColumnType::Numeric:
      return EncodeNumeric(std::get<Decimal>(value));
    case ColumnType::Text:
      return EncodeTextColumn(std::get<std::string>(value), column);
    case ColumnType::Guid: {
      std::array<std::uint8_t, 16> bytes = std::get<Guid>(value).bytes;
      SwapGuidParts(bytes);
      return {bytes.begin(), bytes.end()};
    }
    default: {
      std::vector<std::uint8_t> bytes = std::get<Bytes>(value);
      if (column.IsFixed()) bytes.resize(column.length);
      return bytes;
    }
  }
}

}  // namespace tavi::access
