#pragma once

#include <cstdint>
#include <string>

#include "names/MemberValues.h"
#include "store/cDatabase.h"

/// Regular partnerships: two members who play together, with a handicap and perhaps a name of their own. A row is known
/// by the two numbers in ascending order, and never deleted. Errors of the store pass on.
namespace tavi {

/// The condition for a pair's row, "LowerPlayer = 3 And HigherPlayer = 7", in whatever order the two are given.
[[nodiscard]] std::string PairWhereClause(std::int32_t P1, std::int32_t P2);

/// True when the pair has a row, active or not; then the three results are set.
bool IsRegularPartnership(cDatabase& database, std::int32_t P1, std::int32_t P2, std::string& PairName,
                          double& Handicap, bool& Inactive);

/// As the handicap of a new pair: the mean of the players' ones.
inline constexpr double kMeanOfPlayers = -1.0;

/// Adds or reactivates a pair; a handicap below 0 becomes the mean of the players' ones. Raises "You cannot partner a
/// player with themself." and, when asked to, "Partnership already exists".
void MakeRegularPartnership(cDatabase& database, std::int32_t P1, std::int32_t P2, double Handicap,
                            bool ErrorIfAlreadyExists, const std::string& KnownAs);

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
/// Stores the handicap of a pair, an inactive one's too.
void StorePairHandicap(cDatabase& database, std::int32_t P1, std::int32_t P2, double handicap);

/// Makes every partnership of a player inactive.
void DeletePairsOf(cDatabase& database, std::int32_t memberNumber);

/// A player as the caller knows him: a member number, and a name for who is no active member.
struct NamedPlayer {
  std::int32_t MemberNo = kNoMember;
  std::string Name;
};

/// The displayed name of two players (see cPartnership::Name): active members under their stored names, others under
/// the given ones.
std::string GetPairName(cDatabase& database, const NamedPlayer& Player1, const NamedPlayer& Player2,
                        std::int16_t NameFormat, bool TransferSurname, bool AlternateName);

}  // namespace tavi
