#pragma once

#include <string>

#include "host/text/Table.h"
#include "platform/ado/Provider.h"

namespace tavi::host {

/// Runs one statement. Gives its rows, or, for a statement without rows, a table with the number of rows affected.
/// Errors are the provider's.
Table Query(ado::Connection& connection, const std::string& statement);

/// Rolls back what was begun and not committed; true when there was anything.
bool RollBackUnfinished(ado::Connection& connection);
/// What a person is told then.
inline constexpr char kRolledBack[] =
    "The transaction was not committed, so all that was done in it has been rolled back.";

/// A field's value as a cell; bytes and identifiers become text.
Cell CellOf(const Value& value);

/// The word of SQL for a type of column.
std::string TypeName(ado::DataType type);

}  // namespace tavi::host
