// When two expressions of a statement say the same, which decides what may stand beside GROUP BY: "Year(Day) + 1" is
// allowed where "year( day )" is grouped by. Columns are compared by where they lead, so that "ID" and "Members.ID" are
// one; names of functions without regard to case; literals by value, but 1 and 1.0 are of different types and differ.
#include <algorithm>

#include "access/sql/parse/Expression.h"
#include "access/sql/plan/ExecutionErrors.h"
#include "access/sql/plan/Plan.h"
#include "access/sql/plan/ValueKey.h"
#include "platform/values/Text.h"

namespace tavi::access::sql {
namespace {

bool SameSelect(const Select& left, const Select& right);

/// Whether both are missing, or both there and `same`.
template <typename Pointer, typename Same>
bool BothOrNone(const Pointer& left, const Pointer& right, const Same& same) {
  return left && right ? same(*left, *right) : !left && !right;
}

/// Whether two lists are of one length and their members `same`, one by one.
template <typename List, typename Same>
bool AllSame(const List& left, const List& right, const Same& same) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(), same);
}

/// What can be told of two expressions without their arguments, sub-selects included.
/// Comparing the kinds of values first keeps a text from being compared with a number, which could raise an error.
bool SameHead(const Expression& left, const Expression& right) {
  if (left.kind != right.kind || left.negated != right.negated || left.distinct != right.distinct) return false;
  if (left.op != right.op || left.all != right.all || !EqualIgnoringCase(left.name, right.name)) return false;
  if (left.value.index() != right.value.index()) return false;
  if (left.kind == ExpressionKind::Literal && !SameKey(left.value, right.value)) return false;
  return BothOrNone(left.subselect, right.subselect, SameSelect);
}

/// Whether two expressions are written alike, which within sub-selects is enough: both stand in one statement.
bool SameWriting(const Expression& left, const Expression& right) {
  return SameHead(left, right) && EqualIgnoringCase(left.qualifier, right.qualifier) &&
         AllSame(left.arguments, right.arguments, [](const auto& a, const auto& b) { return SameWriting(*a, *b); });
}

bool SameSource(const Source& left, const Source& right) {
  return left.kind == right.kind && left.join == right.join && EqualIgnoringCase(left.table, right.table) &&
         EqualIgnoringCase(left.alias, right.alias) && BothOrNone(left.subselect, right.subselect, SameSelect) &&
         BothOrNone(left.left, right.left, SameSource) && BothOrNone(left.right, right.right, SameSource) &&
         BothOrNone(left.on, right.on, SameWriting);
}

bool SameSelect(const Select& left, const Select& right) {
  const auto sameItem = [](const SelectItem& a, const SelectItem& b) {
    return EqualIgnoringCase(a.alias, b.alias) && SameWriting(*a.expression, *b.expression);
  };
  const auto sameOrder = [](const OrderItem& a, const OrderItem& b) {
    return a.descending == b.descending && SameWriting(*a.expression, *b.expression);
  };
  return left.distinct == right.distinct && left.distinctRow == right.distinctRow && left.top == right.top &&
         left.topPercent == right.topPercent && left.unionAll == right.unionAll &&
         AllSame(left.items, right.items, sameItem) && BothOrNone(left.from, right.from, SameSource) &&
         BothOrNone(left.where, right.where, SameWriting) &&
         AllSame(left.groupBy, right.groupBy, [](const auto& a, const auto& b) { return SameWriting(*a, *b); }) &&
         BothOrNone(left.having, right.having, SameWriting) && AllSame(left.orderBy, right.orderBy, sameOrder) &&
         BothOrNone(left.unionWith, right.unionWith, SameSelect);
}

}  // namespace

bool SameExpression(const Expression& left, const Expression& right, const SelectPlan& plan) {
  if (left.kind == ExpressionKind::Column && right.kind == ExpressionKind::Column) {
    const Slot slot = plan.SlotOf(left);
    return slot.kind != Slot::Kind::None && slot == plan.SlotOf(right);
  }
  return SameHead(left, right) && AllSame(left.arguments, right.arguments,
                                          [&](const auto& a, const auto& b) { return SameExpression(*a, *b, plan); });
}

// From the outside in: a whole expression that is grouped by is fine whatever it is made of, and so is everything
// inside an aggregate. A column that is reached otherwise has no single value in a group. Columns of outer levels have
// one.
void CheckGrouped(const Expression& expression, const SelectPlan& plan) {
  for (const Expression* group : plan.groupBy) {
    if (SameExpression(*group, expression, plan)) return;
  }
  if (IsAggregate(expression)) return;
  if (expression.kind == ExpressionKind::Column) {
    const Slot slot = plan.SlotOf(expression);
    // An alias stands for its item.
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
