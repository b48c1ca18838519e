#pragma once

#include <optional>

#include "store/cDatabase.h"
#include "store/cDbFieldDef.h"

namespace tavi {

/// Adds or removes a column of the open file, and fills an added one in all rows when a default is wanted: both or
/// nothing. The error that stopped it; nothing when it is done.
[[nodiscard]] std::optional<Error> TryChange(cDatabase& database, const cDbFieldDef& change);

/// Shows why a change failed in a message box; never within a transaction, which others may wait for. The one that says
/// that Access has no room for more columns is shown once; `fieldLimitMessageShown` remembers that.
void ShowFailure(const cDatabase& database, const cDbFieldDef& change, const Error& error,
                 bool& fieldLimitMessageShown);

}  // namespace tavi
