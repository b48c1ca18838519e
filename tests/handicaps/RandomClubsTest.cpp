#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <set>

#include "facade/support/Club.h"
#include "handicaps/PlainRule.h"
#include "platform/values/Convert.h"

namespace tavi {
namespace {

using testing::Club;
using testing::PlainAnswer;
using testing::PlainClub;
using testing::PlainQuestion;

constexpr int kMembers = 4;
constexpr double kHalfACent = 0.005 + 1e-9;

/// Makes small clubs by chance: few players, days and percentages, so that ties, seeds at the limit and joint results
/// come up often.
class Chance {
 public:
  explicit Chance(unsigned seed) : engine_(seed) {}

  int Between(int low, int high) { return std::uniform_int_distribution<int>(low, high)(engine_); }
  bool Once(int in) { return Between(1, in) == 1; }
  /// A quarter of a per cent is exact, so that no order of adding matters.
  double Percentage() { return Between(120, 280) / 4.0; }
  /// A member, now and then somebody else.
  int Player() { return Once(6) ? Between(-2, -1) : Between(1, kMembers); }
  /// Two players, often the same two, so that joint results fill their limit.
  std::pair<int, int> Players() { return Once(3) ? std::pair(1, 2) : std::pair(Player(), Player()); }
  int Day() { return Club::kToday.DayNumber() - Between(0, 30); }

  PlainClub MakeClub() {
    PlainClub club;
    club.today = Club::kToday.DayNumber();
    club.settings = MakeSettings();
    for (int count = Between(0, 12); count > 0; --count) {
      club.competitions.push_back({Day(), Once(2) ? "Cup" : "League", Once(5), !Once(6)});
    }
    AddResults(club);
    for (int member = 1; member <= kMembers; ++member) club.memberSeeds.push_back(MaybeSeed());
    for (int lower = 1; lower < kMembers; ++lower) {
      for (int higher = lower + 1; higher <= kMembers; ++higher) {
        if (Once(2)) club.pairs.push_back({lower, higher, !Once(4), MaybeSeed()});
      }
    }
    return club;
  }

  PlainQuestion MakeQuestion() {
    const auto [player, partner] = Players();
    PlainQuestion question{player, partner, Once(2) ? "Cup" : "League", std::nullopt, Once(4)};
    if (Once(2)) question.day = Day();
    return question;
  }

 private:
  PlainClub::Settings MakeSettings() {
    PlainClub::Settings settings;
    settings.weeks = Once(2) ? 0 : Between(1, 4);
    settings.results = Once(3) ? 0 : Between(1, 5);
    settings.weighting = Once(3) ? 50 : (Once(3) ? 100 : Between(51, 99));
    if (Once(2)) settings.multiplier = 0.75;
    if (Once(2)) settings.add = 1.5;
    settings.unknown = Once(2) ? 46.125 : 50.0;
    return settings;
  }

  std::optional<PlainClub::Seed> MaybeSeed() {
    if (Once(2)) return std::nullopt;
    return PlainClub::Seed{Once(6) ? 0.0 : Percentage(), Day()};
  }

  /// No pair has two results in one competition.
  void AddResults(PlainClub& club) {
    if (club.competitions.empty()) return;
    std::set<std::tuple<int, int, int>> taken;
    for (int count = Between(0, 25); count > 0; --count) {
      const int competition = Between(0, static_cast<int>(club.competitions.size()) - 1);
      const auto [player, partner] = Players();
      if (!taken.insert({competition, std::min(player, partner), std::max(player, partner)}).second) continue;
      club.results.push_back({competition, player, partner, Percentage()});
    }
  }

  std::mt19937 engine_;
};

/// Puts plain clubs into the file of a club.
class RandomClubsTest : public ::testing::Test {
 protected:
  RandomClubsTest() {
    club_->OpenDatabase();
    for (const char* first : {"Anne", "Bob", "Cat", "Dan"}) club_->AddNewMember(first, "", "Hill");
    club_->CloseDatabase();
  }
  ~RandomClubsTest() override { club_->CloseDatabase(); }

