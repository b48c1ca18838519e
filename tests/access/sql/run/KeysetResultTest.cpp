#include <gtest/gtest.h>

#include "access/sql/support/SqlFile.h"

namespace tavi::access::test {
namespace {

using Texts = std::vector<std::string>;

class KeysetResultTest : public ::testing::Test {
 protected:
  KeysetResultTest() { MakeClub(file_); }
  Texts Rows(const std::string& text) { return file_.Rows(text); }
  static Error ErrorOf(const std::function<void()>& work) {
    try {
      work();
    } catch (const Error& error) {
      return error;
    }
    ADD_FAILURE() << "no error";
    return {0, "", ""};
  }
  SqlFile file_;
};

TEST_F(KeysetResultTest, MovesBothWays) {
  const auto rows = file_.Open("Select MembershipNumber From Members");
  EXPECT_EQ(NumberOf(ErrorOf([&] { rows->MovePrevious(); })), 0x800A0BCDU);
  rows->MoveNext();
  EXPECT_EQ(ValueText(rows->Get(0)), "2");
  rows->MovePrevious();
  EXPECT_EQ(ValueText(rows->Get(0)), "1");
  while (!rows->AtEnd()) rows->MoveNext();
  EXPECT_EQ(NumberOf(ErrorOf([&] { rows->MoveNext(); })), 0x800A0BCDU);
  EXPECT_EQ(NumberOf(ErrorOf([&] { (void)rows->Get(0); })), 0x800A0BCDU);
  rows->MovePrevious();
  EXPECT_EQ(ValueText(rows->Get(0)), "7");
}

TEST_F(KeysetResultTest, AnEmptyResultIsAtItsEnd) {
  const auto rows = file_.Open("Select * From Members Where MembershipNumber = 99");
  EXPECT_TRUE(rows->AtEnd());
  EXPECT_EQ(NumberOf(ErrorOf([&] { rows->Set(0, std::int32_t{1}); })), 0x800A0BCDU);
  EXPECT_NO_THROW(rows->Update());
}

TEST_F(KeysetResultTest, UpdateStoresOnlyWhatWasSet) {
  const auto rows = file_.Open("Select FirstName, Handicap From Members Where MembershipNumber = 1");
  rows->Set(1, 61.5);
  EXPECT_EQ(ValueText(rows->Get(1)), "61.5");
  file_.Run("Update Members Set FirstName = 'Jon', Handicap = 10 Where MembershipNumber = 1");
  rows->Update();
  EXPECT_EQ(Rows("Select FirstName, Handicap From Members Where MembershipNumber = 1"), (Texts{"Jon|61.5"}));
  EXPECT_EQ(ValueText(rows->Get(0)), "Jon");
}

TEST_F(KeysetResultTest, CancelUpdateDropsWhatWasSet) {
  const auto rows = file_.Open("Select Handicap From Members Where MembershipNumber = 1");
  rows->Set(0, 61.5);
  rows->CancelUpdate();
  rows->Update();
  EXPECT_EQ(ValueText(rows->Get(0)), "50");
  EXPECT_EQ(Rows("Select Handicap From Members Where MembershipNumber = 1"), (Texts{"50"}));
}

TEST_F(KeysetResultTest, MovingStoresWhatWasSet) {
  const auto rows = file_.Open("Select Handicap From Members Where MembershipNumber = 1");
  rows->Set(0, 61.5);
  rows->MoveNext();
  EXPECT_EQ(Rows("Select Handicap From Members Where MembershipNumber = 1"), (Texts{"61.5"}));
}

TEST_F(KeysetResultTest, ValuesAreConvertedToTheirColumns) {
  const auto rows = file_.Open("Select Handicap, UniquenessFlag, Active, FirstName, DateOfJoining From Members");
  rows->Set(0, std::string("47.5"));
  rows->Set(1, 2.5);
  rows->Set(2, std::int16_t{1});
  rows->Set(3, std::int32_t{12});
  rows->Set(4, std::int32_t{45000});
  rows->Update();
  EXPECT_EQ(Rows("Select Handicap, UniquenessFlag, Active, FirstName, DateOfJoining From Members "
                 "Where MembershipNumber = 1"),
            (Texts{"47.5|2|True|12|2023-03-15"}));
  EXPECT_EQ(NumberOf(ErrorOf([&] { rows->Set(0, std::string("many")); })), 0x80040E07U);
}

TEST_F(KeysetResultTest, ANewRowGetsDefaultsAndItsNumber) {
  const auto rows = file_.Open("Select * From Competitions Where CompetitionName = 'New'");
  rows->AddNew();
  const std::size_t id = rows->FindColumn("ID").value();
  const std::size_t name = rows->FindColumn("competitionname").value();
  const std::size_t colour = rows->FindColumn("MasterPointsColour").value();
  EXPECT_FALSE(rows->AtEnd());
  EXPECT_EQ(ValueText(rows->Get(id)), "null");
  EXPECT_EQ(ValueText(rows->Get(rows->FindColumn("NatCode").value())), "EBU");
  rows->Set(name, std::string("New"));
  rows->Update();
  EXPECT_EQ(ValueText(rows->Get(id)), "4");
  rows->Set(colour, std::int32_t{5});
  rows->Update();
  EXPECT_EQ(Rows("Select ID, CompetitionName, MasterPointsColour, NatCode From Competitions Where ID = 4"),
            (Texts{"4|New|5|EBU"}));
  rows->MoveNext();
  EXPECT_TRUE(rows->AtEnd());
}

TEST_F(KeysetResultTest, AWholeTableTakesNewRows) {
  const auto rows = file_.GetSession().OpenTable("clubnames");
  EXPECT_TRUE(rows->AtEnd());
  for (const char* name : {"One", "Two"}) {
    rows->AddNew();
    rows->Set(1, std::string(name));
    rows->Update();
  }
  EXPECT_EQ(ValueText(rows->Get(0)), "2");
  rows->MovePrevious();
  EXPECT_EQ(ValueText(rows->Get(1)), "One");
  EXPECT_EQ(Rows("Select * From ClubNames"), (Texts{"1|One", "2|Two"}));
}

TEST_F(KeysetResultTest, ARefusedNewRowCanBeCorrected) {
  const auto rows = file_.GetSession().OpenTable("Members");
  rows->AddNew();
  rows->Set(0, std::int32_t{1});
  EXPECT_EQ(NumberOf(ErrorOf([&] { rows->Update(); })), 0x80004005U);
  rows->Set(0, std::int32_t{8});
  rows->Update();
  EXPECT_EQ(Rows("Select Count(*) From Members"), (Texts{"6"}));
  rows->AddNew();
  rows->CancelUpdate();
  EXPECT_EQ(ValueText(rows->Get(0)), "8");
}

TEST_F(KeysetResultTest, ADeletedRowCannotBeReadAndIsSkipped) {
  const auto rows = file_.Open("Select MembershipNumber From Members");
  rows->MoveNext();
  file_.Run("Delete From Members Where MembershipNumber In (2, 3)");
  EXPECT_EQ(NumberOf(ErrorOf([&] { (void)rows->Get(0); })), 0x80040E23U);
  rows->Set(0, std::int32_t{20});
  EXPECT_EQ(NumberOf(ErrorOf([&] { rows->Update(); })), 0x80040E23U);
  rows->CancelUpdate();
  rows->MoveNext();
  EXPECT_EQ(ValueText(rows->Get(0)), "4");
  rows->MovePrevious();
  EXPECT_EQ(ValueText(rows->Get(0)), "1");
}

TEST_F(KeysetResultTest, TwoResultsAndStatementsInterleave) {
  const auto first = file_.Open("Select MembershipNumber, Handicap From Members");
  const auto second = file_.Open("Select MembershipNumber, Handicap From Members Order By MembershipNumber Desc");
  first->Set(1, 1.0);
  first->Update();
  second->Set(1, 7.0);
  second->Update();
  file_.Run("Update Members Set Handicap = Handicap + 1");
  EXPECT_EQ(RowTexts(*first), (Texts{"1|2", "2|51", "3|51", "4|51", "7|8"}));
  EXPECT_EQ(RowTexts(*second), (Texts{"7|8", "4|51", "3|51", "2|51", "1|2"}));
}

TEST_F(KeysetResultTest, ManyRowsAreReadAhead) {
  for (int i = 100; i < 400; ++i) {
    file_.Run("Insert into ClubNames (ClubName) Values ('Club " + std::to_string(i) + "')");
  }
  const auto rows = file_.GetSession().OpenTable("ClubNames");
  EXPECT_EQ(RowTexts(*rows).size(), 300U);
  for (int i = 0; i < 150; ++i) rows->MovePrevious();
  EXPECT_EQ(ValueText(rows->Get(0)), "151");
  rows->Set(1, std::string("changed"));
  rows->Update();
  rows->MoveNext();
  rows->MovePrevious();
  EXPECT_EQ(ValueText(rows->Get(1)), "changed");
}

TEST_F(KeysetResultTest, ComputedColumnsCannotBeSet) {
  const auto rows = file_.Open("Select MembershipNumber + 1 As NextNumber From Members");
  EXPECT_EQ(ValueText(rows->Get(0)), "2");
  EXPECT_EQ(NumberOf(ErrorOf([&] { rows->Set(0, std::int32_t{5}); })), 0x800A0CB3U);
  const auto groups = file_.Open("Select FirstName, Count(*) From Members Group By FirstName");
  EXPECT_EQ(NumberOf(ErrorOf([&] { groups->Set(0, std::string("x")); })), 0x800A0CB3U);
  EXPECT_EQ(NumberOf(ErrorOf([&] { groups->AddNew(); })), 0x800A0CB3U);
}

TEST_F(KeysetResultTest, AJoinIsChangedInTheTableOfTheColumn) {
  const auto rows = file_.Open(
      "Select CompetitionName, ActualPercentage From Results Inner Join Competitions On Results.Competition = "
      "Competitions.ID Where Player = 4");
  rows->Set(0, std::string("Renamed"));
  rows->Set(1, 33.5);
  rows->Update();
  EXPECT_EQ(Rows("Select CompetitionName From Competitions Where ID = 2"), (Texts{"Renamed"}));
  EXPECT_EQ(Rows("Select ActualPercentage From Results Where Player = 4"), (Texts{"33.5"}));
  EXPECT_EQ(NumberOf(ErrorOf([&] { rows->AddNew(); })), 0x800A0CB3U);
}

TEST_F(KeysetResultTest, TheMissingSideOfAnOuterJoinCannotBeSet) {
  const auto rows = file_.Open(
      "Select MembershipNumber, ActualPercentage From Members Left Join Results On Members.MembershipNumber = "
      "Results.Player Where MembershipNumber = 7");
  EXPECT_EQ(ValueText(rows->Get(1)), "null");
  rows->Set(1, 5.0);
  EXPECT_EQ(NumberOf(ErrorOf([&] { rows->Update(); })), 0x800A0CB3U);
}

TEST_F(KeysetResultTest, FieldsOfAJoinAreFoundByBothNames) {
  const auto rows = file_.Open(
      "Select ActualPercentage, Competitions.ID, Competitions.CompetitionDate From Results Inner Join Competitions On "
      "Results.Competition = Competitions.ID");
  EXPECT_EQ(rows->FindColumn("competitions.id"), 1U);
  EXPECT_EQ(rows->FindColumn("ID"), 1U);
  EXPECT_EQ(rows->FindColumn("CompetitionDate"), 2U);
  EXPECT_EQ(rows->FindColumn("Results.ActualPercentage"), 0U);
  EXPECT_EQ(rows->FindColumn("Results.ID"), std::nullopt);
}

TEST_F(KeysetResultTest, AnAlteredTableIsNoticed) {
  const auto rows = file_.Open("Select MembershipNumber, Handicap From Members");
  file_.Run("Alter Table Members Add Column Extra Long");
  EXPECT_EQ(RowTexts(*rows).size(), 5U);
  rows->MovePrevious();
  rows->Set(1, 44.0);
  rows->Update();
  EXPECT_EQ(Rows("Select Handicap, Extra From Members Where MembershipNumber = 7"), (Texts{"44|null"}));
  file_.Run("Alter Table Members Drop Column KnownAs");
  EXPECT_EQ(NumberOf(ErrorOf([&] { (void)rows->Get(0); })), 0x80004005U);
}

TEST_F(KeysetResultTest, TextThatIsTooLongIsRefused) {
  const auto rows = file_.Open("Select FirstName From Members");
  EXPECT_EQ(NumberOf(ErrorOf([&] { rows->Set(0, std::string(51, 'x')); })), 0x80004005U);
}

}  // namespace
}  // namespace tavi::access::test
