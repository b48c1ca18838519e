#pragma once

#include <map>

#include "host/imports/ImportPlan.h"
#include "host/imports/MemberRoll.h"
#include "host/input/ClubFiles.h"
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

/// Plans the import of one members file. Used once.
class MemberPlanner {
 public:
  MemberPlanner(cDatabase& store, const MemberFile& file);

  /// See MemberImport::Plan.
  ImportPlan Plan(bool allowNamesakes);

 private:
  void Take(const MemberLine& line);
  [[nodiscard]] RecordChange Newcomer(const MemberLine& line);
  [[nodiscard]] RecordChange ChangeOf(const StoredMember& member, const MemberLine& line);
  /// The fields that the line gives other values than `before` has; they are put into it.
  std::vector<FieldChange> ChangedFields(const MemberLine& line, std::map<std::string, std::string>& values) const;
  void RequireOnce(const MemberLine& line, const StoredMember& member);
  void RequireHisName(const MemberLine& line, const StoredMember& member);
  void RequireNoNamesakes() const;
  std::int32_t NextFreeNumber(const MemberLine& line);
  void Remark(const MemberLine& line, std::string text);
  [[noreturn]] void Refuse(const MemberLine& line, const std::string& reason) const;

  const NameKeyService& keys_;
  const MemberFile& file_;
  MemberRoll roll_;
  ColumnWidths widths_;
  ImportPlan plan_;
  std::int32_t highest_ = 0;                              // number that is in use, or given in the file
  std::map<std::int32_t, std::size_t> lines_;             // of the members that the file was about so far
  std::map<std::int32_t, StoredMember> after_;            // all members as they will be
  std::map<std::int32_t, const MemberLine*> otherNamed_;  // those who are new or get another name
};

}  // namespace tavi::host
