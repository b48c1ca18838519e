#pragma once

#include <map>

#include "host/imports/ColumnWidths.h"
#include "host/imports/ImportPlan.h"
#include "host/imports/MemberRoll.h"
#include "host/input/MemberFile.h"

namespace tavi::host {

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
