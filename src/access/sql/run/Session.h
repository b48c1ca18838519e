#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "access/catalog/Database.h"
#include "access/sql/plan/FunctionReference.h"
#include "access/sql/plan/PreparedStatement.h"
#include "access/sql/run/ResultSet.h"
#include "access/sql/run/StatementRunner.h"
#include "platform/Platform.h"

namespace tavi::access::sql {

/// What a statement gave: rows (SELECT), or the number of rows that it inserted, changed or deleted.
struct Outcome {
  std::unique_ptr<ResultSet> rows;
  std::int64_t affected = 0;
};

/// Runs SQL statements on a database. One session belongs to a connection and its thread. Each statement is atomic: it
/// happens wholly, or, on any error, not at all, and so do those between the beginning of a transaction and its end.
/// Result sets stay usable between other statements and must not outlive the session. Statements are parsed and planned
/// once and remembered.
///
/// Errors (source "Microsoft JET Database Engine"): ProviderSyntax for a text that is not understood, ProviderNoTable,
/// ProviderBadParameter for an unknown column, ProviderPermission for changes to a read-only file, ProviderIntegrity
/// and ProviderFailure for changes that the table refuses, ProviderTypeConflict for values that do not fit.
class Session {
 public:
  /// `isCancelled` is asked between rows, on the session's thread; a statement is given up with kCancelledNumber, and
  /// nothing of it is stored, when it says so.
  Session(Database& database, std::shared_ptr<const Clock> clock, PlanOptions options = {},
          std::function<bool()> isCancelled = {});
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  /// Runs one statement. With the word EXPLAIN before it, it is not run: the rows are the lines of its plan.
  Outcome Run(std::string_view text);
  /// As BEGIN, COMMIT and ROLLBACK. The first returns how many transactions are open then.
  std::int32_t BeginTransaction();
  void CommitTransaction();
  void RollbackTransaction();
  /// The rows of a whole table, in the order in which they are stored; rows can be added, changed and read. Damage does
  /// not end them: a place of the table that cannot be read counts as a row whose columns raise the error on reading.
  std::unique_ptr<ResultSet> OpenTable(std::string_view name);
  /// True when the file has a table of this name.
  [[nodiscard]] bool HasTable(std::string_view name);
  /// How a SELECT, INSERT, UPDATE or DELETE would be run: which index, which scan, which sort, a line for each step.
  [[nodiscard]] std::string Explain(std::string_view text);

 private:
  using Parsing = FunctionReference<Statement()>;

  void Control(const TransactionControl& control);
  /// The statement remembered under `key`, or what `parse` gives.
  [[nodiscard]] std::shared_ptr<PreparedStatement> Prepare(std::string_view key, Parsing parse);
  /// Plans a statement, anew when its tables have changed since. Inside a statement.
  void MakeReady(PreparedStatement& prepared);
  [[nodiscard]] std::unique_ptr<ResultSet> OpenSelect(std::shared_ptr<PreparedStatement> prepared);
  [[nodiscard]] std::int64_t RunChange(const PreparedStatement& prepared, StatementContext& context,
                                       TableChanges& changes);

  StatementRunner runner_;
  PlanOptions options_;
  StatementCache statements_;
};

}  // namespace tavi::access::sql
