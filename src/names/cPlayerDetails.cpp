// A player's name record. Names are shown in a format that is asked for, and three of the formats show more of the name
// when another active member would otherwise be shown alike, as the uniqueness flag says:
//
//   flag      format 6, first and last     format 8, first and letter     format 9, familiar
//   4         John Smith                   John S                         John
//   3         John Smith                   John S                         John S
//   2         John Smith                   John Smith                     John Smith
//   0, 1      John A Smith                 John A Smith                   John A Smith
#include "names/cPlayerDetails.h"

#include "names/NameMatching.h"
#include "names/NameText.h"
#include "platform/values/Text.h"

namespace tavi {
namespace {

/// The format that shows enough of the name to tell the player apart.
std::int16_t Adjusted(std::int16_t format, std::int16_t flag) {
  if (format == name_format::kFirstAndLastIfUnique) return flag < uniqueness::kSurname ? name_format::kInFull : format;
  if (format != name_format::kFirstAndLetter && format != name_format::kFamiliar) return format;
  if (flag == 0 || flag == uniqueness::kAllOfName) return name_format::kInFull;
  if (flag == uniqueness::kSurname) return name_format::kFirstAndLast;
  return flag == uniqueness::kSurnameLetter ? name_format::kFirstAndLetter : format;
}

/// Blanks are left where a part is empty, and collapsed afterwards.
std::string Text(const PlayerNameParts& name, std::int16_t format) {
  switch (format) {
    case name_format::kFirstNameOnly:
    case name_format::kFamiliar:
      return name.FirstName;
    case name_format::kInitialsOnly:
      return name.Initials;
    case name_format::kSurnameOnly:
      return name.Surname;
    case name_format::kFirstNameWithInitials:
      return name.FirstName + name.Initials;
    case name_format::kFirstAndLast:
    case name_format::kFirstAndLastIfUnique:
      return name.FirstName + " " + name.Surname;
    case name_format::kFirstAndLetter:
      return name.FirstName + " " + FirstCharacters(name.Surname, 1);
    case name_format::kSurnameFirst:
      return name.Surname + ", " + name.FirstName + " " + name.Initials;
    default:
      return name.FirstName + " " + name.Initials + " " + name.Surname;
  }
}

/// True when there is neither first name nor surname.
bool IsNameless(const PlayerNameParts& name) {
  return name.FirstName.empty() && name.Surname.empty();
}

/// Without the comma that a missing surname or first name leaves at an end.
std::string WithoutStrayComma(std::string_view text) {
  if (text.starts_with(',')) return Trim(text.substr(1));
  if (text.ends_with(',')) return Trim(text.substr(0, text.size() - 1));
  return std::string(text);
}

}  // namespace

cPlayerDetails::cPlayerDetails(std::shared_ptr<const NameKeyService> nameKeyService)
    : nameKeyService_(std::move(nameKeyService)) {
  RefreshKeys();
}

// On every change of the name, so that the keys never belong to another one. The initials have no part in them.
void cPlayerDetails::RefreshKeys() {
  MakeFuzzedNames(fuzzedFirstName_, fuzzedSurname_, parts_, *nameKeyService_);
}

void cPlayerDetails::Clear() {
  *this = cPlayerDetails(nameKeyService_);
}

// The weight belongs to the search that gave it.
std::shared_ptr<cPlayerDetails> cPlayerDetails::Clone() const {
  auto copy = std::make_shared<cPlayerDetails>(*this);
  copy->CandidateWeight = Null();
  return copy;
}

const std::string& cPlayerDetails::FamiliarName() const {
  return KnownAs.empty() ? parts_.FirstName : KnownAs;
}

void cPlayerDetails::SetFirstName(const std::string& firstName) {
  parts_.FirstName = firstName;
  RefreshKeys();
}

void cPlayerDetails::SetInitials(const std::string& initials) {
  parts_.Initials = initials;
}

void cPlayerDetails::SetSurname(const std::string& surname) {
  parts_.Surname = surname;
  RefreshKeys();
}

void cPlayerDetails::SetName(std::string_view FullName) {
  parts_ = SplitName(FullName);
  RefreshKeys();
}

void cPlayerDetails::SetNameComponents(const std::string& FirstName, const std::string& Initials,
                                       const std::string& Surname) {
  parts_ = PlayerNameParts{FirstName, Initials, Surname};
  RefreshKeys();
}

bool cPlayerDetails::SameSurnameAs(const cPlayerDetails& other) const {
  return EqualIgnoringCase(parts_.Surname, other.parts_.Surname);
}

std::string cPlayerDetails::Name(std::int16_t NameFormat) const {
  if (NameFormat == name_format::kFamiliar && !KnownAs.empty()) return KnownAs;
  const std::int16_t format = Adjusted(NameFormat, UniquenessFlag);
  const std::string text = CollapseWhitespace(Text(parts_, format), true);
  return format == name_format::kSurnameFirst ? WithoutStrayComma(text) : text;
}

// One part that contradicts ends it, however well the others agree. Two records of which nothing could be compared do
// not match either.
std::int16_t cPlayerDetails::MatchWeight(const cPlayerDetails& other) const {
  const bool bothNameless = IsNameless(parts_) && IsNameless(other.parts_);
  const std::int16_t surname =
      CompareNamePart(parts_.Surname, fuzzedSurname_, other.parts_.Surname, other.fuzzedSurname_);
  const std::int16_t firstName =
      CompareNamePart(parts_.FirstName, fuzzedFirstName_, other.parts_.FirstName, other.fuzzedFirstName_);
  const std::int16_t initials = CompareInitials(parts_.Initials, other.parts_.Initials);
  const bool nothingCompared = firstName == 1 && surname == 1;
  if (firstName == 0 || initials == 0 || surname == 0 || nothingCompared || bothNameless) return 0;
  // 444 is the very name. The least is 121: no surname, an initial as first name, no initials.
  return CombineMatchScores(firstName, initials, surname);
}

}  // namespace tavi
