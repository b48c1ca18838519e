#pragma once

#include <cstdint>
#include <string_view>

#include "platform/values/Date.h"

/// Arithmetic with dates: parts of them as day numbers (whole days since 30 December 1899) and seconds, and the
/// intervals of DateAdd, DateDiff and DatePart.
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

/// yyyy q m y d w ww h n s
enum class Interval { Year, Quarter, Month, DayOfYear, Day, Weekday, Week, Hour, Minute, Second };
/// Raises InvalidArgument for other texts. Case does not matter.
Interval IntervalOf(std::string_view text);

/// Which week of a year is number 1: the one with 1 January, the first with four days in the year, the first whole one.
enum class FirstWeek { WithFirstOfJanuary = 1, OfFourDays = 2, Whole = 3 };

/// A date later by whole intervals (earlier when negative). Where the day does not exist in the month it becomes the
/// last one of the month (31 January and a month: 28 or 29 February). DayOfYear and Weekday are days. Raises Overflow.
Date AddInterval(Interval interval, double count, Date date);

/// How many times a new interval begins on the way from one date to another (negative backwards): from 31 December to
/// 1 January a year begins. Weekday counts whole weeks instead. `firstDay` begins the week (1 Sunday ... 7).
std::int64_t CountIntervals(Interval interval, Date from, Date to, int firstDay);

/// The year, quarter, month, day of the year, day, weekday, week of the year, hour, minute or second of a date.
std::int32_t PartOfDate(Interval interval, Date date, int firstDay, FirstWeek firstWeek);

/// The weekday of a day number, 1..7, counted from `firstDay`.
int WeekdayFrom(std::int64_t dayNumber, int firstDay);

}  // namespace tavi::access::sql
