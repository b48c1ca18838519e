#include "platform/values/Digits.h"

#include <array>
#include <charconv>
#include <cstdlib>
#include <string_view>

// All texts of numbers come from the standard library's scientific form, "1.25e-03", which is exact, independent of the
// locale and has the digits and the exponent apart. It is taken to pieces here and put together again as people write
// numbers: 0.00125.
namespace tavi {
namespace {

/// Longer than any number in scientific notation with the digits that are asked for here.
using Buffer = std::array<char, 64>;

/// Takes "1.25e-03" apart.
DecimalDigits ReadScientific(std::string_view text) {
  const std::size_t mark = text.find('e');
  DecimalDigits number;
  for (const char character : text.substr(0, mark)) {
    if (character != '.') number.digits.push_back(character);
  }
  number.digits.erase(number.digits.find_last_not_of('0') + 1);
  // The library reads no plus sign.
  const std::string_view exponent = text.substr(mark + (text[mark + 1] == '+' ? 2 : 1));
  std::from_chars(exponent.data(), exponent.data() + exponent.size(), number.exponent);
  return number;
}

/// With a precision the digits are rounded to it; without, they are the fewest that are read back as the same number.
template <typename... Precision>
DecimalDigits DigitsOf(auto number, Precision... precision) {
  Buffer buffer{};
  const auto written =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, std::chars_format::scientific, precision...);
  return ReadScientific({buffer.data(), static_cast<std::size_t>(written.ptr - buffer.data())});
}

/// "1.5E+15": an exponent of at least two digits with its sign.
std::string ExponentText(const DecimalDigits& number) {
  std::string text = number.digits.substr(0, 1);
  if (number.digits.size() > 1) text += "." + number.digits.substr(1);
  const std::string exponent = std::to_string(std::abs(number.exponent));
  return text + (number.exponent < 0 ? "E-" : "E+") + (exponent.size() < 2 ? "0" : "") + exponent;
}

}  // namespace

DecimalDigits RoundedDigits(double number, int count) {
  // The library counts the digits behind the point; one stands before it.
  return DigitsOf(number, count - 1);
}

DecimalDigits FewestDigits(double number) {
  return DigitsOf(number);
}

DecimalDigits FewestDigits(float number) {
  return DigitsOf(number);
}

std::string PlainText(const DecimalDigits& number) {
  if (number.exponent < 0) {
    return "0." + std::string(static_cast<std::size_t>(-number.exponent - 1), '0') + number.digits;
  }
  // So many digits stand before the point: exponent 0 is one, "1.25".
  const std::size_t whole = static_cast<std::size_t>(number.exponent) + 1;
  if (number.digits.size() <= whole) return number.digits + std::string(whole - number.digits.size(), '0');
  return number.digits.substr(0, whole) + "." + number.digits.substr(whole);
}

std::string GeneralText(const DecimalDigits& number) {
  constexpr int kFirstPlainExponent = -5;
  if (number.digits.empty()) return "0";
  const bool isPlain = number.exponent >= kFirstPlainExponent && number.exponent < kSignificantDigits;
  return isPlain ? PlainText(number) : ExponentText(number);
}

std::string HexadecimalText(std::span<const std::uint8_t> bytes) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string text;
  for (const std::uint8_t byte : bytes) {
    text.push_back(kDigits[byte >> 4U]);
    text.push_back(kDigits[byte & 0xFU]);
  }
  return text;
}

}  // namespace tavi
