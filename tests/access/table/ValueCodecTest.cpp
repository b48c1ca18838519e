#include <gtest/gtest.h>
#include <bit>
#include <limits>
#include <string>

#include "access/table/ValueCodec.h"
#include "access/table/support/Hex.h"
#include "access/table/support/TestTable.h"
#include "platform/values/Error.h"

namespace tavi::access::test {
namespace {

// Both ways: the value has these bytes, the bytes are this value.
void ExpectStored(const ColumnPlan& plan, const Value& value, std::string_view hex) {
  EXPECT_EQ(ToHex(EncodeValue(value, PlanColumn(plan))), ToHex(FromHex(hex)));
  EXPECT_EQ(DecodeValue(FromHex(hex), PlanColumn(plan), {}), value);
}

TEST(ValueCodec, IntegersAreLittleEndian) {
  ExpectStored({"b", ColumnType::Byte}, std::uint8_t{200}, "C8");
  ExpectStored({"i", ColumnType::Integer}, std::int16_t{222}, "DE 00");
  ExpectStored({"i", ColumnType::Integer}, std::int16_t{-2}, "FE FF");
  ExpectStored({"l", ColumnType::Long}, std::int32_t{333333333}, "55 43 DE 13");
  ExpectStored({"l", ColumnType::Long}, std::numeric_limits<std::int32_t>::min(), "00 00 00 80");
}

TEST(ValueCodec, CurrencyCountsTenThousandths) {
  ExpectStored({"c", ColumnType::Currency}, Currency{140000}, "E0 22 02 00 00 00 00 00");
  ExpectStored({"c", ColumnType::Currency}, Currency{-1}, "FF FF FF FF FF FF FF FF");
}

TEST(ValueCodec, FloatsAreIeee) {
  ExpectStored({"d", ColumnType::Double}, 444.555, "7B 14 AE 47 E1 C8 7B 40");
  ExpectStored({"s", ColumnType::Single}, 1.5F, "00 00 C0 3F");
}

TEST(ValueCodec, DatesAreDaysBeforeAndAfterTheYear1899) {
  ExpectStored({"t", ColumnType::Date}, Date{44532.0}, "00 00 00 00 80 BE E5 40");
  ExpectStored({"t", ColumnType::Date}, Date{-728.0}, "00 00 00 00 00 C0 86 C0");
}

TEST(ValueCodec, GuidsHaveTheirFirstGroupsSwapped) {
  const Guid guid{{0x0F, 0xC4, 0x9B, 0x7B, 0xE6, 0x56, 0x42, 0x28, 0xAE, 0xDC, 0xDF, 0x8B, 0xDF, 0x4C, 0x4A, 0x64}};
  ExpectStored({"g", ColumnType::Guid}, guid, "7B 9B C4 0F 56 E6 28 42 AE DC DF 8B DF 4C 4A 64");
}

TEST(ValueCodec, NumericWordsAreInBigEndianOrderAndBytesInThemNot) {
  const ColumnPlan plan = {"n", ColumnType::Numeric, 0, false, true, 12, 3};
  ExpectStored(plan, Decimal{true, 0, 1110554, 3}, "80 00 00 00 00 00 00 00 00 00 00 00 00 1A F2 10 00");
  ExpectStored({"n", ColumnType::Numeric}, Decimal{false, 0, 1, 0},
               "00 00 00 00 00 00 00 00 00 00 00 00 00 01 00 00 00");
  ExpectStored({"n", ColumnType::Numeric}, Decimal{false, 0x0102030405060708, 0x090A0B0C0D0E0F10, 0},
               "00 04 03 02 01 08 07 06 05 0C 0B 0A 09 10 0F 0E 0D");
}

TEST(ValueCodec, ZeroIsNeverStoredNegative) {
  const ColumnDefinition column = PlanColumn({"n", ColumnType::Numeric});
  EXPECT_EQ(EncodeValue(Decimal{true, 0, 0, 0}, column), EncodeValue(Decimal{false, 0, 0, 0}, column));
}

TEST(ValueCodec, FixedTextIsPlainAndPaddedWithBlanks) {
  const ColumnPlan plan = {"f", ColumnType::Text, 10, true, true};
  EXPECT_EQ(ToHex(EncodeValue(std::string("abc"), PlanColumn(plan))), "61 00 62 00 63 00 20 00 20 00");
  EXPECT_EQ(DecodeValue(FromHex("61 00 62 00 63 00 20 00 20 00"), PlanColumn(plan), {}), Value("abc  "));
}

TEST(ValueCodec, BinaryIsTheBytesThemselves) {
  ExpectStored({"b", ColumnType::Binary, 20, false, false}, Bytes{0, 1, 0xFF}, "00 01 FF");
}

TEST(ValueCodec, AnUnknownTypeIsReadAsBytes) {
  ColumnDefinition column = PlanColumn({"x", ColumnType::Binary, 3, false, false});
  column.type = static_cast<ColumnType>(0x33);
  EXPECT_EQ(DecodeValue(FromHex("01 02 03"), column, {}), Value(Bytes{1, 2, 3}));
}

TEST(ValueCodec, TooFewBytesAreDamageThatNamesTheField) {
  try {
    static_cast<void>(DecodeValue(FromHex("01 02 03"), PlanColumn({"Age", ColumnType::Long}), {}));
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_TRUE(error.Is(ErrorNumber::ProviderFailure));
    EXPECT_NE(error.Description().find("'Age' has 3 bytes instead of 4"), std::string::npos) << error.Description();
  }
}

TEST(ValueCodec, AValueOfAnotherTypeIsRefused) {
  try {
    static_cast<void>(EncodeValue(std::string("12"), PlanColumn({"Age", ColumnType::Long})));
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_TRUE(error.Is(ErrorNumber::ProviderTypeConflict));
    EXPECT_NE(error.Description().find("Data type mismatch in criteria expression."), std::string::npos);
    EXPECT_NE(error.Description().find("'Age'"), std::string::npos);
  }
}

}  // namespace
}  // namespace tavi::access::test
