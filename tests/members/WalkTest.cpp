#include <gtest/gtest.h>

#include "facade/support/Club.h"
#include "names/NameText.h"

namespace tavi {
namespace {

using testing::Club;
using Texts = std::vector<std::string>;

/// Walks of a club with three members and two pairs, through the public class.
class WalkTest : public ::testing::Test {
 protected:
  WalkTest() {
    club_->AddNewMember("John", "", "Smith", 46.0);
    club_->AddNewMember("Jane", "", "Smith", 55.0);
    club_->AddNewMember("Bob", "C", "Dale");
    club_->AddRegularPair(2, 1);
    club_->AddRegularPair(1, 3);
  }

  Texts WalkMembers(std::int16_t format = name_format::kFirstAndLast) {
    Texts seen;
    for (bool more = club_->GetFirstMember(number_, name_, par_, format); more;
         more = club_->GetNextMember(number_, name_, par_, format)) {
      seen.push_back(std::to_string(number_) + " " + name_ + (club_->Retired() ? " (retired)" : ""));
    }
    return seen;
  }

  Texts WalkPairs() {
    Texts seen;
    for (bool more = club_->GetFirstPartnership(number_, name_, second_, secondName_, pair_, alternate_, par_,
                                                name_format::kFirstAndLast);
         more; more = club_->GetNextPartnership(number_, name_, second_, secondName_, pair_, alternate_, par_,
                                                name_format::kFirstAndLast)) {
      seen.push_back(name_ + " | " + secondName_ + " | " + pair_ + " | " + alternate_);
    }
    return seen;
  }

