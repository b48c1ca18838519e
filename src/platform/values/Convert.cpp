#include "platform/values/Convert.h"

#include <charconv>
#include <cmath>
#include <limits>

#include "platform/values/Date.h"
#include "platform/values/Digits.h"
#include "platform/values/Error.h"
#include "platform/values/Text.h"

// The conversions of the automation language. Each asks the value for its type once (std::visit) and either answers or
// raises an error that shows the value and says what was wanted. Two rules hold for all of them: true is -1, and what
// is half-way goes to the even neighbour, 2.5 to 2 and 3.5 to 4. Amounts and decimals are converted by way of their
// exact decimal text, because a double would round them once before the conversion rounds them again.
namespace tavi {
namespace {

constexpr const char* kSource = "TaviMembership";
// As many digits as every 32-bit float has that was read from a text of so many.
constexpr int kSingleDigits = 7;

/// A way of looking at each type of value with one function.
template <typename... Functions>
struct Overloaded : Functions... {
  using Functions::operator()...;
};
template <typename... Functions>
Overloaded(Functions...) -> Overloaded<Functions...>;

/// The value as messages quote it. A memo of a megabyte is cut, so that the message stays one line.
std::string Shown(const Value& value) {
  if (IsNull(value)) return "Null";
  // A NUL would end the message.
  const std::string text = ReplaceAll(ToText(value), std::string_view("\0", 1), " ");
  constexpr std::size_t kMostCharacters = 40;
  return "\"" + (TextLength(text) > kMostCharacters ? FirstCharacters(text, kMostCharacters) + "..." : text) + "\"";
}

[[noreturn]] void ThrowMismatch(const Value& value, const std::string& wanted) {
  throw Error(ErrorNumber::TypeMismatch, kSource, "Type mismatch: " + Shown(value) + " is not " + wanted + ".");
}

[[noreturn]] void ThrowOverflow(const Value& value, const std::string& wanted) {
  throw Error(ErrorNumber::Overflow, kSource, "Overflow: " + Shown(value) + " does not fit into " + wanted + ".");
}

/// Rounds a plain decimal text ("-12.5") exactly: a decimal number can hold more digits than a double.
std::optional<std::int64_t> RoundedText(std::string_view text) {
  const bool negative = text.starts_with('-');
  if (negative) text.remove_prefix(1);
  const std::size_t point = text.find('.');
  std::int64_t whole = 0;
  const std::string_view wholeText = text.substr(0, point);
  if (std::from_chars(wholeText.data(), wholeText.data() + wholeText.size(), whole).ec != std::errc()) {
    return std::nullopt;
  }
  const std::string_view fraction = point == std::string_view::npos ? std::string_view() : text.substr(point + 1);
  // The comparison is one of texts: "49" < "5" < "51", digit by digit as fractions compare.
  // No trailing zeros are written, so that a fraction of just "5" is exactly one half.
  const bool isRoundedUp = fraction > "5" || (fraction == "5" && whole % 2 != 0);
  if (isRoundedUp && whole == std::numeric_limits<std::int64_t>::max()) return std::nullopt;
  if (isRoundedUp) ++whole;
  return negative ? -whole : whole;
}

/// Nothing for what no 64-bit number holds; the limit lies below 2^63, so that the cast is always defined. Not-a-number
/// fails the comparison and gives nothing, too.
std::optional<std::int64_t> RoundedDouble(double number) {
  constexpr double kLimit = 9.0e18;
  if (!(std::abs(number) < kLimit)) return std::nullopt;
  return static_cast<std::int64_t>(RoundHalfEven(number, 0));
}

/// The value as a whole number, nothing when it is too large for 64 bits.
std::optional<std::int64_t> WholeNumber(const Value& value) {
  return std::visit(Overloaded{[](bool truth) -> std::optional<std::int64_t> { return truth ? -1 : 0; },
                               [](std::uint8_t number) -> std::optional<std::int64_t> { return number; },
                               [](std::int16_t number) -> std::optional<std::int64_t> { return number; },
                               [](std::int32_t number) -> std::optional<std::int64_t> { return number; },
                               [](Currency amount) { return RoundedText(CurrencyText(amount)); },
                               [](const Decimal& number) { return RoundedText(DecimalText(number)); },
                               [&value](const auto&) { return RoundedDouble(ToDouble(value)); }},
                    value);
}

/// All whole numbers are made in 64 bits and then fitted, so that a number is too large for its type in one place only.
template <typename Whole>
Whole ToWhole(const Value& value, const std::string& wanted) {
  if (IsNull(value)) ThrowMismatch(value, wanted);
  const std::optional<std::int64_t> number = WholeNumber(value);
  if (!number || *number < std::numeric_limits<Whole>::min() || *number > std::numeric_limits<Whole>::max()) {
    ThrowOverflow(value, wanted);
  }
  return static_cast<Whole>(*number);
}

// The language writes truth values into texts as words and takes them back as numbers.
double NumberFromText(const std::string& text) {
  if (EqualIgnoringCase(text, "True")) return -1.0;
  if (EqualIgnoringCase(text, "False")) return 0.0;
  const std::optional<double> number = ParseNumber(text);
  if (!number) ThrowMismatch(text, "a number");
  return *number;
}

/// Reads up to four digits; 0 for another text.
int SmallNumber(std::string_view text) {
  int number = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
  return read.ec == std::errc() && read.ptr == text.data() + text.size() && text.size() <= 4 ? number : 0;
}

/// Reads "d mmm yyyy" or "d/m/yyyy" by rewriting it in ISO form; a time of day may follow.
/// Not ParseDateText: conversions of the component take these three forms and no others, so that "5/3" or a time alone
/// stays a mismatch instead of becoming some day.
std::optional<Date> DateFromText(const std::string& text) {
  if (const std::optional<Date> date = Date::FromIso(text)) return date;
  const bool hasSlashes = text.find('/') != std::string::npos;
  std::vector<std::string> words = Split(text, ' ');
  std::vector<std::string> parts = hasSlashes ? Split(words[0], '/') : words;
  // How many words the date takes; one more may be the time.
  const std::size_t dateWords = hasSlashes ? 1 : 3;
  if (parts.size() < 3 || words.size() > dateWords + 1 || parts[2].size() != 4) return std::nullopt;
  const int day = SmallNumber(parts[0]);
  const int month = hasSlashes ? SmallNumber(parts[1]) : MonthOfName(parts[1]);
  if (day < 1 || day > 31 || month < 1 || month > 12) return std::nullopt;
  const auto twoDigits = [](int number) { return (number < 10 ? "0" : "") + std::to_string(number); };
  std::string iso = parts[2] + "-" + twoDigits(month) + "-" + twoDigits(day);
  if (words.size() > dateWords) iso += "T" + words.back();
  return Date::FromIso(iso);
}

/// A single's text has the seven digits that it holds, not those of the nearest double.
std::string SingleText(float number) {
  if (!std::isfinite(number)) return NumberText(static_cast<double>(number));
  return (number < 0 ? "-" : "") + GeneralText(RoundedDigits(static_cast<double>(std::abs(number)), kSingleDigits));
}

}  // namespace

bool ToBoolean(const Value& value) {
  if (const bool* truth = std::get_if<bool>(&value)) return *truth;
  if (IsNull(value)) ThrowMismatch(value, "a truth value");
  // Texts take this way too: "True" is -1, "0" is false, and "yes" is a mismatch.
  return ToDouble(value) != 0.0;
}

std::int16_t ToInt16(const Value& value) {
  return ToWhole<std::int16_t>(value, "a 16-bit whole number");
}

std::int32_t ToInt32(const Value& value) {
  return ToWhole<std::int32_t>(value, "a 32-bit whole number");
}

double ToDouble(const Value& value) {
  return std::visit(
      Overloaded{[](bool truth) { return truth ? -1.0 : 0.0; },
                 [](std::uint8_t number) { return static_cast<double>(number); },
                 [](std::int16_t number) { return static_cast<double>(number); },
                 [](std::int32_t number) { return static_cast<double>(number); },
                 [](float number) { return static_cast<double>(number); }, [](double number) { return number; },
                 // The double nearest to the decimal writing. A division by 10000 would round twice where the amount
                 // has more than 53 bits.
                 [](Currency amount) { return ParseNumber(CurrencyText(amount)).value_or(0.0); },
                 [](const Decimal& number) { return ParseNumber(DecimalText(number)).value_or(0.0); },
                 [](Date date) { return date.days; }, [](const std::string& text) { return NumberFromText(text); },
                 [&value](const auto&) -> double { ThrowMismatch(value, "a number"); }},
      value);
}

Date ToDate(const Value& value) {
  if (const Date* date = std::get_if<Date>(&value)) return *date;
  if (const std::string* text = std::get_if<std::string>(&value)) {
    const std::optional<Date> date = DateFromText(Trim(*text));
    if (!date) ThrowMismatch(value, "a date; write it as yyyy-mm-dd");
    return *date;
  }
  // A date of a text has been checked against the calendar by reading it; a number has not.
  const Date date{ToDouble(value)};
  if (!date.IsInCalendar()) ThrowOverflow(value, "a date of the years 100 to 9999");
  return date;
}

std::string ToText(const Value& value) {
  return std::visit(
      Overloaded{
          [](bool truth) { return std::string(truth ? "True" : "False"); },
          [](std::uint8_t number) { return std::to_string(number); },
          [](std::int16_t number) { return std::to_string(number); },
          [](std::int32_t number) { return std::to_string(number); }, [](float number) { return SingleText(number); },
          [](double number) { return NumberText(number); }, [](Currency amount) { return CurrencyText(amount); },
          [](const Decimal& number) { return DecimalText(number); }, [](Date date) { return date.Iso(); },
          [](const std::string& text) { return text; }, [](const Bytes& bytes) { return HexadecimalText(bytes); },
          [](const Guid& guid) { return GuidText(guid); },
          [&value](Null) -> std::string { ThrowMismatch(value, "a text"); }},
      value);
}

std::string GuidText(const Guid& guid) {
  std::string text = HexadecimalText(guid.bytes);
  // From the back, so that an inserted sign does not move the places that are still to come.
  for (const std::size_t position : {20U, 16U, 12U, 8U}) text.insert(position, "-");
  return "{" + text + "}";
}

}  // namespace tavi
