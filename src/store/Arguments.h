#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/values/Date.h"

/// What a file can hold of what callers pass. An operation of several statements asks before its first one, so that a
/// bad value leaves nothing half-written. All raise InvalidArgument, source "cDatabase"; `what` names the value in the
/// message ("the handicap").
namespace tavi {

/// The number itself. Refused: what is no number, infinities, and numbers beyond 1.79769313486231E+308, whose text the
/// database would not read back.
double RequireNumber(double number, const std::string& what);

/// The date itself. Refused: dates outside the years 100 to 9999.
Date RequireDate(Date date, const std::string& what);

/// Refuses a text of more characters (of 16 bits) than its column takes.
void RequireLength(std::string_view text, std::size_t most, const std::string& what);

}  // namespace tavi
