#include <gtest/gtest.h>

#include "facade/ThreadStore.h"
#include "facade/support/Club.h"
#include "members/Partnerships.h"

namespace tavi {
namespace {

using testing::Club;
using Texts = std::vector<std::string>;

/// Results noted in a club with members 1 to 4, of whom 1 and 2 are a regular pair.
class ResultNotesTest : public ::testing::Test {
 protected:
  ResultNotesTest() {
    club_->OpenDatabase();
    club_->AddNewMember("Anne", "", "Hill", 41.0);
    club_->AddNewMember("Bob", "", "Dale", 42.0);
    club_->AddNewMember("Cat", "", "Moor", 43.0);
    club_->AddNewMember("Dan", "", "Wood", 44.0);
    MakeRegularPartnership(*ThreadStore(), 1, 2, 45.0, false, "");
    club_->CloseDatabase();
  }
  ~ResultNotesTest() override { club_->CloseDatabase(); }

  std::int32_t Register(bool inHandicaps, bool individual = false, std::int16_t scoringMethod = 0) {
    return club_->SetCompetition("Wednesday", Date::FromCivil(2025, 9, 17), individual, scoringMethod, 0, 0, 5, 2, 0,
                                 inHandicaps);
  }
  void DisableCalculation() {
    static_cast<void>(club_->HandicalcOptions());
    club_->SetHandiCalcDisabled(true);
  }
  Texts Results() { return club_.Rows("Select Player, Partner, ActualPercentage, NetPercentage From Results"); }
  Texts MemberHandicaps() { return club_.Rows("Select Handicap From Members Order By MembershipNumber"); }
  Texts PairHandicaps() { return club_.Rows("Select Handicap From Partnerships"); }

