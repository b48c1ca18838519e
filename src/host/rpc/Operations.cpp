#include "host/rpc/Operations.h"

#include <iterator>

namespace tavi::host {
namespace {

using Club = MembershipDatabase;

std::vector<Operation> LocationOperations() {
  return {
      MakeOperation<bool>("get_IncludeInactiveMembers", [](const Club& club) { return club.IncludeInactiveMembers; },
                          {}),
      [] {
        Operation put =
            MakeOperation<void, bool>("put_IncludeInactiveMembers",
                                      [](Club& club, bool value) { club.IncludeInactiveMembers = value; }, {"value"});
        put.takesValue = true;
        return put;
      }(),
      Get("DatabaseExists", &Club::DatabaseExists),
      Get("DatabaseFolder", &Club::DatabaseFolder),
      Put("DatabaseFolder", &Club::SetDatabaseFolder, "value"),
      Get("DatabaseFileName", &Club::DatabaseFileName),
      Method("OpenDatabase", &Club::OpenDatabase),
      Method("CloseDatabase", &Club::CloseDatabase),
  };
}

std::vector<Operation> MemberOperations() {
  return {
      Method("AddNewMember", &Club::AddNewMember, "FirstName", "Initials", "LastName",
             ArgumentName("Handicap", nullptr)),
      Method("GetMemberName", &Club::GetMemberName, "MemberNo", "NameFormat", ArgumentName("DefaultName", "")),
      Method("GetNameAndEBUNumber", &Club::GetNameAndEBUNumber, "MemberNo", "NameFormat", "EBUNumber",
             ArgumentName("DefaultName", "")),
      Method("GetEBUNoAndNames", &Club::GetEBUNoAndNames, "MemberNo", "FirstName", "Initials", "LastName"),
      Method("SetEBUNumber", &Club::SetEBUNumber, "MemberNo", "EBUNo"),
      Method("EnteredNumberToClubNumber", &Club::EnteredNumberToClubNumber, "EnteredNumber"),
      Method("DeleteMember", &Club::DeleteMember, "MembershipNumber"),
      Method("GetHandicap", &Club::GetHandicap, "MemberID"),
      Method("SetHandicap", &Club::SetHandicap, "MemberID", "NewHandicap"),
      Method("IsValidMemberID", &Club::IsValidMemberID, "MemberID"),
      Get("PlayersStratum", &Club::PlayersStratum, "PlayerID"),
      Put("PlayersStratum", &Club::SetPlayersStratum, "PlayerID", "NewStratum"),
      Get("ClubName", &Club::ClubName),
      Put("ClubName", &Club::SetClubName, "value"),
      Get("ClubID", &Club::ClubID),
      Method("WasClubEverCalled", &Club::WasClubEverCalled, "ClubName"),
      Method("FindMember", &Club::FindMember, "Name", ArgumentName("ExactMatchRequired", false)),
      Method("FindNearestMatches", &Club::FindNearestMatches, "Name"),
  };
}

std::vector<Operation> WalkOperations() {
  return {
      Method("GetFirstMember", &Club::GetFirstMember, "Number", "Name", "ParScore", "NameFormat"),
      Method("GetNextMember", &Club::GetNextMember, "Number", "Name", "ParScore", "NameFormat"),
      Get("Retired", &Club::Retired),
      Method("GetFirstEBURecord", &Club::GetFirstEBURecord, "EBUNumber", "Name", "NameFormat"),
      Method("GetNextEBURecord", &Club::GetNextEBURecord, "EBUNumber", "Name", "NameFormat"),
      Method("GetFirstPartnership", &Club::GetFirstPartnership, "P1Number", "P1Name", "P2Number", "P2Name",
             "PartnershipName", "AlternateName", "ParScore", "NameFormat"),
      Method("GetNextPartnership", &Club::GetNextPartnership, "P1Number", "P1Name", "P2Number", "P2Name",
             "PartnershipName", "AlternateName", "ParScore", "NameFormat"),
      Method("EndGet", &Club::EndGet),
      Get("MembersEmailAddress", &Club::MembersEmailAddress, "MemberNo"),
      Get("AllEmailAddresses", &Club::AllEmailAddresses),
      Method("SearchEBUList", &Club::SearchEBUList, "GivenName", "Surname"),
      Method("CheckMembershipID", &Club::CheckMembershipID, "MembershipID", "Name", "Par", "Retired"),
  };
}

std::vector<Operation> PairOperations() {
  return {
      Method("AddRegularPair", &Club::AddRegularPair, "Player1MembershipNo", "Player2MembershipNo"),
      Method("IsRegularPair", &Club::IsRegularPair, "Player1No", "Player2No", "PairAlias", "ParScore"),
      Method("DeletePair", &Club::DeletePair, "MemberID1", "MemberID2"),
      Method("SetPairHandicap", &Club::SetPairHandicap, "MemberID1", "MemberID2", "NewHandicap"),
      Method("GetPairName", &Club::GetPairName, "Player1ID", "Player1Name", "Player2ID", "Player2Name", "NameFormat",
             ArgumentName("TransferSurname", false), ArgumentName("AlternateName", false)),
  };
}

std::vector<Operation> CompetitionOperations() {
  return {
      Method("SetCompetitionEx", &Club::SetCompetitionEx, "CompName", "CompDate", "Individual", "ScoringMethod",
             "ButlerType", "IsSwiss", "QualiFinal", "MasterPointsLevel", "NumberOfTables", "NumberOfWinners", "Gov",
             "MasterPointsColour", "IncludeInHandicaps", ArgumentName("NumberOfTeams", 0)),
      Method("SetCompetition", &Club::SetCompetition, "CompName", "CompDate", "Individual", "ScoringMethod",
             "ButlerType", "MasterPoints", "NumberOfTables", "NumberOfWinners", "MasterPointsColour",
             "IncludeInHandicaps", ArgumentName("NumberOfTeams", 0)),
      Method("NoteCompetitorResult", &Club::NoteCompetitorResult, "CompetitionID", "Player1ID", "P1Name", "Player2ID",
             "P2Name", "ActualPercent", "NetPercent", ArgumentName("AppliedHandicap", -1.0)),
      Method("AddMasterPoints", &Club::AddMasterPoints, "CompetitionID", "SessionNo", "Player1ID", "P1Name",
             "Player2ID", "P2Name", "MasterPoints", "MasterPointsColour"),
      Method("UpdateResult", &Club::UpdateResult, "CompetitionID", "Individual", "Player1ID", "P1Name", "Player2ID",
             "P2Name", "ActualPercent", "NetPercent", "MasterPoints", ArgumentName("AppliedHandicap", -1.0)),
      Method("EndResultUpdate", &Club::EndResultUpdate, "CompetitionID"),
  };
}

std::vector<Operation> HandicapOperations() {
  return {
      Get("HandicalcOptions", &Club::HandicalcOptions),
      Put("HandicalcOptions", &Club::SetHandicalcOptions, "value"),
      Get("HandiCalcDisabled", &Club::HandiCalcDisabled),
      Put("HandiCalcDisabled", &Club::SetHandiCalcDisabled, "value"),
      Method("CalculateHandicaps", &Club::CalculateHandicaps, "PlayerID", "PartnerID", "CompetitionName",
             "CompetitionDate", "Individual"),
      Method("RecalculateAllHandicaps", &Club::RecalculateAllHandicaps),
  };
}

/// The operations of the settings themselves. As an object of settings is a value here, it is the first argument.
std::vector<Operation> SettingsOperations() {
  using Settings = HandiCalcSettings;
  return {
      MakeOperation<Settings, Settings>("HandiCalcSettings.Clone",
                                        [](Club&, const Settings& settings) { return settings.Clone(); }, {"settings"}),
      MakeOperation<Settings>("HandiCalcSettings.SetDefaults",
                              [](Club&) {
                                Settings settings;
                                settings.SetDefaults();
                                return settings;
                              },
                              {}),
      MakeOperation<bool, Settings>(
          "HandiCalcSettings.get_IncludesRegularPairAdjustment",
          [](Club&, const Settings& settings) { return settings.IncludesRegularPairAdjustment(); }, {"settings"}),
      MakeOperation<double, Settings, double>(
          "HandiCalcSettings.AdjustRegularPair",
          [](Club&, const Settings& settings, double gross) { return settings.AdjustRegularPair(gross); },
          {"settings", "GrossHandicap"}),
  };
}

}  // namespace

std::vector<Operation> AllOperations() {
  std::vector<Operation> all;
  for (auto group : {LocationOperations(), MemberOperations(), WalkOperations(), PairOperations(),
                     CompetitionOperations(), HandicapOperations(), SettingsOperations()}) {
    all.insert(all.end(), std::make_move_iterator(group.begin()), std::make_move_iterator(group.end()));
  }
  return all;
}

}  // namespace tavi::host
