// ORDER BY and TOP over numbered rows. Rows that tie keep the order in which they came, whose numbers are the last key.
// Rows that tie with the last wanted one can all be given, as TOP has it.
//
// TOP n does not need all rows in memory. When 2 n + 1000 have gathered, those that come after the n-th are dropped;
// what is left are n rows and those that tie with the n-th. As these may be most of a table, the next time is when
// twice as many have gathered, so that a row is looked at a few times only, however many tie. A percentage is only
// known when all rows have come.
#include "access/sql/run/RowOrder.h"

#include <algorithm>
#include <cmath>

#include "access/sql/expression/Operators.h"

namespace tavi::access::sql {

namespace {

/// Rows past the wanted ones are dropped when so many have gathered.
constexpr std::size_t kSpareRows = 1000;

}  // namespace

RowOrder::RowOrder(const StatementContext& context, const SelectPlan& plan, bool rowsComeInOrder)
    : question_(context), rowsComeInOrder_(rowsComeInOrder) {
  // The ORDER BY of a union is for the whole of it, not for this part.
  for (const SortKey& key : plan.order) {
    if (plan.unionParts.empty()) descending_.push_back(key.descending);
  }
  if (plan.select == nullptr || !plan.select->top) return;
  topPercent_ = plan.select->topPercent;
  top_ = static_cast<std::size_t>(std::max<std::int64_t>(0, *plan.select->top));
  // In 64 bits: TOP takes numbers of which the double does not fit into 32.
  pruneAbove_ = 2 * std::uint64_t{*top_} + kSpareRows;
}

int RowOrder::Compare(const Row& left, const Row& right) const {
  for (std::size_t i = 0; i < descending_.size(); ++i) {
    const int order = OrderValues(left.keys[i], right.keys[i]);
    if (order != 0) return descending_[i] ? -order : order;
  }
  return 0;
}

bool RowOrder::Before(const Row& left, const Row& right) const {
  const int order = Compare(left, right);
  return order != 0 ? order < 0 : left.number < right.number;
}

bool RowOrder::Add(std::vector<Value> keys) {
  const bool limited = top_ && !topPercent_;
  Row row{std::move(keys), count_};
  // Rows that come in order end with the first one that does not tie with the last wanted one.
  if (limited && (rowsComeInOrder_ || !HasKeys()) && rows_.size() >= *top_) {
    const bool ties = HasKeys() && *top_ > 0 && Compare(rows_[*top_ - 1], row) == 0;
    refused_ = !ties;
    if (!ties) return false;
  }
  ++count_;
  rows_.push_back(std::move(row));
  // Without keys any n rows will do, so the n-th is the last that is taken.
  if (limited && !HasKeys()) return rows_.size() < *top_;
  if (limited && !rowsComeInOrder_ && rows_.size() > pruneAbove_) Prune(*top_);
  return true;
}

// Finds the row of that place without sorting the others.
void RowOrder::Prune(std::size_t keep) {
  if (keep == 0) {
    rows_.clear();
    return;
  }
  const auto before = [this](const Row& left, const Row& right) {
    question_.Ask();
    return Before(left, right);
  };
  const auto last = rows_.begin() + static_cast<std::ptrdiff_t>(keep) - 1;
  std::nth_element(rows_.begin(), last, rows_.end(), before);
  const Row limit = *last;
  std::erase_if(rows_, [&](const Row& row) { return Compare(row, limit) > 0; });
  pruneAbove_ = 2 * std::uint64_t{rows_.size()} + kSpareRows;
}

std::vector<std::size_t> RowOrder::Finish() {
  if (HasKeys() && !rowsComeInOrder_) {
    std::sort(rows_.begin(), rows_.end(), [this](const Row& left, const Row& right) {
      question_.Ask();
      return Before(left, right);
    });
  }
  // A percentage is rounded up: 10 percent of 11 rows are 2.
  std::size_t wanted = rows_.size();
  if (top_) wanted = *top_;
  if (topPercent_) {
    const double part =
        static_cast<double>(rows_.size()) * static_cast<double>(std::min<std::size_t>(*top_, 100)) / 100;
    wanted = static_cast<std::size_t>(std::ceil(part));
  }
  std::size_t end = std::min(wanted, rows_.size());
  while (HasKeys() && end > 0 && end < rows_.size() && Compare(rows_[end - 1], rows_[end]) == 0) ++end;
  std::vector<std::size_t> numbers;
  numbers.reserve(end);
  for (std::size_t i = 0; i < end; ++i) numbers.push_back(rows_[i].number);
  return numbers;
}

}  // namespace tavi::access::sql
