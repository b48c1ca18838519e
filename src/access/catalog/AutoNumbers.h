#pragma once

#include "access/catalog/StoredTable.h"

namespace tavi::access {

/// Gives every automatic number of a new row that is null its value: a Long the number behind the last one (or behind
/// the greatest stored, when a unique index shows that one taken), with the default GenUniqueID() a random one; a GUID
/// a random one. Nothing is stored yet. Raises ProviderFailure when the numbers are used up.
void FillAutoNumbers(Pager& pager, StoredTable& table, RowValues& row);

/// Raises the table's counter to the automatic number of a row that was stored, when that is greater.
void KeepLastAutoNumber(Pager& pager, const StoredTable& table, const RowValues& row);

}  // namespace tavi::access
