#include <algorithm>
#include <array>

#include "platform/values/Convert.h"

// Amounts and decimals as text, by whole numbers alone. There is no 128-bit type on every compiler that builds this, so
// the number is divided by hand: four limbs of 32 bits, from the highest, each with the remainder of the one above.
namespace tavi {
namespace {

constexpr std::uint8_t kCurrencyDecimals = 4;

/// The decimal digits of a 128-bit number, without leading zeros; of zero none. A division by ten for each digit.
std::string DigitsOf(std::uint64_t high, std::uint64_t low) {
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
  return WithPoint(DigitsOf(0, negative ? 0 - bits : bits), kCurrencyDecimals, negative);
}

std::string DecimalText(const Decimal& number) {
  return WithPoint(DigitsOf(number.high, number.low), number.scale, number.negative);
}

}  // namespace tavi