  Club club_;
  std::int32_t number_ = 0;
  std::int32_t second_ = 0;
  double par_ = 0.0;
  std::string name_;
  std::string secondName_;
  std::string pair_;
  std::string alternate_;
};

TEST_F(WalkTest, GivesTheActiveMembersAndEndsOnce) {
  club_->DeleteMember(2);
  EXPECT_EQ(WalkMembers(), (Texts{"1 John Smith", "3 Bob Dale"}));
  EXPECT_EQ(club_.OpenCount(), 0);
  EXPECT_FALSE(club_->GetNextMember(number_, name_, par_, name_format::kFirstAndLast));
}

TEST_F(WalkTest, GivesInactiveMembersTooWhenAskedTo) {
  club_->DeleteMember(2);
  club_->IncludeInactiveMembers = true;
  EXPECT_EQ(WalkMembers(), (Texts{"1 John Smith", "2 Jane Smith (retired)", "3 Bob Dale"}));
}

TEST_F(WalkTest, PassesBackTheHandicap) {
  ASSERT_TRUE(club_->GetFirstMember(number_, name_, par_, name_format::kSurnameFirst));
  EXPECT_EQ(par_, 46.0);
  EXPECT_EQ(name_, "Smith, John");
  club_->EndGet();
}

TEST_F(WalkTest, GivesPairsInTheOrderOfEntryWithBothNames) {
  EXPECT_EQ(WalkPairs(), (Texts{"Jane Smith | John Smith | Jane & John Smith | John & Jane Smith",
                                "John Smith | Bob Dale | John Smith & Bob Dale | Bob Dale & John Smith"}));
}

TEST_F(WalkTest, ShowsNamesAsIfFirstNameAndSurnameWereNeeded) {
  constexpr std::int16_t kFirstNameAndAsMuchAsIsNeeded = 8;
  EXPECT_EQ(club_.Rows("Select UniquenessFlag From Members Where MembershipNumber = 3"), (Texts{"4"}));
  EXPECT_EQ(club_->GetMemberName(3, kFirstNameAndAsMuchAsIsNeeded), "Bob D") << "by the stored flag";
  EXPECT_EQ(WalkMembers(kFirstNameAndAsMuchAsIsNeeded).back(), "3 Bob Dale");
}

TEST_F(WalkTest, OfPairsLeavesTheCallersParScoreAlone) {
  par_ = 12.5;
  EXPECT_EQ(WalkPairs().size(), 2U);
  EXPECT_EQ(par_, 12.5);
}

TEST_F(WalkTest, RetiresThePairsOfPlayersWhoAreNoLongerMembers) {
  club_->DeleteMember(3);
  EXPECT_EQ(WalkPairs().size(), 1U);
  EXPECT_EQ(club_.Rows("Select HigherPlayer From Partnerships Where Active <> 0"), (Texts{"2"}));
  club_->IncludeInactiveMembers = true;
  EXPECT_EQ(WalkPairs().size(), 1U) << "the player is missing still";
}

TEST_F(WalkTest, RetiresPairsOfNumbersThatNeedMoreThanSixteenBits) {
  club_.Execute("Insert into Partnerships (LowerPlayer, HigherPlayer, HigherFirst, KnownAs) Values (1, 70000, 0, '')");
  EXPECT_EQ(WalkPairs().size(), 2U);
  EXPECT_EQ(club_.Rows("Select Active From Partnerships Where HigherPlayer = 70000"), (Texts{"False"}));
}

TEST_F(WalkTest, AnotherWalkEndsTheOneBefore) {
  ASSERT_TRUE(club_->GetFirstMember(number_, name_, par_, name_format::kFirstAndLast));
  EXPECT_EQ(WalkPairs().size(), 2U);
  EXPECT_FALSE(club_->GetNextMember(number_, name_, par_, name_format::kFirstAndLast));
}

TEST_F(WalkTest, EndGetClosesTheFileHoweverOftenItWasOpened) {
  club_->OpenDatabase();
  club_->OpenDatabase();
  ASSERT_TRUE(club_->GetFirstMember(number_, name_, par_, name_format::kFirstAndLast));
  club_->EndGet();
  EXPECT_EQ(club_.OpenCount(), 0);
}

TEST_F(WalkTest, OfTheGoverningBodysListGivesNamesInTwoForms) {
  EXPECT_FALSE(club_->GetFirstEBURecord(name_, secondName_, 5)) << "the list is empty";
  club_.Execute("Insert into EBUMembershipList (EBUNumber, FirstName, LastName) Values (77, 'John', 'Smith')");
  ASSERT_TRUE(club_->GetFirstEBURecord(name_, secondName_, name_format::kSurnameFirst));
  EXPECT_EQ(name_, "77");
  EXPECT_EQ(secondName_, "Smith, John");
  ASSERT_TRUE(club_->GetFirstEBURecord(name_, secondName_, 3));
  EXPECT_EQ(secondName_, "John Smith");
  EXPECT_FALSE(club_->GetNextEBURecord(name_, secondName_, "10"));
  ASSERT_TRUE(club_->GetFirstEBURecord(name_, secondName_, 3));
  club_->EndGet();
}

TEST_F(WalkTest, OfTheGoverningBodysListWantsANumberAsFormat) {
  for (const char* row : {"(1, 'A', 'B')", "(2, 'C', 'D')"}) {
    club_.Execute(std::string("Insert into EBUMembershipList (EBUNumber, FirstName, LastName) Values ") + row);
  }
  ASSERT_TRUE(club_->GetFirstEBURecord(name_, secondName_, 5));
  try {
    static_cast<void>(club_->GetNextEBURecord(name_, secondName_, "ten"));
    FAIL() << "accepted";
  } catch (const Error& error) {
    EXPECT_TRUE(error.Is(ErrorNumber::TypeMismatch));
  }
  club_->EndGet();
}

TEST_F(WalkTest, EmailAddressesAreFoundForRetiredMembersAndEmptyForUnknownNumbers) {
  club_.Execute("Update Members Set email = ' john@example.org ' Where MembershipNumber = 1");
  club_->DeleteMember(1);
  EXPECT_EQ(club_->MembersEmailAddress(1), "john@example.org");
  EXPECT_EQ(club_->MembersEmailAddress(99), "");
}

TEST_F(WalkTest, AllEmailAddressesAreThoseOfActiveMembersAndFailWhenTwoShareOne) {
  club_.Execute("Update Members Set email = 'a@example.org' Where MembershipNumber = 1");
  club_.Execute("Update Members Set email = 'b@example.org' Where MembershipNumber = 2");
  club_.Execute("Update Members Set email = 'A@example.org' Where MembershipNumber = 3");
  club_->DeleteMember(3);
  EXPECT_EQ(club_->AllEmailAddresses(), (Texts{"a@example.org", "b@example.org"}));
  club_.Execute("Update Members Set Active = -1 Where MembershipNumber = 3");
  try {
    static_cast<void>(club_->AllEmailAddresses());
    FAIL() << "accepted";
  } catch (const Error& error) {
    EXPECT_TRUE(error.Is(ErrorNumber::DuplicateKey));
  }
}

TEST_F(WalkTest, SearchingTheGoverningBodysListMatchesExactly) {
  for (const char* row : {"(1, 'John', 'Smith')", "(2, 'Jane', 'Smith')", "(3, 'John', 'Smyth')"}) {
    club_.Execute(std::string("Insert into EBUMembershipList (EBUNumber, FirstName, LastName) Values ") + row);
  }
  EXPECT_EQ(club_->SearchEBUList("", "Smith").size(), 2U);
  const std::vector<EBUMembershipDetails> found = club_->SearchEBUList("Jane", "Smith");
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].EBUNumber(), "2");
  EXPECT_EQ(found[0].Location(), "");
  EXPECT_TRUE(club_->SearchEBUList("Janet", "Smith").empty());
}

}  // namespace
}  // namespace tavi
