#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "access/sql/expression/Coercion.h"
#include "access/sql/expression/Operators.h"
#include "access/sql/parse/Expression.h"
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
  /// Whether a value is among those of the sub-select of an In, where the scope can tell without going through them;
  /// nothing elsewhere.
  [[nodiscard]] virtual std::optional<Truth> IsAmong(const Expression& in, const Value& tested) const;
  /// The first column of the rows of a sub-select (for Subselect, In, Exists and Quantified; at most `limit` rows).
  [[nodiscard]] virtual std::vector<Value> SubselectValues(const Expression& expression, std::size_t limit) const = 0;
  /// Local date and time, for Now(), Date(), Time().
  [[nodiscard]] virtual Date Now() const = 0;

  /// The pattern of a Like, taken apart; kept for the next row, which mostly has the same one.
  [[nodiscard]] const LikePattern& PatternOf(const Expression& like, std::string_view text) const;

 private:
  struct KeptPattern {
    std::string text;
    LikePattern pattern;
  };
  mutable std::map<const Expression*, KeptPattern> patterns_;
};

/// The value of an expression, by Access's rules: Null in, Null out (three-valued And, Or, Not); text compared by the
/// file's sort order; numbers compared with dates as day counts; True is -1. Raises ProviderTypeConflict ("Data type
/// mismatch in criteria expression.") for operands that do not go together, ProviderSyntax ("Undefined function 'X' in
/// expression.").
Value Evaluate(const Expression& expression, const Scope& scope);
/// True when the expression's value is neither Null nor False nor 0.
bool IsTrue(const Expression& expression, const Scope& scope);

}  // namespace tavi::access::sql
