// The public class. No rule of the club stands here: an operation finds the thread's store, turns its arguments into
// the types of the room that it belongs to, calls it, and turns back what comes.
//
// The store is held for the length of the call by the shared pointer that ThreadStore gives: what a host does
// meanwhile, such as from a message box, may take it out of the thread's slot.

#include "facade/MembershipDatabase.h"

#include "competitions/MasterPoints.h"
#include "competitions/ResultUpdate.h"
#include "facade/ThreadStore.h"
#include "handicaps/HandicapCalculation.h"
#include "handicaps/HeldSettings.h"
#include "members/AddressLists.h"
#include "members/Members.h"
#include "members/MembershipCheck.h"
#include "members/Partnerships.h"
#include "members/Walk.h"
#include "names/NameSearch.h"
#include "util/Paths.h"
#include "util/SettingsStore.h"

namespace tavi {

/// What the operations of one public object keep between calls.
// In this order: results and settings belong together, and the results refer to the settings.
class MembershipDatabase::State {
 public:
  HeldSettings handicapSettings;
  ResultUpdate results{handicapSettings};
  Walk walk;
};

namespace {

/// A caller's variables are only written when there is a row.
bool PassBack(bool found, const WalkedPartnership& walked, std::int32_t& P1Number, std::string& P1Name,
              std::int32_t& P2Number, std::string& P2Name, std::string& PartnershipName, std::string& AlternateName) {
  if (!found) return false;
  P1Number = walked.P1Number;
  P1Name = walked.P1Name;
  P2Number = walked.P2Number;
  P2Name = walked.P2Name;
  PartnershipName = walked.PartnershipName;
  AlternateName = walked.AlternateName;
  return true;
}

}  // namespace

// A new object gives its thread a new store: all objects of the thread use it from then on.
MembershipDatabase::MembershipDatabase(std::shared_ptr<const Platform> platform) : state_(std::make_unique<State>()) {
  SetThreadStore(MakeStore(std::move(platform)));
  FindDatabaseFolder(*ThreadStore());
}

// Here, where the state is a complete type.
MembershipDatabase::~MembershipDatabase() = default;

// --- Location, opening and closing -----------------------------------------------------------------------------------
//
// What the store says of its file. Looking for it opens nothing, so that a host can ask before there is one.
bool MembershipDatabase::DatabaseExists() const {
  return FileExists(ThreadStore()->DatabaseFilePath());
}

std::string MembershipDatabase::DatabaseFolder() const {
  return ThreadStore()->DatabaseFolder();
}

void MembershipDatabase::SetDatabaseFolder(const std::string& folder) {
  ThreadStore()->SetDatabaseFolder(folder);
}

std::string MembershipDatabase::DatabaseFileName() const {
  return ThreadStore()->DatabaseFilePath();
}

void MembershipDatabase::OpenDatabase() {
  ThreadStore()->OpenDB();
}

// By force: operations such as each calculation of handicaps leave a use of the file behind.
void MembershipDatabase::CloseDatabase() {
  ThreadStore()->CloseDB(true);
}

// --- Members ---------------------------------------------------------------------------------------------------------
//
// The room's functions bear the names of the operations, and are called with their namespace so that a member function
// does not call itself.
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
  return tavi::GetActiveHandicap(*ThreadStore(), MemberID);
}

void MembershipDatabase::SetHandicap(std::int32_t MemberID, double NewHandicap) {
  tavi::SetActiveHandicap(*ThreadStore(), MemberID, NewHandicap);
}

bool MembershipDatabase::IsValidMemberID(std::int32_t MemberID) {
  return tavi::IsValidMemberID(*ThreadStore(), MemberID);
}

std::int16_t MembershipDatabase::PlayersStratum(std::int32_t PlayerID) {
  return tavi::GetPlayerStratum(*ThreadStore(), PlayerID);
}

void MembershipDatabase::SetPlayersStratum(std::int32_t PlayerID, std::int16_t NewStratum) {
  tavi::SetPlayerStratum(*ThreadStore(), PlayerID, NewStratum);
}

std::string MembershipDatabase::ClubName() {
  return ThreadStore()->LatestClubName();
}

void MembershipDatabase::SetClubName(const std::string& name) {
  ThreadStore()->SetLatestClubName(name);
}

std::string MembershipDatabase::ClubID() {
  return ThreadStore()->ClubID();
}

bool MembershipDatabase::WasClubEverCalled(const std::string& ClubName) {
  return ThreadStore()->WasClubEverCalled(ClubName);
}

std::int32_t MembershipDatabase::FindMember(const std::string& Name, bool ExactMatchRequired) {
  return tavi::FindMember(*ThreadStore(), Name, ExactMatchRequired);
}

