#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "names/MemberValues.h"
#include "names/NameText.h"
#include "platform/Platform.h"
#include "platform/values/Value.h"

namespace tavi {

/// One player's name record: the name in three parts with its sound-alike keys, and what is known of the member. The
/// keys always belong to the current first name and surname. Changing the name can raise the name-key service's error.
class cPlayerDetails {
 public:
  /// An empty record, as after Clear.
  explicit cPlayerDetails(std::shared_ptr<const NameKeyService> nameKeyService);

  /// The familiar name; may be empty.
  std::string KnownAs;
  /// The club's member number; kNoMember: not a known member.
  std::int32_t MembershipNumber = kNoMember;
  /// In per cent.
  double Handicap = kNeutralHandicap;
  /// The match weight given by a name search; null otherwise. Not copied by Clone.
  Value CandidateWeight;
  /// The governing body's number, as text.
  std::string EBUNumber;
  /// How much of the name tells this player apart (names/MemberValues.h); for the first name the familiar name will do.
  std::int16_t UniquenessFlag = uniqueness::kFirstName;

  /// Back to an empty record: no number, handicap 50, uniqueness flag 4.
  void Clear();
  /// A new record with the same content, without the candidate weight.
  [[nodiscard]] std::shared_ptr<cPlayerDetails> Clone() const;
  /// KnownAs, or the first name without one.
  [[nodiscard]] const std::string& FamiliarName() const;

  [[nodiscard]] const std::string& FirstName() const { return parts_.FirstName; }
  [[nodiscard]] const std::string& Initials() const { return parts_.Initials; }
  [[nodiscard]] const std::string& Surname() const { return parts_.Surname; }
  [[nodiscard]] const PlayerNameParts& NameParts() const { return parts_; }
  /// The texts are kept as given.
  void SetFirstName(const std::string& firstName);
  void SetInitials(const std::string& initials);
  void SetSurname(const std::string& surname);
  /// The sound-alike keys of first name and surname.
  [[nodiscard]] const std::string& FuzzedFirstName() const { return fuzzedFirstName_; }
  [[nodiscard]] const std::string& FuzzedSurname() const { return fuzzedSurname_; }

  /// Takes the parts of a full name (SplitName).
  void SetName(std::string_view FullName);
  void SetNameComponents(const std::string& FirstName, const std::string& Initials, const std::string& Surname);

  /// True when the surnames are equal ignoring case.
  [[nodiscard]] bool SameSurnameAs(const cPlayerDetails& other) const;
  /// The name as a format shows it: 1 first name, 2 initials, 3 surname, 4 first name and initials run together,
  /// 5 and 6 first name and surname, 8 first name and first letter of the surname, 9 familiar name, 10 "Surname, First
  /// Initials", 0, 7 and all others in full. 6, 8 and 9 show more where UniquenessFlag asks for it.
  [[nodiscard]] std::string Name(std::int16_t NameFormat) const;
  /// How well another record (typically a typed name) fits this one: 121 to 444; 0: it is not this player.
  [[nodiscard]] std::int16_t MatchWeight(const cPlayerDetails& other) const;

 private:
  void RefreshKeys();

  std::shared_ptr<const NameKeyService> nameKeyService_;
  PlayerNameParts parts_;
  std::string fuzzedFirstName_;
  std::string fuzzedSurname_;
};

}  // namespace tavi
