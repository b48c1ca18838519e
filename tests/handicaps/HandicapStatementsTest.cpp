#include <gtest/gtest.h>

#include "facade/support/FakeSurroundings.h"
#include "handicaps/HandicapCalculation.h"
#include "store/support/FakeFile.h"

namespace tavi {
namespace {

using testing::FakePlatform;
using Texts = std::vector<std::string>;

constexpr const char* kSelect = "ActualPercentage, Player, Partner, Competitions.ID, Competitions.CompetitionDate ";
constexpr const char* kFrom = " From Results Inner Join Competitions  On Results.Competition = Competitions.ID  Where ";
constexpr const char* kBase = " And IncludeInHandicapCalculations <> 0 And ScoringMethod = 0";
constexpr const char* kOrder = " Order By Competitions.CompetitionDate Desc";

/// The questions of a calculation, word for word, on a file without rows.
class HandicapStatementsTest : public ::testing::Test {
 protected:
  HandicapStatementsTest() {
    fake_.platform->clock = std::make_shared<testing::StoppedClock>(Date{45931.75});
    store_.SetDatabaseFolder("C:\\Club");
  }
  void Store(std::int16_t weeks, std::int16_t results, std::int16_t weighting) {
    fake_.file->answers["HandicalcSettings"] = {
        {"MaxWeeks", "MaxResults", "SamePartnerWeighting", "RegularPairMultiplier", "RegularPairAdd",
         "UnknownPlayerHandicap", "Disabled"},
        {{weeks, results, weighting, 1.0, 0.5, 50.0, false}}};
  }
  Texts Questions(const HandicapRequest& request) {
    held_.LoadHandicalcSettings(store_);
    fake_.file->recordsets.clear();
    CalculateHandicaps(store_, held_, request);
    Texts sources;
    for (const auto& opened : fake_.file->recordsets) sources.push_back(opened.source);
    return sources;
  }
  static std::string ResultsOf(const std::string& top, const std::string& who, const std::string& rest) {
    return "Select " + top + kSelect + kFrom + who + kBase + rest + kOrder;
  }

