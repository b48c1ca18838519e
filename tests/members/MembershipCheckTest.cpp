#include <gtest/gtest.h>

#include "facade/support/Club.h"

namespace tavi {
namespace {

using testing::Club;
using Texts = std::vector<std::string>;

/// The membership check of a club with one member; today is 1 October 2025.
class MembershipCheckTest : public ::testing::Test {
 protected:
  MembershipCheckTest() { club_->AddNewMember("John", "", "Smith"); }
  ~MembershipCheckTest() override { EXPECT_EQ(club_.OpenCount(), 0); }

  void SetPolicy(const std::string& specificDate, const std::string& day) {
    club_.Execute("Delete From ClubPolicies");
    club_.Execute("Insert into ClubPolicies (MemberType, SpecificDate, SubsDueDate, Subs) Values ('Standard', " +
                  specificDate + ", " + day + ", 25.5)");
  }
  Texts Enrolled(std::int32_t number) {
    return club_.Rows(
        "Select LastName, MemberType, DateOfJoining, SubsPaid, SubsDue, AmountOwing From Members "
        "Where MembershipNumber = " +
        std::to_string(number));
  }

  void ExpectUnreadablePolicy(const std::string& column, ErrorNumber number) {
    try {
      static_cast<void>(club_->CheckMembershipID(40, "Ann Lee", 50.0, retired_));
      FAIL() << "accepted";
    } catch (const Error& error) {
      EXPECT_TRUE(error.Is(number)) << error.Number();
      EXPECT_TRUE(error.Description().starts_with("The column " + column + " of the table ClubPolicies"))
          << error.Description();
    }
    EXPECT_TRUE(Enrolled(40).empty());
  }

