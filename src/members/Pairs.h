#pragma once

#include <cstdint>
#include <string>

#include "store/cDatabase.h"

/// The public operations on regular pairs. Errors of the store pass on.
namespace tavi {

/// Adds or reactivates a pair with the mean of the players' handicaps; an active pair is left as it is. Raises "You
/// cannot partner a player with themself.".
void AddRegularPair(cDatabase& database, std::int32_t Player1MembershipNo, std::int32_t Player2MembershipNo);

/// True for an active pair; its name and handicap are passed back, "" and 50 otherwise.
bool IsRegularPair(cDatabase& database, std::int32_t Player1No, std::int32_t Player2No, std::string& PairAlias,
                   double& ParScore);

/// Makes the pair inactive; the record stays.
void DeletePair(cDatabase& database, std::int32_t MemberID1, std::int32_t MemberID2);

/// Changes nothing for an inactive pair.
void SetPairHandicap(cDatabase& database, std::int32_t MemberID1, std::int32_t MemberID2, double NewHandicap);

/// A player as the caller knows him: a member number, and a name for who is no active member.
struct NamedPlayer {
  std::int32_t MemberNo = -1;
  std::string Name;
};

/// The displayed name of two players (see cPartnership::Name): active members under their stored names, others under
/// the given ones.
std::string GetPairName(cDatabase& database, const NamedPlayer& Player1, const NamedPlayer& Player2,
                        std::int16_t NameFormat, bool TransferSurname, bool AlternateName);

}  // namespace tavi
