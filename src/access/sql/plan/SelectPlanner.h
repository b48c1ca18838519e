#pragma once

#include <memory>
#include <vector>

#include "access/sql/plan/NameBinder.h"
#include "access/sql/plan/Plan.h"

namespace tavi::access::sql {

/// Plans a SELECT, its unions, derived tables and sub-selects. `outer`: the level around a sub-select, null for none.
/// Call inside a statement.
std::unique_ptr<SelectPlan> PlanSelect(PlanContext& context, const Select& select, const NameBinder* outer);

/// Plans how to find the rows that an UPDATE or DELETE changes. `expressions` are those of the assignments; they may
/// name columns of the sources too, and their columns are read with the rows found.
std::unique_ptr<SelectPlan> PlanRows(PlanContext& context, const Source& from, const Expression* where,
                                     const std::vector<const Expression*>& expressions);

/// Plans expressions that have no rows to refer to (INSERT ... VALUES).
std::unique_ptr<SelectPlan> PlanConstants(PlanContext& context, const std::vector<const Expression*>& expressions);

/// How many rows a plan is likely to give.
double EstimateRows(const SelectPlan& plan);

/// Decides the columns of a result: expands stars, finds the names of the items, and names the columns: an alias, the
/// column's own name, "Table.Column" where two tables give the same name, Expr1000 + position for an expression.
void PlanOutputs(const Select& select, NameBinder& binder);

/// Plans ORDER BY: each key is an expression, or an output column by its position (ORDER BY 2), alias or, in a union,
/// name.
void PlanOrder(const Select& select, NameBinder& binder);

/// Lets an index give the order where only the first rows (TOP) are wanted and reading in index order is cheaper than
/// sorting all rows.
void ChooseOrderWalk(const PlanContext& context, SelectPlan& plan);

}  // namespace tavi::access::sql
