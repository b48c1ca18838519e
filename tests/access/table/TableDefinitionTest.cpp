#include <gtest/gtest.h>
#include <algorithm>
#include <string>

#include "access/file/Bytes.h"
#include "access/file/Format.h"
#include "access/file/PageAllocator.h"
#include "access/table/DefinitionBytes.h"
#include "access/table/TableDefinition.h"
#include "access/table/support/Hex.h"
#include "access/table/support/TestTable.h"
#include "platform/values/Error.h"

namespace tavi::access::test {
namespace {

namespace table = format::table;

// A table that Access has written: columns A Text(50), B Text(100), C Byte, D Integer, E Long, F Double, G Date,
// H Currency, I Boolean; a primary key on A, an index on B; two rows. 536 bytes.
constexpr PageNumber kPage = 24;
constexpr const char* kDefinition =
    "02 01 e0 0d 00 00 00 00 18 02 00 00 59 06 00 00"
    "02 00 00 00 00 00 00 00 01 00 00 00 00 00 00 00"
    "00 00 00 00 00 00 00 00 4e 09 00 02 00 09 00 02"
    "00 00 00 02 00 00 00 00 19 00 00 01 19 00 00 02"
    "00 00 00 02 00 00 00 00 00 00 00 02 00 00 00 02"
    "00 00 00 00 00 00 00 0a 59 06 00 00 00 00 00 00"
    "01 00 09 04 00 00 02 01 00 00 00 00 00 00 64 00"
    "0a 59 06 00 00 01 00 01 00 02 00 09 04 00 00 02"
    "00 00 00 00 00 00 00 c8 00 02 59 06 00 00 02 00"
    "02 00 03 00 09 04 00 00 03 00 00 00 00 00 00 00"
    "01 00 03 59 06 00 00 03 00 02 00 04 00 09 04 00"
    "00 03 00 00 00 00 00 01 00 02 00 04 59 06 00 00"
    "04 00 02 00 05 00 09 04 00 00 03 00 00 00 00 00"
    "03 00 04 00 07 59 06 00 00 05 00 02 00 06 00 09"
    "04 00 00 03 00 00 00 00 00 07 00 08 00 08 59 06"
    "00 00 06 00 02 00 07 00 09 04 00 00 03 00 00 00"
    "00 00 0f 00 08 00 05 59 06 00 00 07 00 02 00 08"
    "00 09 04 00 00 03 00 00 00 00 00 17 00 08 00 01"
    "59 06 00 00 08 00 02 00 09 00 09 04 00 00 03 00"
    "00 00 00 00 00 00 01 00 02 00 41 00 02 00 42 00"
    "02 00 43 00 02 00 44 00 02 00 45 00 02 00 46 00"
    "02 00 47 00 02 00 48 00 02 00 49 00 83 07 00 00"
    "00 00 01 ff ff 00 ff ff 00 ff ff 00 ff ff 00 ff"
    "ff 00 ff ff 00 ff ff 00 ff ff 00 ff ff 00 02 19"
    "00 00 1c 00 00 00 00 00 00 00 89 00 00 00 00 00"
    "83 07 00 00 01 00 01 ff ff 00 ff ff 00 ff ff 00"
    "ff ff 00 ff ff 00 ff ff 00 ff ff 00 ff ff 00 ff"
    "ff 00 03 19 00 00 1a 00 00 00 00 00 00 00 80 00"
    "00 00 00 00 59 06 00 00 01 00 00 00 01 00 00 00"
    "00 ff ff ff ff 00 00 00 00 04 04 00 00 00 00 00"
    "59 06 00 00 00 00 00 00 00 00 00 00 00 ff ff ff"
    "ff 00 00 00 00 04 04 01 00 00 00 00 02 00 42 00"
    "14 00 50 00 72 00 69 00 6d 00 61 00 72 00 79 00"
    "4b 00 65 00 79 00 ff ff";

// The bytes before the first page's header fields are filled in when a definition goes to its pages.
std::vector<std::uint8_t> WithoutPageFields(std::vector<std::uint8_t> bytes) {
  PutLittle(std::span(bytes), table::kFreeBytesOffset, std::uint16_t{0});
  return bytes;
}

TEST(TableDefinition, ARealDefinitionIsTakenApart) {
  const TableDefinition definition = ParseTableDefinition(FromHex(kDefinition), kPage, {});
  EXPECT_EQ(definition.page, kPage);
  EXPECT_FALSE(definition.isSystem);
  EXPECT_EQ(definition.columnIdCounter, 9);
  EXPECT_EQ(definition.variableColumnCounter, 2);
  EXPECT_EQ(definition.ownedPages, (RowPointer{0x19, 0}));
  EXPECT_EQ(definition.freeSpacePages, (RowPointer{0x19, 1}));
  ASSERT_EQ(definition.columns.size(), 9U);
  const ColumnDefinition& first = definition.columns[0];
  EXPECT_EQ(first.name, "A");
  EXPECT_EQ(first.type, ColumnType::Text);
  EXPECT_FALSE(first.IsFixed());
  EXPECT_TRUE(first.IsCompressed());
  EXPECT_EQ(first.ordinal, 1);
  EXPECT_EQ(first.length, 100);
  EXPECT_EQ(first.sortOrder, 1033);
  const ColumnDefinition& currency = definition.columns[7];
  EXPECT_EQ(currency.type, ColumnType::Currency);
  EXPECT_TRUE(currency.IsFixed());
  EXPECT_EQ(currency.fixedOffset, 23);
  ASSERT_EQ(definition.realIndexes.size(), 2U);
  EXPECT_EQ(definition.realIndexes[0].root, 28U);
  EXPECT_TRUE(definition.realIndexes[0].unique);
  EXPECT_TRUE(definition.realIndexes[0].required);
  EXPECT_FALSE(definition.realIndexes[1].unique);
  ASSERT_EQ(definition.realIndexes[1].columns.size(), 1U);
  EXPECT_EQ(definition.realIndexes[1].columns[0].columnId, 1);
  EXPECT_TRUE(definition.realIndexes[1].columns[0].ascending);
  ASSERT_EQ(definition.logicalIndexes.size(), 2U);
  EXPECT_EQ(definition.logicalIndexes[1].name, "PrimaryKey");
  EXPECT_EQ(definition.logicalIndexes[1].kind, LogicalIndexDefinition::Kind::PrimaryKey);
  EXPECT_EQ(definition.logicalIndexes[0].realIndex, 1U);
  EXPECT_TRUE(definition.longValueMaps.empty());
}

TEST(TableDefinition, ARealDefinitionIsWrittenByteForByte) {
  const auto bytes = FromHex(kDefinition);
  ASSERT_EQ(bytes.size(), 536U);
  const TableDefinition definition = ParseTableDefinition(bytes, kPage, {});
  const DefinitionCounters counters = ParseCounters(bytes, kPage);
  EXPECT_EQ(ToHex(SerializeTableDefinition(definition, counters)), ToHex(WithoutPageFields(bytes)));
}

TEST(TableDefinition, ThePageOfARealDefinitionIsWrittenByteForByte) {
  TestTable file({{"x", ColumnType::Long}});
  const auto bytes = FromHex(kDefinition);
  const PageNumber page = PageAllocator(file.File()).Allocate().Number();
  file.File().Write(page).Put(0, bytes);
  WriteTableDefinition(file.File(), ReadTableDefinition(file.File(), page), true);
  EXPECT_EQ(ToHex(file.File().Read(page)->Slice(0, bytes.size())), ToHex(bytes));
}

TEST(TableDefinition, ColumnsAreFoundByNumberAndByNameInAnyCase) {
  const TableDefinition definition = PlanTable({TextColumn("\u00C9mile", 10), {"Age", ColumnType::Long}});
  EXPECT_EQ(definition.FindColumn("AGE"), &definition.columns[1]);
  EXPECT_EQ(definition.FindColumn("\u00E9MILE"), &definition.columns[0]);
  EXPECT_EQ(definition.FindColumn(1), &definition.columns[1]);
  EXPECT_EQ(definition.FindColumn("Ages"), nullptr);
  EXPECT_EQ(definition.FindColumn(2), nullptr);
}

TEST(TableDefinition, OnlyALongColumnIsAnAutoNumber) {
  ColumnDefinition column;
  column.flags = format::column_flag::kAutonumber;
  EXPECT_TRUE(column.IsAutoNumber());
  column.type = ColumnType::Double;
  EXPECT_FALSE(column.IsAutoNumber());
}

std::vector<ColumnPlan> ManyColumns(std::size_t count) {
  std::vector<ColumnPlan> columns;
  for (std::size_t i = 0; i < count; ++i) {
    const std::string name = "A column whose name takes much room " + std::to_string(i);
    columns.push_back(i % 20 == 0 ? ColumnPlan{name, ColumnType::Memo} : TextColumn(name, 20));
  }
  return columns;
}

TEST(TableDefinition, ALongDefinitionGoesOnOnFurtherPages) {
  TestTable file(ManyColumns(100));
  const auto pages = TableDefinitionPages(file.File(), file.Definition().page);
  ASSERT_EQ(pages.size(), 3U);
  const TableDefinition read = ReadTableDefinition(file.File(), file.Definition().page);
  EXPECT_EQ(SerializeTableDefinition(read, {}), SerializeTableDefinition(file.Definition(), {}));
  EXPECT_EQ(read.columns.back().name, file.Definition().columns.back().name);

  const std::size_t length = SerializeTableDefinition(read, {}).size();
  EXPECT_EQ(file.File().Read(pages[0])->U16(table::kFreeBytesOffset), 0);
  EXPECT_EQ(file.File().Read(pages[1])->U16(table::kFreeBytesOffset), 0);
  EXPECT_EQ(file.File().Read(pages[2])->U16(table::kFreeBytesOffset), 4096 + 2 * 4088 - length - 8);
  EXPECT_TRUE(file.Faults().empty());
}

TEST(TableDefinition, TheFreeByteFieldIsNeverNegative) {
  // Names of such lengths that the definition ends 0 to 12 bytes before the end of its page.
  for (std::size_t unused = 0; unused <= 12; unused += 2) {
    TableDefinition definition = PlanTable(ManyColumns(21));
    const std::size_t length = SerializeTableDefinition(definition, {}).size();
    const std::size_t spare = kPageSize - unused - length;
    definition.columns[0].name += std::string(spare / 2, 'x');
    // Lengths are odd or even by the number of columns.
    ASSERT_EQ(spare % 2, 0U);
    TestTable file({{"x", ColumnType::Long}});
    definition.page = PageAllocator(file.File()).Allocate().Number();
    WriteTableDefinition(file.File(), definition, false);
    EXPECT_EQ(TableDefinitionPages(file.File(), definition.page).size(), 1U);
    EXPECT_EQ(file.File().Read(definition.page)->U16(table::kFreeBytesOffset), unused < 8 ? 0 : unused - 8);
    EXPECT_EQ(ReadTableDefinition(file.File(), definition.page).columns[0].name, definition.columns[0].name);
  }
}

TEST(TableDefinition, PagesThatAreNoLongerNeededAreGivenBack) {
  TestTable file(ManyColumns(100));
  const auto pages = TableDefinitionPages(file.File(), file.Definition().page);
  file.Definition().columns.resize(10);
  WriteTableDefinition(file.File(), file.Definition(), true);
  EXPECT_EQ(TableDefinitionPages(file.File(), file.Definition().page).size(), 1U);
  EXPECT_TRUE(PageAllocator(file.File()).IsFree(pages[1]));
  EXPECT_TRUE(PageAllocator(file.File()).IsFree(pages[2]));
  EXPECT_EQ(ReadTableDefinition(file.File(), file.Definition().page).columns.size(), 10U);
}

TEST(TableDefinition, CountersAreKeptOrStartAtZero) {
  TestTable file({{"a", ColumnType::Long}});
  TableDefinition& definition = file.Definition();
  definition.realIndexes.resize(2);
  WriteTableDefinition(file.File(), definition, false);
  SetRowCount(file.File(), definition, 7);
  SetLastAutoNumber(file.File(), definition, -3);
  WriteIndexStatistics(file.File(), definition, 1, {5, 4});

  definition.realIndexes.resize(3);
  WriteTableDefinition(file.File(), definition, true);
  EXPECT_EQ(RowCount(file.File(), definition), 7U);
  EXPECT_EQ(LastAutoNumber(file.File(), definition), -3);
  EXPECT_EQ(ReadIndexStatistics(file.File(), definition, 1).entries, 5U);
  EXPECT_EQ(ReadIndexStatistics(file.File(), definition, 1).distinctKeys, 4U);
  EXPECT_EQ(ReadIndexStatistics(file.File(), definition, 2).entries, 0U);

  WriteTableDefinition(file.File(), definition, false);
  EXPECT_EQ(RowCount(file.File(), definition), 0U);
  EXPECT_EQ(LastAutoNumber(file.File(), definition), 0);
  EXPECT_EQ(ReadIndexStatistics(file.File(), definition, 1).entries, 0U);
  EXPECT_THROW(static_cast<void>(ReadIndexStatistics(file.File(), definition, 3)), Error);
}

TEST(TableDefinition, SystemTablesStaySystemTables) {
  TableDefinition definition = PlanTable({{"a", ColumnType::Long}});
  definition.isSystem = true;
  const auto bytes = SerializeTableDefinition(definition, {});
  EXPECT_EQ(bytes[table::kTypeOffset], table::kTypeSystem);
  EXPECT_TRUE(ParseTableDefinition(bytes, kPage, {}).isSystem);
}

TEST(TableDefinition, RelationshipsAndMapsComeBack) {
  TableDefinition definition = PlanTable({{"a", ColumnType::Long}, {"m", ColumnType::Memo}});
  definition.realIndexes.push_back({{{0, false}}, {9, 3}, 17, false, true, false, 0});
  LogicalIndexDefinition relationship;
  relationship.name = ".rC";
  relationship.number = 2;
  relationship.kind = LogicalIndexDefinition::Kind::Relationship;
  relationship.side = LogicalIndexDefinition::Side::Primary;
  relationship.partnerNumber = 4;
  relationship.partnerTable = 24;
  relationship.cascadeUpdates = 0;
  relationship.cascadeDeletes = 1;
  definition.logicalIndexes.push_back(relationship);
  definition.longValueMaps.push_back({1, {0x13, 2}, {}});
  const TableDefinition read = ParseTableDefinition(SerializeTableDefinition(definition, {}), kPage, {});
  const LogicalIndexDefinition& logical = read.logicalIndexes.at(0);
  EXPECT_EQ(logical.name, ".rC");
  EXPECT_EQ(logical.number, 2U);
  EXPECT_EQ(logical.side, LogicalIndexDefinition::Side::Primary);
  EXPECT_EQ(logical.partnerNumber, 4U);
  EXPECT_EQ(logical.partnerTable, 24U);
  EXPECT_EQ(logical.cascadeUpdates, 0);
  EXPECT_EQ(logical.cascadeDeletes, 1);
  EXPECT_FALSE(read.realIndexes.at(0).columns.at(0).ascending);
  EXPECT_TRUE(read.realIndexes.at(0).ignoreNulls);
  EXPECT_EQ(read.realIndexes.at(0).flags, 0x82);
  EXPECT_EQ(read.longValueMaps.at(0).ownedPages, (RowPointer{0x13, 2}));
  EXPECT_TRUE(read.longValueMaps.at(0).freeSpacePages.IsNone());
}

// ---------------------------------------------------------------------------------------------------------------------
// Damage
// ---------------------------------------------------------------------------------------------------------------------

void ExpectDamage(const std::vector<std::uint8_t>& bytes, std::string_view text) {
  try {
    static_cast<void>(ParseTableDefinition(bytes, kPage, {}));
    ADD_FAILURE() << "no error; expected " << text;
  } catch (const Error& error) {
    EXPECT_TRUE(error.Is(ErrorNumber::ProviderFailure));
    EXPECT_NE(error.Description().find("the table definition on page 24: " + std::string(text)), std::string::npos)
        << error.Description();
  }
}

std::vector<std::uint8_t> Wounded(std::size_t offset, std::string_view hex) {
  auto bytes = FromHex(kDefinition);
  std::ranges::copy(FromHex(hex), bytes.begin() + static_cast<std::ptrdiff_t>(offset));
  return bytes;
}

TEST(DamagedDefinition, EachWoundIsNamed) {
  ExpectDamage(Wounded(0x08, "ff ff 00 00"), "its length is stated as 65535, its pages have 536 bytes.");
  ExpectDamage(Wounded(0x08, "3e 00 00 00"), "its length is stated as 62");
  ExpectDamage(Wounded(0x2D, "ff ff"), "it is said to have 65535 columns, more than its 536 bytes can hold.");
  ExpectDamage(Wounded(0x33, "ff ff ff ff"), "it is said to have 4294967295 indexes");
  ExpectDamage(Wounded(0x2F, "ff ff ff 7f"), "it is said to have 2147483647 named indexes");
  ExpectDamage(Wounded(0x2D, "0f 00"), "a column name");
  ExpectDamage(Wounded(0x5C, "09 00"), "the column 'A' has the number 9, which is taken or not below the counter 9.");
  ExpectDamage(Wounded(0x75, "00 00"), "the column 'B' has the number 0, which is taken");
  ExpectDamage(Wounded(0x77, "00 00"), "the column 'B' has the slot 0, which is taken");
  ExpectDamage(Wounded(0x77, "02 00"), "the column 'B' has the slot 2, which is taken or not below the counter 2.");
  ExpectDamage(Wounded(0x9E, "ff ff"), "the column 'C' has the place 65535");
  ExpectDamage(Wounded(0x160, "30 00"), "an index uses the column number 48, which does not exist.");
  ExpectDamage(Wounded(0x1CC, "02 00 00 00"), "the index 'B' refers to tree number 2 of 2.");
  ExpectDamage(Wounded(0x216, "00 00"), "the maps of a long-value column at byte 534 lies past the end");
  ExpectDamage(FromHex("02 01"), "the length at byte 8 lies past the end, after 2 bytes.");
}

TEST(DamagedDefinition, CutAnywhereItIsAnErrorOrTheSameDefinition) {
  const auto whole = FromHex(kDefinition);
  for (std::size_t length = 0; length < whole.size(); ++length) {
    auto bytes = whole;
    bytes.resize(length);
    EXPECT_THROW(static_cast<void>(ParseTableDefinition(bytes, kPage, {})), Error) << length;
    if (length < 12) continue;
    PutLittle(std::span(bytes), table::kLengthOffset, static_cast<std::uint32_t>(length));
    EXPECT_THROW(static_cast<void>(ParseTableDefinition(bytes, kPage, {})), Error) << length;
  }
}

TEST(DamagedDefinition, EveryFlippedBitGivesADefinitionOrAnError) {
  const auto whole = FromHex(kDefinition);
  std::size_t errors = 0;
  for (std::size_t bit = 0; bit < whole.size() * 8; ++bit) {
    auto bytes = whole;
    bytes[bit / 8] = static_cast<std::uint8_t>(bytes[bit / 8] ^ (1U << (bit % 8)));
    try {
      static_cast<void>(ParseTableDefinition(bytes, kPage, {}));
    } catch (const Error& error) {
      EXPECT_TRUE(error.Is(ErrorNumber::ProviderFailure));
      ++errors;
    }
  }
  EXPECT_GT(errors, 500U);
}

TEST(DamagedDefinition, LinksInACircleAreFound) {
  TestTable file(ManyColumns(100));
  const auto pages = TableDefinitionPages(file.File(), file.Definition().page);
  file.File().Write(pages[2]).SetU32(table::kNextPageOffset, pages[1]);
  EXPECT_THROW(static_cast<void>(ReadTableDefinition(file.File(), file.Definition().page)), Error);
}

TEST(DamagedDefinition, LinksToOtherPagesAreFound) {
  TestTable file(ManyColumns(100));
  const PageNumber first = file.Definition().page;
  for (const PageNumber next :
       {PageNumber{0}, PageNumber{1}, file.Definition().ownedPages.page, PageNumber{0xFFFFFF}}) {
    file.File().Write(first).SetU32(table::kNextPageOffset, next);
    EXPECT_THROW(static_cast<void>(ReadTableDefinition(file.File(), first)), Error) << next;
  }
  EXPECT_THROW(static_cast<void>(ReadTableDefinition(file.File(), 0)), Error);
  EXPECT_THROW(static_cast<void>(ReadTableDefinition(file.File(), 0xFFFFFF)), Error);
}

}  // namespace
}  // namespace tavi::access::test
