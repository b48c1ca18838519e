#pragma once

#include "access/table/TableDefinition.h"
#include "platform/values/Value.h"

namespace tavi::access {

/// Brings a value to the type of a column as Access does on storing: numbers are converted and rounded (ties to even),
/// numbers and texts become dates and back, anything becomes text. Null stays null (False for a Boolean). Raises
/// ProviderTypeConflict when it does not convert, Overflow-like ProviderTypeConflict when it is out of range, and
/// ProviderFailure ("The field is too small to accept the amount of data you attempted to add.") for a text that is
/// longer than the column. The description names the column.
Value ConvertForColumn(const Value& value, const ColumnDefinition& column);

}  // namespace tavi::access
