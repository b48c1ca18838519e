#pragma once

#include <cstdint>
#include <string_view>

#include "platform/values/Date.h"

/// Calendar arithmetic on dates as day numbers (whole days since 30 December 1899) and seconds.
namespace tavi::access::sql {

/// A date as day number and second of the day (0..86399).
struct DateParts {
  std::int64_t day = 0;
  std::int64_t second = 0;
};

DateParts PartsOf(Date date);
/// The date of a day number and a number of seconds, which may be negative or more than a day. Raises Overflow outside
/// the years 100 to 9999.
Date DateOfParts(std::int64_t day, std::int64_t second);
/// The day number of a calendar day whose month and day may lie outside their ranges (month 13 is January of the next
/// year, day 0 the last of the month before). Raises Overflow outside the years 100 to 9999.
std::int64_t DayNumberOf(std::int64_t year, std::int64_t month, std::int64_t day);

/// 28 to 31; 0 when the month is none (1..12) or the year not in 100..9999.
int DaysInMonth(int year, int month);
/// 0..29 in 2000..2029, 30..99 in 1930..1999; other years as they are.
int FullYear(int year);
/// Sunday 1 ... Saturday 7.
int WeekdayOf(std::int64_t dayNumber);

/// English names: month 1..12, weekday 1 (Sunday)..7.
std::string_view MonthName(int month);
std::string_view WeekdayName(int weekday);
/// The month of a name, whole or of its first three letters, in any case; 0 for another text.
int MonthOfName(std::string_view name);

/// number / divisor, rounded down.
std::int64_t FloorDivide(std::int64_t number, std::int64_t divisor);

inline constexpr std::int64_t kSecondsPerDay = 86400;

}  // namespace tavi::access::sql
