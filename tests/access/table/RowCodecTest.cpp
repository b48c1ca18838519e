#include <gtest/gtest.h>
#include <random>
#include <string>

#include "access/table/RowCodec.h"
#include "access/table/RowView.h"
#include "access/table/support/Hex.h"
#include "access/table/support/RandomValues.h"
#include "access/table/support/TestTable.h"
#include "platform/values/Error.h"

namespace tavi::access::test {
namespace {

using std::string_literals::operator""s;

constexpr RowPointer kPlace = {27, 3};

std::vector<Value> Decoded(const std::vector<std::uint8_t>& bytes, const TableDefinition& definition) {
  const RowView row(bytes, {}, kPlace);
  std::vector<Value> values;
  for (const ColumnDefinition& column : definition.columns) values.push_back(row.Get(column));
  return values;
}

std::vector<Bytes> NoLongValues(const TableDefinition& definition) {
  return std::vector<Bytes>(definition.columns.size());
}

// Text, Text, Byte, Integer, Long, Double, Date, Currency, Boolean.
TableDefinition NineColumns() {
  return PlanTable({TextColumn("A", 50),
                    TextColumn("B", 100, false),
                    {"C", ColumnType::Byte},
                    {"D", ColumnType::Integer},
                    {"E", ColumnType::Long},
                    {"F", ColumnType::Double},
                    {"G", ColumnType::Date},
                    {"H", ColumnType::Currency},
                    {"I", ColumnType::Boolean}});
}

// A row as Access has written it; two bytes of padding lie behind the data.
constexpr const char* kRealRow =
    "09 00 | 02 | de 00 | 55 43 de 13 | 7b 14 ae 47 e1 c8 7b 40 | 00 00 00 00 40 a7 da 40 | b8 88 00 00 00 00 00 00 |"
    "ff fe 61 62 63 64 65 66 67 | 68 00 69 00 6a 00 6b 00 6c 00 6d 00 6e 00 6f 00 70 00 | 00 00 |"
    "3c 00 | 2a 00 21 00 | 02 00 | ff 01";

const RowValues kRealValues = {
    "abcdefg"s,      "hijklmnop"s, std::uint8_t{2}, std::int16_t{222}, std::int32_t{333333333}, 444.555, Date{27293.0},
    Currency{35000}, true};

TEST(RowCodec, ARealRowWithPaddingIsRead) {
  EXPECT_EQ(Decoded(FromHex(kRealRow), NineColumns()), kRealValues);
}

TEST(RowCodec, ARowIsWrittenAsAccessDoesButWithoutPadding) {
  const TableDefinition definition = NineColumns();
  EXPECT_EQ(
      ToHex(EncodeRow(definition, kRealValues, NoLongValues(definition))),
      ToHex(FromHex("09 00 | 02 | de 00 | 55 43 de 13 | 7b 14 ae 47 e1 c8 7b 40 | 00 00 00 00 40 a7 da 40 |"
                    "b8 88 00 00 00 00 00 00 | ff fe 61 62 63 64 65 66 67 |"
                    "68 00 69 00 6a 00 6b 00 6c 00 6d 00 6e 00 6f 00 70 00 | 3c 00 | 2a 00 21 00 | 02 00 | ff 01")));
}

TEST(RowCodec, TheExampleOfTheLayoutIsWritten) {
  const TableDefinition definition =
      PlanTable({{"n", ColumnType::Byte}, TextColumn("t", 50), {"b", ColumnType::Boolean}});
  const RowValues values = {std::uint8_t{2}, "abc"s, true};
  const char* expected = "03 00 | 02 | FF FE 61 62 63 | 08 00 | 03 00 | 01 00 | 07";
  EXPECT_EQ(ToHex(EncodeRow(definition, values, NoLongValues(definition))), ToHex(FromHex(expected)));
  EXPECT_EQ(Decoded(FromHex(expected), definition), values);
}

// A row of the time when the table had three columns; it has ten now.
TEST(RowCodec, ARowOlderThanColumnsHasNullsForThem) {
  std::vector<ColumnPlan> columns;
  for (int i = 0; i < 9; ++i) columns.push_back(TextColumn("t" + std::to_string(i), 50));
  columns.push_back({"b", ColumnType::Boolean});
  const auto bytes = FromHex(
      "03 00 | ff fe 72 6f 77 31 63 6f 6c 31 | ff fe 72 6f 77 31 63 6f 6c 32 | 16 00 | 16 00 0c 00 02 00 | 03 00 | 03");
  const std::vector<Value> values = Decoded(bytes, PlanTable(columns));
  EXPECT_EQ(values[0], Value("row1col1"s));
  EXPECT_EQ(values[1], Value("row1col2"s));
  for (std::size_t i = 2; i < 9; ++i) EXPECT_EQ(values[i], Value{}) << i;
  EXPECT_EQ(values[9], Value(false));
}

// Columns 1 and 4 have been dropped; the row still holds their values.
TEST(RowCodec, ValuesOfDroppedColumnsArePassedOver) {
  TableDefinition definition = PlanTable({{"id", ColumnType::Long},
                                          {"gone", ColumnType::Long},
                                          {"n", ColumnType::Long},
                                          TextColumn("t", 50),
                                          TextColumn("gone too", 50),
                                          TextColumn("u", 50)});
  definition.columns.erase(definition.columns.begin() + 4);
  definition.columns.erase(definition.columns.begin() + 1);
  const auto bytes = FromHex(
      "06 00 | 00 00 00 00 | 01 00 00 00 | 02 00 00 00 | ff fe 66 6f 6f | ff fe 67 6f 6e 65 | ff fe 66 6f 6f 32 |"
      "1f 00 19 00 13 00 0e 00 03 00 | 3f");
  EXPECT_EQ(Decoded(bytes, definition), (RowValues{std::int32_t{0}, std::int32_t{2}, "foo"s, "foo2"s}));
}

TEST(RowCodec, ANewRowKeepsThePlacesOfDroppedColumnsEmpty) {
  TableDefinition definition = PlanTable(
      {{"gone", ColumnType::Long}, {"n", ColumnType::Integer}, TextColumn("gone too", 50), TextColumn("t", 50)});
  definition.columns.erase(definition.columns.begin() + 2);
  definition.columns.erase(definition.columns.begin());
  const RowValues values = {std::int16_t{7}, "ab"s};
  EXPECT_EQ(ToHex(EncodeRow(definition, values, NoLongValues(definition))),
            ToHex(FromHex("04 00 | 00 00 00 00 | 07 00 | 61 00 62 00 | 0c 00 | 08 00 08 00 | 02 00 | 0a")));
}

TEST(RowCodec, ATableWithoutVariableColumnsHasNoOffsets) {
  const TableDefinition definition = PlanTable({{"a", ColumnType::Integer}, {"b", ColumnType::Boolean}});
  const RowValues values = {std::int16_t{5}, false};
  EXPECT_EQ(ToHex(EncodeRow(definition, values, NoLongValues(definition))), "02 00 05 00 01");
  EXPECT_EQ(Decoded(FromHex("02 00 05 00 01"), definition), values);
}

// The first variable column came after the row was written.
TEST(RowCodec, ARowWithoutOffsetsIsReadAfterAVariableColumnWasAdded) {
  const TableDefinition definition =
      PlanTable({{"a", ColumnType::Integer}, {"b", ColumnType::Boolean}, TextColumn("t", 50), {"m", ColumnType::Long}});
  EXPECT_EQ(Decoded(FromHex("02 00 05 00 03"), definition), (RowValues{std::int16_t{5}, true, Null{}, Null{}}));
}

TEST(RowCodec, ARowHasRoomForThePointerOfAMove) {
  const TableDefinition definition = PlanTable({{"b", ColumnType::Boolean}});
  const Bytes bytes = EncodeRow(definition, {true}, NoLongValues(definition));
  EXPECT_EQ(bytes.size(), 4U);
  EXPECT_EQ(Decoded(bytes, definition), (RowValues{true}));
}

TEST(RowCodec, AnEmptyTextIsNotNull) {
  const TableDefinition definition = PlanTable({TextColumn("a", 5), TextColumn("b", 5)});
  const Bytes bytes = EncodeRow(definition, {""s, Null{}}, NoLongValues(definition));
  EXPECT_EQ(ToHex(bytes), ToHex(FromHex("02 00 | 02 00 | 02 00 02 00 | 02 00 | 01")));
  EXPECT_EQ(Decoded(bytes, definition), (RowValues{""s, Null{}}));
}

TEST(RowCodec, NullFixedValuesMayHoldAnything) {
  const TableDefinition definition = PlanTable({{"a", ColumnType::Integer}, {"b", ColumnType::Integer}});
  EXPECT_EQ(Decoded(FromHex("02 00 | ff ff | 01 00 | 02"), definition), (RowValues{Null{}, std::int16_t{1}}));
}

TEST(RowCodec, FixedColumnsOfUsuallyVariableTypesAndTheOtherWayRoundAreDecidedByTheFlag) {
  const TableDefinition definition = PlanTable({{"t", ColumnType::Text, 6, false, true},
                                                {"n", ColumnType::Long, 0, false, false},
                                                {"d", ColumnType::Date, 0, false, false},
                                                {"g", ColumnType::Guid, 0, false, false}});
  const RowValues values = {"abc"s, std::int32_t{-5}, Date{1.5}, Guid{}};
  const Bytes bytes = EncodeRow(definition, values, NoLongValues(definition));
  EXPECT_EQ(Decoded(bytes, definition), values);
  EXPECT_EQ(ToHex(std::span(bytes).first(12)), ToHex(FromHex("04 00 | 61 00 62 00 63 00 | fb ff ff ff")));
}

TEST(RowCodec, ARowOfMoreThan4060BytesIsRefused) {
  std::vector<ColumnPlan> columns;
  for (int i = 0; i < 8; ++i) columns.push_back(TextColumn("t" + std::to_string(i), 255, false));
  const TableDefinition definition = PlanTable(columns);
  RowValues values(8, std::string(252, 'x'));
  // 2 + 8 x 504 + 2 + 16 + 2 + 1 = 4055
  EXPECT_EQ(EncodeRow(definition, values, NoLongValues(definition)).size(), 4055U);
  values[0] = std::string(255, 'x');
  try {
    static_cast<void>(EncodeRow(definition, values, NoLongValues(definition)));
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_TRUE(error.Is(ErrorNumber::ProviderFailure));
    EXPECT_TRUE(error.Description().starts_with("Record is too large.")) << error.Description();
  }
}

TEST(RowCodec, AWrongNumberOfValuesIsRefused) {
  const TableDefinition definition = NineColumns();
  EXPECT_THROW(static_cast<void>(EncodeRow(definition, RowValues(8), NoLongValues(definition))), Error);
}

TEST(RowCodec, RandomRowsComeBack) {
  std::mt19937 random(20);
  for (int round = 0; round < 500; ++round) {
    const TableDefinition definition = PlanTable(RandomColumns(random, 1 + random() % 40, false));
    const RowValues values = RandomRow(random, definition);
    const Bytes bytes = EncodeRow(definition, values, NoLongValues(definition));
    EXPECT_EQ(Decoded(bytes, definition), values) << "round " << round;
  }
}

// Whatever the bytes are, there is an answer or an error.
TEST(RowCodec, DamagedRowsGiveAnAnswerOrAnError) {
  std::mt19937 random(21);
  const TableDefinition definition = NineColumns();
  const auto whole = FromHex(kRealRow);
  std::size_t errors = 0;
  const auto read = [&](const std::vector<std::uint8_t>& bytes) {
    try {
      static_cast<void>(Decoded(bytes, definition));
    } catch (const Error& error) {
      EXPECT_NE(error.Description().find("row 3 of page 27"), std::string::npos) << error.Description();
      ++errors;
    }
  };
  for (std::size_t bit = 0; bit < whole.size() * 8; ++bit) {
    auto bytes = whole;
    bytes[bit / 8] = static_cast<std::uint8_t>(bytes[bit / 8] ^ (1U << (bit % 8)));
    read(bytes);
  }
  for (std::size_t length = 0; length < whole.size(); ++length) {
    read({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)});
  }
  for (int i = 0; i < 20000; ++i) {
    std::vector<std::uint8_t> bytes(random() % 80);
    for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random() % 3 == 0 ? random() : 2 + random() % 4);
    read(bytes);
  }
  EXPECT_GT(errors, 1000U);
}

}  // namespace
}  // namespace tavi::access::test
