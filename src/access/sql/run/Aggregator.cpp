// One aggregate over one group, a value at a time. Sums of amounts are counted exactly, in ten-thousandths; beside them
// a sum of doubles runs along, which is the answer as soon as another kind of number comes in or the exact one
// overflows.
//
// Variances come from Welford's running mean and sum of squared distances from it: adding up squares first would lose
// all digits where values are large and close together, such as days.
#include "access/sql/run/Aggregator.h"

#include <cmath>
#include <map>

#include "access/sql/expression/Operators.h"
#include "access/sql/plan/ExecutionErrors.h"
#include "platform/values/Convert.h"
#include "platform/values/Text.h"

namespace tavi::access::sql {

namespace {

/// True counts as -1.
double SummandOf(const Value& value) {
  if (const bool* truth = std::get_if<bool>(&value)) return *truth ? -1.0 : 0.0;
  return ToDouble(value);
}

}  // namespace

// Raises what can be told from the call alone, before any row is read.
Aggregator::Aggregator(const Expression& call) : distinct_(call.distinct), name_(call.name) {
  const std::string name = UpperCase(call.name);
  static const std::map<std::string, Kind> kKinds = {
      {"COUNT", Kind::Count},      {"SUM", Kind::Sum},      {"AVG", Kind::Average},  {"MIN", Kind::Minimum},
      {"MAX", Kind::Maximum},      {"FIRST", Kind::First},  {"LAST", Kind::Last},    {"STDEV", Kind::Deviation},
      {"STDEVP", Kind::Deviation}, {"VAR", Kind::Variance}, {"VARP", Kind::Variance}};
  const auto found = kKinds.find(name);
  if (found == kKinds.end()) throw StatementError("Undefined aggregate function '" + call.name + "' in expression.");
  kind_ = found->second;
  // StDevP and VarP take the rows for all there are, the others for a sample.
  ofPopulation_ = name.back() == 'P';
  const bool ofRows = call.arguments.empty() || call.arguments[0]->kind == ExpressionKind::Star;
  if (ofRows && kind_ != Kind::Count) throw StatementError("The function " + call.name + " needs one argument.");
  if (ofRows) kind_ = Kind::CountRows;
}

// First and Last take whatever the first and last row hold, null too. DISTINCT counts for all others; for Min and Max
// it makes no difference.
void Aggregator::Add(const Value& value) {
  if (kind_ == Kind::CountRows) {
    ++count_;
    return;
  }
  if (kind_ == Kind::First || kind_ == Kind::Last) {
    if (count_ == 0 || kind_ == Kind::Last) kept_ = value;
    ++count_;
    return;
  }
  if (IsNull(value) || (distinct_ && !seen_.Add({value}).second)) return;
  ++count_;
  switch (kind_) {
    case Kind::Minimum:
      if (IsNull(kept_) || CompareValues(value, kept_) < 0) kept_ = value;
      break;
    case Kind::Maximum:
      if (IsNull(kept_) || CompareValues(value, kept_) > 0) kept_ = value;
      break;
    case Kind::Count:
      break;
    default:
      AddNumber(value);
  }
}

void Aggregator::AddNumber(const Value& value) {
  // A text is not converted, not even one that looks like a number.
  if (FamilyOf(value) != ValueFamily::Number) {
    throw EngineError(ErrorNumber::ProviderTypeConflict,
                      "Data type mismatch in criteria expression. " + name_ + " needs numbers.");
  }
  if (const Currency* amount = std::get_if<Currency>(&value)) {
    if (__builtin_add_overflow(currencySum_, amount->tenThousandths, &currencySum_)) onlyCurrency_ = false;
  } else {
    onlyCurrency_ = false;
  }
  const double number = SummandOf(value);
  sum_ += number;
  const double distance = number - mean_;
  mean_ += distance / static_cast<double>(count_);
  squares_ += distance * (number - mean_);
}

Value Aggregator::Result() const {
  switch (kind_) {
    case Kind::CountRows:
    case Kind::Count:
      // Counts are whole numbers of 32 bits for record sets.
      return static_cast<std::int32_t>(count_);
    case Kind::Minimum:
    case Kind::Maximum:
    case Kind::First:
    case Kind::Last:
      return kept_;
    case Kind::Sum:
    case Kind::Average:
      return SumResult();
    case Kind::Deviation:
    case Kind::Variance:
      break;
  }
  return SpreadResult();
}

// The average of amounts is an amount, rounded to the nearest ten-thousandth, ties to even.
Value Aggregator::SumResult() const {
  if (count_ == 0) return Null{};
  if (kind_ == Kind::Sum) return onlyCurrency_ ? Value{Currency{currencySum_}} : Value{sum_};
  if (!onlyCurrency_) return sum_ / static_cast<double>(count_);
  const double average = static_cast<double>(currencySum_) / static_cast<double>(count_);
  return Currency{static_cast<std::int64_t>(std::nearbyint(average))};
}

// Of a sample the divisor is one less than the count, so that a single value has no spread.
Value Aggregator::SpreadResult() const {
  const std::int64_t divisor = ofPopulation_ ? count_ : count_ - 1;
  if (divisor < 1) return Null{};
  const double variance = squares_ / static_cast<double>(divisor);
  return kind_ == Kind::Variance ? variance : std::sqrt(variance);
}

}  // namespace tavi::access::sql
