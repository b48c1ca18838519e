#include "competitions/MasterPoints.h"
#include "facade/MembershipDatabaseState.h"
#include "facade/StoreSlot.h"
#include "handicaps/HandicapCalculation.h"
#include "handicaps/Recalculation.h"

namespace tavi {

std::int32_t MembershipDatabase::SetCompetitionEx(const std::string& CompName, Date CompDate, bool Individual,
                                                  std::int16_t ScoringMethod, std::int16_t ButlerType, bool IsSwiss,
                                                  bool QualiFinal, std::int16_t MasterPointsLevel,
                                                  std::int16_t NumberOfTables, std::int16_t NumberOfWinners,
                                                  const std::string& Gov, std::int16_t /*MasterPointsColour*/,
                                                  bool IncludeInHandicaps, std::int16_t NumberOfTeams) {
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

std::int32_t MembershipDatabase::SetCompetition(const std::string& CompName, Date CompDate, bool Individual,
                                                std::int16_t ScoringMethod, std::int16_t ButlerType,
                                                std::int16_t MasterPoints, std::int16_t NumberOfTables,
                                                std::int16_t NumberOfWinners, std::int16_t MasterPointsColour,
                                                bool IncludeInHandicaps, std::int16_t NumberOfTeams) {
  return SetCompetitionEx(CompName, CompDate, Individual, ScoringMethod, ButlerType, false, false, MasterPoints,
                          NumberOfTables, NumberOfWinners, "EBU", MasterPointsColour, IncludeInHandicaps,
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

void MembershipDatabase::AddMasterPoints(std::int32_t CompetitionID, std::int16_t SessionNo, std::int32_t Player1ID,
                                         const std::string& P1Name, std::int32_t Player2ID, const std::string& P2Name,
                                         double MasterPoints, std::int32_t MasterPointsColour) {
  tavi::AddMasterPoints(*ThreadStore(), {CompetitionID, SessionNo, MasterPoints, MasterPointsColour},
                        {Player1ID, P1Name, Player2ID, P2Name});
}

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

HandiCalcSettings MembershipDatabase::HandicalcOptions() {
  return state_->handicapSettings.HandicalcOptions(*ThreadStore());
}

void MembershipDatabase::SetHandicalcOptions(const std::shared_ptr<HandiCalcSettings>& settings) {
  state_->handicapSettings.SetHandicalcOptions(*ThreadStore(), settings);
}

bool MembershipDatabase::HandiCalcDisabled() {
  return state_->handicapSettings.HandiCalcDisabled(*ThreadStore());
}

void MembershipDatabase::SetHandiCalcDisabled(bool disabled) {
  state_->handicapSettings.SetHandiCalcDisabled(*ThreadStore(), disabled);
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
