#pragma once

#include <cstdint>
#include <string>

#include "competitions/Competition.h"
#include "store/cDatabase.h"

/// The awards of competitions. Rows are only ever inserted and deleted. Errors of the store pass on.
namespace tavi {

/// One award of a competition, to each of its players.
struct MasterPointAward {
  std::int32_t CompetitionID = 0;
  std::int16_t SessionNo = 0;
  double MasterPoints = 0.0;
  std::int32_t Colour = 0;
};

/// Stores an award to both players, in an individual competition to the first one only. An award of 0 stores nothing
/// and does not open the store. An error leaves the store open once more, and the first player's row when it was the
/// second player's that failed.
void AddMasterPoints(cDatabase& database, const MasterPointAward& award, const Competitors& players);

/// Stores one player's award. The name is kept for the number -1 only.
void InsertMasterPointsRow(cDatabase& database, const MasterPointAward& award, std::int32_t MemberID,
                           const std::string& Name);

/// Deletes a player's awards in a competition: a member's by number, of who has the number -1 by name; nothing for -1
/// without a name.
void ClearCompetitorMasterPoints(cDatabase& database, std::int32_t CompetitionID, std::int32_t MemberID,
                                 const std::string& Name);

/// Deletes the awards of a competition that were marked for replacement and not stored again, and closes the store
/// once, for the registration of the competition.
void EndResultUpdate(cDatabase& database, std::int32_t CompetitionID);

}  // namespace tavi
