#pragma once

#include <string>
#include <string_view>

#include "platform/values/Date.h"

namespace tavi::access::sql {

/// A date by a pattern of Format: d dd (day), ddd dddd (weekday), w ww (weekday and week as numbers), m mm mmm mmmm
/// (month; behind hours: minutes), q (quarter), y (day of the year), yy yyyy, h hh, n nn (minutes), s ss, AM/PM A/P
/// (hours of 12), ddddd (dd/mm/yyyy), dddddd (d mmmm yyyy), ttttt (hh:nn:ss), c (both, as far as there are), \x and
/// "text" for themselves. Names are English.
std::string FormatDate(Date date, std::string_view pattern);
/// True when a pattern holds any of those letters outside quotes.
bool IsDatePattern(std::string_view pattern);

}  // namespace tavi::access::sql
