#pragma once

#include <string>

#include "host/commands/Context.h"

namespace tavi::host {

/// `tavi sql STATEMENT`: runs one SQL statement on the club's file, past the component, and shows the rows that it
/// gives or how many it changed.
int RunSql(const Context& context, const std::string& statement);

/// `tavi info`: where the file is, its size, what is in it.
int ShowInfo(const Context& context);

/// A database value as a cell of a table: bytes as hexadecimal digits, dates in ISO form.
Cell CellOf(const Value& value);

}  // namespace tavi::host
