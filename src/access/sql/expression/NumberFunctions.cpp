// Functions of numbers. Abs, Int, Fix and Round give back the type that they got wherever it is exact, so that amounts
// stay amounts; all others calculate in doubles. Arguments outside what a function is defined for are refused, and no
// result is infinite.
#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>

#include "access/sql/expression/Coercion.h"
#include "access/sql/expression/Functions.h"
#include "access/sql/expression/Operators.h"
#include "platform/values/Convert.h"

namespace tavi::access::sql {
namespace {

using Arguments = std::span<const Value>;

/// By type. A truth value counts as -1 or 0.
bool IsWhole(const Value& value) {
  return std::holds_alternative<std::int32_t>(value) || std::holds_alternative<std::int16_t>(value) ||
         std::holds_alternative<std::uint8_t>(value) || std::holds_alternative<bool>(value);
}

Value Abs(Arguments arguments, const Scope&) {
  const Value& value = arguments[0];
  // A text becomes the number that it writes.
  if (std::holds_alternative<std::string>(value)) return std::abs(NumberOf(value));
  return NumberOf(value) < 0.0 ? Negated(value) : value;
}

Value Sgn(Arguments arguments, const Scope&) {
  const double number = NumberOf(arguments[0]);
  return number < 0.0 ? -1 : number > 0.0 ? 1 : 0;
}

/// A value without its fraction, in its own type; `cut` is std::floor or std::trunc.
Value Cut(const Value& value, double (*cut)(double)) {
  constexpr std::int64_t kUnit = 10000;
  if (IsWhole(value)) return value;
  if (const auto* amount = std::get_if<Currency>(&value)) {
    const std::int64_t fraction = amount->tenThousandths % kUnit;
    // The remainder has the sign of the amount: what is cut off goes towards zero, and Int goes on to the next lower
    // unit.
    const bool goesDown = fraction < 0 && cut(-0.5) < 0.0;
    std::int64_t result = amount->tenThousandths - fraction;
    if (goesDown && __builtin_sub_overflow(result, kUnit, &result)) RaiseOverflow();
    return Currency{result};
  }
  // A date stays a date: of one since 1900 Int is the day without the time.
  const double whole = cut(NumberOf(value));
  return std::holds_alternative<Date>(value) ? Value(DateOfNumber(whole)) : Value(whole);
}

Value Int(Arguments arguments, const Scope&) {
  return Cut(arguments[0], [](double number) { return std::floor(number); });
}
Value Fix(Arguments arguments, const Scope&) {
  return Cut(arguments[0], [](double number) { return std::trunc(number); });
}

/// Rounds to the nearest, ties to the even digit.
/// More decimals than 22 mean nothing to a double, and are refused.
Value Round(Arguments arguments, const Scope&) {
  constexpr std::int32_t kMostDecimals = 22;
  const Value& value = arguments[0];
  const std::int32_t decimals = arguments.size() > 1 ? LongOf(arguments[1]) : 0;
  if (decimals < 0 || decimals > kMostDecimals) RaiseInvalidCall("Round takes 0 to 22 decimals");
  if (IsWhole(value)) return value;
  if (const auto* amount = std::get_if<Currency>(&value)) {
    // In ten-thousandths: with two decimals the unit is 100. More than four decimals leave an amount as it is.
    std::int64_t unit = 10000;
    for (std::int32_t i = 0; i < decimals && unit > 1; ++i) unit /= 10;
    const std::int64_t rest = amount->tenThousandths % unit;
    std::int64_t result = amount->tenThousandths - rest;
    const std::int64_t half = std::abs(rest) * 2 - unit;
    const bool goesOn = half > 0 || (half == 0 && (result / unit) % 2 != 0);
    if (goesOn && __builtin_add_overflow(result, rest < 0 ? -unit : unit, &result)) RaiseOverflow();
    return Currency{result};
  }
  return RoundHalfEven(NumberOf(value), decimals);
}

Value Sqr(Arguments arguments, const Scope&) {
  const double number = NumberOf(arguments[0]);
  if (number < 0.0) RaiseInvalidCall("a negative number has no square root");
  return std::sqrt(number);
}

/// The natural logarithm.
Value Log(Arguments arguments, const Scope&) {
  const double number = NumberOf(arguments[0]);
  if (number <= 0.0) RaiseInvalidCall("only positive numbers have a logarithm");
  return std::log(number);
}

Value Exp(Arguments arguments, const Scope&) {
  return Finite(std::exp(NumberOf(arguments[0])));
}
Value Sin(Arguments arguments, const Scope&) {
  return std::sin(NumberOf(arguments[0]));
}
Value Cos(Arguments arguments, const Scope&) {
  return std::cos(NumberOf(arguments[0]));
}
Value Tan(Arguments arguments, const Scope&) {
  return std::tan(NumberOf(arguments[0]));
}
Value Atn(Arguments arguments, const Scope&) {
  return std::atan(NumberOf(arguments[0]));
}

/// Below 1, as the greatest number of 32 bits is one less than the steps.
double RandomFrom(std::uint_fast32_t bits) {
  constexpr double kSteps = 4294967296.0;  // 2^32
  return static_cast<double>(bits) / kSteps;
}

/// A random number of 0 or more and below 1. A negative argument always gives the same number for itself. There is no
/// series to go back in: with 0, too, the number is a new one.
Value Rnd(Arguments arguments, const Scope&) {
  if (!arguments.empty()) {
    const double seed = NumberOf(arguments[0]);
    if (seed < 0.0) return RandomFrom(std::mt19937(static_cast<std::uint32_t>(std::hash<double>()(seed)))());
  }
  return RandomFrom(std::random_device()());
}

/// The random numbers of autonumber columns that do not count.
Value GenUniqueId(Arguments, const Scope&) {
  return static_cast<std::int32_t>(std::random_device()());
}

Value GenGuid(Arguments, const Scope&) {
  Guid guid;
  std::random_device random;
  for (std::uint8_t& byte : guid.bytes) byte = static_cast<std::uint8_t>(random());
  return guid;
}

// Least and most arguments, then what a Null among them means.
constexpr Function kNumberFunctions[] = {
    {"ABS", 1, 1, kPropagate, Gives::OfArgument, Abs},     {"SGN", 1, 1, kPropagate, Gives::Long, Sgn},
    {"INT", 1, 1, kPropagate, Gives::OfArgument, Int},     {"FIX", 1, 1, kPropagate, Gives::OfArgument, Fix},
    {"ROUND", 1, 2, kPropagate, Gives::OfArgument, Round}, {"SQR", 1, 1, kPropagate, Gives::Double, Sqr},
    {"EXP", 1, 1, kPropagate, Gives::Double, Exp},         {"LOG", 1, 1, kPropagate, Gives::Double, Log},
    {"SIN", 1, 1, kPropagate, Gives::Double, Sin},         {"COS", 1, 1, kPropagate, Gives::Double, Cos},
    {"TAN", 1, 1, kPropagate, Gives::Double, Tan},         {"ATN", 1, 1, kPropagate, Gives::Double, Atn},
    {"RND", 0, 1, kPropagate, Gives::Double, Rnd},         {"GENUNIQUEID", 0, 0, kPropagate, Gives::Long, GenUniqueId},
    {"GENGUID", 0, 0, kPropagate, Gives::Guid, GenGuid},
};

}  // namespace

std::span<const Function> NumberFunctions() {
  return kNumberFunctions;
}

}  // namespace tavi::access::sql
