#pragma once

#include <cstdint>

/// What stands where nothing else is known of a member.
namespace tavi {

/// The membership number of somebody who is no member.
inline constexpr std::int32_t kNoMember = -1;

/// The handicap of a player of average strength.
inline constexpr double kNeutralHandicap = 50.0;

}  // namespace tavi
