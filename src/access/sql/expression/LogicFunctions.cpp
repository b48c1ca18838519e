// Functions that choose, and those that ask what a value is. The first kind gets its arguments unevaluated, so that an
// error in what is not chosen is none: IIf(Number = 0, Null, 1 / Number).
#include "access/sql/expression/Coercion.h"
#include "access/sql/expression/Functions.h"
#include "platform/values/Convert.h"
#include "platform/values/DateText.h"

namespace tavi::access::sql {
namespace {

using Arguments = std::span<const Value>;
using LazyArguments = std::span<const ExpressionPointer>;

/// IIf(condition, value, otherwise): only the chosen one is evaluated. Null is not true.
Value IIf(LazyArguments arguments, const Scope& scope, Function::Evaluation evaluate) {
  const Truth truth = TruthOf(evaluate(*arguments[0], scope));
  return evaluate(truth == Truth::True ? *arguments[1] : *arguments[2], scope);
}

/// Switch(condition, value, condition, value, ...): the value behind the first true condition, or Null.
Value Switch(LazyArguments arguments, const Scope& scope, Function::Evaluation evaluate) {
  if (arguments.size() % 2 != 0) RaiseInvalidCall("Switch takes pairs of a condition and a value");
  for (std::size_t i = 0; i < arguments.size(); i += 2) {
    if (TruthOf(evaluate(*arguments[i], scope)) == Truth::True) return evaluate(*arguments[i + 1], scope);
  }
  return Null{};
}

/// Choose(number, first, second, ...): Null when there is no such choice.
Value Choose(LazyArguments arguments, const Scope& scope, Function::Evaluation evaluate) {
  Value choice = evaluate(*arguments[0], scope);
  if (IsNull(choice)) return choice;
  const double number = NumberOf(choice);
  // The first argument is the number itself, so there is one choice less than there are arguments. Fractions are cut.
  if (!(number >= 1.0 && number < static_cast<double>(arguments.size()))) return Null{};
  return evaluate(*arguments[static_cast<std::size_t>(number)], scope);
}

/// Nz(value [, instead]): without a second argument, empty text.
Value Nz(LazyArguments arguments, const Scope& scope, Function::Evaluation evaluate) {
  Value value = evaluate(*arguments[0], scope);
  if (!IsNull(value)) return value;
  return arguments.size() > 1 ? evaluate(*arguments[1], scope) : Value(std::string());
}

Value TestNull(Arguments arguments, const Scope&) {
  return IsNull(arguments[0]);
}

/// Numbers are no dates here, although they can be turned into some.
Value IsDate(Arguments arguments, const Scope&) {
  if (std::holds_alternative<Date>(arguments[0])) return true;
  const auto* text = std::get_if<std::string>(&arguments.front());
  return text != nullptr && ParseDateText(*text, DateOrder::DayFirst).has_value();
}

Value IsNumeric(Arguments arguments, const Scope&) {
  const Value& value = arguments[0];
  if (const auto* text = std::get_if<std::string>(&value)) return ParseNumber(*text).has_value();
  return !IsNull(value) && !std::holds_alternative<Date>(value) && !std::holds_alternative<Bytes>(value) &&
         !std::holds_alternative<Guid>(value);
}

// A Null is what these functions are asked about, so they get it.
constexpr auto kPass = Function::Nulls::Pass;
constexpr Function kLogicFunctions[] = {
    {"IIF", 3, 3, kPass, Gives::OfChoice, nullptr, IIf},
    {"SWITCH", 2, Function::kAnyNumber, kPass, Gives::Text, nullptr, Switch},
    {"CHOOSE", 2, Function::kAnyNumber, kPass, Gives::Text, nullptr, Choose},
    {"NZ", 1, 2, kPass, Gives::OfArgument, nullptr, Nz},
    {"ISNULL", 1, 1, kPass, Gives::Boolean, TestNull},
    {"ISDATE", 1, 1, kPass, Gives::Boolean, IsDate},
    {"ISNUMERIC", 1, 1, kPass, Gives::Boolean, IsNumeric},
};

}  // namespace

std::span<const Function> LogicFunctions() {
  return kLogicFunctions;
}

}  // namespace tavi::access::sql
