#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tavi {

/// A day of the proleptic Gregorian calendar.
struct CivilDay {
  int year = 1899;
  int month = 12;  // 1..12
  int day = 30;    // 1..31
  auto operator<=>(const CivilDay&) const = default;
};

/// A date and time of day as automation and Access hold it: whole days since 30 December 1899; the fraction is the time
/// of day. In a negative value the whole part counts backwards but the fraction is still a positive time of day (-1.25
/// is 29 December 1899, 06:00). The default value is the zero date, 30 December 1899, 00:00. A value outside the years
/// 100 to 9999, which only a damaged file holds, is read as the nearest day in them; one that is no number as day 0.
struct Date {
  double days = 0.0;

  auto operator<=>(const Date&) const = default;

  /// The date at midnight of a calendar day (years 100 to 9999).
  /// Raises InvalidArgument when there is no such day.
  static Date FromCivil(int year, int month, int day);
  /// A second (0..86399) of the day of a number.
  static Date AtSecond(int dayNumber, int second);
  /// True for a time of a day in the years 100 to 9999.
  [[nodiscard]] bool IsInCalendar() const;
  /// The calendar day, without the time of day.
  [[nodiscard]] CivilDay Civil() const;
  /// Seconds since midnight, rounded to the nearest whole second (0..86399; a value that rounds up to 24:00 is 86399).
  [[nodiscard]] int SecondOfDay() const;
  /// The same day at midnight.
  [[nodiscard]] Date DayOnly() const;
  /// The number of whole days since 30 December 1899, time of day dropped.
  [[nodiscard]] int DayNumber() const;
  /// The same day and month `years` later; 29 February becomes 28 February in an ordinary year. The
  /// time of day stays. Raises InvalidArgument when that leaves the years 100 to 9999.
  [[nodiscard]] Date AddYears(int years) const;

  /// "yyyy-mm-dd", and "Thh:mm:ss" behind it when there is a time of day.
  [[nodiscard]] std::string Iso() const;
  /// "d mmm yyyy" with English month names: "3 May 2001".
  [[nodiscard]] std::string DayMonthYear() const;
  /// Reads "yyyy-mm-dd" with or without "Thh:mm:ss" (a blank may stand for the T); nothing when it is none.
  static std::optional<Date> FromIso(std::string_view text);
};

}  // namespace tavi

/// The calendar of dates (Date.h): its limits, its names and how its days are counted.
namespace tavi {

inline constexpr int kFirstYear = 100;
inline constexpr int kLastYear = 9999;
/// Day numbers of the first and the last of these years.
inline constexpr int kFirstDayNumber = -657434;
inline constexpr int kLastDayNumber = 2958465;
inline constexpr int kSecondsOfDay = 86400;

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

}  // namespace tavi
