// Statements that are remembered by their text, and when a plan is made anew. A plan holds the tables that it was made
// for; when a definition changes, by anybody, the catalogue gives out another table object, and the plan that holds the
// old one is no longer good. A plan also ages with the size of its tables: right answers come from any plan, but a scan
// of what was small may have become slow.
#include "access/sql/plan/PreparedStatement.h"

#include <algorithm>

namespace tavi::access::sql {

namespace {

/// A plan is made anew when a table has grown or shrunk by this factor, and by more rows than the other number.
constexpr std::uint32_t kGrowthFactor = 4;
constexpr std::uint32_t kGrowthRows = 100;

/// Both must hold: a table that grows from 3 rows to 20 would otherwise cost a plan at each step.
bool IsOtherSize(std::uint32_t planned, std::uint32_t now) {
  const std::uint32_t smaller = std::min(planned, now);
  const std::uint32_t larger = std::max(planned, now);
  return larger - smaller > kGrowthRows && larger / kGrowthFactor > smaller;
}

/// The columns that are set are bound too, so that their places are known when rows are changed.
std::vector<const Expression*> ExpressionsOf(const Update& update) {
  std::vector<const Expression*> expressions;
  for (const Assignment& assignment : update.assignments) {
    expressions.push_back(assignment.column.get());
    expressions.push_back(assignment.value.get());
  }
  return expressions;
}

std::vector<const Expression*> ExpressionsOf(const Insert& insert) {
  std::vector<const Expression*> expressions;
  for (const ExpressionPointer& value : insert.values) expressions.push_back(value.get());
  return expressions;
}

/// Definitions and transaction control have no plan.
struct PlanMaker {
  PlanContext& context;

  std::unique_ptr<SelectPlan> operator()(const Select& select) const { return PlanSelect(context, select, nullptr); }
  std::unique_ptr<SelectPlan> operator()(const Insert& insert) const {
    return insert.select ? PlanSelect(context, *insert.select, nullptr) : PlanConstants(context, ExpressionsOf(insert));
  }
  std::unique_ptr<SelectPlan> operator()(const Update& update) const {
    return PlanRows(context, *update.target, update.where.get(), ExpressionsOf(update));
  }
  std::unique_ptr<SelectPlan> operator()(const Delete& statement) const {
    return PlanRows(context, *statement.from, statement.where.get(), {});
  }
  template <typename Other>
  std::unique_ptr<SelectPlan> operator()(const Other& /*definition*/) const {
    return nullptr;
  }
};

}  // namespace

// Raises for names that lead nowhere; the statement then keeps the plan that it had.
void Plan(PreparedStatement& prepared, PlanContext& context) {
  prepared.plan = std::visit(PlanMaker{context}, prepared.statement);
}

// Derived tables, sub-selects and the parts of unions count with the whole.
bool IsStillGood(const SelectPlan& plan, Database& database) {
  for (const PlannedSource& source : plan.sources) {
    if (source.derived) {
      if (!IsStillGood(*source.derived, database)) return false;
      continue;
    }
    const std::shared_ptr<Table> table = database.FindTable(source.table->Name());
    if (table != source.table || IsOtherSize(source.plannedRowCount, table->RowCount())) return false;
  }
  for (const auto& subselect : plan.subselects) {
    if (subselect && !IsStillGood(*subselect, database)) return false;
  }
  return std::all_of(plan.unionParts.begin(), plan.unionParts.end(),
                     [&](const auto& part) { return IsStillGood(*part, database); });
}

// To the front of the list; iterators and the text that the map refers to stay valid when an entry moves.
std::shared_ptr<PreparedStatement> StatementCache::Find(std::string_view text) {
  const auto found = byText_.find(text);
  if (found == byText_.end()) return nullptr;
  entries_.splice(entries_.begin(), entries_, found->second);
  return found->second->statement;
}

void StatementCache::Put(std::string_view text, std::shared_ptr<PreparedStatement> statement) {
  // So many texts of any length could take much memory.
  if (text.size() > kLongestText) return;
  if (const auto found = byText_.find(text); found != byText_.end()) {
    found->second->statement = std::move(statement);
    return;
  }
  // The map's keys refer to the entry's own text, so the entry is there before and goes after.
  entries_.push_front({std::string(text), std::move(statement)});
  byText_.emplace(entries_.front().text, entries_.begin());
  if (entries_.size() <= kMostStatements) return;
  byText_.erase(entries_.back().text);
  entries_.pop_back();
}

void StatementCache::Clear() {
  byText_.clear();
  entries_.clear();
}

}  // namespace tavi::access::sql
