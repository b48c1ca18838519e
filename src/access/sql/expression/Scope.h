#pragma once

#include <vector>

#include "access/sql/parse/Statement.h"
#include "platform/values/Date.h"

namespace tavi::access::sql {

/// What an expression is evaluated in: gives column values, aggregates and sub-selects, and the time.
class Scope {
 public:
  virtual ~Scope() = default;
  /// The value of a Column expression in the current row.
  [[nodiscard]] virtual Value ColumnValue(const Expression& column) const = 0;
  /// The same without a copy, where the current row holds the value (until it changes); null elsewhere.
  [[nodiscard]] virtual const Value* ColumnReference(const Expression& column) const;
  /// The value of an aggregate call (Count, Sum, Avg, Min, Max, First, Last, StDev, Var) in the current group.
  [[nodiscard]] virtual Value AggregateValue(const Expression& call) const = 0;
  /// The first column of the rows of a sub-select (for Subselect, In, Exists and Quantified; at most `limit` rows).
  [[nodiscard]] virtual std::vector<Value> SubselectValues(const Expression& expression, std::size_t limit) const = 0;
  /// Local date and time, for Now(), Date(), Time().
  [[nodiscard]] virtual Date Now() const = 0;
};

}  // namespace tavi::access::sql
