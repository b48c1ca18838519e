#include "handicaps/HandiCalcSettings.h"

#include <gtest/gtest.h>

namespace tavi {
namespace {

TEST(HandiCalcSettings, ANewObjectHoldsTheDefaults) {
  const HandiCalcSettings settings;
  EXPECT_EQ(settings.MaxWeeks(), 0);
  EXPECT_EQ(settings.MaxResults(), 0);
  EXPECT_EQ(settings.SamePartnerWeighting(), 50);
  EXPECT_EQ(settings.RegularPairMultiplier(), 1.0);
  EXPECT_EQ(settings.RegularPairAdd(), 0.0);
  EXPECT_EQ(settings.UnknownPlayerHandicap(), 50.0);
  EXPECT_FALSE(settings.Disabled());
}

HandiCalcSettings Changed() {
  HandiCalcSettings settings;
  settings.SetMaxWeeks(52);
  settings.SetMaxResults(10);
  settings.SetSamePartnerWeighting(75);
  settings.SetRegularPairMultiplier(0.9);
  settings.SetRegularPairAdd(1.5);
  settings.SetUnknownPlayerHandicap(46.5);
  settings.SetDisabled(true);
  return settings;
}

TEST(HandiCalcSettings, SetDefaultsResetsEverything) {
  HandiCalcSettings settings = Changed();
  settings.SetDefaults();
  EXPECT_EQ(settings.MaxWeeks(), 0);
  EXPECT_EQ(settings.MaxResults(), 0);
  EXPECT_EQ(settings.SamePartnerWeighting(), 50);
  EXPECT_EQ(settings.RegularPairMultiplier(), 1.0);
  EXPECT_EQ(settings.RegularPairAdd(), 0.0);
  EXPECT_EQ(settings.UnknownPlayerHandicap(), 50.0);
  EXPECT_FALSE(settings.Disabled());
}

TEST(HandiCalcSettings, ACloneIsEqualAndIndependent) {
  HandiCalcSettings original = Changed();
  const HandiCalcSettings clone = original.Clone();
  original.SetDefaults();
  EXPECT_EQ(clone.MaxWeeks(), 52);
  EXPECT_EQ(clone.MaxResults(), 10);
  EXPECT_EQ(clone.SamePartnerWeighting(), 75);
  EXPECT_EQ(clone.RegularPairMultiplier(), 0.9);
  EXPECT_EQ(clone.RegularPairAdd(), 1.5);
  EXPECT_EQ(clone.UnknownPlayerHandicap(), 46.5);
  EXPECT_TRUE(clone.Disabled());
}

TEST(HandiCalcSettings, TheSamePartnerWeightingStaysBetweenFiftyAndAHundred) {
  const std::vector<std::pair<std::int16_t, std::int16_t>> cases{
      {std::int16_t{0}, std::int16_t{50}},    {std::int16_t{49}, std::int16_t{50}},
      {std::int16_t{50}, std::int16_t{50}},   {std::int16_t{75}, std::int16_t{75}},
      {std::int16_t{100}, std::int16_t{100}}, {std::int16_t{101}, std::int16_t{100}},
      {std::int16_t{-5}, std::int16_t{50}}};
  HandiCalcSettings settings;
  for (const auto& [given, stored] : cases) {
    settings.SetSamePartnerWeighting(given);
    EXPECT_EQ(settings.SamePartnerWeighting(), stored) << given;
  }
}

bool Adjusts(double multiplier, double add) {
  HandiCalcSettings settings;
  settings.SetRegularPairMultiplier(multiplier);
  settings.SetRegularPairAdd(add);
  return settings.IncludesRegularPairAdjustment();
}

TEST(HandiCalcSettings, AnAdjustmentOfAHundredThousandthOrLessIsNone) {
  EXPECT_FALSE(Adjusts(1.0, 0.0));
  EXPECT_FALSE(Adjusts(1.00001, 0.0));
  EXPECT_FALSE(Adjusts(0.99999, 0.0));
  EXPECT_TRUE(Adjusts(1.00002, 0.0));
  EXPECT_TRUE(Adjusts(0.99998, 0.0));
  EXPECT_FALSE(Adjusts(1.0, 0.00001));
  EXPECT_FALSE(Adjusts(1.0, -0.00001));
  EXPECT_TRUE(Adjusts(1.0, 0.00002));
  EXPECT_TRUE(Adjusts(1.0, -0.5));
}

TEST(HandiCalcSettings, ARegularPairsHandicapIsMultipliedThenAddedTo) {
  EXPECT_DOUBLE_EQ(Changed().AdjustRegularPair(52.0), 48.3);
  EXPECT_EQ(HandiCalcSettings().AdjustRegularPair(123.456), 123.456);
}

}  // namespace
}  // namespace tavi
