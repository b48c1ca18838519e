// How the rows of one source are found. Of the conditions on it those of the form "column operator value" are collected
// (Argument), whose value is known before the source's rows are read: a literal, or a column of a source that is read
// earlier. From them candidates are made, and the cheapest of them is taken unless a scan is clearly cheaper:
//
//   an index of the file    ID = 7, or a range of the next column: Surname = 'A' And Initials >= 'B'
//   an index in memory      EBU = '123456', where no index of the file begins with that column
//   a union of paths        ID In (1, 2, 3); ID = 1 Or Surname = 'A', when every alternative has a path of its own
//
// A path only has to leave out no row that satisfies the conditions. All of them are checked again of every row that it
// gives, so bounds may be wider than the condition (> is looked up as >=) and estimates may be wrong: both cost time,
// and never a row.
#include "access/sql/plan/AccessPlanner.h"

#include <algorithm>
#include <cmath>

#include "access/sql/plan/ValueKey.h"

namespace tavi::access::sql {

namespace {

// Costs in units of reading one row in a scan, and the parts of all rows that conditions are likely to leave. They are
// guesses that need only put the ways of finding rows into the right order.
/// From the root of a B-tree to a leaf.
constexpr double kIndexDescent = 4.0;
/// A row that is read alone, where a scan reads the page once for all its rows.
constexpr double kRowByPointer = 1.5;
constexpr double kMemoryLookUp = 0.5;
constexpr double kRangeSelectivity = 0.3;
constexpr double kEqualSelectivity = 0.2;
constexpr double kHalfOpenSelectivity = 0.5;
constexpr double kOtherSelectivity = 0.8;
/// Longer lists and chains of Or are checked row by row in a scan.
constexpr std::size_t kLongestList = 500;

/// "Not equal" leaves nearly all rows, in two ranges; no index is worth asking for it.
bool CanBound(Operator op) {
  return IsComparison(op) && op != Operator::NotEqual;
}

bool IsLess(Operator op) {
  return op == Operator::Less || op == Operator::LessOrEqual;
}

/// What is paid once counts in full, because a path is chosen without knowing how often it will be run.
void KeepCheaper(std::optional<AccessPath>& best, std::optional<AccessPath> path) {
  if (path && (!best || path->cost + path->setup < best->cost + best->setup)) best = std::move(path);
}

/// The branches of a list look a value up in the same index in memory, which is made once for all of them.
void AddBranch(AccessPath& united, AccessPath branch) {
  united.cost += branch.cost;
  united.setup = std::max(united.setup, branch.setup);
  united.rows += branch.rows;
  united.branches.push_back(std::move(branch));
}

}  // namespace

void SplitConjuncts(const Expression* expression, const NameBinder& binder, Conjuncts& conjuncts) {
  if (expression == nullptr) return;
  for (const Expression* operand : OperandsOf(*expression, Operator::And)) {
    conjuncts.push_back({operand, binder.SourcesOf(*operand)});
  }
}

// Conditions are taken as independent of each other: each leaves its part of what the others leave. What they compare
// with plays no part, since a value is often not known before the statement runs.
double AccessPlanner::Selectivity(const Conjuncts& conjuncts) {
  double part = 1.0;
  for (const Conjunct& conjunct : conjuncts) {
    const Expression& expression = *conjunct.expression;
    double factor = kOtherSelectivity;
    if (expression.kind == ExpressionKind::Between) factor = kRangeSelectivity;
    if (expression.kind == ExpressionKind::Binary && CanBound(expression.op)) {
      factor = expression.op == Operator::Equal ? kEqualSelectivity : kHalfOpenSelectivity;
    }
    part *= factor;
  }
  return part;
}

// The position of the column when the expression is a plain column of the task's source. A column of an outer level
// (depth above 0) is a known value here, not an own column.
std::optional<std::size_t> AccessPlanner::OwnColumn(const Task& task, const Expression& expression) const {
  if (expression.kind != ExpressionKind::Column) return std::nullopt;
  const Slot slot = plan_.SlotOf(expression);
  if (slot.kind != Slot::Kind::Column || slot.depth != 0 || slot.source != task.source) return std::nullopt;
  return slot.column;
}

// Literals, and columns of outer levels, depend on no source of this level, so they are always known.
bool AccessPlanner::IsKnown(const Task& task, const Expression& expression) const {
  return (binder_.SourcesOf(expression) & ~task.bound) == 0;
}

// Both sides are tried as the column: "5 < ID" bounds ID from below as "ID > 5" does. A condition between two sources
// can serve either of them, whichever is read later.
void AccessPlanner::CollectComparison(const Task& task, const Expression& condition,
                                      std::vector<Argument>& arguments) const {
  for (const bool swapped : {false, true}) {
    const Expression& own = *condition.arguments[swapped ? 1 : 0];
    const Expression& other = *condition.arguments[swapped ? 0 : 1];
    const auto column = OwnColumn(task, own);
    if (!column || !IsKnown(task, other)) continue;
    Argument argument{*column, Argument::Kind::Equal, &condition, &other, nullptr};
    if (condition.op != Operator::Equal) {
      argument.kind = IsLess(condition.op) != swapped ? Argument::Kind::High : Argument::Kind::Low;
    }
    arguments.push_back(argument);
  }
}

// "Not Between" and "Not In" are ranges with a hole, which no path serves. A Between or In serves only when all of its
// values are known: one that depends on the source's own row has no bound to start from.
void AccessPlanner::CollectArguments(const Task& task, const Expression& condition,
                                     std::vector<Argument>& arguments) const {
  if (condition.kind == ExpressionKind::Binary && CanBound(condition.op)) {
    CollectComparison(task, condition, arguments);
    return;
  }
  if (condition.negated) return;
  const bool isList = condition.kind == ExpressionKind::In && !condition.subselect;
  if (condition.kind != ExpressionKind::Between && !isList) return;
  const auto column = OwnColumn(task, *condition.arguments[0]);
  if (!column) return;
  for (std::size_t i = 1; i < condition.arguments.size(); ++i) {
    if (!IsKnown(task, *condition.arguments[i])) return;
  }
  if (isList) {
    if (condition.arguments.size() <= kLongestList + 1) {
      arguments.push_back({*column, Argument::Kind::List, &condition, nullptr, nullptr});
    }
    return;
  }
  arguments.push_back(
      {*column, Argument::Kind::Between, &condition, condition.arguments[1].get(), condition.arguments[2].get()});
}

// Where both cost about the same, the path through an index is preferred: a scan has to be cheaper by a whole descent.
AccessPath AccessPlanner::Choose(std::size_t source, const Conjuncts& conjuncts, SourceSet bound) const {
  const PlannedSource& planned = plan_.sources[source];
  Task task{source, bound, planned.table.get(), std::max(1.0, static_cast<double>(planned.plannedRowCount))};
  AccessPath scan;
  scan.rows = task.rowCount;
  scan.cost = task.rowCount;
  std::vector<const Expression*> conditions;
  for (const Conjunct& conjunct : conjuncts) conditions.push_back(conjunct.expression);
  std::optional<AccessPath> best = ChooseIndexed(task, conditions);
  return best && best->cost + best->setup < scan.cost + kIndexDescent ? std::move(*best) : scan;
}

// Called for alternatives of an Or as well, whose conditions are no conjuncts of the whole; so it takes plain
// expressions.
std::optional<AccessPath> AccessPlanner::ChooseIndexed(const Task& task,
                                                       const std::vector<const Expression*>& conditions) const {
  std::vector<Argument> arguments;
  for (const Expression* condition : conditions) CollectArguments(task, *condition, arguments);
  std::optional<AccessPath> best;
  TryIndexes(task, arguments, best);
  TryMemoryIndexes(task, arguments, best);
  TryLists(task, arguments, best);
  for (const Expression* condition : conditions) TryUnion(task, *condition, best);
  return best;
}

void AccessPlanner::TryIndexes(const Task& task, const std::vector<Argument>& arguments,
                               std::optional<AccessPath>& best) const {
  if (!context_.options.fileIndexes || task.table == nullptr || arguments.empty()) return;
  for (std::size_t i = 0; i < task.table->Indexes().size(); ++i) KeepCheaper(best, IndexPath(task, i, arguments));
}

// Takes the index's columns from the front: as long as each has an equal value they form the beginning of the keys that
// are looked for; the first one without may still have bounds, and ends the prefix. Columns behind it cannot narrow the
// stretch of the index any further. Nothing when the first column has neither a value nor a bound, or when the keys of
// the index are not those that are made here.
std::optional<AccessPath> AccessPlanner::IndexPath(const Task& task, std::size_t index,
                                                   const std::vector<Argument>& arguments) const {
  const Index& definition = task.table->Indexes()[index];
  AccessPath path;
  path.kind = AccessPath::Kind::Index;
  path.index = index;
  for (const std::size_t column : definition.columns) {
    const auto equal = std::find_if(arguments.begin(), arguments.end(), [&](const Argument& argument) {
      return argument.kind == Argument::Kind::Equal && argument.column == column;
    });
    if (equal == arguments.end()) {
      // Truth values do not keep their order when a number is converted to one, so only equality finds them.
      if (task.table->Columns()[column].definition.type != ColumnType::Boolean) AddRange(arguments, column, path);
      break;
    }
    path.equals.push_back(equal->value);
    path.equalColumns.push_back(column);
  }
  if (path.equals.empty() && path.low == nullptr && path.high == nullptr) return std::nullopt;
  if (!task.table->CanSearch(index)) return std::nullopt;
  path.rows = EstimateIndexRows(task, definition, path);
  path.cost = kIndexDescent + path.rows * kRowByPointer;
  return path;
}

// A Between is taken whole or not at all: its bounds may come in either order, which only the values tell, so they
// cannot be mixed with bounds of other conditions.
void AccessPlanner::AddRange(const std::vector<Argument>& arguments, std::size_t column, AccessPath& path) const {
  path.rangeColumn = column;
  for (const Argument& argument : arguments) {
    if (argument.column != column) continue;
    if (argument.kind == Argument::Kind::Between && path.low == nullptr && path.high == nullptr) {
      path.low = argument.value;
      path.high = argument.high;
      path.boundsInAnyOrder = true;
      return;
    }
    if (argument.kind == Argument::Kind::Low && path.low == nullptr) path.low = argument.value;
    if (argument.kind == Argument::Kind::High && path.high == nullptr) path.high = argument.value;
  }
}

// With all columns given, an index gives as many rows as each of its distinct keys has on average; with some of them,
// the columns are taken to divide the rows evenly: two of four columns reach the square root of the distinct keys. The
// count of distinct keys in the file may be out of date or never have been written, so that at least the square root of
// the rows is taken for it.
double AccessPlanner::EstimateIndexRows(const Task& task, const Index& index, const AccessPath& path) const {
  const double all = task.rowCount;
  const std::size_t total = index.columns.size();
  double rows = all;
  if (!path.equals.empty()) {
    double distinct = index.definition.unique ? all : std::max<double>(index.statistics.distinctKeys, std::sqrt(all));
    distinct = std::min(distinct, all);
    rows = all / std::pow(distinct, static_cast<double>(path.equals.size()) / static_cast<double>(total));
  }
  if (path.low != nullptr) rows *= kRangeSelectivity;
  if (path.high != nullptr) rows *= kRangeSelectivity;
  return std::max(rows, 1.0);
}

// An index in memory looks up one value of one column. Of a table the wish is also noted, so that an index that would
// have served again and again is made at last (MemoryIndexes::NotePlan). The rows of a derived table are in memory
// anyway; how many a value has there is guessed.
void AccessPlanner::TryMemoryIndexes(const Task& task, const std::vector<Argument>& arguments,
                                     std::optional<AccessPath>& best) const {
  if (!context_.options.memoryIndexes) return;
  for (const Argument& argument : arguments) {
    if (argument.kind != Argument::Kind::Equal) continue;
    AccessPath path;
    path.kind = AccessPath::Kind::MemoryIndex;
    path.equals = {argument.value};
    path.equalColumns = {argument.column};
    path.joins = (binder_.SourcesOf(*argument.value) & task.bound) != 0;
    path.rows = std::sqrt(task.rowCount);
    path.setup = MemoryIndexes::kCostOfEntry * task.rowCount;
    if (task.table != nullptr) {
      if (task.rowCount < MemoryIndexes::kMinimumRows || LeadsFileIndex(*task.table, argument.column)) continue;
      if (FamilyOf(task.table->Columns()[argument.column].definition.type) == ValueFamily::None) continue;
      const auto estimate = context_.memoryIndexes.EstimateFor(*task.table, argument.column, task.rowCount);
      path.rows = estimate.rowsPerKey;
      path.setup = estimate.setup;
      NoteConsidered(*task.table, argument.column);
    }
    path.cost = kMemoryLookUp + path.rows * kRowByPointer;
    KeepCheaper(best, std::move(path));
  }
}

// An index that cannot be searched does not count: then the one in memory is all there is.
bool AccessPlanner::LeadsFileIndex(Table& table, std::size_t column) const {
  if (!context_.options.fileIndexes) return false;
  for (std::size_t i = 0; i < table.Indexes().size(); ++i) {
    const Index& index = table.Indexes()[i];
    if (!index.columns.empty() && index.columns.front() == column && table.CanSearch(i)) return true;
  }
  return false;
}

// A column is tried for each condition, order of tables and branch in which it stands, and counts once for a plan.
void AccessPlanner::NoteConsidered(const Table& table, std::size_t column) const {
  auto& considered = context_.considered;
  const bool known = std::any_of(considered.begin(), considered.end(), [&](const MemoryIndexes::Considered& other) {
    return other.table == &table && other.column == column;
  });
  if (!known) considered.push_back({&table, column});
}

// In (a, b, c) as three look-ups of one value each. One item without a path would make the whole a scan, so that the
// list is given up at the first such item.
void AccessPlanner::TryLists(const Task& task, const std::vector<Argument>& arguments,
                             std::optional<AccessPath>& best) const {
  for (const Argument& list : arguments) {
    if (list.kind != Argument::Kind::List) continue;
    AccessPath united;
    united.kind = AccessPath::Kind::Union;
    for (std::size_t i = 1; i < list.condition->arguments.size(); ++i) {
      const std::vector<Argument> item = {
          {list.column, Argument::Kind::Equal, list.condition, list.condition->arguments[i].get(), nullptr}};
      std::optional<AccessPath> branch;
      TryIndexes(task, item, branch);
      TryMemoryIndexes(task, item, branch);
      if (!branch) break;
      AddBranch(united, std::move(*branch));
    }
    if (united.branches.size() + 1 == list.condition->arguments.size()) KeepCheaper(best, std::move(united));
  }
}

// Each alternative of an Or is planned as if it were the whole condition. Their paths may give the same row; who runs a
// union drops repetitions.
void AccessPlanner::TryUnion(const Task& task, const Expression& condition, std::optional<AccessPath>& best) const {
  if (condition.kind != ExpressionKind::Binary || condition.op != Operator::Or) return;
  const std::vector<const Expression*> alternatives = OperandsOf(condition, Operator::Or);
  if (alternatives.size() > kLongestList) return;
  AccessPath united;
  united.kind = AccessPath::Kind::Union;
  for (const Expression* alternative : alternatives) {
    std::optional<AccessPath> branch = ChooseIndexed(task, OperandsOf(*alternative, Operator::And));
    if (!branch) return;
    AddBranch(united, std::move(*branch));
  }
  KeepCheaper(best, std::move(united));
}

}  // namespace tavi::access::sql