// The list's positions count from 1; without a match it stays as a new one is.
MatchList MembershipDatabase::FindNearestMatches(const std::string& Name) {
  std::vector<std::int32_t> numbers = tavi::FindNearestMatches(*ThreadStore(), Name);
  if (numbers.empty()) return {};
  return {1, std::move(numbers)};
}

// --- Walks and address lists -----------------------------------------------------------------------------------------
//
// Each object has a walk of its own, whose position it keeps between calls.
bool MembershipDatabase::GetFirstMember(std::int32_t& Number, std::string& Name, double& ParScore,
                                        std::int16_t NameFormat) {
  return state_->walk.GetFirstMember(*ThreadStore(), IncludeInactiveMembers, Number, Name, ParScore, NameFormat);
}

bool MembershipDatabase::GetNextMember(std::int32_t& Number, std::string& Name, double& ParScore,
                                       std::int16_t NameFormat) {
  return state_->walk.GetNextMember(*ThreadStore(), IncludeInactiveMembers, Number, Name, ParScore, NameFormat);
}

bool MembershipDatabase::Retired() const {
  return state_->walk.Retired();
}

bool MembershipDatabase::GetFirstEBURecord(std::string& EBUNumber, std::string& Name, std::int16_t NameFormat) {
  return state_->walk.GetFirstEBURecord(*ThreadStore(), EBUNumber, Name, NameFormat);
}

bool MembershipDatabase::GetNextEBURecord(std::string& EBUNumber, std::string& Name, const std::string& NameFormat) {
  return state_->walk.GetNextEBURecord(*ThreadStore(), EBUNumber, Name, NameFormat);
}

// ParScore stays as the caller has it.
bool MembershipDatabase::GetFirstPartnership(std::int32_t& P1Number, std::string& P1Name, std::int32_t& P2Number,
                                             std::string& P2Name, std::string& PartnershipName,
                                             std::string& AlternateName, double& /*ParScore*/,
                                             std::int16_t NameFormat) {
  WalkedPartnership walked;
  const bool found = state_->walk.GetFirstPartnership(*ThreadStore(), IncludeInactiveMembers, walked, NameFormat);
  return PassBack(found, walked, P1Number, P1Name, P2Number, P2Name, PartnershipName, AlternateName);
}

bool MembershipDatabase::GetNextPartnership(std::int32_t& P1Number, std::string& P1Name, std::int32_t& P2Number,
                                            std::string& P2Name, std::string& PartnershipName,
                                            std::string& AlternateName, double& /*ParScore*/, std::int16_t NameFormat) {
  WalkedPartnership walked;
  const bool found = state_->walk.GetNextPartnership(*ThreadStore(), walked, NameFormat);
  return PassBack(found, walked, P1Number, P1Name, P2Number, P2Name, PartnershipName, AlternateName);
}

void MembershipDatabase::EndGet() {
  state_->walk.EndGet(*ThreadStore());
}

std::string MembershipDatabase::MembersEmailAddress(std::int32_t MemberNo) {
  return tavi::MembersEmailAddress(*ThreadStore(), MemberNo);
}

std::vector<std::string> MembershipDatabase::AllEmailAddresses() {
  return tavi::AllEmailAddresses(*ThreadStore());
}

std::vector<EBUMembershipDetails> MembershipDatabase::SearchEBUList(const std::string& GivenName,
                                                                    const std::string& Surname) {
  return tavi::SearchEBUList(*ThreadStore(), GivenName, Surname);
}

std::int32_t MembershipDatabase::CheckMembershipID(std::int32_t MembershipID, const std::string& Name, double Par,
                                                   bool& Retired) {
  return tavi::CheckMembershipID(*ThreadStore(), MembershipID, Name, Par, Retired);
}

// --- Regular partnerships --------------------------------------------------------------------------------------------
//
// A pair's record is found whichever of the two numbers comes first.
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

// --- Competitions, results, master points ----------------------------------------------------------------------------
//
// What belongs to one update of a competition, from SetCompetitionEx to EndResultUpdate, is kept in the state of the
// object that began it: whether the competition counts for handicaps, and the settings for them.
std::int32_t MembershipDatabase::SetCompetitionEx(const std::string& CompName, Date CompDate, bool Individual,
                                                  std::int16_t ScoringMethod, std::int16_t ButlerType, bool IsSwiss,
                                                  bool QualiFinal, std::int16_t MasterPointsLevel,
                                                  std::int16_t NumberOfTables, std::int16_t NumberOfWinners,
                                                  const std::string& Gov, std::int16_t /*MasterPointsColour*/,
                                                  bool IncludeInHandicaps, std::int16_t NumberOfTeams) {
  // By name and not by position: fourteen arguments, many of one type, are easily exchanged.
  CompetitionRegistration registration;
  registration.CompName = CompName;
  registration.CompDate = CompDate;
  registration.Individual = Individual;
  registration.ScoringMethod = ScoringMethod;
  registration.ButlerType = ButlerType;
  registration.IsSwiss = IsSwiss;
  registration.QualiFinal = QualiFinal;
  registration.MasterPointsLevel = MasterPointsLevel;
  registration.NumberOfTables = NumberOfTables;
  registration.NumberOfWinners = NumberOfWinners;
  registration.Gov = Gov;
  registration.IncludeInHandicaps = IncludeInHandicaps;
  registration.NumberOfTeams = NumberOfTeams;
  return state_->results.SetCompetitionEx(*ThreadStore(), registration);
}

