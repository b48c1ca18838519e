#pragma once

#include <string>

#include "host/text/Table.h"
#include "platform/ado/Provider.h"

namespace tavi::host {

/// Runs one statement. Gives its rows, or, for a statement without rows, a table with the number of rows affected.
/// Errors are the provider's.
Table Query(ado::Connection& connection, const std::string& statement);

/// A field's value as a cell; bytes and identifiers become text.
Cell CellOf(const Value& value);

/// The word of SQL for a type of column.
std::string TypeName(ado::DataType type);

}  // namespace tavi::host
