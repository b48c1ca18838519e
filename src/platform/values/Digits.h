#pragma once

#include <cstdint>
#include <span>
#include <string>

/// The digits of numbers, from which every text of a number is put together.
namespace tavi {

/// As many digits as every double has that was read from a text of so many; people are shown no more.
inline constexpr int kSignificantDigits = 15;

/// A positive number: its digits without trailing zeros, the point behind the first one, times a power of ten. Zero has
/// no digits.
struct DecimalDigits {
  std::string digits;
  int exponent = 0;
};

/// A finite number that is not negative, rounded to `count` significant digits.
[[nodiscard]] DecimalDigits RoundedDigits(double number, int count);
/// The fewest digits that are read back as the same number of its type, finite and not negative.
[[nodiscard]] DecimalDigits FewestDigits(double number);
[[nodiscard]] DecimalDigits FewestDigits(float number);

/// The number without exponent: "0.05", "12", "1200".
[[nodiscard]] std::string PlainText(const DecimalDigits& number);
/// The same for 1e-5 <= number < 1e15, and "0"; "1.5E+15", "1E-06" for others.
[[nodiscard]] std::string GeneralText(const DecimalDigits& number);

/// Two hexadecimal digits for each byte, in upper case.
[[nodiscard]] std::string HexadecimalText(std::span<const std::uint8_t> bytes);

}  // namespace tavi
