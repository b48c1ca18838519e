#include <gtest/gtest.h>

#include "access/sql/support/SqlFile.h"

namespace tavi::access::test {
namespace {

using Texts = std::vector<std::string>;

class ChangeTest : public ::testing::Test {
 protected:
  ChangeTest() { MakeClub(file_); }
  Texts Rows(const std::string& text) { return file_.Rows(text); }
  SqlFile file_;
};

TEST_F(ChangeTest, ColumnsThatAreNotNamedGetTheirDefaults) {
  file_.Run("Insert into Members (MembershipNumber) Values (9)");
  EXPECT_EQ(Rows("Select Handicap, Active, FirstName From Members Where MembershipNumber = 9"),
            (Texts{"50|True|null"}));
  file_.Run("Insert into Members (MembershipNumber, Handicap) Values (10, Null)");
  EXPECT_EQ(Rows("Select Handicap From Members Where MembershipNumber = 10"), (Texts{"null"}));
}

TEST_F(ChangeTest, DefaultsMayBeFunctions) {
  file_.Run(
      "Create Table Log (ID Counter, Moment Date Default Now(), Day Date Default Date(), Word Text (9) "
      "Default 'none')");
  file_.Run("Insert into Log (Word) Values ('x')");
  EXPECT_EQ(Rows("Select * From Log"), (Texts{"1|2023-03-15T12:00:00|2023-03-15|x"}));
}

TEST_F(ChangeTest, AnInsertNeedsAValueForEachColumn) {
  const Error error = file_.Refused("Insert into Members (MembershipNumber, FirstName) Values (9)");
  EXPECT_EQ(NumberOf(error), 0x80040E14U);
  EXPECT_NE(error.Description().find("Number of query values and destination fields are not the same"),
            std::string::npos);
  EXPECT_EQ(NumberOf(file_.Refused("Insert into ClubNames Values (9)")), 0x80040E14U);
  EXPECT_EQ(NumberOf(file_.Refused("Insert into ClubNames (ClubName, ClubName) Values ('a', 'b')")), 0x80040E14U);
}

TEST_F(ChangeTest, RowsOfASelectAreInserted) {
  EXPECT_EQ(file_.Run("Insert into ClubNames (ClubName) Select FirstName From Members Where Active <> 0"), 4);
  EXPECT_EQ(Rows("Select * From ClubNames"), (Texts{"1|John", "2|Jane", "3|john", "4|Ann"}));
  EXPECT_EQ(file_.Run("Insert into ClubNames (ClubName) Select ClubName From ClubNames"), 4);
  EXPECT_EQ(Rows("Select Count(*) From ClubNames"), (Texts{"8"}));
}

TEST_F(ChangeTest, AnAutomaticNumberMayBeGiven) {
  file_.Run("Insert into ClubNames (ClubID, ClubName) Values (10, 'Ten')");
  file_.Run("Insert into ClubNames (ClubName) Values ('Eleven')");
  EXPECT_EQ(Rows("Select * From ClubNames"), (Texts{"10|Ten", "11|Eleven"}));
}

TEST_F(ChangeTest, AssignmentsSeeTheOldValues) {
  EXPECT_EQ(file_.Run("Update Members Set FirstName = LastName, LastName = FirstName Where MembershipNumber = 2"), 1);
  EXPECT_EQ(Rows("Select FirstName, LastName From Members Where MembershipNumber = 2"), (Texts{"Brown|Jane"}));
}

TEST_F(ChangeTest, RowsAreFoundBeforeTheFirstIsChanged) {
  EXPECT_EQ(file_.Run("Update Results Set Player = Player + 1 Where Player > 0"), 4);
  EXPECT_EQ(Rows("Select Player From Results"), (Texts{"2", "3", "5", "2"}));
  file_.ExpectSound();
}

TEST_F(ChangeTest, UpdatesThroughAJoin) {
  EXPECT_EQ(file_.Run("Update Results Inner Join Competitions On Results.Competition = Competitions.ID "
                      "Set NetPercentage = ActualPercentage + MasterPointsColour Where ScoringMethod = 0"),
            3);
  EXPECT_EQ(Rows("Select NetPercentage From Results"), (Texts{"55.5", "47", "62", "null"}));
}

TEST_F(ChangeTest, DeletesThroughAJoin) {
  EXPECT_EQ(NumberOf(file_.Refused("Delete From Results Inner Join Competitions On Results.Competition = "
                                   "Competitions.ID")),
            0x80040E14U);
  EXPECT_EQ(file_.Run("Delete Results.* From Results Inner Join Competitions On Results.Competition = Competitions.ID "
                      "Where CompetitionName = 'Monday'"),
            3);
  EXPECT_EQ(Rows("Select Competition From Results"), (Texts{"3"}));
  EXPECT_EQ(Rows("Select Count(*) From Competitions"), (Texts{"3"}));
}

TEST_F(ChangeTest, DeletesByASubSelect) {
  EXPECT_EQ(file_.Run("Delete From Members Where MembershipNumber Not In (Select Player From Results) And "
                      "MembershipNumber Not In (Select Partner From Results)"),
            1);
  EXPECT_EQ(Rows("Select MembershipNumber From Members"), (Texts{"1", "2", "4", "7"}));
}

TEST_F(ChangeTest, DeleteWithoutConditionEmptiesTheTable) {
  EXPECT_EQ(file_.Run("Delete from Results"), 4);
  EXPECT_EQ(file_.Run("Delete * from Members"), 5);
  EXPECT_EQ(Rows("Select Count(*) From Members"), (Texts{"0"}));
  file_.ExpectSound();
}

TEST_F(ChangeTest, AFailureOnTheThirdRowChangesNothing) {
  const Texts before = Rows("Select * From Members");
  const Error error = file_.Refused("Update Members Set MembershipNumber = 20 + (MembershipNumber Mod 3)");
  EXPECT_EQ(NumberOf(error), 0x80004005U);
  EXPECT_EQ(Rows("Select * From Members"), before);
  EXPECT_EQ(Rows("Select MembershipNumber From Members Where MembershipNumber = 21"), (Texts{}));
  file_.ExpectSound();
}

TEST_F(ChangeTest, AFailureWithinAnInsertOfManyRowsInsertsNone) {
  EXPECT_EQ(NumberOf(file_.Refused("Insert into Members (MembershipNumber) Select MembershipNumber + 3 From Members "
                                   "Order By MembershipNumber Desc")),
            0x80004005U);
  EXPECT_EQ(Rows("Select Count(*) From Members"), (Texts{"5"}));
  file_.ExpectSound();
}

TEST_F(ChangeTest, ATableIsMadeOfASelect) {
  EXPECT_EQ(file_.Run("Select MembershipNumber, FirstName & ' ' & LastName As FullName, Handicap, DateOfJoining "
                      "Into Copies From Members Where Active <> 0"),
            4);
  EXPECT_EQ(Rows("Select * From Copies").front(), "1|John Smith|50|null");
  EXPECT_EQ(NumberOf(file_.Refused("Select * Into Copies From Members")), 0x80004005U);
  EXPECT_EQ(file_.Run("Select * Into Names From (Select FirstName From Members Where Active <> 0) As Active"), 4);
  EXPECT_EQ(Rows("Select * From Names").front(), "John");
  file_.ExpectSound();
}

TEST_F(ChangeTest, SystemTablesAreNotChanged) {
  EXPECT_EQ(NumberOf(file_.Refused("Delete From MSysObjects")), 0x80040E09U);
  EXPECT_FALSE(Rows("Select Name From MSysObjects Where Name = 'Members'").empty());
}

TEST_F(ChangeTest, ARowWithoutARequiredValueIsRefused) {
  file_.Run("Create Table Strict (ID Long Not Null, Word Text (5))");
  EXPECT_EQ(NumberOf(file_.Refused("Insert into Strict (Word) Values ('x')")), 0x80040E2FU);
  file_.Run("Insert into Strict Values (1, 'x')");
  EXPECT_EQ(NumberOf(file_.Refused("Update Strict Set ID = Null")), 0x80040E2FU);
  EXPECT_EQ(NumberOf(file_.Refused("Update Strict Set Word = 'too long'")), 0x80004005U);
  EXPECT_EQ(Rows("Select * From Strict"), (Texts{"1|x"}));
}

}  // namespace
}  // namespace tavi::access::test
