#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "names/cPlayerDetails.h"

/// How well two writings of a name agree. The scores are combined to the weight by which found members are sorted.
namespace tavi {

/// The scores of one part of a name.
namespace name_score {
inline constexpr std::int16_t kSame = 4;
inline constexpr std::int16_t kSoundsAlike = 3;
inline constexpr std::int16_t kAbbreviation = 2;
inline constexpr std::int16_t kNothingKnown = 1;
inline constexpr std::int16_t kDifferent = 0;
}  // namespace name_score

/// Compares one name part with its sound-alike key: 4 the same (ignoring case), 3 sounding alike, 2 one is the initial
/// of the other, 1 nothing is known (one is empty; two empty ones are the same), 0 different.
std::int16_t CompareNamePart(std::string_view Own, std::string_view OwnKey, std::string_view Other,
                             std::string_view OtherKey);

/// Compares initials, ignoring case: 4 the same, 2 the shorter ones occur in that order in the longer ones, 1 `Own` is
/// empty, 0 different. Not symmetric: an empty `Other` scores 2.
std::int16_t CompareInitials(std::string_view Own, std::string_view Other);

/// 100 x surname + 10 x first name + initials: the surname weighs most.
std::int16_t CombineMatchScores(std::int16_t FirstNameScore, std::int16_t InitialsScore, std::int16_t SurnameScore);

/// Why a member is offered for a typed name, in words: "same name", or what differs, the surname first: "surname sounds
/// alike, first name is short for Katherine". For two names that do not match (MatchWeight 0) "different name".
[[nodiscard]] std::string MatchReason(const cPlayerDetails& typed, const cPlayerDetails& member);

/// How well a member's name fits a typed one, and why (MatchReason).
struct NameMatch {
  std::int16_t weight = 0;  ///< 121 to 444; 0: another name
  std::string reason;
};

/// The parts of a member's name.
struct MemberName {
  std::string first;
  std::string initials;
  std::string last;
};

/// Compares a typed full name with a member's. Errors of the platform's name-key service pass on.
[[nodiscard]] NameMatch CompareNames(const std::shared_ptr<const NameKeyService>& keys, const std::string& typed,
                                     const MemberName& member);

}  // namespace tavi
