#pragma once

#include "access/sql/expression/Scope.h"
#include "access/sql/parse/Statement.h"

namespace tavi::access::sql {

/// The value of an expression, by Access's rules: Null in, Null out (three-valued And, Or, Not); text compared by the
/// file's sort order; numbers compared with dates as day counts; True is -1. Raises ProviderTypeConflict ("Data type
/// mismatch in criteria expression.") for operands that do not go together, ProviderSyntax ("Undefined function 'X' in
/// expression.").
Value Evaluate(const Expression& expression, const Scope& scope);
/// True when the expression's value is neither Null nor False nor 0.
bool IsTrue(const Expression& expression, const Scope& scope);

}  // namespace tavi::access::sql
