#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "store/RecoveryReport.h"
#include "store/TableRecovery.h"
#include "store/cDatabase.h"

namespace tavi {

/// The title of the message that says what could not be recovered.
inline constexpr const char* kRecoveryErrorTitle = "Database Recovery Error";

/// Recovers a club's data from an old file into the store's file: see cDatabase::RecoverData.
class Recovery {
 public:
  /// Both outlive this object; `observer` may be null.
  Recovery(cDatabase& database, RecoveryObserver* observer) : database_(database), observer_(observer) {}

  /// Takes the negative identifiers of an old file, which its random automatic numbers can be, as identifiers like
  /// others. Otherwise rows that bear them are reported, and what refers to them does not follow them.
  void AcceptNegativeIdentifiers() { carried_.acceptsNegativeIdentifiers = true; }

  /// Does what cDatabase::RecoverData says; called once.
  RecoveryReport Run(const std::string& oldFile);

 private:
  void Recover(const std::string& oldFile);
  [[nodiscard]] std::vector<TableTask> Tasks() const;
  void CopyTables();
  static void TryRefusedRowsAgain(std::deque<TableRecovery>& copies);
  /// Brings competitions and awards of an older layout to the current one.
  void ConvertOlderData();
  void ConvertCompetitions();
  /// Does a step that must not keep the following ones from being done.
  void Attempt(const std::string& step, const std::function<void()>& action);
  void ShowProblems(const std::string& oldFile) const;

  cDatabase& database_;
  RecoveryObserver* observer_;
  std::unique_ptr<ado::Connection> old_;
  CarriedOver carried_;
  RecoveryReport report_;
};

}  // namespace tavi
