#include <gtest/gtest.h>

#include "facade/ThreadStore.h"
#include "facade/support/Club.h"
#include "members/Partnerships.h"
#include "platform/values/Convert.h"
#include "store/OpenUse.h"

namespace tavi {
namespace {

using testing::Club;

const Date kMarker = Date::FromCivil(2000, 1, 1);

/// Handicaps in a club with members 1 to 4, whose results each test adds.
class HandicapCalculationTest : public ::testing::Test {
 protected:
  HandicapCalculationTest() {
    club_->OpenDatabase();
    for (const char* first : {"Anne", "Bob", "Cat", "Dan"}) club_->AddNewMember(first, "", "Hill", 40.0);
    club_->CloseDatabase();
    settings_->SetUnknownPlayerHandicap(46.5);
  }
  ~HandicapCalculationTest() override { club_->CloseDatabase(); }

  /// One competition some days before today with one result; its identifier.
  std::int32_t AddResult(int daysAgo, std::int32_t player, std::int32_t partner, double percentage,
                         const std::string& name = "Wednesday") {
    const auto store = ThreadStore();
    const OpenUse use(*store);
    const std::string date = std::to_string(Club::kToday.DayNumber() - daysAgo);
    club_.Execute(
        "Insert Into Competitions (CompetitionName, CompetitionDate, Individual, ScoringMethod, "
        "IncludeInHandicapCalculations) Values ('" +
        name + "', " + date + ", 0, 0, -1)");
    const std::int32_t id = ToInt32(club_.Single("Select Max(ID) From Competitions"));
    AddTo(id, player, partner, percentage);
    return id;
  }
  void AddTo(std::int32_t competition, std::int32_t player, std::int32_t partner, double percentage) {
    club_.Execute("Insert Into Results (Competition, Player, Partner, ActualPercentage) Values (" +
                  std::to_string(competition) + ", " + std::to_string(player) + ", " + std::to_string(partner) + ", " +
                  NumberText(percentage) + ")");
  }
  void SetSeed(std::int32_t member, double seed, int daysAgo = 1) {
    club_.Execute("Update Members Set HandicalcSeed = " + NumberText(seed) +
                  ", HandicalcSeedDate = " + std::to_string(Club::kToday.DayNumber() - daysAgo) +
                  " Where MembershipNumber = " + std::to_string(member));
  }
  void SetPairSeed(double seed, int daysAgo = 1) {
    MakeRegularPartnership(*ThreadStore(), 1, 2, 50.0, false, "");
    club_.Execute("Update Partnerships Set HandicalcSeed = " + NumberText(seed) +
                  ", HandicalcSeedDate = " + std::to_string(Club::kToday.DayNumber() - daysAgo));
  }
  Handicaps Calculate(std::int32_t player, std::int32_t partner, Date date = kMarker,
                      const std::string& name = "Wednesday", bool individual = false) {
    if (!isStored_) club_->SetHandicalcOptions(settings_);
    isStored_ = true;
    return club_->CalculateHandicaps(player, partner, name, date, individual);
  }
  double Of(std::int32_t player, Date date = kMarker, bool individual = true) {
    return Calculate(player, -1, date, "Wednesday", individual).Player1Handicap();
  }
  double OfPair() { return Calculate(1, 2).PartnershipHandicap(); }

