#include <algorithm>
#include <charconv>
#include <limits>
#include <string>

#include "access/table/ValueCodec.h"

// Numbers for Currency and Numeric columns, from their decimal texts and in whole digits all the way: a double would
// not hold 28 digits, and could take a value for more or less than half-way that is exactly so. The text is taken apart
// into digits and the place of the point, the digits are rounded at the column's scale, half-way to even, and only then
// become a binary magnitude of 128 bits in two halves.
//
// Example, "1.00015" for a scale of 4: digits 100015, 5 places; one digit too many, a half; the digit before it is odd,
// so 10002.

namespace tavi::access {

namespace {

// More digits than any number has (a double has exponents down to -324): keeps hostile exponents from making long
// texts.
constexpr long long kMostPlaces = 400;

/// The digits of a number and how many of them lie behind the point (negative: zeros follow).
struct DecimalDigits {
  bool negative = false;
  std::string digits;
  long long places = 0;
};

bool IsDigit(char character) {
  return character >= '0' && character <= '9';
}

/// A sign, digits with at most one point among them, an exponent; a text of any other form is no number here.
std::optional<DecimalDigits> ReadDigits(std::string_view text) {
  DecimalDigits number;
  number.negative = text.starts_with('-');
  if (number.negative || text.starts_with('+')) text.remove_prefix(1);
  bool isBehindPoint = false;
  std::size_t at = 0;
  for (; at < text.size() && (IsDigit(text[at]) || (text[at] == '.' && !isBehindPoint)); ++at) {
    if (text[at] == '.') {
      isBehindPoint = true;
    } else {
      number.digits.push_back(text[at]);
      if (isBehindPoint) ++number.places;
    }
  }
  if (number.digits.empty()) return std::nullopt;
  if (at == text.size()) return number;
  if (text[at] != 'E' && text[at] != 'e') return std::nullopt;
  text.remove_prefix(at + 1);
  if (text.starts_with('+')) text.remove_prefix(1);
  long long exponent = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), exponent);
  if (read.ec != std::errc() || read.ptr != text.data() + text.size()) return std::nullopt;
  number.places -= std::clamp(exponent, -kMostPlaces, kMostPlaces);
  return number;
}

/// A carry through all digits makes the number one digit longer: 999 becomes 1000, which may be too long for the
/// column.
void AddOne(std::string& digits) {
  for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit) {
    if (*digit != '9') {
      ++*digit;
      return;
    }
    *digit = '0';
  }
  digits.insert(digits.begin(), '1');
}

/// Drops the last `count` digits, rounding half to even. Zeros are put in front where there are not enough digits, so
/// that one is left to be rounded up: 0.00006 has the digit 6 and five places.
void RoundAway(std::string& digits, std::size_t count) {
  if (digits.size() < count + 1) digits.insert(0, count + 1 - digits.size(), '0');
  const std::string dropped = digits.substr(digits.size() - count);
  digits.resize(digits.size() - count);
  const std::string half = "5" + std::string(count - 1, '0');
  const bool isOdd = (digits.back() - '0') % 2 != 0;
  if (dropped > half || (dropped == half && isOdd)) AddOne(digits);
}

/// high:low x 10 + digit; the caller knows that it fits. The low half is worked on in two parts of 32 bits, so that no
/// product overflows and the carry can be seen.
void AppendDigit(Decimal& number, unsigned digit) {
  constexpr std::uint64_t kLowHalf = 0xFFFFFFFF;
  const std::uint64_t lower = (number.low & kLowHalf) * 10 + digit;
  const std::uint64_t upper = (number.low >> 32U) * 10 + (lower >> 32U);
  number.low = (upper << 32U) | (lower & kLowHalf);
  number.high = number.high * 10 + (upper >> 32U);
}

}  // namespace

std::optional<Decimal> ParseDecimal(std::string_view text, std::uint8_t precision, std::uint8_t scale) {
  std::optional<DecimalDigits> read = ReadDigits(text);
  if (!read) return std::nullopt;
  std::string& digits = read->digits;
  if (read->places > scale) {
    RoundAway(digits, static_cast<std::size_t>(read->places - scale));
  } else {
    digits.append(static_cast<std::size_t>(scale - read->places), '0');
  }
  // Leading zeros are no digits of the number; of zero itself nothing is left.
  digits.erase(0, digits.find_first_not_of('0'));
  // A magnitude of 128 bits takes any number of 38 digits.
  constexpr std::size_t kMostDigits = 38;
  if (digits.size() > std::min<std::size_t>(precision, kMostDigits)) return std::nullopt;
  Decimal number;
  number.scale = scale;
  for (const char digit : digits) AppendDigit(number, static_cast<unsigned>(digit - '0'));
  // No negative zero: it would be another value to whoever compares bytes.
  number.negative = read->negative && !digits.empty();
  return number;
}

// Two's complement has one negative number more than positive ones.
std::optional<Currency> ToCurrency(const Decimal& number) {
  constexpr auto kLargest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
  const std::uint64_t limit = kLargest + (number.negative ? 1 : 0);
  if (number.high != 0 || number.low > limit) return std::nullopt;
  return Currency{static_cast<std::int64_t>(number.negative ? 0 - number.low : number.low)};
}

}  // namespace tavi::access
