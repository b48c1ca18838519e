#pragma once

#include <functional>

#include "access/sql/parse/Statement.h"

/// Questions that an expression's tree answers without being evaluated.
namespace tavi::access::sql {

/// True when the expression is a call of an aggregate function.
[[nodiscard]] bool IsAggregate(const Expression& expression);
/// True when one is part of it (sub-selects left out).
[[nodiscard]] bool HasAggregate(const Expression& expression);

/// Calls `visit` for the expression and everything below it, sub-selects left out.
void VisitExpression(const Expression& expression, const std::function<void(const Expression&)>& visit);

}  // namespace tavi::access::sql