  Club club_;
  std::shared_ptr<HandiCalcSettings> settings_ = std::make_shared<HandiCalcSettings>();
  bool isStored_ = false;
};

TEST_F(HandicapCalculationTest, ACalculationLeavesTheFileOpenOnceMore) {
  Calculate(1, 2);
  EXPECT_EQ(club_.OpenCount(), 1);
  Calculate(1, -1);
  EXPECT_EQ(club_.OpenCount(), 2);
}

TEST_F(HandicapCalculationTest, ACalculationTooManyLeavesTheOpenCountAtItsLargestNumber) {
  constexpr int kMostUses = 32767;
  settings_->SetRegularPairAdd(1.0);
  MakeRegularPartnership(*ThreadStore(), 1, 2, 50.0, false, "");
  for (int count = 1; count < kMostUses; ++count) club_->OpenDatabase();
  for (int count = 0; count < 3; ++count) EXPECT_EQ(OfPair(), 51.0);
  EXPECT_EQ(club_.OpenCount(), kMostUses);
  EXPECT_EQ(club_->GetHandicap(1), 40.0) << "operations go on";
  EXPECT_EQ(club_.OpenCount(), kMostUses);
  club_->CloseDatabase();
  EXPECT_EQ(club_.OpenCount(), 0);
}

TEST_F(HandicapCalculationTest, TwoNonMembersDoNotOpenTheFile) {
  settings_->SetUnknownPlayerHandicap(46.12345);
  const Handicaps pair = Calculate(-1, -1);
  EXPECT_EQ(club_.OpenCount(), 0);
  EXPECT_EQ(pair.Player1Handicap(), 46.12345) << "not rounded";
  EXPECT_EQ(pair.Player2Handicap(), 46.12345);
  EXPECT_EQ(pair.PartnershipHandicap(), 46.12345);
}

TEST_F(HandicapCalculationTest, AnIndividualCompetitionOfANonMemberLooksAtNoPartner) {
  AddResult(3, 2, -1, 60.0);
  const Handicaps handicaps = Calculate(-1, 2, kMarker, "", true);
  EXPECT_EQ(handicaps.Player1Handicap(), 46.5);
  EXPECT_EQ(handicaps.Player2Handicap(), 46.5);
  EXPECT_EQ(handicaps.PartnershipHandicap(), 46.5);
}

TEST_F(HandicapCalculationTest, AMemberWithoutResultsHasFifty) {
  const Handicaps handicaps = Calculate(1, -1);
  EXPECT_EQ(handicaps.Player1Handicap(), 50.0);
  EXPECT_EQ(handicaps.Player2Handicap(), 46.5);
  EXPECT_EQ(handicaps.PartnershipHandicap(), 48.25);
}

TEST_F(HandicapCalculationTest, AnUnknownNumberOtherThanMinusOneHasFifty) {
  const Handicaps handicaps = Calculate(999, -5);
  EXPECT_EQ(handicaps.Player1Handicap(), 50.0);
  EXPECT_EQ(handicaps.Player2Handicap(), 50.0);
}

TEST_F(HandicapCalculationTest, ResultsOnEitherSideCountAlike) {
  AddResult(1, 1, 3, 60.0);
  AddResult(2, 4, 1, 51.0);
  EXPECT_EQ(Of(1), 55.5);
}

TEST_F(HandicapCalculationTest, HandicapsAreRoundedToTwoDecimals) {
  AddResult(1, 1, 3, 50.0);
  AddResult(2, 1, 3, 50.0);
  AddResult(3, 1, 3, 51.0);
  EXPECT_EQ(Of(1), 50.33);
}

TEST_F(HandicapCalculationTest, HalfWayValuesGoToTheEvenDigit) {
  AddResult(1, 1, 3, 50.125);
  AddResult(1, 2, 3, 50.375);
  EXPECT_EQ(Of(1), 50.12);
  EXPECT_EQ(Of(2), 50.38);
}

TEST_F(HandicapCalculationTest, AMeanIsHalfWayWhenItsFifteenDigitsSaySo) {
  AddResult(1, 1, 3, 34.825);
  AddResult(1, 2, 4, 33.995);
  EXPECT_EQ(Of(1), 34.82);
  EXPECT_EQ(Of(2), 34.0);
  EXPECT_EQ(Calculate(3, 2).Player1Handicap(), 34.82);
  EXPECT_EQ(Calculate(3, 2).Player2Handicap(), 34.0);
  settings_->SetRegularPairAdd(52.355 - (34.825 + 33.995) / 2.0);
  club_->AddRegularPair(1, 2);
  EXPECT_EQ(OfPair(), 52.36);
}

TEST_F(HandicapCalculationTest, AResultWithoutAPercentageWasNeverScored) {
  const std::int32_t id = AddResult(1, 1, 2, 60.0);
  AddResult(2, 1, 2, 50.0);
  club_.Execute("Update Results Set ActualPercentage = Null Where Competition = " + std::to_string(id));
  settings_->SetSamePartnerWeighting(100);
  EXPECT_EQ(Of(1), 50.0);
  EXPECT_EQ(OfPair(), 50.0);
  settings_->SetMaxResults(5);
  EXPECT_EQ(OfPair(), 50.0);
  SetSeed(3, 44.0);
  club_.Execute("Update Results Set Player = 3, Partner = 4, ActualPercentage = Null");
  EXPECT_EQ(Of(3), 44.0) << "and it takes no room from a seed";
}

TEST_F(HandicapCalculationTest, APercentageThatIsNoNumberIsAnErrorThatNamesPlayerAndCompetition) {
  const std::int32_t id = AddResult(1, 1, 2, 60.0);
  club_.Execute("Alter Table Results Drop Column ActualPercentage");
  club_.Execute("Alter Table Results Add Column ActualPercentage Text (20)");
  club_.Execute("Update Results Set ActualPercentage = '57.5'");
  EXPECT_EQ(Of(1), 57.5) << "a text that is a number will do";
  club_.Execute("Update Results Set ActualPercentage = 'good'");
  try {
    Of(2);
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_TRUE(error.Is(ErrorNumber::TypeMismatch));
    EXPECT_EQ(error.Description(),
              "The column ActualPercentage of the result of player 1 and partner 2 in competition " +
                  std::to_string(id) + " cannot be read: Type mismatch: \"good\" is not a number.");
  }
}

TEST_F(HandicapCalculationTest, APartnerWhoIsNotStoredIsNoMember) {
  const std::int32_t id = AddResult(1, 1, -1, 60.0);
  AddTo(id, 1, 2, 50.0);
  club_.Execute("Update Results Set Partner = Null Where Partner = -1");
  EXPECT_EQ(Of(1), 55.0);
  EXPECT_EQ(Of(2), 50.0);
}

TEST_F(HandicapCalculationTest, TheSecondPlayerOfAnIndividualCompetitionIsNotRounded) {
  settings_->SetUnknownPlayerHandicap(46.12345);
  AddResult(1, 1, 3, 50.126);
  const Handicaps handicaps = Calculate(1, 2, kMarker, "", true);
  EXPECT_EQ(handicaps.Player1Handicap(), 50.13);
  EXPECT_EQ(handicaps.PartnershipHandicap(), 50.13);
  EXPECT_EQ(handicaps.Player2Handicap(), 46.12345);
}

TEST_F(HandicapCalculationTest, OnlyCountingMatchPointCompetitionsCount) {
  AddResult(1, 1, 2, 60.0);
  const std::int32_t butler = AddResult(2, 1, 2, 10.0);
  const std::int32_t excluded = AddResult(3, 1, 2, 10.0);
  club_.Execute("Update Competitions Set ScoringMethod = 2 Where ID = " + std::to_string(butler));
  club_.Execute("Update Competitions Set IncludeInHandicapCalculations = 0 Where ID = " + std::to_string(excluded));
  EXPECT_EQ(Of(1), 60.0);
}

TEST_F(HandicapCalculationTest, ResultsAreTakenFromWeeksAgoToTheDateInclusively) {
  settings_->SetMaxWeeks(2);
  const Date date{Club::kToday.days - 7};
  AddResult(21, 1, 2, 60.0);          // two weeks before the date
  AddResult(22, 1, 2, 10.0);          // a day too early
  AddResult(7, 1, 2, 50.0, "Other");  // on the date
  AddResult(6, 1, 2, 10.0);           // a day too late
  EXPECT_EQ(Of(1, date), 55.0);
}

TEST_F(HandicapCalculationTest, WithoutWeeksResultsOfAnyAgeUpToTheDateCount) {
  AddResult(9000, 1, 2, 60.0);
  AddResult(7, 1, 2, 50.0, "Other");
  AddResult(6, 1, 2, 10.0);
  EXPECT_EQ(Of(1, Date{Club::kToday.days - 7}), 55.0);
}

TEST_F(HandicapCalculationTest, TheMarkerDateMeansTodayWithoutUpperEndAndExclusion) {
  settings_->SetMaxWeeks(1);
  AddResult(7, 1, 2, 60.0);
  AddResult(8, 1, 2, 10.0);
  AddResult(0, 1, 2, 50.0);
  AddResult(-5, 1, 2, 40.0);
  EXPECT_EQ(Of(1), 50.0);
}

TEST_F(HandicapCalculationTest, TheCompetitionThatIsScoredIsLeftOut) {
  AddResult(7, 1, 2, 60.0);
  AddResult(0, 1, 2, 10.0);
  AddResult(0, 1, 2, 50.0, "Another on the same day");
  EXPECT_EQ(Calculate(1, 2, Club::kToday).Player1Handicap(), 55.0);
}

TEST_F(HandicapCalculationTest, ACompetitionOfTheOtherKindIsNotLeftOut) {
  const std::int32_t id = AddResult(0, 1, -1, 60.0);
  EXPECT_EQ(Calculate(1, 2, Club::kToday).Player1Handicap(), 50.0);
  EXPECT_EQ(Of(1, Club::kToday), 60.0) << "an individual competition is asked for, the one of pairs counts";
  club_.Execute("Update Competitions Set Individual = -1 Where ID = " + std::to_string(id));
  EXPECT_EQ(Calculate(1, 2, Club::kToday).Player1Handicap(), 60.0);
  EXPECT_EQ(Of(1, Club::kToday), 50.0);
}

TEST_F(HandicapCalculationTest, OnlyTheLatestResultsCountWhereTheirNumberIsLimited) {
  settings_->SetMaxResults(2);
  AddResult(1, 1, 2, 60.0);
  AddResult(2, 1, 2, 50.0);
  AddResult(3, 1, 2, 10.0);
  EXPECT_EQ(Of(1), 55.0);
}

TEST_F(HandicapCalculationTest, ResultsOfTheSameDayAtTheLimitAllCount) {
  settings_->SetMaxResults(2);
  AddResult(1, 1, 2, 60.0);
  AddResult(2, 1, 2, 50.0);
  AddResult(2, 1, 3, 40.0);
  EXPECT_EQ(Of(1), 50.0);
}

TEST_F(HandicapCalculationTest, AResultThatIsStoredTwiceCountsOnce) {
  const std::int32_t id = AddResult(1, 1, 2, 60.0);
  AddTo(id, 2, 1, 60.0);
  AddTo(id, 1, 3, 45.0);
  EXPECT_EQ(Of(1), 52.5);
}

TEST_F(HandicapCalculationTest, ASeedCountsWhileResultsAndSeedDoNotExceedTheLimit) {
  settings_->SetMaxResults(3);
  SetSeed(1, 44.0);
  AddResult(1, 1, 2, 50.0);
  AddResult(2, 1, 2, 50.0);
  EXPECT_EQ(Of(1), 48.0);
  AddResult(3, 1, 2, 53.0);
  EXPECT_EQ(Of(1), 51.0) << "three results leave no room for the seed";
}

TEST_F(HandicapCalculationTest, WithoutALimitOfResultsSeedsNeverCount) {
  SetSeed(1, 44.0);
  EXPECT_EQ(Of(1), 50.0);
  AddResult(1, 1, 2, 60.0);
  EXPECT_EQ(Of(1), 60.0);
}

TEST_F(HandicapCalculationTest, OnlyPositiveSeedsCount) {
  settings_->SetMaxResults(5);
  SetSeed(1, 0.0);
  EXPECT_EQ(Of(1), 50.0);
  SetSeed(1, -44.0);
  EXPECT_EQ(Of(1), 50.0);
  SetSeed(1, 44.0);
  EXPECT_EQ(Of(1), 44.0);
}

TEST_F(HandicapCalculationTest, ASeedWithoutADateIsNone) {
  settings_->SetMaxResults(5);
  SetSeed(1, 44.0);
  SetPairSeed(56.0);
  club_.Execute("Update Partnerships Set HandicalcSeedDate = Null");
  EXPECT_EQ(Calculate(1, 2).Player1Handicap(), 44.0) << "the pair has no seed, so that the player's own counts";
  club_.Execute("Update Members Set HandicalcSeedDate = Null");
  EXPECT_EQ(Calculate(1, 2).Player1Handicap(), 50.0);
}

TEST_F(HandicapCalculationTest, ASeedOutsideTheRangeOfDatesDoesNotCount) {
  settings_->SetMaxResults(5);
  settings_->SetMaxWeeks(1);
  SetSeed(1, 44.0, 8);
  EXPECT_EQ(Of(1), 50.0);
  SetSeed(1, 44.0, 7);
  EXPECT_EQ(Of(1), 44.0);
}

TEST_F(HandicapCalculationTest, APairSeedTakesThePlaceOfThePlayersSeeds) {
  settings_->SetMaxResults(5);
  SetSeed(1, 44.0);
  SetSeed(2, 48.0);
  EXPECT_EQ(Calculate(1, 2).Player1Handicap(), 44.0);
  SetPairSeed(56.0);
  const Handicaps handicaps = Calculate(2, 1);
  EXPECT_EQ(handicaps.Player1Handicap(), 56.0);
  EXPECT_EQ(handicaps.Player2Handicap(), 56.0);
  EXPECT_EQ(Calculate(1, 3).Player1Handicap(), 44.0) << "with another partner";
}

TEST_F(HandicapCalculationTest, TheWeightingBlendsThePlayersAverageWithTheJointOne) {
  AddResult(1, 1, 2, 60.0);
  AddResult(2, 1, 3, 40.0);
  AddResult(3, 4, 2, 40.0);
  const auto at = [this](std::int16_t weighting) {
    settings_->SetSamePartnerWeighting(weighting);
    return OfPair();
  };
  EXPECT_EQ(at(50), 50.0);
  EXPECT_EQ(at(75), 55.0);
  EXPECT_EQ(at(100), 60.0);
}

TEST_F(HandicapCalculationTest, WithALimitTheJointResultsHaveALimitOfTheirOwn) {
  settings_->SetMaxResults(2);
  settings_->SetSamePartnerWeighting(100);
  AddResult(1, 1, 3, 40.0);
  AddResult(2, 1, 3, 40.0);
  AddResult(3, 2, 1, 60.0);
  AddResult(4, 1, 2, 62.0);
  AddResult(5, 1, 2, 10.0);
  EXPECT_EQ(OfPair(), 61.0);
}

TEST_F(HandicapCalculationTest, WithoutJointResultsThePlayersAverageIsTaken) {
  settings_->SetSamePartnerWeighting(100);
  AddResult(1, 1, 3, 40.0);
  AddResult(2, 2, 3, 50.0);
  EXPECT_EQ(OfPair(), 45.0);
}

TEST_F(HandicapCalculationTest, APairSeedFillsUpTheJointResults) {
  settings_->SetMaxResults(3);
  settings_->SetSamePartnerWeighting(100);
  SetPairSeed(54.0);
  AddResult(1, 1, 2, 60.0);
  EXPECT_EQ(OfPair(), 57.0);
  AddResult(2, 1, 2, 60.0);
  AddResult(3, 1, 2, 63.0);
  EXPECT_EQ(OfPair(), 61.0) << "the joint results fill the limit";
}

TEST_F(HandicapCalculationTest, WithoutALimitThePairSeedStillCountsAmongTheJointResults) {
  settings_->SetSamePartnerWeighting(100);
  SetPairSeed(54.0);
  AddResult(1, 1, 2, 60.0);
  const Handicaps handicaps = Calculate(1, 2);
  EXPECT_EQ(handicaps.Player1Handicap(), 60.0);
  EXPECT_EQ(handicaps.PartnershipHandicap(), 57.0);
}

TEST_F(HandicapCalculationTest, APairSeedAloneIsTheHandicapOfThePairAndItsPlayersAtAnyWeighting) {
  settings_->SetMaxResults(3);
  SetPairSeed(54.0);
  for (const std::int16_t weighting : std::initializer_list<std::int16_t>{50, 51, 60, 75, 99, 100}) {
    settings_->SetSamePartnerWeighting(weighting);
    isStored_ = false;
    const Handicaps handicaps = Calculate(1, 2);
    EXPECT_EQ(handicaps.PartnershipHandicap(), 54.0) << weighting;
    EXPECT_EQ(handicaps.Player1Handicap(), 54.0) << weighting;
    EXPECT_EQ(handicaps.Player2Handicap(), 54.0) << weighting;
  }
}

TEST_F(HandicapCalculationTest, ARegularPairsHandicapIsAdjusted) {
  settings_->SetRegularPairMultiplier(0.9);
  settings_->SetRegularPairAdd(1.5);
  AddResult(1, 1, 2, 52.0);
  EXPECT_EQ(OfPair(), 52.0);
  club_->AddRegularPair(2, 1);
  const Handicaps handicaps = Calculate(1, 2);
  EXPECT_EQ(handicaps.PartnershipHandicap(), 48.3);
  EXPECT_EQ(handicaps.Player1Handicap(), 52.0);
  club_->DeletePair(1, 2);
  EXPECT_EQ(OfPair(), 52.0) << "an inactive pair is not regular";
}

TEST_F(HandicapCalculationTest, EnormousPercentagesHaveAnAverageToo) {
  AddResult(1, 1, 2, 1e308);
  AddResult(2, 1, 2, 1e308);
  EXPECT_EQ(OfPair(), 1e308);
}

TEST_F(HandicapCalculationTest, AHandicapThatIsNoNumberAnyMoreOverflows) {
  settings_->SetRegularPairMultiplier(1e300);
  AddResult(1, 1, 2, 1e300);
  MakeRegularPartnership(*ThreadStore(), 1, 2, 50.0, false, "");
  try {
    OfPair();
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_TRUE(error.Is(ErrorNumber::Overflow)) << error.Description();
  }
  EXPECT_THROW(club_->RecalculateAllHandicaps(), Error);
  EXPECT_EQ(club_.Rows("Select Handicap From Partnerships"), (std::vector<std::string>{"50"}));
}

TEST_F(HandicapCalculationTest, ANegativeNumberOfResultsIsStoredAndThenNothingCanBeCalculated) {
  settings_->SetMaxResults(-1);
  AddResult(1, 1, 2, 60.0);
  EXPECT_THROW(Of(1), Error);
  EXPECT_EQ(club_.Rows("Select MaxResults From HandicalcSettings"), (std::vector<std::string>{"-1"}));
  EXPECT_EQ(club_->HandicalcOptions().MaxResults(), -1);
}

TEST_F(HandicapCalculationTest, NothingIsWritten) {
  AddResult(1, 1, 2, 60.0);
  SetPairSeed(54.0);
  Calculate(1, 2);
  club_.Watch().statements.clear();
  Calculate(1, 2);
  for (const std::string& statement : club_.Watch().statements)
    EXPECT_TRUE(statement.starts_with("Select")) << statement;
  EXPECT_EQ(club_.Watch().statements.size(), 3U) << "with a pair seed no player's seed is asked for";
}

TEST_F(HandicapCalculationTest, SixQuestionsAreTheMost) {
  settings_->SetMaxResults(3);
  settings_->SetSamePartnerWeighting(75);
  AddResult(1, 1, 2, 60.0);
  Calculate(1, 2);
  club_.Watch().statements.clear();
  Calculate(1, 2);
  EXPECT_EQ(club_.Watch().statements.size(), 6U) << "seed of the pair; seed and results of each player; joint results";
}

}  // namespace
}  // namespace tavi
