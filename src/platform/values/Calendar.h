#pragma once

#include <cstdint>
#include <string_view>

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
