#include <gtest/gtest.h>

#include "members/Members.h"
#include "members/Partnerships.h"
#include "members/Walk.h"
#include "store/support/FakeFile.h"

namespace tavi {
namespace {

using testing::FakePlatform;
using testing::FakeRows;

constexpr const char* kMemberRow =
    "Select MembershipNumber, FirstName, MiddleInitials, LastName, KnownAs, Handicap, EBUNumber, UniquenessFlag From "
    "Members Where MembershipNumber = 7 And Active <> 0";

/// What is asked of the provider, word for word: other programs and files rely on it.
class MemberStatementsTest : public ::testing::Test {
 protected:
  MemberStatementsTest() {
    store_.SetDatabaseFolder("C:\\Club");
    store_.OpenDB();
    store_.CloseDB(false);
    fake_.file->statements.clear();
    fake_.file->recordsets.clear();
  }
  ~MemberStatementsTest() override { EXPECT_EQ(store_.OpenCount(), 0); }

  FakeRows& Answer(const std::string& query, const std::string& field, const Value& value) {
    return fake_.file->answers[query] = FakeRows{{field}, {{value}}};
  }
  std::vector<std::string> Statements() const { return fake_.file->statements; }
  std::vector<std::string> Queries() const {
    std::vector<std::string> sources;
    for (const auto& opened : fake_.file->recordsets) sources.push_back(opened.source);
    return sources;
  }

