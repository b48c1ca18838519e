#include <gtest/gtest.h>
#include <bit>
#include <limits>
#include <random>

#include "access/index/Collation.h"
#include "access/index/KeyEncoder.h"
#include "access/index/support/Hex.h"
#include "platform/values/Error.h"

namespace tavi::access {
namespace {

using test::ToHex;

ColumnDefinition Column(ColumnType type, std::uint16_t id = 0) {
  ColumnDefinition column;
  column.name = "C" + std::to_string(id);
  column.type = type;
  column.id = id;
  column.length = 510;
  column.precision = 18;
  column.scale = 3;
  return column;
}

struct Key {
  ColumnType type;
  bool ascending = true;
};

/// An encoder of an index on one column for each of the keys.
KeyEncoder EncoderOf(const std::vector<Key>& keys, bool ignoreNulls = false) {
  TableDefinition table;
  RealIndexDefinition index;
  index.ignoreNulls = ignoreNulls;
  for (const Key& key : keys) {
    const auto id = static_cast<std::uint16_t>(table.columns.size());
    table.columns.push_back(Column(key.type, id));
    index.columns.push_back({id, key.ascending});
  }
  return {table, index};
}

std::string Ascending(ColumnType type, const Value& value) {
  return ToHex(EncoderOf({{type, true}}).RowKey({value}));
}

std::string Descending(ColumnType type, const Value& value) {
  return ToHex(EncoderOf({{type, false}}).RowKey({value}));
}

Bytes BytesOf(std::string_view text) {
  return {text.begin(), text.end()};
}

TEST(KeyEncoder, Null) {
  EXPECT_EQ(Ascending(ColumnType::Long, Null()), "00");
  EXPECT_EQ(Descending(ColumnType::Long, Null()), "FF");
  EXPECT_EQ(Ascending(ColumnType::Text, Null()), "00");
  EXPECT_EQ(Descending(ColumnType::Text, Null()), "FF");
}

TEST(KeyEncoder, Long) {
  EXPECT_EQ(Ascending(ColumnType::Long, std::int32_t{2}), "7F 80 00 00 02");
  EXPECT_EQ(Descending(ColumnType::Long, std::int32_t{2}), "80 7F FF FF FD");
  EXPECT_EQ(Ascending(ColumnType::Long, std::numeric_limits<std::int32_t>::min()), "7F 00 00 00 00");
  EXPECT_EQ(Descending(ColumnType::Long, std::numeric_limits<std::int32_t>::min()), "80 FF FF FF FF");
}

TEST(KeyEncoder, Integer) {
  EXPECT_EQ(Ascending(ColumnType::Integer, std::int16_t{-23}), "7F 7F E9");
  EXPECT_EQ(Ascending(ColumnType::Integer, std::int16_t{-1}), "7F 7F FF");
  EXPECT_EQ(Descending(ColumnType::Integer, std::int16_t{-1}), "80 80 00");
}

TEST(KeyEncoder, Byte) {
  EXPECT_EQ(Ascending(ColumnType::Byte, std::uint8_t{0x38}), "7F 38");
  EXPECT_EQ(Descending(ColumnType::Byte, std::uint8_t{0x38}), "80 C7");
}

TEST(KeyEncoder, Currency) {
  EXPECT_EQ(Descending(ColumnType::Currency, Currency{-11000}), "80 80 00 00 00 00 00 2A F7");
  const Currency large{0x000002D1679E0670};
  EXPECT_EQ(Ascending(ColumnType::Currency, large), "7F 80 00 02 D1 67 9E 06 70");
  EXPECT_EQ(Descending(ColumnType::Currency, large), "80 7F FF FD 2E 98 61 F9 8F");
}

TEST(KeyEncoder, Single) {
  const auto positive = std::bit_cast<float>(std::uint32_t{0x4D93BE63});
  EXPECT_EQ(Ascending(ColumnType::Single, positive), "7F CD 93 BE 63");
  EXPECT_EQ(Descending(ColumnType::Single, positive), "80 32 6C 41 9C");
  EXPECT_EQ(Ascending(ColumnType::Single, std::bit_cast<float>(std::uint32_t{0xC706E600})), "7F 38 F9 19 FF");
}

TEST(KeyEncoder, DoubleAndDate) {
  EXPECT_EQ(Ascending(ColumnType::Double, -1.1), "7F 40 0E 66 66 66 66 66 65");
  EXPECT_EQ(Descending(ColumnType::Double, -1.1), "80 BF F1 99 99 99 99 99 9A");
  EXPECT_EQ(Ascending(ColumnType::Double, 1.1), "7F BF F1 99 99 99 99 99 9A");
  EXPECT_EQ(Descending(ColumnType::Double, 1.1), "80 40 0E 66 66 66 66 66 65");
  EXPECT_EQ(Ascending(ColumnType::Date, Date{1.1}), "7F BF F1 99 99 99 99 99 9A");
}

TEST(KeyEncoder, Boolean) {
  EXPECT_EQ(Ascending(ColumnType::Boolean, true), "7F 00");
  EXPECT_EQ(Descending(ColumnType::Boolean, true), "80 FF");
  EXPECT_EQ(Ascending(ColumnType::Boolean, false), "7F FF");
  EXPECT_EQ(Descending(ColumnType::Boolean, false), "80 00");
  EXPECT_EQ(Ascending(ColumnType::Boolean, Null()), "7F FF");
}

TEST(KeyEncoder, Guid) {
  const Guid guid{{0x0F, 0xC4, 0x9B, 0x7B, 0xE6, 0x56, 0x42, 0x28, 0xAE, 0xDC, 0xDF, 0x8B, 0xDF, 0x4C, 0x4A, 0x64}};
  EXPECT_EQ(Ascending(ColumnType::Guid, guid), "7F 0F C4 9B 7B E6 56 42 28 09 AE DC DF 8B DF 4C 4A 64 08");
  EXPECT_EQ(Descending(ColumnType::Guid, guid), "80 F0 3B 64 84 19 A9 BD D7 09 51 23 20 74 20 B3 B5 9B F7");
}

TEST(KeyEncoder, Binary) {
  const Bytes value = BytesOf("abcdefghijklmnopqrstuvwxyza");
  EXPECT_EQ(Ascending(ColumnType::Binary, value),
            "7F 61 62 63 64 65 66 67 68 09 69 6A 6B 6C 6D 6E 6F 70 09 71 72 73 74 75 76 77 78 09 79 7A 61 00 00 00 00 "
            "00 03");
  EXPECT_EQ(Descending(ColumnType::Binary, value),
            "80 9E 9D 9C 9B 9A 99 98 97 09 96 95 94 93 92 91 90 8F 09 8E 8D 8C 8B 8A 89 88 87 09 86 85 9E FF FF FF FF "
            "FF FC");
}

TEST(KeyEncoder, BinaryOfWholeGroupsAndOfNone) {
  EXPECT_EQ(Ascending(ColumnType::Binary, BytesOf("abcdefgh")), "7F 61 62 63 64 65 66 67 68 08");
  EXPECT_EQ(Ascending(ColumnType::FixedBinary, BytesOf("abcdefgh")), "7F 61 62 63 64 65 66 67 68 08");
  EXPECT_EQ(Ascending(ColumnType::Binary, Bytes()), "7F");
  EXPECT_EQ(Descending(ColumnType::Binary, Bytes()), "80");
}

TEST(KeyEncoder, Numeric) {
  const Decimal positive{false, 0, 0x10F21A, 3};
  const Decimal negative{true, 0, 0x10F21A, 3};
  EXPECT_EQ(Ascending(ColumnType::Numeric, positive), "7F FF 00 00 00 00 00 00 00 00 00 00 00 00 00 10 F2 1A");
  EXPECT_EQ(Descending(ColumnType::Numeric, positive), "80 FF FF FF FF FF FF FF FF FF FF FF FF FF FF EF 0D E5");
  EXPECT_EQ(Ascending(ColumnType::Numeric, negative), "7F 00 FF FF FF FF FF FF FF FF FF FF FF FF FF EF 0D E5");
  EXPECT_EQ(Descending(ColumnType::Numeric, negative), "80 00 00 00 00 00 00 00 00 00 00 00 00 00 00 10 F2 1A");
}

TEST(KeyEncoder, NumericIsBroughtToTheScaleOfItsColumn) {
  EXPECT_EQ(Ascending(ColumnType::Numeric, Decimal{false, 0, 15, 1}),
            Ascending(ColumnType::Numeric, Decimal{false, 0, 1500, 3}));
}

TEST(KeyEncoder, TextAndMemo) {
  EXPECT_EQ(Ascending(ColumnType::Text, std::string("abcdefg")), "7F 4A 4C 4D 4F 51 53 55 01 00");
  EXPECT_EQ(Ascending(ColumnType::Text, std::string()), "7F 01 00");
  EXPECT_EQ(Ascending(ColumnType::Memo, std::string("Tables")), "7F 6D 4A 4C 5E 51 6B 01 00");
  EXPECT_EQ(Ascending(ColumnType::Memo, std::string(300, 'a')), Ascending(ColumnType::Memo, std::string(255, 'a')));
}

TEST(KeyEncoder, DescendingTextEndsUninverted) {
  EXPECT_EQ(Descending(ColumnType::Text, std::string("a")), "80 B5 FE FF 00");
  EXPECT_EQ(Descending(ColumnType::Text, std::string()), "80 FE FF 00");
}

TEST(KeyEncoder, ColumnsFollowEachOther) {
  const KeyEncoder encoder = EncoderOf({{ColumnType::Long}, {ColumnType::Text}});
  EXPECT_EQ(ToHex(encoder.RowKey({std::int32_t{0x0F000001}, std::string("MSysObjects")})),
            "7F 8F 00 00 01 7F 60 6B 76 6B 64 4C 5B 51 4D 6D 6B 01 00");
  const KeyEncoder mixed = EncoderOf({{ColumnType::Long}, {ColumnType::Text, false}});
  EXPECT_EQ(ToHex(mixed.RowKey({Null(), std::string("a")})), "00 80 B5 FE FF 00");
}

TEST(KeyEncoder, TakesTheColumnsThatTheIndexNames) {
  TableDefinition table;
  table.columns = {Column(ColumnType::Text, 7), Column(ColumnType::Long, 3), Column(ColumnType::Byte, 5)};
  RealIndexDefinition index;
  index.columns = {{5, true}, {7, true}};
  const KeyEncoder encoder(table, index);
  EXPECT_EQ(encoder.Positions(), (std::vector<std::size_t>{2, 0}));
  EXPECT_EQ(ToHex(encoder.RowKey({std::string("a"), std::int32_t{9}, std::uint8_t{1}})), "7F 01 7F 4A 01 00");
}

TEST(KeyEncoder, PrefixOfTheFirstColumns) {
  const KeyEncoder encoder = EncoderOf({{ColumnType::Long}, {ColumnType::Text}});
  EXPECT_EQ(ToHex(*encoder.PrefixKey({std::int32_t{2}})), "7F 80 00 00 02");
  EXPECT_EQ(ToHex(*encoder.PrefixKey({})), "");
  EXPECT_EQ(encoder.PrefixKey({std::int32_t{2}, std::string("x")}),
            encoder.RowKey({std::int32_t{2}, std::string("x")}));
}

TEST(KeyEncoder, PrefixValuesAreConvertedFirst) {
  const KeyEncoder encoder = EncoderOf({{ColumnType::Long}});
  EXPECT_EQ(ToHex(*encoder.PrefixKey({2.0})), "7F 80 00 00 02");
  EXPECT_EQ(ToHex(*encoder.PrefixKey({std::string("2")})), "7F 80 00 00 02");
  EXPECT_EQ(ToHex(*encoder.PrefixKey({Null()})), "00");
}

TEST(KeyEncoder, NoPrefixOfAValueThatDoesNotConvert) {
  const KeyEncoder encoder = EncoderOf({{ColumnType::Long}});
  EXPECT_EQ(encoder.PrefixKey({std::string("two")}), std::nullopt);
  EXPECT_EQ(encoder.PrefixKey({1e12}), std::nullopt);
  EXPECT_EQ(encoder.PrefixKey({std::int32_t{1}, std::int32_t{2}}), std::nullopt);
}

TEST(KeyEncoder, NullsDecideWhetherARowHasAnEntry) {
  const std::vector<Key> keys = {{ColumnType::Long}, {ColumnType::Text}};
  const RowValues none = {Null(), Null()};
  const RowValues some = {Null(), std::string("a")};
  const RowValues all = {std::int32_t{1}, std::string("a")};
  for (const bool ignoreNulls : {false, true}) {
    const KeyEncoder encoder = EncoderOf(keys, ignoreNulls);
    EXPECT_TRUE(encoder.AllNull(none));
    EXPECT_FALSE(encoder.AllNull(some));
    EXPECT_TRUE(encoder.AnyNull(none));
    EXPECT_TRUE(encoder.AnyNull(some));
    EXPECT_FALSE(encoder.AnyNull(all));
    EXPECT_EQ(encoder.HasEntry(none), !ignoreNulls);
    EXPECT_TRUE(encoder.HasEntry(some));
    EXPECT_TRUE(encoder.HasEntry(all));
  }
}

TEST(KeyEncoder, ABooleanIsNeverNull) {
  const KeyEncoder encoder = EncoderOf({{ColumnType::Boolean}}, true);
  EXPECT_FALSE(encoder.AllNull({false}));
  EXPECT_FALSE(encoder.AnyNull({Null()}));
  EXPECT_TRUE(encoder.HasEntry({false}));
}

std::string Refusal(const TableDefinition& table, const RealIndexDefinition& index) {
  try {
    const KeyEncoder encoder(table, index);
  } catch (const Error& error) {
    EXPECT_TRUE(error.Is(ErrorNumber::ProviderFailure));
    return error.Description();
  }
  return "";
}

TEST(KeyEncoder, RefusesWhatHasNoOrderHere) {
  RealIndexDefinition index;
  index.columns = {{4, true}};
  TableDefinition table;
  table.columns = {Column(ColumnType::Ole, 4)};
  EXPECT_NE(Refusal(table, index).find("Column C4 cannot be used in an index"), std::string::npos);
  table.columns = {Column(ColumnType::Text, 4)};
  table.columns[0].sortOrder = 0x0411;
  EXPECT_NE(Refusal(table, index).find("sort order 1041, version 0"), std::string::npos);
  table.columns[0].sortOrder = 1033;
  table.columns[0].sortVersion = 1;
  EXPECT_NE(Refusal(table, index).find("sort order 1033, version 1"), std::string::npos);
  table.columns = {Column(ColumnType::Long, 5)};
  EXPECT_NE(Refusal(table, index).find("uses column 4, which does not exist"), std::string::npos);
}

TEST(KeyEncoder, RefusesAValueOfAnotherType) {
  EXPECT_THROW((void)Ascending(ColumnType::Long, std::string("2")), Error);
  EXPECT_THROW((void)Ascending(ColumnType::Text, std::int32_t{2}), Error);
}

/// Keys must sort as their values do, ascending and descending.
template <typename Type, typename Make>
void ExpectOrder(ColumnType type, Make make) {
  std::mt19937_64 random(42);
  const KeyEncoder ascending = EncoderOf({{type, true}});
  const KeyEncoder descending = EncoderOf({{type, false}});
  for (int round = 0; round < 2000; ++round) {
    const Type left = make(random);
    const Type right = make(random);
    const bool less = left < right;
    EXPECT_EQ(ascending.RowKey({left}) < ascending.RowKey({right}), less);
    EXPECT_EQ(descending.RowKey({right}) < descending.RowKey({left}), less);
    EXPECT_LT(ascending.RowKey({Null()}), ascending.RowKey({left}));
    EXPECT_GT(descending.RowKey({Null()}), descending.RowKey({left}));
  }
}

TEST(KeyEncoder, KeysSortAsTheirValues) {
  ExpectOrder<std::uint8_t>(ColumnType::Byte, [](auto& random) { return static_cast<std::uint8_t>(random()); });
  ExpectOrder<std::int16_t>(ColumnType::Integer, [](auto& random) { return static_cast<std::int16_t>(random()); });
  ExpectOrder<std::int32_t>(ColumnType::Long, [](auto& random) { return static_cast<std::int32_t>(random()); });
  ExpectOrder<Currency>(ColumnType::Currency,
                        [](auto& random) { return Currency{static_cast<std::int64_t>(random())}; });
  ExpectOrder<double>(ColumnType::Double,
                      [](auto& random) { return std::uniform_real_distribution<double>(-1e3, 1e3)(random); });
  ExpectOrder<float>(ColumnType::Single,
                     [](auto& random) { return std::uniform_real_distribution<float>(-1e3F, 1e3F)(random); });
  ExpectOrder<Date>(ColumnType::Date,
                    [](auto& random) { return Date{std::uniform_real_distribution<double>(-1e5, 1e5)(random)}; });
}

TEST(KeyEncoder, DescendingTextsSortBackwards) {
  const std::vector<std::string> texts = {"", "a", "a-b", "ab", "ä", "aä", "b", "ß", "漢", "あ"};
  const KeyEncoder descending = EncoderOf({{ColumnType::Text, false}});
  for (const std::string& left : texts)
    for (const std::string& right : texts) {
      EXPECT_EQ(descending.RowKey({left}) < descending.RowKey({right}), CollationCompare(right, left) < 0)
          << left << " and " << right;
    }
}

}  // namespace
}  // namespace tavi::access
