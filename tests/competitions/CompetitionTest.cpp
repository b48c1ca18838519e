#include <gtest/gtest.h>

#include "competitions/Competition.h"
#include "facade/ThreadStore.h"
#include "facade/support/Club.h"
#include "platform/values/Convert.h"

namespace tavi {
namespace {

using testing::Club;
using Texts = std::vector<std::string>;

const Date kEvening = Date::FromCivil(2025, 9, 17);

/// What a registration may vary in these tests.
struct Registered {
  std::string name = "Wednesday";
  Date date = kEvening;
  bool individual = false;
  bool isSwiss = false;
  bool qualiFinal = false;
  std::string gov = "EBU";
  std::int16_t colour = 0;
  bool includeInHandicaps = true;
  std::int16_t teams = 0;
};

class CompetitionTest : public ::testing::Test {
 protected:
  ~CompetitionTest() override { club_->CloseDatabase(); }

  std::int32_t Register(const Registered& how = {}) {
    return club_->SetCompetitionEx(how.name, how.date, how.individual, 2, 3, how.isSwiss, how.qualiFinal, 4, 5, 6,
                                   how.gov, how.colour, how.includeInHandicaps, how.teams);
  }
  std::string Stored(const std::string& column) { return club_.Rows("Select " + column + " From Competitions").at(0); }

