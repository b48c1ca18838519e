#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "names/MemberValues.h"

namespace tavi {

/// Characters of a competitor's or a competition's name in the file.
inline constexpr std::size_t kLongestName = 255;

/// The pair, or the player, that a result or an award belongs to. Who is no member has the number -1 and is known by
/// name; in an individual competition the second player is not looked at.
struct Competitors {
  std::int32_t Player1ID = kNoMember;
  std::string P1Name;
  std::int32_t Player2ID = kNoMember;
  std::string P2Name;
};

}  // namespace tavi
