#include <gtest/gtest.h>

#include "access/sql/support/SqlFile.h"

namespace tavi::access::test {
namespace {

using Texts = std::vector<std::string>;

class SelectTest : public ::testing::Test {
 protected:
  SelectTest() { MakeClub(file_); }
  Texts Rows(const std::string& text) { return file_.Rows(text); }
  SqlFile file_;
};

TEST_F(SelectTest, RowsComeInStoredOrder) {
  EXPECT_EQ(Rows("Select MembershipNumber, FirstName From Members"),
            (Texts{"1|John", "2|Jane", "3|Tom", "4|john", "7|Ann"}));
}

TEST_F(SelectTest, TextIsComparedIgnoringCase) {
  EXPECT_EQ(Rows("Select MembershipNumber From Members Where FirstName = 'JOHN'"), (Texts{"1", "4"}));
}

TEST_F(SelectTest, ASelectWithoutTablesGivesOneRow) {
  EXPECT_EQ(Rows("Select 1 + 1, 'a' & 'b'"), (Texts{"2|ab"}));
  EXPECT_EQ(Rows("Select 1 Where 1 = 2"), (Texts{}));
}

TEST_F(SelectTest, TopKeepsTheTiesOfTheLastRow) {
  EXPECT_EQ(Rows("Select Top 1 CompetitionName From Competitions Order By CompetitionDate Desc"),
            (Texts{"Monday", "Teams"}));
  EXPECT_EQ(Rows("Select Top 2 CompetitionName From Competitions Order By CompetitionDate"),
            (Texts{"Monday", "Monday", "Teams"}));
}

TEST_F(SelectTest, TopOfManyRowsKeepsTheTiesOfTheLast) {
  const std::string all = " From Members As A, Members As B, Members As C, Members As D, Members As E Order By ";
  EXPECT_EQ(Rows("Select Top 1 A.MembershipNumber" + all + "-A.MembershipNumber").size(), 625U);
  EXPECT_EQ(Rows("Select Top 2 E.MembershipNumber" + all + "-E.MembershipNumber - D.MembershipNumber").size(), 125U);
  EXPECT_EQ(Rows("Select Top 2147483647 A.MembershipNumber" + all + "-B.MembershipNumber").size(), 3125U);
}

TEST_F(SelectTest, TopWithoutOrderGivesExactlyThatMany) {
  EXPECT_EQ(Rows("Select Top 2 MembershipNumber From Members"), (Texts{"1", "2"}));
  EXPECT_EQ(Rows("Select Top 0 MembershipNumber From Members"), (Texts{}));
  EXPECT_EQ(Rows("Select Top 9 MembershipNumber From Members").size(), 5U);
}

TEST_F(SelectTest, TopPercentRoundsUp) {
  EXPECT_EQ(Rows("Select Top 50 Percent MembershipNumber From Members Order By MembershipNumber"),
            (Texts{"1", "2", "3"}));
  EXPECT_EQ(Rows("Select Top 100 Percent MembershipNumber From Members").size(), 5U);
  EXPECT_EQ(NumberOf(file_.Refused("Select Top 101 Percent MembershipNumber From Members")), 0x80040E14U);
}

TEST_F(SelectTest, TopReadsAnIndexInItsOrder) {
  const std::string text = "Select Top 1 MembershipNumber From Members Order By MembershipNumber Desc";
  EXPECT_EQ(Rows(text), (Texts{"7"}));
  EXPECT_EQ(file_.Explain(text), "Members: index PrimaryKey backwards\n");
}

TEST_F(SelectTest, OrderByTakesExpressionsPositionsAndAliases) {
  EXPECT_EQ(Rows("Select MembershipNumber From Members Order By -MembershipNumber"), (Texts{"7", "4", "3", "2", "1"}));
  EXPECT_EQ(Rows("Select FirstName, MembershipNumber From Members Order By 2 Desc").front(), "Ann|7");
  EXPECT_EQ(Rows("Select MembershipNumber * 2 As Twice From Members Order By Twice Desc").front(), "14");
}

TEST_F(SelectTest, NullsSortFirst) {
  EXPECT_EQ(Rows("Select EBUNumber From Members Where MembershipNumber < 4 Order By EBUNumber"),
            (Texts{"null", "100", "101"}));
}

TEST_F(SelectTest, GroupsAreCountedAndFiltered) {
  EXPECT_EQ(Rows("Select FirstName, Count(*) As Members From Members Group By FirstName Having Count(*) > 1"),
            (Texts{"John|2"}));
  EXPECT_EQ(Rows("Select Competition, Avg(ActualPercentage), Max(ActualPercentage) From Results "
                 "Group By Competition Order By Competition"),
            (Texts{"1|55.5|55.5", "2|52.5|60", "3|70|70"}));
}

TEST_F(SelectTest, AGroupMayBeAnExpressionThatHoldsASubSelect) {
  const std::string parity = "Competition Mod (Select Min(Competition) + 1 From Results Where Competition > 0)";
  EXPECT_EQ(Rows("Select " + parity + ", Count(*) From Results Group By " + parity + " Order By " + parity),
            (Texts{"0|2", "1|2"}));
  EXPECT_EQ(Rows("Select Competition mod (select min(competition) + 1 from RESULTS where competition > 0), Count(*) "
                 "From Results Group By " +
                 parity + " Having " + parity + " = 0"),
            (Texts{"0|2"}));
}

TEST_F(SelectTest, AnExpressionWithAnotherSubSelectIsNoGroup) {
  const auto refused = [&](const std::string& selected, const std::string& group) {
    try {
      Rows("Select Competition + (" + selected + "), Count(*) From Results Group By Competition + (" + group + ")");
    } catch (const Error& error) {
      return error.Description().find("no part of an aggregate") != std::string::npos;
    }
    return false;
  };
  const std::string one = "Select Min(Competition) From Results Where Player > 0";
  EXPECT_FALSE(refused(one, one));
  EXPECT_TRUE(refused("Select Max(Competition) From Results Where Player > 0", one));
  EXPECT_TRUE(refused("Select Min(Player) From Results Where Player > 0", one));
  EXPECT_TRUE(refused("Select Min(Competition) From Results Where Player > 1", one));
  EXPECT_TRUE(refused("Select Min(Competition) From Results", one));
  EXPECT_TRUE(refused("Select Distinct Min(Competition) From Results Where Player > 0", one));
}

TEST_F(SelectTest, AggregatesOfNoRowsGiveOneRow) {
  EXPECT_EQ(Rows("Select Count(*), Sum(Handicap), Min(FirstName) From Members Where MembershipNumber > 100"),
            (Texts{"0|null|null"}));
  EXPECT_EQ(Rows("Select FirstName, Count(*) From Members Where MembershipNumber > 100 Group By FirstName"), (Texts{}));
}

TEST_F(SelectTest, CountLeavesOutNulls) {
  EXPECT_EQ(Rows("Select Count(*), Count(EBUNumber), First(EBUNumber), Last(EBUNumber) From Members"),
            (Texts{"5|2|100|null"}));
}

TEST_F(SelectTest, SpreadOfNumbers) {
  EXPECT_EQ(Rows("Select Var(MembershipNumber), VarP(MembershipNumber) From Members Where MembershipNumber In (2, 4)"),
            (Texts{"2|1"}));
  EXPECT_EQ(Rows("Select StDev(MembershipNumber), StDevP(MembershipNumber) From Members Where MembershipNumber = 2"),
            (Texts{"null|0"}));
}

TEST_F(SelectTest, DistinctIgnoresCaseAndKeepsTheFirstSpelling) {
  EXPECT_EQ(Rows("Select Distinct FirstName From Members"), (Texts{"John", "Jane", "Tom", "Ann"}));
  EXPECT_EQ(Rows("Select Distinct LastName From Members Where LastName = 'brown'"), (Texts{"Brown"}));
}

TEST_F(SelectTest, InnerJoinsFindPartnersByIndex) {
  EXPECT_EQ(Rows("Select CompetitionName, ActualPercentage From Results Inner Join Competitions "
                 "On Results.Competition = Competitions.ID Where Player = 1"),
            (Texts{"Monday|55.5", "Teams|70"}));
}

TEST_F(SelectTest, TablesBesideEachOtherAreJoinedByWhere) {
  EXPECT_EQ(Rows("Select m.FirstName, p.Handicap From Members As m, Partnerships As p "
                 "Where m.MembershipNumber = p.LowerPlayer Order By p.LowerPlayer"),
            (Texts{"John|51.5", "john|48"}));
}

TEST_F(SelectTest, OuterJoinsKeepRowsWithoutPartner) {
  EXPECT_EQ(Rows("Select MembershipNumber, ActualPercentage From Members Left Join Results "
                 "On Members.MembershipNumber = Results.Player Order By MembershipNumber, ActualPercentage"),
            (Texts{"1|55.5", "1|70", "2|45", "3|null", "4|60", "7|null"}));
  EXPECT_EQ(Rows("Select MembershipNumber From Results Right Join Members "
                 "On Members.MembershipNumber = Results.Player Where Competition Is Null"),
            (Texts{"3", "7"}));
}

TEST_F(SelectTest, ConditionsOnTheOptionalSideSeeItsNulls) {
  EXPECT_EQ(Rows("Select MembershipNumber, ActualPercentage From Members Left Join Results "
                 "On (Members.MembershipNumber = Results.Player And Competition = 3) Where MembershipNumber < 3"),
            (Texts{"1|70", "2|null"}));
  EXPECT_EQ(Rows("Select MembershipNumber From Members Left Join Results On Members.MembershipNumber = Results.Player "
                 "Where Competition = 3"),
            (Texts{"1"}));
}

TEST_F(SelectTest, ThreeTablesAreJoined) {
  EXPECT_EQ(Rows("Select m.FirstName, c.CompetitionName From (Results As r Inner Join Competitions As c "
                 "On r.Competition = c.ID) Inner Join Members As m On r.Player = m.MembershipNumber "
                 "Where c.ID = 2 Order By m.MembershipNumber"),
            (Texts{"Jane|Monday", "john|Monday"}));
}

TEST_F(SelectTest, SubSelectsInConditions) {
  EXPECT_EQ(Rows("Select MembershipNumber From Members Where MembershipNumber In (Select Player From Results)"),
            (Texts{"1", "2", "4"}));
  EXPECT_EQ(Rows("Select MembershipNumber From Members Where MembershipNumber Not In (Select Player From Results)"),
            (Texts{"3", "7"}));
  EXPECT_EQ(Rows("Select MembershipNumber From Members As m Where Exists (Select * From Results "
                 "Where Player = m.MembershipNumber And ActualPercentage > 55)"),
            (Texts{"1", "4"}));
  EXPECT_EQ(Rows("Select MembershipNumber From Members Where Handicap = (Select Max(Handicap) From Members)").size(),
            5U);
}

TEST_F(SelectTest, NotInWithANullIsNeverTrue) {
  file_.Run("Insert into Results (Competition) Values (3)");
  EXPECT_EQ(Rows("Select MembershipNumber From Members Where MembershipNumber Not In (Select Player From Results)"),
            (Texts{}));
}

TEST_F(SelectTest, SubSelectsInTheSelectListSeeTheRow) {
  EXPECT_EQ(Rows("Select MembershipNumber, (Select Count(*) From Results Where Player = Members.MembershipNumber) "
                 "From Members"),
            (Texts{"1|2", "2|1", "3|0", "4|1", "7|0"}));
}

TEST_F(SelectTest, SelectsCanBeRead) {
  EXPECT_EQ(Rows("Select t.N, m.FirstName From (Select Player As N, Count(*) As C From Results Group By Player) As t "
                 "Inner Join Members As m On t.N = m.MembershipNumber Where t.C = 2"),
            (Texts{"1|John"}));
}

TEST_F(SelectTest, UnionsDropRepetitionsUnlessAll) {
  EXPECT_EQ(Rows("Select Player From Results Union Select Partner From Results Order By Player"),
            (Texts{"1", "2", "4", "7"}));
  EXPECT_EQ(Rows("Select Player From Results Union Select Partner From Results Order By Player Desc"),
            (Texts{"7", "4", "2", "1"}));
  EXPECT_EQ(Rows("Select Player From Results Union All Select Partner From Results").size(), 8U);
  EXPECT_EQ(Rows("Select Top 1 Player From Results Union All Select Top 2 Partner From Results"),
            (Texts{"1", "2", "1"}));
}

TEST_F(SelectTest, AUnionOfManySelectsDropsRepetitionsUpToEachUnion) {
  EXPECT_EQ(file_.Rows("Select 1 As N Union All Select 1 Union Select 1 Union All Select 1 Union All Select 2"),
            (Texts{"1", "1", "2"}));
  std::string many = "Select 0 As N";
  for (int i = 1; i < 120; ++i) many += " Union All Select " + std::to_string(i % 7);
  EXPECT_EQ(file_.Rows(many + " Order By N").size(), 120U);
}

TEST_F(SelectTest, DistinctRowDropsRepetitionsThatTheOtherTableMakes) {
  EXPECT_EQ(Rows("Select DistinctRow FirstName From Members Inner Join Results "
                 "On Members.MembershipNumber = Results.Player"),
            (Texts{"John", "Jane", "john"}));
}

TEST_F(SelectTest, ColumnsAreNamed) {
  const auto names = [&](const std::string& text) {
    Texts found;
    const auto rows = file_.Open(text);
    for (const auto& column : rows->Columns()) found.push_back(column.name);
    return found;
  };
  EXPECT_EQ(names("Select membershipnumber, LastName As Surname, 1 + 1 From Members"),
            (Texts{"MembershipNumber", "Surname", "Expr1002"}));
  EXPECT_EQ(names("Select Count(*) From Members"), (Texts{"Expr1000"}));
  EXPECT_EQ(names("Select m.ID, c.ID, CompetitionName From MasterPoints As m Inner Join Competitions As c "
                  "On m.CompetitionID = c.ID"),
            (Texts{"m.ID", "c.ID", "CompetitionName"}));
  EXPECT_EQ(names("Select FirstName, FirstName From Members"), (Texts{"Members.FirstName", "Expr1001"}));
}

TEST_F(SelectTest, TypesOfColumnsAreKnown) {
  const auto rows = file_.Open(
      "Select MembershipNumber, FirstName, Handicap, UniquenessFlag, Active, Notes, DateOfJoining, "
      "MembershipNumber + 1, Handicap > 3, FirstName & 'x', Date(), MembershipNumber + Handicap, 1 + DateOfJoining, "
      "MembershipNumber * '2' From Members");
  std::vector<ado::DataType> types;
  for (const auto& column : rows->Columns()) types.push_back(column.type);
  using ado::DataType;
  EXPECT_EQ(types,
            (std::vector{DataType::Integer, DataType::WChar, DataType::Double, DataType::SmallInt, DataType::Boolean,
                         DataType::WChar, DataType::Date, DataType::Integer, DataType::Boolean, DataType::WChar,
                         DataType::Date, DataType::Double, DataType::Date, DataType::Double}));
}

TEST_F(SelectTest, TheTypeOfAFunctionsResultIsKnown) {
  const auto rows = file_.Open(
      "Select CByte(1), CInt(1), CLng(1), CSng(1), CDbl(1), CCur(1), CDate(1), CBool(1), GenGUID(), InStrRev('a', "
      "'a'), "
      "StrComp('a', 'b'), AscW('a'), Left('a', 1), Abs(Handicap), IIf(Active, MembershipNumber, Handicap) From "
      "Members");
  std::vector<ado::DataType> types;
  for (const auto& column : rows->Columns()) types.push_back(column.type);
  using ado::DataType;
  EXPECT_EQ(types, (std::vector{DataType::UnsignedTinyInt, DataType::SmallInt, DataType::Integer, DataType::Single,
                                DataType::Double, DataType::Currency, DataType::Date, DataType::Boolean, DataType::Guid,
                                DataType::Integer, DataType::Integer, DataType::Integer, DataType::WChar,
                                DataType::Double, DataType::Double}));
}

TEST_F(SelectTest, DatesAreComparedWithNumbers) {
  EXPECT_EQ(Rows("Select ID From Competitions Where CompetitionDate = 45007"), (Texts{"2", "3"}));
  EXPECT_EQ(Rows("Select ID From Competitions Where CompetitionDate >= 45001 And CompetitionDate <= 45007"),
            (Texts{"2", "3"}));
  EXPECT_EQ(Rows("Select ID From Competitions Where CompetitionDate < 45000.5"), (Texts{"1"}));
}

}  // namespace
}  // namespace tavi::access::test
