#include <cmath>
#include <limits>
#include <string>

#include "access/file/EngineError.h"
#include "access/file/Format.h"
#include "access/table/RowCodec.h"
#include "access/table/TextEncoding.h"
#include "access/table/ValueCodec.h"
#include "platform/values/Convert.h"
#include "platform/values/Text.h"

// What comes from a program or a statement becomes what a column holds, as Access does it on storing. Whole numbers are
// rounded to even by the general conversions; money and decimals are made from decimal texts instead, because a double
// is not exact: 1.00005 as money has to be seen as half-way, which no double is. All errors leave here with the name of
// the field.

namespace tavi::access {

namespace {

/// Money is a whole number of ten-thousandths in 64 bits, which has 19 digits at most.
constexpr std::uint8_t kCurrencyScale = 4;
constexpr std::uint8_t kCurrencyPrecision = 19;

/// The first sentence of each of these errors is the one that programs know from Access; what follows is for people.
[[noreturn]] void RaiseMismatch(const ColumnDefinition& column) {
  throw Error(ErrorNumber::ProviderTypeConflict, kErrorSource,
              "Data type mismatch in criteria expression. The value given does not convert to the type of the field '" +
                  column.name + "'.");
}

[[noreturn]] void RaiseOutOfRange(const ColumnDefinition& column) {
  throw Error(ErrorNumber::ProviderTypeConflict, kErrorSource,
              "Numeric field overflow. The value given is too large for the field '" + column.name + "'.");
}

[[noreturn]] void RaiseTooLong(const ColumnDefinition& column, std::size_t length, std::size_t limit) {
  RaiseFailure(
      "The field is too small to accept the amount of data you attempted to add. Try inserting or pasting less data. "
      "The field '" +
      column.name + "' takes " + std::to_string(limit) + ", the value has " + std::to_string(length) + ".");
}

/// The decimal text of any value that is a number, or of a text that writes one. A double gives its text of at most 15
/// digits, which is what people take its value to be.
std::string NumberTextOf(const Value& value) {
  if (const auto* amount = std::get_if<Currency>(&value)) return CurrencyText(*amount);
  if (const auto* number = std::get_if<Decimal>(&value)) return DecimalText(*number);
  if (const auto* text = std::get_if<std::string>(&value)) {
    static_cast<void>(ToDouble(value));  // raises for a text that is no number
    return Trim(*text);
  }
  return NumberText(ToDouble(value));
}

/// True is -1 in whole numbers; a byte has no sign, so it is 255.
Value ToByteColumn(const Value& value, const ColumnDefinition& column) {
  if (const bool* truth = std::get_if<bool>(&value)) return static_cast<std::uint8_t>(*truth ? 0xFF : 0);
  const std::int16_t number = ToInt16(value);
  if (number < 0 || number > std::numeric_limits<std::uint8_t>::max()) RaiseOutOfRange(column);
  return static_cast<std::uint8_t>(number);
}

/// Infinite numbers stay what they are; a finite one may not become infinite.
Value ToSingleColumn(const Value& value, const ColumnDefinition& column) {
  const double number = ToDouble(value);
  if (std::isfinite(number) && std::abs(number) > static_cast<double>(std::numeric_limits<float>::max())) {
    RaiseOutOfRange(column);
  }
  return static_cast<float>(number);
}

// Too many digits, and 19 digits that 64 bits do not hold, are the same error.
Value ToCurrencyColumn(const Value& value, const ColumnDefinition& column) {
  const auto number = ParseDecimal(NumberTextOf(value), kCurrencyPrecision, kCurrencyScale);
  const auto amount = number ? ToCurrency(*number) : std::nullopt;
  if (!amount) RaiseOutOfRange(column);
  return *amount;
}

// A Numeric of another scale comes this way as well: its digits are rounded at the column's scale, and counted.
Value ToNumericColumn(const Value& value, const ColumnDefinition& column) {
  const auto number = ParseDecimal(NumberTextOf(value), column.precision, column.scale);
  if (!number) RaiseOutOfRange(column);
  return *number;
}

/// As Access stores a Boolean in a text field; in expressions its text is "True".
Value ToTextColumn(const Value& value) {
  if (const bool* truth = std::get_if<bool>(&value)) return std::string(*truth ? "-1" : "0");
  return ToText(value);
}

int HexDigit(char character) {
  if (character >= '0' && character <= '9') return character - '0';
  if (character >= 'a' && character <= 'f') return character - 'a' + 10;
  if (character >= 'A' && character <= 'F') return character - 'A' + 10;
  return -1;
}

/// With or without braces and hyphens; all 32 digits have to be there.
Value ToGuidColumn(const Value& value, const ColumnDefinition& column) {
  const auto* text = std::get_if<std::string>(&value);
  if (text == nullptr) RaiseMismatch(column);
  Guid guid;
  std::size_t digits = 0;
  for (const char character : Trim(*text)) {
    if (character == '{' || character == '}' || character == '-') continue;
    const int digit = HexDigit(character);
    if (digit < 0 || digits == 2 * guid.bytes.size()) RaiseMismatch(column);
    std::uint8_t& byte = guid.bytes[digits / 2];
    byte = static_cast<std::uint8_t>(byte << 4U | digit);
    ++digits;
  }
  if (digits != 2 * guid.bytes.size()) RaiseMismatch(column);
  return guid;
}

// Whole numbers of 16 and 32 bits, dates and Booleans follow the general conversions, which round halves to even; their
// overflow becomes the column's error below. Bytes of any kind are never made of other values.
Value Converted(const Value& value, const ColumnDefinition& column) {
  switch (column.type) {
    case ColumnType::Boolean:
      return ToBoolean(value);
    case ColumnType::Byte:
      return ToByteColumn(value, column);
    case ColumnType::Integer:
      return ToInt16(value);
    case ColumnType::Long:
    case ColumnType::Complex:
      return ToInt32(value);
    case ColumnType::Currency:
      return ToCurrencyColumn(value, column);
    case ColumnType::Single:
      return ToSingleColumn(value, column);
    case ColumnType::Double:
      return ToDouble(value);
    case ColumnType::Date:
      return ToDate(value);
    case ColumnType::Numeric:
      return ToNumericColumn(value, column);
    case ColumnType::Text:
    case ColumnType::Memo:
      return ToTextColumn(value);
    case ColumnType::Guid:
      return ToGuidColumn(value, column);
    default:
      RaiseMismatch(column);
  }
}

template <typename Type>
bool Holds(const Value& value) {
  return std::holds_alternative<Type>(value);
}

/// Most values come in their column's type already: then nothing is made anew.
bool HasColumnType(const Value& value, const ColumnDefinition& column) {
  switch (column.type) {
    case ColumnType::Boolean:
      return Holds<bool>(value);
    case ColumnType::Byte:
      return Holds<std::uint8_t>(value);
    case ColumnType::Integer:
      return Holds<std::int16_t>(value);
    case ColumnType::Long:
    case ColumnType::Complex:
      return Holds<std::int32_t>(value);
    case ColumnType::Currency:
      return Holds<Currency>(value);
    case ColumnType::Single:
      return Holds<float>(value);
    case ColumnType::Double:
      return Holds<double>(value);
    case ColumnType::Date:
      return Holds<Date>(value);
    case ColumnType::Text:
    case ColumnType::Memo:
      return Holds<std::string>(value);
    case ColumnType::Guid:
      return Holds<Guid>(value);
    case ColumnType::Numeric:
      return false;  // its scale and number of digits must fit too
    default:
      return Holds<Bytes>(value);
  }
}

void CheckStoredForm(const Value& value, const ColumnDefinition& column) {
  const auto* text = std::get_if<std::string>(&value);
  if (text == nullptr || HasStoredForm(*text)) return;
  RaiseFailure("The field '" + column.name +
               "' cannot hold the text: it begins with the character U+FEFF (a byte-order mark), which the file takes "
               "for the mark of another form. Leave that character out.");
}

/// Texts are limited by UTF-16 units, as a column states its length in bytes of these, whether or not a value is stored
/// compressed. Memo and OLE have a limit of their own, where they are stored.
void CheckLength(const Value& value, const ColumnDefinition& column) {
  CheckStoredForm(value, column);
  if (const auto* text = std::get_if<std::string>(&value); text != nullptr && column.type == ColumnType::Text) {
    const std::size_t limit = column.length / sizeof(char16_t);
    const std::size_t length = Utf16Length(*text);
    if (length > limit) RaiseTooLong(column, length, limit);
  }
  if (const auto* bytes = std::get_if<Bytes>(&value); bytes != nullptr && !column.IsLongValue()) {
    if (bytes->size() > column.length) RaiseTooLong(column, bytes->size(), column.length);
  }
}

}  // namespace

// Null goes into every column here; whether a column must have a value is asked where rows are checked. A Boolean
// column knows no null: it becomes False.
Value ConvertForColumn(const Value& value, const ColumnDefinition& column) {
  if (IsNull(value)) return column.type == ColumnType::Boolean ? Value{false} : Value{};
  if (HasColumnType(value, column)) {
    CheckLength(value, column);
    return value;
  }
  try {
    Value converted = Converted(value, column);
    CheckLength(converted, column);
    return converted;
  } catch (const Error& error) {
    // The general conversions do not know the field.
    if (error.Is(ErrorNumber::TypeMismatch)) RaiseMismatch(column);
    if (error.Is(ErrorNumber::Overflow)) RaiseOutOfRange(column);
    throw;
  }
}

Value ConvertForStatement(const Value& value, const ColumnDefinition& column) {
  Value converted = ConvertForColumn(value, column);
  if (auto* number = std::get_if<double>(&converted); number != nullptr && *number == 0.0) *number = 0.0;
  if (auto* number = std::get_if<float>(&converted); number != nullptr && *number == 0.0F) *number = 0.0F;
  if (auto* date = std::get_if<Date>(&converted); date != nullptr && date->days == 0.0) date->days = 0.0;
  return converted;
}

}  // namespace tavi::access
