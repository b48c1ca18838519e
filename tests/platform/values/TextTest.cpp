#include "platform/values/Text.h"

#include <gtest/gtest.h>

namespace tavi {
namespace {

using Pieces = std::vector<std::string>;

TEST(Text, CountsCodePointsAndNotBytes) {
  EXPECT_EQ(TextLength(""), 0U);
  EXPECT_EQ(TextLength("Éloïse"), 6U);
  EXPECT_EQ(TextLength("a\U0001F0A1b"), 3U);
}

TEST(Text, FirstCharactersKeepsWholeCharacters) {
  EXPECT_EQ(FirstCharacters("Éloïse", 1), "É");
  EXPECT_EQ(FirstCharacters("Łukasz", 2), "Łu");
  EXPECT_EQ(FirstCharacters("ab", 5), "ab");
  EXPECT_EQ(FirstCharacters("ab", 0), "");
}

TEST(Text, EachByteThatIsNoTextBecomesAReplacementCharacter) {
  EXPECT_EQ(ToCodePoints("a\xFF\x80z"), U"a\uFFFD\uFFFDz");
  EXPECT_EQ(ToCodePoints("\xE2\x82"), U"\uFFFD\uFFFD") << "a sequence that the end cuts off";
  EXPECT_EQ(ToCodePoints("\xC0\xAF"), U"\uFFFD\uFFFD") << "a longer writing than needed";
  EXPECT_EQ(ToCodePoints("\xE0\x80\xAF"), U"\uFFFD\uFFFD\uFFFD");
  EXPECT_EQ(ToCodePoints("\xF0\x8F\xBF\xBF"), U"\uFFFD\uFFFD\uFFFD\uFFFD");
  EXPECT_EQ(ToCodePoints("\xF4\x90\x80\x80"), U"\uFFFD\uFFFD\uFFFD\uFFFD") << "behind the last code point";
  EXPECT_EQ(ToCodePoints("\xE2"
                         "aa"),
            U"\uFFFDaa");
}

TEST(Text, CodePointsOfEveryLengthComeBack) {
  const std::u32string all = U"\u0001\u007F\u0080\u07FF\u0800\uFFFF\U00010000\U0010FFFF";
  EXPECT_EQ(ToCodePoints(FromCodePoints(all)), all);
  const std::u32string_view tooHigh(U"\x41\x42", 2);
  EXPECT_EQ(FromCodePoints(tooHigh), "AB");
  EXPECT_EQ(FromCodePoints(std::u32string(1, static_cast<char32_t>(0x110000))), "\uFFFD");
}

TEST(Text, Utf16ComesBackWithLoneSurrogatesToo) {
  const std::u16string pair{0xD83C, 0xDCA1};
  const std::u16string loneHigh{u'a', 0xD83C, u'b'};
  const std::u16string loneLow{0xDCA1};
  EXPECT_EQ(FromUtf16(pair), "\U0001F0A1");
  EXPECT_EQ(ToUtf16("\U0001F0A1"), pair);
  EXPECT_EQ(FromUtf16(loneLow), "\xED\xB2\xA1");
  for (const std::u16string& text : {pair, loneHigh, loneLow, std::u16string(u"Łukasz")}) {
    EXPECT_EQ(ToUtf16(FromUtf16(text)), text);
  }
}

TEST(Text, CaseMappingsAreTheSimpleOnesOfUnicode) {
  EXPECT_EQ(UpperCase("éloïse o'neil łukasz müller"), "ÉLOÏSE O'NEIL ŁUKASZ MÜLLER");
  EXPECT_EQ(LowerCase("ÉLOÏSE ŁUKASZ ΣΩ ЖУК"), "éloïse łukasz σω жук");
  EXPECT_EQ(UpperCase("ß"), "ß") << "the full mapping would make two letters of it";
  EXPECT_EQ(UpperCase("ÿ"), "Ÿ");
  EXPECT_EQ(LowerCase("İ"), "i");
  EXPECT_EQ(UpperCase("ǆ"), "Ǆ");
  EXPECT_EQ(UpperCase(static_cast<char32_t>(0x1F80)), static_cast<char32_t>(0x1F88));
  EXPECT_EQ(UpperCase(static_cast<char32_t>(0x10428)), static_cast<char32_t>(0x10400));
  EXPECT_EQ(UpperCase("1,;\u00F7"), "1,;\u00F7");
}

TEST(Text, EveryLetterOfTheTablesIsMappedAwayAndNothingElse) {
  std::size_t upper = 0;
  std::size_t lower = 0;
  for (char32_t letter = 0; letter <= 0x10FFFF; ++letter) {
    upper += UpperCase(letter) != letter ? 1U : 0U;
    lower += LowerCase(letter) != letter ? 1U : 0U;
    ASSERT_LE(UpperCase(letter), 0x10FFFFU);
  }
  EXPECT_EQ(upper, 1450U);
  EXPECT_EQ(lower, 1433U);
}

TEST(Text, ComparesIgnoringCaseByCodePoints) {
  EXPECT_TRUE(EqualIgnoringCase("ÉLOÏSE", "éloïse"));
  EXPECT_FALSE(EqualIgnoringCase("Eloise", "Éloïse"));
  EXPECT_FALSE(EqualIgnoringCase("Smith", "Smit"));
  EXPECT_TRUE(EqualIgnoringCase("", ""));
  EXPECT_LT(CompareIgnoringCase("brown", "Smith"), 0);
  EXPECT_GT(CompareIgnoringCase("smith", "Brown"), 0);
  EXPECT_LT(CompareIgnoringCase("Smit", "smith"), 0);
  EXPECT_GT(CompareIgnoringCase("Smith", "smit"), 0);
}

TEST(Text, TrimTakesBlanksOnly) {
  EXPECT_EQ(Trim("  a b "), "a b");
  EXPECT_EQ(Trim("\ta\n"), "\ta\n");
  EXPECT_EQ(Trim("   "), "");
  EXPECT_EQ(Trim("\u00A0x"), "\u00A0x");
}

TEST(Text, ReplaceAllDoesNotLookAgainAtWhatItPutIn) {
  EXPECT_EQ(ReplaceAll("50% of 100%", "%", "%p"), "50%p of 100%p");
  EXPECT_EQ(ReplaceAll("aaaa", "aa", "a"), "aa");
  EXPECT_EQ(ReplaceAll("abc", "x", "y"), "abc");
  EXPECT_EQ(ReplaceAll("", "x", "y"), "");
}

TEST(Text, SplitGivesEmptyPiecesToo) {
  EXPECT_EQ(Split("a\\b", '\\'), (Pieces{"a", "b"}));
  EXPECT_EQ(Split("", ','), (Pieces{""}));
  EXPECT_EQ(Split(",a,", ','), (Pieces{"", "a", ""}));
}

}  // namespace
}  // namespace tavi
