#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "platform/values/Convert.h"
#include "platform/values/Digits.h"
#include "platform/values/Text.h"

// How doubles are written, read and rounded. People are shown 15 significant digits, in which every short decimal
// number comes out as it was typed (0.1, not 0.1000000000000000055); what is stored takes 16 or 17 where these are
// needed to read back the same double.
namespace tavi {
namespace {

/// So many digits tell every double from all others.
constexpr int kMostDigits = 17;

/// Above this size a double has no digits behind the point that could be rounded.
constexpr double kWholeFrom = 4503599627370496.0;  // 2^52

std::string TextOf(double number, int digitCount) {
  return (number < 0 ? "-" : "") + GeneralText(RoundedDigits(std::abs(number), digitCount));
}

/// True when a number that the library calls out of range is too small rather than too large.
/// Without an exponent it is tiny when the point comes before the first digit that counts: "0.000...1".
bool IsTiny(std::string_view text) {
  const std::size_t mark = text.find_first_of("eE");
  if (mark != std::string_view::npos) return text.substr(mark + 1).starts_with('-');
  return text.find('.') < text.find_first_of("123456789");
}

}  // namespace

std::string NumberText(double number) {
  if (std::isnan(number)) return "NaN";
  if (std::isinf(number)) return number > 0 ? "Infinity" : "-Infinity";
  // Zero has no digits that could be rounded, and -0 is written without its sign.
  if (number == 0.0) return "0";
  return TextOf(number, kSignificantDigits);
}

std::string ExactNumberText(double number) {
  std::string text = NumberText(number);
  if (!std::isfinite(number)) return text;
  // 17 digits always read back the same, so that the loop ends with a text that does.
  for (int digits = kSignificantDigits + 1; digits <= kMostDigits && ParseNumber(text) != number; ++digits) {
    text = TextOf(number, digits);
  }
  return text;
}

std::optional<double> ParseNumber(std::string_view text) {
  const std::string trimmed = Trim(text);
  std::string_view rest = trimmed;
  const bool negative = rest.starts_with('-');
  if (negative || rest.starts_with('+')) rest.remove_prefix(1);
  // The library would also read "inf", "nan" and a second sign.
  if (rest.empty() || !(rest[0] == '.' || (rest[0] >= '0' && rest[0] <= '9'))) return std::nullopt;
  double number = 0.0;
  const auto read = std::from_chars(rest.data(), rest.data() + rest.size(), number);
  if (read.ptr != rest.data() + rest.size()) return std::nullopt;
  // The language reads what is too small as 0 and refuses what is too large.
  if (read.ec == std::errc::result_out_of_range && IsTiny(rest)) return 0.0;
  if (read.ec != std::errc()) return std::nullopt;
  return negative ? -number : number;
}

double RoundHalfEven(double number, int decimals) {
  const double scale = std::pow(10.0, decimals);
  const double scaled = number * scale;
  if (!std::isfinite(scaled) || std::abs(scaled) >= kWholeFrom) return number;
  // Not std::round, which takes half-way values away from zero. floor makes `above` positive for negative numbers, too.
  const double below = std::floor(scaled);
  const double above = scaled - below;
  const bool up = above > 0.5 || (above == 0.5 && std::fmod(below, 2.0) != 0.0);
  return (up ? below + 1.0 : below) / scale;
}

double RoundDecimalHalfEven(double number, int decimals) {
  if (!std::isfinite(number) || number == 0.0) return number;
  // 33.995 and two decimals: digits "33995", exponent 1, so that the first 4 are kept, "3399", and the rest "5" is
  // half-way and goes up to the even 34.00.
  const DecimalDigits text = RoundedDigits(std::abs(number), kSignificantDigits);
  const int kept = text.exponent + 1 + decimals;
  // More places are asked for than the text has digits: nothing of what people see is dropped.
  if (kept > kSignificantDigits) return RoundHalfEven(number, decimals);
  // Even the first digit lies more than one place below the last that is kept. With just one place, kept = 0, a number
  // above half a unit still rounds up.
  if (kept < 0) return 0.0;
  const auto keptCount = std::min(static_cast<std::size_t>(kept), text.digits.size());
  std::string digits = "0" + text.digits.substr(0, keptCount);
  digits.append(static_cast<std::size_t>(kept) - keptCount, '0');
  // No trailing zeros are in it, so that a rest of just "5" is exactly half-way.
  const std::string rest = text.digits.substr(keptCount);
  std::int64_t units = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), units);
  if (rest > "5" || (rest == "5" && units % 2 != 0)) ++units;
  const double rounded = ParseNumber(std::to_string(units) + "E" + std::to_string(-decimals)).value_or(0.0);
  return number < 0 ? -rounded : rounded;
}

}  // namespace tavi

// Amounts and decimals as text, by whole numbers alone. There is no 128-bit type on every compiler that builds this, so
// the number is divided by hand: four limbs of 32 bits, from the highest, each with the remainder of the one above.
namespace tavi {
namespace {

constexpr std::uint8_t kCurrencyDecimals = 4;

/// The decimal digits of a 128-bit number, without leading zeros; of zero none. A division by ten for each digit.
std::string WholeDigits(std::uint64_t high, std::uint64_t low) {
  std::array<std::uint64_t, 4> limbs{high >> 32U, high & 0xFFFFFFFFU, low >> 32U, low & 0xFFFFFFFFU};
  std::string digits;
  while (std::any_of(limbs.begin(), limbs.end(), [](std::uint64_t limb) { return limb != 0; })) {
    std::uint64_t remainder = 0;
    for (std::uint64_t& limb : limbs) {
      const std::uint64_t part = (remainder << 32U) | limb;
      limb = part / 10;
      remainder = part % 10;
    }
    digits.push_back(static_cast<char>('0' + remainder));
  }
  std::reverse(digits.begin(), digits.end());
  return digits;
}

/// Puts the point before the last `scale` digits and drops what says nothing.
std::string WithPoint(std::string digits, std::size_t scale, bool negative) {
  // At least one digit stands before the point: 5 at scale 2 is "005", then "0.05".
  if (digits.size() <= scale) digits.insert(0, scale - digits.size() + 1, '0');
  if (scale > 0) {
    digits.insert(digits.size() - scale, ".");
    digits.erase(digits.find_last_not_of('0') + 1);
    if (digits.back() == '.') digits.pop_back();
  }
  if (digits.empty()) digits = "0";
  // No minus before a zero, which a decimal of a file may well have.
  return negative && digits != "0" ? "-" + digits : digits;
}

}  // namespace

std::string CurrencyText(Currency amount) {
  const bool negative = amount.tenThousandths < 0;
  const auto bits = static_cast<std::uint64_t>(amount.tenThousandths);
  // Negated without a sign, because the smallest amount has no positive counterpart in 64 bits.
  return WithPoint(WholeDigits(0, negative ? 0 - bits : bits), kCurrencyDecimals, negative);
}

std::string DecimalText(const Decimal& number) {
  return WithPoint(WholeDigits(number.high, number.low), number.scale, number.negative);
}

}  // namespace tavi
