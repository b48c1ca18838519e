#pragma once

#include <memory>
#include <string>
#include <vector>

#include "facade/MembershipDatabase.h"
#include "facade/faults/support/FaultyProvider.h"
#include "facade/support/Club.h"
#include "platform/values/Error.h"

namespace tavi::testing {

/// An error that only a test can have raised.
inline const Error kFault(static_cast<std::int32_t>(0x8004FA17), "Disk 7", "The drive door is open; close it.");

/// A club with members, pairs, a competition, policies and lists, whose provider fails as planned. It can be set back
/// to its beginning as often as a test likes.
///
/// Members: 1 Old Man (retired), 2 John A Smith, 3 Jane Smith, 4 Bob Dale, each with an e-mail address and 2 with the
/// EBU number 100002. Pairs: 1 and 2, 2 and 3 ("The Smiths"), 2 and 4. Competition 1, "Wednesday" of 17 September 2025,
/// counts for handicaps; each of the pairs 2-3 and 2-4 has a result and awards in it.
class FaultyClub {
 public:
  FaultyClub();

  /// The file as it was at first, closed, with a new public object on it, whose first opening (with the check of the
  /// layout) is still to come when `isFirstOpenPending`. No call fails.
  void SetBack(bool isFirstOpenPending = false);

  /// Another public object on the same file, whose first opening is still to come.
  void Reopen() { club_->Reopen(); }
  /// Changes the closed file through a connection of its own.
  void ExecuteAtFirst(const std::string& statement) const;

  MembershipDatabase& operator*() { return **club_; }
  MembershipDatabase* operator->() { return &**club_; }
  [[nodiscard]] FaultPlan& Plan() { return *plan_; }
  [[nodiscard]] int OpenCount() const { return club_->OpenCount(); }
  [[nodiscard]] const std::vector<ShownMessage>& Messages() const { return club_->Messages(); }
  [[nodiscard]] std::string FilePath() const;
  /// The whole number that a query gives, read through a connection of its own.
  [[nodiscard]] std::int32_t Single(const std::string& query) const;
  /// Every row of every table, read through a connection of its own.
  [[nodiscard]] std::vector<std::string> StoredRows() const;

 private:
  void Fill();
  [[nodiscard]] std::unique_ptr<ado::Connection> PlainConnection() const;

  std::shared_ptr<FaultPlan> plan_ = std::make_shared<FaultPlan>();
  std::shared_ptr<const ado::Provider> plainProvider_;
  std::unique_ptr<Club> club_;
};

}  // namespace tavi::testing
