#pragma once

#include <string>
#include <vector>

#include "store/cDatabase.h"

namespace tavi {

/// True when the store's open file has relationships between tables. False where the file does not let them be read.
[[nodiscard]] bool HasRelationships(cDatabase& database);

/// Deletes the rows of all these tables of the store's open file, whichever of them refer to each other. Rows that a
/// relationship keeps, for a table beside these refers to them, stay. Raises what else goes wrong.
void EmptyTables(cDatabase& database, const std::vector<std::string>& tables);

/// How many rows a table of the store's open file has.
[[nodiscard]] std::int64_t CountRows(cDatabase& database, const std::string& table);

}  // namespace tavi