  Club club_;
};

TEST_F(ResultNotesTest, AResultIsStored) {
  const std::int32_t id = Register(false);
  club_->NoteCompetitorResult(id, 1, "", 2, "", 55.25, 60.5);
  EXPECT_EQ(club_.Rows("Select Competition, Player, Partner, ActualPercentage, NetPercentage From Results"),
            (Texts{std::to_string(id) + " | 1 | 2 | 55.25 | 60.5"}));
}

TEST_F(ResultNotesTest, PercentagesAndAppliedHandicapsAreReadBackAsTheyWereStored) {
  DisableCalculation();
  club_->NoteCompetitorResult(Register(true), 1, "", 2, "", 100.0 / 3.0, 0.1 + 0.2, 200.0 / 3.0);
  EXPECT_EQ(club_.Single("Select ActualPercentage From Results"), Value(100.0 / 3.0));
  EXPECT_EQ(club_.Single("Select NetPercentage From Results"), Value(0.1 + 0.2));
  EXPECT_EQ(club_.Single("Select Handicap From Members Where MembershipNumber = 1"), Value(200.0 / 3.0));
  EXPECT_EQ(club_.Single("Select Handicap From Partnerships"), Value(200.0 / 3.0));
}

TEST_F(ResultNotesTest, ACompetitionThatDoesNotCountTouchesNoHandicap) {
  club_->NoteCompetitorResult(Register(false), 1, "", 2, "", 55.0, 60.0, 52.5);
  EXPECT_EQ(MemberHandicaps(), (Texts{"41", "42", "43", "44"}));
  EXPECT_EQ(PairHandicaps(), (Texts{"45"}));
}

TEST_F(ResultNotesTest, BeforeAnyRegistrationNoHandicapIsTouched) {
  club_->NoteCompetitorResult(77, 1, "", 2, "", 55.0, 60.0, 52.5);
  EXPECT_EQ(Results().size(), 1U);
  EXPECT_EQ(MemberHandicaps(), (Texts{"41", "42", "43", "44"}));
}

TEST_F(ResultNotesTest, TheLatestRegistrationCountsAlsoAfterItsEnd) {
  const std::int32_t id = Register(true);
  club_->EndResultUpdate(id);
  club_->NoteCompetitorResult(id, 1, "", 2, "", 55.0, 60.0);
  EXPECT_EQ(MemberHandicaps(), (Texts{"55", "55", "43", "44"}));
}

TEST_F(ResultNotesTest, ARegistrationThatFailsCountsAsTheLatest) {
  const std::int32_t id = Register(true);
  const Error fault(ErrorNumber::ProviderFailure, "disk", "bad");
  club_.Watch().FailOn("Select * from Competitions Where CompetitionName", fault);
  EXPECT_THROW(Register(false), Error);
  club_->NoteCompetitorResult(id, 1, "", 2, "", 55.0, 60.0);
  EXPECT_EQ(MemberHandicaps(), (Texts{"41", "42", "43", "44"}));
}

TEST_F(ResultNotesTest, AfterARegistrationWithoutSettingsANoteFailsAndStoresNothing) {
  club_.Watch().FailOn("HandicalcSettings", Error(ErrorNumber::ProviderFailure, "disk", "bad"));
  EXPECT_THROW(Register(true), Error);
  EXPECT_EQ(club_.OpenCount(), 0) << "the settings are read before the file is held open";
  try {
    club_->NoteCompetitorResult(77, 1, "", 2, "", 55.0, 60.0);
    FAIL() << "no settings are held";
  } catch (const Error& error) {
    EXPECT_TRUE(error.Is(ErrorNumber::NoObject));
  }
  EXPECT_TRUE(Results().empty());
  EXPECT_EQ(MemberHandicaps(), (Texts{"41", "42", "43", "44"}));
  EXPECT_EQ(club_.OpenCount(), 0);
}

TEST_F(ResultNotesTest, TheRegistrationOfAnotherObjectDoesNotMatter) {
  const std::int32_t id = Register(true);
  club_.Reopen();
  club_->NoteCompetitorResult(id, 1, "", 2, "", 55.0, 60.0);
  EXPECT_EQ(Results().size(), 1U);
  EXPECT_EQ(MemberHandicaps(), (Texts{"41", "42", "43", "44"}));
}

TEST_F(ResultNotesTest, TheNotedResultCountsInTheNewHandicaps) {
  const std::int32_t id = Register(true);
  club_->NoteCompetitorResult(id, 1, "", 2, "", 55.0, 60.0);
  EXPECT_EQ(MemberHandicaps(), (Texts{"55", "55", "43", "44"}));
  EXPECT_EQ(PairHandicaps(), (Texts{"55"}));
  club_->NoteCompetitorResult(id, 3, "", 2, "", 45.0, 60.0);
  EXPECT_EQ(MemberHandicaps(), (Texts{"55", "50", "45", "44"}));
  EXPECT_EQ(PairHandicaps(), (Texts{"55"})) << "3 and 2 are no regular pair";
}

TEST_F(ResultNotesTest, ACalculatedHandicapReplacesTheAppliedOneAtOnce) {
  club_->NoteCompetitorResult(Register(true), 1, "", 2, "", 55.0, 60.0, 52.5);
  EXPECT_EQ(MemberHandicaps(), (Texts{"55", "55", "43", "44"}));
}

TEST_F(ResultNotesTest, WithTheCalculationDisabledAppliedHandicapsAreKept) {
  DisableCalculation();
  const std::int32_t id = Register(true);
  club_->NoteCompetitorResult(id, 1, "", 2, "", 55.0, 60.0, 52.5);
  EXPECT_EQ(MemberHandicaps(), (Texts{"52.5", "52.5", "43", "44"}));
  EXPECT_EQ(PairHandicaps(), (Texts{"52.5"}));
  club_->NoteCompetitorResult(id, 3, "", 4, "", 55.0, 60.0, 51.0);
  EXPECT_EQ(MemberHandicaps(), (Texts{"52.5", "52.5", "51", "51"}));
  EXPECT_EQ(PairHandicaps(), (Texts{"52.5"}));
}

TEST_F(ResultNotesTest, WithTheCalculationDisabledAndNothingAppliedNoHandicapIsWritten) {
  DisableCalculation();
  club_->NoteCompetitorResult(Register(true), 1, "", 2, "", 55.0, 60.0, 0.0);
  EXPECT_EQ(MemberHandicaps(), (Texts{"41", "42", "43", "44"}));
  EXPECT_EQ(PairHandicaps(), (Texts{"45"}));
}

TEST_F(ResultNotesTest, InAnIndividualCompetitionThereIsNoPartner) {
  const std::int32_t id = Register(true, true);
  club_->AddMasterPoints(id, 1, 1, "", 2, "", 3.0, 0);
  club_.Execute("Insert Into MasterPoints (MembershipNumber, NonMemberName, CompetitionID) Values (2, '', " +
                std::to_string(id) + ")");
  club_->NoteCompetitorResult(id, 1, "", 2, "Bob Dale", 55.0, 60.0);
  EXPECT_EQ(Results(), (Texts{"1 | -1 | 55 | 60"}));
  EXPECT_EQ(MemberHandicaps(), (Texts{"55", "42", "43", "44"}));
  EXPECT_EQ(PairHandicaps(), (Texts{"45"}));
  EXPECT_EQ(club_.Rows("Select MembershipNumber From MasterPoints"), (Texts{"2"})) << "the partner's award stays";
}

TEST_F(ResultNotesTest, RetiredMembersAndInactivePairsGetTheirHandicapsToo) {
  club_->DeleteMember(1);
  club_->DeletePair(1, 2);
  club_->NoteCompetitorResult(Register(true), 1, "", 2, "", 55.0, 60.0);
  EXPECT_EQ(MemberHandicaps(), (Texts{"55", "55", "43", "44"}));
  EXPECT_EQ(PairHandicaps(), (Texts{"55"}));
}

TEST_F(ResultNotesTest, AMemberWithAVisitorIsCalculatedAlone) {
  club_->NoteCompetitorResult(Register(true), -1, "Sam Fox", 3, "", 55.0, 60.0);
  EXPECT_EQ(Results(), (Texts{"-1 | 3 | 55 | 60"}));
  EXPECT_EQ(MemberHandicaps(), (Texts{"41", "42", "55", "44"}));
}

TEST_F(ResultNotesTest, TwoVisitorsStoreNothingButLoseTheirAwards) {
  const std::int32_t id = Register(true);
  club_->AddMasterPoints(id, 1, -1, "Sam Fox", -1, "Kit O'Neil", 3.0, 0);
  club_->AddMasterPoints(id, 1, -1, "Other", 1, "", 3.0, 0);
  club_->NoteCompetitorResult(id, -1, "Sam Fox", -1, "Kit O'Neil", 55.0, 60.0, 52.5);
  EXPECT_TRUE(Results().empty());
  EXPECT_EQ(MemberHandicaps(), (Texts{"41", "42", "43", "44"}));
  EXPECT_EQ(club_.Rows("Select NonMemberName, MembershipNumber From MasterPoints Order By ID"),
            (Texts{"Other | -1", " | 1"}));
}

TEST_F(ResultNotesTest, AVisitorWithoutANameLosesNothing) {
  const std::int32_t id = Register(false);
  club_->AddMasterPoints(id, 1, -1, "", -1, "Sam Fox", 3.0, 0);
  club_->NoteCompetitorResult(id, -1, "", -1, "", 55.0, 60.0);
  EXPECT_EQ(club_.Rows("Select NonMemberName From MasterPoints Order By ID"), (Texts{"", "Sam Fox"}));
}

TEST_F(ResultNotesTest, NotingAResultClearsTheAwardsOfThatCompetitionOnly) {
  const std::int32_t id = Register(false);
  club_->AddMasterPoints(id, 1, 1, "", 2, "", 3.0, 0);
  club_->AddMasterPoints(id, 1, 3, "", 4, "", 2.0, 0);
  club_->AddMasterPoints(id + 1, 1, 1, "", 2, "", 1.0, 0);
  club_->NoteCompetitorResult(id, 1, "", 2, "", 55.0, 60.0);
  EXPECT_EQ(club_.Rows("Select MembershipNumber, MasterPoints From MasterPoints Order By ID"),
            (Texts{"3 | 2", "4 | 2", "1 | 1", "2 | 1"}));
}

TEST_F(ResultNotesTest, ANotedResultLeavesTheOpenCountAsItWasUnlessHandicapsAreCalculated) {
  const std::int32_t id = Register(false);
  club_->NoteCompetitorResult(id, 1, "", 2, "", 55.0, 60.0);
  EXPECT_EQ(club_.OpenCount(), 1);
  Register(true);
  club_->NoteCompetitorResult(id, 1, "", 2, "", 55.0, 60.0);
  EXPECT_EQ(club_.OpenCount(), 3) << "two registrations and a calculation";
}

TEST_F(ResultNotesTest, TheStatementsAreTheKnownOnes) {
  const std::int32_t number = Register(true);
  const std::string id = std::to_string(number);
  club_.Watch().statements.clear();
  club_->NoteCompetitorResult(number, 2, "", 1, "", 55.25, -1.5, 52.5);
  Texts changes;
  for (const std::string& statement : club_.Watch().statements) {
    if (!statement.starts_with("Select")) changes.push_back(statement);
  }
  EXPECT_EQ(changes,
            (Texts{"Insert into Results (Competition, Player, Partner,  ActualPercentage,  NetPercentage) Values (" +
                       id + ", 2, 1, 55.25, -1.5)",
                   "Update Members Set Handicap = 52.5 Where MembershipNumber = 2 Or MembershipNumber = 1",
                   "Update Partnerships Set Handicap = 52.5 Where LowerPlayer = 1 And HigherPlayer = 2",
                   "Update Partnerships Set Handicap = 55.25 Where LowerPlayer = 1 And HigherPlayer = 2",
                   "Update Members Set Handicap = 55.25 Where MembershipNumber = 2",
                   "Update Members Set Handicap = 55.25 Where MembershipNumber = 1",
                   "Delete from MasterPoints Where CompetitionID = " + id + " And MembershipNumber = 2",
                   "Delete from MasterPoints Where CompetitionID = " + id + " And MembershipNumber = 1"}));
}

TEST_F(ResultNotesTest, AVisitorsAwardsAreDeletedByName) {
  club_.Watch().statements.clear();
  club_->NoteCompetitorResult(9, -1, "Kit O'Neil", -1, "", 55.0, 60.0);
  EXPECT_EQ(club_.Watch().statements.back(),
            "Delete from MasterPoints Where CompetitionID = 9 And MembershipNumber < 0 and NonMemberName = 'Kit "
            "O''Neil'");
}

}  // namespace
}  // namespace tavi
