#pragma once

#include <functional>

#include "access/sql/Plan.h"

namespace tavi::access::sql {

/// True when two expressions of a plan say the same: same operators, values and columns, whatever the spelling.
bool SameExpression(const Expression& left, const Expression& right, const SelectPlan& plan);

/// Calls `visit` for each aggregate call of an expression (sub-selects left out).
void VisitAggregates(Expression& expression, const std::function<void(Expression&)>& visit);
[[nodiscard]] bool HasAggregate(const Expression& expression);

/// Raises ProviderSyntax when an expression of a grouped statement names a column that is neither a group's nor in an
/// aggregate.
void CheckGrouped(const Expression& expression, const SelectPlan& plan);

/// The type of the values of an expression, as far as it can be told without running it.
ado::DataType TypeOf(const Expression& expression, const SelectPlan& plan);
/// The type of a column's values.
ado::DataType TypeOf(const ColumnDefinition& column);

}  // namespace tavi::access::sql
