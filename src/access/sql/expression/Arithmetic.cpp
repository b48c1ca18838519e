#include <cmath>
#include <limits>
#include <optional>

#include "access/file/EngineError.h"
#include "access/sql/expression/Coercion.h"
#include "access/sql/expression/Operators.h"

namespace tavi::access::sql {
namespace {

constexpr std::int64_t kCurrencyUnit = 10000;

std::optional<std::int64_t> WholeOf(const Value& value) {
  if (const auto* number = std::get_if<std::int32_t>(&value)) return *number;
  if (const auto* number = std::get_if<std::int16_t>(&value)) return *number;
  if (const auto* number = std::get_if<std::uint8_t>(&value)) return *number;
  if (const auto* truth = std::get_if<bool>(&value)) return *truth ? -1 : 0;
  return std::nullopt;
}

bool IsText(const Value& value) {
  return std::holds_alternative<std::string>(value);
}
bool IsDate(const Value& value) {
  return std::holds_alternative<Date>(value);
}
bool IsCurrency(const Value& value) {
  return std::holds_alternative<Currency>(value);
}

Value LongOrDouble(std::int64_t number) {
  if (number >= std::numeric_limits<std::int32_t>::min() && number <= std::numeric_limits<std::int32_t>::max()) {
    return static_cast<std::int32_t>(number);
  }
  return static_cast<double>(number);
}

Value CalculateWhole(Operator op, std::int64_t left, std::int64_t right) {
  if (op == Operator::Add) return LongOrDouble(left + right);
  if (op == Operator::Subtract) return LongOrDouble(left - right);
  return LongOrDouble(left * right);
}

std::int64_t TenThousandthsOf(const Value& value) {
  const auto* amount = std::get_if<Currency>(&value);
  return amount != nullptr ? amount->tenThousandths : WholeOf(value).value_or(0) * kCurrencyUnit;
}

/// left * right / 10000, rounded to even, without numbers of more than 64 bits.
std::int64_t MultipliedAmounts(std::int64_t left, std::int64_t right) {
  const std::int64_t leftWhole = left / kCurrencyUnit;
  const std::int64_t leftPart = left % kCurrencyUnit;
  const std::int64_t rightWhole = right / kCurrencyUnit;
  const std::int64_t rightPart = right % kCurrencyUnit;
  const std::int64_t parts = leftPart * rightPart;
  std::int64_t product = 0;
  bool isTooLarge = __builtin_mul_overflow(leftWhole, right, &product);
  isTooLarge |= __builtin_add_overflow(product, leftPart * rightWhole, &product);
  isTooLarge |= __builtin_add_overflow(product, parts / kCurrencyUnit, &product);
  const std::int64_t rest = parts % kCurrencyUnit;
  const std::int64_t half = std::abs(rest) * 2 - kCurrencyUnit;
  if (half > 0 || (half == 0 && product % 2 != 0)) {
    isTooLarge |= __builtin_add_overflow(product, rest < 0 ? -1 : 1, &product);
  }
  if (isTooLarge) RaiseOverflow("the amount is too large");
  return product;
}

Value CalculateCurrency(Operator op, std::int64_t left, std::int64_t right) {
  if (op == Operator::Multiply) return Currency{MultipliedAmounts(left, right)};
  std::int64_t result = 0;
  const bool isTooLarge =
      op == Operator::Add ? __builtin_add_overflow(left, right, &result) : __builtin_sub_overflow(left, right, &result);
  if (isTooLarge) RaiseOverflow("the amount is too large");
  return Currency{result};
}

Value CalculateDouble(Operator op, double left, double right) {
  if (op == Operator::Add) return Finite(left + right);
  if (op == Operator::Subtract) return Finite(left - right);
  return Finite(left * right);
}

/// + - *
Value CalculateSum(Operator op, const Value& left, const Value& right) {
  const std::optional<std::int64_t> leftWhole = WholeOf(left);
  const std::optional<std::int64_t> rightWhole = WholeOf(right);
  if (leftWhole && rightWhole) return CalculateWhole(op, *leftWhole, *rightWhole);
  if (op == Operator::Add && IsText(left) && IsText(right)) return Calculate(Operator::Concatenate, left, right);
  if ((IsCurrency(left) || leftWhole) && (IsCurrency(right) || rightWhole)) {
    return CalculateCurrency(op, TenThousandthsOf(left), TenThousandthsOf(right));
  }
  const Value result = CalculateDouble(op, NumberOf(left), NumberOf(right));
  const bool isDate =
      op == Operator::Add ? IsDate(left) != IsDate(right) : op == Operator::Subtract && IsDate(left) && !IsDate(right);
  return isDate ? Value(DateOfNumber(std::get<double>(result))) : result;
}

[[noreturn]] void RaiseDivisionByZero() {
  RaiseFailure("Division by zero.");
}

Value Divided(double left, double right) {
  if (right == 0.0) RaiseDivisionByZero();
  return Finite(left / right);
}

Value CalculateLong(Operator op, std::int64_t left, std::int64_t right) {
  if (right == 0) RaiseDivisionByZero();
  const std::int64_t result = op == Operator::Modulo ? left % right : left / right;
  if (result > std::numeric_limits<std::int32_t>::max()) RaiseOverflow();
  return static_cast<std::int32_t>(result);
}

Value Raised(double base, double exponent) {
  if (base == 0.0 && exponent < 0.0) RaiseDivisionByZero();
  const double result = std::pow(base, exponent);
  if (std::isnan(result)) RaiseInvalidCall("a negative number has no such power");
  return Finite(result);
}

Value Joined(const Value& left, const Value& right) {
  if (IsNull(left) && IsNull(right)) return Null{};
  std::string text = IsNull(left) ? std::string() : TextOf(left);
  if (!IsNull(right)) text += TextOf(right);
  if (text.size() > kMaximumTextLength) RaiseOverflow("the text is too long");
  return text;
}

}  // namespace

Value Calculate(Operator op, const Value& left, const Value& right) {
  if (op == Operator::Concatenate) return Joined(left, right);
  if (IsNull(left) || IsNull(right)) return Null{};
  switch (op) {
    case Operator::Divide:
      return Divided(NumberOf(left), NumberOf(right));
    case Operator::IntegerDivide:
    case Operator::Modulo:
      return CalculateLong(op, LongOf(left), LongOf(right));
    case Operator::Power:
      return Raised(NumberOf(left), NumberOf(right));
    default:
      return CalculateSum(op, left, right);
  }
}

Value Negated(const Value& value) {
  if (IsNull(value)) return value;
  if (const std::optional<std::int64_t> whole = WholeOf(value)) return LongOrDouble(-*whole);
  if (IsCurrency(value)) return CalculateCurrency(Operator::Subtract, 0, TenThousandthsOf(value));
  if (const auto* number = std::get_if<Decimal>(&value)) {
    Decimal result = *number;
    result.negative = !result.negative && (result.high != 0 || result.low != 0);
    return result;
  }
  return -NumberOf(value);
}

}  // namespace tavi::access::sql
