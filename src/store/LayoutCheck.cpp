// What is done at the first opening of a file: the table of the governing body's members is made, missing columns are
// looked for and queued, obsolete ones too, the person is told, and the queue is applied in one transaction with the
// conversion of what the old columns hold. A file of the current layout is only read.
//
// A column is looked for by a statement that names it: that works with any provider, and counts what cannot be read as
// missing, so that the attempt to add it says what is wrong. Changes are made one by one within the transaction, and
// one that is refused leaves the others: a club with a file that cannot take another column goes on with all that it
// can take.
#include "store/LayoutCheck.h"

#include <algorithm>
#include <exception>
#include <optional>

#include "platform/values/Text.h"
#include "store/Layout.h"
#include "store/OpenUse.h"
#include "store/Transaction.h"
#include "store/cDbFieldDef.h"
#include "util/Diagnostics.h"
#include "util/SettingsStore.h"

namespace tavi {
namespace {

using Action = cDbFieldDef::ChangeAction;

constexpr const char* kUpdateTitle = "Database Update Required";
// "compatible" stands twice, as clubs have always read it.
constexpr const char* kUpdateText =
    "I need to update your club membership database file to make it compatible "
    "compatible with the latest software version. When you click OK, this update "
    "will take place automatically.";

/// The value is a text that a person may have put into the settings, so it is made a literal here.
cDbFieldDef TextColumnWithDefault(const char* table, const char* field, std::int16_t length, const std::string& value) {
  cDbFieldDef column;
  column.TableName = table;
  column.FieldName = field;
  column.FieldType = "Text";
  column.TextFieldLength = length;
  column.SetDefault = true;
  column.DefaultValue = cDatabase::SQLString(value);
  return column;
}

cDbFieldDef DisabledColumn() {
  cDbFieldDef column;
  column.TableName = "HandicalcSettings";
  column.FieldName = "Disabled";
  column.FieldType = "Bit";
  column.SetDefault = true;
  column.DefaultValue = "0";
  return column;
}

bool Concerns(const cDbFieldDef& change, Action action, std::string_view fieldName) {
  return change.Action == action && change.TableName == "Competitions" && change.FieldName == fieldName;
}

}  // namespace

// For what is repaired beside the layout: the file opens whether it succeeds or not, and the next check tries again.
bool LayoutCheck::Attempt(const std::string& step, const std::function<void()>& action) {
  try {
    action();
    return true;
  } catch (const std::exception& error) {
    WriteDiagnostic("Database layout: " + step + " failed: " + error.what());
    return false;
  }
}

// Whatever goes wrong with the statement counts as "is not there".
void LayoutCheck::CheckColumn(const cDbFieldDef& wanted, bool& changeNeeded) {
  bool exists = true;
  try {
    OpenUse use(database_);
    database_.Execute("Select Top 1 " + wanted.FieldName + " From " + wanted.TableName);
  } catch (const std::exception&) {
    exists = false;
  }
  if (exists == (wanted.Action == Action::Add)) return;
  queue_.push_back(wanted);
  changeNeeded = true;
}

void LayoutCheck::CheckColumns(const std::vector<cDbFieldDef>& wanted, bool& changeNeeded) {
  for (const cDbFieldDef& column : wanted) CheckColumn(column, changeNeeded);
}

// A removal does not make old data to be converted.
void LayoutCheck::RequestColumnRemoval(const std::string& tableName, const std::string& fieldName) {
  bool discarded = false;
  CheckColumn(ObsoleteColumn(tableName, fieldName), discarded);
}

// A type can only be seen in the list of columns; a statement that names the column does not fail for it.
void LayoutCheck::CheckTypeOfTemporaryTotal() {
  constexpr auto kDouble = static_cast<std::int32_t>(ado::DataType::Double);
  const auto columns = database_.OpenSchema(ado::SchemaKind::Columns);
  for (; !columns->AtEnd(); columns->MoveNext()) {
    if (!EqualIgnoringCase(cDatabase::GetTextField(*columns, "TABLE_NAME"), "MasterPoints")) continue;
    if (!EqualIgnoringCase(cDatabase::GetTextField(*columns, "COLUMN_NAME"), "TempMPTotal")) continue;
    const bool isDouble = cDatabase::GetNumericField(*columns, "DATA_TYPE") == kDouble;
    columns->Close();
    if (!isDouble) RequestColumnRemoval("MasterPoints", "TempMPTotal");
    return;
  }
}

// The order is that of the messages that people see when changes fail.
bool LayoutCheck::QueueChanges() {
  bool mainFlag = false;
  CheckColumns(AddedSettingsColumns(), mainFlag);
  CheckColumn(ObsoleteColumn("Settings", "DirectCreditMPs"), mainFlag);
  // Asked for twice, so the second removal fails and is shown; clubs know the message.
  RequestColumnRemoval("Settings", "DirectCreditMPs");
  CheckColumns(AddedMembersColumns(), mainFlag);
  Attempt("looking up the type of TempMPTotal", [this] { CheckTypeOfTemporaryTotal(); });
  CheckColumns(AddedResultColumns(), mainFlag);
  const bool conversionNeeded = mainFlag;

  // What is found missing from here on has no old data that would have to be converted.
  bool affiliationFlag = false;
  const std::string body = GetSetting(database_.GetPlatform(), RegistryRoot::CurrentUser, kSettingsKey,
                                      kGoverningBodySetting, kUsualGoverningBody);
  CheckColumn(TextColumnWithDefault("ClubNames", "Affiliation", 10, body), affiliationFlag);
  RequestColumnRemoval("Competitions", "GoverningBody");
  CheckColumn(TextColumnWithDefault("Competitions", "NatCode", 20, kUsualGoverningBody), affiliationFlag);
  RequestColumnRemoval("Competitions", "ExternalType");
  RequestColumnRemoval("Competitions", "MasterPointsCode");
  CheckColumn(DisabledColumn(), mainFlag);
  return conversionNeeded;
}

void LayoutCheck::Apply(const cDbFieldDef& change) {
  if (const auto error = TryChange(database_, change)) failures_.emplace_back(change, *error);
}

// The new columns stand before this removal in the queue. While the old column's content is not safe in them, it stays
// where it is; a removal that is refused leaves the content carried over all the same.
void LayoutCheck::CarryOverCompetitionTypes(const cDbFieldDef& removal) {
  const bool isExternalIsNew = std::any_of(queue_.begin(), queue_.end(), [](const cDbFieldDef& change) {
    return Concerns(change, Action::Add, "IsExternal");
  });
  std::optional<Error> refusal;
  const bool isSafe = Attempt("carrying over the kinds of competitions", [&] {
    InTransaction(database_, [&] {
      ConvertCompetitionTypes(database_, isExternalIsNew);
      refusal = TryChange(database_, removal);
    });
  });
  if (isSafe && refusal) failures_.emplace_back(removal, *refusal);
}

void LayoutCheck::ApplyQueue() {
  for (const cDbFieldDef& change : queue_) {
    if (Concerns(change, Action::Remove, "ExternalType")) {
      CarryOverCompetitionTypes(change);
    } else {
      Apply(change);
    }
  }
}

// Which old data have to be converted is seen by the columns that are missing, so that a file which had got some of
// them and was then left by a killed program would never be converted. A change that fails undoes itself alone.
void LayoutCheck::ApplyAsOne(bool conversionNeeded) {
  failures_.clear();
  try {
    InTransaction(database_, [&] {
      ApplyQueue();
      if (conversionNeeded)
        Attempt("marking awards without a colour", [this] { ConvertMasterPointColours(database_); });
    });
  } catch (const Error& error) {
    failures_ = {{queue_.front(), error}};
  }
  for (const auto& [change, error] : failures_) ShowFailure(database_, change, error, fieldLimitMessageShown_);
}

// The repair of colours runs at each check, whatever the layout: the mark is the default of the column.
void LayoutCheck::Run() {
  OpenUse use(database_);
  queue_.clear();
  try {
    database_.Execute(kCreateEbuMembersTable);
  } catch (const std::exception&) {
    // Nearly always the table is there already; where it is not, the operations that need it say so.
    queue_.clear();
  }
  const bool conversionNeeded = QueueChanges();
  if (!queue_.empty()) {
    // Outside of the transaction, which others might have to wait for while the person reads.
    database_.GetPlatform().messageBoxes->Show(MessageBoxIcon::Information, kUpdateTitle, kUpdateText);
    ApplyAsOne(conversionNeeded);
  }
  Attempt("repairing the colours of awards", [this] { RepairMasterPointColours(database_); });
}

}  // namespace tavi
