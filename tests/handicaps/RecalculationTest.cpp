#include <gtest/gtest.h>

#include "facade/ThreadStore.h"
#include "facade/support/Club.h"
#include "handicaps/HandicapCalculation.h"
#include "members/Partnerships.h"

namespace tavi {
namespace {

using testing::Club;
using Texts = std::vector<std::string>;

TEST(RememberedHandicaps, TheFirstHandicapOfAMemberIsKept) {
  RememberedHandicaps list;
  RememberHandicap(list, 12, 55.0);
  RememberHandicap(list, 12, 45.0);
  RememberHandicap(list, -12, 44.0);
  ASSERT_NE(list.Find("12M"), nullptr);
  EXPECT_EQ(*list.Find("12M"), 55.0);
  EXPECT_EQ(*list.Find("-12M"), 44.0);
  EXPECT_EQ(list.Find("1M"), nullptr);
}

/// A club of five members with stored handicaps that no calculation gives.
class RecalculationTest : public ::testing::Test {
 protected:
  RecalculationTest() {
    club_->OpenDatabase();
    for (const char* first : {"Anne", "Bob", "Cat", "Dan", "Eve"}) club_->AddNewMember(first, "", "Hill", 33.0);
    club_->CloseDatabase();
    club_.Execute(
        "Insert Into Competitions (CompetitionName, CompetitionDate, Individual, ScoringMethod, "
        "IncludeInHandicapCalculations) Values ('Wednesday', 45900, 0, 0, -1)");
  }
  ~RecalculationTest() override { club_->CloseDatabase(); }

  void AddPair(std::int32_t lower, std::int32_t higher) {
    MakeRegularPartnership(*ThreadStore(), lower, higher, 33.0, false, "");
  }
  void AddResult(std::int32_t player, std::int32_t partner, const std::string& percentage) {
    club_.Execute("Insert Into Results (Competition, Player, Partner, ActualPercentage) Values (1, " +
                  std::to_string(player) + ", " + std::to_string(partner) + ", " + percentage + ")");
  }
  Texts MemberHandicaps() { return club_.Rows("Select Handicap From Members Order By MembershipNumber"); }
  Texts PairHandicaps() {
    return club_.Rows(
        "Select LowerPlayer, HigherPlayer, Handicap From Partnerships Order By LowerPlayer, HigherPlayer");
  }

