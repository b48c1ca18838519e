#include <gtest/gtest.h>

#include "facade/support/Club.h"

namespace tavi {
namespace {

using testing::Club;
using Texts = std::vector<std::string>;

/// The older combined operation, in a competition that does not count for handicaps.
class UpdateResultTest : public ::testing::Test {
 protected:
  ~UpdateResultTest() override { club_->CloseDatabase(); }

  void Update(const std::string& p1Name, std::int16_t masterPoints) {
    club_->UpdateResult(id_, false, 5, p1Name, 7, "Bob Dale", 55.0, 60.0, masterPoints);
  }
  Texts Awards() {
    return club_.Rows(
        "Select MembershipNumber, NonMemberName, SessionNo, MasterPoints, Colour From MasterPoints Order "
        "By ID");
  }
  std::size_t ResultCount() { return club_.Rows("Select * From Results").size(); }

  Club club_;
  std::int32_t id_ = club_->SetCompetition("Wednesday", Date::FromCivil(2025, 9, 17), false, 0, 0, 0, 5, 2, 0, false);
};

TEST_F(UpdateResultTest, WithoutMasterPointsOnlyTheResultIsNoted) {
  Update("Anne Hill", 0);
  EXPECT_EQ(ResultCount(), 1U);
  EXPECT_TRUE(Awards().empty());
  EXPECT_EQ(club_.OpenCount(), 1);
}

TEST_F(UpdateResultTest, NegativeMasterPointsAreNotAwarded) {
  Update("Anne Hill", -3);
  EXPECT_TRUE(Awards().empty());
}

TEST_F(UpdateResultTest, TheSecondAwardGoesToTheNumberThatTheFirstNameSpells) {
  Update("12", 3);
  EXPECT_EQ(Awards(), (Texts{"5 |  | 1 | 3 | 0", "12 |  | 1 | 3 | 0"}));
  EXPECT_EQ(ResultCount(), 1U);
  EXPECT_EQ(club_.OpenCount(), 1);
}

TEST_F(UpdateResultTest, AVisitorsAwardBearsThePartnersNumberAsAName) {
  club_->UpdateResult(id_, false, -1, "-1", 7, "Bob Dale", 55.0, 60.0, 3);
  EXPECT_EQ(Awards(), (Texts{"-1 | 7 | 1 | 3 | 0", "-1 | Bob Dale | 1 | 3 | 0"}));
}

TEST_F(UpdateResultTest, TheAppliedHandicapIsPassedOn) {
  club_->CloseDatabase();
  club_->AddNewMember("Anne", "", "Hill", 41.0);
  static_cast<void>(club_->HandicalcOptions());
  club_->SetHandiCalcDisabled(true);
  const std::int32_t id =
      club_->SetCompetition("Counting", Date::FromCivil(2025, 9, 17), false, 0, 0, 0, 5, 2, 0, true);
  club_->UpdateResult(id, false, 1, "", -1, "", 55.0, 60.0, 0, 52.5);
  EXPECT_EQ(club_->GetHandicap(1), 52.5);
}

TEST_F(UpdateResultTest, AFailingLookAtTheColourDoesNotMatter) {
  club_.Watch().FailOn("Select MasterPointsColour", Error(ErrorNumber::ProviderFailure, "disk", "bad"));
  Update("12", 3);
  EXPECT_EQ(Awards().size(), 2U);
}

TEST_F(UpdateResultTest, APassingErrorIsHiddenAndTheStepsAreRepeated) {
  club_.Watch().FailOn("Insert into Results", Error(ErrorNumber::ProviderFailure, "disk", "busy"), 2);
  Update("12", 3);
  EXPECT_EQ(ResultCount(), 1U);
  EXPECT_EQ(Awards().size(), 2U);
  EXPECT_EQ(club_.OpenCount(), 1);
}

TEST_F(UpdateResultTest, AFailureBehindTheResultNotesItAgain) {
  club_.Watch().FailOn("Insert into MasterPoints", Error(ErrorNumber::ProviderFailure, "disk", "busy"));
  Update("12", 3);
  EXPECT_EQ(ResultCount(), 2U) << "the first result stays";
  EXPECT_EQ(Awards().size(), 2U);
  EXPECT_EQ(club_.OpenCount(), 2) << "the award that failed leaves the file open";
}

/// Not one of the errors that the operation repeats on, so that a test can leave it.
struct Escape {};

TEST_F(UpdateResultTest, ANameThatSpellsNoNumberIsTriedForEver) {
  constexpr int kPasses = 50;
  int passes = 0;
  club_.Watch().before = [&passes](const std::string& statement) {
    if (statement.starts_with("Insert into Results") && ++passes > kPasses) throw Escape();
  };
  EXPECT_THROW(Update("Anne Hill", 3), Escape);
  club_.Watch().before = nullptr;
  EXPECT_EQ(ResultCount(), static_cast<std::size_t>(kPasses));
  EXPECT_TRUE(Awards().empty());
}

TEST_F(UpdateResultTest, TheArgumentIndividualIsNotLookedAt) {
  club_->UpdateResult(id_, true, 5, "12", 7, "", 55.0, 60.0, 3);
  EXPECT_EQ(Awards().size(), 2U);
  EXPECT_EQ(club_.Rows("Select Player, Partner From Results"), (Texts{"5 | 7"}));
}

TEST_F(UpdateResultTest, InAnIndividualCompetitionTheFirstPlayerIsAwardedAlone) {
  const std::int32_t id = club_->SetCompetition("Single", Date::FromCivil(2025, 9, 18), true, 0, 0, 0, 5, 2, 0, false);
  club_->UpdateResult(id, false, 5, "12", 7, "", 55.0, 60.0, 3);
  EXPECT_EQ(Awards(), (Texts{"5 |  | 1 | 3 | 0"}));
  EXPECT_EQ(club_.Rows("Select Player, Partner From Results"), (Texts{"5 | -1"}));
}

TEST_F(UpdateResultTest, ANumberInTheNameIsReadAsNumbersInTextsAre) {
  Update(" 12 ", 3);
  EXPECT_EQ(Awards().at(1), "12 |  | 1 | 3 | 0");
}

TEST_F(UpdateResultTest, ANegativeNumberInTheNameIsAwardedToo) {
  Update("-2", 3);
  EXPECT_EQ(Awards().at(1), "-2 |  | 1 | 3 | 0") << "only -1 keeps the second name";
}

}  // namespace
}  // namespace tavi
