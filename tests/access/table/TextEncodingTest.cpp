#include <gtest/gtest.h>

#include "access/table/TextEncoding.h"
#include "access/table/support/Hex.h"
#include "platform/values/CodePages.h"

namespace tavi::access::test {
namespace {

TEST(TextEncoding, PlainTextIsUtf16WithoutTerminator) {
  EXPECT_EQ(ToHex(EncodePlainText("hi")), "68 00 69 00");
  EXPECT_EQ(DecodeText(FromHex("68 00 69 00")), "hi");
  EXPECT_EQ(ToHex(EncodePlainText("\u0141\u00F3d\u017A")), "41 01 f3 00 64 00 7a 01");
  EXPECT_EQ(DecodeText(FromHex("41 01 f3 00 64 00 7a 01")), "\u0141\u00F3d\u017A");
}

TEST(TextEncoding, MarkedTextIsCompressed) {
  EXPECT_EQ(DecodeText(FromHex("FF FE 61 62 63 64 65 66 67")), "abcdefg");
  EXPECT_EQ(ToHex(EncodeText("abcdefg", true)), "ff fe 61 62 63 64 65 66 67");
}

TEST(TextEncoding, LatinLettersTakeOneByteWhenCompressed) {
  EXPECT_EQ(ToHex(EncodeText("\u00C9lo\u00EFse", true)), "ff fe c9 6c 6f ef 73 65");
  EXPECT_EQ(DecodeText(FromHex("FF FE C9 6C 6F EF 73 65")), "\u00C9lo\u00EFse");
}

TEST(TextEncoding, ModeSwitchesLeadToPlainCharactersAndBack) {
  EXPECT_EQ(DecodeText(FromHex("FF FE 28 5B 5F 5F 00 3A 53 06 52 0D 54 00 5D 20 3D 20 00 3A 53 00 29")),
            "([__\u533A\u5206\u540D] = \u533A)");
}

TEST(TextEncoding, ATextThatBeginsLikeTheMarkIsReadBackAsItWas) {
  EXPECT_EQ(ToHex(EncodeText("\uFEFFab", false)), "ff fe 00 ff fe 00 61 62");
  for (const char* text : {"\uFEFF", "\uFEFFabc", "\uFEFF\uFEFF", "\uFEFF\u00C9\u533A\u5206 = 7", "\uFEFF\U0001F0A1"}) {
    EXPECT_TRUE(HasStoredForm(text)) << text;
    EXPECT_EQ(DecodeText(EncodeText(text, true)), text);
    EXPECT_EQ(DecodeText(EncodeText(text, false)), text);
  }
  EXPECT_FALSE(HasStoredForm("\uFEFF\u0100"));
  EXPECT_FALSE(HasStoredForm(std::string("\uFEFFa\0", 5)));
  EXPECT_TRUE(HasStoredForm("\u0100\uFEFF"));
}

TEST(TextEncoding, CompressedTextMayEndInEitherMode) {
  EXPECT_EQ(DecodeText(FromHex("FF FE 41 00 3A 53")), "A\u533A");
  EXPECT_EQ(DecodeText(FromHex("FF FE 41 00")), "A");
  EXPECT_EQ(DecodeText(FromHex("FF FE 00 3A 53")), "\u533A");
}

TEST(TextEncoding, TheMarkAloneIsTheEmptyText) {
  EXPECT_EQ(DecodeText(FromHex("FF FE")), "");
  EXPECT_EQ(DecodeText({}), "");
  EXPECT_EQ(EncodeText("", true), Bytes{});
}

TEST(TextEncoding, ShortTextsStayPlain) {
  EXPECT_EQ(ToHex(EncodeText("ab", true)), "61 00 62 00");
  EXPECT_EQ(ToHex(EncodeText("abc", true)), "ff fe 61 62 63");
}

TEST(TextEncoding, TextStaysPlainInAColumnWithoutCompression) {
  EXPECT_EQ(ToHex(EncodeText("abc", false)), "61 00 62 00 63 00");
}

TEST(TextEncoding, OneCharacterBeyondLatinMakesTheWholeTextPlain) {
  EXPECT_EQ(ToHex(EncodeText("ab\u0141", true)), "61 00 62 00 41 01");
  EXPECT_EQ(ToHex(EncodeText(std::string("ab\0", 3), true)), "61 00 62 00 00 00");
  EXPECT_EQ(ToHex(EncodeText("ab\u00FF", true)), "ff fe 61 62 ff");
}

TEST(TextEncoding, CharactersBeyondTheBasicPlaneTakeTwoUnits) {
  EXPECT_EQ(ToHex(EncodePlainText("\U0001F0A1")), "3c d8 a1 dc");
  EXPECT_EQ(DecodeText(FromHex("3C D8 A1 DC")), "\U0001F0A1");
  EXPECT_EQ(Utf16Length("\U0001F0A1a"), 3U);
}

TEST(TextEncoding, ASurrogateWithoutItsPartnerIsKept) {
  const auto stored = FromHex("3C D8 41 00");
  EXPECT_EQ(EncodePlainText(DecodeText(stored)), stored);
}

TEST(TextEncoding, HalfACharacterAtTheEndIsDropped) {
  EXPECT_EQ(DecodeText(FromHex("41 00 42")), "A");
  EXPECT_EQ(DecodeText(FromHex("41")), "");
  EXPECT_EQ(DecodeText(FromHex("FF FE 41 00 3A 53 06")), "A\u533A");
}

TEST(TextEncoding, EveryLatinCharacterComesBack) {
  for (char32_t character = 1; character < 0x100; ++character) {
    const std::string text =
        DecodePlainText(std::vector<std::uint8_t>{static_cast<std::uint8_t>(character), 0}) + "xyz";
    const Bytes stored = EncodeText(text, true);
    EXPECT_EQ(stored.size(), 6U) << static_cast<unsigned>(character);
    EXPECT_EQ(DecodeText(stored), text) << static_cast<unsigned>(character);
  }
}

TEST(AnsiText, BytesAreReadInTheCodePage) {
  const auto bytes = FromHex("41 E9 80 A3");
  EXPECT_EQ(DecodeCodePage(bytes, 1252), "A\u00E9\u20AC\u00A3");
  EXPECT_EQ(DecodeCodePage(bytes, 1250), "A\u00E9\u20AC\u0141");
  EXPECT_EQ(DecodeCodePage(bytes, 1251), "A\u0439\u0402\u0408");
  EXPECT_EQ(DecodeCodePage(bytes, 0), DecodeCodePage(bytes, 1252));
}

}  // namespace
}  // namespace tavi::access::test
