#include <gtest/gtest.h>

#include "facade/ThreadStore.h"
#include "facade/support/Club.h"
#include "members/Members.h"
#include "names/NameSearch.h"
#include "platform/values/Convert.h"

namespace tavi {
namespace {

using testing::Club;
using Texts = std::vector<std::string>;

/// Members of a club through the public class.
class MembersTest : public ::testing::Test {
 protected:
  ~MembersTest() override { EXPECT_EQ(club_.OpenCount(), 0) << "an operation left the file open"; }

  std::string RefusalOf(const std::string& first, const std::string& initials, const std::string& last) {
    try {
      club_->AddNewMember(first, initials, last);
    } catch (const Error& error) {
      EXPECT_TRUE(error.Is(ErrorNumber::Component));
      EXPECT_EQ(error.Source(), "cDatabase");
      return error.Description();
    }
    return "accepted";
  }
  double StoredHandicap(std::int32_t number) {
    return ToDouble(club_.Single("Select Handicap From Members Where MembershipNumber = " + std::to_string(number)));
  }

  Club club_;
};

TEST_F(MembersTest, NumbersAreGivenFromOneOn) {
  EXPECT_EQ(club_->AddNewMember("Anne", "", "Hill"), 1);
  EXPECT_EQ(club_->AddNewMember("Bob", "C", "Dale"), 2);
  EXPECT_TRUE(club_.Messages().empty());
}

TEST_F(MembersTest, ARetiredMembersNumberIsNotGivenAgain) {
  club_->AddNewMember("Anne", "", "Hill");
  club_->DeleteMember(1);
  EXPECT_EQ(club_->AddNewMember("Bob", "", "Dale"), 2);
}

TEST_F(MembersTest, ANewMemberIsStoredWithKeysTypeAndDates) {
  club_->AddNewMember("Anne", "B", "Hill", 52.5);
  EXPECT_EQ(
      club_.Rows("Select MembershipNumber, EBUNumber, Title, FirstName, MiddleInitials, LastName, KnownAs, Sex, "
                 "DOB, MemberType, DateOfJoining, SubsPaid, SubsDue, AmountOwing, Privacy, Active, Handicap, "
                 "UniquenessFlag, Stratum From Members"),
      (Texts{"1 |  |  | Anne | B | Hill |  | 0 |  | Standard | 1800-01-01 | 1800-01-01 | 1800-01-01 | 0 | False | "
             "True | 52.5 | 4 | 0"}));
  const auto& keys = *club_.SharedPlatform()->nameKeyService;
  EXPECT_EQ(club_.Rows("Select FuzzedFirstName, FuzzedLastName From Members"),
            (Texts{keys.Key(NameKeyMode::FirstName, "Anne") + " | " + keys.Key(NameKeyMode::Surname, "Hill")}));
}

TEST_F(MembersTest, OfTwoWithOneNumberTheRetiredOnesNamesAreRead) {
  club_.Execute("Drop Index PrimaryKey On Members");
  const std::string insert = "Insert Into Members (MembershipNumber, FirstName, LastName, Active) Values ";
  for (const char* row :
       {"(7, 'Anne', 'Hill', -1)", "(7, 'Old', 'Name', 0)", "(8, 'Old', 'Name', 0)", "(8, 'Anne', 'Hill', -1)"}) {
    club_.Execute(insert + row);
  }
  // Descending, because True is -1.
  EXPECT_EQ(GetFullName(*ThreadStore(), 7), "Old Name");
  EXPECT_EQ(GetFullName(*ThreadStore(), 8), "Old Name");
}

TEST_F(MembersTest, AHandicapBelowOneBecomesFifty) {
  EXPECT_EQ(StoredHandicap(club_->AddNewMember("Anne", "", "Hill", 0.5)), 50.0);
  EXPECT_EQ(StoredHandicap(club_->AddNewMember("Bob", "", "Hill", -3.0)), 50.0);
  EXPECT_EQ(StoredHandicap(club_->AddNewMember("Cat", "", "Hill")), 50.0);
}

TEST_F(MembersTest, AHandicapOfOneIsKept) {
  EXPECT_EQ(StoredHandicap(club_->AddNewMember("Anne", "", "Hill", 1.0)), 1.0);
}

TEST_F(MembersTest, ANameThatAMemberBearsIsRefused) {
  club_->AddNewMember("Anne", "B", "Hill");
  EXPECT_EQ(RefusalOf("Anne", "B", "Hill"), "There is already amember called Anne B Hill");
  EXPECT_EQ(RefusalOf("Anne", "C", "Hill"), "accepted");
}

TEST_F(MembersTest, ANameThatARetiredMemberBearsIsRefusedToo) {
  club_->AddNewMember("Anne", "", "Hill");
  club_->DeleteMember(1);
  EXPECT_EQ(RefusalOf("Anne", "", "Hill"), "There is already aretired member called Anne Hill");
}

TEST_F(MembersTest, ARefusedMemberLeavesTheFileAsOftenOpenAsBefore) {
  club_->AddNewMember("Anne", "", "Hill");
  club_->OpenDatabase();
  RefusalOf("Anne", "", "Hill");
  EXPECT_EQ(club_.OpenCount(), 1);
  club_->CloseDatabase();
}

TEST_F(MembersTest, NamesOfAllKindsAreKeptAsTheyAre) {
  const std::vector<std::array<const char*, 2>> names{
      {"Éloïse", "O'Neil"}, {"Łukasz", "Müller-Lüdenscheidt"}, {"50% Joe", "St. John \"Jack\""}, {"Ζωή", "de la Mare"}};
  for (const auto& [first, last] : names) {
    const std::int32_t number = club_->AddNewMember(first, "Q", last);
    std::string firstName;
    std::string initials;
    std::string lastName;
    EXPECT_EQ(club_->GetEBUNoAndNames(number, firstName, initials, lastName), "");
    EXPECT_EQ(firstName + "/" + initials + "/" + lastName, std::string(first) + "/Q/" + last);
    EXPECT_NE(RefusalOf(first, "Q", last), "accepted");
  }
}

TEST_F(MembersTest, ANameIsShownInTheFormatsAndUpToItsUniqueness) {
  club_->AddNewMember("John", "AB", "Smith");
  EXPECT_EQ(club_->GetMemberName(1, 0), "John AB Smith");
  EXPECT_EQ(club_->GetMemberName(1, 10), "Smith, John AB");
  EXPECT_EQ(club_->GetMemberName(1, 9), "John");
  club_->AddNewMember("John", "", "Brown");
  EXPECT_EQ(club_->GetMemberName(1, 9), "John S");
  club_->AddNewMember("John", "", "Smyth");
  EXPECT_EQ(club_->GetMemberName(1, 9), "John Smith");
  club_->AddNewMember("John", "C", "Smith");
  EXPECT_EQ(club_->GetMemberName(1, 9), "John AB Smith");
}

TEST_F(MembersTest, UnknownAndRetiredMembersHaveTheDefaultName) {
  club_->AddNewMember("Anne", "", "Hill");
  EXPECT_EQ(club_->GetMemberName(99, 0, "nobody"), "nobody");
  EXPECT_EQ(club_->GetMemberName(99, 0), "");
  club_->DeleteMember(1);
  EXPECT_EQ(club_->GetMemberName(1, 0, "nobody"), "nobody");
}

TEST_F(MembersTest, TheEBUNumberComesWithTheName) {
  club_->AddNewMember("Anne", "", "Hill");
  club_->SetEBUNumber(1, "00123456");
  std::string number;
  EXPECT_EQ(club_->GetNameAndEBUNumber(1, 5, number), "Anne Hill");
  EXPECT_EQ(number, "00123456");
  EXPECT_EQ(club_->GetNameAndEBUNumber(9, 5, number, "nobody"), "nobody");
  EXPECT_EQ(number, "");
}

TEST_F(MembersTest, TheEBUNumberAndNamesOfAnUnknownMemberAreEmpty) {
  std::string first = "a";
  std::string initials = "b";
  std::string last = "c";
  EXPECT_EQ(club_->GetEBUNoAndNames(9, first, initials, last), "");
  EXPECT_EQ(first + initials + last, "");
}

TEST_F(MembersTest, ATypedNumberIsAClubNumberBeforeItIsAnEBUNumber) {
  club_->AddNewMember("Anne", "", "Hill");
  club_->AddNewMember("Bob", "", "Dale");
  club_->SetEBUNumber(2, "1");
  club_->SetEBUNumber(1, "1234");
  EXPECT_EQ(club_->EnteredNumberToClubNumber(1), 1);
  EXPECT_EQ(club_->EnteredNumberToClubNumber(1234), 1);
  EXPECT_EQ(club_->EnteredNumberToClubNumber(77), 0);
}

TEST_F(MembersTest, RetiringKeepsTheRecord) {
  club_->AddNewMember("Anne", "", "Hill", 45.0);
  club_->DeleteMember(1);
  EXPECT_EQ(club_.Rows("Select MembershipNumber, FirstName, LastName, Handicap, Active From Members"),
            (Texts{"1 | Anne | Hill | 45 | False"}));
  EXPECT_TRUE(club_->IsValidMemberID(1));
  EXPECT_FALSE(club_->IsValidMemberID(2));
  EXPECT_FALSE(club_->IsValidMemberID(-1));
}

TEST_F(MembersTest, ARetiredMembersHandicapIsHiddenButKept) {
  club_->AddNewMember("Anne", "", "Hill", 45.0);
  club_->DeleteMember(1);
  EXPECT_EQ(club_->GetHandicap(1), 50.0);
  EXPECT_EQ(GetHandicap(*ThreadStore(), 1), 45.0);
}

TEST_F(MembersTest, HandicapsOfActiveMembersCanBeSet) {
  club_->AddNewMember("Anne", "", "Hill", 45.0);
  club_->SetHandicap(1, 53.125);
  EXPECT_EQ(club_->GetHandicap(1), 53.125);
  club_->DeleteMember(1);
  club_->SetHandicap(1, 60.0);
  EXPECT_EQ(GetHandicap(*ThreadStore(), 1), 53.125);
  EXPECT_EQ(club_->GetHandicap(77), 50.0);
}

TEST_F(MembersTest, HandicapsAreReadBackAsTheyWereStored) {
  club_->AddNewMember("Anne", "", "Hill", 100.0 / 3.0);
  club_->AddNewMember("Bob", "", "Dale", 50.0);
  EXPECT_EQ(club_->GetHandicap(1), 100.0 / 3.0);
  club_->SetHandicap(1, 0.1 + 0.2);
  EXPECT_EQ(club_->GetHandicap(1), 0.1 + 0.2);
  club_->AddRegularPair(1, 2);
  std::string alias;
  double handicap = 0.0;
  ASSERT_TRUE(club_->IsRegularPair(1, 2, alias, handicap));
  EXPECT_EQ(handicap, (0.1 + 0.2) / 2.0 + 25.0);
  club_->SetPairHandicap(1, 2, 200.0 / 3.0);
  ASSERT_TRUE(club_->IsRegularPair(1, 2, alias, handicap));
  EXPECT_EQ(handicap, 200.0 / 3.0);
}

TEST_F(MembersTest, AStratumIsStoredAndRead) {
  club_->AddNewMember("Anne", "", "Hill");
  EXPECT_EQ(club_->PlayersStratum(1), 0);
  club_->SetPlayersStratum(1, 3);
  EXPECT_EQ(club_->PlayersStratum(1), 3);
  club_->SetPlayersStratum(1, -32768);
  EXPECT_EQ(club_->PlayersStratum(1), -32768);
  EXPECT_EQ(club_->PlayersStratum(99), 0);
}

TEST_F(MembersTest, AMemberWithoutInitialsHasNoDoubleBlankInTheFullName) {
  club_->AddNewMember("Anne", "", "Hill");
  club_->AddNewMember("Anne", "B C", "Hill");
  EXPECT_EQ(GetFullName(*ThreadStore(), 1), "Anne Hill");
  EXPECT_EQ(GetFullName(*ThreadStore(), 2), "Anne B C Hill");
  EXPECT_EQ(GetFullName(*ThreadStore(), 3), "");
}

TEST_F(MembersTest, TheFullNameHasEachPairOfBlanksMadeOneAndNothingElseTidied) {
  club_->AddNewMember("Anne\tMary", "", "Hill");
  EXPECT_EQ(GetFullName(*ThreadStore(), 1), "Anne\tMary Hill") << "a tab is no blank";
  club_.Execute("Update Members Set FirstName = '  Jo  Ann', MiddleInitials = ' ', LastName = 'Ash '");
  EXPECT_EQ(GetFullName(*ThreadStore(), 1), "Jo Ann  Ash") << "three blanks are a pair and one";
}

TEST_F(MembersTest, MembersExistWhenTheyHaveARecord) {
  club_->AddNewMember("Anne", "", "Hill");
  EXPECT_TRUE(MemberExists(*ThreadStore(), 1));
  EXPECT_FALSE(MemberExists(*ThreadStore(), 2));
}

TEST_F(MembersTest, TheIdentifierOfANameTellsWhetherItIsRetired) {
  club_->AddNewMember("Anne", "", "Hill");
  bool retired = true;
  EXPECT_EQ(GetMembershipID(*ThreadStore(), "Anne", "", "Hill", retired), 1);
  EXPECT_FALSE(retired);
  club_->DeleteMember(1);
  EXPECT_EQ(GetMembershipID(*ThreadStore(), "Anne", "", "Hill", retired), 1);
  EXPECT_TRUE(retired);
  EXPECT_EQ(GetMembershipID(*ThreadStore(), "Anne", "X", "Hill", retired), -1);
}

TEST_F(MembersTest, EachNewClubNameIsKept) {
  EXPECT_EQ(club_->ClubName(), "");
  EXPECT_EQ(club_->ClubID(), "");
  club_->SetClubName("Hillcrest Bridge Club");
  club_->SetClubName("St. Anne's");
  EXPECT_EQ(club_->ClubName(), "St. Anne's");
  EXPECT_TRUE(club_->WasClubEverCalled("Hillcrest Bridge Club"));
  EXPECT_FALSE(club_->WasClubEverCalled("Hillcrest"));
  EXPECT_EQ(ThreadStore()->MPCertificatePrefix(), "SA");
}

TEST_F(MembersTest, TheClubsNumberIsThatOfTheNewestName) {
  club_->SetClubName("Old");
  club_->SetClubName("New");
  club_.Execute("Update ClubNames Set ClubEBUNumber = '111' Where ClubName = 'Old'");
  club_.Execute("Update ClubNames Set ClubEBUNumber = '222' Where ClubName = 'New'");
  EXPECT_EQ(club_->ClubID(), "222");
}

TEST_F(MembersTest, PlayersAreFoundThroughThePublicClass) {
  club_->AddNewMember("Stephen", "", "Hill");
  club_->AddNewMember("Bob", "", "Dale");
  EXPECT_EQ(club_->FindMember("bob dale"), 2);
  EXPECT_EQ(club_->FindMember("Bob Hill"), -1);
  const MatchList matches = club_->FindNearestMatches("Steven Hill");
  EXPECT_EQ(matches.LowerBound, 1);
  EXPECT_EQ(matches.Numbers, std::vector<std::int32_t>{1});
  const MatchList none = club_->FindNearestMatches("Zzz Qqq");
  EXPECT_EQ(none.LowerBound, 0);
  EXPECT_EQ(none.Numbers, std::vector<std::int32_t>{0});
}

}  // namespace
}  // namespace tavi
