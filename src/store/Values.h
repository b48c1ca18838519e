#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/ado/Provider.h"
#include "platform/values/Date.h"
#include "platform/values/Error.h"

/// Values on their way into the file and out of it, where the readers and literals of cDatabase are not enough.
///
/// The first three say what a file can hold of what callers pass. An operation of several statements asks before its
/// first one, so that a bad value leaves nothing half-written. They raise InvalidArgument, source "cDatabase"; `what`
/// names the value in the message ("the handicap").
namespace tavi {

/// The number itself. Refused: what is no number, infinities, and numbers beyond 1.79769313486231E+308, whose text the
/// database would not read back.
double RequireNumber(double number, const std::string& what);

/// The date itself. Refused: dates outside the years 100 to 9999.
Date RequireDate(Date date, const std::string& what);

/// Refuses a text of more characters (of 16 bits) than its column takes.
void RequireLength(std::string_view text, std::size_t most, const std::string& what);

/// What `read` makes of a field of the current row. Unlike the readers of cDatabase it hides nothing: an error of the
/// field or of `read` passes on with its number and source, and says which column that is and, by `where()`, of what.
template <typename Read, typename Where>
auto ReadField(const ado::Recordset& row, std::string_view column, const Read& read, const Where& where) {
  try {
    return read(row.Get(column));
  } catch (const Error& error) {
    throw Error(error.Number(), error.Source(),
                "The column " + std::string(column) + " of " + where() + " cannot be read: " + error.Description());
  }
}

}  // namespace tavi