  void Store(const PlainClub& plain) {
    for (const char* table : {"Results", "Competitions", "Partnerships"}) {
      club_.Execute(std::string("Delete From ") + table);
    }
    for (std::size_t index = 0; index < plain.memberSeeds.size(); ++index) {
      const SeedTexts seed = TextsOf(plain.memberSeeds[index]);
      club_.Execute("Update Members Set HandicalcSeed = " + seed.percentage + ", HandicalcSeedDate = " + seed.day +
                    " Where MembershipNumber = " + std::to_string(index + 1));
    }
    for (const auto& pair : plain.pairs) {
      const SeedTexts seed = TextsOf(pair.seed);
      club_.Execute(
          "Insert Into Partnerships (LowerPlayer, HigherPlayer, Active, HandicalcSeed, HandicalcSeedDate) "
          "Values (" +
          std::to_string(pair.lower) + ", " + std::to_string(pair.higher) + ", " + (pair.active ? "1" : "0") + ", " +
          seed.percentage + ", " + seed.day + ")");
    }
    StoreResults(plain);
    StoreSettings(plain.settings);
  }

  Handicaps Ask(const PlainQuestion& question) {
    const Date date = question.day ? Date{static_cast<double>(*question.day)} : Date::FromCivil(2000, 1, 1);
    return club_->CalculateHandicaps(question.player, question.partner, question.name, date, question.individual);
  }

  Club club_;

 private:
  struct SeedTexts {
    std::string percentage = "Null";
    std::string day = "Null";
  };

  static SeedTexts TextsOf(const std::optional<PlainClub::Seed>& seed) {
    if (!seed) return {};
    return {NumberText(seed->percentage), std::to_string(seed->day)};
  }

  void StoreResults(const PlainClub& plain) {
    std::vector<std::string> identifiers;
    for (const auto& competition : plain.competitions) {
      club_.Execute(
          "Insert Into Competitions (CompetitionName, CompetitionDate, Individual, ScoringMethod, "
          "IncludeInHandicapCalculations) Values ('" +
          competition.name + "', " + std::to_string(competition.day) + ", " + (competition.individual ? "-1" : "0") +
          ", 0, " + (competition.counts ? "-1" : "0") + ")");
      identifiers.push_back(ToText(club_.Single("Select Max(ID) From Competitions")));
    }
    for (const auto& result : plain.results) {
      club_.Execute("Insert Into Results (Competition, Player, Partner, ActualPercentage) Values (" +
                    identifiers[static_cast<std::size_t>(result.competition)] + ", " + std::to_string(result.player) +
                    ", " + std::to_string(result.partner) + ", " + NumberText(result.percentage) + ")");
    }
  }

  void StoreSettings(const PlainClub::Settings& plain) {
    auto settings = std::make_shared<HandiCalcSettings>();
    settings->SetMaxWeeks(static_cast<std::int16_t>(plain.weeks));
    settings->SetMaxResults(static_cast<std::int16_t>(plain.results));
    settings->SetSamePartnerWeighting(static_cast<std::int16_t>(plain.weighting));
    settings->SetRegularPairMultiplier(plain.multiplier);
    settings->SetRegularPairAdd(plain.add);
    settings->SetUnknownPlayerHandicap(plain.unknown);
    club_->SetHandicalcOptions(settings);
  }
};

bool HasTwoDecimals(double number) {
  return std::abs(number * 100.0 - std::round(number * 100.0)) < 1e-6;
}

TEST_F(RandomClubsTest, TheCalculationAgreesWithThePlainRule) {
  for (unsigned seed = 1; seed <= 100; ++seed) {
    Chance chance(seed);
    const PlainClub plain = chance.MakeClub();
    club_->OpenDatabase();
    Store(plain);
    for (int count = 0; count < 12; ++count) {
      const PlainQuestion question = chance.MakeQuestion();
      SCOPED_TRACE("seed " + std::to_string(seed) + ", question " + std::to_string(count));
      const PlainAnswer expected = testing::HandicapsByTheRule(plain, question);
      const Handicaps actual = Ask(question);
      EXPECT_NEAR(actual.Player1Handicap(), expected.player1, kHalfACent);
      EXPECT_NEAR(actual.Player2Handicap(), expected.player2, kHalfACent);
      EXPECT_NEAR(actual.PartnershipHandicap(), expected.pair, kHalfACent);
      const bool bothUnknown = question.player == -1 && (question.individual || question.partner == -1);
      EXPECT_TRUE(bothUnknown || HasTwoDecimals(actual.PartnershipHandicap())) << actual.PartnershipHandicap();
      if (::testing::Test::HasFailure()) return;
    }
    club_->CloseDatabase();
  }
}

}  // namespace
}  // namespace tavi
