#include <gtest/gtest.h>

#include "handicaps/cHandiCalcResultData.h"

namespace tavi {
namespace {

const Date kMonday = Date::FromCivil(2025, 9, 1);
const Date kTuesday = Date::FromCivil(2025, 9, 2);

cPairMemberNumbers Pair(std::int32_t player, std::int32_t partner) {
  return cPairMemberNumbers::Create(player, partner);
}

cHandiCalcResultData Result(std::int32_t competition, Date date, double percent = 50.0) {
  return cHandiCalcResultData::Create(competition, date, percent, Pair(3, 7), false);
}

cHandiCalcResultData Seed(bool ofPair, double percent = 50.0) {
  return cHandiCalcResultData::Create(0, kMonday, percent, Pair(3, 7), ofPair);
}

std::string Keys(const HandicapResultList& list) {
  std::string keys;
  for (const auto& [key, entry] : list) keys += key + " ";
  return keys;
}

TEST(PairMemberNumbers, ANewPairIsNobody) {
  EXPECT_EQ(cPairMemberNumbers().Lower(), -1);
  EXPECT_EQ(cPairMemberNumbers().Higher(), -1);
  EXPECT_TRUE(cPairMemberNumbers().BothNonMembers());
}

TEST(PairMemberNumbers, NumbersAreHeldInAscendingOrder) {
  EXPECT_EQ(Pair(7, 3).Lower(), 3);
  EXPECT_EQ(Pair(7, 3).Higher(), 7);
  EXPECT_EQ(Pair(-5, -9).Lower(), -9);
  EXPECT_EQ(Pair(4, 4).Lower(), 4);
  EXPECT_EQ(Pair(4, 4).Higher(), 4);
}

TEST(PairMemberNumbers, OnlyMinusOneIsNoMember) {
  EXPECT_TRUE(Pair(-5, 3).BothMembers());
  EXPECT_FALSE(Pair(-1, 3).BothMembers());
  EXPECT_FALSE(Pair(-1, 3).BothNonMembers());
  EXPECT_TRUE(Pair(-1, -1).BothNonMembers());
}

TEST(PairMemberNumbers, TheSamePairMayBeNamedInEitherOrder) {
  EXPECT_TRUE(Pair(3, 7).SameAs(Pair(7, 3)));
  EXPECT_FALSE(Pair(3, 7).SameAs(Pair(3, 8)));
  EXPECT_FALSE(Pair(2, 7).SameAs(Pair(3, 7)));
}

TEST(PairMemberNumbers, APairWithoutTwoMembersIsTheSameAsNone) {
  EXPECT_FALSE(Pair(-1, 3).SameAs(Pair(-1, 3)));
  EXPECT_FALSE(Pair(-1, -1).SameAs(Pair(-1, -1)));
}

TEST(ResultData, AResultsKeyNamesCompetitionAndPair) {
  EXPECT_EQ(cHandiCalcResultData::Create(12, kMonday, 50.0, Pair(7, 3), true).Key(), "K12_3_7");
  EXPECT_EQ(cHandiCalcResultData::Create(12, kMonday, 50.0, Pair(7, -1), false).Key(), "K12__7");
  EXPECT_EQ(cHandiCalcResultData::Create(-12, kMonday, 50.0, Pair(-7, -1), false).Key(), "K-12_-7_");
}

TEST(ResultData, SeedsHaveKeysOfTheirOwn) {
  EXPECT_TRUE(Seed(true).IsSeed());
  EXPECT_EQ(Seed(true).Key(), "PairSeed");
  EXPECT_EQ(Seed(false).Key(), "Seed");
  EXPECT_FALSE(Result(1, kMonday).IsSeed());
}

TEST(ResultData, WhatIsPutInIsReadBack) {
  const auto data = cHandiCalcResultData::Create(12, kTuesday, 51.25, Pair(3, 7), true);
  EXPECT_EQ(data.Percentage(), 51.25);
  EXPECT_EQ(data.CompetitionDate(), kTuesday);
  EXPECT_TRUE(data.SamePairResult());
}

TEST(ResultData, LaterMeansALaterCalendarDay) {
  const Date mondayNight{kMonday.days + 0.99};
  EXPECT_FALSE(Result(1, mondayNight).LaterThan(Result(2, kMonday)));
  EXPECT_TRUE(Result(1, kTuesday).LaterThan(Result(2, mondayNight)));
  EXPECT_FALSE(Result(1, kMonday).LaterThan(Result(2, kTuesday)));
}

TEST(ResultList, EntriesAreNewestFirst) {
  HandicapResultList list;
  for (const int day : {3, 5, 1, 4, 2}) AddResultInOrder(list, Result(day, Date{45000.0 + day}));
  EXPECT_EQ(Keys(list), "K5_3_7 K4_3_7 K3_3_7 K2_3_7 K1_3_7 ");
}

TEST(ResultList, EntriesOfOneDayKeepTheOrderInWhichTheyCame) {
  HandicapResultList list;
  AddResultInOrder(list, Result(1, Date{45000.75}));
  AddResultInOrder(list, Result(2, Date{45000.25}));
  AddResultInOrder(list, Result(3, Date{45000.5}));
  EXPECT_EQ(Keys(list), "K1_3_7 K2_3_7 K3_3_7 ");
}

TEST(ResultList, AKeyIsTakenOnce) {
  HandicapResultList list;
  AddResultInOrder(list, Result(1, kMonday, 40.0));
  AddResultInOrder(list, Result(1, kTuesday, 60.0));
  ASSERT_EQ(list.Count(), 1U);
  EXPECT_EQ(list.begin()->second.Percentage(), 40.0);
  EXPECT_TRUE(KeyExists(list, "K1_3_7"));
  EXPECT_FALSE(KeyExists(list, "K2_3_7"));
}

HandicapResultList TwoResultsAndSeeds() {
  HandicapResultList list;
  for (const auto& entry : {Seed(true), Seed(false)}) list.Append(entry.Key(), entry);
  AddResultInOrder(list, Result(1, kTuesday));
  AddResultInOrder(list, Result(2, kTuesday));
  return list;
}

TEST(ResultList, SeedsStayWhileTheListIsNotOverTheLimit) {
  HandicapResultList list = TwoResultsAndSeeds();
  TrimSeeds(list, 4);
  EXPECT_EQ(list.Count(), 4U);
}

TEST(ResultList, SeedsGoFromAListOverTheLimit) {
  HandicapResultList list = TwoResultsAndSeeds();
  TrimSeeds(list, 3);
  EXPECT_EQ(Keys(list), "K1_3_7 K2_3_7 ");
}

TEST(ResultList, WithoutALimitSeedsGoFromAnyList) {
  HandicapResultList list;
  list.Append("Seed", Seed(false));
  TrimSeeds(list, 0);
  EXPECT_TRUE(list.IsEmpty());
  TrimSeeds(list, 0);
  EXPECT_TRUE(list.IsEmpty());
}

TEST(ResultList, TheAverageTakesEveryEntryAlike) {
  HandicapResultList list;
  AddResultInOrder(list, Result(1, kMonday, 40.0));
  AddResultInOrder(list, Result(2, kTuesday, 50.5));
  EXPECT_EQ(AverageOf(list, -1, 46.0), 45.25);
}

TEST(ResultList, OfNoEntriesOnlyANonMemberAveragesToTheUnknownPlayersHandicap) {
  EXPECT_EQ(AverageOf(HandicapResultList(), -1, 46.0), 46.0);
  EXPECT_EQ(AverageOf(HandicapResultList(), 0, 46.0), 50.0);
  EXPECT_EQ(AverageOf(HandicapResultList(), -2, 46.0), 50.0);
}

}  // namespace
}  // namespace tavi
