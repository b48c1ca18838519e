#include "access/sql/run/StatementRunner.h"

#include "access/sql/plan/ExecutionErrors.h"

namespace tavi::access::sql {

StatementRunner::StatementRunner(Database& database, std::shared_ptr<const Clock> clock,
                                 std::function<bool()> isCancelled)
    : database_(database),
      clock_(std::move(clock)),
      isCancelled_(std::move(isCancelled)),
      memoryIndexes_(database.GetPager()) {}

// The time is taken once: Now() and Date() are the same in all rows of a statement.
StatementContext StatementRunner::MakeContext() {
  return {database_, memoryIndexes_, clock_->Now(), &isCancelled_};
}

void StatementRunner::GoOnUnlessCancelled() const {
  if (isCancelled_ && isCancelled_()) throw CancelledError();
}

void StatementRunner::Change(FunctionReference<void(StatementContext&, TableChanges&)> change) {
  Pager& pager = GetPager();
  // Told before the lock of the writer is asked for.
  if (pager.IsReadOnly()) throw ReadOnlyError(pager.Path());
  WriteStatement writing(pager);
  TableChanges changes(memoryIndexes_);
  StatementContext context = MakeContext();
  // Counted before anything is done, since a change that fails half-way has been there and is undone.
  ++changeCount_;
  change(context, changes);
  writing.Commit();
}

}  // namespace tavi::access::sql
