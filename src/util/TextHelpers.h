#pragma once

#include <cstdint>
#include <string>

namespace tavi {

/// A whole number with leading zeros to at least `digits` digits ("00042"); a minus sign stands before them.
std::string PaddedNumber(std::int32_t number, std::size_t digits);

/// "0x" and the eight upper-case hexadecimal digits of an error number.
std::string HexadecimalNumber(std::int32_t number);

}  // namespace tavi
