#pragma once

#include "access/sql/plan/Plan.h"

namespace tavi::access::sql {

/// True when two expressions of a plan say the same: same operators, values and columns, whatever the spelling.
bool SameExpression(const Expression& left, const Expression& right, const SelectPlan& plan);

/// Raises ProviderSyntax when an expression of a grouped statement names a column that is neither a group's nor in an
/// aggregate.
void CheckGrouped(const Expression& expression, const SelectPlan& plan);

/// The type of the values of an expression, as far as it can be told without running it.
ado::DataType TypeOf(const Expression& expression, const SelectPlan& plan);
/// The type of a column's values.
ado::DataType TypeOf(const ColumnDefinition& column);

}  // namespace tavi::access::sql
