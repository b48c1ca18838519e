#pragma once

#include <vector>

#include "access/sql/plan/NameBinder.h"

namespace tavi::access::sql {

/// One of the conditions that AND joins, and the sources that it depends on.
struct Conjunct {
  const Expression* expression = nullptr;
  SourceSet sources = 0;
};
using Conjuncts = std::vector<Conjunct>;

/// Appends the conditions of an expression that AND joins at the top. The expression is bound; null appends nothing.
void SplitConjuncts(const Expression* expression, const NameBinder& binder, Conjuncts& conjuncts);

}  // namespace tavi::access::sql
