#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "store/cDatabase.h"

namespace tavi {

/// One change of the file's layout that the layout check has queued.
struct cDbFieldDef {
  enum class ChangeAction { Add, Remove };

  std::string TableName;
  std::string FieldName;
  std::string FieldType;              ///< an SQL type word: Text, Integer, Short, Long, Double, Date, Bit, Memo
  std::int16_t TextFieldLength = 10;  ///< in characters; used when FieldType is "Text"
  bool SetDefault = false;
  std::string DefaultValue;  ///< an SQL literal put into existing rows
  ChangeAction Action = ChangeAction::Add;
};

/// Adds or removes a column of the open file, and fills an added one in all rows when a default is wanted: both or
/// nothing. The error that stopped it; nothing when it is done.
[[nodiscard]] std::optional<Error> TryChange(cDatabase& database, const cDbFieldDef& change);

/// Shows why a change failed in a message box; never within a transaction, which others may wait for. The one that says
/// that Access has no room for more columns is shown once; `fieldLimitMessageShown` remembers that.
void ShowFailure(const cDatabase& database, const cDbFieldDef& change, const Error& error,
                 bool& fieldLimitMessageShown);

}  // namespace tavi
