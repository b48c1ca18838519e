// The columns of a result. A plain column shows the name and type of its column in the table, and can be changed
// through a record set; anything else is an expression with a type as far as it can be told. Names have to be distinct
// in the end, because programs read fields by name:
//
//   SELECT ID, Surname AS Name      ID, Name
//   SELECT M.ID, P.ID               M.ID, P.ID
//   SELECT ID + 1, Count(*)         Expr1000, Expr1001
#include <map>

#include "access/sql/plan/ExecutionErrors.h"
#include "access/sql/plan/Plan.h"
#include "access/sql/plan/SelectPlanner.h"
#include "platform/values/Text.h"

namespace tavi::access::sql {

namespace {

constexpr std::size_t kFirstExpressionNumber = 1000;

std::string ExpressionName(std::size_t position) {
  return "Expr" + std::to_string(kFirstExpressionNumber + position);
}

/// The column of a derived table is known by the name that the derived table's result gives it.
ResultColumn ColumnOf(const PlannedSource& source, std::size_t column) {
  if (source.table) {
    const ColumnDefinition& definition = source.table->Columns()[column].definition;
    return {definition.name, source.name, definition.name, TypeOf(definition)};
  }
  const ResultColumn& derived = source.derived->outputs[column].column;
  return {derived.name, source.name, derived.name, derived.type};
}

void AddSource(SelectPlan& plan, std::size_t source) {
  std::vector<bool>& wanted = plan.sources[source].outputColumns;
  for (std::size_t column = 0; column < wanted.size(); ++column) {
    wanted[column] = true;
    OutputColumn output;
    output.column = ColumnOf(plan.sources[source], column);
    output.slot = Slot{Slot::Kind::Column, 0, static_cast<std::uint16_t>(source), static_cast<std::uint32_t>(column)};
    plan.outputs.push_back(std::move(output));
  }
}

/// All sources in the order of the text, or the one that the qualifier names.
void AddStar(SelectPlan& plan, const std::string& qualifier) {
  if (plan.sources.empty()) throw StatementError("SELECT * needs a FROM clause with at least one table.");
  bool found = false;
  for (std::size_t i = 0; i < plan.sources.size(); ++i) {
    if (!qualifier.empty() && !EqualIgnoringCase(qualifier, plan.sources[i].name)) continue;
    AddSource(plan, i);
    found = true;
  }
  if (!found) throw UnknownColumnError(qualifier + ".*", "the tables of the statement");
}

void AddItem(SelectPlan& plan, const SelectItem& item) {
  OutputColumn output;
  output.expression = item.expression.get();
  if (item.expression->kind == ExpressionKind::Column) {
    const Slot slot = plan.SlotOf(*item.expression);
    // A column of an outer level is constant for this one, and shown like an expression.
    if (slot.kind == Slot::Kind::Column && slot.depth == 0) {
      output.slot = slot;
      output.column = ColumnOf(plan.sources[slot.source], slot.column);
    }
  }
  if (!output.slot) output.column.type = TypeOf(*item.expression, plan);
  if (!item.alias.empty()) {
    output.column.name = item.alias;
  } else if (!output.slot) {
    output.column.name = ExpressionName(plan.outputs.size());
  }
  plan.outputs.push_back(std::move(output));
}

/// Gives columns of the same name from different tables their qualified names.
/// An alias that is not unique is an error; of the same column shown twice the later one gets the name of an
/// expression.
void SeparateNames(SelectPlan& plan) {
  std::map<std::string, int> uses;
  for (const OutputColumn& output : plan.outputs) ++uses[UpperCase(output.column.name)];
  std::map<std::string, int> finalUses;
  for (std::size_t i = 0; i < plan.outputs.size(); ++i) {
    ResultColumn& column = plan.outputs[i].column;
    const bool isOwnName = !column.columnName.empty() && column.name == column.columnName;
    if (uses[UpperCase(column.name)] > 1 && isOwnName && !column.table.empty()) {
      column.name = column.table + "." + column.columnName;
    }
    if (++finalUses[UpperCase(column.name)] == 1) continue;
    if (!isOwnName) throw StatementError("Two columns of the statement have the name '" + column.name + "'.");
    column.name = ExpressionName(i);  // the same column twice
  }
}

}  // namespace

void PlanOutputs(const Select& select, NameBinder& binder) {
  SelectPlan& plan = binder.Plan();
  for (std::size_t i = 0; i < select.items.size(); ++i) {
    const SelectItem& item = select.items[i];
    if (item.expression->kind == ExpressionKind::Star) {
      AddStar(plan, item.expression->qualifier);
      continue;
    }
    // An item may name the aliases of those before it.
    binder.Bind(*item.expression, NameBinder::Use::Output, i);
    AddItem(plan, item);
  }
  SeparateNames(plan);
}

}  // namespace tavi::access::sql
