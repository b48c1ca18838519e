#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "access/sql/plan/Plan.h"
#include "access/sql/run/RowScope.h"
#include "platform/values/Value.h"

namespace tavi::access::sql {

/// Asks in the comparisons of a sort whether its statement is to be given up: not in each one, which may take less time
/// than the question.
class SortQuestion {
 public:
  explicit SortQuestion(const StatementContext& context) : context_(context) {}

  /// To be called for each comparison. Raises kCancelledNumber.
  void Ask() {
    if (++comparisons_ % kComparisonsBetween == 0) context_.GoOnUnlessCancelled();
  }

 private:
  static constexpr unsigned kComparisonsBetween = 256;

  const StatementContext& context_;
  unsigned comparisons_ = 0;
};

/// Puts rows, numbered as they come, into the order of a select and keeps those that TOP wants: rows that tie with the
/// last one by the ORDER BY belong to them. Rows that compare equal keep the order in which they came.
class RowOrder {
 public:
  /// `rowsComeInOrder`: nothing is to be sorted. A sort raises kCancelledNumber when the statement is to be given up.
  RowOrder(const StatementContext& context, const SelectPlan& plan, bool rowsComeInOrder);

  /// True when rows have keys to be sorted by.
  [[nodiscard]] bool HasKeys() const { return !descending_.empty(); }
  /// Takes the keys of the next row. False when no further row is wanted; the row itself is then not counted either
  /// when `IsRefused` says so.
  bool Add(std::vector<Value> keys);
  [[nodiscard]] bool IsRefused() const { return refused_; }

  /// The numbers of the rows in their order.
  [[nodiscard]] std::vector<std::size_t> Finish();

 private:
  struct Row {
    std::vector<Value> keys;
    std::size_t number;
  };
  [[nodiscard]] int Compare(const Row& left, const Row& right) const;
  [[nodiscard]] bool Before(const Row& left, const Row& right) const;
  void Prune(std::size_t keep);

  SortQuestion question_;
  std::vector<bool> descending_;
  bool rowsComeInOrder_;
  bool topPercent_ = false;
  std::optional<std::size_t> top_;
  std::uint64_t pruneAbove_ = 0;  ///< so many rows are kept before what is not wanted is dropped
  bool refused_ = false;
  std::size_t count_ = 0;
  std::vector<Row> rows_;
};

}  // namespace tavi::access::sql