  FakePlatform fake_;
  cDatabase store_{fake_.platform, {}};
  HeldSettings held_;
};

TEST_F(HandicapStatementsTest, WithoutLimitsAndDateNothingIsExcluded) {
  Store(0, 0, 50);
  EXPECT_EQ(
      Questions({3, 7, "", kNoCompetitionDate, false}),
      (Texts{"Select HandicalcSeed, HandicalcSeedDate From Partnerships Where (LowerPlayer = 3 And HigherPlayer = "
             "7)",
             "Select MembershipNumber, HandicalcSeed, HandicalcSeedDate From Members Where MembershipNumber = 3",
             ResultsOf("", "(Player = 3 Or Partner = 3) ", ""),
             "Select MembershipNumber, HandicalcSeed, HandicalcSeedDate From Members Where MembershipNumber = 7",
             ResultsOf("", "(Player = 7 Or Partner = 7) ", ""),
             "Select * from Partnerships Where LowerPlayer = 3 And HigherPlayer = 7"}));
}

TEST_F(HandicapStatementsTest, WeeksAreCountedBackFromTodayWithoutACompetitionDate) {
  Store(2, 0, 50);
  const Texts questions = Questions({3, -1, "", kNoCompetitionDate, true});
  EXPECT_EQ(
      questions,
      (Texts{"Select MembershipNumber, HandicalcSeed, HandicalcSeedDate From Members Where MembershipNumber = 3 And "
             "HandicalcSeedDate >= 45917",
             ResultsOf("", "(Player = 3 Or Partner = 3) ", " And CompetitionDate >= 45917")}));
}

TEST_F(HandicapStatementsTest, ADateLimitsAndExcludesItsOwnCompetition) {
  Store(1, 5, 80);
  const std::string dates = " And CompetitionDate >= 45893 And CompetitionDate <= 45900";
  const std::string rest =
      dates + " And (CompetitionDate <> 45900 Or CompetitionName <> 'Captain''s Cup' Or Individual <> 0)";
  const std::string seedDates = " And HandicalcSeedDate >= 45893 And HandicalcSeedDate <= 45900";
  EXPECT_EQ(
      Questions({7, 3, "Captain's Cup", Date{45900.0}, false}),
      (Texts{"Select HandicalcSeed, HandicalcSeedDate From Partnerships Where (LowerPlayer = 3 And HigherPlayer = "
             "7)" +
                 seedDates,
             "Select MembershipNumber, HandicalcSeed, HandicalcSeedDate From Members Where MembershipNumber = 7" +
                 seedDates,
             ResultsOf(" Top 5 ", "(Player = 7 Or Partner = 7) ", rest),
             "Select MembershipNumber, HandicalcSeed, HandicalcSeedDate From Members Where MembershipNumber = 3" +
                 seedDates,
             ResultsOf(" Top 5 ", "(Player = 3 Or Partner = 3) ", rest),
             ResultsOf(" Top 5 ", "( (Player = 7 And Partner = 3)  Or (Player = 3 And Partner = 7)) ", rest),
             "Select * from Partnerships Where LowerPlayer = 3 And HigherPlayer = 7"}));
}

TEST_F(HandicapStatementsTest, WithoutWeeksADateIsTheUpperEndAlone) {
  Store(0, 0, 50);
  const Texts questions = Questions({3, 99, "Cup", Date{45900.0}, true});
  ASSERT_EQ(questions.size(), 2U) << "an individual competition has no partner";
  EXPECT_EQ(questions[1],
            ResultsOf("", "(Player = 3 Or Partner = 3) ",
                      " And CompetitionDate <= 45900 And (CompetitionDate <> 45900 Or CompetitionName <> 'Cup' Or "
                      "Individual = 0)"));
}

TEST_F(HandicapStatementsTest, NegativeWeeksAreNone) {
  Store(-1, 0, 50);
  EXPECT_EQ(Questions({3, -1, "", kNoCompetitionDate, true})[1], ResultsOf("", "(Player = 3 Or Partner = 3) ", ""));
}

TEST_F(HandicapStatementsTest, WeeksBeforeAnEarlyDateKeepItsTimeOfDay) {
  Store(1, 0, 50);
  // Day 2 at 18:00 less seven days is day -5 at 18:00, which is written -5.75 and rounds away from day 0.
  const Texts questions = Questions({3, -1, "", Date{2.75}, true});
  EXPECT_NE(questions[1].find(" And CompetitionDate >= -6 And CompetitionDate <= 3"), std::string::npos)
      << questions[1];
}

TEST_F(HandicapStatementsTest, ANegativeNumberIsAPlayerLikeAnyOther) {
  Store(0, 0, 50);
  EXPECT_EQ(Questions({-5, -1, "", kNoCompetitionDate, false}).size(), 3U);
}

TEST_F(HandicapStatementsTest, TwoNonMembersAreAnsweredWithoutTheFile) {
  Store(0, 0, 50);
  EXPECT_TRUE(Questions({-1, -1, "", kNoCompetitionDate, false}).empty());
  EXPECT_TRUE(Questions({-1, 7, "", kNoCompetitionDate, true}).empty());
  EXPECT_EQ(store_.OpenCount(), 0);
}

TEST_F(HandicapStatementsTest, AnUnreadableSeedIsNone) {
  Store(0, 3, 50);
  fake_.file->answers
      ["Select HandicalcSeed, HandicalcSeedDate From Partnerships Where (LowerPlayer = 3 And "
       "HigherPlayer = 7)"] = {{"HandicalcSeedDate"}, {{Date{45000.0}}}};
  fake_.file->answers
      ["Select MembershipNumber, HandicalcSeed, HandicalcSeedDate From Members Where MembershipNumber = "
       "3"] = {{"HandicalcSeed", "HandicalcSeedDate"}, {{"no number", Date{45000.0}}}};
  fake_.file->answers[ResultsOf(" Top 3 ", "(Player = 3 Or Partner = 3) ", "")] = {
      {"ActualPercentage", "Player", "Partner", "Competitions.ID", "Competitions.CompetitionDate"},
      {{62.0, std::int32_t{3}, std::int32_t{8}, std::int32_t{1}, Date{45001.0}}}};
  held_.LoadHandicalcSettings(store_);
  const Handicaps handicaps = CalculateHandicaps(store_, held_, {3, 7, "", kNoCompetitionDate, false});
  EXPECT_EQ(handicaps.Player1Handicap(), 62.0) << "the result alone counts";
}

TEST_F(HandicapStatementsTest, AFailedCalculationKeepsTheFileOpenLikeAnyOther) {
  Store(0, 0, 50);
  fake_.file->failures.emplace_back("From Results", Error(ErrorNumber::ProviderFailure, "disk", "bad"));
  EXPECT_THROW(CalculateHandicaps(store_, held_, {3, 7, "", kNoCompetitionDate, false}), Error);
  EXPECT_EQ(store_.OpenCount(), 1);
}

}  // namespace
}  // namespace tavi
