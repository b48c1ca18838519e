#include "platform/values/Date.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>

#include "platform/values/Error.h"
#include "platform/values/Text.h"

// A date is a double as automation and Access hold it, so the calendar is arithmetic on day numbers; std::chrono turns
// them into years, months and days. What is peculiar is the sign: below zero the whole part counts backwards while the
// fraction still runs forwards, so that times of day are taken and put back without regard to the sign (TimeOf,
// WithTime), never by adding. Example: 29 December 1899, 06:00 is -1.25, and a quarter of a day later it is -1.5.
//
// A damaged file may hold any double. Reading one never fails: it is moved to the nearest day of the calendar, and only
// who makes a date from parts is told that there is none.
namespace tavi {
namespace {

// English whatever the machine's language: the texts are stored, and compared by programs.
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

namespace {

constexpr std::chrono::sys_days kDayZero{std::chrono::December / 30 / 1899};

/// The day number, or nothing when there is no such day.
std::optional<int> DayNumberOf(int year, int month, int day) {
  // Years first: the type of the calendar holds 16 bits of one.
  if (year < kFirstYear || year > kLastYear || month < 1 || day < 1) return std::nullopt;
  const std::chrono::year_month_day civil{std::chrono::year{year}, std::chrono::month{static_cast<unsigned>(month)},
                                          std::chrono::day{static_cast<unsigned>(day)}};
  // Asked of the numbers too, because the calendar's types keep a month and a day in a byte, where 257 is 1.
  if (month > 12 || day > 31 || !civil.ok()) return std::nullopt;
  return static_cast<int>((std::chrono::sys_days{civil} - kDayZero).count());
}

/// The value of a day with a time of day, given as a fraction of a day.
/// Example: day -1 and 0.25 are -1.25.
double WithTime(int dayNumber, double fraction) {
  return dayNumber < 0 ? dayNumber - fraction : dayNumber + fraction;
}

/// The time of day as a fraction of a day, never negative.
double TimeOf(double days) {
  return std::isfinite(days) ? std::abs(days - std::trunc(days)) : 0.0;
}

std::string TwoDigits(int number) {
  return (number < 10 ? "0" : "") + std::to_string(number);
}

/// The caller gives at most four, so that nothing overflows.
/// Reads a few digits; -1 when a character is none.
int DigitsOf(std::string_view text) {
  int number = 0;
  for (const char character : text) {
    if (character < '0' || character > '9') return -1;
    number = number * 10 + (character - '0');
  }
  return number;
}

/// Reads "hh:mm:ss" as a fraction of a day.
std::optional<double> TimeFromText(std::string_view text) {
  if (text.size() != 8 || text[2] != ':' || text[5] != ':') return std::nullopt;
  const int hour = DigitsOf(text.substr(0, 2));
  const int minute = DigitsOf(text.substr(3, 2));
  const int second = DigitsOf(text.substr(6, 2));
  if (hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 59) return std::nullopt;
  return static_cast<double>(hour * 3600 + minute * 60 + second) / kSecondsOfDay;
}

}  // namespace

Date Date::FromCivil(int year, int month, int day) {
  const std::optional<int> number = DayNumberOf(year, month, day);
  if (!number) {
    throw Error(ErrorNumber::InvalidArgument, "TaviMembership",
                "There is no day " + std::to_string(day) + " of month " + std::to_string(month) + " of the year " +
                    std::to_string(year) + "; use a day of the years 100 to 9999.");
  }
  return Date{static_cast<double>(*number)};
}

Date Date::AtSecond(int dayNumber, int second) {
  return Date{WithTime(dayNumber, static_cast<double>(second) / kSecondsOfDay)};
}

// Every time of the first day lies, counted backwards, less than a day before it.
bool Date::IsInCalendar() const {
  return days > kFirstDayNumber - 1.0 && days < kLastDayNumber + 1.0;
}

// DayNumber keeps to the calendar's years, for which the conversion is always defined.
CivilDay Date::Civil() const {
  const std::chrono::year_month_day civil{kDayZero + std::chrono::days{DayNumber()}};
  return CivilDay{static_cast<int>(civil.year()), static_cast<int>(static_cast<unsigned>(civil.month())),
                  static_cast<int>(static_cast<unsigned>(civil.day()))};
}

// Rounded, because a second is no exact fraction of a day: the double for 08:24 may lie a little below it.
int Date::SecondOfDay() const {
  const int second = static_cast<int>(std::lround(TimeOf(days) * kSecondsOfDay));
  return second == kSecondsOfDay ? kSecondsOfDay - 1 : second;
}

Date Date::DayOnly() const {
  return Date{static_cast<double>(DayNumber())};
}

// Compared as doubles before the cast, which is undefined for what does not fit an int.
int Date::DayNumber() const {
  if (std::isnan(days)) return 0;
  if (days <= kFirstDayNumber) return kFirstDayNumber;
  return days >= kLastDayNumber ? kLastDayNumber : static_cast<int>(days);
}

Date Date::AddYears(int years) const {
  CivilDay civil = Civil();
  // Any shift beyond the length of the calendar fails alike; clamped, the sum cannot overflow.
  civil.year += std::clamp(years, -kLastYear, kLastYear);
  if (civil.month == 2 && civil.day == 29 && !std::chrono::year{civil.year}.is_leap()) civil.day = 28;
  return Date{WithTime(FromCivil(civil.year, civil.month, civil.day).DayNumber(), TimeOf(days))};
}

std::string Date::Iso() const {
  const CivilDay civil = Civil();
  const std::string year = std::to_string(civil.year);
  std::string text =
      // From the year 100 on: at most one zero is missing.
      std::string(4 - year.size(), '0') + year + "-" + TwoDigits(civil.month) + "-" + TwoDigits(civil.day);
  if (const int second = SecondOfDay(); second != 0) {
    text += "T" + TwoDigits(second / 3600) + ":" + TwoDigits(second / 60 % 60) + ":" + TwoDigits(second % 60);
  }
  return text;
}

std::string Date::DayMonthYear() const {
  const CivilDay civil = Civil();
  return std::to_string(civil.day) + " " + std::string(MonthName(civil.month).substr(0, 3)) + " " +
         std::to_string(civil.year);
}

// Strict, for it reads back what Iso has written and decides for others whether a text is one of ours: fixed places,
// fixed separators, nothing behind.
std::optional<Date> Date::FromIso(std::string_view text) {
  if (text.size() < 10 || text[4] != '-' || text[7] != '-') return std::nullopt;
  const std::optional<int> number =
      DayNumberOf(DigitsOf(text.substr(0, 4)), DigitsOf(text.substr(5, 2)), DigitsOf(text.substr(8, 2)));
  if (!number) return std::nullopt;
  if (text.size() == 10) return Date{static_cast<double>(*number)};
  if (text[10] != 'T' && text[10] != ' ') return std::nullopt;
  const std::optional<double> time = TimeFromText(text.substr(11));
  if (!time) return std::nullopt;
  return Date{WithTime(*number, *time)};
}

}  // namespace tavi
