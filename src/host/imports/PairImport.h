#pragma once

#include <map>
#include <utility>

#include "host/imports/ImportPlan.h"
#include "host/imports/MemberRoll.h"
#include "host/input/ClubFiles.h"
#include "store/cDatabase.h"

namespace tavi::host {

/// Brings a file of regular pairs into a club. Only what the file says is touched; a pair that is there keeps its
/// handicap and the order of its players. A player is the member of the club number, else of the EBU number.
class PairImport {
 public:
  /// The store's file is open for as long as this is used.
  explicit PairImport(cDatabase& store) : store_(store) {}

  /// What the file would change. Raises InvalidArgument ("FILE:LINE: ...") for a line that cannot be right: a number
  /// that is no member's, a clearly other name than the member's, a player paired with themself, a pair that stands
  /// twice.
  [[nodiscard]] ImportPlan Plan(const PairFile& file);
  /// Stores a plan that was made of the club as it is. Errors are the provider's.
  void Apply(const ImportPlan& plan, const ImportProgress& progress);

 private:
  void Store(const RecordChange& change);

  cDatabase& store_;
};

}  // namespace tavi::host
