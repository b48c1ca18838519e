#include "access/table/RowCodec.h"

#include <cmath>
#include <limits>

#include "access/file/EngineError.h"
#include "access/table/TextEncoding.h"
#include "platform/values/Convert.h"

namespace tavi::access {
namespace {

constexpr double kCurrencyScale = 10000.0;

[[noreturn]] void RaiseConflict(const ColumnDefinition& column) {
  throw Error(ErrorNumber::ProviderTypeConflict, kErrorSource,
              "Data type mismatch: the value does not fit the type of column " + column.name + ".");
}

/// A number rounded to the nearest whole one, ties to even, within the limits of a type.
template <typename Integer>
Integer ToWhole(const Value& value, const ColumnDefinition& column) {
  const double rounded = RoundHalfEven(ToDouble(value), 0);
  if (!(rounded >= static_cast<double>(std::numeric_limits<Integer>::min()) &&
        rounded <= static_cast<double>(std::numeric_limits<Integer>::max()))) {
    throw Error(ErrorNumber::ProviderTypeConflict, kErrorSource,
                "Overflow: " + NumberText(rounded) + " is out of the range of column " + column.name + ".");
  }
  return static_cast<Integer>(rounded);
}

Currency ToCurrency(const Value& value, const ColumnDefinition& column) {
  if (const auto* amount = std::get_if<Currency>(&value)) return *amount;
  const double scaled = RoundHalfEven(ToDouble(value) * kCurrencyScale, 0);
  if (!(std::abs(scaled) < 9.2e18)) RaiseConflict(column);
  return {static_cast<std::int64_t>(scaled)};
}

Decimal ToDecimal(const Value& value, const ColumnDefinition& column) {
  if (const auto* number = std::get_if<Decimal>(&value); number != nullptr && number->scale == column.scale)
    return *number;
  const double scaled = RoundHalfEven(ToDouble(value) * std::pow(10.0, column.scale), 0);
  if (!(std::abs(scaled) < 3.4e38)) RaiseConflict(column);
  const double magnitude = std::abs(scaled);
  constexpr double kHigh = 18446744073709551616.0;  // 2^64
  Decimal number;
  number.high = static_cast<std::uint64_t>(magnitude / kHigh);
  number.low = static_cast<std::uint64_t>(magnitude - static_cast<double>(number.high) * kHigh);
  number.negative = scaled < 0.0;
  number.scale = column.scale;
  return number;
}

std::string ToColumnText(const Value& value, const ColumnDefinition& column) {
  std::string text = ToText(value);
  if (column.type == ColumnType::Text && StoredLength(text) * 2 > column.length) {
    RaiseFailure(
        "The field is too small to accept the amount of data you attempted to add. Try inserting or pasting less "
        "data. (Column " +
        column.name + " takes " + std::to_string(column.length / 2) + " characters.)");
  }
  return text;
}

Bytes ToBytes(const Value& value, const ColumnDefinition& column) {
  const auto* bytes = std::get_if<Bytes>(&value);
  if (bytes == nullptr) RaiseConflict(column);
  if (column.type != ColumnType::Ole && bytes->size() > column.length) {
    RaiseFailure("The field is too small to accept the amount of data you attempted to add. (Column " + column.name +
                 " takes " + std::to_string(column.length) + " bytes.)");
  }
  return *bytes;
}

Value Converted(const Value& value, const ColumnDefinition& column) {
  switch (column.type) {
    case ColumnType::Boolean:
      return ToBoolean(value);
    case ColumnType::Byte:
      return ToWhole<std::uint8_t>(value, column);
    case ColumnType::Integer:
      return ToWhole<std::int16_t>(value, column);
    case ColumnType::Long:
    case ColumnType::Complex:
      return ToWhole<std::int32_t>(value, column);
    case ColumnType::Currency:
      return ToCurrency(value, column);
    case ColumnType::Single:
      return static_cast<float>(ToDouble(value));
    case ColumnType::Double:
      return ToDouble(value);
    case ColumnType::Date:
      return ToDate(value);
    case ColumnType::Text:
    case ColumnType::Memo:
      return ToColumnText(value, column);
    case ColumnType::Numeric:
      return ToDecimal(value, column);
    case ColumnType::Guid:
      if (!std::holds_alternative<Guid>(value)) RaiseConflict(column);
      return value;
    default:
      return ToBytes(value, column);
  }
}

}  // namespace

Value ConvertForColumn(const Value& value, const ColumnDefinition& column) {
  if (IsNull(value)) return column.type == ColumnType::Boolean ? Value(false) : value;
  try {
    return Converted(value, column);
  } catch (const Error& error) {
    if (error.Is(ErrorNumber::TypeMismatch) || error.Is(ErrorNumber::Overflow)) RaiseConflict(column);
    throw;
  }
}

}  // namespace tavi::access
