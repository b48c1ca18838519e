#include "util/cIntegerList.h"

#include <gtest/gtest.h>

#include "platform/values/Error.h"

namespace tavi {
namespace {

cIntegerList ListOf(const std::string& text) {
  cIntegerList list;
  list.SetTo(text);
  return list;
}

bool RaisesOverflow(const std::string& text) {
  try {
    ListOf(text);
  } catch (const Error& error) {
    return error.Is(ErrorNumber::Overflow);
  }
  return false;
}

TEST(IntegerList, EmptyAndBlankTextsGiveAnEmptyList) {
  for (const char* text : {"", "   "}) {
    EXPECT_TRUE(ListOf(text).IsEmpty());
    EXPECT_EQ(ListOf(text).ToString(), "");
    EXPECT_EQ(ListOf(text).ToPrettyString(), "");
  }
}

TEST(IntegerList, ReadsRangesAndWritesBothTextForms) {
  EXPECT_EQ(ListOf("1-3,5").ToPrettyString(), "1-3, 5");
  EXPECT_EQ(ListOf("1-3,5").ToString(), "1&2&3&5");
  for (const char* text : {"1-3&5", " 3 - 1 , 5 ", "5,3,2,1,2"}) EXPECT_EQ(ListOf(text).ToString(), "1&2&3&5") << text;
}

TEST(IntegerList, ARangeOfOneAndARangeDownwardsAreRanges) {
  EXPECT_EQ(ListOf("7-7").ToString(), "7");
  EXPECT_EQ(ListOf("9-4").ToPrettyString(), "4-9");
}

TEST(IntegerList, AnEmptyPieceIsZero) {
  EXPECT_EQ(ListOf("1,,3").ToString(), "0&1&3");
}

TEST(IntegerList, LooksUpNeighboursAndEnds) {
  const cIntegerList list = ListOf("3,7");
  EXPECT_EQ(list.NextAfter(3), 7);
  EXPECT_EQ(list.NextAfter(7), 0);
  EXPECT_EQ(list.NearestTo(5), 3);
  EXPECT_EQ(list.NearestTo(6), 7);
  EXPECT_EQ(list.Largest(), 7);
  EXPECT_EQ(list.Smallest(99), 3);
  EXPECT_EQ(cIntegerList().Largest(), -1);
  EXPECT_EQ(cIntegerList().Smallest(99), 99);
  EXPECT_EQ(cIntegerList().NearestTo(5), 0);
}

TEST(IntegerList, SetToAllIntegersUpToKeepsWhatIsThere) {
  cIntegerList list = ListOf("10");
  list.SetToAllIntegersUpTo(3);
  EXPECT_EQ(list.ToString(), "1&2&3&10");
  list.SetToAllIntegersUpTo(0);
  EXPECT_EQ(list.Count(), 4);
}

TEST(IntegerList, AddsAndRemovesOnceAndQuietly) {
  cIntegerList list = ListOf("2");
  list.Add(2);
  list.Remove(5);
  EXPECT_EQ(list.Count(), 1);
  list.Remove(2);
  EXPECT_TRUE(list.IsEmpty());
}

TEST(IntegerList, ItemsCountFromOneAndEndWithAnError) {
  const cIntegerList list = ListOf("4,6");
  EXPECT_EQ(list.Item(1), 4);
  EXPECT_THROW(static_cast<void>(list.Item(0)), Error);
  EXPECT_THROW(static_cast<void>(list.Item(3)), Error);
}

TEST(IntegerList, MergesOverlapsAndCopies) {
  cIntegerList list = ListOf("1-3");
  EXPECT_TRUE(list.Overlaps(ListOf("3-5")));
  EXPECT_FALSE(list.Overlaps(ListOf("4,5")));
  cIntegerList copy = list.Clone();
  copy.MergeIn(ListOf("5"));
  EXPECT_EQ(copy.ToString(), "1&2&3&5");
  EXPECT_EQ(list.ToString(), "1&2&3");
  EXPECT_EQ(copy.AllItemsUpTo(2).ToString(), "1&2");
  EXPECT_TRUE(list.IsContiguous());
  EXPECT_FALSE(copy.IsContiguous());
  EXPECT_TRUE(cIntegerList().IsContiguous());
}

TEST(IntegerList, NumbersBeyondSixteenBitsOverflow) {
  EXPECT_TRUE(RaisesOverflow("32768"));
  EXPECT_TRUE(RaisesOverflow("32766-32767"));
  EXPECT_FALSE(RaisesOverflow("32765-32766"));
}

TEST(IntegerList, ThePrettyTextEndsAtANegativeValue) {
  cIntegerList list = ListOf("1,2");
  list.Add(-4);
  EXPECT_EQ(list.ToPrettyString(), "");
  EXPECT_EQ(list.ToString(), "-4&1&2");
}

TEST(IntegerList, RangesCountUpAndDown) {
  cIntegerList list;
  list.AddAllIntegersBetween(-1, 2);
  EXPECT_EQ(list.ToString(), "-1&0&1&2");
  list.Clear();
  list.AddAllIntegersBetween(5, 3);
  EXPECT_EQ(list.ToString(), "3&4&5");
  EXPECT_TRUE(list.Contains(4));
  EXPECT_FALSE(list.Contains(6));
}

TEST(IntegerList, RangesThatReachAnEndOfSixteenBitsOverflowBehindIt) {
  cIntegerList list;
  EXPECT_THROW(list.AddAllIntegersBetween(-32767, -32768), Error);
  EXPECT_THROW(list.AddAllIntegersBetween(32767, 32767), Error);
  EXPECT_EQ(list.ToString(), "-32768&-32767&32767") << "the values are in the list all the same";
}

TEST(IntegerList, ZeroIsTheAnswerForNoneAndForZeroItself) {
  cIntegerList list = ListOf("1-2");
  list.Add(0);
  list.Add(-3);
  EXPECT_EQ(list.NextAfter(-3), 0);
  EXPECT_EQ(list.NextAfter(2), 0);
  EXPECT_EQ(list.NearestTo(-1), 0);
  EXPECT_EQ(list.Smallest(9), -3);
}

TEST(IntegerList, WhatFollowsANumberInItsPieceIsLeftOut) {
  EXPECT_EQ(ListOf("4x,6-8y,z").ToString(), "0&4&6&7&8");
  EXPECT_EQ(ListOf("3-").ToString(), "0&1&2&3") << "an empty end is 0";
}

}  // namespace
}  // namespace tavi
