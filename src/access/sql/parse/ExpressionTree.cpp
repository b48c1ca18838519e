#include "access/sql/parse/ExpressionTree.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "platform/values/Text.h"

namespace tavi::access::sql {

bool IsAggregate(const Expression& expression) {
  constexpr std::array<std::string_view, 11> kAggregates = {"COUNT", "SUM",   "AVG",    "MIN", "MAX", "FIRST",
                                                            "LAST",  "STDEV", "STDEVP", "VAR", "VARP"};
  if (expression.kind != ExpressionKind::Call || expression.function != nullptr) return false;
  return std::ranges::any_of(kAggregates,
                             [&](std::string_view name) { return EqualIgnoringCase(name, expression.name); });
}

bool HasAggregate(const Expression& expression) {
  bool found = false;
  VisitExpression(expression, [&](const Expression& part) { found = found || IsAggregate(part); });
  return found;
}

void VisitExpression(const Expression& expression, const std::function<void(const Expression&)>& visit) {
  visit(expression);
  for (const ExpressionPointer& argument : expression.arguments) VisitExpression(*argument, visit);
}

}  // namespace tavi::access::sql