  Club club_;
};

TEST_F(CompetitionTest, ANewNameAndDateMakesOneRowWithAllAttributes) {
  const std::int32_t id = Register({.isSwiss = true, .qualiFinal = true, .gov = "WBU", .teams = 8});
  EXPECT_EQ(club_.Rows("Select ID, CompetitionName, CompetitionDate, ScoringMethod, ButlerType, MasterPointsType, "
                       "NumberOfTables, NumberOfWinners, MasterPointsColour, IsTeams, IsSwiss, IsExternal, QualiFinal, "
                       "NatCode From Competitions"),
            (Texts{std::to_string(id) + " | Wednesday | 2025-09-17 | 2 | 3 | 4 | 5 | 6 | 0 | True | True | False | "
                                        "True | WBU"}));
}

TEST_F(CompetitionTest, TheSameNameAndDateIsTheSameCompetition) {
  const std::int32_t id = Register();
  EXPECT_EQ(Register({.gov = "SBU"}), id);
  EXPECT_EQ(club_.Rows("Select ID, NatCode From Competitions"), (Texts{std::to_string(id) + " | SBU"}));
}

TEST_F(CompetitionTest, TheSameNameOnAnotherDateIsAnotherCompetition) {
  EXPECT_NE(Register(), Register({.date = Date::FromCivil(2025, 9, 24)}));
  EXPECT_EQ(club_.Rows("Select ID From Competitions").size(), 2U);
}

TEST_F(CompetitionTest, AnApostropheInTheNameIsFoundAgain) {
  const Registered captains{.name = "Captain's Cup"};
  EXPECT_EQ(Register(captains), Register(captains));
  EXPECT_EQ(Stored("CompetitionName"), "Captain's Cup");
}

TEST_F(CompetitionTest, TheNameIsStoredUnchangedWhileTheLookUpEscapesPercentSigns) {
  const Registered half{.name = "50% Cup"};
  const std::int32_t first = Register(half);
  EXPECT_EQ(Stored("CompetitionName"), "50% Cup");
  EXPECT_NE(Register(half), first) << "such a competition is registered anew each time";
}

TEST_F(CompetitionTest, RegisteringAgainClearsResultsAndMarksAwards) {
  const std::int32_t other = Register({.name = "Other"});
  const std::int32_t id = Register();
  for (const std::int32_t competition : {id, other}) {
    club_->NoteCompetitorResult(competition, 1, "", 2, "", 55.0, 55.0);
    club_->AddMasterPoints(competition, 1, 1, "", 2, "", 12.0, 0);
  }
  Register();
  const std::string count = "Select count(*) From Results Where Competition = ";
  EXPECT_EQ(ToInt32(club_.Single(count + std::to_string(id))), 0);
  EXPECT_EQ(ToInt32(club_.Single(count + std::to_string(other))), 1);
  const std::string marks = "Select RecordUpdated From MasterPoints Where CompetitionID = ";
  EXPECT_EQ(club_.Rows(marks + std::to_string(id)), (Texts{"0", "0"}));
  EXPECT_EQ(club_.Rows(marks + std::to_string(other)), (Texts{"1", "1"}));
}

TEST_F(CompetitionTest, OnlyAPositiveNumberOfTeamsMakesATeamsEvent) {
  Register();
  EXPECT_EQ(Stored("IsTeams"), "False");
  Register({.teams = 1});
  EXPECT_EQ(Stored("IsTeams"), "True");
  Register({.teams = -1});
  EXPECT_EQ(Stored("IsTeams"), "False");
}

TEST_F(CompetitionTest, TheStoredColourIsZeroWhateverIsPassed) {
  Register({.colour = 4});
  EXPECT_EQ(Stored("MasterPointsColour"), "0");
  club_.Execute("Update Competitions Set MasterPointsColour = 3");
  Register({.colour = 4});
  EXPECT_EQ(Stored("MasterPointsColour"), "0");
}

TEST_F(CompetitionTest, ACompetitionIsNeverStoredAsExternal) {
  Register();
  club_.Execute("Update Competitions Set IsExternal = True");
  EXPECT_EQ(Stored("IsExternal"), "True");
  Register();
  EXPECT_EQ(Stored("IsExternal"), "False");
}

TEST_F(CompetitionTest, TruthsInNumberColumnsAreStoredAsMinusOne) {
  Register({.individual = true, .includeInHandicaps = true});
  EXPECT_EQ(Stored("Individual"), "-1");
  EXPECT_EQ(Stored("IncludeInHandicapCalculations"), "-1");
  Register({.individual = false, .includeInHandicaps = false});
  EXPECT_EQ(Stored("Individual"), "0");
  EXPECT_EQ(Stored("IncludeInHandicapCalculations"), "0");
}

TEST_F(CompetitionTest, TheOlderFormStoresNoSwissNoFinalAndTheEBU) {
  const std::int32_t id = Register({.isSwiss = true, .qualiFinal = true, .gov = "WBU"});
  EXPECT_EQ(club_->SetCompetition("Wednesday", kEvening, true, 1, 2, 77, 3, 4, 5, true, 6), id);
  EXPECT_EQ(club_.Rows("Select Individual, ScoringMethod, ButlerType, MasterPointsType, NumberOfTables, "
                       "NumberOfWinners, MasterPointsColour, IsTeams, IsSwiss, QualiFinal, NatCode From Competitions"),
            (Texts{"-1 | 1 | 2 | 77 | 3 | 4 | 0 | True | False | False | EBU"}));
}

TEST_F(CompetitionTest, TheFileStaysOpenUntilTheUpdateEnds) {
  const std::int32_t id = Register();
  EXPECT_EQ(club_.OpenCount(), 1);
  club_->EndResultUpdate(id);
  EXPECT_EQ(club_.OpenCount(), 0);
}

TEST_F(CompetitionTest, RegisteringTwiceLeavesTheFileOpenAfterOneEnd) {
  Register();
  const std::int32_t id = Register();
  EXPECT_EQ(club_.OpenCount(), 2);
  club_->EndResultUpdate(id);
  EXPECT_EQ(club_.OpenCount(), 1);
}

TEST_F(CompetitionTest, AFailedRegistrationLeavesTheFileOpenAndItsFirstStepsDone) {
  const std::int32_t id = Register();
  club_->NoteCompetitorResult(id, 1, "", 2, "", 55.0, 55.0);
  club_->CloseDatabase();
  club_.Watch().FailOn("Update MasterPoints set RecordUpdated", Error(ErrorNumber::ProviderFailure, "disk", "full"));
  try {
    Register();
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_EQ(error.Source(), "disk");
  }
  EXPECT_EQ(club_.OpenCount(), 1);
  EXPECT_TRUE(club_.Rows("Select * From Results").empty());
}

TEST_F(CompetitionTest, RegistrationReadsTheHandicapSettingsOnce) {
  Register();
  Register();
  EXPECT_EQ(club_.Watch().CountOf("HandicalcSettings"), 1);
}

TEST_F(CompetitionTest, AttributesOfAnUnknownCompetitionAreTheDefaults) {
  const CompetitionAttributes attributes = ReadCompetitionAttributes(*ThreadStore(), 77);
  EXPECT_FALSE(attributes.Individual);
  EXPECT_FALSE(attributes.IsTeams);
  EXPECT_FALSE(attributes.IsSwiss);
  EXPECT_EQ(attributes.NatCode, "EBU");
  EXPECT_EQ(club_.OpenCount(), 0);
}

TEST_F(CompetitionTest, AttributesAreReadFromTheRow) {
  const std::int32_t id = Register({.individual = true, .isSwiss = true, .gov = " WBU ", .teams = 4});
  const CompetitionAttributes attributes = ReadCompetitionAttributes(*ThreadStore(), id);
  EXPECT_TRUE(attributes.Individual);
  EXPECT_TRUE(attributes.IsTeams);
  EXPECT_TRUE(attributes.IsSwiss);
  EXPECT_EQ(attributes.NatCode, "WBU");
  for (const char* column : {"Individual", "IsTeams", "IsSwiss"}) {
    club_.Execute("Update Competitions Set Individual = 0, IsTeams = 0, IsSwiss = 0");
    club_.Execute(std::string("Update Competitions Set ") + column + " = -1");
    const CompetitionAttributes one = ReadCompetitionAttributes(*ThreadStore(), id);
    EXPECT_EQ(one.Individual, column == std::string("Individual"));
    EXPECT_EQ(one.IsTeams, column == std::string("IsTeams"));
    EXPECT_EQ(one.IsSwiss, column == std::string("IsSwiss"));
  }
}

TEST_F(CompetitionTest, ARowWithoutGoverningBodyBelongsToTheEBU) {
  const std::int32_t id = Register();
  club_.Execute("Update Competitions Set NatCode = Null");
  EXPECT_EQ(ReadCompetitionAttributes(*ThreadStore(), id).NatCode, "EBU");
}

}  // namespace
}  // namespace tavi
