#pragma once

#include "platform/ado/Provider.h"

namespace tavi {

/// Makes all tables, columns, defaults, keys and indexes of a membership database of the current layout in a new, empty
/// file, so that opening it needs no change of layout, and the row of default handicap settings. Raises the provider's
/// error when a table is there already; the file then holds what was made before.
void CreateBaseFile(ado::Connection& connection);

/// Adds the row of default handicap settings to a file of the current layout that has none: switching the calculation
/// off is remembered in it.
void StoreFirstHandicapSettings(ado::Connection& connection);

}  // namespace tavi
