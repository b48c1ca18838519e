#pragma once

#include <cstdint>
#include <optional>

#include "access/sql/parse/Statement.h"
#include "access/sql/plan/ValueKey.h"

namespace tavi::access::sql {

/// Gathers the value of one aggregate call over the rows of a group. Nulls are left out, except by Count(*), First and
/// Last; without any value the result is null (Count: 0). Sums of amounts are amounts, all others doubles.
class Aggregator {
 public:
  explicit Aggregator(const Expression& call);

  /// True when it counts rows whatever they hold.
  [[nodiscard]] bool CountsRows() const { return kind_ == Kind::CountRows; }
  /// True when the least, or the greatest, value is all that it needs to see.
  [[nodiscard]] bool IsMinimum() const { return kind_ == Kind::Minimum; }
  [[nodiscard]] bool IsMaximum() const { return kind_ == Kind::Maximum; }
  /// Of one that counts rows: so many.
  void AddRows(std::int64_t count) { count_ += count; }
  /// Takes the argument's value in the next row. Raises ProviderTypeConflict for a value that cannot be added up.
  void Add(const Value& value);
  [[nodiscard]] Value Result() const;

 private:
  enum class Kind { CountRows, Count, Sum, Average, Minimum, Maximum, First, Last, Deviation, Variance };

  void AddNumber(const Value& value);
  [[nodiscard]] Value SumResult() const;
  [[nodiscard]] Value SpreadResult() const;

  Kind kind_ = Kind::CountRows;
  bool ofPopulation_ = false;
  bool distinct_ = false;
  std::string name_;
  std::int64_t count_ = 0;
  bool onlyCurrency_ = true;
  std::int64_t currencySum_ = 0;
  double sum_ = 0;
  double mean_ = 0;
  double squares_ = 0;
  Value kept_;
  DistinctRows seen_;
};

}  // namespace tavi::access::sql
