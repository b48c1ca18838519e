#include "members/Pairs.h"

#include "members/Members.h"
#include "names/MemberValues.h"
#include "names/cPartnership.h"
#include "store/OpenUse.h"

namespace tavi {
namespace {

constexpr double kMeanOfPlayers = -1.0;

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

void AddRegularPair(cDatabase& database, std::int32_t Player1MembershipNo, std::int32_t Player2MembershipNo) {
  database.MakeRegularPartnership(Player1MembershipNo, Player2MembershipNo, kMeanOfPlayers, false, "");
}

bool IsRegularPair(cDatabase& database, std::int32_t Player1No, std::int32_t Player2No, std::string& PairAlias,
                   double& ParScore) {
  bool inactive = false;
  if (database.IsRegularPartnership(Player1No, Player2No, PairAlias, ParScore, inactive) && !inactive) return true;
  PairAlias.clear();
  ParScore = kNeutralHandicap;
  return false;
}

void DeletePair(cDatabase& database, std::int32_t MemberID1, std::int32_t MemberID2) {
  database.Execute("Update Partnerships set Active = 0 Where " + cDatabase::PairWhereClause(MemberID1, MemberID2));
}

void SetPairHandicap(cDatabase& database, std::int32_t MemberID1, std::int32_t MemberID2, double NewHandicap) {
  database.Execute("Update Partnerships Set Handicap = " + cDatabase::SQLNumber(NewHandicap, "the pair's handicap") +
                   " Where " + cDatabase::PairWhereClause(MemberID1, MemberID2) + " And Active <> 0");
}

std::string GetPairName(cDatabase& database, const NamedPlayer& Player1, const NamedPlayer& Player2,
                        std::int16_t NameFormat, bool TransferSurname, bool AlternateName) {
  return WhileOpen(database, [&] {
    const cPartnership pair(PlayerOf(database, Player1), PlayerOf(database, Player2));
    return pair.Name(NameFormat, TransferSurname, AlternateName);
  });
}

}  // namespace tavi
