#pragma once

#include <memory>
#include <string>

#include "access/sql/parse/Statement.h"
#include "access/sql/plan/SelectPlanner.h"

namespace tavi::access::sql {

/// A statement text, understood, and its plan once it has been run.
struct PreparedStatement {
  explicit PreparedStatement(Statement parsed) : statement(std::move(parsed)) {}

  const Statement statement;
  /// For SELECT and INSERT ... SELECT the select's; for UPDATE and DELETE how rows are found; for INSERT ... VALUES
  /// where the values' names lead. None for the other statements and before the first run.
  /// Another one takes its place when the tables have changed; result sets hold on to theirs.
  std::shared_ptr<const SelectPlan> plan;
};

/// Makes the plan of a statement that needs one, in place of an older one. Call inside a statement.
void Plan(PreparedStatement& prepared, PlanContext& context);

/// True when the tables of a plan are still those that it was made for, and about as large.
bool IsStillGood(const SelectPlan& plan, Database& database);

}  // namespace tavi::access::sql
