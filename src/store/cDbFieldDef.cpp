// A change of one column, tried and told of separately: changes are made in a transaction, in which nobody should be
// asked to press a button.
#include "store/cDbFieldDef.h"

#include "store/Transaction.h"
#include "util/TextHelpers.h"

namespace tavi {
namespace {

constexpr const char* kErrorTitle = "Error updating database layout";
constexpr const char* kWarningTitle = "Database Update Warning";

/// A table has room for 255 columns in its life, dropped ones included; making it anew is the only way to get the
/// places back.
constexpr const char* kFieldLimitText =
    "Your database has reached the maximum number of field updates. This is "
    "a limitation of Microsoft Access databases. If you have Microsoft Access "
    "installed on your computer you can fix the problem as follows:"
    "\r\n\r\n"
    "1. Close the Club Database Manager application."
    "\r\n"
    "2. Start Microsoft Access and open your Club Membership "
    "\r\n"
    "    Database file."
    "\r\n"
    "3. Click on the \"Tools\" menu and choose \"Database Utilities...\""
    "\r\n"
    "    then \"Compact and Repair Database\""
    "\r\n\r\n"
    "If you do not have Microsoft Access, please contact your supplier of the "
    "Bexmoor Club Option Pack, who should be able to help you fix your "
    "database.";

/// One message for each column, except for a full table.
void ShowAddFailure(const MessageBoxes& boxes, const Error& error, bool& fieldLimitMessageShown) {
  // A full table has this number. Once is enough for all columns that do not fit. That a column of the name is there
  // already (ProviderBadStatus) is what was wanted, and nothing to be shown.
  if (error.Is(ErrorNumber::ProviderFailure)) {
    if (!fieldLimitMessageShown) boxes.Show(MessageBoxIcon::Critical, kErrorTitle, kFieldLimitText);
    fieldLimitMessageShown = true;
  } else if (!error.Is(ErrorNumber::ProviderBadStatus)) {
    boxes.Show(MessageBoxIcon::Exclamation, kErrorTitle,
               "MS Access reports the following error:\r\n\r\n" + error.Description());
  }
}

void AddColumn(cDatabase& database, const cDbFieldDef& change) {
  // Only Text needs a length.
  std::string type = change.FieldType;
  if (type == "Text") type += " (" + std::to_string(change.TextFieldLength) + ")";
  // Together: a column that is there is never filled later.
  InTransaction(database, [&] {
    database.Execute("Alter Table " + change.TableName + " Add Column " + change.FieldName + " " + type);
    if (!change.SetDefault) return;
    database.Execute("Update " + change.TableName + " Set " + change.FieldName + " = " + change.DefaultValue);
  });
}

void ShowRemoveFailure(const MessageBoxes& boxes, const cDbFieldDef& change, const Error& error) {
  boxes.Show(MessageBoxIcon::Information, kWarningTitle,
             "Failed to remove obsolete column " + change.FieldName + " from database table " + change.TableName +
                 "\r\n\r\nMicrosoft Access reports error number " + HexadecimalNumber(error.Number()) + ": " +
                 error.Description());
}

}  // namespace

// Removing needs no transaction of its own: it is one statement.
std::optional<Error> TryChange(cDatabase& database, const cDbFieldDef& change) {
  try {
    if (change.Action == cDbFieldDef::ChangeAction::Add) {
      AddColumn(database, change);
    } else {
      database.Execute("Alter Table " + change.TableName + " Drop Column " + change.FieldName);
    }
    return std::nullopt;
  } catch (const Error& error) {
    return error;
  }
}

void ShowFailure(const cDatabase& database, const cDbFieldDef& change, const Error& error,
                 bool& fieldLimitMessageShown) {
  const MessageBoxes& boxes = *database.GetPlatform().messageBoxes;
  if (change.Action == cDbFieldDef::ChangeAction::Add) {
    ShowAddFailure(boxes, error, fieldLimitMessageShown);
  } else {
    ShowRemoveFailure(boxes, change, error);
  }
}

}  // namespace tavi
