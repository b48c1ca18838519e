#pragma once

#include "store/cDatabase.h"

namespace tavi {

/// Gives a new store its database folder: "Bridge\Database" in the common documents folder, else in the personal one,
/// else in "C:\My Documents"; the setting "DB Folder" overrides it, machine-wide and then per user. Never fails:
/// problems are written to the diagnostics log and the next step is taken.
void FindDatabaseFolder(cDatabase& store);

}  // namespace tavi
