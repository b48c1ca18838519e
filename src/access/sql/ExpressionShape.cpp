#include "access/sql/ExpressionShape.h"

#include <algorithm>

#include "access/sql/Evaluator.h"
#include "access/sql/ExecutionErrors.h"
#include "access/sql/ValueKey.h"
#include "platform/values/Text.h"

namespace tavi::access::sql {

bool SameExpression(const Expression& left, const Expression& right, const SelectPlan& plan) {
  if (left.kind != right.kind || left.negated != right.negated || left.distinct != right.distinct) return false;
  if (left.kind == ExpressionKind::Column) {
    return left.slot != 0 && right.slot != 0 && plan.slots[left.slot] == plan.slots[right.slot];
  }
  if (left.op != right.op || !EqualIgnoringCase(left.name, right.name)) return false;
  if (left.subselect || right.subselect || left.value.index() != right.value.index()) return false;
  if (left.kind == ExpressionKind::Literal && !SameKey(left.value, right.value)) return false;
  return std::equal(left.arguments.begin(), left.arguments.end(), right.arguments.begin(), right.arguments.end(),
                    [&](const auto& a, const auto& b) { return SameExpression(*a, *b, plan); });
}

void VisitAggregates(Expression& expression, const std::function<void(Expression&)>& visit) {
  if (IsAggregate(expression)) visit(expression);
  for (const auto& argument : expression.arguments) VisitAggregates(*argument, visit);
}

bool HasAggregate(const Expression& expression) {
  bool found = false;
  VisitExpression(expression, [&](const Expression& part) { found = found || IsAggregate(part); });
  return found;
}

void CheckGrouped(const Expression& expression, const SelectPlan& plan) {
  for (const Expression* group : plan.groupBy) {
    if (SameExpression(*group, expression, plan)) return;
  }
  if (IsAggregate(expression)) return;
  if (expression.kind == ExpressionKind::Column) {
    const Slot& slot = plan.slots[expression.slot];
    if (slot.kind == Slot::Kind::Item) {
      CheckGrouped(*plan.select->items[slot.column].expression, plan);
    } else if (slot.depth == 0) {
      throw StatementError("The expression '" + Describe(expression) +
                           "' is no part of an aggregate function. Add it to GROUP BY or put it into one.");
    }
  }
  for (const auto& argument : expression.arguments) CheckGrouped(*argument, plan);
}

}  // namespace tavi::access::sql
