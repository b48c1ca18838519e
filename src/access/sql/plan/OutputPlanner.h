#pragma once

#include "access/sql/plan/NameBinder.h"

namespace tavi::access::sql {

/// Decides the columns of a result: expands stars, finds the names of the items, and names the columns: an alias, the
/// column's own name, "Table.Column" where two tables give the same name, Expr1000 + position for an expression.
void PlanOutputs(const Select& select, NameBinder& binder);

}  // namespace tavi::access::sql
