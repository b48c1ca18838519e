#pragma once

#include <string_view>
#include <utility>
#include <vector>

#include "access/sql/parse/Expression.h"
#include "platform/values/Value.h"

/// What operators do with values: arithmetic and joining of texts, comparison, Like. And, Or, Not and the conditions
/// (Between, In, Is) are the evaluator's.
namespace tavi::access::sql {

/// The result of an arithmetic operator or of &, whose type is for
/// - + - * of whole numbers (truth values count as -1 and 0): Long, or Double where that does not fit;
/// - + - * of amounts with amounts or whole numbers: an amount, exact to its four decimals;
/// - + of a date and a number, - of a number from a date: a date; - of two dates: Double;
/// - + of two texts: the two joined; a text that is a number counts as one beside other types;
/// - /, ^ and everything else: Double. \ and Mod round both sides to Long first.
/// Null gives Null, except that & takes one Null as empty text. Raises
/// ProviderTypeConflict, Overflow, ProviderFailure ("Division by zero."), InvalidArgument (a root of a negative
/// number).
Value Calculate(Operator op, const Value& left, const Value& right);
/// -value.
Value Negated(const Value& value);

/// Kinds of values that can be compared with each other, in the order in which ORDER BY puts them. Dates, amounts and
/// truth values are numbers.
enum class ValueFamily { None, Number, Text, Bytes, Guid };
/// The family of a value; None for null.
ValueFamily FamilyOf(const Value& value);

/// Compares two values that are not null as the operators = < > do: negative, 0, positive.
int CompareValues(const Value& left, const Value& right);
/// Orders values for ORDER BY: nulls first, then as CompareValues.
int OrderValues(const Value& left, const Value& right);

/// A pattern of the Like operator:
///   * or %      any characters, or none
///   ? or _      one character
///   #           one digit
///   [abc], [a-f], [!a-f]  one character that is (with !: is not) among those; [*] is a plain star; [] is nothing
/// Access reads * and ? from its own windows and % and _ from programs that use its provider; here both sets count, so
/// that a pattern works wherever it was written. Letters match in either case.
class LikePattern {
 public:
  /// Raises ProviderFailure ("Invalid pattern string.") for an open bracket or a range whose end is before its start.
  explicit LikePattern(std::string_view pattern);
  [[nodiscard]] bool Matches(std::string_view text) const;

 private:
  struct Piece {
    enum class Kind { Character, Any, AnyRun, Digit, Set } kind = Kind::Character;
    char32_t character = 0;
    bool excluded = false;
    std::vector<std::pair<char32_t, char32_t>> ranges;
  };

  std::size_t ReadSet(std::u32string_view pattern, std::size_t place);
  static bool Accepts(const Piece& piece, char32_t character);

  std::vector<Piece> pieces_;
};

}  // namespace tavi::access::sql
