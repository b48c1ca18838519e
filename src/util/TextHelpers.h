#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tavi {

/// A whole number with leading zeros to at least `digits` digits ("00042"); a minus sign stands before them.
std::string PaddedNumber(std::int32_t number, std::size_t digits);

/// "0x" and the eight upper-case hexadecimal digits of an error number.
std::string HexadecimalNumber(std::int32_t number);

/// Figures that fit a 32-bit number whatever they are.
inline constexpr std::size_t kLongestWholeNumber = 9;

/// True for a text of one or more of the figures 0 to 9 and nothing else.
bool IsFigures(std::string_view text);
/// A number of a person or club without the zeros in front, which come and go; empty for one of zeros only.
std::string WithoutLeadingZeros(std::string_view number);

}  // namespace tavi
