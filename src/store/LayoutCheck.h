#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "store/cDatabase.h"
#include "store/cDbFieldDef.h"

namespace tavi {

/// Brings the layout of the open file up to date: makes the table of the governing body's members, adds the columns
/// that later versions introduced, removes obsolete ones and converts old data. What has to be changed is found out
/// first and queued; the person is told in a message box before the queue is applied. A current file is left unchanged,
/// without any message.
class LayoutCheck {
 public:
  /// `fieldLimitMessageShown`: see ShowFailure. Both outlive this object.
  LayoutCheck(cDatabase& database, bool& fieldLimitMessageShown)
      : database_(database), fieldLimitMessageShown_(fieldLimitMessageShown) {}

  /// Raises an error only when the file cannot be opened. What fails in it is shown in message boxes; what fails in a
  /// conversion of data is written to the diagnostics log and tried again at the next check.
  void Run();

 private:
  /// True when a change is queued after which old data have to be converted.
  [[nodiscard]] bool QueueChanges();
  /// Queues `wanted` when the file differs, and sets `changeNeeded` then.
  void CheckColumn(const cDbFieldDef& wanted, bool& changeNeeded);
  void CheckColumns(const std::vector<cDbFieldDef>& wanted, bool& changeNeeded);
  void RequestColumnRemoval(const std::string& tableName, const std::string& fieldName);
  /// Older files hold MasterPoints.TempMPTotal as a whole number. It is removed now and added anew at the next check.
  void CheckTypeOfTemporaryTotal();
  void ApplyQueue();
  /// Applies the queue and marks awards without a colour when old data have to be converted: all of it is stored at
  /// once, or nothing. What failed is shown afterwards.
  void ApplyAsOne(bool conversionNeeded);
  /// Makes a change; a failure is kept to be shown.
  void Apply(const cDbFieldDef& change);
  /// Carries the kinds of competitions over and removes their old column.
  void CarryOverCompetitionTypes(const cDbFieldDef& removal);
  /// Does a step that must not stop the opening of the file; false when it failed.
  bool Attempt(const std::string& step, const std::function<void()>& action);

  cDatabase& database_;
  bool& fieldLimitMessageShown_;
  std::vector<cDbFieldDef> queue_;
  std::vector<std::pair<cDbFieldDef, Error>> failures_;  ///< of changes that were not made, in their order
};

/// Turns the one-letter codes of the old column Competitions.ExternalType ("P" pairs, "I" individual, "S" Swiss, "T"
/// teams) into Individual, IsSwiss and IsTeams. `setIsExternal`: IsExternal is a new column, so it becomes True for the
/// events that have a code; a column that was there keeps what it holds. Rows without a code stay as they are. A code
/// is emptied as it is converted, so that it is never converted again where the column then cannot be removed; what
/// cannot be read is no code.
void ConvertCompetitionTypes(cDatabase& database, bool setIsExternal);

/// The same for one competition of the current layout, whose old code was kept elsewhere. A code that is none of the
/// four (in either case) changes nothing.
void ConvertCompetitionType(cDatabase& database, std::int32_t competition, const std::string& code, bool setIsExternal);

/// Awards without any colour get the mark -1, which the repair then replaces.
void ConvertMasterPointColours(cDatabase& database);

/// Awards marked with a colour below 0 take the colour of their competition; where that has none they keep the mark.
void RepairMasterPointColours(cDatabase& database);

}  // namespace tavi
