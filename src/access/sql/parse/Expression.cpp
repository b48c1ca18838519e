// What all trees have in common, whoever walks them. Sub-selects are trees of their own, with their own columns and
// aggregates, and are left out by every walk here.
#include "access/sql/parse/Expression.h"

#include <algorithm>

#include "platform/values/Text.h"

namespace tavi::access::sql {
namespace {

constexpr bool IsInOrder() {
  for (std::size_t i = 0; i < kOperators.size(); ++i) {
    if (kOperators[i].op != static_cast<Operator>(i)) return false;
  }
  return true;
}
static_assert(IsInOrder(), "TraitsOf finds an operator by its number");

// Their values come from all rows of a group, so that they are no functions of their arguments.
constexpr std::array<std::string_view, 11> kAggregates = {"COUNT", "SUM",   "AVG",    "MIN", "MAX", "FIRST",
                                                          "LAST",  "STDEV", "STDEVP", "VAR", "VARP"};

/// Chains are balanced trees: the operands stand at the leaves, in their order.
void AddOperands(const Expression& expression, Operator chain, std::vector<const Expression*>& operands) {
  if (expression.kind != ExpressionKind::Binary || expression.op != chain) {
    operands.push_back(&expression);
    return;
  }
  for (const ExpressionPointer& argument : expression.arguments) AddOperands(*argument, chain, operands);
}

}  // namespace

// With depth 1: whoever adds arguments deepens it.
ExpressionPointer MakeExpression(ExpressionKind kind, std::size_t position) {
  auto expression = std::make_unique<Expression>();
  expression->kind = kind;
  expression->position = position;
  return expression;
}

void VisitExpression(const Expression& expression, const std::function<void(const Expression&)>& visit) {
  visit(expression);
  for (const ExpressionPointer& argument : expression.arguments) VisitExpression(*argument, visit);
}

std::vector<const Expression*> OperandsOf(const Expression& expression, Operator chain) {
  std::vector<const Expression*> operands;
  AddOperands(expression, chain, operands);
  return operands;
}

// No built-in function has the name of one.
bool IsAggregate(const Expression& expression) {
  if (expression.kind != ExpressionKind::Call || expression.function != nullptr) return false;
  return std::ranges::any_of(kAggregates,
                             [&](std::string_view name) { return EqualIgnoringCase(name, expression.name); });
}

bool HasAggregate(const Expression& expression) {
  bool found = false;
  VisitExpression(expression, [&](const Expression& part) { found = found || IsAggregate(part); });
  return found;
}

}  // namespace tavi::access::sql
