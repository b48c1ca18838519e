#pragma once

#include <memory>
#include <string>

#include "access/sql/SelectPlanner.h"
#include "access/sql/Statement.h"

namespace tavi::access::sql {

/// A statement text, understood, and its plan once it has been run.
struct PreparedStatement {
  explicit PreparedStatement(Statement parsed) : statement(std::move(parsed)) {}

  Statement statement;
  /// For SELECT and INSERT ... SELECT the select's; for UPDATE and DELETE how rows are found; for INSERT ... VALUES
  /// where the values' names lead. None for the other statements and before the first run.
  std::unique_ptr<SelectPlan> plan;
  /// True when planning began and failed: the tree can then not be planned again.
  bool isSpoiled = false;
};

/// Makes the plan of a statement that needs one. Call inside a statement.
void Plan(PreparedStatement& prepared, PlanContext& context);

/// True when the tables of a plan are still those that it was made for, and about as large.
bool IsStillGood(const SelectPlan& plan, Database& database);

}  // namespace tavi::access::sql