// The older form, which knows neither Swiss events nor finals nor other governing bodies.
std::int32_t MembershipDatabase::SetCompetition(const std::string& CompName, Date CompDate, bool Individual,
                                                std::int16_t ScoringMethod, std::int16_t ButlerType,
                                                std::int16_t MasterPoints, std::int16_t NumberOfTables,
                                                std::int16_t NumberOfWinners, std::int16_t MasterPointsColour,
                                                bool IncludeInHandicaps, std::int16_t NumberOfTeams) {
  return SetCompetitionEx(CompName, CompDate, Individual, ScoringMethod, ButlerType, false, false, MasterPoints,
                          NumberOfTables, NumberOfWinners, kUsualGoverningBody, MasterPointsColour, IncludeInHandicaps,
                          NumberOfTeams);
}

void MembershipDatabase::NoteCompetitorResult(std::int32_t CompetitionID, std::int32_t Player1ID,
                                              const std::string& P1Name, std::int32_t Player2ID,
                                              const std::string& P2Name, double ActualPercent, double NetPercent,
                                              double AppliedHandicap) {
  state_->results.NoteCompetitorResult(
      *ThreadStore(),
      {CompetitionID, {Player1ID, P1Name, Player2ID, P2Name}, ActualPercent, NetPercent, AppliedHandicap});
}

// The colour of an award is its own; the competition's is not asked.
void MembershipDatabase::AddMasterPoints(std::int32_t CompetitionID, std::int16_t SessionNo, std::int32_t Player1ID,
                                         const std::string& P1Name, std::int32_t Player2ID, const std::string& P2Name,
                                         double MasterPoints, std::int32_t MasterPointsColour) {
  tavi::AddMasterPoints(*ThreadStore(), {CompetitionID, SessionNo, MasterPoints, MasterPointsColour},
                        {Player1ID, P1Name, Player2ID, P2Name});
}

// Whether the competition is an individual one the file says, not the caller.
void MembershipDatabase::UpdateResult(std::int32_t CompetitionID, bool /*Individual*/, std::int32_t Player1ID,
                                      const std::string& P1Name, std::int32_t Player2ID, const std::string& P2Name,
                                      double ActualPercent, double NetPercent, std::int16_t MasterPoints,
                                      double AppliedHandicap) {
  state_->results.UpdateResult(
      *ThreadStore(),
      {CompetitionID, {Player1ID, P1Name, Player2ID, P2Name}, ActualPercent, NetPercent, AppliedHandicap},
      MasterPoints);
}

void MembershipDatabase::EndResultUpdate(std::int32_t CompetitionID) {
  tavi::EndResultUpdate(*ThreadStore(), CompetitionID);
}

// --- Handicaps -------------------------------------------------------------------------------------------------------
//
// Settings are read once in an object's life, by whatever operation needs them first.
HandiCalcSettings MembershipDatabase::HandicalcOptions() {
  return state_->handicapSettings.HandicalcOptions(*ThreadStore());
}

void MembershipDatabase::SetHandicalcOptions(const std::shared_ptr<HandiCalcSettings>& value) {
  state_->handicapSettings.SetHandicalcOptions(*ThreadStore(), value);
}

bool MembershipDatabase::HandiCalcDisabled() {
  return state_->handicapSettings.HandiCalcDisabled(*ThreadStore());
}

void MembershipDatabase::SetHandiCalcDisabled(bool value) {
  state_->handicapSettings.SetHandiCalcDisabled(*ThreadStore(), value);
}

Handicaps MembershipDatabase::CalculateHandicaps(std::int32_t PlayerID, std::int32_t PartnerID,
                                                 const std::string& CompetitionName, Date CompetitionDate,
                                                 bool Individual) {
  return tavi::CalculateHandicaps(*ThreadStore(), state_->handicapSettings,
                                  {PlayerID, PartnerID, CompetitionName, CompetitionDate, Individual});
}

void MembershipDatabase::RecalculateAllHandicaps() {
  tavi::RecalculateAllHandicaps(*ThreadStore(), state_->handicapSettings);
}

}  // namespace tavi
