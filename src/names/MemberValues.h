#pragma once

#include <cstdint>

/// What stands where nothing else is known of a member.
namespace tavi {

/// The membership number of somebody who is no member.
inline constexpr std::int32_t kNoMember = -1;

/// The handicap of a player of average strength.
inline constexpr double kNeutralHandicap = 50.0;

/// How much of a name tells a member from the other active ones, as the column UniquenessFlag says it. 0 stands for all
/// of the name too, in files that other programs wrote.
namespace uniqueness {
inline constexpr std::int16_t kAllOfName = 1;
inline constexpr std::int16_t kSurname = 2;        ///< first name and surname
inline constexpr std::int16_t kSurnameLetter = 3;  ///< first name and the surname's first letter
inline constexpr std::int16_t kFirstName = 4;
}  // namespace uniqueness

}  // namespace tavi
