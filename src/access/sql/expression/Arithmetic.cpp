// Operators on values: the types of both sides decide which arithmetic is used, the most exact that fits.
//
//   whole and whole          64 bits, then Long where it fits, else Double
//   amount with such         ten-thousandths in 64 bits, exact
//   date with number         Double, then a date again
//   text and text, for +     joined
//   all else                 Double, texts by the number that they write
#include <cmath>
#include <limits>
#include <optional>

#include "access/file/EngineError.h"
#include "access/sql/expression/Coercion.h"
#include "access/sql/expression/Operators.h"

namespace tavi::access::sql {
namespace {

constexpr std::int64_t kCurrencyUnit = 10000;

/// Nothing for values that are no whole numbers by type, whatever they are worth.
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

/// Sums and products of 32-bit numbers always fit 64 bits, so nothing is lost before it is decided.
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
/// The product itself may need 128 bits, which not every compiler has. With left = 10000 w + p and right = 10000 v + q
///
///   left right / 10000 = w right + p v + p q / 10000
///
/// where each term has room unless the result has none, and only the last one leaves a rest to be rounded.
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

/// An infinite result is an overflow, never a value: files have no place for it.
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
  // A date and a number make a date, a date less a number too; two dates differ by a number of days.
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

/// The one quotient of 32-bit numbers that has 33 bits is -2147483648 \ -1.
Value CalculateLong(Operator op, std::int64_t left, std::int64_t right) {
  if (right == 0) RaiseDivisionByZero();
  const std::int64_t result = op == Operator::Modulo ? left % right : left / right;
  if (result > std::numeric_limits<std::int32_t>::max()) RaiseOverflow();
  return static_cast<std::int32_t>(result);
}

Value Raised(double base, double exponent) {
  if (base == 0.0 && exponent < 0.0) RaiseDivisionByZero();
  const double result = std::pow(base, exponent);
  // Such as the square root of a negative number written as a power.
  if (std::isnan(result)) RaiseInvalidCall("a negative number has no such power");
  return Finite(result);
}

/// A Null is an empty text here, where + would make the whole Null: people join the parts of names, some of which are
/// empty.
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
    // There is no -0.
    result.negative = !result.negative && (result.high != 0 || result.low != 0);
    return result;
  }
  return -NumberOf(value);
}

}  // namespace tavi::access::sql
