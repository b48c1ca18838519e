#pragma once

#include "access/sql/run/RowScope.h"

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

}  // namespace tavi::access::sql
