// The statement texts that a club's program runs, letter by letter.
#include <gtest/gtest.h>

#include "access/sql/support/SqlFile.h"

namespace tavi::access::test {
namespace {

using Texts = std::vector<std::string>;

class ClubStatementTest : public ::testing::Test {
 protected:
  ClubStatementTest() { MakeClub(file_); }
  Texts Rows(const std::string& text) { return file_.Rows(text); }
  SqlFile file_;
};

TEST_F(ClubStatementTest, MakesTheListOfTheGoverningBodyOnce) {
  const std::string text =
      "Create Table EBUMembershipList (EBUNumber Long PRIMARY KEY, FirstName Text (50), LastName Text (50), "
      "CountyCode Text (4), Location Text (50))";
  file_.Run(text);
  EXPECT_EQ(NumberOf(file_.Refused(text)), 0x80004005U);
  file_.Run("Insert into EBUMembershipList Values (17, 'Ann', 'O''Neil', 'XX', 'Here')");
  EXPECT_EQ(Rows("Select * from EBUMembershipList where LastName = 'o''neil' and FirstName = 'Ann'"),
            (Texts{"17|Ann|O'Neil|XX|Here"}));
  EXPECT_EQ(NumberOf(file_.Refused("Insert into EBUMembershipList (EBUNumber) Values (17)")), 0x80004005U);
}

TEST_F(ClubStatementTest, AsksForAColumnByAStatementThatFailsWithoutIt) {
  EXPECT_NO_THROW(file_.Run("Select Top 1 Handicap From Members"));
  EXPECT_EQ(NumberOf(file_.Refused("Select Top 1 Stratum From Members")), 0x80040E10U);
  EXPECT_EQ(NumberOf(file_.Refused("Select Top 1 Stratum From Nothing")), 0x80040E37U);
}

TEST_F(ClubStatementTest, AddsAndDropsColumns) {
  file_.Run("Alter Table Members Add Column Stratum Integer");
  file_.Run("Update Members Set Stratum = 0");
  file_.Run("Alter Table Members Add Column Title Text (20)");
  file_.Run("Alter Table Members Add Column Privacy bit");
  file_.Run("Alter Table MasterPoints Add Column MPTotalsString Memo");
  EXPECT_EQ(Rows("Select Stratum, Title, Privacy From Members Where MembershipNumber = 1"), (Texts{"0|null|False"}));
  EXPECT_EQ(NumberOf(file_.Refused("Alter Table Members Add Column Stratum Integer")), 0x80040E21U);
  file_.Run("Alter Table Members Drop Column Stratum");
  EXPECT_THROW(file_.Run("Alter Table Members Drop Column Stratum"), Error);
  file_.ExpectSound();
}

TEST_F(ClubStatementTest, FindsMembers) {
  EXPECT_EQ(Rows("Select Top 1 MembershipNumber from Members Order by MembershipNumber Desc"), (Texts{"7"}));
  EXPECT_EQ(Rows("Select count(*) From Members Where MembershipNumber = 3"), (Texts{"1"}));
  EXPECT_EQ(Rows("Select FirstName, MiddleInitials, LastName, Active From Members Where MembershipNumber = 3 "
                 "Order by Active Desc"),
            (Texts{"Tom||O'Neil|False"}));
  EXPECT_EQ(Rows("Select MembershipNumber, Active from Members Where FirstName = 'John' And MiddleInitials = 'A' And "
                 "LastName = 'Smith'"),
            (Texts{"1|True"}));
  EXPECT_EQ(Rows("Select Handicap from Members where MembershipNumber = 1"), (Texts{"50"}));
  EXPECT_EQ(Rows("Select MembershipNumber from Members where EBUNumber = '101'"), (Texts{"2"}));
  EXPECT_EQ(Rows("Select top 1 MembershipNumber From Members Where MembershipNumber = 99"), (Texts{}));
  EXPECT_EQ(Rows("Select MembershipNumber, FirstName, MiddleInitials, LastName, KnownAs, Handicap, EBUNumber, "
                 "UniquenessFlag From Members Where MembershipNumber = 3 And Active <> 0"),
            (Texts{}));
  EXPECT_EQ(Rows("Select * from Members where FirstName = 'john' And LastName = 'brown' And Active <> 0").size(), 1U);
}

TEST_F(ClubStatementTest, ListsActiveMembersInOrderOfTheirNames) {
  EXPECT_EQ(Rows("Select FirstName, MiddleInitials, LastName, UniquenessFlag From Members Where Active <> 0 "
                 "Order By FirstName, LastName, MiddleInitials"),
            (Texts{"Ann|B C|Green|null", "Jane||Brown|null", "john||Brown|null", "John|A|Smith|null"}));
  EXPECT_EQ(Rows("Select FirstName, MiddleInitials, LastName, UniquenessFlag From Members Where Active <> 0  And "
                 "FirstName = 'John'Order By FirstName, LastName, MiddleInitials"),
            (Texts{"john||Brown|null", "John|A|Smith|null"}));
}

TEST_F(ClubStatementTest, TakesTheNewestClubName) {
  file_.Run("Insert into ClubNames (ClubName) Values ('Old')");
  file_.Run("Insert into ClubNames (ClubName) Values ('New')");
  EXPECT_EQ(Rows("Select top 1 ClubName from ClubNames Order by ClubID Desc"), (Texts{"New"}));
  EXPECT_EQ(Rows("Select top 1 ClubID from ClubNames Where ClubName = 'OLD'"), (Texts{"1"}));
}

TEST_F(ClubStatementTest, ReadsTheResultsOfAPlayer) {
  EXPECT_EQ(Rows("Select  Top 2 ActualPercentage, Player, Partner, Competitions.ID, Competitions.CompetitionDate  "
                 "From Results Inner Join Competitions  On Results.Competition = Competitions.ID  Where (Player = 1 Or "
                 "Partner = 1)  And IncludeInHandicapCalculations <> 0 And ScoringMethod = 0 And CompetitionDate >= "
                 "44000 And CompetitionDate <= 45010 And (CompetitionDate <> 45010 Or CompetitionName <> 'Monday' Or "
                 "Individual <> 0) Order By Competitions.CompetitionDate Desc"),
            (Texts{"45|2|1|2|2023-03-22", "55.5|1|2|1|2023-03-15"}));
  EXPECT_EQ(Rows("Select  Top 1 ActualPercentage, Player, Partner, Competitions.ID, Competitions.CompetitionDate  From "
                 "Results Inner Join Competitions  On Results.Competition = Competitions.ID  Where ( (Player = 1 And "
                 "Partner = 2)  Or (Player = 2 And Partner = 1))  And IncludeInHandicapCalculations <> 0 And "
                 "ScoringMethod = 0 Order By Competitions.CompetitionDate Desc"),
            (Texts{"45|2|1|2|2023-03-22"}));
}

TEST_F(ClubStatementTest, ReadsSeedsWithinADateRange) {
  file_.Run("Update Partnerships Set HandicalcSeed = 52.5, HandicalcSeedDate = 45003 Where LowerPlayer = 1");
  EXPECT_EQ(Rows("Select HandicalcSeed, HandicalcSeedDate From Partnerships Where (LowerPlayer = 1 And HigherPlayer = "
                 "2) And HandicalcSeedDate >= 45000 And HandicalcSeedDate <= 45003"),
            (Texts{"52.5|2023-03-18"}));
  EXPECT_EQ(Rows("Select HandicalcSeed, HandicalcSeedDate From Partnerships Where (LowerPlayer = 1 And HigherPlayer = "
                 "2) And HandicalcSeedDate >= 45004"),
            (Texts{}));
}

TEST_F(ClubStatementTest, FindsACompetitionByNameAndDay) {
  EXPECT_EQ(Rows("Select * from Competitions Where CompetitionName = 'monday' And CompetitionDate = 45007").size(), 1U);
  EXPECT_EQ(Rows("Select * from Competitions Where CompetitionName = 'Monday' And CompetitionDate = 45001"), (Texts{}));
}

TEST_F(ClubStatementTest, ReplacesAwards) {
  for (int round = 0; round < 2; ++round) {
    file_.Run("Update MasterPoints set RecordUpdated = 0 Where CompetitionID = 2");
    file_.Run(
        "Insert into MasterPoints (MembershipNumber, NonMemberName, CompetitionID, SessionNo, MasterPoints, "
        "Colour, Status, RecordUpdated) Values (-1, 'J O''Smith', 2, 1, 0.5, -3, 0, 1)");
    file_.Run("Delete From MasterPoints Where CompetitionID = 2 And RecordUpdated = 0");
  }
  EXPECT_EQ(Rows("Select ID, MembershipNumber, NonMemberName, MasterPoints, Colour From MasterPoints"),
            (Texts{"2|-1|J O'Smith|0.5|-3"}));
  EXPECT_EQ(file_.Run("Delete from MasterPoints Where CompetitionID = 2 And MembershipNumber < 0 and "
                      "NonMemberName = 'j o''smith'"),
            1);
  file_.ExpectSound();
}

TEST_F(ClubStatementTest, RecordsResults) {
  EXPECT_EQ(file_.Run("Insert into Results (Competition, Player, Partner,  ActualPercentage,  NetPercentage) Values "
                      "(1, 7, -1, 51.25, -0.5)"),
            1);
  EXPECT_EQ(Rows("Select Player, Partner, ActualPercentage, NetPercentage From Results Where Player = 7"),
            (Texts{"7|-1|51.25|-0.5"}));
  EXPECT_EQ(file_.Run("Update Members Set Handicap = 52.5 Where MembershipNumber = 1 Or MembershipNumber = 2"), 2);
  EXPECT_EQ(file_.Run("Update Partnerships Set Handicap = 52.5 Where LowerPlayer = 1 And HigherPlayer = 2"), 1);
  EXPECT_EQ(file_.Run("Update Partnerships set Active = 0 where LowerPlayer = 7 Or HigherPlayer = 7"), 1);
  EXPECT_EQ(file_.Run("Delete from Results where Competition = 1"), 2);
}

TEST_F(ClubStatementTest, StoresSettings) {
  file_.Run(
      "Create Table HandicalcSettings (MaxWeeks Short, MaxResults Short, SamePartnerWeighting Short, "
      "RegularPairMultiplier Double, RegularPairAdd Double, UnknownPlayerHandicap Double, Disabled Bit)");
  EXPECT_EQ(file_.Run("Delete from HandicalcSettings"), 0);
  file_.Run(
      "Insert Into HandicalcSettings (MaxWeeks, MaxResults, SamePartnerWeighting, RegularPairMultiplier, "
      "RegularPairAdd, UnknownPlayerHandicap, Disabled) Values (52, 10, 75, 0.9, 1.5, 50, 0)");
  EXPECT_EQ(file_.Run("Update HandicalcSettings Set Disabled = 1"), 1);
  EXPECT_EQ(Rows("Select * From HandicalcSettings"), (Texts{"52|10|75|0.9|1.5|50|True"}));
}

TEST_F(ClubStatementTest, RepairsColoursThroughAnOpenJoin) {
  file_.Run("Insert into MasterPoints (MembershipNumber, CompetitionID) Values (1, 3)");
  file_.Run("Insert into MasterPoints (MembershipNumber, CompetitionID, Colour) Values (1, 3, 1)");
  file_.Run("Insert into MasterPoints (MembershipNumber, CompetitionID) Values (2, 2)");
  const auto rows = file_.Open(
      "Select MasterPointsColour, Colour from MasterPoints Inner Join Competitions On MasterPoints.CompetitionID = "
      "Competitions.ID Where Colour < 0");
  for (; !rows->AtEnd(); rows->MoveNext()) {
    rows->Set(1, rows->Get(0));
    rows->Update();
  }
  EXPECT_EQ(Rows("Select Colour From MasterPoints Order By ID"), (Texts{"3", "1", "2"}));
  EXPECT_EQ(Rows("Select MasterPointsColour From Competitions Order By ID"), (Texts{"0", "2", "3"}));
}

}  // namespace
}  // namespace tavi::access::test
