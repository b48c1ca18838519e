#pragma once

#include <vector>

#include "access/catalog/Table.h"

namespace tavi::access {

/// The rows whose first values.size() columns of an index (by position in Indexes()) have these values, in key order.
/// The index must be one that can be searched.
std::vector<RowPointer> RowsWithKey(Table& table, std::size_t index, const std::vector<Value>& values);

/// The rows in which one column has a value: by an index that begins with the column and can be searched, or by walking
/// the table.
std::vector<RowPointer> RowsWithValue(Table& table, std::string_view column, const Value& value);

}  // namespace tavi::access
