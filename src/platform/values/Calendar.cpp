#include "platform/values/Calendar.h"

#include <array>

#include "platform/values/Text.h"

namespace tavi {
namespace {

constexpr std::array<std::string_view, 12> kMonths = {"January",   "February", "March",    "April",
                                                      "May",       "June",     "July",     "August",
                                                      "September", "October",  "November", "December"};
constexpr std::array<std::string_view, 7> kWeekdays = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                       "Thursday", "Friday", "Saturday"};

}  // namespace

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
  constexpr int kDayZero = 6;  // 30 December 1899 was a Saturday
  const auto fromSunday = static_cast<int>((dayNumber + kDayZero) % 7);
  return (fromSunday < 0 ? fromSunday + 7 : fromSunday) + 1;
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

}  // namespace tavi
