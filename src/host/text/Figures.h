#pragma once

#include <string>
#include <string_view>

namespace tavi::host {

/// Figures that fit a 32-bit number whatever they are.
inline constexpr std::size_t kLongestWholeNumber = 9;

/// True for a text of one or more of the figures 0 to 9 and nothing else.
bool IsFigures(std::string_view text);
/// A number of a person or club without the zeros in front, which come and go; empty for one of zeros only.
std::string WithoutLeadingZeros(std::string_view number);

}  // namespace tavi::host
