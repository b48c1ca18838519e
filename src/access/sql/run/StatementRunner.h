#pragma once

#include <functional>
#include <memory>

#include "access/catalog/Database.h"
#include "access/sql/plan/FunctionReference.h"
#include "access/sql/plan/MemoryIndexes.h"
#include "access/sql/run/RowScope.h"
#include "access/sql/run/TableChanges.h"
#include "platform/Platform.h"

namespace tavi::access::sql {

/// What the statements of one session and their result sets share: the file, the time, the wish to give up, indexes in
/// memory, defaults of columns. Belongs to the session's thread.
class StatementRunner {
 public:
  /// `isCancelled` is asked between rows; a statement is given up with kCancelledNumber when it says so. It may be
  /// empty.
  StatementRunner(Database& database, std::shared_ptr<const Clock> clock, std::function<bool()> isCancelled);
  StatementRunner(const StatementRunner&) = delete;
  StatementRunner& operator=(const StatementRunner&) = delete;

  [[nodiscard]] Database& GetDatabase() const { return database_; }
  [[nodiscard]] Pager& GetPager() const { return database_.GetPager(); }
  [[nodiscard]] MemoryIndexes& IndexesInMemory() { return memoryIndexes_; }
  [[nodiscard]] Defaults& ColumnDefaults() { return defaults_; }
  [[nodiscard]] StatementContext MakeContext();
  /// As StatementContext::GoOnUnlessCancelled, while rows are fetched.
  void GoOnUnlessCancelled() const;

  /// Runs a change of rows or definitions as one statement of its own: wholly or, on any error, not at all. Raises
  /// ProviderPermission for a read-only file.
  void Change(FunctionReference<void(StatementContext&, TableChanges&)> change);
  /// Grows with each change that is made or undone: what was read before may be out of date.
  [[nodiscard]] std::uint64_t ChangeCount() const { return changeCount_; }
  void NoteUndoneChanges() { ++changeCount_; }

 private:
  Database& database_;
  std::shared_ptr<const Clock> clock_;
  std::function<bool()> isCancelled_;
  MemoryIndexes memoryIndexes_;
  Defaults defaults_;
  std::uint64_t changeCount_ = 0;
};

}  // namespace tavi::access::sql
