// From found rows to results. There are two ways. CollectKeyset keeps pointers to the rows, for record sets whose rows
// can be read again and changed; it reads only the columns that find and order them. CollectValues computes the rows,
// for groups, DISTINCT, unions and everything that the statement itself goes on with. The order of the steps is the
// same:
//
//   rows of FROM and WHERE -> groups, HAVING -> DISTINCT -> ORDER BY -> TOP -> union -> ORDER BY of the union
//
// Sort keys are computed while the row is current, beside its values, since they may name columns that are not shown.
#include <algorithm>
#include <numeric>
#include <set>

#include "access/sql/expression/Evaluator.h"
#include "access/sql/expression/Operators.h"
#include "access/sql/run/Aggregator.h"
#include "access/sql/run/IndexAnswers.h"
#include "access/sql/run/PlanRun.h"
#include "access/sql/run/RowOrder.h"
#include "access/sql/run/RowSearch.h"

namespace tavi::access::sql {

namespace {

/// By the positions of output columns, or by expressions; both are evaluated for the current row.
std::vector<Value> SortKeys(const SelectPlan& plan, const RowScope& scope) {
  std::vector<Value> keys;
  keys.reserve(plan.order.size());
  for (const SortKey& key : plan.order) {
    keys.push_back(key.expression != nullptr ? Evaluate(*key.expression, scope) : scope.OutputValue(key.output));
  }
  return keys;
}

RowValues Outputs(const SelectPlan& plan, const RowScope& scope) {
  RowValues values;
  values.reserve(plan.outputs.size());
  for (std::size_t i = 0; i < plan.outputs.size(); ++i) values.push_back(scope.OutputValue(i));
  return values;
}

/// No row has pointer 0: it stands for the side of an outer join that has none.
std::uint32_t PackedPointer(const SourceRow& row) {
  return row.present ? row.pointer.Packed() : 0;
}

/// Leaves out repetitions for DISTINCTROW.
class DistinctPointers {
 public:
  explicit DistinctPointers(const SelectPlan& plan) : sources_(plan.distinctSources) {}

  /// True when the current rows have not been there before.
  bool Add(const RowScope& scope) {
    // Not asked for, or without effect.
    if (sources_ == 0) return true;
    std::vector<std::uint32_t> pointers;
    for (std::size_t i = 0; i < scope.rows.size(); ++i) {
      if ((sources_ >> i & 1U) != 0) pointers.push_back(PackedPointer(scope.rows[i]));
    }
    return seen_.insert(std::move(pointers)).second;
  }

 private:
  SourceSet sources_;
  std::set<std::vector<std::uint32_t>> seen_;
};

/// Gathers result rows and brings them into order.
class ValueRows {
 public:
  ValueRows(const StatementContext& context, const SelectPlan& plan, std::size_t limit)
      : plan_(plan), order_(context, plan, plan.orderWalk.has_value()), limit_(limit) {}

  /// Takes the current row of the scope; false when no more rows are wanted.
  bool Add(const RowScope& scope) {
    RowValues values = Outputs(plan_, scope);
    if (plan_.select->distinct && !distinct_.Add(values).second) return true;
    const bool goOn = order_.Add(order_.HasKeys() ? SortKeys(plan_, scope) : std::vector<Value>{});
    if (order_.IsRefused()) return false;
    rows_.push_back(std::move(values));
    // With keys the last row may be the first in order.
    const bool mayStop = !order_.HasKeys() && !plan_.select->top;
    return goOn && !(mayStop && rows_.size() >= limit_);
  }

  // Rows stay where they were gathered and are moved once, in their final order.
  std::vector<RowValues> Finish() {
    std::vector<RowValues> sorted;
    for (const std::size_t number : order_.Finish()) {
      if (sorted.size() >= limit_) break;
      sorted.push_back(std::move(rows_[number]));
    }
    return sorted;
  }

