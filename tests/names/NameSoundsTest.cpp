#include "names/NameSounds.h"

#include <gtest/gtest.h>

namespace tavi {
namespace {

constexpr int kFar = 1000;

int Distance(std::string_view left, std::string_view right) {
  return SoundDistance(SoundsOf(left), SoundsOf(right), kFar);
}

TEST(NameSounds, LeaveSilentLettersOut) {
  EXPECT_EQ(SoundsOf("KNIGHT"), SoundsOf("NIGHT"));
  EXPECT_EQ(SoundsOf("WRIGHT"), SoundsOf("RIGHT"));
  EXPECT_EQ(SoundsOf("LAMB"), SoundsOf("LAM"));
  EXPECT_EQ(SoundsOf("CLARKE"), SoundsOf("CLARK"));
  EXPECT_EQ(SoundsOf("RHODES"), SoundsOf("RODES"));
}

TEST(NameSounds, ReadSpellingsOfOneSoundAlike) {
  EXPECT_EQ(SoundsOf("PHILIP"), SoundsOf("FILIP"));
  EXPECT_EQ(SoundsOf("DICKSON"), SoundsOf("DIXON"));
  EXPECT_EQ(SoundsOf("REID"), SoundsOf("REED"));
  EXPECT_EQ(SoundsOf("BURLEY"), SoundsOf("BURLEIGH"));
  EXPECT_EQ(SoundsOf("MATTHEWS"), SoundsOf("MATHEWS"));
  EXPECT_EQ(SoundsOf("HANSEN"), SoundsOf("HANSON"));
  EXPECT_EQ(SoundsOf("CHARLEY"), SoundsOf("CHARLIE"));
}

TEST(NameSounds, OfNothingAreNothing) {
  EXPECT_EQ(SoundsOf(""), "");
  EXPECT_EQ(SkeletonOf(""), "");
}

TEST(NameSounds, HaveASkeletonOfConsonants) {
  EXPECT_EQ(SkeletonOf(SoundsOf("HALL")), SkeletonOf(SoundsOf("HILL")));
  EXPECT_EQ(SkeletonOf(SoundsOf("ALLEN")), "ALN");
  EXPECT_EQ(SkeletonOf(SoundsOf("STEPHEN")), SkeletonOf(SoundsOf("STEVEN")));
}

TEST(SoundDistance, IsSymmetricAndNothingForTheSame) {
  EXPECT_EQ(Distance("HALL", "HALL"), 0);
  EXPECT_EQ(Distance("HALL", "HILL"), Distance("HILL", "HALL"));
  EXPECT_EQ(Distance("COTTRILL", "COTTERILL"), Distance("COTTERILL", "COTTRILL"));
}

TEST(SoundDistance, IsSmallerTheMoreAlikeNamesSound) {
  EXPECT_LT(Distance("COTTRILL", "COTTERILL"), Distance("COTTRILL", "COTTON"));
  EXPECT_LT(Distance("HALL", "HAUL"), Distance("HALL", "BALL"));
  EXPECT_LT(Distance("GREGG", "KREGG"), Distance("GREGG", "MREGG"));
}

TEST(SoundDistance, StopsAtTheLimit) {
  EXPECT_EQ(SoundDistance(SoundsOf("SMITH"), SoundsOf("FEATHERSTONE"), 100), 100);
  EXPECT_EQ(SoundDistance("", SoundsOf("FEATHERSTONE"), 100), 100);
}

TEST(SoundDistance, TakesNamesOfAnyLength) {
  EXPECT_EQ(SoundDistance(std::string(5000, 'K'), std::string(5000, 'M'), kFar), kFar);
}

TEST(OneSlip, IsALetterTooManyTooFewWrongOrInTheWrongPlace) {
  EXPECT_TRUE(IsOneSlipAway("KAREN", "KAREN"));
  EXPECT_TRUE(IsOneSlipAway("KAREN", "KARREN"));
  EXPECT_TRUE(IsOneSlipAway("KARREN", "KAREN"));
  EXPECT_TRUE(IsOneSlipAway("KAREN", "KERN") == IsOneSlipAway("KERN", "KAREN"));
  EXPECT_TRUE(IsOneSlipAway("KAREN", "KAERN"));
  EXPECT_TRUE(IsOneSlipAway("KAREN", "KATEN"));
  EXPECT_TRUE(IsOneSlipAway("KAREN", "AREN"));
  EXPECT_TRUE(IsOneSlipAway("", "A"));
  EXPECT_FALSE(IsOneSlipAway("KAREN", "KAER"));
  EXPECT_FALSE(IsOneSlipAway("KAREN", "KARENNA"));
  EXPECT_FALSE(IsOneSlipAway("KAREN", "KNREA"));
  EXPECT_FALSE(IsOneSlipAway("", "AB"));
}

}  // namespace
}  // namespace tavi
