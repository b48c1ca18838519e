#include "access/sql/run/StatementRunner.h"

#include "access/sql/plan/ExecutionErrors.h"

namespace tavi::access::sql {

StatementRunner::StatementRunner(Database& database, std::shared_ptr<const Clock> clock,
                                 std::function<bool()> isCancelled)
    : database_(database),
      clock_(std::move(clock)),
      isCancelled_(std::move(isCancelled)),
      memoryIndexes_(database.GetPager()) {}

StatementContext StatementRunner::MakeContext() {
  return {database_, memoryIndexes_, clock_->Now(), &isCancelled_};
}

void StatementRunner::GoOnUnlessCancelled() const {
  if (isCancelled_ && isCancelled_()) throw CancelledError();
}

void StatementRunner::Change(FunctionReference<void(StatementContext&, TableChanges&)> change) {
  Pager& pager = GetPager();
  if (pager.IsReadOnly()) throw ReadOnlyError(pager.Path());
  WriteStatement writing(pager);
  TableChanges changes(memoryIndexes_);
  StatementContext context = MakeContext();
  ++changeCount_;
  change(context, changes);
  writing.Commit();
}

}  // namespace tavi::access::sql
