#pragma once

#include <random>
#include <string>
#include <vector>

#include "access/table/RowCodec.h"
#include "access/table/support/TestTable.h"

namespace tavi::access::test {

/// Columns of random types; with `withLongValues` also MEMO and OLE.
[[nodiscard]] std::vector<ColumnPlan> RandomColumns(std::mt19937& random, std::size_t count, bool withLongValues);
/// A text of up to `mostUnits` UTF-16 units: ASCII, Latin letters, others, characters beyond the basic plane.
[[nodiscard]] std::string RandomText(std::mt19937& random, std::size_t mostUnits);
/// A value of the type of a column, sometimes null. Texts of a fixed-length column have its full length.
[[nodiscard]] Value RandomValue(std::mt19937& random, const ColumnDefinition& column);
/// Values for all columns that together fit into a row.
[[nodiscard]] RowValues RandomRow(std::mt19937& random, const TableDefinition& definition);

}  // namespace tavi::access::test
