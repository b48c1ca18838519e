// Pairs of members. The row of a pair is found by its two numbers in ascending order, whoever is named first;
// HigherFirst says in which order the pair was entered, which is how its name is shown. A pair that is given up stays
// with Active = 0, and comes back with a new handicap and name.
#include "members/Partnerships.h"

#include <algorithm>

#include "members/Members.h"
#include "names/cPartnership.h"
#include "store/OpenUse.h"

namespace tavi {
namespace {

/// Active has its default, as has the seed: a new pair plays, and starts without one.
std::string InsertStatement(std::int32_t P1, std::int32_t P2, double handicap, const std::string& knownAs) {
  return "Insert into Partnerships (LowerPlayer, HigherPlayer, HigherFirst, Handicap, KnownAs) Values (" +
         std::to_string(std::min(P1, P2)) + ", " + std::to_string(std::max(P1, P2)) + ", " + (P1 > P2 ? "1" : "0") +
         ", " + cDatabase::SQLNumber(handicap, "the pair's handicap") + ", " + cDatabase::SQLString(knownAs) + ")";
}

/// With a new handicap and name, as if it were new; HigherFirst stays as it was entered first.
std::string ReactivateStatement(std::int32_t P1, std::int32_t P2, double handicap, const std::string& knownAs) {
  return "Update Partnerships Set Active = 1, Handicap = " + cDatabase::SQLNumber(handicap, "the pair's handicap") +
         ", KnownAs = " + cDatabase::SQLString(knownAs) + " Where " + PairWhereClause(P1, P2);
}

/// Numbers without a row change nothing.
void UpdatePairHandicap(cDatabase& database, double handicap, const std::string& condition) {
  database.Execute("Update Partnerships Set Handicap = " + cDatabase::SQLNumber(handicap, "the pair's handicap") +
                   " Where " + condition);
}

/// A member's stored name counts, not the given one.
std::shared_ptr<cPlayerDetails> PlayerOf(cDatabase& database, const NamedPlayer& named) {
  if (named.MemberNo != kNoMember) {
    if (auto member = FindActiveMember(database, named.MemberNo)) return member;
  }
  auto player = std::make_shared<cPlayerDetails>(database.GetPlatform().nameKeyService);
  player->MembershipNumber = named.MemberNo;
  player->SetName(named.Name);
  return player;
}

}  // namespace

// Ascending, so that a pair has one row however it was entered; HigherFirst remembers the order.
std::string PairWhereClause(std::int32_t P1, std::int32_t P2) {
  return "LowerPlayer = " + std::to_string(std::min(P1, P2)) +
         " And HigherPlayer = " + std::to_string(std::max(P1, P2));
}

bool IsRegularPartnership(cDatabase& database, std::int32_t P1, std::int32_t P2, std::string& PairName,
                          double& Handicap, bool& Inactive) {
  return WhileOpen(database, [&] {
    const auto row = database.OpenRecordset("Select * from Partnerships Where " + PairWhereClause(P1, P2));
    if (row->AtEnd()) return false;
    Inactive = !cDatabase::GetBooleanField(*row, "Active");
    PairName = cDatabase::GetTextField(*row, "KnownAs");
    Handicap = cDatabase::GetNonIntegerField(*row, "Handicap", kNeutralHandicap);
    return true;
  });
}

void MakeRegularPartnership(cDatabase& database, std::int32_t P1, std::int32_t P2, double Handicap,
                            bool ErrorIfAlreadyExists, const std::string& KnownAs) {
  WhileOpen(database, [&] {
    // Halved before they are added: the sum of two enormous handicaps would be no number.
    const double handicap =
        Handicap < 0.0 ? GetHandicap(database, P1) / 2.0 + GetHandicap(database, P2) / 2.0 : Handicap;
    // Behind the handicaps, whose errors come first.
    if (P1 == P2) throw Error(ErrorNumber::Component, kStoreSource, "You cannot partner a player with themself.");

    // What the row says is not needed, only whether it is there and active.
    std::string storedName;
    double storedHandicap = 0.0;
    bool inactive = false;
    // An active pair is left as it is, with its own handicap and name.
    if (!IsRegularPartnership(database, P1, P2, storedName, storedHandicap, inactive)) {
      database.Execute(InsertStatement(P1, P2, handicap, KnownAs));
    } else if (inactive) {
      database.Execute(ReactivateStatement(P1, P2, handicap, KnownAs));
    } else if (ErrorIfAlreadyExists) {
      throw Error(ErrorNumber::Component, kStoreSource, "Partnership already exists");
    }
  });
}

void AddRegularPair(cDatabase& database, std::int32_t Player1MembershipNo, std::int32_t Player2MembershipNo) {
  MakeRegularPartnership(database, Player1MembershipNo, Player2MembershipNo, kMeanOfPlayers, false, "");
}

// The results are set in any case, so that a caller's variables never keep those of the pair before.
bool IsRegularPair(cDatabase& database, std::int32_t Player1No, std::int32_t Player2No, std::string& PairAlias,
                   double& ParScore) {
  bool inactive = false;
  if (IsRegularPartnership(database, Player1No, Player2No, PairAlias, ParScore, inactive) && !inactive) return true;
  PairAlias.clear();
  ParScore = kNeutralHandicap;
  return false;
}

void DeletePair(cDatabase& database, std::int32_t MemberID1, std::int32_t MemberID2) {
  database.Execute("Update Partnerships set Active = 0 Where " + PairWhereClause(MemberID1, MemberID2));
}

void SetPairHandicap(cDatabase& database, std::int32_t MemberID1, std::int32_t MemberID2, double NewHandicap) {
  UpdatePairHandicap(database, NewHandicap, PairWhereClause(MemberID1, MemberID2) + " And Active <> 0");
}

void StorePairHandicap(cDatabase& database, std::int32_t P1, std::int32_t P2, double handicap) {
  UpdatePairHandicap(database, handicap, PairWhereClause(P1, P2));
}

// Both places are looked at: a player is the lower number of some pairs and the higher of others.
void DeletePairsOf(cDatabase& database, std::int32_t memberNumber) {
  const std::string number = std::to_string(memberNumber);
  database.Execute("Update Partnerships set Active = 0 where LowerPlayer = " + number + " Or HigherPlayer = " + number);
}

std::string GetPairName(cDatabase& database, const NamedPlayer& Player1, const NamedPlayer& Player2,
                        std::int16_t NameFormat, bool TransferSurname, bool AlternateName) {
  return WhileOpen(database, [&] {
    const cPartnership pair(PlayerOf(database, Player1), PlayerOf(database, Player2));
    return pair.Name(NameFormat, TransferSurname, AlternateName);
  });
}

}  // namespace tavi
