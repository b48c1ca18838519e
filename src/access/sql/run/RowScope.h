#pragma once

#include <functional>
#include <memory>
#include <unordered_map>
#include <vector>

#include "access/sql/expression/Evaluator.h"
#include "access/sql/plan/ExecutionErrors.h"
#include "access/sql/plan/NameBinder.h"
#include "access/sql/plan/Plan.h"
#include "access/sql/plan/ValueKey.h"

namespace tavi::access::sql {

/// The values of an uncorrelated IN (SELECT ...), for quick tests.
struct ValueSet {
  DistinctRows values;
  bool hasNull = false;
};

/// What all levels of one running statement share.
struct StatementContext {
  Database& database;
  MemoryIndexes& memoryIndexes;
  Date now;
  /// Asked between rows whether the statement is to be given up; null or empty: it never is.
  const std::function<bool()>* isCancelled = nullptr;

  /// Raises kCancelledNumber when the statement is to be given up.
  void GoOnUnlessCancelled() const {
    if (isCancelled != nullptr && *isCancelled && (*isCancelled)()) throw CancelledError();
  }

  /// Results of sub-selects that do not depend on outer rows, and of derived tables: each is run once.
  struct SubselectResult {
    std::vector<Value> values;
    std::size_t limit = 0;
  };
  std::unordered_map<const SelectPlan*, SubselectResult> subselects = {};
  std::unordered_map<const SelectPlan*, ValueSet> valueSets = {};
  std::unordered_map<const SelectPlan*, std::shared_ptr<const std::vector<RowValues>>> derived = {};
};

/// The current row of one source.
struct SourceRow {
  bool present = false;  ///< false: nulls (the optional side of an outer join)
  RowPointer pointer;
  RowValues values;
};

/// What the expressions of one select level are evaluated in: the current row of each source, and the outer levels.
class RowScope final : public Scope {
 public:
  /// `outer`: the scope of the level around, null for none.
  RowScope(StatementContext& context, const SelectPlan& plan, const RowScope* outer)
      : rows(plan.sources.size()), context_(context), plan_(plan), outer_(outer) {}

  [[nodiscard]] Value ColumnValue(const Expression& column) const override;
  [[nodiscard]] const Value* ColumnReference(const Expression& column) const override;
  [[nodiscard]] Value AggregateValue(const Expression& call) const override;
  [[nodiscard]] std::optional<Truth> IsAmong(const Expression& in, const Value& tested) const override;
  [[nodiscard]] std::vector<Value> SubselectValues(const Expression& expression, std::size_t limit) const override;
  [[nodiscard]] Date Now() const override { return context_.now; }

  [[nodiscard]] Value SlotValue(const Slot& slot) const;
  [[nodiscard]] Value OutputValue(std::size_t output) const;

  [[nodiscard]] StatementContext& Context() const { return context_; }
  [[nodiscard]] const SelectPlan& Plan() const { return plan_; }
  [[nodiscard]] bool IsNested() const { return outer_ != nullptr; }

  std::vector<SourceRow> rows;
  /// The values of the plan's aggregates in the current group.
  const std::vector<Value>* aggregates = nullptr;

 private:
  [[nodiscard]] const ValueSet& ValuesOf(const SelectPlan& subselect, const Expression& in) const;

  StatementContext& context_;
  const SelectPlan& plan_;
  const RowScope* outer_;
};

}  // namespace tavi::access::sql
