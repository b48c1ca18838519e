#pragma once

#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

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

/// Remembers the statements that were used last, by their text.
class StatementCache {
 public:
  static constexpr std::size_t kMostStatements = 200;
  /// Longer texts are not remembered.
  static constexpr std::size_t kLongestText = 4000;

  /// The remembered statement, which becomes the one used last; null when there is none.
  [[nodiscard]] std::shared_ptr<PreparedStatement> Find(std::string_view text);
  /// Remembers a statement, in place of one of the same text; the one not used for the longest time makes room.
  void Put(std::string_view text, std::shared_ptr<PreparedStatement> statement);
  void Clear();

 private:
  struct Entry {
    std::string text;
    std::shared_ptr<PreparedStatement> statement;
  };
  std::list<Entry> entries_;  // the one used last first
  std::unordered_map<std::string_view, std::list<Entry>::iterator> byText_;
};

}  // namespace tavi::access::sql
