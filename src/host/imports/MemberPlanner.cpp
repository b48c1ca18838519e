#include "host/imports/MemberImport.h"

#include <algorithm>
#include <limits>

#include "host/imports/MemberFields.h"
#include "host/imports/MemberRoll.h"
#include "host/scoring/MemberDirectory.h"
#include "platform/values/Text.h"

namespace tavi::host {
namespace {

PersonName NameIn(const StoredMember& member) {
  return {member.Value("first"), member.Value("known_as"), member.Value("last")};
}

PersonName NameIn(const MemberLine& line) {
  return {line.Value("first").value_or(""), line.Value("known_as").value_or(""), line.Value("last").value_or("")};
}

/// What makes two members bear the same name, initials aside.
std::string KeyWithoutInitials(const StoredMember& member) {
  return FoldName(member.Value("first")) + "\n" + FoldName(member.Value("last"));
}

bool HaveSameInitials(const StoredMember& left, const StoredMember& right) {
  return FoldName(left.Value("initials")) == FoldName(right.Value("initials"));
}

bool ChangesName(const RecordChange& change) {
  return std::ranges::any_of(change.fields, [](const FieldChange& field) {
    return field.field == "first" || field.field == "initials" || field.field == "last";
  });
}

}  // namespace

MemberPlanner::MemberPlanner(cDatabase& store, const MemberFile& file)
    : keys_(*store.GetPlatform().nameKeyService), file_(file), roll_(store), widths_(store, "Members") {
  after_ = roll_.Members();
  if (!after_.empty()) highest_ = std::max(0, after_.rbegin()->first);
  for (const MemberLine& line : file.members) highest_ = std::max(highest_, line.number.value_or(0));
}

ImportPlan MemberPlanner::Plan(bool allowNamesakes) {
  for (const MemberLine& line : file_.members) Take(line);
  if (!allowNamesakes) RequireNoNamesakes();
  return std::move(plan_);
}

void MemberPlanner::Take(const MemberLine& line) {
  const std::string nationalNumber = line.Value("ebu_number").value_or("");
  const StoredMember* member = roll_.Find(PlaceInFile(file_.name, line.line), line.number, nationalNumber);
  if (member != nullptr) {
    RequireOnce(line, *member);
    RequireHisName(line, *member);
  }
  RecordChange change = member == nullptr ? Newcomer(line) : ChangeOf(*member, line);
  const std::int32_t number = change.members.front();
  if (change.isNew || ChangesName(change)) otherNamed_[number] = &line;
  if (change.name.empty()) {
    Refuse(line, "the member " + std::to_string(number) + " has no name; expected a first name or a surname");
  }
  for (const FieldChange& field : change.fields) {
    widths_.Require(PlaceInFile(file_.name, line.line), MemberFieldNamed(field.field).column, field.after);
  }
  if (change.fields.empty()) {
    ++plan_.unchanged;
  } else {
    plan_.changes.push_back(std::move(change));
  }
}

RecordChange MemberPlanner::Newcomer(const MemberLine& line) {
  StoredMember member;
  for (const MemberField& field : MemberFields()) member.values[field.name] = "";
  RecordChange change;
  change.isNew = true;
  change.line = line.line;
  member.number = line.number ? *line.number : NextFreeNumber(line);
  change.members = {member.number};
  change.fields = ChangedFields(line, member.values);
  for (const auto& [field, usual] : {std::pair{"member_type", "Standard"}, std::pair{"active", "y"}}) {
    if (!member.values[field].empty()) continue;
    member.values[field] = usual;
    change.fields.push_back({field, "", usual});
  }
  change.name = member.Name();
  after_[member.number] = std::move(member);
  return change;
}

RecordChange MemberPlanner::ChangeOf(const StoredMember& member, const MemberLine& line) {
  if (line.number && *line.number != member.number) {
    Remark(line, "nobody has the club number " + std::to_string(*line.number) + "; taken for member " +
                     member.NumberAndName() + ", whose EBU number it is");
  }
  StoredMember& after = after_.at(member.number);
  RecordChange change;
  change.line = line.line;
  change.members = {member.number};
  change.fields = ChangedFields(line, after.values);
  change.name = after.Name();
  return change;
}

std::vector<FieldChange> MemberPlanner::ChangedFields(const MemberLine& line,
                                                      std::map<std::string, std::string>& values) const {
  std::vector<FieldChange> changes;
  for (const MemberField& field : MemberFields()) {
    std::string& value = values.at(field.name);
    std::string after = line.Value(field.name).value_or(value);
    if (field.name == std::string("address")) {
      after = ChangedAddress(value, {line.Value("address"), line.Value("town")});
    }
    const bool saysNothing = field.kind == MemberField::Kind::YesNo && after.empty();
    if (saysNothing || after == value) continue;
    changes.push_back({field.name, value, after});
    value = std::move(after);
  }
  return changes;
}

void MemberPlanner::RequireOnce(const MemberLine& line, const StoredMember& member) {
  const auto [earlier, isNew] = lines_.emplace(member.number, line.line);
  if (isNew) return;
  Refuse(line, "line " + std::to_string(earlier->second) + " is about the same member, " + member.NumberAndName() +
                   "; expected each member once");
}

void MemberPlanner::RequireHisName(const MemberLine& line, const StoredMember& member) {
  const PersonName written = NameIn(line);
  const NameAgreement agreement = CompareNames(NameIn(member), written, keys_);
  if (agreement == NameAgreement::Fits) return;
  const std::string writtenName = Trim(written.first + " " + written.last);
  const bool numbersAgree = line.number == member.number && !member.Value("ebu_number").empty() &&
                            line.Value("ebu_number") == member.Value("ebu_number");
  if (agreement == NameAgreement::HalfFits && numbersAgree) {
    Remark(line,
           "member " + member.NumberAndName() + ", is called " + writtenName + " from now on; both numbers agree");
    return;
  }
  Refuse(line, "the number is that of member " + member.NumberAndName() + ", but the name here is " + writtenName +
                   ", clearly another one; expected that member's name or another number (one part of a name can be "
                   "changed where club number and EBU number both agree)");
}

void MemberPlanner::RequireNoNamesakes() const {
  std::map<std::string, std::vector<const StoredMember*>> byName;
  for (const auto& [number, member] : after_) byName[KeyWithoutInitials(member)].push_back(&member);
  for (const auto& [number, line] : otherNamed_) {
    const StoredMember& member = after_.at(number);
    // A file without initials does not say that a newcomer has none.
    const bool knowsInitials = line->Value("initials") || roll_.Members().contains(number);
    for (const StoredMember* other : byName.at(KeyWithoutInitials(member))) {
      if (other->number == number || (knowsInitials && !HaveSameInitials(*other, member))) continue;
      Refuse(*line, "member " + other->NumberAndName() + (other->Value("active") == "n" ? " (retired)" : "") +
                        ", bears the same name; expected that member's number, or --allow-namesakes where they are two "
                        "people");
    }
  }
}

std::int32_t MemberPlanner::NextFreeNumber(const MemberLine& line) {
  if (highest_ == std::numeric_limits<std::int32_t>::max()) {
    Refuse(line, "there is no club number behind " + std::to_string(highest_) + "; expected one in the file");
  }
  return ++highest_;
}

void MemberPlanner::Remark(const MemberLine& line, std::string text) {
  plan_.remarks.push_back({line.line, std::move(text)});
}

void MemberPlanner::Refuse(const MemberLine& line, const std::string& reason) const {
  RefuseImport(file_.name, line.line, reason);
}

}  // namespace tavi::host
