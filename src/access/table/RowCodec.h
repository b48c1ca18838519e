#pragma once

#include <cstdint>
#include <vector>

#include "access/table/TableDefinition.h"
#include "platform/values/Value.h"

namespace tavi::access {

/// A row's values, one for each column of TableDefinition::columns, in that order.
using RowValues = std::vector<Value>;

/// Brings a value to the type of a column as Access does on storing: numbers are converted and rounded (ties to even),
/// numbers and texts become dates and back, anything becomes text (True is "-1"). Null stays null (False for a
/// Boolean). A value that has the column's type already stays as it is, but for a Numeric that gets the column's scale.
/// Raises ProviderTypeConflict ("Data type mismatch in criteria expression.") when it does not convert or is out of
/// range, and ProviderFailure ("The field is too small to accept the amount of data you attempted to add.") for a text
/// or binary value that is longer than the column, or a text without a stored form (TextEncoding.h). The description
/// names the column.
[[nodiscard]] Value ConvertForColumn(const Value& value, const ColumnDefinition& column);
/// The same for what a statement stores: a negative zero, which equals 0 and has another key in an index, becomes 0. A
/// copy of a file's rows keeps it.
[[nodiscard]] Value ConvertForStatement(const Value& value, const ColumnDefinition& column);

/// Raises ProviderFailure unless there is one value for each column.
void RequireValuePerColumn(const TableDefinition& definition, const RowValues& values);

/// The bytes of a row (layout in RowView.h) as a row written now has them. `longValues` holds what lies in the row for
/// each MEMO and OLE value that is not null (see LongValues.h), by position in TableDefinition::columns; the values of
/// these columns are only asked whether they are null. Raises ProviderFailure "Record is too large." when the row is
/// longer than a page takes, and ProviderTypeConflict for a value that is not of its column's type.
[[nodiscard]] Bytes EncodeRow(const TableDefinition& definition, const RowValues& values,
                              const std::vector<Bytes>& longValues);

}  // namespace tavi::access
