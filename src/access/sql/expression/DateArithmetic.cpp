// Calendar arithmetic on whole numbers: a date is a day number and a second of the day, so that nothing is rounded on
// the way. Three kinds of sums:
//
//   adding      months and years move the month and cut the day where it is too short; all else adds seconds
//   counting    how many borders of the interval lie between two dates: from 23:59 to 00:01 is one day and one hour
//   weeks       counted from the weekday that begins them; three rules say which is the first of a year
//
// Years 100 to 9999 are all that the file's dates are good for; whatever leads out of them is an overflow.
#include "access/sql/expression/DateArithmetic.h"

#include <algorithm>
#include <chrono>
#include <cmath>

#include "access/sql/expression/Coercion.h"
#include "platform/values/Date.h"
#include "platform/values/Text.h"

namespace tavi::access::sql {

namespace {

/// Years, months and days beyond lead out of the calendar whatever they are combined with; up to it nothing overflows.
constexpr std::int64_t kFarAway = 10'000'000;
constexpr int kDaysOfWeek = 7;
constexpr std::int64_t kSecondsPerHour = 3600;
constexpr std::int64_t kSecondsPerMinute = 60;

/// The texts that DateAdd, DateDiff and DatePart take.
struct IntervalName {
  std::string_view text;
  Interval interval;
};
constexpr IntervalName kNames[] = {{"yyyy", Interval::Year},   {"q", Interval::Quarter}, {"m", Interval::Month},
                                   {"y", Interval::DayOfYear}, {"d", Interval::Day},     {"w", Interval::Weekday},
                                   {"ww", Interval::Week},     {"h", Interval::Hour},    {"n", Interval::Minute},
                                   {"s", Interval::Second}};

}  // namespace

// Days before 30 December 1899 are negative; the language's own division would round towards zero, and so into the
// wrong unit.
std::int64_t FloorDivide(std::int64_t number, std::int64_t divisor) {
  return number / divisor - (number % divisor < 0 ? 1 : 0);
}

DateParts PartsOf(Date date) {
  return {date.DayNumber(), date.SecondOfDay()};
}

Date DateOfParts(std::int64_t day, std::int64_t second) {
  const std::int64_t whole = day + FloorDivide(second, kSecondsOfDay);
  const std::int64_t rest = second - FloorDivide(second, kSecondsOfDay) * kSecondsOfDay;
  if (whole < kFirstDayNumber || whole > kLastDayNumber) RaiseOverflow("The date lies outside the years 100 to 9999");
  return Date::AtSecond(static_cast<int>(whole), static_cast<int>(rest));
}

std::int64_t DayNumberOf(std::int64_t year, std::int64_t month, std::int64_t day) {
  const bool isNear =
      year > -kFarAway && year < kFarAway && month > -kFarAway && month < kFarAway && day > -kFarAway && day < kFarAway;
  // Year 0 stands for a year far away, which the next line refuses.
  const std::int64_t shiftedYear = isNear ? year + FloorDivide(month - 1, 12) : 0;
  if (shiftedYear < kFirstYear || shiftedYear > kLastYear) RaiseOverflow("The date lies outside the years 100 to 9999");
  // Month 13 is January of the next year, 0 December of the last: the rest of the division is never negative.
  const int shiftedMonth = static_cast<int>(month - 1 - FloorDivide(month - 1, 12) * 12) + 1;
  const std::int64_t result =
      Date::FromCivil(static_cast<int>(shiftedYear), shiftedMonth, 1).DayNumber() + std::int64_t{day} - 1;
  if (result < kFirstDayNumber || result > kLastDayNumber) RaiseOverflow("The date lies outside the years 100 to 9999");
  return result;
}

namespace {

/// The first day of the target month always exists; from there the day is found again or cut to the month's last.
Date AddMonths(std::int64_t count, Date date) {
  const CivilDay civil = date.Civil();
  const std::int64_t first = DayNumberOf(civil.year, std::int64_t{civil.month} + count, 1);
  const CivilDay month = Date{static_cast<double>(first)}.Civil();
  const int day = std::min(civil.day, DaysInMonth(month.year, month.month));
  return DateOfParts(first + day - 1, PartsOf(date).second);
}

Date AddSeconds(std::int64_t count, Date date) {
  const DateParts parts = PartsOf(date);
  return DateOfParts(parts.day, parts.second + count);
}

/// Seconds since day 0.
std::int64_t Seconds(Date date) {
  const DateParts parts = PartsOf(date);
  return parts.day * std::int64_t{kSecondsOfDay} + parts.second;
}

/// Borders between units are what counts: the units since day 0 up to each date, whole ones, subtracted.
std::int64_t CountUnits(Date from, Date to, std::int64_t seconds) {
  return FloorDivide(Seconds(to), seconds) - FloorDivide(Seconds(from), seconds);
}

/// The number of the week that a day lies in, counted from some week on.
std::int64_t WeekNumber(std::int64_t day, int firstDay) {
  return FloorDivide(day - WeekdayFrom(day, firstDay) + 1, kDaysOfWeek);
}

int DaysInYear(int year) {
  return std::chrono::year{year}.is_leap() ? 366 : 365;
}

/// The day on which week 1 of a year begins, by the day of its 1 January. May lie in the old year, when the week with 1
/// January begins there.
std::int64_t StartOfFirstWeek(std::int64_t january, int firstDay, FirstWeek firstWeek) {
  const int before = WeekdayFrom(january, firstDay) - 1;  // days of that week in the old year
  const std::int64_t start = january - before;
  if (firstWeek == FirstWeek::WithFirstOfJanuary) return start;
  // Four of the seven days lie in the new year when at most three lie before it.
  constexpr int kMostDaysBefore = 3;
  const int allowed = firstWeek == FirstWeek::OfFourDays ? kMostDaysBefore : 0;
  return before <= allowed ? start : start + kDaysOfWeek;
}

/// Days before the first week belong to the last week of the old year; the last days of December may belong to the
/// first week of the new year, but not where weeks begin anew with 1 January. With weeks from Sunday, 1 January 2027, a
/// Friday, is in week 1 by that rule, as that week began on 27 December; by the others, whose week 1 begins on 3
/// January, it is in week 52 of 2026.
///
/// The years beside this one are counted in days, as those beside the first and the last of the calendar have no dates.
std::int32_t WeekOfYear(std::int64_t day, int year, int firstDay, FirstWeek firstWeek) {
  const std::int64_t january = DayNumberOf(year, 1, 1);
  std::int64_t start = StartOfFirstWeek(january, firstDay, firstWeek);
  if (day < start) {
    start = StartOfFirstWeek(january - DaysInYear(year - 1), firstDay, firstWeek);
  } else if (firstWeek != FirstWeek::WithFirstOfJanuary) {
    const std::int64_t next = StartOfFirstWeek(january + DaysInYear(year), firstDay, firstWeek);
    if (day >= next) start = next;
  }
  return static_cast<std::int32_t>((day - start) / kDaysOfWeek) + 1;
}

}  // namespace

Interval IntervalOf(std::string_view text) {
  for (const IntervalName& name : kNames) {
    if (EqualIgnoringCase(text, name.text)) return name.interval;
  }
  RaiseInvalidCall("an interval is one of yyyy, q, m, y, d, w, ww, h, n, s");
}

// The bound keeps the products below within 64 bits: a date that is so far away is none.
Date AddInterval(Interval interval, double count, Date date) {
  constexpr double kMostIntervals = 4e11;  // more seconds than there are
  if (!(std::abs(count) < kMostIntervals)) RaiseOverflow("the date lies outside the years 100 to 9999");
  const auto whole = static_cast<std::int64_t>(count);
  switch (interval) {
    case Interval::Year:
      return AddMonths(whole * 12, date);
    case Interval::Quarter:
      return AddMonths(whole * 3, date);
    case Interval::Month:
      return AddMonths(whole, date);
    case Interval::Week:
      return AddSeconds(whole * kDaysOfWeek * std::int64_t{kSecondsOfDay}, date);
    case Interval::Hour:
      return AddSeconds(whole * kSecondsPerHour, date);
    case Interval::Minute:
      return AddSeconds(whole * kSecondsPerMinute, date);
    case Interval::Second:
      return AddSeconds(whole, date);
    default:
      return AddSeconds(whole * std::int64_t{kSecondsOfDay}, date);
  }
}

// Each case subtracts two numbers of units and never two dates, as units are not of one length: from 31 January to 1
// March there are two borders between months, whatever days lie between. `w` alone counts whole weeks of days.
std::int64_t CountIntervals(Interval interval, Date from, Date to, int firstDay) {
  const CivilDay start = from.Civil();
  const CivilDay end = to.Civil();
  const std::int64_t days = to.DayNumber() - from.DayNumber();
  const std::int64_t months = (std::int64_t{end.year} - start.year) * 12 + end.month - start.month;
  switch (interval) {
    case Interval::Year:
      return end.year - start.year;
    case Interval::Quarter:
      return (std::int64_t{end.year} - start.year) * 4 + (end.month - 1) / 3 - (start.month - 1) / 3;
    case Interval::Month:
      return months;
    case Interval::Weekday:
      return days / kDaysOfWeek;
    case Interval::Week:
      return WeekNumber(to.DayNumber(), firstDay) - WeekNumber(from.DayNumber(), firstDay);
    case Interval::Hour:
      return CountUnits(from, to, kSecondsPerHour);
    case Interval::Minute:
      return CountUnits(from, to, kSecondsPerMinute);
    case Interval::Second:
      return CountUnits(from, to, 1);
    default:
      return days;
  }
}

// Weeks and weekdays alone depend on the day that begins the week.
std::int32_t PartOfDate(Interval interval, Date date, int firstDay, FirstWeek firstWeek) {
  const CivilDay civil = date.Civil();
  const DateParts parts = PartsOf(date);
  switch (interval) {
    case Interval::Year:
      return civil.year;
    case Interval::Quarter:
      return (civil.month - 1) / 3 + 1;
    case Interval::Month:
      return civil.month;
    case Interval::DayOfYear:
      return static_cast<std::int32_t>(parts.day - DayNumberOf(civil.year, 1, 1)) + 1;
    case Interval::Day:
      return civil.day;
    case Interval::Weekday:
      return WeekdayFrom(parts.day, firstDay);
    case Interval::Week:
      return WeekOfYear(parts.day, civil.year, firstDay, firstWeek);
    case Interval::Hour:
      return static_cast<std::int32_t>(parts.second / kSecondsPerHour);
    case Interval::Minute:
      return static_cast<std::int32_t>(parts.second / kSecondsPerMinute % 60);
    case Interval::Second:
      return static_cast<std::int32_t>(parts.second % 60);
  }
  return 0;
}

int WeekdayFrom(std::int64_t dayNumber, int firstDay) {
  return (WeekdayOf(dayNumber) - firstDay + kDaysOfWeek) % kDaysOfWeek + 1;
}

}  // namespace tavi::access::sql
