#include "platform/values/Convert.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

#include "platform/values/Error.h"

namespace tavi {
namespace {

/// The number of the error that a call raises, 0 when it raises none.
template <typename Call>
std::uint32_t Raised(Call call) {
  try {
    static_cast<void>(call());
    return 0;
  } catch (const Error& error) {
    EXPECT_EQ(error.Source(), "TaviMembership");
    EXPECT_FALSE(error.Description().empty());
    return static_cast<std::uint32_t>(error.Number());
  }
}

constexpr auto kMismatch = static_cast<std::uint32_t>(ErrorNumber::TypeMismatch);
constexpr auto kOverflow = static_cast<std::uint32_t>(ErrorNumber::Overflow);

TEST(NumberText, WritesAtMostFifteenDigitsAndNoTrailingZeros) {
  EXPECT_EQ(NumberText(0.0), "0");
  EXPECT_EQ(NumberText(-0.0), "0");
  EXPECT_EQ(NumberText(0.5), "0.5");
  EXPECT_EQ(NumberText(12.0), "12");
  EXPECT_EQ(NumberText(-1.25), "-1.25");
  EXPECT_EQ(NumberText(100.0), "100");
  EXPECT_EQ(NumberText(0.1 + 0.2), "0.3");
  EXPECT_EQ(NumberText(2.0 / 3.0), "0.666666666666667");
  EXPECT_EQ(NumberText(57.34), "57.34");
  EXPECT_EQ(NumberText(123456789012345.0), "123456789012345");
}

TEST(NumberText, WritesExponentsOnlyForVeryLargeAndVerySmallNumbers) {
  EXPECT_EQ(NumberText(1e15), "1E+15");
  EXPECT_EQ(NumberText(999999999999999.9), "1E+15") << "the rounding to fifteen digits carries";
  EXPECT_EQ(NumberText(1e-5), "0.00001");
  EXPECT_EQ(NumberText(1.5e-6), "1.5E-06");
  EXPECT_EQ(NumberText(-1.25e300), "-1.25E+300");
  EXPECT_EQ(NumberText(std::numeric_limits<double>::infinity()), "Infinity");
  EXPECT_EQ(NumberText(std::numeric_limits<double>::quiet_NaN()), "NaN");
}

TEST(ExactNumberText, HasTheDigitsThatItTakesToReadTheSameNumberBack) {
  EXPECT_EQ(ExactNumberText(std::numeric_limits<double>::infinity()), "Infinity");
  EXPECT_EQ(ExactNumberText(50.0), "50");
  EXPECT_EQ(ExactNumberText(0.9), "0.9");
  EXPECT_EQ(ExactNumberText(100000.0), "100000");
  EXPECT_EQ(ExactNumberText(0.1 + 0.2), "0.30000000000000004");
  EXPECT_EQ(ExactNumberText(-1.0 / 3.0), "-0.3333333333333333");
  EXPECT_EQ(ExactNumberText(1e-9 / 1.5), "6.666666666666667E-10");
  EXPECT_EQ(ExactNumberText(123456789012345678.0), "1.2345678901234568E+17");
  std::uint64_t bits = 0x3FF0000000000001U;
  for (int count = 0; count < 20000; ++count, bits = bits * 6364136223846793005U + 1442695040888963407U) {
    double number = 0.0;
    std::memcpy(&number, &bits, sizeof(number));
    if (!std::isfinite(number)) continue;
    EXPECT_EQ(ParseNumber(ExactNumberText(number)), number);
  }
}

TEST(ParseNumber, ReadsPlainAndExponentForms) {
  EXPECT_EQ(ParseNumber(" 12.5 "), 12.5);
  EXPECT_EQ(ParseNumber("+1"), 1.0);
  EXPECT_EQ(ParseNumber("-.5"), -0.5);
  EXPECT_EQ(ParseNumber("5."), 5.0);
  EXPECT_EQ(ParseNumber("1E+15"), 1e15);
  EXPECT_EQ(ParseNumber("1e-400"), 0.0);
  EXPECT_EQ(ParseNumber("0." + std::string(400, '0') + "1"), 0.0);
}

TEST(ParseNumber, ReadsNothingElse) {
  for (const char* text :
       {"", " ", "abc", "1,5", "1 2", "--1", "+-1", "inf", "nan", "0x10", "1e", "1e400", "-", "1e5x"}) {
    EXPECT_FALSE(ParseNumber(text).has_value()) << text;
  }
}

TEST(RoundHalfEven, RoundsHalvesToTheEvenDigit) {
  EXPECT_EQ(RoundHalfEven(0.5, 0), 0.0);
  EXPECT_EQ(RoundHalfEven(1.5, 0), 2.0);
  EXPECT_EQ(RoundHalfEven(2.5, 0), 2.0);
  EXPECT_EQ(RoundHalfEven(-0.5, 0), 0.0);
  EXPECT_EQ(RoundHalfEven(-1.5, 0), -2.0);
  EXPECT_EQ(RoundHalfEven(-2.5, 0), -2.0);
  EXPECT_EQ(RoundHalfEven(0.125, 2), 0.12);
  EXPECT_EQ(RoundHalfEven(0.375, 2), 0.38);
  EXPECT_EQ(RoundHalfEven(2.4999999, 0), 2.0);
  EXPECT_EQ(RoundHalfEven(1e300, 2), 1e300);
}

TEST(RoundDecimalHalfEven, TakesANumberAsItsFifteenDigitsSay) {
  EXPECT_EQ(RoundDecimalHalfEven(34.825, 2), 34.82);
  EXPECT_EQ(RoundDecimalHalfEven(33.995, 2), 34.0);
  EXPECT_EQ(RoundDecimalHalfEven(52.355, 2), 52.36);
  EXPECT_EQ(RoundDecimalHalfEven(-52.355, 2), -52.36);
  EXPECT_EQ(RoundDecimalHalfEven(1.005, 2), 1.0);
  EXPECT_EQ(RoundDecimalHalfEven(0.005, 2), 0.0);
  EXPECT_EQ(RoundDecimalHalfEven(0.015, 2), 0.02);
  EXPECT_EQ(RoundDecimalHalfEven(0.0051, 2), 0.01);
  EXPECT_EQ(RoundDecimalHalfEven(0.0009, 2), 0.0);
  EXPECT_EQ(RoundDecimalHalfEven(99.995, 2), 100.0);
  EXPECT_EQ(RoundDecimalHalfEven(34.8250000000001, 2), 34.83) << "the fifteenth digit counts";
  EXPECT_EQ(RoundDecimalHalfEven(34.82500000000001, 2), 34.82) << "the sixteenth does not";
  EXPECT_EQ(RoundDecimalHalfEven(7.0, 2), 7.0);
  EXPECT_EQ(RoundDecimalHalfEven(300.0, 2), 300.0);
  EXPECT_EQ(RoundDecimalHalfEven(0.0, 2), 0.0);
  EXPECT_EQ(RoundDecimalHalfEven(1234567890123.25, 2), 1234567890123.25) << "no third decimal in fifteen digits";
  EXPECT_EQ(RoundDecimalHalfEven(1e300, 2), 1e300);
}

TEST(RoundDecimalHalfEven, GivesEveryHalfWayHandicapItsEvenHundredth) {
  for (int thousandths = 5; thousandths < 100000; thousandths += 10) {
    const int hundredths = thousandths / 10;
    const int even = hundredths % 2 == 0 ? hundredths : hundredths + 1;
    EXPECT_EQ(RoundDecimalHalfEven(thousandths / 1000.0, 2), even / 100.0) << thousandths;
  }
}

TEST(ToInt32, RoundsToTheNearestNumberTiesToEven) {
  EXPECT_EQ(ToInt32(2.5), 2);
  EXPECT_EQ(ToInt32(3.5), 4);
  EXPECT_EQ(ToInt32(-2.5), -2);
  EXPECT_EQ(ToInt32(std::string(" 17.6 ")), 18);
  EXPECT_EQ(ToInt32(true), -1);
  EXPECT_EQ(ToInt32(Date{36526.75}), 36527);
  EXPECT_EQ(ToInt32(Currency{25000}), 2);
  EXPECT_EQ(ToInt32(Currency{-35000}), -4);
  EXPECT_EQ(ToInt32(Currency{24999}), 2);
  EXPECT_EQ(ToInt32(std::uint8_t{200}), 200);
  EXPECT_EQ(ToInt32(1.5F), 2);
}

TEST(ToInt32, RoundsDecimalsExactly) {
  EXPECT_EQ(ToInt32(Decimal{false, 0, 25, 1}), 2);
  EXPECT_EQ(ToInt32(Decimal{true, 0, 35, 1}), -4);
  EXPECT_EQ(ToInt32(Decimal{false, 0, 2500000000000000001U, 18}), 3);
  EXPECT_EQ(Raised([] { return ToInt32(Decimal{false, 1, 0, 0}); }), kOverflow);
  // 2^63 - 0.1, which rounds to more than 64 bits hold.
  EXPECT_EQ(Raised([] { return ToInt32(Decimal{false, 4, 0xFFFFFFFFFFFFFFFFU, 1}); }), kOverflow);
}

TEST(ToInt32, RaisesOverflowAndNeverWraps) {
  EXPECT_EQ(ToInt32(2147483647.4), 2147483647);
  EXPECT_EQ(Raised([] { return ToInt32(2147483647.5); }), kOverflow);
  EXPECT_EQ(Raised([] { return ToInt32(1e300); }), kOverflow);
  EXPECT_EQ(Raised([] { return ToInt32(std::numeric_limits<double>::quiet_NaN()); }), kOverflow);
  EXPECT_EQ(ToInt16(32767.4), 32767);
  EXPECT_EQ(Raised([] { return ToInt16(std::int32_t{32768}); }), kOverflow);
  EXPECT_EQ(Raised([] { return ToInt16(-32768.6); }), kOverflow);
}

TEST(Conversions, RaiseTypeMismatchForNullAndForWhatIsNoNumber) {
  EXPECT_EQ(Raised([] { return ToInt32(Null()); }), kMismatch);
  EXPECT_EQ(Raised([] { return ToInt16(std::string("x")); }), kMismatch);
  EXPECT_EQ(Raised([] { return ToDouble(Null()); }), kMismatch);
  EXPECT_EQ(Raised([] { return ToDouble(Bytes{1, 2}); }), kMismatch);
  EXPECT_EQ(Raised([] { return ToBoolean(Null()); }), kMismatch);
  EXPECT_EQ(Raised([] { return ToBoolean(std::string("maybe")); }), kMismatch);
  EXPECT_EQ(Raised([] { return ToDate(Null()); }), kMismatch);
  EXPECT_EQ(Raised([] { return ToText(Null()); }), kMismatch);
  EXPECT_EQ(Raised([] { return ToDouble(std::string(1000, 'x')); }), kMismatch);
}

TEST(ToBoolean, IsTrueForEverythingButZero) {
  EXPECT_TRUE(ToBoolean(true));
  EXPECT_TRUE(ToBoolean(std::int16_t{-1}));
  EXPECT_TRUE(ToBoolean(0.001));
  EXPECT_TRUE(ToBoolean(std::string("tRUE")));
  EXPECT_TRUE(ToBoolean(std::string("1")));
  EXPECT_FALSE(ToBoolean(std::string("False")));
  EXPECT_FALSE(ToBoolean(Currency{0}));
  EXPECT_FALSE(ToBoolean(Date{0.0}));
}

TEST(ToDouble, ReadsNumbersOfEveryType) {
  EXPECT_EQ(ToDouble(std::string("12.5")), 12.5);
  EXPECT_EQ(ToDouble(Currency{-11000}), -1.1);
  EXPECT_EQ(ToDouble(Decimal{true, 0, 12345, 2}), -123.45);
  EXPECT_EQ(ToDouble(true), -1.0);
  EXPECT_EQ(ToDouble(Date{2.5}), 2.5);
}

TEST(ToDate, ReadsTheThreeTextForms) {
  const Date expected = Date::FromCivil(2001, 5, 3);
  EXPECT_EQ(ToDate(std::string("2001-05-03")), expected);
  EXPECT_EQ(ToDate(std::string("3 May 2001")), expected);
  EXPECT_EQ(ToDate(std::string(" 03 may 2001 ")), expected);
  EXPECT_EQ(ToDate(std::string("3/5/2001")), expected);
  EXPECT_EQ(ToDate(std::string("03/05/2001 12:00:00")), Date{expected.days + 0.5});
  EXPECT_EQ(ToDate(37014.0), expected);
}

TEST(ToDate, RefusesOtherTextsAndNumbersWithoutADay) {
  for (const char* text :
       {"", "x", "30/2/2001", "5/13/2001", "3 Maj 2001", "3 May", "3/5/01", "1/2/3/4", "-3/5/2001"}) {
    EXPECT_EQ(Raised([text] { return ToDate(std::string(text)); }), kMismatch) << text;
  }
  EXPECT_EQ(Raised([] { return ToDate(2958466.0); }), kOverflow);
  EXPECT_EQ(Raised([] { return ToDate(-657435.0); }), kOverflow);
}

TEST(ToText, WritesEveryType) {
  EXPECT_EQ(ToText(true), "True");
  EXPECT_EQ(ToText(false), "False");
  EXPECT_EQ(ToText(std::uint8_t{7}), "7");
  EXPECT_EQ(ToText(0.1F), "0.1");
  EXPECT_EQ(ToText(16777216.0F), "16777220") << "a single holds seven digits";
  EXPECT_EQ(ToText(Date{37014.5}), "2001-05-03T12:00:00");
  EXPECT_EQ(ToText(Bytes{0x0F, 0xA0}), "0FA0");
  EXPECT_EQ(ToText(Currency{123400}), "12.34");
}

TEST(CurrencyText, IsExactForEveryAmount) {
  EXPECT_EQ(CurrencyText(Currency{-11000}), "-1.1");
  EXPECT_EQ(CurrencyText(Currency{140000}), "14");
  EXPECT_EQ(CurrencyText(Currency{0}), "0");
  EXPECT_EQ(CurrencyText(Currency{1}), "0.0001");
  EXPECT_EQ(CurrencyText(Currency{std::numeric_limits<std::int64_t>::min()}), "-922337203685477.5808");
}

TEST(DecimalText, IsExactForTwentyEightDigits) {
  EXPECT_EQ(DecimalText(Decimal{}), "0");
  EXPECT_EQ(DecimalText(Decimal{true, 0, 0, 5}), "0");
  EXPECT_EQ(DecimalText(Decimal{true, 0, 12345, 2}), "-123.45");
  EXPECT_EQ(DecimalText(Decimal{false, 0, 100, 0}), "100");
  EXPECT_EQ(DecimalText(Decimal{false, 0, 5, 3}), "0.005");
  EXPECT_EQ(DecimalText(Decimal{false, 1, 0, 0}), "18446744073709551616");
  EXPECT_EQ(DecimalText(Decimal{false, ~0ULL, ~0ULL, 28}), "34028236692.0938463463374607431768211455");
}

TEST(GuidText, IsTheUsualForm) {
  const Guid guid{{0x0F, 0xC4, 0x9B, 0x7B, 0xE6, 0x56, 0x42, 0x28, 0xAE, 0xDC, 0xDF, 0x8B, 0xDF, 0x4C, 0x4A, 0x64}};
  EXPECT_EQ(GuidText(guid), "{0FC49B7B-E656-4228-AEDC-DF8BDF4C4A64}");
}

}  // namespace
}  // namespace tavi
