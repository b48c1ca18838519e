#pragma once

#include "access/sql/plan/NameBinder.h"

namespace tavi::access::sql {

/// Plans ORDER BY: each key is an expression, or an output column by its position (ORDER BY 2), alias or, in a union,
/// name.
void PlanOrder(const Select& select, NameBinder& binder);

/// Lets an index give the order where only the first rows (TOP) are wanted and reading in index order is cheaper than
/// sorting all rows.
void ChooseOrderWalk(const PlanContext& context, SelectPlan& plan);

}  // namespace tavi::access::sql