  Club club_;
  bool retired_ = false;
};

TEST_F(MembershipCheckTest, AKnownNumberWithItsNameIsAnsweredWithItself) {
  EXPECT_EQ(club_->CheckMembershipID(1, "John Smith", 50.0, retired_), 1);
  EXPECT_FALSE(retired_);
  club_->DeleteMember(1);
  EXPECT_EQ(club_->CheckMembershipID(1, "John Smith", 50.0, retired_), 1);
  EXPECT_TRUE(retired_);
}

TEST_F(MembershipCheckTest, ANameOfAnotherMemberGivesThatNumberAndEnrolsNobody) {
  retired_ = true;
  EXPECT_EQ(club_->CheckMembershipID(40, "John Smith", 50.0, retired_), 1);
  EXPECT_TRUE(retired_) << "left as it was";
  EXPECT_EQ(club_.Rows("Select Count(*) From Members"), (Texts{"1"}));
}

TEST_F(MembershipCheckTest, TheNameOfARetiredMemberGivesThatNumberToo) {
  club_->DeleteMember(1);
  EXPECT_EQ(club_->CheckMembershipID(40, "John Smith", 50.0, retired_), 1);
  EXPECT_FALSE(retired_) << "only a known number tells";
  EXPECT_EQ(club_.Rows("Select Count(*) From Members"), (Texts{"1"}));
}

TEST_F(MembershipCheckTest, AKnownNumberWithAnUnknownNameIsAnsweredWithItself) {
  retired_ = true;
  EXPECT_EQ(club_->CheckMembershipID(1, "Ann Lee", 50.0, retired_), 1);
  EXPECT_FALSE(retired_);
  EXPECT_EQ(club_.Rows("Select FirstName, LastName From Members"), (Texts{"John | Smith"})) << "the record stays";
}

TEST_F(MembershipCheckTest, WhoIsEnrolledIsKnownAfterwards) {
  retired_ = true;
  EXPECT_EQ(club_->CheckMembershipID(40, "Ann Lee", 50.0, retired_), -1);
  EXPECT_TRUE(retired_) << "left as it was";
  EXPECT_EQ(club_->CheckMembershipID(40, "Ann Lee", 50.0, retired_), 40);
  EXPECT_FALSE(retired_);
}

TEST_F(MembershipCheckTest, ThePolicyOfAnotherTypeAndAnUnusedDayDoNotMatter) {
  SetPolicy("0", "#2001-12-24#");
  club_.Execute("Insert into ClubPolicies (MemberType, SpecificDate, SubsDueDate, Subs) Values ('Junior', 1, 1, 5)");
  static_cast<void>(club_->CheckMembershipID(40, "Ann Lee", 50.0, retired_));
  EXPECT_EQ(Enrolled(40), (Texts{"Lee | Standard | 1899-12-30 | 1899-12-30 | 2026-10-01 | 25.5"}));
}

TEST_F(MembershipCheckTest, AnUnknownPlayerIsEnrolledWithTheZeroDateAndAnsweredMinusOne) {
  EXPECT_EQ(club_->CheckMembershipID(40, "Ann B Lee", 52.0, retired_), -1);
  EXPECT_EQ(Enrolled(40), (Texts{"Lee | Standard | 1899-12-30 | 1899-12-30 | 2026-10-01 | 0"}));
  EXPECT_EQ(club_->GetHandicap(40), 52.0);
}

TEST_F(MembershipCheckTest, TheParIsStoredAsHandicapAndThePolicysAmountAsOwing) {
  SetPolicy("0", "Null");
  EXPECT_EQ(club_->CheckMembershipID(40, "Ann Lee", 0.25, retired_), -1);
  EXPECT_EQ(club_.Rows("Select Handicap, AmountOwing From Members Where MembershipNumber = 40"),
            (Texts{"0.25 | 25.5"}));
}

TEST_F(MembershipCheckTest, TheNumberMinusOneEnrolsUnderTheNextFreeNumber) {
  EXPECT_EQ(club_->CheckMembershipID(-1, "Ann Lee", 50.0, retired_), -1);
  EXPECT_EQ(club_->FindMember("Ann Lee"), 2);
  EXPECT_EQ(club_->CheckMembershipID(-1, "Ann Lee", 50.0, retired_), 2) << "the name is known by now";
}

TEST_F(MembershipCheckTest, AFixedDayIsThisYearsOrTheNextOnes) {
  SetPolicy("1", "#2001-12-24#");
  static_cast<void>(club_->CheckMembershipID(40, "Ann Lee", 50.0, retired_));
  EXPECT_EQ(Enrolled(40), (Texts{"Lee | Standard | 1899-12-30 | 1899-12-30 | 2025-12-24 | 25.5"}));
  SetPolicy("1", "#2001-10-01#");
  static_cast<void>(club_->CheckMembershipID(41, "Bob Ray", 50.0, retired_));
  EXPECT_EQ(Enrolled(41), (Texts{"Ray | Standard | 1899-12-30 | 1899-12-30 | 2026-10-01 | 25.5"}))
      << "today counts as past";
  SetPolicy("1", "Null");
  static_cast<void>(club_->CheckMembershipID(42, "Cat Fox", 50.0, retired_));
  EXPECT_EQ(Enrolled(42), (Texts{"Fox | Standard | 1899-12-30 | 1899-12-30 | 2026-10-01 | 25.5"}));
}

TEST_F(MembershipCheckTest, AnEmptyAmountOfThePolicyIsNothingToPay) {
  SetPolicy("1", "#2001-12-24#");
  club_.Execute("Update ClubPolicies Set Subs = Null");
  EXPECT_EQ(club_->CheckMembershipID(40, "Ann Lee", 50.0, retired_), -1);
  EXPECT_EQ(Enrolled(40), (Texts{"Lee | Standard | 1899-12-30 | 1899-12-30 | 2025-12-24 | 0"}));
}

TEST_F(MembershipCheckTest, APolicyWithoutADayOrKindIsAnErrorAndNobodyIsEnrolled) {
  SetPolicy("Null", "#2001-12-24#");
  ExpectUnreadablePolicy("SpecificDate", ErrorNumber::TypeMismatch);
  SetPolicy("1", "#2001-12-24#");
  club_.Execute("Alter Table ClubPolicies Drop Column SubsDueDate");
  ExpectUnreadablePolicy("SubsDueDate", ErrorNumber::ProviderNoColumn);
  club_.Execute("Alter Table ClubPolicies Add Column SubsDueDate Text (20)");
  club_.Execute("Update ClubPolicies Set SubsDueDate = 'Lady Day'");
  ExpectUnreadablePolicy("SubsDueDate", ErrorNumber::TypeMismatch);
  club_.Execute("Update ClubPolicies Set SubsDueDate = '24 Dec 2001'");
  EXPECT_EQ(club_->CheckMembershipID(40, "Ann Lee", 50.0, retired_), -1) << "a text that is a date will do";
}

TEST_F(MembershipCheckTest, ADayThatDoesNotExistThisYearIsAConversionErrorAndNobodyIsEnrolled) {
  SetPolicy("1", "#2004-02-29#");
  ExpectUnreadablePolicy("SubsDueDate", ErrorNumber::TypeMismatch);
}

}  // namespace
}  // namespace tavi