 private:
  const SelectPlan& plan_;
  RowOrder order_;
  std::size_t limit_;
  DistinctRows distinct_;
  std::vector<RowValues> rows_;
};

/// The rows and aggregates of one group.
struct Group {
  std::vector<SourceRow> firstRow;
  std::vector<Aggregator> aggregators;
};

/// What is not aggregated is taken from the group's first row. A group without any row, the one of an aggregate over an
/// empty table, has nulls there.
Group MakeGroup(const SelectPlan& plan, const RowScope& scope) {
  Group group;
  group.firstRow = scope.rows;
  for (const Expression* call : plan.aggregates) group.aggregators.emplace_back(*call);
  return group;
}

void AddRow(Group& group, const SelectPlan& plan, const RowScope& scope) {
  for (std::size_t i = 0; i < plan.aggregates.size(); ++i) {
    Aggregator& aggregator = group.aggregators[i];
    aggregator.Add(aggregator.CountsRows() ? Value{} : Evaluate(*plan.aggregates[i]->arguments[0], scope));
  }
}

/// Groups come in the order in which their first rows are found. Without GROUP BY there is one, whether there are rows
/// or not. Memory is that of one row for each group.
std::vector<Group> CollectGroups(const SelectPlan& plan, RowScope& scope) {
  std::vector<Group> groups;
  if (plan.groupBy.empty()) {
    groups.push_back(MakeGroup(plan, scope));
    if (AggregateWithoutRows(plan, groups.front().aggregators)) return groups;
  }
  DistinctRows keys;
  RowSearch(scope, true).ForEach([&] {
    std::size_t number = 0;
    if (!plan.groupBy.empty()) {
      RowValues key;
      for (const Expression* expression : plan.groupBy) key.push_back(Evaluate(*expression, scope));
      number = keys.Add(key).first;
      if (number == groups.size()) groups.push_back(MakeGroup(plan, scope));
    }
    AddRow(groups[number], plan, scope);
    return true;
  });
  return groups;
}

/// The group's row becomes the current one, so that HAVING, the select list and the sort keys are evaluated as of a
/// row.
void CollectGrouped(const SelectPlan& plan, RowScope& scope, ValueRows& rows) {
  for (Group& group : CollectGroups(plan, scope)) {
    scope.rows = std::move(group.firstRow);
    std::vector<Value> aggregates;
    for (const Aggregator& aggregator : group.aggregators) aggregates.push_back(aggregator.Result());
    scope.aggregates = &aggregates;
    const bool wanted = !plan.select->having || IsTrue(*plan.select->having, scope);
    const bool goOn = !wanted || rows.Add(scope);
    scope.aggregates = nullptr;
    if (!goOn) return;
  }
}

void RemoveRepetitions(std::vector<RowValues>& rows) {
  DistinctRows distinct;
  for (const RowValues& row : rows) distinct.Add(row);
  rows = distinct.Take();
}

/// One select, without what a union adds to it.
std::vector<RowValues> CollectAlone(StatementContext& context, const SelectPlan& plan, const RowScope* outer,
                                    std::size_t limit) {
  RowScope scope(context, plan, outer);
  ValueRows rows(context, plan, limit);
  if (plan.grouped) {
    CollectGrouped(plan, scope, rows);
  } else {
    DistinctPointers distinct(plan);
    const auto take = [&] { return !distinct.Add(scope) || rows.Add(scope); };
    const auto firstOfKeys = plan.select->distinct ? FirstRowsOfKeys(plan) : std::nullopt;
    if (firstOfKeys) {
      RowSearch(scope, true).ForEachAmong(*firstOfKeys, take);
    } else {
      RowSearch(scope, true).ForEach(take);
    }
  }
  return rows.Finish();
}

/// Sorts the rows of a union by its ORDER BY, whose keys are output columns.
/// Stable, so that rows which tie keep the order of the parts.
std::vector<RowValues> Sorted(const StatementContext& context, const SelectPlan& plan, std::vector<RowValues> rows) {
  SortQuestion question(context);
  std::vector<std::size_t> numbers(rows.size());
  std::iota(numbers.begin(), numbers.end(), std::size_t{0});
  std::stable_sort(numbers.begin(), numbers.end(), [&](std::size_t left, std::size_t right) {
    question.Ask();
    for (const SortKey& key : plan.order) {
      const int order = OrderValues(rows[left][key.output], rows[right][key.output]);
      if (order != 0) return key.descending ? order > 0 : order < 0;
    }
    return false;
  });
  std::vector<RowValues> sorted;
  sorted.reserve(rows.size());
  for (const std::size_t number : numbers) sorted.push_back(std::move(rows[number]));
  return sorted;
}

}  // namespace

std::vector<RowValues> CollectValues(StatementContext& context, const SelectPlan& plan, const RowScope* outer,
                                     std::size_t limit) {
  if (plan.unionParts.empty()) return CollectAlone(context, plan, outer, limit);
  std::vector<RowValues> rows = CollectAlone(context, plan, outer, kAllRows);
  const Select* before = plan.select;
  for (const auto& part : plan.unionParts) {
    for (RowValues& row : CollectAlone(context, *part, outer, kAllRows)) rows.push_back(std::move(row));
    // A union is taken from left to right: without ALL, everything that has been gathered so far loses its repetitions,
    // also those that an earlier UNION ALL left in.
    if (!before->unionAll) RemoveRepetitions(rows);
    before = part->select;
  }
  if (!plan.order.empty()) rows = Sorted(context, plan, std::move(rows));
  // The limit is for the whole: no part can be cut off before repetitions are dropped and the order is known.
  if (rows.size() > limit) rows.resize(limit);
  return rows;
}

std::vector<Value> CollectFirstColumn(StatementContext& context, const SelectPlan& plan, const RowScope* outer,
                                      std::size_t limit) {
  std::vector<Value> values;
  for (RowValues& row : CollectValues(context, plan, outer, limit)) values.push_back(std::move(row.at(0)));
  return values;
}

// Rows are gathered in the order in which they are found and put into order by their numbers afterwards; where nothing
// is to be ordered or cut off they are the result.
std::vector<std::uint32_t> CollectKeyset(StatementContext& context, const SelectPlan& plan) {
  RowScope scope(context, plan, nullptr);
  const std::size_t width = plan.sources.size();
  RowOrder order(context, plan, plan.orderWalk.has_value());
  const bool needsOrder = order.HasKeys() || (plan.select != nullptr && plan.select->top);
  std::vector<std::uint32_t> found;
  DistinctPointers distinct(plan);
  RowSearch(scope, false).ForEach([&] {
    if (!distinct.Add(scope)) return true;
    const bool goOn = !needsOrder || order.Add(SortKeys(plan, scope));
    if (order.IsRefused()) return false;
    for (const SourceRow& row : scope.rows) found.push_back(PackedPointer(row));
    return goOn;
  });
  if (!needsOrder) return found;
  std::vector<std::uint32_t> sorted;
  for (const std::size_t number : order.Finish()) {
    const auto row = found.begin() + static_cast<std::ptrdiff_t>(number * width);
    sorted.insert(sorted.end(), row, row + static_cast<std::ptrdiff_t>(width));
  }
  return sorted;
}

}  // namespace tavi::access::sql
