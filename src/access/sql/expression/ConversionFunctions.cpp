// Conversions by name: CInt and its kin, Str, Val, Hex, Oct, Format. Those with a C refuse Null, since their type has
// no place for it; the others hand it on. Whole numbers are rounded to the nearest, halves to even, as everywhere in
// expressions; what does not fit the type is an overflow and never cut.
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

#include "access/sql/expression/Coercion.h"
#include "access/sql/expression/FormatText.h"
#include "access/sql/expression/Functions.h"
#include "access/table/ValueCodec.h"
#include "platform/values/Convert.h"
#include "platform/values/Error.h"
#include "platform/values/Text.h"

namespace tavi::access::sql {
namespace {

using Arguments = std::span<const Value>;

template <typename Whole>
Whole InRange(const Value& value) {
  const std::int32_t number = LongOf(value);
  if (number < std::numeric_limits<Whole>::min() || number > std::numeric_limits<Whole>::max()) RaiseOverflow();
  return static_cast<Whole>(number);
}

Value CStr(Arguments arguments, const Scope&) {
  return TextOf(arguments[0]);
}
/// InRange rounds before it looks at the range: 32767.4 is an Integer.
Value CInt(Arguments arguments, const Scope&) {
  return InRange<std::int16_t>(arguments[0]);
}
Value CByte(Arguments arguments, const Scope&) {
  return InRange<std::uint8_t>(arguments[0]);
}
Value CLng(Arguments arguments, const Scope&) {
  return LongOf(arguments[0]);
}
Value CDbl(Arguments arguments, const Scope&) {
  return NumberOf(arguments[0]);
}
Value CDate(Arguments arguments, const Scope&) {
  return DateOf(arguments[0]);
}

/// A single has 24 bits: what is left of the digits is rounded, what is too large is refused.
Value CSng(Arguments arguments, const Scope&) {
  const double number = NumberOf(arguments[0]);
  if (std::abs(number) > static_cast<double>(std::numeric_limits<float>::max())) RaiseOverflow();
  return static_cast<float>(number);
}

/// The amount that a text writes. Raises a type conflict for a text that is no number.
Value ExactAmount(const std::string& text) {
  constexpr std::uint8_t kPrecision = 19;
  constexpr std::uint8_t kScale = 4;
  // Raises the conflict for what is no number; the value itself would have lost digits.
  static_cast<void>(NumberOf(text));
  const std::optional<Decimal> number = ParseDecimal(Trim(text), kPrecision, kScale);
  const std::optional<Currency> amount = number ? ToCurrency(*number) : std::nullopt;
  if (!amount) RaiseOverflow("the amount is too large");
  return *amount;
}

Value CCur(Arguments arguments, const Scope&) {
  if (std::holds_alternative<Currency>(arguments[0])) return arguments[0];
  // A double has too few digits for the largest amounts.
  if (const auto* text = std::get_if<std::string>(&arguments.front())) return ExactAmount(*text);
  if (const auto* number = std::get_if<Decimal>(&arguments.front())) return ExactAmount(DecimalText(*number));
  constexpr double kUnit = 10000.0;
  // 2 to the power of 63: the first number that an amount cannot hold.
  constexpr double kLimit = 9.2233720368547758e18;
  const double amount = RoundHalfEven(NumberOf(arguments[0]) * kUnit, 0);
  if (!(std::abs(amount) < kLimit)) RaiseOverflow("the amount is too large");
  return Currency{static_cast<std::int64_t>(amount)};
}

/// Texts are "True" and "False" in any case, or numbers.
Value CBool(Arguments arguments, const Scope&) {
  if (const auto* text = std::get_if<std::string>(&arguments.front())) {
    try {
      return ToBoolean(*text);
    } catch (const Error&) {
      RaiseTypeConflict();
    }
  }
  return NumberOf(arguments[0]) != 0.0;
}

/// The number with a blank in the place of its sign when it has none.
/// The blank is the place of the sign, so that columns of such texts stand in line.
Value Str(Arguments arguments, const Scope&) {
  const bool isNegative = NumberOf(arguments[0]) < 0.0;
  return (isNegative ? "" : " ") + TextOf(arguments[0]);
}

/// The longest start of a text that is a number; blanks do not count; 0 when there is none. &H and &O as in statements.
/// Val("1 2e3 km") is 12000.
Value Val(Arguments arguments, const Scope&) {
  std::string text;
  for (const char character : TextOf(arguments[0])) {
    if (character != ' ' && character != '\t' && character != '\n' && character != '\r') text.push_back(character);
  }
  const bool isHexadecimal = text.starts_with("&H") || text.starts_with("&h");
  if (isHexadecimal || text.starts_with("&O") || text.starts_with("&o")) {
    std::uint32_t number = 0;
    std::from_chars(text.data() + 2, text.data() + text.size(), number, isHexadecimal ? 16 : 8);
    return static_cast<double>(static_cast<std::int32_t>(number));
  }
  // The library reads no plus sign.
  if (text.starts_with('+')) text.erase(0, 1);
  // The library would read "inf" and "nan" as numbers; here only what begins with a digit or a point, behind a sign, is
  // one.
  const bool beginsNumber = text.find_first_of("0123456789.") == (text.starts_with('-') ? 1U : 0U);
  double number = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
  if (!beginsNumber || read.ec == std::errc::invalid_argument) return 0.0;
  if (read.ec != std::errc()) RaiseOverflow();
  return number;
}

/// Negative numbers have the digits of their 32 bits: Hex(-1) is FFFFFFFF.
Value InBase(const Value& value, int base) {
  std::array<char, 40> buffer{};
  const auto number = static_cast<std::uint32_t>(LongOf(value));
  const auto written = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, base);
  std::string text(buffer.data(), written.ptr);
  for (char& digit : text) {
    if (digit >= 'a') digit = static_cast<char>(digit - 'a' + 'A');
  }
  return text;
}

Value Hex(Arguments arguments, const Scope&) {
  return InBase(arguments[0], 16);
}
Value Oct(Arguments arguments, const Scope&) {
  return InBase(arguments[0], 8);
}

/// Further arguments, about weeks, are taken and change nothing.
Value Format(Arguments arguments, const Scope&) {
  return FormatText(arguments[0], arguments.size() > 1 ? TextOf(arguments[1]) : std::string());
}

// Least and most arguments, then what a Null among them means.
constexpr auto kRefuse = Function::Nulls::Refuse;
constexpr Function kConversionFunctions[] = {
    {"CSTR", 1, 1, kRefuse, Gives::Text, CStr},    {"CINT", 1, 1, kRefuse, Gives::Short, CInt},
    {"CLNG", 1, 1, kRefuse, Gives::Long, CLng},    {"CDBL", 1, 1, kRefuse, Gives::Double, CDbl},
    {"CSNG", 1, 1, kRefuse, Gives::Single, CSng},  {"CCUR", 1, 1, kRefuse, Gives::Currency, CCur},
    {"CDATE", 1, 1, kRefuse, Gives::Date, CDate},  {"CBOOL", 1, 1, kRefuse, Gives::Boolean, CBool},
    {"CBYTE", 1, 1, kRefuse, Gives::Byte, CByte},  {"STR", 1, 1, kPropagate, Gives::Text, Str},
    {"VAL", 1, 1, kPropagate, Gives::Double, Val}, {"HEX", 1, 1, kPropagate, Gives::Text, Hex},
    {"OCT", 1, 1, kPropagate, Gives::Text, Oct},   {"FORMAT", 1, 4, kPropagate, Gives::Text, Format},
};

}  // namespace

std::span<const Function> ConversionFunctions() {
  return kConversionFunctions;
}

}  // namespace tavi::access::sql
