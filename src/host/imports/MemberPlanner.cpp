#include "host/imports/MemberImport.h"

#include <algorithm>
#include <limits>

#include "host/imports/MemberFields.h"
#include "host/imports/MemberRoll.h"
#include "host/scoring/MemberDirectory.h"
#include "platform/values/Text.h"

// Makes the plan of an import of members. Each line of the file is taken once, in order: who it is about (MemberRoll),
// that his name is his, what changes, and that it fits its columns. after_ has every member as he will be, so that at
// the end namesakes are looked for among all of them at once: a newcomer may have the name that another member has had,
// when the same file changes that one's. Nothing is stored.
namespace tavi::host {
namespace {

// What of a member and of a line is compared as a name. A column that the file lacks counts as an empty part, which
// agrees with anything.
PersonName NameIn(const StoredMember& member) {
  return {member.Value("first"), member.Value("known_as"), member.Value("last")};
}

PersonName NameIn(const MemberLine& line) {
  return {line.Value("first").value_or(""), line.Value("known_as").value_or(""), line.Value("last").value_or("")};
}

/// What makes two members bear the same name, initials aside.
/// Initials are compared apart, because a file may lack them.
std::string KeyWithoutInitials(const StoredMember& member) {
  return FoldName(member.Value("first")) + "\n" + FoldName(member.Value("last"));
}

bool HaveSameInitials(const StoredMember& left, const StoredMember& right) {
  return FoldName(left.Value("initials")) == FoldName(right.Value("initials"));
}

/// True for the fields that namesakes are told by.
bool ChangesName(const RecordChange& change) {
  return std::ranges::any_of(change.fields, [](const FieldChange& field) {
    return field.field == "first" || field.field == "initials" || field.field == "last";
  });
}

}  // namespace

MemberPlanner::MemberPlanner(cDatabase& store, const MemberFile& file)
    : keys_(*store.GetPlatform().nameKeyService), file_(file), roll_(store), widths_(store, "Members") {
  after_ = roll_.Members();
  // Numbers are given behind all that are in use and all that the file gives, also further down, so that none is given
  // to two.
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
  // Found among the members as they were: a line cannot be about somebody whom an earlier line adds.
  const StoredMember* member = roll_.Find(PlaceInFile(file_.name, line.line), line.number, nationalNumber);
  if (member != nullptr) {
    RequireOnce(line, *member);
    RequireHisName(line, *member);
  }
  RecordChange change = member == nullptr ? Newcomer(line) : ChangeOf(*member, line);
  const std::int32_t number = change.members.front();
  // Only these can become somebody's namesake; those who are so already stay as they are.
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

/// A new member: empty in all fields that the file does not give, but active, and of the usual type.
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

/// A member who is there. He keeps his club number whatever the file says: results and awards refer to it.
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
    // A yes or no has no empty state.
    const bool saysNothing = field.kind == MemberField::Kind::YesNo && after.empty();
    if (saysNothing || after == value) continue;
    changes.push_back({field.name, value, after});
    value = std::move(after);
  }
  return changes;
}

/// The same number twice is refused when the file is read; this finds a member who stands once by each of his numbers.
void MemberPlanner::RequireOnce(const MemberLine& line, const StoredMember& member) {
  const auto [earlier, isNew] = lines_.emplace(member.number, line.line);
  if (isNew) return;
  Refuse(line, "line " + std::to_string(earlier->second) + " is about the same member, " + member.NumberAndName() +
                   "; expected each member once");
}

/// Whether the line is about the member whose number it has. Couples share a surname, and their numbers are taken for
/// each other; so a first name that is clearly another one is refused as well. Who marries changes one part, and then
/// both numbers have to say who it is.
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
  // By name first, so that the work grows with the members and not with their square.
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
