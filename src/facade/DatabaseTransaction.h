#pragma once

#include <memory>

namespace tavi {

/// Several operations as one, for hosts in C++: all that is stored through the calling thread's MembershipDatabase
/// objects in its life is kept by Commit, or undone at its end.
///
///     tavi::DatabaseTransaction transaction;
///     for (const Result& result : event) club.NoteResult(...);
///     transaction.Commit();
///
/// The file is open for its length: CloseDatabase takes effect at its end. Other users see the state before, without
/// waiting, until Commit; who wants to store something waits for its end, so keep it short and show no message boxes in
/// it. An operation that fails undoes what it undoes without a transaction and leaves the rest; whether to go on is the
/// host's choice. Transactions nest: an inner one ends alone, and what it kept is undone with the outer one. What
/// objects hold in memory, such as handicap settings that were set, is not undone.
///
/// Use it on one thread only, the one that created the MembershipDatabase, and create no other MembershipDatabase there
/// in its life.
class DatabaseTransaction {
 public:
  /// Raises NoObject on a thread without a MembershipDatabase, what OpenDatabase raises, and the database's error when
  /// others store something for longer than ten seconds.
  DatabaseTransaction();
  ~DatabaseTransaction();
  DatabaseTransaction(const DatabaseTransaction&) = delete;
  DatabaseTransaction& operator=(const DatabaseTransaction&) = delete;

  /// Stores everything, or, with the database's error, nothing. Once.
  void Commit();

 private:
  class Scope;
  std::unique_ptr<Scope> scope_;
};

}  // namespace tavi
