#pragma once

#include <string>
#include <string_view>

#include "platform/ado/Provider.h"
#include "platform/values/Error.h"

namespace tavi {

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
