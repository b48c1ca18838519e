#pragma once

#include <cstdint>

#include "platform/values/Calendar.h"
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

/// number / divisor, rounded down.
std::int64_t FloorDivide(std::int64_t number, std::int64_t divisor);

}  // namespace tavi::access::sql
