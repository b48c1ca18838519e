#include "access/sql/plan/Conjuncts.h"

namespace tavi::access::sql {

void SplitConjuncts(const Expression* expression, const NameBinder& binder, Conjuncts& conjuncts) {
  if (expression == nullptr) return;
  if (expression->kind == ExpressionKind::Binary && expression->op == Operator::And) {
    SplitConjuncts(expression->arguments[0].get(), binder, conjuncts);
    SplitConjuncts(expression->arguments[1].get(), binder, conjuncts);
    return;
  }
  conjuncts.push_back({expression, binder.SourcesOf(*expression)});
}

}  // namespace tavi::access::sql