  FakePlatform fake_;
  cDatabase store_{fake_.platform, {}};
};

using Texts = std::vector<std::string>;

TEST_F(MemberStatementsTest, TheNextNumberFollowsTheHighest) {
  Answer("Select Top 1 MembershipNumber from Members Order by MembershipNumber Desc", "MembershipNumber",
         std::int32_t{41});
  EXPECT_EQ(NextAvailableMemberNo(store_), 42);
}

TEST_F(MemberStatementsTest, TheFirstNumberIsOne) {
  EXPECT_EQ(NextAvailableMemberNo(store_), 1);
}

TEST_F(MemberStatementsTest, BehindTheLargestNumberThereIsNone) {
  Answer("Select Top 1 MembershipNumber from Members Order by MembershipNumber Desc", "MembershipNumber",
         std::int32_t{2147483647});
  try {
    static_cast<void>(NextAvailableMemberNo(store_));
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_TRUE(error.Is(ErrorNumber::Overflow));
  }
}

TEST_F(MemberStatementsTest, AddingStoresTwentyFiveColumnsThenTheHandicap) {
  MemberDetails details;
  details.Title = "Dr";
  details.FirstName = "Anne";
  details.Initials = "B";
  details.LastName = "O'Neil";
  details.Handicap = 52.5;
  details.MemberType = "Standard";
  details.JoinDate = Date::FromCivil(2020, 1, 1);
  details.LastPaid = Date::FromCivil(2021, 1, 1);
  details.NextDue = Date::FromCivil(2022, 1, 1);
  details.Subs = 12.5;
  details.RequiredID = 7;
  details.Gender = 2;
  details.HouseID = "The Mill";
  details.Address = "1 High St\r\nBath";
  details.PostCode = "BA1";
  details.email = "a@b.c";
  details.HomePhone = "1";
  details.WorkPhone = "2";
  details.MobilePhone = "3";
  details.Notes = "100%";
  details.Privacy = true;

  EXPECT_EQ(AddMember(store_, details), 7);
  EXPECT_EQ(Statements(),
            (Texts{"Insert into Members (MembershipNumber, EBUNumber, Title, FirstName, MiddleInitials, LastName, "
                   "FuzzedFirstName, FuzzedLastName, KnownAs, Sex, DOB, email, HouseID, Address, PostCode, HomePhone, "
                   "WorkPhone, MobilePhone, Notes, MemberType, DateOfJoining, SubsPaid, SubsDue, AmountOwing, Privacy) "
                   "Values (7, '', 'Dr', 'Anne', 'B', 'O''Neil', 'F:ANNE', 'S:O''NEIL', '', 2, Null, 'a@b.c', 'The "
                   "Mill', '1 High St%c%lBath', 'BA1', '1', '2', '3', '100%p', 'Standard', 43831, 44197, 44562, 12.5, "
                   "1)",
                   "Update Members Set Handicap = 52.5 Where MembershipNumber = 7"}));
  EXPECT_EQ(Queries(), (Texts{"Select FirstName, MiddleInitials, LastName, UniquenessFlag From Members Where Active <> "
                              "0  And FirstName = 'Anne'Order By FirstName, LastName, MiddleInitials"}));
}

TEST_F(MemberStatementsTest, ANewMemberIsLookedForByExactNameFirst) {
  EXPECT_EQ(AddNewMember(store_, "Anne", "B", "O'Neil", 52.5), 1);
  EXPECT_EQ(
      Queries().at(0),
      "Select MembershipNumber, Active from Members Where FirstName = 'Anne' And MiddleInitials = 'B' And LastName "
      "= 'O''Neil'");
  EXPECT_EQ(Queries().at(1), "Select Top 1 MembershipNumber from Members Order by MembershipNumber Desc");
}

TEST_F(MemberStatementsTest, ANewMemberHasTheDates1January1800AndTheTypeStandard) {
  AddNewMember(store_, "Anne", "", "Hill", std::nullopt);
  EXPECT_EQ(
      Statements(),
      (Texts{"Insert into Members (MembershipNumber, EBUNumber, Title, FirstName, MiddleInitials, LastName, "
             "FuzzedFirstName, FuzzedLastName, KnownAs, Sex, DOB, email, HouseID, Address, PostCode, HomePhone, "
             "WorkPhone, MobilePhone, Notes, MemberType, DateOfJoining, SubsPaid, SubsDue, AmountOwing, Privacy) "
             "Values (1, '', '', 'Anne', '', 'Hill', 'F:ANNE', 'S:HILL', '', 0, Null, '', '', '', '', '', '', '', "
             "'', 'Standard', -36522, -36522, -36522, 0, 0)",
             "Update Members Set Handicap = 50 Where MembershipNumber = 1"}));
}

TEST_F(MemberStatementsTest, MembersAreCountedByNumber) {
  Answer("Select count(*) From Members Where MembershipNumber = 7", "Expr1000", std::int32_t{1});
  EXPECT_TRUE(MemberExists(store_, 7));
  EXPECT_FALSE(MemberExists(store_, 8));
}

TEST_F(MemberStatementsTest, OfTwoRowsWithOneNumberTheNamesOfTheFirstAreRead) {
  fake_.file->answers
      ["Select FirstName, MiddleInitials, LastName, Active From Members Where MembershipNumber = 7 Order "
       "by Active Desc"] = {{"FirstName", "MiddleInitials", "LastName", "Active"},
                            {{"Anne", Null(), "Hill", false}, {"New", "", "Name", true}}};
  std::string first;
  std::string initials = "?";
  std::string last;
  bool active = false;
  EXPECT_TRUE(GetMembersNames(store_, 7, first, initials, last, active));
  EXPECT_EQ(first + "/" + initials + "/" + last, "Anne//Hill");
  EXPECT_FALSE(active);
  EXPECT_EQ(GetFullName(store_, 7), "Anne Hill");
  EXPECT_FALSE(GetMembersNames(store_, 8, first, initials, last, active));
}

TEST_F(MemberStatementsTest, HandicapsAreReadWithAndWithoutTheRetired) {
  Answer("Select Handicap from Members where MembershipNumber = 7", "Handicap", 47.25);
  Answer("Select Handicap From Members Where MembershipNumber = 7 And Active <> 0", "Handicap", 48.5);
  EXPECT_EQ(GetHandicap(store_, 7), 47.25);
  EXPECT_EQ(GetActiveHandicap(store_, 7), 48.5);
  EXPECT_EQ(GetHandicap(store_, 8), 50.0);
  EXPECT_EQ(GetActiveHandicap(store_, 8), 50.0);
}

TEST_F(MemberStatementsTest, AnEmptyHandicapIsTheNeutralOne) {
  Answer("Select Handicap from Members where MembershipNumber = 7", "Handicap", Null());
  EXPECT_EQ(GetHandicap(store_, 7), 50.0);
}

TEST_F(MemberStatementsTest, ChangesOfOneMemberAreSingleStatements) {
  SetEBUNumber(store_, 7, " 0012'3 ");
  DeleteMember(store_, 7);
  SetActiveHandicap(store_, 7, 52.125);
  SetPlayerStratum(store_, 7, -2);
  EXPECT_EQ(Statements(), (Texts{"Update Members set EBUNumber = '0012''3' Where MembershipNumber = 7",
                                 "Update Members set Active = 0 Where MembershipNumber = 7",
                                 "Update Members Set Handicap = 52.125 Where MembershipNumber = 7 And Active <> 0",
                                 "Update Members Set Stratum = -2 Where MembershipNumber = 7"}));
}

TEST_F(MemberStatementsTest, TheStratumOfAnUnknownPlayerIsNone) {
  Answer("Select Stratum from Members where MembershipNumber = 7", "Stratum", std::int32_t{3});
  EXPECT_EQ(GetPlayerStratum(store_, 7), 3);
  EXPECT_EQ(GetPlayerStratum(store_, 8), 0);
}

TEST_F(MemberStatementsTest, ATypedNumberIsAskedForAsClubNumberThenAsEBUNumber) {
  Answer("Select MembershipNumber from Members where EBUNumber = '1234'", "MembershipNumber", std::int32_t{7});
  EXPECT_EQ(EnteredNumberToClubNumber(store_, 1234), 7);
  EXPECT_EQ(Queries().at(0), "Select MembershipNumber from Members where MembershipNumber = 1234");
  EXPECT_EQ(EnteredNumberToClubNumber(store_, 99), 0);
}

TEST_F(MemberStatementsTest, RetiredNumbersAreValid) {
  Answer("Select top 1 MembershipNumber From Members Where MembershipNumber = 7", "MembershipNumber", std::int32_t{7});
  EXPECT_TRUE(IsValidMemberID(store_, 7));
  EXPECT_FALSE(IsValidMemberID(store_, 8));
}

TEST_F(MemberStatementsTest, ANameIsShownAsFarAsTheStoredFlagSays) {
  fake_.file->answers[kMemberRow] = {{"MembershipNumber", "FirstName", "MiddleInitials", "LastName", "KnownAs",
                                      "Handicap", "EBUNumber", "UniquenessFlag"},
                                     {{std::int32_t{7}, "Anne", "B", "Hill", Null(), 50.0, "123", std::int32_t{3}}}};
  std::string number;
  EXPECT_EQ(GetNameAndEBUNumber(store_, 7, 9, number, "?"), "Anne H");
  EXPECT_EQ(number, "123");
  fake_.file->answers[kMemberRow].rows[0].back() = Null();
  EXPECT_EQ(GetNameAndEBUNumber(store_, 7, 9, number, "?"), "Anne");
  fake_.file->answers[kMemberRow].rows[0].back() = std::int32_t{1000000};
  EXPECT_EQ(GetNameAndEBUNumber(store_, 7, 9, number, "?"), "Anne") << "a damaged flag";
}

TEST_F(MemberStatementsTest, ClubNamesAreAskedForNewestFirst) {
  Answer("Select top 1 ClubEBUNumber from ClubNames Order by ClubID Desc", "ClubEBUNumber", "4711");
  Answer("Select top 1 ClubID from ClubNames Where ClubName = 'St. Anne''s'", "ClubID", std::int32_t{1});
  EXPECT_EQ(store_.ClubID(), "4711");
  EXPECT_TRUE(store_.WasClubEverCalled("St. Anne's"));
  EXPECT_FALSE(store_.WasClubEverCalled("Other"));
}

TEST_F(MemberStatementsTest, APairIsNamedByItsNumbersInAscendingOrder) {
  EXPECT_EQ(PairWhereClause(7, 3), "LowerPlayer = 3 And HigherPlayer = 7");
  EXPECT_EQ(PairWhereClause(3, 7), "LowerPlayer = 3 And HigherPlayer = 7");
}

TEST_F(MemberStatementsTest, ANewPairIsInsertedWithTheMeanHandicap) {
  Answer("Select Handicap from Members where MembershipNumber = 7", "Handicap", 47.0);
  AddRegularPair(store_, 7, 3);
  EXPECT_EQ(Statements(), (Texts{"Insert into Partnerships (LowerPlayer, HigherPlayer, HigherFirst, Handicap, KnownAs) "
                                 "Values (3, 7, 1, 48.5, '')"}));
  EXPECT_EQ(Queries().back(), "Select * from Partnerships Where LowerPlayer = 3 And HigherPlayer = 7");
}

TEST_F(MemberStatementsTest, AnInactivePairIsReactivated) {
  fake_.file->answers["Select * from Partnerships Where LowerPlayer = 3 And HigherPlayer = 7"] = {
      {"Active", "KnownAs", "Handicap"}, {{false, "Old", 40.0}}};
  MakeRegularPartnership(store_, 3, 7, 55.5, true, "The O'Neils");
  EXPECT_EQ(Statements(), (Texts{"Update Partnerships Set Active = 1, Handicap = 55.5, KnownAs = 'The O''Neils' Where "
                                 "LowerPlayer = 3 And HigherPlayer = 7"}));
}

TEST_F(MemberStatementsTest, ChangesOfAPairAreSingleStatements) {
  DeletePair(store_, 7, 3);
  SetPairHandicap(store_, 7, 3, 51.5);
  EXPECT_EQ(
      Statements(),
      (Texts{"Update Partnerships set Active = 0 Where LowerPlayer = 3 And HigherPlayer = 7",
             "Update Partnerships Set Handicap = 51.5 Where LowerPlayer = 3 And HigherPlayer = 7 And Active <> 0"}));
}

TEST_F(MemberStatementsTest, RetiredPlayersArePartedFromTheirPairsHoweverManyTheyAre) {
  constexpr std::int32_t kMany = 20'000;
  RetiredPlayers players;
  for (std::int32_t number = -kMany; number <= kMany; ++number) players.Add(number);
  for (const std::int32_t number : {70'000, 70'000, -70'000}) players.Add(number);
  players.RetireFromPartnerships(store_);
  const Texts statements = Statements();
  ASSERT_EQ(statements.size(), 2U * kMany + 3U) << "one for each player";
  EXPECT_EQ(statements.front(),
            "Update Partnerships set Active = 0 where LowerPlayer = -20000 Or HigherPlayer = -20000");
  EXPECT_EQ(statements.back(), "Update Partnerships set Active = 0 where LowerPlayer = 70000 Or HigherPlayer = 70000");
}

TEST_F(MemberStatementsTest, ErrorsOfTheProviderPassUnchangedAndTheFileIsClosed) {
  fake_.file->failures.emplace_back("from Members", Error(ErrorNumber::ProviderNoTable, "Engine", "no such table"));
  for (const auto& operation : std::vector<std::function<void()>>{
           [this] { static_cast<void>(GetHandicap(store_, 7)); }, [this] { EnteredNumberToClubNumber(store_, 7); },
           [this] { AddNewMember(store_, "Anne", "", "Hill", 50.0); }, [this] { AddRegularPair(store_, 3, 7); }}) {
    try {
      operation();
      FAIL() << "no error";
    } catch (const Error& error) {
      EXPECT_TRUE(error.Is(ErrorNumber::ProviderNoTable));
      EXPECT_EQ(error.Source(), "Engine");
      EXPECT_EQ(error.Description(), "no such table");
    }
    EXPECT_EQ(store_.OpenCount(), 0);
  }
}

}  // namespace
}  // namespace tavi
