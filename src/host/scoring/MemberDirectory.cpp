#include "host/scoring/MemberDirectory.h"

#include <algorithm>

#include "names/NameText.h"
#include "platform/values/Text.h"
#include "util/TextHelpers.h"

// Who a player of a result file is. The order of the ways is that of their reliability, and each way has a bar against
// the mistake that it is prone to:
//
//   national number    unless the name is exactly another member's and does not resemble the first one's: a slip of the
//                      pen in the number
//   name, exactly      of one member only; of several, the one who goes by just that name
//   club number        only where the name agrees, for a visitor has the number of his own club
//   name, nearly       one slip, an initial or the sound, of one member only, and no national number against it
//
// Whoever is left is a visitor and stored by name. A wrong guess would change a member's handicap, a missed one is seen
// in the ranking; so in doubt nobody is taken, and whatever was not plain is a remark. The members are walked once,
// folded once, and looked through for each player: some hundred comparisons of short texts.
namespace tavi::host {
namespace {

/// Shorter names are too much alike for slips to be forgiven.
constexpr std::size_t kShortestTypedForSlips = 6;

// What one step of a walk gives.
struct WalkedMember {
  std::int32_t number = 0;
  std::string name;
  bool retired = false;
};

/// The walk ends before anything else is asked, because walks close the file at their end.
std::vector<WalkedMember> WalkAll(MembershipDatabase& database, std::int16_t nameFormat) {
  std::vector<WalkedMember> members;
  WalkedMember member;
  double unused = 0.0;
  for (bool more = database.GetFirstMember(member.number, member.name, unused, nameFormat); more;
       more = database.GetNextMember(member.number, member.name, unused, nameFormat)) {
    member.retired = database.Retired();
    members.push_back(member);
  }
  return members;
}

std::string Joined(const std::string& first, const std::string& last) {
  return Trim(first + " " + last);
}

}  // namespace

MemberDirectory::MemberDirectory(MembershipDatabase& database) : database_(database) {
  // The host's own setting, given back below.
  const bool before = database.IncludeInactiveMembers;
  database.IncludeInactiveMembers = true;
  const std::vector<WalkedMember> shown = WalkAll(database, name_format::kFirstAndLast);
  const std::vector<WalkedMember> familiar = WalkAll(database, name_format::kFamiliar);
  database.IncludeInactiveMembers = before;
  // Two walks of the same members, in the same order: they differ in how names are written.
  for (std::size_t i = 0; i < shown.size() && i < familiar.size(); ++i) {
    Member member;
    member.number = shown[i].number;
    member.shown = shown[i].name;
    member.retired = shown[i].retired;
    // A retired member's names are not looked at: only by the national number is he recognised, and then it is
    // remarked.
    if (!member.retired) AddWritings(member, familiar[i].name);
    members_.emplace(member.number, std::move(member));
  }
}

/// All ways in which scorers write a member: with and without initials, and by the familiar name.
void MemberDirectory::AddWritings(Member& member, const std::string& familiarForm) {
  std::string first;
  std::string initials;
  std::string last;
  member.nationalNumber = WithoutLeadingZeros(database_.GetEBUNoAndNames(member.number, first, initials, last));
  member.surname = FoldName(last);
  member.writings = {FoldName(Joined(first, last)), FoldName(Joined(first + " " + initials, last))};
  // Format 9 gives the familiar name alone, or first name and surname when there is none.
  if (FoldName(familiarForm) != member.writings.front()) {
    member.familiarWriting = FoldName(Joined(familiarForm, last));
    member.writings.push_back(member.familiarWriting);
  }
}

// The steps of the file's head, in their order.
ResolvedPlayer MemberDirectory::Resolve(const EventPlayer& player) {
  const std::string clean = CleanWrittenName(player.name);
  const Member* byNumber = ByNationalNumber(player.nationalNumber);
  std::vector<const Member*> byName = ByWriting(FoldName(clean));
  if (byNumber != nullptr) {
    // A number that belongs to one member, with exactly another one's name: somebody mistyped a figure.
    const bool otherName = byName.size() == 1 && byName.front() != byNumber && !NameFits(*byNumber, clean);
    if (!otherName) {
      return {byNumber->number, byNumber->shown,
              byNumber->retired ? player.name + ": " + byNumber->shown + " is no longer an active member" : "", true};
    }
    return {byName.front()->number, byName.front()->shown,
            player.name + ": the national number " + player.nationalNumber + " is " + byNumber->shown +
                "'s; taken for the member of that name"};
  }
  // A number that is no member's does not make a visitor of who has a member's name: it may be new, or mistyped.
  const std::string unknownNumber =
      player.nationalNumber.empty() ? "" : player.name + ": no member has the national number " + player.nationalNumber;
  if (byName.size() == 1) {
    return {byName.front()->number, byName.front()->shown,
            unknownNumber.empty() ? "" : unknownNumber + "; taken for the member of that name"};
  }
  // Before namesakes are given up: the club number may tell which of them it is.
  if (const Member* member = ByClubNumber(player, clean)) return {member->number, member->shown, ""};
  if (byName.size() > 1) {
    return {kNoMember, player.name,
            player.name + ": several members have that name and no number tells which; stored as a non-member"};
  }
  if (const Member* member = OneNear(player, clean)) {
    return {member->number, member->shown, player.name + ": taken for " + member->shown};
  }
  return {kNoMember, player.name, player.name + " is not a member; stored by name"};
}

/// An active member first, then a retired one.
const MemberDirectory::Member* MemberDirectory::ByNationalNumber(const std::string& number) const {
  if (number.empty()) return nullptr;
  const auto found = std::find_if(members_.begin(), members_.end(),
                                  [&](const auto& entry) { return entry.second.nationalNumber == number; });
  return found == members_.end() ? RetiredByNationalNumber(number) : &found->second;
}

/// Their numbers are not kept here; the component answers club numbers and national ones alike.
const MemberDirectory::Member* MemberDirectory::RetiredByNationalNumber(const std::string& number) const {
  if (number.size() > kLongestWholeNumber || !IsFigures(number)) return nullptr;
  // A club number of the same figures is answered too; it is somebody else's.
  const auto found = members_.find(database_.EnteredNumberToClubNumber(std::stoi(number)));
  const bool retired = found != members_.end() && found->second.retired && std::to_string(found->first) != number;
  return retired ? &found->second : nullptr;
}

/// Active members with this name in any of their writings; more than one only where they cannot be told apart.
std::vector<const MemberDirectory::Member*> MemberDirectory::ByWriting(const std::string& folded) const {
  std::vector<const Member*> found;
  for (const auto& [number, member] : members_) {
    const bool written = std::any_of(member.writings.begin(), member.writings.end(),
                                     [&](const std::string& writing) { return FoldedEqual(writing, folded); });
    if (written && !member.retired) found.push_back(&member);
  }
  if (found.size() < 2) return found;
  // Of members of one name, one who goes by another familiar name is not the one who is written with the formal one,
  // and one who goes by the written name is.
  std::vector<const Member*> plain;
  for (const Member* member : found) {
    if (member->familiarWriting.empty() || member->familiarWriting == folded) plain.push_back(member);
  }
  return plain.size() == 1 ? plain : found;
}

/// The member of a club number, if the written name is his but for a slip, or is his surname with his initial.
const MemberDirectory::Member* MemberDirectory::ByClubNumber(const EventPlayer& player,
                                                             const std::string& clean) const {
  if (player.clubNumber.size() > kLongestWholeNumber || !IsFigures(player.clubNumber)) {
    return nullptr;
  }
  const auto found = members_.find(std::stoi(player.clubNumber));
  if (found == members_.end()) return nullptr;
  const std::string folded = FoldName(clean);
  const Member& member = found->second;
  const bool near = std::any_of(member.writings.begin(), member.writings.end(),
                                [&](const std::string& writing) { return WithinOneSlip(writing, folded); });
  // A club number beside a name with only an initial is enough, though the initial alone may be that of several.
  const std::vector<const Member*> byInitial = ByInitial(clean);
  const bool initial = std::find(byInitial.begin(), byInitial.end(), &member) != byInitial.end();
  return near || initial ? &member : nullptr;
}

/// "A Smith": members of that surname with a name that begins with the letter.
std::vector<const MemberDirectory::Member*> MemberDirectory::ByInitial(const std::string& clean) const {
  std::vector<const Member*> found;
  const std::size_t blank = clean.find(' ');
  if (blank == std::string::npos || TextLength(clean.substr(0, blank)) != 1) return found;
  const std::string initial = FoldName(clean.substr(0, blank));
  const std::string surname = FoldName(clean.substr(blank + 1));
  for (const auto& [number, member] : members_) {
    if (member.retired || !FoldedEqual(member.surname, surname)) continue;
    const bool begins = std::any_of(member.writings.begin(), member.writings.end(),
                                    [&](const std::string& writing) { return writing.starts_with(initial); });
    if (begins) found.push_back(&member);
  }
  return found;
}

std::vector<const MemberDirectory::Member*> MemberDirectory::BySlip(const std::string& folded) const {
  std::vector<const Member*> found;
  if (folded.size() < kShortestTypedForSlips) return found;
  for (const auto& [number, member] : members_) {
    const bool near = std::any_of(member.writings.begin(), member.writings.end(),
                                  [&](const std::string& writing) { return WithinOneSlip(writing, folded); });
    if (near && !member.retired) found.push_back(&member);
  }
  return found;
}

std::vector<const MemberDirectory::Member*> MemberDirectory::BySound(const std::string& clean) {
  std::vector<const Member*> found;
  // A single word sounds like too many.
  if (clean.find(' ') == std::string::npos) return found;
  const MatchList matches = database_.FindNearestMatches(clean);
  if (matches.LowerBound == 0) return found;
  for (const std::int32_t number : matches.Numbers) {
    const auto member = members_.find(number);
    if (member != members_.end()) found.push_back(&member->second);
  }
  return found;
}

// From the strictest likeness to the loosest. As soon as one of them finds several, nobody is taken: a looser one that
// finds only one of them has no better reason.
const MemberDirectory::Member* MemberDirectory::OneNear(const EventPlayer& player, const std::string& clean) {
  for (const std::vector<const Member*>& candidates : {ByInitial(clean), BySlip(FoldName(clean)), BySound(clean)}) {
    if (candidates.size() == 1 && NumberAllows(*candidates.front(), player)) return candidates.front();
    if (candidates.size() > 1) return nullptr;
  }
  return nullptr;
}

bool MemberDirectory::NumberAllows(const Member& member, const EventPlayer& player) {
  // A number that differs in more than a slip belongs to somebody else of a similar name.
  return player.nationalNumber.empty() || member.nationalNumber.empty() ||
         WithinOneSlip(member.nationalNumber, player.nationalNumber);
}

/// Whether a name may be that of the member whose number stands beside it: more is forgiven than without a number.
bool MemberDirectory::NameFits(const Member& member, const std::string& clean) {
  const std::string folded = FoldName(clean);
  const auto near = [&](const std::string& writing) { return WithinOneSlip(writing, folded); };
  if (std::any_of(member.writings.begin(), member.writings.end(), near)) return true;
  for (const std::vector<const Member*>& candidates : {ByInitial(clean), BySound(clean)}) {
    if (std::find(candidates.begin(), candidates.end(), &member) != candidates.end()) return true;
  }
  return false;
}

}  // namespace tavi::host
