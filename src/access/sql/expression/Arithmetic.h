#pragma once

#include "access/sql/parse/Statement.h"
#include "platform/values/Value.h"

/// Arithmetic and joining of texts. The types of results:
/// - + - * of whole numbers (truth values count as -1 and 0): Long, or Double where that does not fit;
/// - + - * of amounts with amounts or whole numbers: an amount, exact to its four decimals;
/// - + of a date and a number, - of a number from a date: a date; - of two dates: Double;
/// - + of two texts: the two joined; a text that is a number counts as one beside other types;
/// - /, ^ and everything else: Double. \ and Mod round both sides to Long first.
namespace tavi::access::sql {

/// The result of an arithmetic operator or of &. Null gives Null, except that & takes one Null as empty text. Raises
/// ProviderTypeConflict, Overflow, ProviderFailure ("Division by zero."), InvalidArgument (a root of a negative
/// number).
Value Calculate(Operator op, const Value& left, const Value& right);
/// -value.
Value Negated(const Value& value);

}  // namespace tavi::access::sql
