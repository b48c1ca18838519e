#include "facade/MembershipDatabase.h"
#include "facade/StoreSlot.h"
#include "members/ClubIdentity.h"
#include "members/Members.h"
#include "members/Pairs.h"
#include "names/NameSearch.h"

namespace tavi {

std::int32_t MembershipDatabase::AddNewMember(const std::string& FirstName, const std::string& Initials,
                                              const std::string& LastName, std::optional<double> Handicap) {
  return tavi::AddNewMember(*ThreadStore(), FirstName, Initials, LastName, Handicap);
}

std::string MembershipDatabase::GetMemberName(std::int32_t MemberNo, std::int16_t NameFormat,
                                              const std::string& DefaultName) {
  std::string unused;
  return tavi::GetNameAndEBUNumber(*ThreadStore(), MemberNo, NameFormat, unused, DefaultName);
}

std::string MembershipDatabase::GetNameAndEBUNumber(std::int32_t MemberNo, std::int16_t NameFormat,
                                                    std::string& EBUNumber, const std::string& DefaultName) {
  return tavi::GetNameAndEBUNumber(*ThreadStore(), MemberNo, NameFormat, EBUNumber, DefaultName);
}

std::string MembershipDatabase::GetEBUNoAndNames(std::int32_t MemberNo, std::string& FirstName, std::string& Initials,
                                                 std::string& LastName) {
  return tavi::GetEBUNoAndNames(*ThreadStore(), MemberNo, FirstName, Initials, LastName);
}

void MembershipDatabase::SetEBUNumber(std::int32_t MemberNo, const std::string& EBUNo) {
  tavi::SetEBUNumber(*ThreadStore(), MemberNo, EBUNo);
}

std::int32_t MembershipDatabase::EnteredNumberToClubNumber(std::int32_t EnteredNumber) {
  return tavi::EnteredNumberToClubNumber(*ThreadStore(), EnteredNumber);
}

void MembershipDatabase::DeleteMember(std::int32_t MembershipNumber) {
  tavi::DeleteMember(*ThreadStore(), MembershipNumber);
}

double MembershipDatabase::GetHandicap(std::int32_t MemberID) {
  return GetActiveHandicap(*ThreadStore(), MemberID);
}

void MembershipDatabase::SetHandicap(std::int32_t MemberID, double NewHandicap) {
  SetActiveHandicap(*ThreadStore(), MemberID, NewHandicap);
}

bool MembershipDatabase::IsValidMemberID(std::int32_t MemberID) {
  return tavi::IsValidMemberID(*ThreadStore(), MemberID);
}

std::int16_t MembershipDatabase::PlayersStratum(std::int32_t PlayerID) {
  return ThreadStore()->GetPlayerStratum(PlayerID);
}

void MembershipDatabase::SetPlayersStratum(std::int32_t PlayerID, std::int16_t NewStratum) {
  ThreadStore()->SetPlayerStratum(PlayerID, NewStratum);
}

std::string MembershipDatabase::ClubName() {
  return ThreadStore()->LatestClubName();
}

void MembershipDatabase::SetClubName(const std::string& name) {
  ThreadStore()->SetLatestClubName(name);
}

std::string MembershipDatabase::ClubID() {
  return tavi::ClubID(*ThreadStore());
}

bool MembershipDatabase::WasClubEverCalled(const std::string& ClubName) {
  return tavi::WasClubEverCalled(*ThreadStore(), ClubName);
}

std::int32_t MembershipDatabase::FindMember(const std::string& Name, bool ExactMatchRequired) {
  return tavi::FindMember(*ThreadStore(), Name, ExactMatchRequired);
}

MatchList MembershipDatabase::FindNearestMatches(const std::string& Name) {
  std::vector<std::int32_t> numbers = tavi::FindNearestMatches(*ThreadStore(), Name);
  if (numbers.empty()) return {};
  return {1, std::move(numbers)};
}

bool MembershipDatabase::AddRegularPair(std::int32_t Player1MembershipNo, std::int32_t Player2MembershipNo) {
  tavi::AddRegularPair(*ThreadStore(), Player1MembershipNo, Player2MembershipNo);
  // Always False, as scoring programs know it.
  return false;
}

bool MembershipDatabase::IsRegularPair(std::int32_t Player1No, std::int32_t Player2No, std::string& PairAlias,
                                       double& ParScore) {
  return tavi::IsRegularPair(*ThreadStore(), Player1No, Player2No, PairAlias, ParScore);
}

void MembershipDatabase::DeletePair(std::int32_t MemberID1, std::int32_t MemberID2) {
  tavi::DeletePair(*ThreadStore(), MemberID1, MemberID2);
}

void MembershipDatabase::SetPairHandicap(std::int32_t MemberID1, std::int32_t MemberID2, double NewHandicap) {
  tavi::SetPairHandicap(*ThreadStore(), MemberID1, MemberID2, NewHandicap);
}

std::string MembershipDatabase::GetPairName(std::int32_t Player1ID, const std::string& Player1Name,
                                            std::int32_t Player2ID, const std::string& Player2Name,
                                            std::int16_t NameFormat, bool TransferSurname, bool AlternateName) {
  return tavi::GetPairName(*ThreadStore(), {Player1ID, Player1Name}, {Player2ID, Player2Name}, NameFormat,
                           TransferSurname, AlternateName);
}

}  // namespace tavi
