#include "names/NameMatching.h"

#include "names/NameKeys.h"
#include "platform/values/Text.h"

namespace tavi {
namespace {

constexpr int kFirstNameFactor = 10;
constexpr int kSurnameFactor = 100;

/// True when one of the two is the initial of the other.
/// Compared as characters and not as bytes: an initial may have an accent.
bool IsInitialOf(std::string_view left, std::string_view right) {
  const bool isShort = TextLength(left) == 1 || TextLength(right) == 1;
  return isShort && UpperCase(FirstCharacters(left, 1)) == UpperCase(FirstCharacters(right, 1));
}

/// True when the letters of `part` occur in `whole` in their order.
/// "AB" in "ACB": an initial in between was left out.
bool OccursInOrder(std::u32string_view part, std::u32string_view whole) {
  std::size_t position = 0;
  for (const char32_t letter : part) {
    position = whole.find(letter, position);
    if (position == std::u32string_view::npos) return false;
    ++position;
  }
  return true;
}

}  // namespace

std::int16_t CompareNamePart(std::string_view Own, std::string_view OwnKey, std::string_view Other,
                             std::string_view OtherKey) {
  // Two empty parts are the same by this first comparison, so "nothing is known" is left for one empty part.
  if (EqualIgnoringCase(Other, Own)) return name_score::kSame;
  // A single letter has a key of its own, so that an initial is not taken for a name that sounds like it.
  if (OtherKey == OwnKey) return name_score::kSoundsAlike;
  if (IsInitialOf(Own, Other)) return name_score::kAbbreviation;
  return Own.empty() || Other.empty() ? name_score::kNothingKnown : name_score::kDifferent;
}

std::int16_t CompareInitials(std::string_view Own, std::string_view Other) {
  const std::u32string own = ToCodePoints(UpperCase(Own));
  const std::u32string other = ToCodePoints(UpperCase(Other));
  if (own == other) return name_score::kSame;
  if (own.empty()) return name_score::kNothingKnown;
  if (own.size() == other.size()) return name_score::kDifferent;
  // Initials of one length that differ contradict each other; of different lengths, one person may have left some out.
  const bool occurs = own.size() < other.size() ? OccursInOrder(own, other) : OccursInOrder(other, own);
  return occurs ? name_score::kAbbreviation : name_score::kDifferent;
}

std::int16_t CombineMatchScores(std::int16_t FirstNameScore, std::int16_t InitialsScore, std::int16_t SurnameScore) {
  return static_cast<std::int16_t>(kSurnameFactor * SurnameScore + kFirstNameFactor * FirstNameScore + InitialsScore);
}

}  // namespace tavi

// The reason comes from the same scores as the weight, part by part, so that the two never say different things.

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
