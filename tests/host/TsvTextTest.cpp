#include <gtest/gtest.h>
#include <limits>

#include "access/table/support/Hex.h"
#include "host/dump/DatabaseDump.h"

namespace tavi::host {
namespace {

using access::test::ToHex;

using std::string_literals::operator""s;

TEST(TsvText, NullsTruthAndWholeNumbers) {
  EXPECT_EQ(TsvText(Null{}), "\\N");
  EXPECT_EQ(TsvText(true), "true");
  EXPECT_EQ(TsvText(std::uint8_t{200}), "200");
  EXPECT_EQ(TsvText(std::numeric_limits<std::int32_t>::min()), "-2147483648");
}

TEST(TsvText, FloatsHaveTheFewestDigitsThatReadBack) {
  EXPECT_EQ(TsvText(0.1), "0.1");
  EXPECT_EQ(TsvText(0.1F), "0.1");
  EXPECT_EQ(TsvText(-0.0), "0");
  EXPECT_EQ(TsvText(3.0), "3");
  EXPECT_EQ(TsvText(1e-5), "0.00001");
  EXPECT_EQ(TsvText(9.5e-6), "9.5e-6");
  EXPECT_EQ(TsvText(1e15), "1000000000000000");
  EXPECT_EQ(TsvText(85024448.0F), "85024450");
  EXPECT_EQ(TsvText(0.00123F), "0.00123");
  EXPECT_EQ(TsvText(-12.5), "-12.5");
  EXPECT_EQ(TsvText(1e16), "1e16");
  EXPECT_EQ(TsvText(-1.25e100), "-1.25e100");
  EXPECT_EQ(TsvText(std::numeric_limits<float>::max()), "3.4028235e38");
  EXPECT_EQ(TsvText(std::numeric_limits<double>::quiet_NaN()), "nan");
  EXPECT_EQ(TsvText(-std::numeric_limits<double>::infinity()), "-inf");
}

TEST(TsvText, AmountsHaveNoTrailingZeros) {
  EXPECT_EQ(TsvText(Currency{-11000}), "-1.1");
  EXPECT_EQ(TsvText(Currency{0}), "0");
  EXPECT_EQ(TsvText(Decimal{true, 0, 1110554, 3}), "-1110.554");
}

TEST(TsvText, DatesThatAreNoNumbersAreShownAsSuch) {
  EXPECT_EQ(TsvText(Date{std::numeric_limits<double>::quiet_NaN()}), "nan");
  EXPECT_EQ(TsvText(Date{-std::numeric_limits<double>::infinity()}), "-inf");
}

TEST(TsvText, DatesHaveTheirTimeOfDayEvenBefore1899) {
  EXPECT_EQ(TsvText(Date{44532.0}), "2021-12-02T00:00:00");
  EXPECT_EQ(TsvText(Date{-1.25}), "1899-12-29T06:00:00");
  EXPECT_EQ(TsvText(Date{0.5}), "1899-12-30T12:00:00");
  EXPECT_EQ(TsvText(Date{37014.9999999}), "2001-05-04T00:00:00");
}

TEST(TsvText, TextIsEscaped) {
  EXPECT_EQ(TsvText("a\tb\nc\rd\\e"s), "a\\tb\\nc\\rd\\\\e");
  EXPECT_EQ(TsvText("a\0b"s), "a\\0b");
  EXPECT_EQ(TsvText("\xED\xA0\xBC"s), "\\ud83c");
  EXPECT_EQ(TsvText("\u0141 \U0001F0A1 "s), "\u0141 \U0001F0A1 ");
}

TEST(TsvText, BytesAreHexadecimalAndManyOfThemADigest) {
  EXPECT_EQ(TsvText(Bytes{0, 0xAB}), "00ab");
  EXPECT_EQ(TsvText(Bytes(256)).size(), 512U);
  EXPECT_EQ(TsvText(Bytes(257)).size(), 7U + 64U);
}

std::string Digest(const std::string& text) {
  return ToHex(Sha256(std::vector<std::uint8_t>(text.begin(), text.end())));
}

// The examples that the standard gives, and lengths about the end of a block.
TEST(Sha256, KnownDigests) {
  EXPECT_EQ(Digest(""),
            "e3 b0 c4 42 98 fc 1c 14 9a fb f4 c8 99 6f b9 24 27 ae 41 e4 64 9b 93 4c a4 95 99 1b 78 52 b8 55");
  EXPECT_EQ(Digest("abc"),
            "ba 78 16 bf 8f 01 cf ea 41 41 40 de 5d ae 22 23 b0 03 61 a3 96 17 7a 9c b4 10 ff 61 f2 00 15 ad");
  EXPECT_EQ(Digest("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
            "24 8d 6a 61 d2 06 38 b8 e5 c0 26 93 0c 3e 60 39 a3 3c e4 59 64 ff 21 67 f6 ec ed d4 19 db 06 c1");
}

}  // namespace
}  // namespace tavi::host
