#pragma once

#include <map>
#include <string>

#include "access/catalog/Table.h"
#include "access/sql/parse/Statement.h"
#include "platform/values/Date.h"

namespace tavi::access::sql {

/// Evaluates the default expressions of columns, which are parsed once and remembered.
class Defaults {
 public:
  /// The value that a new row gets in a column that the statement does not name, converted to the column's type; null
  /// when the column has no default. Raises ProviderFailure, naming the column, for a default that cannot be evaluated.
  [[nodiscard]] Value ValueFor(const Table& table, const Column& column, Date now);

 private:
  std::map<std::string, ExpressionPointer> parsed_;
};

}  // namespace tavi::access::sql
