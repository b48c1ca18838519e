#pragma once

#include <type_traits>

#include "store/OpenUse.h"

namespace tavi {

/// Several statements as one, for the length of a scope: what is stored in its life is kept by Commit, or undone at its
/// end. Holds the file open by one counted use of its own, also when an operation in it closes the file whatever the
/// count. One within another ends alone; what it kept is undone with the outer one. What operations keep in memory is
/// not undone: give it up where an error passes.
class Transaction {
 public:
  /// Raises what OpenDB and BeginTransaction raise.
  explicit Transaction(cDatabase& database) : database_(database), use_(database) { database_.BeginTransaction(); }
  ~Transaction() {
    try {
      if (isOpen_) database_.RollbackTransaction();
    } catch (const std::exception&) {
      // The file's end has rolled it back.
      isOpen_ = false;
    }
  }
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;

  /// Keeps the changes and counts the use down. On an error nothing is stored, and the end of the scope undoes the
  /// changes.
  void Commit() {
    database_.CommitTransaction();
    isOpen_ = false;
    use_.Close();
  }

 private:
  cDatabase& database_;
  OpenUse use_;
  bool isOpen_ = true;
};

/// What `work` gives, done as one: all that it stores is kept when it ends, or, when an error passes, nothing.
template <typename Work>
std::invoke_result_t<const Work&> InTransaction(cDatabase& database, const Work& work) {
  Transaction transaction(database);
  if constexpr (std::is_void_v<std::invoke_result_t<const Work&>>) {
    work();
    transaction.Commit();
  } else {
    auto result = work();
    transaction.Commit();
    return result;
  }
}

}  // namespace tavi
