// INSERT, UPDATE and DELETE, each in two steps: first all rows are found and noted, then they are changed one by one. A
// search that went on while its own statement changes rows could meet a row again that has moved in the index it walks,
// or rows that it has added itself.
//
// Relationships and other rules of the table may change or remove rows that are noted and whose turn has not come; so
// each is looked at again when it is changed.
#include <algorithm>

#include "access/sql/expression/Evaluator.h"
#include "access/sql/plan/ExecutionErrors.h"
#include "access/sql/run/PlanRun.h"
#include "platform/values/Text.h"

namespace tavi::access::sql {

namespace {

std::shared_ptr<Table> TableNamed(StatementContext& context, const std::string& name) {
  std::shared_ptr<Table> table = context.database.FindTable(name);
  if (!table) throw UnknownTableError(name);
  return table;
}

/// The positions of the columns that an INSERT fills.
/// All columns in the order of the table where the statement names none.
std::vector<std::size_t> TargetColumns(const Table& table, const Insert& insert) {
  std::vector<std::size_t> targets;
  for (std::size_t i = 0; insert.columns.empty() && i < table.Columns().size(); ++i) targets.push_back(i);
  for (const std::string& name : insert.columns) {
    const auto column = table.FindColumn(name);
    if (!column) throw UnknownColumnError(name, table.Name());
    if (std::find(targets.begin(), targets.end(), *column) != targets.end()) {
      throw StatementError("The statement fills the column '" + name + "' twice.");
    }
    targets.push_back(*column);
  }
  return targets;
}

/// Values of VALUES: there is no row that they could refer to.
RowValues ValuesOf(StatementContext& context, const Insert& insert, const SelectPlan& plan) {
  const RowScope scope(context, plan, nullptr);
  RowValues values;
  for (const ExpressionPointer& expression : insert.values) values.push_back(Evaluate(*expression, scope));
  return values;
}

/// A column that an UPDATE sets.
struct Target {
  std::size_t source;
  std::size_t column;
  const Expression* value;
};

/// Sources of a join can be set in one statement, each column once.
std::vector<Target> TargetsOf(const Update& update, const SelectPlan& plan) {
  std::vector<Target> targets;
  for (const Assignment& assignment : update.assignments) {
    const Slot slot = plan.SlotOf(*assignment.column);
    if (!plan.sources[slot.source].table) throw NotUpdatableError("the rows of a select");
    for (const Target& other : targets) {
      if (other.source == slot.source && other.column == slot.column) {
        throw StatementError("The statement sets the column '" + assignment.column->name + "' twice.");
      }
    }
    targets.push_back({slot.source, slot.column, assignment.value.get()});
  }
  return targets;
}

/// Reads the current row of each source again: an earlier step of the statement may have changed it. False when a row
/// that is to be changed is gone.
bool LoadRows(RowScope& scope, const std::uint32_t* keys, SourceSet changed) {
  for (std::size_t i = 0; i < scope.rows.size(); ++i) {
    SourceRow& row = scope.rows[i];
    const PlannedSource& source = scope.Plan().sources[i];
    row.present = keys[i] != 0;
    row.pointer = RowPointer::FromPacked(keys[i]);
    if (!row.present) continue;
    const bool isChanged = (changed >> i & 1U) != 0;
    if (!source.table->Exists(row.pointer)) return false;
    // What is changed is needed whole, as its row is written anew.
    row.values = isChanged ? source.table->Read(row.pointer) : source.table->Read(row.pointer, source.outputColumns);
  }
  return true;
}

/// Changes the rows of one combination; true when there was any to change.
/// All values are computed before the first is stored, so that "A = B, B = A" exchanges them.
bool ChangeRow(RowScope& scope, TableChanges& changes, const std::vector<Target>& targets, SourceSet changed) {
  std::vector<RowValues> after(scope.rows.size());
  for (std::size_t i = 0; i < after.size(); ++i) {
    if ((changed >> i & 1U) != 0) after[i] = scope.rows[i].values;
  }
  for (const Target& target : targets) {
    // The missing side of an outer join has no row to be changed; the rest of the combination is.
    if (scope.rows[target.source].present) after[target.source][target.column] = Evaluate(*target.value, scope);
  }
  bool any = false;
  for (std::size_t i = 0; i < after.size(); ++i) {
    const SourceRow& row = scope.rows[i];
    if ((changed >> i & 1U) == 0 || !row.present) continue;
    changes.Update(*scope.Plan().sources[i].table, row.pointer, row.values, after[i]);
    any = true;
  }
  return any;
}

/// The source that a DELETE deletes from.
std::size_t DeletedSource(const Delete& statement, const SelectPlan& plan) {
  if (statement.table.empty() && plan.sources.size() == 1) return 0;
  for (std::size_t i = 0; i < plan.sources.size(); ++i) {
    if (EqualIgnoringCase(plan.sources[i].name, statement.table)) return i;
  }
  if (!statement.table.empty()) throw UnknownTableError(statement.table);
  throw StatementError("Say which table's rows are to be deleted: DELETE Table.* FROM ...");
}

}  // namespace

std::int64_t RunInsert(StatementContext& context, TableChanges& changes, Defaults& defaults, const Insert& insert,
                       const SelectPlan& plan) {
  const std::shared_ptr<Table> table = TableNamed(context, insert.table);
  const std::vector<std::size_t> targets = TargetColumns(*table, insert);
  const std::size_t given = insert.select ? plan.outputs.size() : insert.values.size();
  if (given != targets.size()) {
    throw StatementError("Number of query values and destination fields are not the same: " + std::to_string(given) +
                         " and " + std::to_string(targets.size()) + ".");
  }
  // Computed as a whole before the first is added: the select may read the very table.
  std::vector<RowValues> rows;
  if (insert.select) {
    rows = CollectValues(context, plan, nullptr);
  } else {
    rows.push_back(ValuesOf(context, insert, plan));
  }
  // A default is evaluated once for the statement, so that all rows get the same time.
  RowValues blank(table->Columns().size());
  for (std::size_t i = 0; i < blank.size(); ++i) {
    const bool isGiven = std::find(targets.begin(), targets.end(), i) != targets.end();
    if (!isGiven) blank[i] = defaults.ValueFor(*table, table->Columns()[i], context.now);
  }
  for (RowValues& values : rows) {
    context.GoOnUnlessCancelled();
    RowValues row = blank;
    for (std::size_t i = 0; i < targets.size(); ++i) row[targets[i]] = std::move(values[i]);
    changes.Insert(*table, row);
  }
  return static_cast<std::int64_t>(rows.size());
}

// Counts combinations of rows: in a join, a row that has two partners is changed twice and counted twice.
std::int64_t RunUpdate(StatementContext& context, TableChanges& changes, const Update& update, const SelectPlan& plan) {
  const std::vector<Target> targets = TargetsOf(update, plan);
  SourceSet changed = 0;
  for (const Target& target : targets) changed |= SourceSet{1} << target.source;
  const std::vector<std::uint32_t> keys = CollectKeyset(context, plan);
  RowScope scope(context, plan, nullptr);
  std::int64_t count = 0;
  for (std::size_t i = 0; i + plan.sources.size() <= keys.size(); i += plan.sources.size()) {
    context.GoOnUnlessCancelled();
    if (LoadRows(scope, &keys[i], changed) && ChangeRow(scope, changes, targets, changed)) ++count;
  }
  return count;
}

// A row that stands in several combinations of a join is deleted once. In the order of the file, so that a page is
// changed for all its rows in turn.
std::int64_t RunDelete(StatementContext& context, TableChanges& changes, const Delete& statement,
                       const SelectPlan& plan) {
  const std::size_t source = DeletedSource(statement, plan);
  if (!plan.sources[source].table) throw NotUpdatableError("the rows of a select");
  Table& table = *plan.sources[source].table;
  const std::vector<std::uint32_t> keys = CollectKeyset(context, plan);
  std::vector<std::uint32_t> rows;
  for (std::size_t i = source; i < keys.size(); i += plan.sources.size()) {
    if (keys[i] != 0) rows.push_back(keys[i]);
  }
  std::sort(rows.begin(), rows.end());
  rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
  std::int64_t count = 0;
  for (const std::uint32_t row : rows) {
    context.GoOnUnlessCancelled();
    const RowPointer pointer = RowPointer::FromPacked(row);
    if (!table.Exists(pointer)) continue;  // gone with a row that it belonged to
    changes.Delete(table, pointer);
    ++count;
  }
  return count;
}

}  // namespace tavi::access::sql
