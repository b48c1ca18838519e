#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "names/MemberValues.h"
#include "store/cDatabase.h"
#include "util/SettingsStore.h"

/// What a competition is, and who plays in it.
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

/// What kind of competition a competition is. The defaults are those of one that is not known.
struct CompetitionAttributes {
  bool Individual = false;  ///< scored for single players, not pairs
  bool IsTeams = false;
  bool IsSwiss = false;
  std::string NatCode = kUsualGoverningBody;  ///< the governing body under whose rules it is held
};

/// The attributes of a competition; the defaults when there is none of that identifier. Errors of the store pass on.
CompetitionAttributes ReadCompetitionAttributes(cDatabase& database, std::int32_t CompetitionID);

}  // namespace tavi
