#pragma once

#include <vector>

#include "access/catalog/Table.h"

/// Looking for rows by their keys in the indexes of a table, and whether an index can be trusted for that.
namespace tavi::access {

/// The rows whose first values.size() columns of an index (by position in Indexes()) have these values, in key order.
/// The index must be one that can be searched.
std::vector<RowPointer> RowsWithKey(Table& table, std::size_t index, const std::vector<Value>& values);

/// The rows in which one column has a value: by an index that begins with the column and can be searched, or by walking
/// the table.
std::vector<RowPointer> RowsWithValue(Table& table, std::string_view column, const Value& value);

/// Whether an index holds its entries under the keys, and in the order, that this program makes: only then does a
/// search find what is there. Programs agree about nearly all values, but not about letters that sort as two where
/// accents or hyphens follow, nor about decimals that descend; and nothing in the file tells which way was taken. So
/// the entries of an index on such columns are looked at, those with accents or marks of their own each, of the others
/// some. True for an index of other columns, and where damage ends the walk: whoever meets that raises it.
[[nodiscard]] bool HasOwnKeys(Table& table, std::size_t index);

/// True when programs may make different keys of this row for the index.
[[nodiscard]] bool KeyCanDiffer(const Table& table, std::size_t index, const RowValues& row);

}  // namespace tavi::access
