#include "facade/DatabaseTransaction.h"

#include "facade/ThreadStore.h"
#include "store/Transaction.h"

namespace tavi {

/// Holds the store, which may leave the thread's slot before the transaction ends.
class DatabaseTransaction::Scope {
 public:
  explicit Scope(std::shared_ptr<cDatabase> store) : store_(std::move(store)), transaction_(*store_) {}
  void Commit() { transaction_.Commit(); }

 private:
  std::shared_ptr<cDatabase> store_;
  Transaction transaction_;
};

DatabaseTransaction::DatabaseTransaction() : scope_(std::make_unique<Scope>(ThreadStore())) {}

DatabaseTransaction::~DatabaseTransaction() = default;

void DatabaseTransaction::Commit() {
  scope_->Commit();
}

}  // namespace tavi
