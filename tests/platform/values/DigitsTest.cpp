#include "platform/values/Digits.h"

#include <gtest/gtest.h>

#include <vector>

#include "platform/values/Wildcards.h"

namespace tavi {
namespace {

TEST(Digits, AreRoundedToSoManyAndLoseTrailingZeros) {
  EXPECT_EQ(RoundedDigits(1234.5, 3).digits, "123");
  EXPECT_EQ(RoundedDigits(1234.5, 3).exponent, 3);
  EXPECT_EQ(RoundedDigits(0.0996, 2).digits, "1");
  EXPECT_EQ(RoundedDigits(0.0996, 2).exponent, -1);
  EXPECT_EQ(RoundedDigits(0.0, 15).digits, "");
}

TEST(Digits, AreAsFewAsReadBackToTheSameNumberOfTheType) {
  EXPECT_EQ(FewestDigits(0.1).digits, "1");
  EXPECT_EQ(FewestDigits(0.1F).digits, "1");
  EXPECT_EQ(FewestDigits(static_cast<double>(0.1F)).digits, "10000000149011612");
  EXPECT_EQ(FewestDigits(1e300).exponent, 300);
}

TEST(Digits, AreWrittenPlainlyOrWithAPowerOfTen) {
  EXPECT_EQ(PlainText({"12", 3}), "1200");
  EXPECT_EQ(PlainText({"125", 0}), "1.25");
  EXPECT_EQ(PlainText({"5", -2}), "0.05");
  EXPECT_EQ(GeneralText({"1", -5}), "0.00001");
  EXPECT_EQ(GeneralText({"15", -6}), "1.5E-06");
  EXPECT_EQ(GeneralText({"1", 14}), "100000000000000");
  EXPECT_EQ(GeneralText({"1", 15}), "1E+15");
  EXPECT_EQ(GeneralText({"", 0}), "0");
}

TEST(Digits, OfBytesAreTwoForEach) {
  EXPECT_EQ(HexadecimalText(std::vector<std::uint8_t>{0x00, 0x0A, 0xFF}), "000AFF");
}

bool Fits(std::u32string_view text, std::u32string_view pattern) {
  return FitsPattern(
      text, pattern, [](char32_t piece) { return piece == U'*'; },
      [](char32_t piece, char32_t character) { return piece == U'?' || piece == character; });
}

TEST(Wildcards, ARunTakesAnyCharactersOrNone) {
  EXPECT_TRUE(Fits(U"", U"*"));
  EXPECT_TRUE(Fits(U"tuesday.xml", U"*.xml"));
  EXPECT_TRUE(Fits(U"abcabd", U"*abd"));
  EXPECT_TRUE(Fits(U"aXbYc", U"a*b*c"));
  EXPECT_FALSE(Fits(U"aXbY", U"a*b*c"));
  EXPECT_FALSE(Fits(U"", U"?"));
  EXPECT_FALSE(Fits(U"ab", U"a"));
}

TEST(Wildcards, ManyRunsInAVainPatternEndSoon) {
  std::u32string pattern;
  for (int i = 0; i < 1000; ++i) pattern += U"*a";
  EXPECT_FALSE(Fits(std::u32string(2000, U'a'), pattern + U"b"));
}

}  // namespace
}  // namespace tavi
