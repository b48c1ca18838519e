#pragma once

#include <string>
#include <string_view>

#include "platform/values/Date.h"
#include "platform/values/Value.h"

/// Values as texts by the patterns of the function Format.
namespace tavi::access::sql {

/// A value by a pattern as the function Format knows them: the named ones ("Fixed", "Standard", "Percent",
/// "Scientific", "Currency" (as Standard: no sign is known), "General Number", "Yes/No", "True/False", "On/Off",
/// "General Date", "Long Date", "Medium Date", "Short Date", "Long Time", "Medium Time", "Short Time"), numbers
/// (FormatNumber), dates (FormatDate), and texts: @ a character or blank, & a character or nothing, < and > lower
/// and upper case, ! from the left. The value is not null.
std::string FormatText(const Value& value, std::string_view pattern);

/// A number by a pattern of Format: 0 and # for digits, a point, a comma between digits for groups of three (behind the
/// last digit: in thousands), % for hundredths, E+ or E- for powers of ten, \x and "text" for themselves; other
/// characters stand for themselves. Up to three patterns, separated by semicolons, are for positive and other numbers,
/// negative ones, and zero. Halves are rounded away from zero. Doubles have 15 significant digits.
std::string FormatNumber(const Value& number, std::string_view pattern);

/// A date by a pattern of Format: d dd (day), ddd dddd (weekday), w ww (weekday and week as numbers), m mm mmm mmmm
/// (month; behind hours: minutes), q (quarter), y (day of the year), yy yyyy, h hh, n nn (minutes), s ss, AM/PM A/P
/// (hours of 12), ddddd (dd/mm/yyyy), dddddd (d mmmm yyyy), ttttt (hh:nn:ss), c (both, as far as there are), \x and
/// "text" for themselves. Names are English.
std::string FormatDate(Date date, std::string_view pattern);
/// True when a pattern holds any of those letters outside quotes.
bool IsDatePattern(std::string_view pattern);

}  // namespace tavi::access::sql
