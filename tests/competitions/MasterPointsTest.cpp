#include <gtest/gtest.h>

#include "facade/support/Club.h"

namespace tavi {
namespace {

using testing::Club;
using Texts = std::vector<std::string>;

/// Awards of one registered competition.
class MasterPointsTest : public ::testing::Test {
 protected:
  ~MasterPointsTest() override { club_->CloseDatabase(); }

  std::int32_t Register(const std::string& name = "Wednesday", bool individual = false) {
    return club_->SetCompetition(name, Date::FromCivil(2025, 9, 17), individual, 0, 0, 0, 5, 2, 0, false);
  }
  Texts Awards() {
    return club_.Rows(
        "Select MembershipNumber, NonMemberName, CompetitionID, SessionNo, MasterPoints, Colour, Status, "
        "RecordUpdated From MasterPoints Order By ID");
  }

  Club club_;
  std::int32_t id_ = Register();
};

TEST_F(MasterPointsTest, AnAwardGoesToBothPlayers) {
  club_->AddMasterPoints(id_, 2, 5, "Anne Hill", 7, "Bob Dale", 12.5, 3);
  const std::string id = std::to_string(id_);
  EXPECT_EQ(Awards(), (Texts{"5 |  | " + id + " | 2 | 12.5 | 3 | 0 | 1", "7 |  | " + id + " | 2 | 12.5 | 3 | 0 | 1"}));
}

TEST_F(MasterPointsTest, AnAwardOfZeroDoesNothingAtAll) {
  club_->CloseDatabase();
  club_.Watch().statements.clear();
  club_->AddMasterPoints(id_, 1, 5, "", 7, "", 0.0, 0);
  EXPECT_TRUE(club_.Watch().statements.empty());
  EXPECT_TRUE(Awards().empty());
}

TEST_F(MasterPointsTest, ANegativeAwardIsStored) {
  club_->AddMasterPoints(id_, 1, 5, "", 7, "", -0.5, 0);
  EXPECT_EQ(club_.Rows("Select MasterPoints From MasterPoints"), (Texts{"-0.5", "-0.5"}));
}

TEST_F(MasterPointsTest, AnAwardHasAtMostFifteenDigits) {
  club_.Watch().statements.clear();
  club_->AddMasterPoints(id_, 1, 5, "", 7, "", 2.0 / 3.0, 0);
  EXPECT_EQ(
      club_.Watch().CountOf("Insert into MasterPoints (MembershipNumber, NonMemberName, CompetitionID, SessionNo, "
                            "MasterPoints, Colour, Status, RecordUpdated) Values (5, '', " +
                            std::to_string(id_) + ", 1, 0.666666666666667, 0, 0, 1)"),
      1);
}

TEST_F(MasterPointsTest, InAnIndividualCompetitionOnlyTheFirstPlayerIsAwarded) {
  const std::int32_t individual = Register("Individual", true);
  club_->AddMasterPoints(individual, 1, 5, "", 7, "", 3.0, 0);
  EXPECT_EQ(club_.Rows("Select MembershipNumber From MasterPoints"), (Texts{"5"}));
}

TEST_F(MasterPointsTest, ACompetitionWithoutARowCountsAsOneForPairs) {
  club_->AddMasterPoints(4711, 1, 5, "", 7, "", 3.0, 0);
  EXPECT_EQ(club_.Rows("Select MembershipNumber, CompetitionID From MasterPoints Order By ID"),
            (Texts{"5 | 4711", "7 | 4711"}));
}

TEST_F(MasterPointsTest, OnlyTheNumberMinusOneKeepsTheName) {
  club_->AddMasterPoints(id_, 1, -1, "J Smith", -2, "K Brown", 3.0, 0);
  EXPECT_EQ(club_.Rows("Select MembershipNumber, NonMemberName From MasterPoints Order By ID"),
            (Texts{"-1 | J Smith", "-2 | "}));
}

TEST_F(MasterPointsTest, ANameWithAnApostropheIsStoredIntact) {
  club_->AddMasterPoints(id_, 1, -1, "Éloïse O'Neil", 7, "", 3.0, 0);
  EXPECT_EQ(club_.Rows("Select NonMemberName From MasterPoints Where MembershipNumber = -1"), (Texts{"Éloïse O'Neil"}));
}

TEST_F(MasterPointsTest, TheLargestNumbersAreStored) {
  club_->AddMasterPoints(id_, -32768, 2147483647, "", 7, "", 1234567.89, -2147483647);
  EXPECT_EQ(club_.Rows("Select MembershipNumber, SessionNo, MasterPoints, Colour From MasterPoints").at(0),
            "2147483647 | -32768 | 1234567.89 | -2147483647");
}

TEST_F(MasterPointsTest, AwardsLeaveTheOpenCountAsItWas) {
  EXPECT_EQ(club_.OpenCount(), 1);
  club_->AddMasterPoints(id_, 1, 5, "", 7, "", 3.0, 0);
  EXPECT_EQ(club_.OpenCount(), 1);
}

TEST_F(MasterPointsTest, AFailureOnTheSecondPlayerKeepsTheFirstRowAndTheFileOpen) {
  club_.Watch().FailOn("Values (7, ", Error(ErrorNumber::ProviderFailure, "disk", "full"));
  EXPECT_THROW(club_->AddMasterPoints(id_, 1, 5, "", 7, "", 3.0, 0), Error);
  EXPECT_EQ(club_.OpenCount(), 2);
  EXPECT_EQ(club_.Rows("Select MembershipNumber From MasterPoints"), (Texts{"5"}));
}

TEST_F(MasterPointsTest, AFailureWhileReadingTheAttributesLeavesTheFileOpenOnce) {
  club_.Watch().FailOn("Select * from Competitions Where ID", Error(ErrorNumber::ProviderFailure, "disk", "bad"));
  EXPECT_THROW(club_->AddMasterPoints(id_, 1, 5, "", 7, "", 3.0, 0), Error);
  EXPECT_EQ(club_.OpenCount(), 2);
}

TEST_F(MasterPointsTest, AfterScoringAgainOnlyTheNewAwardsRemain) {
  const std::int32_t other = Register("Other");
  club_->AddMasterPoints(other, 1, 9, "", 8, "", 1.0, 0);
  club_->AddMasterPoints(id_, 1, 1, "", 2, "", 6.0, 0);
  club_->AddMasterPoints(id_, 1, 3, "", 4, "", 3.0, 0);
  club_->EndResultUpdate(id_);
  EXPECT_EQ(Awards().size(), 6U) << "a first scoring deletes nothing";

  Register();
  club_->AddMasterPoints(id_, 1, 3, "", 4, "", 6.0, 0);
  club_->EndResultUpdate(id_);
  EXPECT_EQ(club_.Rows("Select MembershipNumber, MasterPoints From MasterPoints Order By ID"),
            (Texts{"9 | 1", "8 | 1", "3 | 6", "4 | 6"}));
}

TEST_F(MasterPointsTest, AnAbandonedUpdateIsRepairedByTheNextOne) {
  club_->AddMasterPoints(id_, 1, 1, "", 2, "", 6.0, 0);
  Register();
  club_->AddMasterPoints(id_, 1, 3, "", 4, "", 6.0, 0);
  EXPECT_EQ(club_.Rows("Select RecordUpdated From MasterPoints Order By ID"), (Texts{"0", "0", "1", "1"}));
  Register();
  club_->AddMasterPoints(id_, 1, 5, "", 6, "", 6.0, 0);
  club_->EndResultUpdate(id_);
  EXPECT_EQ(club_.Rows("Select MembershipNumber From MasterPoints Order By ID"), (Texts{"5", "6"}));
}

TEST_F(MasterPointsTest, EndingAnUpdateClosesOnceEvenWhenNothingIsDeleted) {
  club_->AddMasterPoints(id_, 1, 1, "", 2, "", 6.0, 0);
  EXPECT_EQ(club_.OpenCount(), 1);
  club_->EndResultUpdate(id_);
  EXPECT_EQ(club_.OpenCount(), 0);
  EXPECT_EQ(Awards().size(), 2U);
}

TEST_F(MasterPointsTest, AFailedEndOfAnUpdateClosesNothing) {
  club_.Watch().FailOn("Delete From MasterPoints", Error(ErrorNumber::ProviderFailure, "disk", "full"));
  EXPECT_THROW(club_->EndResultUpdate(id_), Error);
  EXPECT_EQ(club_.OpenCount(), 1);
}

TEST_F(MasterPointsTest, TheStatementsAreTheKnownOnes) {
  club_.Watch().statements.clear();
  club_->AddMasterPoints(id_, 1, -1, "J O'Neil", 7, "", 1.25, 4);
  club_->EndResultUpdate(id_);
  const std::string id = std::to_string(id_);
  const std::string insert =
      "Insert into MasterPoints (MembershipNumber, NonMemberName, CompetitionID, SessionNo, MasterPoints, Colour, "
      "Status, RecordUpdated) Values (";
  EXPECT_EQ(
      club_.Watch().statements,
      (Texts{"Select * from Competitions Where ID = " + id, insert + "-1, 'J O''Neil', " + id + ", 1, 1.25, 4, 0, 1)",
             insert + "7, '', " + id + ", 1, 1.25, 4, 0, 1)",
             "Delete From MasterPoints Where CompetitionID = " + id + " And RecordUpdated = 0"}));
}

}  // namespace
}  // namespace tavi
