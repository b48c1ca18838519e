#include <array>
#include <cmath>
#include <span>

#include "host/dump/DatabaseDump.h"
#include "platform/values/Convert.h"
#include "platform/values/Date.h"
#include "platform/values/Digits.h"
#include "platform/values/Text.h"

// Values as other readers of Access files can write them, too, so that dumps of one file by several programs are
// compared by line. Where programs differ by habit the form is fixed here: no locale, no negative zero, the fewest
// digits of a floating-point number, seconds rounded, line breaks as escapes so that a row is one line.
namespace tavi::host {

namespace {

// In bytes: a picture of a megabyte would make lines that nothing can compare. Its digest tells as well whether it is
// the same.
constexpr std::size_t kLongestHexadecimal = 256;

std::string Hexadecimal(std::span<const std::uint8_t> bytes) {
  return LowerCase(HexadecimalText(bytes));
}

std::string BytesText(const Bytes& bytes) {
  return bytes.size() > kLongestHexadecimal ? "sha256:" + Hexadecimal(Sha256(bytes)) : Hexadecimal(bytes);
}

/// "1.5e-7": no plus sign, no leading zeros.
std::string ExponentText(const DecimalDigits& number) {
  const std::string rest = number.digits.substr(1);
  return number.digits.substr(0, 1) + (rest.empty() ? "" : "." + rest) + "e" + std::to_string(number.exponent);
}

/// Of a single's own digits and not those of the double nearest to it: 0.1, not 0.10000000149011612.
template <typename Float>
std::string FloatText(Float number) {
  if (std::isnan(number)) return "nan";
  if (std::isinf(number)) return number > 0 ? "inf" : "-inf";
  // Before the sign is looked at, as both zeros are one.
  if (number == Float{0}) return "0";
  const Float size = std::abs(number);
  // People and spreadsheets read plain numbers; the bounds are a part of the form.
  const bool isPlain = static_cast<double>(size) >= 1e-5 && static_cast<double>(size) < 1e16;
  const DecimalDigits digits = FewestDigits(size);
  return (number < 0 ? "-" : "") + (isPlain ? PlainText(digits) : ExponentText(digits));
}

/// Rounded to the nearest second, also across midnight: 23:59:59.7 is 00:00:00 of the next day. (Date itself stays on
/// its day.) The whole part of a negative date counts backwards, but its fraction forwards, so that the next day is one
/// more in either case.
std::string DateText(Date date) {
  // A damaged file may hold what is no number; it has no day.
  if (!std::isfinite(date.days)) return FloatText(date.days);
  const double day = std::trunc(date.days);
  const double seconds = std::floor((std::abs(date.days) - std::abs(day)) * kSecondsOfDay + 0.5);
  Date shown{day};
  int second = static_cast<int>(seconds);
  if (seconds >= kSecondsOfDay) {
    shown.days += 1;
    second = 0;
  }
  const auto twoDigits = [](int number) { return (number < 10 ? "0" : "") + std::to_string(number); };
  return shown.Iso().substr(0, 10) + "T" + twoDigits(second / 3600) + ":" + twoDigits(second / 60 % 60) + ":" +
         twoDigits(second % 60);
}

bool IsSurrogate(char32_t codePoint) {
  return codePoint >= 0xD800 && codePoint <= 0xDFFF;
}

/// A surrogate without its partner, as texts of damaged or old files hold one.
std::string SurrogateText(char32_t codePoint) {
  const std::array<std::uint8_t, 2> bytes = {static_cast<std::uint8_t>(codePoint >> 8U),
                                             static_cast<std::uint8_t>(codePoint & 0xFFU)};
  return "\\u" + Hexadecimal(bytes);
}

/// A field is one line without tabs, so that lines can be sorted, counted and compared.
std::string EscapedText(const std::string& text) {
  std::string escaped;
  for (const char32_t codePoint : ToCodePoints(text)) {
    switch (codePoint) {
      case U'\\':
        escaped += "\\\\";
        break;
      case U'\t':
        escaped += "\\t";
        break;
      case U'\n':
        escaped += "\\n";
        break;
      case U'\r':
        escaped += "\\r";
        break;
      case U'\0':
        escaped += "\\0";
        break;
      default:
        escaped += IsSurrogate(codePoint) ? SurrogateText(codePoint) : FromCodePoints({&codePoint, 1});
    }
  }
  return escaped;
}

/// Chooses the form by the type of the value.
struct Formatter {
  std::string operator()(Null) const { return "\\N"; }
  std::string operator()(bool value) const { return value ? "true" : "false"; }
  std::string operator()(std::uint8_t value) const { return std::to_string(value); }
  std::string operator()(std::int16_t value) const { return std::to_string(value); }
  std::string operator()(std::int32_t value) const { return std::to_string(value); }
  std::string operator()(float value) const { return FloatText(value); }
  std::string operator()(double value) const { return FloatText(value); }
  std::string operator()(Currency value) const { return CurrencyText(value); }
  std::string operator()(const Decimal& value) const { return DecimalText(value); }
  std::string operator()(Date value) const { return DateText(value); }
  std::string operator()(const std::string& value) const { return EscapedText(value); }
  std::string operator()(const Bytes& value) const { return BytesText(value); }
  std::string operator()(const Guid& value) const { return GuidText(value); }
};

}  // namespace

std::string TsvText(const Value& value) {
  return std::visit(Formatter{}, value);
}

}  // namespace tavi::host
