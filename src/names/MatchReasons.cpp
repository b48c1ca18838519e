// The reason comes from the same scores as the weight, part by part, so that the two never say different things.
#include "names/MatchReasons.h"

#include "names/NameKeys.h"
#include "names/NameMatching.h"

namespace tavi {
namespace {

/// How a name part differs; empty when it does not.
std::string Difference(const std::string& part, std::int16_t score) {
  switch (score) {
    case name_score::kSoundsAlike:
      return part + " sounds alike";
    case name_score::kAbbreviation:
      return part + " is an initial";
    case name_score::kNothingKnown:
      return part + " is missing";
    default:
      return {};
  }
}

/// Keys are equal both for pet forms and for names that sound alike; which of the two it is, the list of families
/// tells.
std::string FirstNameDifference(const cPlayerDetails& typed, const cPlayerDetails& member, std::int16_t score) {
  if (score == name_score::kSoundsAlike && IsShortFormOf(typed.FirstName(), member.FirstName()))
    return "first name is short for " + member.FirstName();
  if (score == name_score::kSoundsAlike && IsShortFormOf(member.FirstName(), typed.FirstName()))
    return "first name is long for " + member.FirstName();
  return Difference("first name", score);
}

/// The score is not symmetric: without initials on the member's side it is that of an abbreviation.
std::string InitialsDifference(const cPlayerDetails& typed, const cPlayerDetails& member) {
  const std::int16_t score = CompareInitials(typed.Initials(), member.Initials());
  if (score == name_score::kAbbreviation) return member.Initials().empty() ? "initials are missing" : "initials fit";
  return score == name_score::kNothingKnown ? "initials are missing" : std::string();
}

/// A part that does not differ adds nothing.
void Append(std::string& text, const std::string& more) {
  if (!text.empty() && !more.empty()) text += ", ";
  text += more;
}

}  // namespace

std::string MatchReason(const cPlayerDetails& typed, const cPlayerDetails& member) {
  if (typed.MatchWeight(member) == 0) return "different name";
  const std::int16_t surname =
      CompareNamePart(typed.Surname(), typed.FuzzedSurname(), member.Surname(), member.FuzzedSurname());
  const std::int16_t firstName =
      CompareNamePart(typed.FirstName(), typed.FuzzedFirstName(), member.FirstName(), member.FuzzedFirstName());
  std::string reason = Difference("surname", surname);
  Append(reason, FirstNameDifference(typed, member, firstName));
  Append(reason, InitialsDifference(typed, member));
  return reason.empty() ? "same name" : reason;
}

NameMatch CompareNames(const std::shared_ptr<const NameKeyService>& keys, const std::string& typed,
                       const MemberName& member) {
  cPlayerDetails own(keys);
  // A typed name is split at its blanks; a member's parts are stored as such.
  own.SetName(typed);
  cPlayerDetails other(keys);
  other.SetNameComponents(member.first, member.initials, member.last);
  return {own.MatchWeight(other), MatchReason(own, other)};
}

}  // namespace tavi
