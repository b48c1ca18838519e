#include <algorithm>
#include <charconv>
#include <cmath>

#include "platform/values/Convert.h"
#include "platform/values/Digits.h"
#include "platform/values/Text.h"

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
bool IsTiny(std::string_view text) {
  const std::size_t mark = text.find_first_of("eE");
  if (mark != std::string_view::npos) return text.substr(mark + 1).starts_with('-');
  return text.find('.') < text.find_first_of("123456789");
}

}  // namespace

std::string NumberText(double number) {
  if (std::isnan(number)) return "NaN";
  if (std::isinf(number)) return number > 0 ? "Infinity" : "-Infinity";
  if (number == 0.0) return "0";
  return TextOf(number, kSignificantDigits);
}

std::string ExactNumberText(double number) {
  std::string text = NumberText(number);
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
  if (read.ec == std::errc::result_out_of_range && IsTiny(rest)) return 0.0;
  if (read.ec != std::errc()) return std::nullopt;
  return negative ? -number : number;
}

double RoundHalfEven(double number, int decimals) {
  const double scale = std::pow(10.0, decimals);
  const double scaled = number * scale;
  if (!std::isfinite(scaled) || std::abs(scaled) >= kWholeFrom) return number;
  const double below = std::floor(scaled);
  const double above = scaled - below;
  const bool up = above > 0.5 || (above == 0.5 && std::fmod(below, 2.0) != 0.0);
  return (up ? below + 1.0 : below) / scale;
}

double RoundDecimalHalfEven(double number, int decimals) {
  if (!std::isfinite(number) || number == 0.0) return number;
  const DecimalDigits text = RoundedDigits(std::abs(number), kSignificantDigits);
  const int kept = text.exponent + 1 + decimals;
  if (kept > kSignificantDigits) return RoundHalfEven(number, decimals);
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
