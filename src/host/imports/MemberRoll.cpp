#include "host/imports/MemberRoll.h"

#include <algorithm>
#include <vector>

#include "host/imports/MemberFields.h"
#include "host/scoring/MemberDirectory.h"
#include "platform/values/Error.h"
#include "platform/values/Text.h"

// The members as an import sees them, and how names are compared for it. The comparison asks the opposite question of a
// search: a number says already who it is, and the name has only to be one that he might be written with. So anything
// that may be the same passes (a slip, an initial, half of a double name, the sound, a part that is missing), and only
// what is clearly another name is told.
namespace tavi::host {
namespace {

/// Shorter names are too much alike for slips to be forgiven.
constexpr std::size_t kShortestForSlips = 4;

/// The folded parts of a name that blanks and hyphens separate.
std::vector<std::string> PartsOf(const std::string& name) {
  std::vector<std::string> parts;
  for (const std::string& word : Split(ReplaceAll(ReplaceAll(name, "-", " "), ".", " "), ' ')) {
    if (std::string folded = FoldName(word); !folded.empty()) parts.push_back(std::move(folded));
  }
  return parts;
}

/// A name without a key sounds like nothing.
bool SoundsAlike(const std::string& left, const std::string& right, NameKeyMode mode, const NameKeyService& keys) {
  const std::string key = keys.Key(mode, left);
  return !key.empty() && key == keys.Key(mode, right);
}

/// One part of a name, first name or surname, from the cheapest comparison to the dearest.
bool MayBeSame(const std::string& left, const std::string& right, NameKeyMode mode, const NameKeyService& keys) {
  const std::string foldedLeft = FoldName(left);
  const std::string foldedRight = FoldName(right);
  // A part that is missing says nothing against it.
  if (foldedLeft.empty() || foldedRight.empty() || FoldedEqual(foldedLeft, foldedRight)) return true;
  const bool isLong = std::min(foldedLeft.size(), foldedRight.size()) >= kShortestForSlips;
  if (isLong && WithinOneSlip(foldedLeft, foldedRight)) return true;
  if (SoundsAlike(left, right, mode, keys)) return true;
  // "Smith" and "Smith-Jones", in either direction.
  const std::vector<std::string> parts = PartsOf(right);
  return std::ranges::any_of(PartsOf(left),
                             [&](const std::string& part) { return std::ranges::count(parts, part) > 0; });
}

/// Whether one of two first names is the initial of the other.
bool IsInitial(const std::string& left, const std::string& right) {
  const std::string foldedLeft = FoldName(left);
  const std::string foldedRight = FoldName(right);
  const std::size_t shorter = std::min(TextLength(foldedLeft), TextLength(foldedRight));
  return shorter == 1 && (foldedLeft.starts_with(foldedRight) || foldedRight.starts_with(foldedLeft));
}

/// Any of the names that one goes by with any of the other's.
bool FirstNamesFit(const PersonName& stored, const PersonName& written, const NameKeyService& keys) {
  for (const std::string& left : {stored.first, stored.knownAs}) {
    for (const std::string& right : {written.first, written.knownAs}) {
      // A name that is missing says nothing here; a missing first name is looked at below.
      if (left.empty() || right.empty()) continue;
      if (IsInitial(left, right) || MayBeSame(left, right, NameKeyMode::FirstName, keys)) return true;
    }
  }
  return stored.first.empty() || written.first.empty();
}

}  // namespace

NameAgreement CompareNames(const PersonName& stored, const PersonName& written, const NameKeyService& keys) {
  const bool first = FirstNamesFit(stored, written, keys);
  const bool last = MayBeSame(stored.last, written.last, NameKeyMode::Surname, keys);
  if (first && last) return NameAgreement::Fits;
  return first || last ? NameAgreement::HalfFits : NameAgreement::OtherName;
}

bool FitsWholeName(const PersonName& stored, const std::string& written, const NameKeyService& keys) {
  const std::string clean = CleanWrittenName(written);
  std::size_t blank = clean.find(' ');
  if (blank == std::string::npos) {
    return FirstNamesFit(stored, {clean, "", ""}, keys) || MayBeSame(stored.last, clean, NameKeyMode::Surname, keys);
  }
  // "Mary Ann van Dyk": nobody can tell from the text where the surname begins, so each place is tried.
  for (; blank != std::string::npos; blank = clean.find(' ', blank + 1)) {
    const PersonName split{clean.substr(0, blank), "", clean.substr(blank + 1)};
    if (CompareNames(stored, split, keys) == NameAgreement::Fits) return true;
  }
  return false;
}

std::string StoredMember::Name() const {
  return Trim(Value("first") + " " + Value("last"));
}

std::string StoredMember::NumberAndName() const {
  return std::to_string(number) + ", " + Name();
}

MemberRoll::MemberRoll(cDatabase& store) {
  // Retired members too: a file may bring one back, and his name may be somebody's namesake.
  std::string columns = "MembershipNumber";
  for (const MemberField& field : MemberFields()) columns += std::string(", ") + field.column;
  const auto rows = store.OpenRecordset("Select " + columns + " From Members");
  for (; !rows->AtEnd(); rows->MoveNext()) {
    // Nobody can mean a row without a number; it would count as member 0 otherwise.
    if (IsNull(rows->Get("MembershipNumber"))) continue;
    StoredMember member;
    member.number = cDatabase::GetNumericField(*rows, "MembershipNumber");
    for (const MemberField& field : MemberFields()) member.values[field.name] = StoredValue(*rows, field);
    members_.emplace(member.number, std::move(member));
  }
}

const StoredMember* MemberRoll::Find(const std::string& place, std::optional<std::int32_t> number,
                                     const std::string& nationalNumber) const {
  const auto found = number ? members_.find(*number) : members_.end();
  const StoredMember* byNumber = found == members_.end() ? nullptr : &found->second;
  if (nationalNumber.empty()) return byNumber;
  // Both numbers say the same, even where other members bear that EBU number too.
  if (byNumber != nullptr && byNumber->Value("ebu_number") == nationalNumber) return byNumber;
  const StoredMember* byNational = ByNationalNumber(place, nationalNumber);
  // Only one of the two is known: a member whose EBU number is new to the club, or one who is known by that alone.
  if (byNumber == nullptr || byNational == nullptr) return byNumber == nullptr ? byNational : byNumber;
  throw Error(ErrorNumber::InvalidArgument, "tavi",
              place + ": the club number is that of member " + byNumber->NumberAndName() + ", but the EBU number " +
                  nationalNumber + " is that of member " + byNational->NumberAndName() +
                  "; expected both numbers of one member");
}

const StoredMember* MemberRoll::ByNationalNumber(const std::string& place, const std::string& nationalNumber) const {
  const StoredMember* found = nullptr;
  for (const auto& [number, member] : members_) {
    if (member.Value("ebu_number") != nationalNumber) continue;
    // All are looked through, because the first one would be a guess.
    if (found != nullptr) {
      throw Error(ErrorNumber::InvalidArgument, "tavi",
                  place + ": the EBU number " + nationalNumber + " is that of two members, " + found->NumberAndName() +
                      " and " + member.NumberAndName() + "; expected the club number, which tells them apart");
    }
    found = &member;
  }
  return found;
}

}  // namespace tavi::host
