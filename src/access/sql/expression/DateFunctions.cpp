// Functions of dates. They read their arguments and ask DateArithmetic. A text among them is read day first, a number
// is a day count. Weeks begin on Sunday and names are English unless the arguments say otherwise, since what a
// statement means must not depend on the machine's country.
#include <cmath>
#include <string>

#include "access/sql/expression/Coercion.h"
#include "access/sql/expression/DateArithmetic.h"
#include "access/sql/expression/Functions.h"
#include "platform/values/Date.h"

namespace tavi::access::sql {
namespace {

using Arguments = std::span<const Value>;

CivilDay CivilOf(const Value& value) {
  return DateOf(value).Civil();
}
std::int32_t SecondOf(const Value& value) {
  return DateOf(value).SecondOfDay();
}

/// By the clock that was handed to the session.
Value Today(Arguments, const Scope& scope) {
  return scope.Now().DayOnly();
}
Value Now(Arguments, const Scope& scope) {
  return scope.Now();
}
/// A time alone is a date of day 0, as files hold it.
Value TimeNow(Arguments, const Scope& scope) {
  return DateOfParts(0, scope.Now().SecondOfDay());
}

Value Year(Arguments arguments, const Scope&) {
  return CivilOf(arguments[0]).year;
}
Value Month(Arguments arguments, const Scope&) {
  return CivilOf(arguments[0]).month;
}
Value Day(Arguments arguments, const Scope&) {
  return CivilOf(arguments[0]).day;
}
Value Hour(Arguments arguments, const Scope&) {
  return SecondOf(arguments[0]) / 3600;
}
Value Minute(Arguments arguments, const Scope&) {
  return SecondOf(arguments[0]) / 60 % 60;
}
Value Second(Arguments arguments, const Scope&) {
  return SecondOf(arguments[0]) % 60;
}

/// The first day of the week, 1 (Sunday) to 7, from an optional argument; 0 (the system's) is Sunday.
int FirstDayOf(Arguments arguments, std::size_t index) {
  const std::int32_t day = index < arguments.size() ? LongOf(arguments[index]) : 1;
  if (day < 0 || day > 7) RaiseInvalidCall("days of the week are 1 (Sunday) to 7");
  return day == 0 ? 1 : day;
}

/// 0 would be the system's choice; here it is the rule with 1 January.
FirstWeek FirstWeekOf(Arguments arguments, std::size_t index) {
  const std::int32_t week = index < arguments.size() ? LongOf(arguments[index]) : 1;
  if (week < 0 || week > 3) RaiseInvalidCall("the first week of a year is 1, 2 or 3");
  return week == 0 ? FirstWeek::WithFirstOfJanuary : static_cast<FirstWeek>(week);
}

Value Weekday(Arguments arguments, const Scope&) {
  return WeekdayFrom(PartsOf(DateOf(arguments[0])).day, FirstDayOf(arguments, 1));
}

/// Short names are the first three letters.
std::string Name(std::string_view whole, Arguments arguments) {
  const bool isShort = arguments.size() > 1 && TruthOf(arguments[1]) == Truth::True;
  return std::string(isShort ? whole.substr(0, 3) : whole);
}

Value NameOfWeekday(Arguments arguments, const Scope&) {
  const std::int32_t number = LongOf(arguments[0]);
  if (number < 1 || number > 7) RaiseInvalidCall("days of the week are 1 to 7");
  // The number counts from the first day of the week, the names from Sunday.
  return Name(WeekdayName((number + FirstDayOf(arguments, 2) - 2) % 7 + 1), arguments);
}

Value NameOfMonth(Arguments arguments, const Scope&) {
  const std::int32_t number = LongOf(arguments[0]);
  if (number < 1 || number > 12) RaiseInvalidCall("months are 1 to 12");
  return Name(MonthName(number), arguments);
}

/// Months and days may lie outside their ranges: DateSerial(2026, 3, 0) is the last day of February.
Value DateSerial(Arguments arguments, const Scope&) {
  // Years 0 to 29 are those from 2000 on, 30 to 99 those from 1930 on.
  const int year = FullYear(LongOf(arguments[0]));
  return DateOfParts(DayNumberOf(year, LongOf(arguments[1]), LongOf(arguments[2])), 0);
}

/// Minutes and seconds may run over, or be negative: TimeSerial(12, -15, 0) is 11:45.
Value TimeSerial(Arguments arguments, const Scope&) {
  const std::int64_t minutes = std::int64_t{LongOf(arguments[0])} * 60 + LongOf(arguments[1]);
  return DateOfParts(0, minutes * 60 + LongOf(arguments[2]));
}

/// A date with a time loses it here, and its day in TimeValue.
Value DateValue(Arguments arguments, const Scope&) {
  return DateOf(arguments[0]).DayOnly();
}
Value TimeValue(Arguments arguments, const Scope&) {
  return DateOfParts(0, SecondOf(arguments[0]));
}

/// Fractions of an interval are cut.
Value DateAdd(Arguments arguments, const Scope&) {
  return AddInterval(IntervalOf(TextOf(arguments[0])), std::trunc(NumberOf(arguments[1])), DateOf(arguments[2]));
}

/// Borders that lie between the dates, see CountIntervals. More than a Long holds, such as the seconds of 70 years, is
/// an overflow.
Value DateDiff(Arguments arguments, const Scope&) {
  const std::int64_t difference = CountIntervals(IntervalOf(TextOf(arguments[0])), DateOf(arguments[1]),
                                                 DateOf(arguments[2]), FirstDayOf(arguments, 3));
  // Does not matter for counting; a wrong one is refused all the same.
  FirstWeekOf(arguments, 4);
  return LongOf(static_cast<double>(difference));
}

Value DatePart(Arguments arguments, const Scope&) {
  return PartOfDate(IntervalOf(TextOf(arguments[0])), DateOf(arguments[1]), FirstDayOf(arguments, 2),
                    FirstWeekOf(arguments, 3));
}

// Least and most arguments, then what a Null among them means. Weeks may be told how they begin by the last two.
constexpr Function kDateFunctions[] = {
    {"DATE", 0, 0, kPropagate, Gives::Date, Today},
    {"TIME", 0, 0, kPropagate, Gives::Date, TimeNow},
    {"NOW", 0, 0, kPropagate, Gives::Date, Now},
    {"YEAR", 1, 1, kPropagate, Gives::Short, Year},
    {"MONTH", 1, 1, kPropagate, Gives::Short, Month},
    {"DAY", 1, 1, kPropagate, Gives::Short, Day},
    {"HOUR", 1, 1, kPropagate, Gives::Short, Hour},
    {"MINUTE", 1, 1, kPropagate, Gives::Short, Minute},
    {"SECOND", 1, 1, kPropagate, Gives::Short, Second},
    {"WEEKDAY", 1, 2, kPropagate, Gives::Short, Weekday},
    {"WEEKDAYNAME", 1, 3, kPropagate, Gives::Text, NameOfWeekday},
    {"MONTHNAME", 1, 2, kPropagate, Gives::Text, NameOfMonth},
    {"DATESERIAL", 3, 3, kPropagate, Gives::Date, DateSerial},
    {"TIMESERIAL", 3, 3, kPropagate, Gives::Date, TimeSerial},
    {"DATEVALUE", 1, 1, kPropagate, Gives::Date, DateValue},
    {"TIMEVALUE", 1, 1, kPropagate, Gives::Date, TimeValue},
    {"DATEADD", 3, 3, kPropagate, Gives::Date, DateAdd},
    {"DATEDIFF", 3, 5, kPropagate, Gives::Long, DateDiff},
    {"DATEPART", 2, 4, kPropagate, Gives::Short, DatePart},
};

}  // namespace

std::span<const Function> DateFunctions() {
  return kDateFunctions;
}

}  // namespace tavi::access::sql
