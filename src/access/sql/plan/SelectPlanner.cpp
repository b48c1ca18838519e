// A select level from its tree to its plan. The order of the steps matters:
//
//   1. sources: names need them
//   2. FROM and WHERE: bound, split into conditions, joins and paths chosen (JoinPlanner, AccessPlanner)
//   3. the select list: stars expanded, columns named
//   4. ORDER BY, which may name columns of the select list by position or alias
//   5. GROUP BY, HAVING and the aggregates of all clauses, the sort keys' included; then what is not grouped is refused
//   6. what needs all of that: DISTINCTROW, and an index that gives the order
//
// Sub-selects are planned when the expression that holds them is bound, each as a level of its own.
#include "access/sql/plan/SelectPlanner.h"

#include <algorithm>

#include "access/sql/parse/Expression.h"
#include "access/sql/plan/ExecutionErrors.h"
#include "access/sql/plan/JoinPlanner.h"
#include "access/sql/plan/Plan.h"

namespace tavi::access::sql {

namespace {

/// The square of it bounds estimates, so that those of deeply nested derived tables stay numbers of rows.
constexpr double kUnknownRows = 1000;

/// WHERE, ON, GROUP BY and SET are evaluated row by row, before there are groups.
void RefuseAggregates(const Expression* expression, const std::string& clause) {
  if (expression != nullptr && HasAggregate(*expression)) {
    throw StatementError("Cannot have an aggregate function in the " + clause + " clause (" + Describe(*expression) +
                         ").");
  }
}

void BindJoins(const Source& tree, NameBinder& binder) {
  if (tree.kind != Source::Kind::Join) return;
  BindJoins(*tree.left, binder);
  BindJoins(*tree.right, binder);
  if (!tree.on) return;
  binder.Bind(*tree.on, NameBinder::Use::Search);
  RefuseAggregates(tree.on.get(), "ON");
}

/// Binds FROM and WHERE and decides how their rows are found.
void PlanSearch(PlanContext& context, NameBinder& binder, const Source& from, const Expression* where) {
  SelectPlan& plan = binder.Plan();
  BindJoins(from, binder);
  if (where != nullptr) binder.Bind(*where, NameBinder::Use::Search);
  RefuseAggregates(where, "WHERE");
  // Levels below this one have noted their considered columns themselves, when they were bound above.
  Conjuncts conjuncts;
  SplitConjuncts(where, binder, conjuncts);
  plan.root = JoinPlanner(context, plan, binder).Plan(from, std::move(conjuncts));
  context.memoryIndexes.NotePlan(context.considered, plan.root->cost + plan.root->setup);
  context.considered.clear();
}

/// Each call in the text has a place of its own, by which its value in the current group is found.
void CollectAggregates(const Expression& expression, SelectPlan& plan) {
  VisitExpression(expression, [&](const Expression& call) {
    if (!IsAggregate(call)) return;
    for (const auto& argument : call.arguments) {
      if (HasAggregate(*argument)) {
        throw StatementError("Cannot have an aggregate function within another (" + Describe(call) + ").");
      }
    }
    if (plan.aggregatePlaces.size() <= call.number) plan.aggregatePlaces.resize(call.number + 1);
    plan.aggregatePlaces[call.number] = plan.aggregates.size();
    plan.aggregates.push_back(&call);
  });
}

/// GROUP BY, HAVING and the aggregates of all clauses.
void PlanGroups(const Select& select, NameBinder& binder) {
  SelectPlan& plan = binder.Plan();
  for (const auto& group : select.groupBy) {
    RefuseAggregates(group.get(), "GROUP BY");
    binder.Bind(*group, NameBinder::Use::Search, select.items.size());
    plan.groupBy.push_back(group.get());
  }
  if (select.having) {
    binder.Bind(*select.having, NameBinder::Use::Search, select.items.size());
    CollectAggregates(*select.having, plan);
  }
  for (const SelectItem& item : select.items) CollectAggregates(*item.expression, plan);
  for (const OrderItem& item : select.orderBy) CollectAggregates(*item.expression, plan);
  plan.grouped = !plan.groupBy.empty() || select.having || !plan.aggregates.empty();
}

/// A star would show columns that differ within a group.
void CheckGroups(const SelectPlan& plan) {
  if (!plan.grouped) return;
  for (const OutputColumn& output : plan.outputs) {
    if (output.expression == nullptr) {
      throw StatementError("SELECT * cannot be combined with groups or aggregate functions. Name the columns.");
    }
    CheckGrouped(*output.expression, plan);
  }
  if (plan.select->having) CheckGrouped(*plan.select->having, plan);
  for (const SortKey& key : plan.order) {
    if (key.expression != nullptr) CheckGrouped(*key.expression, plan);
  }
}

/// DISTINCTROW drops repetitions that come from tables which give nothing to the select list.
void PlanDistinctRows(SelectPlan& plan) {
  if (!plan.select->distinctRow || plan.grouped) return;
  SourceSet all = 0;
  SourceSet shown = 0;
  for (std::size_t i = 0; i < plan.sources.size(); ++i) {
    const auto& wanted = plan.sources[i].outputColumns;
    all |= SourceSet{1} << i;
    if (std::find(wanted.begin(), wanted.end(), true) != wanted.end()) shown |= SourceSet{1} << i;
  }
  if (shown != 0 && shown != all) plan.distinctSources = shown;
}

/// A select without the ones that a union adds to it.
std::unique_ptr<SelectPlan> PlanAlone(PlanContext& context, const Select& select, const NameBinder* outer) {
  auto plan = std::make_unique<SelectPlan>();
  plan->select = &select;
  NameBinder binder(context, *plan, outer);
  if (select.from) {
    binder.AddSources(*select.from);
    PlanSearch(context, binder, *select.from, select.where.get());
  } else if (select.where) {
    binder.Bind(*select.where, NameBinder::Use::Search);
    plan->constantFilters.push_back(select.where.get());
  }
  PlanOutputs(select, binder);
  PlanOrder(select, binder);
  PlanGroups(select, binder);
  CheckGroups(*plan);
  PlanDistinctRows(*plan);
  ChooseOrderWalk(context, *plan);
  plan->usesFileIndexes = context.options.fileIndexes;
  return plan;
}

/// The names and types of a union's columns are those of its first select. A part that depends on an outer row makes
/// the whole union depend on it.
void AddToUnion(SelectPlan& plan, std::unique_ptr<SelectPlan> part) {
  if (part->outputs.size() != plan.outputs.size()) {
    throw StatementError("The selects of a union have different numbers of columns: " +
                         std::to_string(plan.outputs.size()) + " and " + std::to_string(part->outputs.size()) + ".");
  }
  plan.outerSlots.insert(plan.outerSlots.end(), part->outerSlots.begin(), part->outerSlots.end());
  plan.unionParts.push_back(std::move(part));
}

}  // namespace

std::unique_ptr<SelectPlan> PlanSelect(PlanContext& context, const Select& select, const NameBinder* outer) {
  std::unique_ptr<SelectPlan> plan = PlanAlone(context, select, outer);
  for (const Select* part = select.unionWith.get(); part != nullptr; part = part->unionWith.get()) {
    AddToUnion(*plan, PlanAlone(context, *part, outer));
  }
  return plan;
}

// The assigned columns are bound like values: the row that is changed is read with what the new values are computed
// from.
std::unique_ptr<SelectPlan> PlanRows(PlanContext& context, const Source& from, const Expression* where,
                                     const std::vector<const Expression*>& expressions) {
  auto plan = std::make_unique<SelectPlan>();
  NameBinder binder(context, *plan, nullptr);
  binder.AddSources(from);
  PlanSearch(context, binder, from, where);
  for (const Expression* expression : expressions) {
    binder.Bind(*expression, NameBinder::Use::Output);
    RefuseAggregates(expression, "SET");
  }
  return plan;
}

std::unique_ptr<SelectPlan> PlanConstants(PlanContext& context, const std::vector<const Expression*>& expressions) {
  auto plan = std::make_unique<SelectPlan>();
  NameBinder binder(context, *plan, nullptr);
  for (const Expression* expression : expressions) {
    binder.Bind(*expression, NameBinder::Use::Output);
    RefuseAggregates(expression, "VALUES");
  }
  return plan;
}

// Groups are taken to have four rows.
double EstimateRows(const SelectPlan& plan) {
  if (!plan.root) return 1;
  const double rows = std::min(plan.root->rows, kUnknownRows * kUnknownRows);
  return std::max(1.0, plan.grouped ? rows / 4 : rows);
}

}  // namespace tavi::access::sql
