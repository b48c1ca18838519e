#pragma once

#include <string>
#include <string_view>

#include "platform/values/Value.h"

namespace tavi::access::sql {

/// A number by a pattern of Format: 0 and # for digits, a point, a comma between digits for groups of three (behind the
/// last digit: in thousands), % for hundredths, E+ or E- for powers of ten, \x and "text" for themselves; other
/// characters stand for themselves. Up to three patterns, separated by semicolons, are for positive and other numbers,
/// negative ones, and zero. Halves are rounded away from zero. Doubles have 15 significant digits.
std::string FormatNumber(const Value& number, std::string_view pattern);

}  // namespace tavi::access::sql
