#include "access/sql/expression/DateParts.h"

#include "access/sql/expression/Coercion.h"

namespace tavi::access::sql {
namespace {

constexpr std::int64_t kFarAway = 10'000'000;

}  // namespace

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
  const std::int64_t shiftedYear = isNear ? year + FloorDivide(month - 1, 12) : 0;
  if (shiftedYear < kFirstYear || shiftedYear > kLastYear) RaiseOverflow("The date lies outside the years 100 to 9999");
  const int shiftedMonth = static_cast<int>(month - 1 - FloorDivide(month - 1, 12) * 12) + 1;
  const std::int64_t result =
      Date::FromCivil(static_cast<int>(shiftedYear), shiftedMonth, 1).DayNumber() + std::int64_t{day} - 1;
  if (result < kFirstDayNumber || result > kLastDayNumber) RaiseOverflow("The date lies outside the years 100 to 9999");
  return result;
}

}  // namespace tavi::access::sql