  Club club_;
};

TEST_F(RecalculationTest, EveryActivePairAndMemberGetsItsHandicap) {
  AddPair(1, 2);
  AddResult(1, 2, "56");
  AddResult(3, 1, "48");
  club_->RecalculateAllHandicaps();
  EXPECT_EQ(PairHandicaps(), (Texts{"1 | 2 | 54"}));
  EXPECT_EQ(MemberHandicaps(), (Texts{"52", "56", "48", "50", "50"}));
}

TEST_F(RecalculationTest, InactiveMembersAndPairsKeepTheirs) {
  AddPair(1, 2);
  AddPair(3, 4);
  club_->DeletePair(3, 4);
  club_->DeleteMember(5);
  club_->RecalculateAllHandicaps();
  EXPECT_EQ(PairHandicaps(), (Texts{"1 | 2 | 50", "3 | 4 | 33"}));
  EXPECT_EQ(MemberHandicaps(), (Texts{"50", "50", "50", "50", "33"}));
}

TEST_F(RecalculationTest, AMemberOfSeveralPairsGetsTheHandicapOfTheFirst) {
  auto settings = std::make_shared<HandiCalcSettings>();
  settings->SetMaxResults(5);
  club_->SetHandicalcOptions(settings);
  AddPair(1, 2);
  AddPair(1, 3);
  club_.Execute("Update Partnerships Set HandicalcSeed = 44, HandicalcSeedDate = 45900 Where HigherPlayer = 2");
  club_.Execute("Update Partnerships Set HandicalcSeed = 58, HandicalcSeedDate = 45900 Where HigherPlayer = 3");
  club_->RecalculateAllHandicaps();
  EXPECT_EQ(PairHandicaps(), (Texts{"1 | 2 | 44", "1 | 3 | 58"}));
  EXPECT_EQ(MemberHandicaps(), (Texts{"44", "44", "58", "50", "50"}));
}

TEST_F(RecalculationTest, AMemberWithExactlyNothingInThePairIsCalculatedAlone) {
  AddPair(1, 2);
  AddResult(1, 2, "0");
  club_.Execute("Update Members Set HandicalcSeed = 0 Where MembershipNumber = 1");
  club_.Watch().statements.clear();
  club_->RecalculateAllHandicaps();
  EXPECT_EQ(MemberHandicaps(), (Texts{"0", "0", "50", "50", "50"}));
  EXPECT_EQ(club_.Watch().CountOf("Select ActualPercentage"), 2 + 5) << "both again, and the three without a pair";
}

TEST_F(RecalculationTest, HandicapsAreRecalculatedThoughTheCalculationIsSwitchedOff) {
  static_cast<void>(club_->HandicalcOptions());
  club_->SetHandiCalcDisabled(true);
  AddResult(1, 2, "56");
  club_->RecalculateAllHandicaps();
  EXPECT_EQ(MemberHandicaps(), (Texts{"56", "56", "50", "50", "50"}));
  EXPECT_TRUE(club_->HandiCalcDisabled());
}

TEST_F(RecalculationTest, RowsWithoutANumberAreLeftOut) {
  club_.Execute("Drop Table Partnerships");
  club_.Execute(
      "Create Table Partnerships (LowerPlayer Long, HigherPlayer Long, Handicap Double, KnownAs Text (255), Active "
      "Bit, HandicalcSeed Double, HandicalcSeedDate Date)");
  const std::string insert = "Insert Into Partnerships (LowerPlayer, HigherPlayer, Handicap, Active) Values ";
  for (const char* row : {"(Null, 2, 33, 1)", "(1, Null, 33, 1)", "(1, 2, 33, 1)"}) club_.Execute(insert + row);
  club_.Execute("Drop Index PrimaryKey On Members");
  club_.Execute("Alter Table Members Alter Column MembershipNumber Long");
  club_.Execute("Update Members Set MembershipNumber = Null Where MembershipNumber = 5");
  AddResult(1, 2, "56");
  club_->RecalculateAllHandicaps();
  EXPECT_EQ(PairHandicaps(), (Texts{" | 2 | 33", "1 |  | 33", "1 | 2 | 56"}));
  EXPECT_EQ(club_.Rows("Select Handicap From Members Order By FirstName"), (Texts{"56", "56", "50", "50", "33"}));
}

TEST_F(RecalculationTest, ANumberThatIsNoneIsAnErrorThatNamesItsTableAndColumn) {
  club_.Execute("Drop Table Partnerships");
  club_.Execute(
      "Create Table Partnerships (LowerPlayer Text (20), HigherPlayer Long, Handicap Double, KnownAs Text (255), "
      "Active "
      "Bit, HandicalcSeed Double, HandicalcSeedDate Date)");
  club_.Execute("Insert Into Partnerships (LowerPlayer, HigherPlayer, Handicap, Active) Values ('Anne', 2, 33, 1)");
  try {
    club_->RecalculateAllHandicaps();
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_TRUE(error.Is(ErrorNumber::TypeMismatch));
    EXPECT_TRUE(error.Description().starts_with("The column LowerPlayer of a row of the table Partnerships cannot be"))
        << error.Description();
  }
}

TEST_F(RecalculationTest, EachCalculationLeavesTheFileOpenOnceMore) {
  AddPair(1, 2);
  club_->RecalculateAllHandicaps();
  EXPECT_EQ(club_.OpenCount(), 1 + 3);
}

TEST_F(RecalculationTest, AnEmptyClubIsNothingToDo) {
  club_.Execute("Delete From Members");
  club_->RecalculateAllHandicaps();
  EXPECT_EQ(club_.OpenCount(), 0);
}

TEST_F(RecalculationTest, AFailureKeepsWhatWasStoredBefore) {
  AddPair(1, 2);
  club_.Watch().FailOn("Select * from Members Where Active", Error(ErrorNumber::ProviderFailure, "disk", "bad"));
  EXPECT_THROW(club_->RecalculateAllHandicaps(), Error);
  EXPECT_EQ(PairHandicaps(), (Texts{"1 | 2 | 50"}));
  EXPECT_EQ(MemberHandicaps(), (Texts{"33", "33", "33", "33", "33"}));
}

}  // namespace
}  // namespace tavi
