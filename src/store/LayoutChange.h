#pragma once

#include "store/cDatabase.h"
#include "store/cDbFieldDef.h"

namespace tavi {

/// Adds or removes a column of the open file, and fills an added one in all rows when a default is wanted. Never raises
/// an error: a failure is shown in a message box. The one that says that Access has no room for more columns is shown
/// once; `fieldLimitMessageShown` remembers that.
void ApplyChange(cDatabase& database, const cDbFieldDef& change, bool& fieldLimitMessageShown);

}  // namespace tavi
