#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "access/table/RowCodec.h"
#include "access/table/ValueCodec.h"
#include "access/table/support/TestTable.h"
#include "platform/values/Error.h"

namespace tavi::access::test {
namespace {

using std::string_literals::operator""s;

Value Convert(const Value& value, const ColumnPlan& plan) {
  return ConvertForColumn(value, PlanTable({plan}).columns.front());
}

void ExpectRefused(const Value& value, const ColumnPlan& plan, ErrorNumber number, std::string_view text) {
  try {
    static_cast<void>(Convert(value, plan));
    ADD_FAILURE() << "no error";
  } catch (const Error& error) {
    EXPECT_TRUE(error.Is(number)) << error.Description();
    EXPECT_TRUE(error.Description().starts_with(text)) << error.Description();
    EXPECT_NE(error.Description().find("'" + plan.name + "'"), std::string::npos) << error.Description();
  }
}

TEST(ConvertForColumn, NullStaysNullButInABoolean) {
  EXPECT_EQ(Convert(Null{}, {"x", ColumnType::Long}), Value{});
  EXPECT_EQ(Convert(Null{}, TextColumn("x", 5)), Value{});
  EXPECT_EQ(Convert(Null{}, {"x", ColumnType::Boolean}), Value(false));
}

TEST(ConvertForColumn, NumbersAreRoundedToTheNearestTiesToEven) {
  EXPECT_EQ(Convert(2.5, {"x", ColumnType::Long}), Value(std::int32_t{2}));
  EXPECT_EQ(Convert(3.5, {"x", ColumnType::Integer}), Value(std::int16_t{4}));
  EXPECT_EQ(Convert(-2.5, {"x", ColumnType::Long}), Value(std::int32_t{-2}));
  EXPECT_EQ(Convert(0.00005, {"x", ColumnType::Currency}), Value(Currency{0}));
  EXPECT_EQ(Convert(0.00015, {"x", ColumnType::Currency}), Value(Currency{2}));
}

TEST(ConvertForColumn, WholeNumbersChangeTheirWidth) {
  EXPECT_EQ(Convert(std::int32_t{255}, {"x", ColumnType::Byte}), Value(std::uint8_t{255}));
  EXPECT_EQ(Convert(std::int16_t{-7}, {"x", ColumnType::Double}), Value(-7.0));
  EXPECT_EQ(Convert(std::uint8_t{7}, {"x", ColumnType::Currency}), Value(Currency{70000}));
  EXPECT_EQ(Convert(std::int32_t{1}, {"x", ColumnType::Boolean}), Value(true));
}

TEST(ConvertForColumn, ABooleanIsMinusOneAndAByteAllBits) {
  EXPECT_EQ(Convert(true, {"x", ColumnType::Integer}), Value(std::int16_t{-1}));
  EXPECT_EQ(Convert(true, {"x", ColumnType::Byte}), Value(std::uint8_t{255}));
  EXPECT_EQ(Convert(true, TextColumn("x", 5)), Value("-1"s));
}

TEST(ConvertForColumn, NumbersAndTextsBecomeDatesAndBack) {
  EXPECT_EQ(Convert(37014.25, {"x", ColumnType::Date}), Value(Date{37014.25}));
  EXPECT_EQ(Convert("2001-05-03"s, {"x", ColumnType::Date}), Value(Date{37014.0}));
  EXPECT_EQ(Convert(Date{37014.0}, {"x", ColumnType::Long}), Value(std::int32_t{37014}));
  EXPECT_EQ(Convert(Date{37014.0}, TextColumn("x", 20)), Value("2001-05-03"s));
}

TEST(ConvertForColumn, AnythingBecomesText) {
  EXPECT_EQ(Convert(1.5, TextColumn("x", 5)), Value("1.5"s));
  EXPECT_EQ(Convert(Currency{-11000}, {"x", ColumnType::Memo}), Value("-1.1"s));
  EXPECT_EQ(Convert(std::int32_t{42}, {"x", ColumnType::Memo}), Value("42"s));
}

TEST(ConvertForColumn, TextsThatWriteNumbersBecomeNumbers) {
  EXPECT_EQ(Convert(" 12 "s, {"x", ColumnType::Long}), Value(std::int32_t{12}));
  EXPECT_EQ(Convert("1.25"s, {"x", ColumnType::Currency}), Value(Currency{12500}));
  EXPECT_EQ(Convert("922337203685477.5807"s, {"x", ColumnType::Currency}),
            Value(Currency{std::numeric_limits<std::int64_t>::max()}));
}

TEST(ConvertForColumn, TextsThatAreNoNumberAreAMismatch) {
  constexpr const char* kText = "Data type mismatch in criteria expression.";
  ExpectRefused("twelve"s, {"Age", ColumnType::Long}, ErrorNumber::ProviderTypeConflict, kText);
  ExpectRefused("twelve"s, {"Age", ColumnType::Currency}, ErrorNumber::ProviderTypeConflict, kText);
  ExpectRefused("someday"s, {"Born", ColumnType::Date}, ErrorNumber::ProviderTypeConflict, kText);
  ExpectRefused(Bytes{1}, {"Age", ColumnType::Double}, ErrorNumber::ProviderTypeConflict, kText);
  ExpectRefused("01"s, {"Blob", ColumnType::Ole}, ErrorNumber::ProviderTypeConflict, kText);
  ExpectRefused("{12}"s, {"Key", ColumnType::Guid}, ErrorNumber::ProviderTypeConflict, kText);
}

TEST(ConvertForColumn, NumbersOutOfRangeOverflow) {
  constexpr const char* kText = "Numeric field overflow.";
  ExpectRefused(std::int32_t{256}, {"Age", ColumnType::Byte}, ErrorNumber::ProviderTypeConflict, kText);
  ExpectRefused(std::int32_t{-1}, {"Age", ColumnType::Byte}, ErrorNumber::ProviderTypeConflict, kText);
  ExpectRefused(32767.5, {"Age", ColumnType::Integer}, ErrorNumber::ProviderTypeConflict, kText);
  ExpectRefused(3e9, {"Age", ColumnType::Long}, ErrorNumber::ProviderTypeConflict, kText);
  ExpectRefused(1e39, {"Age", ColumnType::Single}, ErrorNumber::ProviderTypeConflict, kText);
  ExpectRefused(1e15, {"Fee", ColumnType::Currency}, ErrorNumber::ProviderTypeConflict, kText);
  ExpectRefused(1e7, {"Born", ColumnType::Date}, ErrorNumber::ProviderTypeConflict, kText);
}

TEST(ConvertForColumn, LongerTextsAreRefusedNotCut) {
  constexpr const char* kText =
      "The field is too small to accept the amount of data you attempted to add. Try inserting or pasting less data.";
  EXPECT_EQ(Convert("12345"s, TextColumn("Name", 5)), Value("12345"s));
  ExpectRefused("123456"s, TextColumn("Name", 5), ErrorNumber::ProviderFailure, kText);
  ExpectRefused(std::int32_t{123456}, TextColumn("Name", 5), ErrorNumber::ProviderFailure, kText);
  ExpectRefused(Bytes(11), {"Key", ColumnType::Binary, 10, false, false}, ErrorNumber::ProviderFailure, kText);
}

TEST(ConvertForColumn, TheLengthOfATextCountsUtf16Units) {
  EXPECT_EQ(Convert("\u00C9\u00C9\u00C9\u00C9\u00C9"s, TextColumn("Name", 5)),
            Value("\u00C9\u00C9\u00C9\u00C9\u00C9"s));
  ExpectRefused("\U0001F0A1\U0001F0A1\U0001F0A1"s, TextColumn("Name", 5), ErrorNumber::ProviderFailure,
                "The field is too small");
}

TEST(ConvertForColumn, ATextThatCouldNotBeReadBackIsRefused) {
  ExpectRefused("\uFEFF\u0100"s, TextColumn("Name", 5), ErrorNumber::ProviderFailure,
                "The field 'Name' cannot hold the text");
  ExpectRefused("\uFEFF\u0100"s, {"Notes", ColumnType::Memo}, ErrorNumber::ProviderFailure, "The field 'Notes' cannot");
}

TEST(ConvertForStatement, TheNegativeZeroBecomesZero) {
  const auto stored = [](const Value& value, ColumnType type) {
    return ConvertForStatement(value, PlanTable({{"x", type}}).columns.front());
  };
  EXPECT_FALSE(std::signbit(std::get<double>(stored(-0.0, ColumnType::Double))));
  EXPECT_FALSE(std::signbit(std::get<double>(stored("-0"s, ColumnType::Double))));
  EXPECT_TRUE(std::signbit(std::get<double>(stored(-1.0, ColumnType::Double))));
  EXPECT_FALSE(std::signbit(std::get<float>(stored(-0.0F, ColumnType::Single))));
  EXPECT_FALSE(std::signbit(std::get<Date>(stored(Date{-0.0}, ColumnType::Date)).days));
  // A copy of a file's rows is exact.
  EXPECT_TRUE(std::signbit(std::get<double>(Convert(-0.0, {"x", ColumnType::Double}))));
}

TEST(ConvertForColumn, MemosHaveNoLimitOfTheirOwn) {
  const std::string text(100000, 'x');
  EXPECT_EQ(Convert(text, {"Notes", ColumnType::Memo}), Value(text));
}

TEST(ConvertForColumn, NumericsGetTheScaleOfTheColumn) {
  const ColumnPlan plan = {"n", ColumnType::Numeric, 0, false, true, 6, 2};
  EXPECT_EQ(Convert(1.005, plan), Value(Decimal{false, 0, 100, 2}));
  EXPECT_EQ(Convert("-1.015"s, plan), Value(Decimal{true, 0, 102, 2}));
  EXPECT_EQ(Convert(std::int32_t{12}, plan), Value(Decimal{false, 0, 1200, 2}));
  EXPECT_EQ(Convert(Decimal{false, 0, 12345, 3}, plan), Value(Decimal{false, 0, 1234, 2}));
  EXPECT_EQ(Convert(9999.99, plan), Value(Decimal{false, 0, 999999, 2}));
  ExpectRefused(9999.995, plan, ErrorNumber::ProviderTypeConflict, "Numeric field overflow.");
}

TEST(ConvertForColumn, GuidsAreReadWithAndWithoutBraces) {
  const Guid guid{{0x0F, 0xC4, 0x9B, 0x7B, 0xE6, 0x56, 0x42, 0x28, 0xAE, 0xDC, 0xDF, 0x8B, 0xDF, 0x4C, 0x4A, 0x64}};
  EXPECT_EQ(Convert("{0FC49B7B-E656-4228-AEDC-DF8BDF4C4A64}"s, {"g", ColumnType::Guid}), Value(guid));
  EXPECT_EQ(Convert("0fc49b7be6564228aedcdf8bdf4c4a64"s, {"g", ColumnType::Guid}), Value(guid));
}

TEST(ExactDecimal, LargeNumbersKeepEveryDigit) {
  const auto number = ParseDecimal("79228162514264337593543950335", 29, 0);
  ASSERT_TRUE(number.has_value());
  EXPECT_EQ(*number, (Decimal{false, 0xFFFFFFFF, 0xFFFFFFFFFFFFFFFF, 0}));
}

TEST(ExactDecimal, TooManyDigitsAreNothing) {
  EXPECT_EQ(ParseDecimal("1234", 3, 0), std::nullopt);
  EXPECT_EQ(ParseDecimal("999.5", 3, 0), std::nullopt);
  EXPECT_EQ(ParseDecimal("1E300", 28, 0), std::nullopt);
  EXPECT_EQ(ParseDecimal("1E9999999999999", 28, 0), std::nullopt);
}

TEST(ExactDecimal, ExponentsMoveThePoint) {
  EXPECT_EQ(ParseDecimal("1.25E+02", 10, 1), (Decimal{false, 0, 1250, 1}));
  EXPECT_EQ(ParseDecimal("125e-2", 10, 2), (Decimal{false, 0, 125, 2}));
  EXPECT_EQ(ParseDecimal("1E-300", 10, 4), (Decimal{false, 0, 0, 4}));
}

TEST(ExactDecimal, OtherTextsAreNothing) {
  for (const char* text : {"", "-", ".", "1.2.3", "1x", "E5", "1E", "1E5x", "--1"}) {
    EXPECT_EQ(ParseDecimal(text, 10, 2), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace tavi::access::test
