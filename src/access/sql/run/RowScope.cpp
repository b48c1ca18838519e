// What expressions see while a level runs: the current row of each of its sources, found by the places that the plan
// gives for their names, and the levels around it. Sub-selects are run from here. One that does not depend on outer
// rows is run once in a statement; its values are kept in the statement's context, and for IN as a set that is asked by
// hash.
#include "access/sql/run/RowScope.h"

#include <limits>

#include "access/sql/expression/Evaluator.h"
#include "access/sql/run/IndexAnswers.h"
#include "access/sql/run/PlanRun.h"
#include "access/sql/run/RowSearch.h"

namespace tavi::access::sql {

// An alias is evaluated where it is named, in the scope of its own level.
Value RowScope::SlotValue(const Slot& slot) const {
  const RowScope* scope = this;
  for (std::uint16_t level = 0; level < slot.depth && scope->outer_ != nullptr; ++level) scope = scope->outer_;
  if (slot.kind == Slot::Kind::Item) return Evaluate(*scope->plan_.select->items[slot.column].expression, *scope);
  // An absent row is the missing side of an outer join: all its columns are null.
  const SourceRow& row = scope->rows[slot.source];
  return row.present ? row.values.at(slot.column) : Value{};
}

Value RowScope::ColumnValue(const Expression& column) const {
  return SlotValue(plan_.slots[column.number]);
}

const Value* RowScope::ColumnReference(const Expression& column) const {
  const Slot& slot = plan_.slots[column.number];
  if (slot.kind != Slot::Kind::Column) return nullptr;
  const RowScope* scope = this;
  for (std::uint16_t level = 0; level < slot.depth && scope->outer_ != nullptr; ++level) scope = scope->outer_;
  const SourceRow& row = scope->rows[slot.source];
  return row.present ? &row.values.at(slot.column) : nullptr;
}

Value RowScope::AggregateValue(const Expression& call) const {
  return aggregates == nullptr ? Value{} : (*aggregates)[plan_.aggregatePlaces[call.number]];
}

Value RowScope::OutputValue(std::size_t output) const {
  const OutputColumn& column = plan_.outputs[output];
  return column.slot ? SlotValue(*column.slot) : Evaluate(*column.expression, *this);
}

// What asks says how many values it looks at: Exists one, a single value two, so that a second one can be refused. A
// result that was cut off earlier than wanted is computed anew.
std::vector<Value> RowScope::SubselectValues(const Expression& expression, std::size_t limit) const {
  const SelectPlan& subselect = *plan_.SubselectOf(expression);
  if (subselect.IsCorrelated()) return CollectFirstColumn(context_, subselect, this, limit);
  auto found = context_.subselects.find(&subselect);
  if (found == context_.subselects.end() || found->second.limit < limit) {
    std::vector<Value> values = CollectFirstColumn(context_, subselect, this, limit);
    found = context_.subselects.insert_or_assign(&subselect, StatementContext::SubselectResult{values, limit}).first;
  }
  const std::vector<Value>& values = found->second.values;
  return {values.begin(), values.begin() + static_cast<std::ptrdiff_t>(std::min(limit, values.size()))};
}

// Nothing where the set cannot answer, and the values are to be compared one by one. A null among the values makes "not
// among them" unknown, as that null might be anything.
std::optional<Truth> RowScope::IsAmong(const Expression& in, const Value& tested) const {
  const SelectPlan& subselect = *plan_.SubselectOf(in);
  if (subselect.IsCorrelated()) return std::nullopt;
  const ValueSet& set = ValuesOf(subselect, in);
  const Truth whenMissing = set.hasNull ? Truth::Unknown : Truth::False;
  if (set.values.Rows().empty()) return whenMissing;
  if (IsNull(tested)) return Truth::Unknown;
  // Values of another family are compared one by one, which raises what is to be raised.
  if (FamilyOf(tested) != FamilyOf(set.values.Rows().front().front())) return std::nullopt;
  return set.values.Contains({tested}) ? Truth::True : whenMissing;
}

const ValueSet& RowScope::ValuesOf(const SelectPlan& subselect, const Expression& in) const {
  const auto found = context_.valueSets.find(&subselect);
  if (found != context_.valueSets.end()) return found->second;
  ValueSet set;
  const auto add = [&set](const Value& value) {
    if (IsNull(value)) {
      set.hasNull = true;
    } else {
      set.values.Add({value});
    }
  };
  if (const auto firstOfKeys = FirstRowsOfKeys(subselect)) {
    RowScope scope(context_, subselect, nullptr);
    RowSearch(scope, true).ForEachAmong(*firstOfKeys, [&] {
      add(scope.OutputValue(0));
      return true;
    });
  } else {
    for (const Value& value : SubselectValues(in, std::numeric_limits<std::size_t>::max())) add(value);
  }
  return context_.valueSets.emplace(&subselect, std::move(set)).first->second;
}

}  // namespace tavi::access::sql
