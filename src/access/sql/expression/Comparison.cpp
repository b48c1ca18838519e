// Comparing values. Those of one family can be compared, in a way of its own for each; across families there is no
// order but that of ORDER BY, which puts one family behind the other so that any column can be sorted.
//
// Numbers are compared exactly where both sides are exact: whole numbers and amounts in ten-thousandths, decimals digit
// by digit. Doubles, singles and dates make the comparison one of doubles. Texts go by the file's sort order, without
// case, so that "=" finds what an index finds.
#include <algorithm>
#include <cmath>
#include <compare>
#include <optional>

#include "access/index/Collation.h"
#include "access/sql/expression/Coercion.h"
#include "access/sql/expression/Operators.h"
#include "platform/values/Convert.h"
#include "platform/values/Text.h"

namespace tavi::access::sql {
namespace {

template <typename Comparable>
int Sign(const Comparable& left, const Comparable& right) {
  return left < right ? -1 : right < left ? 1 : 0;
}

/// What is no number, which only a damaged file holds, stands before all numbers.
int CompareDoubles(double left, double right) {
  if (std::isnan(left) || std::isnan(right)) return Sign(!std::isnan(left), !std::isnan(right));
  return Sign(left, right);
}

/// The value in ten-thousandths, for whole numbers and amounts.
/// Nothing for decimals, whose 28 digits have no room in 64 bits.
std::optional<std::int64_t> ExactAmountOf(const Value& value) {
  constexpr std::int64_t kUnit = 10000;
  if (const auto* number = std::get_if<std::int32_t>(&value)) return *number * kUnit;
  if (const auto* number = std::get_if<std::int16_t>(&value)) return *number * kUnit;
  if (const auto* number = std::get_if<std::uint8_t>(&value)) return *number * kUnit;
  if (const auto* truth = std::get_if<bool>(&value)) return *truth ? -kUnit : 0;
  if (const auto* amount = std::get_if<Currency>(&value)) return amount->tenThousandths;
  return std::nullopt;
}

bool IsReal(const Value& value) {
  return std::holds_alternative<double>(value) || std::holds_alternative<float>(value) ||
         std::holds_alternative<Date>(value);
}

/// Compares plain decimal texts of numbers that are not negative, without trailing zeros: exact for any number of
/// digits.
int CompareDigits(std::string_view left, std::string_view right) {
  const std::size_t leftWhole = std::min(left.find('.'), left.size());
  const std::size_t rightWhole = std::min(right.find('.'), right.size());
  // More digits before the point are more; with as many, the texts sort like the numbers.
  if (leftWhole != rightWhole) return Sign(leftWhole, rightWhole);
  return Sign(left, right);
}

/// Of two negative numbers the greater magnitude is the lesser number.
int CompareDecimalTexts(std::string_view left, std::string_view right) {
  if (left == "-0") left.remove_prefix(1);
  if (right == "-0") right.remove_prefix(1);
  const bool leftNegative = left.starts_with('-');
  const bool rightNegative = right.starts_with('-');
  if (leftNegative != rightNegative) return leftNegative ? -1 : 1;
  return leftNegative ? CompareDigits(right.substr(1), left.substr(1)) : CompareDigits(left, right);
}

int CompareNumbers(const Value& left, const Value& right) {
  if (IsReal(left) || IsReal(right)) return CompareDoubles(NumberOf(left), NumberOf(right));
  const std::optional<std::int64_t> leftAmount = ExactAmountOf(left);
  const std::optional<std::int64_t> rightAmount = ExactAmountOf(right);
  if (leftAmount && rightAmount) return Sign(*leftAmount, *rightAmount);
  return CompareDecimalTexts(TextOf(left), TextOf(right));
}

int CompareSameFamily(ValueFamily family, const Value& left, const Value& right) {
  switch (family) {
    case ValueFamily::None:
      return 0;
    case ValueFamily::Number:
      return CompareNumbers(left, right);
    case ValueFamily::Text:
      return CollationCompare(std::get<std::string>(left), std::get<std::string>(right));
    case ValueFamily::Bytes:
      return Sign(std::get<Bytes>(left), std::get<Bytes>(right));
    case ValueFamily::Guid:
      return Sign(std::get<Guid>(left), std::get<Guid>(right));
  }
  return 0;
}

}  // namespace

// Whatever is no text, no bytes and no identifier counts as a number: amounts, dates and truth values too.
ValueFamily FamilyOf(const Value& value) {
  if (IsNull(value)) return ValueFamily::None;
  if (std::holds_alternative<std::string>(value)) return ValueFamily::Text;
  if (std::holds_alternative<Bytes>(value)) return ValueFamily::Bytes;
  if (std::holds_alternative<Guid>(value)) return ValueFamily::Guid;
  return ValueFamily::Number;
}

int CompareValues(const Value& left, const Value& right) {
  // Most keys are Longs: they are compared before anything else is asked.
  const auto* leftLong = std::get_if<std::int32_t>(&left);
  const auto* rightLong = std::get_if<std::int32_t>(&right);
  if (leftLong != nullptr && rightLong != nullptr) return Sign(*leftLong, *rightLong);
  const ValueFamily family = FamilyOf(left);
  const ValueFamily other = FamilyOf(right);
  if (family == other) return CompareSameFamily(family, left, right);
  // Identifiers have no literals of their own in statements, so texts are compared with how they are written.
  if (family == ValueFamily::Guid && other == ValueFamily::Text)
    return CompareIgnoringCase(TextOf(left), TextOf(right));
  if (family == ValueFamily::Text && other == ValueFamily::Guid)
    return CompareIgnoringCase(TextOf(left), TextOf(right));
  RaiseTypeConflict();
}

// Never raises, as a sort may meet what a union has mixed.
int OrderValues(const Value& left, const Value& right) {
  const ValueFamily family = FamilyOf(left);
  const ValueFamily other = FamilyOf(right);
  return family == other ? CompareSameFamily(family, left, right) : Sign(family, other);
}

}  // namespace tavi::access::sql
