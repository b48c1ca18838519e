// How values become others in expressions, one function for each type that is asked for. A text that writes a number
// counts as one, a date as its days, truth values as -1 and 0. What has no such reading is a type conflict, in the one
// sentence that Access has for all of them. Values for columns are converted elsewhere, by the rules for storing
// (ConvertForColumn).
#include "access/sql/expression/Coercion.h"

#include <cmath>
#include <limits>

#include "access/file/EngineError.h"
#include "platform/values/Convert.h"
#include "platform/values/DateText.h"
#include "platform/values/Error.h"

namespace tavi::access::sql {
namespace {

[[noreturn]] void Raise(ErrorNumber number, const std::string& what, std::string_view reason) {
  throw Error(number, kErrorSource, reason.empty() ? what + "." : what + ": " + std::string(reason) + ".");
}

}  // namespace

void RaiseTypeConflict() {
  throw Error(ErrorNumber::ProviderTypeConflict, kErrorSource, "Data type mismatch in criteria expression.");
}

void RaiseOverflow(std::string_view reason) {
  Raise(ErrorNumber::Overflow, "Overflow", reason);
}

double Finite(double number) {
  if (!std::isfinite(number)) RaiseOverflow();
  return number;
}

void RaiseInvalidCall(std::string_view reason) {
  Raise(ErrorNumber::InvalidArgument, "Invalid procedure call", reason);
}

// Bytes and identifiers have no reading as a number. Null is answered by callers; one that comes here all the same is a
// conflict.
double NumberOf(const Value& value) {
  if (const auto* text = std::get_if<std::string>(&value)) {
    const std::optional<double> number = ParseNumber(*text);
    if (!number) RaiseTypeConflict();
    return *number;
  }
  if (std::holds_alternative<Bytes>(value) || std::holds_alternative<Guid>(value) || IsNull(value)) {
    RaiseTypeConflict();
  }
  return ToDouble(value);
}

// The most frequent case needs no way over doubles.
std::int32_t LongOf(const Value& value) {
  if (const auto* number = std::get_if<std::int32_t>(&value)) return *number;
  const double rounded = RoundHalfEven(NumberOf(value), 0);
  constexpr double kLowest = std::numeric_limits<std::int32_t>::min();
  constexpr double kHighest = std::numeric_limits<std::int32_t>::max();
  // Written so that what is no number fails as well.
  if (!(rounded >= kLowest && rounded <= kHighest)) RaiseOverflow("a whole number of 32 bits was expected");
  return static_cast<std::int32_t>(rounded);
}

// A truth value is the number that Access joins to texts, not a word.
std::string TextOf(const Value& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return *text;
  if (const auto* truth = std::get_if<bool>(&value)) return *truth ? "-1" : "0";
  if (IsNull(value)) RaiseTypeConflict();
  return ToText(value);
}

// Day counts beyond the calendar have no year, month and day.
Date DateOfNumber(double days) {
  const Date date{days};
  if (!date.IsInCalendar()) RaiseOverflow("The date lies outside the years 100 to 9999");
  return date;
}

// A text that is no date may still be a number of days.
Date DateOf(const Value& value) {
  if (const auto* date = std::get_if<Date>(&value)) return *date;
  if (const auto* text = std::get_if<std::string>(&value)) {
    // Before it is tried as a number: "1/2/2001" is a date, and "2.5" no date with a point.
    if (const std::optional<Date> date = ParseDateText(*text, DateOrder::DayFirst)) return *date;
  }
  return DateOfNumber(NumberOf(value));
}

// A text is true or false by the number that it writes; other texts are a conflict.
Truth TruthOf(const Value& value) {
  if (IsNull(value)) return Truth::Unknown;
  if (const auto* truth = std::get_if<bool>(&value)) return *truth ? Truth::True : Truth::False;
  return NumberOf(value) != 0.0 ? Truth::True : Truth::False;
}

Value ValueOf(Truth truth) {
  if (truth == Truth::Unknown) return Null{};
  return truth == Truth::True;
}

}  // namespace tavi::access::sql
