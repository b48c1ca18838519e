#pragma once

#include "host/imports/ImportPlan.h"
#include "host/input/MemberFile.h"
#include "store/cDatabase.h"

namespace tavi::host {

/// Brings a members file into a club. Only what the file says is touched: columns that it lacks stay as they are, an
/// empty cell empties its field (an empty `active` leaves it, an empty `member_type` is Standard). A line is the member
/// of its club number, else of its EBU number, else a new member; handicap, notes and subscriptions are left alone.
class MemberImport {
 public:
  /// The store's file is open for as long as this is used.
  explicit MemberImport(cDatabase& store) : store_(store) {}

  /// What the file would change. Raises InvalidArgument ("FILE:LINE: ...") for a line that cannot be right: a clearly
  /// other name than the member's (who may change one part of it when both numbers say the same), a second member of
  /// exactly the same name unless `allowNamesakes`, a text that is too long, a member without a name, two lines about
  /// one member.
  [[nodiscard]] ImportPlan Plan(const MemberFile& file, bool allowNamesakes);
  /// Stores a plan that was made of the club as it is. Errors are the provider's.
  void Apply(const ImportPlan& plan, const ImportProgress& progress);

 private:
  void Add(const RecordChange& change);
  void Update(const RecordChange& change);

  cDatabase& store_;
};

}  // namespace tavi::host
