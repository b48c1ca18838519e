// ORDER BY, and the index that may take its place. A key is, in this order: a whole number, which is the position of an
// output column counted from 1; in a union the name of an output column, since its parts have no columns in common;
// else an expression over the sources, in which aliases may be named.
#include <algorithm>

#include "access/sql/plan/AccessPlanner.h"
#include "access/sql/plan/ExecutionErrors.h"
#include "access/sql/plan/SelectPlanner.h"
#include "platform/values/Text.h"

namespace tavi::access::sql {

namespace {

/// Reading a row by an index costs about this many rows of a scan.
constexpr double kRowByIndex = 2.0;

/// Only a literal as it stands: ORDER BY 1 + 1 is an expression, and the same for all rows.
std::optional<std::size_t> OutputPosition(const Expression& expression, const SelectPlan& plan) {
  if (expression.kind != ExpressionKind::Literal) return std::nullopt;
  std::int64_t position = 0;
  if (const auto* number = std::get_if<std::int32_t>(&expression.value)) {
    position = *number;
  } else if (const auto* small = std::get_if<std::int16_t>(&expression.value)) {
    position = *small;
  } else {
    return std::nullopt;
  }
  if (position < 1 || static_cast<std::size_t>(position) > plan.outputs.size()) {
    throw StatementError("ORDER BY " + std::to_string(position) + " names no column: the result has " +
                         std::to_string(plan.outputs.size()) + ".");
  }
  return static_cast<std::size_t>(position - 1);
}

/// By the name that the result shows or the one that the column has in its table.
std::size_t UnionColumn(const Expression& expression, const SelectPlan& plan) {
  if (expression.kind == ExpressionKind::Column) {
    for (std::size_t i = 0; i < plan.outputs.size(); ++i) {
      const ResultColumn& column = plan.outputs[i].column;
      if (EqualIgnoringCase(column.name, expression.name)) return i;
      if (EqualIgnoringCase(column.columnName, expression.name)) return i;
    }
  }
  throw StatementError("The ORDER BY expression '" + Describe(expression) +
                       "' names no column of the union. Use a column name of its first select.");
}

/// A key has to be at hand when rows are sorted, which may be before the select list is read.
void MarkSearched(SelectPlan& plan, std::size_t output) {
  const auto& slot = plan.outputs[output].slot;
  if (slot && slot->depth == 0) plan.sources[slot->source].searchColumns[slot->column] = true;
}

/// True when the index delivers the order of the keys, read forwards or (`backwards`) backwards.
/// An index that leaves out nulls lacks rows. The keys have to be the index's first columns, all in its directions or
/// all against them, as an index can be walked both ways. There is one source, so the column tells everything.
bool Delivers(const Index& index, const SelectPlan& plan, bool& backwards) {
  if (index.definition.ignoreNulls || plan.order.size() > index.columns.size()) return false;
  for (std::size_t i = 0; i < plan.order.size(); ++i) {
    const SortKey& key = plan.order[i];
    if (key.expression == nullptr || key.expression->kind != ExpressionKind::Column) return false;
    const Slot slot = plan.SlotOf(*key.expression);
    if (slot.kind != Slot::Kind::Column || slot.depth != 0 || slot.column != index.columns[i]) return false;
    const bool opposite = key.descending == index.ascending[i];
    if (i == 0) backwards = opposite;
    if (opposite != backwards) return false;
  }
  return true;
}

}  // namespace

void PlanOrder(const Select& select, NameBinder& binder) {
  SelectPlan& plan = binder.Plan();
  for (const OrderItem& item : select.orderBy) {
    SortKey key;
    key.descending = item.descending;
    if (const auto position = OutputPosition(*item.expression, plan)) {
      key.output = *position;
    } else if (select.unionWith) {
      key.output = UnionColumn(*item.expression, plan);
    } else {
      binder.Bind(*item.expression, NameBinder::Use::Search, select.items.size());
      key.expression = item.expression.get();
    }
    if (key.expression == nullptr) {
      const OutputColumn& output = plan.outputs[key.output];
      if (output.expression != nullptr && !select.unionWith) {
        binder.Bind(*output.expression, NameBinder::Use::Search);
      }
      MarkSearched(plan, key.output);
    }
    plan.order.push_back(key);
  }
}

// Walking an index reads each row by its pointer, which is dearer than a scan, but stops when enough rows have been
// found: of rows that a condition keeps by half, about twice as many as wanted are read. Without TOP, and with a
// percentage, all rows are wanted and sorting is cheaper. A condition that has a path of its own is left to it.
void ChooseOrderWalk(const PlanContext& context, SelectPlan& plan) {
  const Select& select = *plan.select;
  const bool wantsFirst = select.top && !select.topPercent && !plan.order.empty();
  if (!context.options.fileIndexes || !wantsFirst || plan.grouped || select.distinct || select.unionWith ||
      plan.sources.size() != 1)
    return;
  if (!plan.sources[0].table || plan.root->path.kind != AccessPath::Kind::Scan) return;
  Table& table = *plan.sources[0].table;
  const double all = std::max(1.0, plan.root->path.rows);
  // An estimate of zero rows must not make the walk look endless.
  const double kept = std::clamp(plan.root->rows / all, 0.001, 1.0);
  if (static_cast<double>(*select.top) / kept * kRowByIndex > all) return;
  for (std::size_t i = 0; i < table.Indexes().size(); ++i) {
    bool backwards = false;
    if (!Delivers(table.Indexes()[i], plan, backwards) || !table.CanSearch(i)) continue;
    plan.orderWalk = OrderWalk{i, backwards};
    return;
  }
}

}  // namespace tavi::access::sql
