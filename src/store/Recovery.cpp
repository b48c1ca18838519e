// The recovery of a club's data into a fresh file: the tables in an order in which what is referred to comes first,
// then the rows that had to wait for others, then what an older layout kept in other columns, then what the rooms above
// keep beside the data (uniqueness flags, keys of names). Everything that went wrong is gathered and shown in one
// message at the end: a person who has a damaged file wants to know what is lost, once.
#include "store/Recovery.h"

#include <exception>
#include <map>

#include "platform/values/Convert.h"
#include "platform/values/Text.h"
#include "store/EmptyTables.h"
#include "store/LayoutCheck.h"
#include "store/OpenUse.h"
#include "store/cDatabase.h"
#include "util/Diagnostics.h"
#include "util/Paths.h"
#include "util/SettingsStore.h"

namespace tavi {
namespace {

/// How many rows the tables of a file say to have, by their names in lower case; empty when it is not to be found out.
std::map<std::string, std::int64_t> StatedRowCounts(ado::Connection& file) {
  std::map<std::string, std::int64_t> counts;
  try {
    const auto tables = file.OpenSchema(ado::SchemaKind::Tables);
    for (; !tables->AtEnd(); tables->MoveNext()) {
      const Value count = tables->Get("CARDINALITY");
      if (!IsNull(count)) counts[LowerCase(ToText(tables->Get("TABLE_NAME")))] = ToInt32(count);
    }
  } catch (const Error&) {
    // A provider may not know; the rows that are come across are counted anyhow.
    counts.clear();
  }
  return counts;
}

/// What a person should know of a table; empty when all of it was saved.
/// "Members: 412 of 415 rows saved", and below it what went wrong, a line each.
std::string Describe(const RecoveredTable& table) {
  std::string text;
  if (table.error) text += "\r\n  " + table.error->Description();
  for (const std::string& remark : table.remarks) text += "\r\n  " + remark;
  if (table.moreRemarks > 0) text += "\r\n  (" + std::to_string(table.moreRemarks) + " more)";
  if (text.empty() && !table.IsSomethingLost()) return "";
  return table.name + ": " + std::to_string(table.saved) + " of " + std::to_string(table.found) + " rows saved" + text;
}

}  // namespace

RecoveryReport cDatabase::RecoverData(const std::string& OldDatabaseFile, RecoveryObserver* observer) {
  return Recovery(*this, observer).Run(OldDatabaseFile);
}

RecoveryReport Recovery::Run(const std::string& oldFile) {
  try {
    Recover(oldFile);
  } catch (const Error& error) {
    report_.failure = error;
  }
  // Also when nothing was copied: the message then says why.
  ShowProblems(oldFile);
  return std::move(report_);
}

// The order matters: the old file is opened before anything of the current one is touched, and the layout is current
// before the first row is copied.
void Recovery::Recover(const std::string& oldFile) {
  if (IsSameFile(oldFile, database_.CurrentFilePath())) {
    throw Error(ErrorNumber::Component, "Recovery",
                "The old file " + oldFile + " is the current one, which is emptied first. Recover into another one.");
  }
  old_ = database_.GetPlatform().databaseProvider->Open(ConnectionText(oldFile));
  // The opening checks the layout: tables and columns must be there to be filled.
  database_.NewDatabase();
  OpenUse use(database_);
  CopyTables();
  if (carried_.conversionNeeded) ConvertOlderData();
  Attempt("repairing the colours of awards", [this] { RepairMasterPointColours(database_); });
  for (const FirstOpenStep& step : database_.FirstOpenSteps()) {
    Attempt(step.name, [&] { step.run(database_); });
  }
  use.Close();
  old_->Close();
}

// Competitions come before the tables that refer to them, so that their new numbers are known.
std::vector<TableTask> Recovery::Tasks() const {
  const std::string body = GetSetting(database_.GetPlatform(), RegistryRoot::CurrentUser, kSettingsKey,
                                      kGoverningBodySetting, kUsualGoverningBody);
  const ColumnDefaults ofCompetitions{
      {"isteams", "0"}, {"isswiss", "0"}, {"isexternal", "0"}, {"qualifinal", "0"}, {"natcode", kUsualGoverningBody}};
  return {{"ClubNames", "ClubID", {}, "", "Affiliation=" + body},
          {"ClubPolicies"},
          {"Competitions", "ID", ofCompetitions},
          {"HandicalcSettings", "", {{"disabled", "0"}}},
          // A colour below 0 is taken from the competition, once all awards are there.
          {"MasterPoints", "ID", {{"colour", "-1"}, {"sessionno", "-1"}}, "CompetitionID"},
          {"Members"},
          {"Partnerships"},
          {"Results", "", {}, "Competition"},
          {"Settings"}};
}

// Emptying comes before the first copy where tables refer to each other, and table by table otherwise.
void Recovery::CopyTables() {
  const std::map<std::string, std::int64_t> counts = StatedRowCounts(*old_);
  // All copies live until the end, since rows of one may wait for those of another.
  std::vector<std::string> names;
  std::deque<TableRecovery> copies;
  for (TableTask& task : Tasks()) {
    names.push_back(task.table);
    copies.emplace_back(database_, *old_, carried_, std::move(task), observer_);
  }
  // Rows of the current file would keep those from being deleted that they refer to, or go with them when they are new.
  if (HasRelationships(database_)) EmptyTables(database_, names);
  for (std::size_t index = 0; index < copies.size(); ++index) {
    const auto count = counts.find(LowerCase(names[index]));
    copies[index].Copy(count == counts.end() ? std::nullopt : std::optional(count->second));
  }
  TryRefusedRowsAgain(copies);
  for (TableRecovery& copy : copies) report_.tables.push_back(copy.Report());
}

// What is saved may be what other rows waited for. As many rounds as there are tables serve every chain of tables.
void Recovery::TryRefusedRowsAgain(std::deque<TableRecovery>& copies) {
  bool isGain = true;
  for (std::size_t round = 0; isGain && round < copies.size(); ++round) {
    isGain = false;
    for (TableRecovery& copy : copies) isGain = copy.TryRefusedRowsAgain() || isGain;
  }
}

void Recovery::ConvertOlderData() {
  Attempt("carrying over the kinds of competitions", [this] { ConvertCompetitions(); });
  Attempt("marking awards without a colour", [this] { ConvertMasterPointColours(database_); });
}

// The old column is read by walking the table: a statement would fail at the first damage.
void Recovery::ConvertCompetitions() {
  const auto rows = old_->OpenRecordset(kCompetitionsTable, ado::CursorType::ForwardOnly, ado::LockType::Pessimistic,
                                        ado::SourceKind::TableDirect);
  if (!HasField(*rows, "ExternalType")) return;
  // A file that had the column has its own answer in it.
  const bool isExternalIsNew = !HasField(*rows, "IsExternal");
  for (; !rows->AtEnd(); rows->MoveNext()) {
    const std::string code = cDatabase::GetTextField(*rows, "ExternalType", true);
    const auto competition = carried_.identifiers.Find(kCompetitionsTable, cDatabase::GetNumericField(*rows, "ID", -1));
    if (competition) ConvertCompetitionType(database_, *competition, code, isExternalIsNew);
  }
}

// A step that fails is reported and the next one is done, but for trouble with the new file, which every step would
// meet.
void Recovery::Attempt(const std::string& step, const std::function<void()>& action) {
  try {
    action();
  } catch (const Error& error) {
    if (IsOfTheNewFile(error)) throw;
    report_.problems.push_back("Recovery: " + step + " failed: " + error.Description());
  } catch (const std::exception& error) {
    report_.problems.push_back("Recovery: " + step + " failed: " + error.what());
  }
}

// Written to the diagnostics log as well, since the box goes away when it is answered.
void Recovery::ShowProblems(const std::string& oldFile) const {
  std::vector<std::string> parts;
  if (report_.failure) parts.push_back(report_.failure->Description());
  for (const RecoveredTable& table : report_.tables) {
    if (std::string part = Describe(table); !part.empty()) parts.push_back(std::move(part));
  }
  parts.insert(parts.end(), report_.problems.begin(), report_.problems.end());
  if (parts.empty()) return;
  std::string message = "Not everything could be recovered from " + oldFile + ":";
  for (const std::string& part : parts) message += "\r\n\r\n" + part;
  WriteDiagnostic(message);
  database_.GetPlatform().messageBoxes->Show(MessageBoxIcon::Exclamation, kRecoveryErrorTitle, message);
}

}  // namespace tavi
