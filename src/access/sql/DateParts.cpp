#include "access/sql/DateParts.h"

#include <array>

#include "access/sql/Coercion.h"
#include "platform/values/Text.h"

namespace tavi::access::sql {
namespace {

constexpr std::array<std::string_view, 12> kMonths = {"January",   "February", "March",    "April",
                                                      "May",       "June",     "July",     "August",
                                                      "September", "October",  "November", "December"};
constexpr std::array<std::string_view, 7> kWeekdays = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                       "Thursday", "Friday", "Saturday"};
constexpr int kFirstYear = 100;
constexpr int kLastYear = 9999;
constexpr std::int64_t kFirstDay = -657434;  // 1 January 100
constexpr std::int64_t kLastDay = 2958465;   // 31 December 9999
constexpr std::int64_t kFarAway = 10'000'000;

}  // namespace

std::int64_t FloorDivide(std::int64_t number, std::int64_t divisor) {
  return number / divisor - (number % divisor < 0 ? 1 : 0);
}

DateParts PartsOf(Date date) {
  return {date.DayNumber(), date.SecondOfDay()};
}

Date DateOfParts(std::int64_t day, std::int64_t second) {
  const std::int64_t whole = day + FloorDivide(second, kSecondsPerDay);
  const std::int64_t rest = second - FloorDivide(second, kSecondsPerDay) * kSecondsPerDay;
  if (whole < kFirstDay || whole > kLastDay) RaiseOverflow("The date lies outside the years 100 to 9999");
  const double fraction = static_cast<double>(rest) / static_cast<double>(kSecondsPerDay);
  return Date{whole < 0 ? static_cast<double>(whole) - fraction : static_cast<double>(whole) + fraction};
}

std::int64_t DayNumberOf(std::int64_t year, std::int64_t month, std::int64_t day) {
  const bool isNear =
      year > -kFarAway && year < kFarAway && month > -kFarAway && month < kFarAway && day > -kFarAway && day < kFarAway;
  const std::int64_t shiftedYear = isNear ? year + FloorDivide(month - 1, 12) : 0;
  if (shiftedYear < kFirstYear || shiftedYear > kLastYear) RaiseOverflow("The date lies outside the years 100 to 9999");
  const int shiftedMonth = static_cast<int>(month - 1 - FloorDivide(month - 1, 12) * 12) + 1;
  const std::int64_t result =
      Date::FromCivil(static_cast<int>(shiftedYear), shiftedMonth, 1).DayNumber() + std::int64_t{day} - 1;
  if (result < kFirstDay || result > kLastDay) RaiseOverflow("The date lies outside the years 100 to 9999");
  return result;
}

int DaysInMonth(int year, int month) {
  if (year < kFirstYear || year > kLastYear || month < 1 || month > 12) return 0;
  if (month == 2) return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0) ? 29 : 28;
  return month == 4 || month == 6 || month == 9 || month == 11 ? 30 : 31;
}

int FullYear(int year) {
  constexpr int kFirstOfCentury = 30;
  if (year < 0 || year > 99) return year;
  return year < kFirstOfCentury ? 2000 + year : 1900 + year;
}

int WeekdayOf(std::int64_t dayNumber) {
  const std::int64_t fromSunday = dayNumber + 6;  // day 0, 30 December 1899, was a Saturday
  return static_cast<int>(fromSunday - FloorDivide(fromSunday, 7) * 7) + 1;
}

std::string_view MonthName(int month) {
  return kMonths.at(static_cast<std::size_t>(month - 1));
}

std::string_view WeekdayName(int weekday) {
  return kWeekdays.at(static_cast<std::size_t>(weekday - 1));
}

int MonthOfName(std::string_view name) {
  for (int month = 1; month <= 12; ++month) {
    const std::string_view whole = MonthName(month);
    if (EqualIgnoringCase(name, whole) || EqualIgnoringCase(name, whole.substr(0, 3))) return month;
  }
  return 0;
}

}  // namespace tavi::access::sql
