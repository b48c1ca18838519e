#include <gtest/gtest.h>
#include <string>

#include "access/file/Bytes.h"
#include "access/file/Format.h"
#include "access/file/PageAllocator.h"
#include "access/file/UsageMap.h"
#include "access/table/DataPage.h"
#include "access/table/LongValues.h"
#include "access/table/RowPlaces.h"
#include "access/table/RowView.h"
#include "access/table/support/Hex.h"
#include "access/table/support/TestTable.h"
#include "platform/values/Error.h"

namespace tavi::access::test {
namespace {

using Form = PreparedLongValue::Form;

const ColumnPlan kMemo = {"Notes", ColumnType::Memo};
const ColumnPlan kCompressedMemo = {"Notes", ColumnType::Memo, 0, true};
const ColumnPlan kOle = {"Picture", ColumnType::Ole};

PreparedLongValue Prepare(const Value& value, const ColumnPlan& plan) {
  return PrepareLongValue(value, PlanColumn(plan));
}

std::string Text(std::size_t length) {
  return std::string(length, 'x');
}

// What lies in the row for the only column of a table.
std::vector<std::uint8_t> StoredInRow(TestTable& table, RowPointer row) {
  const auto found = RowFinder(table.File(), table.Definition().page).Find(row);
  const RowView view(found->bytes, {}, row);
  const auto stored = view.Stored(table.Definition().columns.front());
  return {stored.begin(), stored.end()};
}

TEST(PrepareLongValue, ValuesOfUpTo64BytesStayInTheRow) {
  EXPECT_EQ(Prepare(Text(32), kMemo).form, Form::Inline);
  EXPECT_EQ(Prepare(Text(33), kMemo).form, Form::Single);
  EXPECT_EQ(Prepare(Bytes(64), kOle).form, Form::Inline);
  EXPECT_EQ(Prepare(Bytes(65), kOle).form, Form::Single);
}

TEST(PrepareLongValue, TheUncompressedLengthDecidesTheForm) {
  // Compressed it would have 45 bytes.
  const PreparedLongValue prepared = Prepare(Text(43), kCompressedMemo);
  EXPECT_EQ(prepared.form, Form::Single);
  EXPECT_EQ(prepared.data.size(), 45U);
}

TEST(PrepareLongValue, OneRowTakesUpToAbout3800Bytes) {
  EXPECT_EQ(Prepare(Text(1900), kMemo).form, Form::Single);
  EXPECT_EQ(Prepare(Text(1901), kMemo).form, Form::Chain);
  EXPECT_EQ(Prepare(Bytes(3801), kOle).form, Form::Single);
  EXPECT_EQ(Prepare(Bytes(3802), kOle).form, Form::Chain);
}

TEST(PrepareLongValue, InlineMemosAreCompressedEvenWithoutTheFlag) {
  EXPECT_EQ(ToHex(Prepare(std::string("Hello"), kMemo).data), "ff fe 48 65 6c 6c 6f");
  EXPECT_EQ(ToHex(Prepare(std::string("Hi"), kMemo).data), "48 00 69 00");
}

TEST(PrepareLongValue, MemosInOneRowAreCompressedOnlyWithTheFlag) {
  EXPECT_EQ(Prepare(Text(100), kMemo).data.size(), 200U);
  EXPECT_EQ(Prepare(Text(100), kCompressedMemo).data.size(), 102U);
}

TEST(PrepareLongValue, ChainsAreNeverCompressed) {
  EXPECT_EQ(Prepare(Text(2000), kCompressedMemo).data.size(), 4000U);
}

TEST(PrepareLongValue, ValuesOfOtherTypesAreRefused) {
  EXPECT_THROW(static_cast<void>(Prepare(Bytes{1}, kMemo)), Error);
  EXPECT_THROW(static_cast<void>(Prepare(std::string("a"), kOle)), Error);
  EXPECT_THROW(static_cast<void>(Prepare(std::int32_t{1}, kMemo)), Error);
}

TEST(LongValues, AnInlineMemoHasTheBytesThatAccessWrites) {
  TestTable table({kMemo});
  const RowPointer row = table.Rows().Insert({std::string("Hello")});
  EXPECT_EQ(ToHex(StoredInRow(table, row)), "07 00 00 80 00 00 00 00 00 00 00 00 ff fe 48 65 6c 6c 6f");
  EXPECT_TRUE(table.LongValuePages(0).empty());
}

TEST(LongValues, AnEmptyMemoIsADescriptorOfLengthZero) {
  TestTable table({kMemo});
  const RowPointer row = table.Rows().Insert({std::string()});
  EXPECT_EQ(ToHex(StoredInRow(table, row)), "00 00 00 80 00 00 00 00 00 00 00 00");
  EXPECT_EQ(table.Rows().Read(row), (RowValues{std::string()}));
}

TEST(LongValues, ASingleValueIsARowOnAnLvalPage) {
  TestTable table({kOle});
  table.Rows().Insert({Bytes(100, 1)});
  const RowPointer row = table.Rows().Insert({Bytes(65, 2)});
  const auto stored = StoredInRow(table, row);
  const PageNumber page = table.LongValuePages(0).at(0);
  EXPECT_EQ(GetLittle<std::uint32_t>(stored, 0), 0x40000000U + 65);
  EXPECT_EQ(GetLittle<std::uint32_t>(stored, 4), (RowPointer{page, 1}).Packed());
  EXPECT_EQ(GetLittle<std::uint32_t>(stored, 8), 0U);
  EXPECT_EQ(ToHex(table.File().Read(page)->Slice(4, 4)), "4c 56 41 4c");
  EXPECT_EQ(table.Rows().Read(row), (RowValues{Bytes(65, 2)}));
}

// 22970 bytes take five full pages and a last one of 2610.
TEST(LongValues, AChainFillsItsPagesAsAccessDoes) {
  TestTable table({kOle});
  Bytes value(22970);
  for (std::size_t i = 0; i < value.size(); ++i) value[i] = static_cast<std::uint8_t>(i * 7);
  const RowPointer row = table.Rows().Insert({value});
  const auto stored = StoredInRow(table, row);
  EXPECT_EQ(ToHex(std::span(stored).first(4)), "ba 59 00 00");
  const std::vector<PageNumber> pages = table.LongValuePages(0);
  ASSERT_EQ(pages.size(), 6U);
  const PageHandle first = table.File().Read(pages[0]);
  EXPECT_EQ(ToHex(first->Slice(0, 16)), "01 01 04 00 4c 56 41 4c 00 00 00 00 01 00 14 00");
  EXPECT_EQ(first->U32(0x14), (RowPointer{pages[1], 0}).Packed());
  const PageHandle last = table.File().Read(pages[5]);
  EXPECT_EQ(last->U16(0x0E), 4096 - 2614);
  EXPECT_EQ(last->U32(4096 - 2614), 0U);
  EXPECT_EQ(table.Rows().Read(row), (RowValues{value}));
}

TEST(LongValues, PagesOfChainsAreNotOfferedForOtherValues) {
  TestTable table({kOle});
  table.Rows().Insert({Bytes(5000)});
  const UsageMap withRoom(table.File(), table.Definition().longValueMaps.at(0).freeSpacePages);
  EXPECT_TRUE(withRoom.Pages().empty());
  table.Rows().Insert({Bytes(100)});
  EXPECT_EQ(table.LongValuePages(0).size(), 3U);
  EXPECT_EQ(withRoom.Pages().size(), 1U);
}

TEST(LongValues, SingleRowsUpToAWholePageAreRead) {
  TestTable table({kOle});
  const RowPointer row = table.Rows().Insert({Bytes(3000, 1)});
  const PageNumber page = table.LongValuePages(0).at(0);
  DataPageEditor(table.File().Write(page)).Replace(0, Bytes(4080, 5), format::data::kRowNormal);
  auto found = RowFinder(table.File(), table.Definition().page).Find(row);
  const std::size_t place = found->bytes.size() - 1 - 2 - 2 - 2 - 12;
  Bytes changed(found->bytes.begin(), found->bytes.end());
  PutLittle(std::span(changed), place, std::uint32_t{0x40000000U + 4080});
  DataPageEditor(table.File().Write(row.page)).Replace(row.row, changed, format::data::kRowNormal);
  EXPECT_EQ(table.Rows().Read(row), (RowValues{Bytes(4080, 5)}));
}

TEST(LongValues, DeletedAndReplacedValuesFreeTheirPages) {
  TestTable table({kOle});
  const RowPointer chained = table.Rows().Insert({Bytes(20000, 1)});
  const RowPointer single = table.Rows().Insert({Bytes(3000, 2)});
  ASSERT_EQ(table.LongValuePages(0).size(), 6U);
  table.Rows().Update(chained, {Bytes(10, 3)});
  EXPECT_EQ(table.LongValuePages(0).size(), 1U);
  table.Rows().Update(single, {Null{}});
  EXPECT_TRUE(table.LongValuePages(0).empty());
  EXPECT_EQ(table.Rows().Read(chained), (RowValues{Bytes(10, 3)}));
  EXPECT_TRUE(table.Faults().empty());
}

TEST(LongValues, AValueThatDoesNotChangeStaysWhereItIs) {
  TestTable table({kOle, {"n", ColumnType::Long}});
  const RowPointer row = table.Rows().Insert({Bytes(20000, 1), std::int32_t{1}});
  const auto before = StoredInRow(table, row);
  table.Commit();
  table.Rows().Update(row, {Bytes(20000, 1), std::int32_t{2}});
  EXPECT_EQ(StoredInRow(table, row), before);
  EXPECT_EQ(table.Rows().Read(row), (RowValues{Bytes(20000, 1), std::int32_t{2}}));
}

TEST(LongValues, MapsAreMadeWhenTheFirstValueNeedsAPage) {
  TestTable table({{"n", ColumnType::Long}, kMemo});
  table.ForgetMaps(1);
  const RowPointer small = table.Rows().Insert({std::int32_t{1}, Text(5)});
  EXPECT_TRUE(table.Definition().longValueMaps.at(0).ownedPages.IsNone());
  const RowPointer large = table.Rows().Insert({std::int32_t{2}, Text(5000)});
  const LongValueMaps& maps = table.Definition().longValueMaps.at(0);
  EXPECT_FALSE(maps.ownedPages.IsNone());
  EXPECT_FALSE(maps.freeSpacePages.IsNone());
  EXPECT_EQ(ReadTableDefinition(table.File(), table.Definition().page).longValueMaps.at(0).ownedPages, maps.ownedPages);
  EXPECT_EQ(RowCount(table.File(), table.Definition()), 2U);
  EXPECT_EQ(table.Rows().Read(small).at(1), Value(Text(5)));
  EXPECT_EQ(table.Rows().Read(large).at(1), Value(Text(5000)));
  EXPECT_TRUE(table.Faults().empty());
}

TEST(LongValues, MapsThatOthersHaveMadeAreFoundInTheFile) {
  TestTable table({kMemo});
  table.ForgetMaps(0);
  const TableDefinition unchangeable = table.Definition();
  TableRows rows(table.File(), unchangeable);
  const RowPointer first = rows.Insert({Text(5000)});
  rows.Insert({Text(100)});
  rows.Delete(first);
  EXPECT_TRUE(unchangeable.longValueMaps.at(0).ownedPages.IsNone());
  EXPECT_EQ(UsageMap(table.File(), ReadTableDefinition(table.File(), unchangeable.page).longValueMaps.at(0).ownedPages)
                .Pages()
                .size(),
            1U);
  EXPECT_TRUE(table.Faults().empty());
}

TEST(LongValues, DroppingAColumnFreesItsPagesAndLeavesTheOthers) {
  TestTable table({kMemo, kOle});
  const RowPointer row = table.Rows().Insert({Text(5000), Bytes(5000, 3)});
  table.Rows().RemoveLongValues(table.Definition().columns.at(0).id);
  EXPECT_TRUE(table.LongValuePages(0).empty());
  EXPECT_EQ(table.Rows().Read(row, {false, true}), (RowValues{Null{}, Bytes(5000, 3)}));
  EXPECT_TRUE(table.Faults().empty());
}

// ---------------------------------------------------------------------------------------------------------------------
// Damage
// ---------------------------------------------------------------------------------------------------------------------

class DamagedLongValue : public ::testing::Test {
 protected:
  void ExpectError(std::string_view text) {
    try {
      static_cast<void>(table_.Rows().Read(row_));
      ADD_FAILURE() << "no error; expected " << text;
    } catch (const Error& error) {
      EXPECT_TRUE(error.Is(ErrorNumber::ProviderFailure));
      EXPECT_NE(error.Description().find("the long value of the field 'Picture' " + std::string(text)),
                std::string::npos)
          << error.Description();
    }
  }
  void SetDescriptor(std::size_t offset, std::uint32_t value) {
    auto stored = StoredInRow(table_, row_);
    PutLittle(std::span(stored), offset, value);
    const RowValues values = {Bytes{}};
    const Bytes bytes = EncodeRow(table_.Definition(), values, {stored});
    DataPageEditor(table_.File().Write(row_.page)).Replace(row_.row, bytes, format::data::kRowNormal);
  }

  TestTable table_{{kOle}};
  RowPointer row_ = table_.Rows().Insert({Bytes(10000, 7)});
};

TEST_F(DamagedLongValue, AChainInACircleIsNoValue) {
  const auto pages = table_.LongValuePages(0);
  table_.File().Write(pages[1]).SetU32(0x14, RowPointer{pages[0], 0}.Packed());
  ExpectError("has parts that lead in a circle to row 0 of page " + std::to_string(pages[0]) + ".");
}

TEST_F(DamagedLongValue, NoneIsLongerThanItsFile) {
  SetDescriptor(0, 0x3FFFFFFF);
  ExpectError("is said to have 1073741823 bytes, more than the file.");
}

TEST_F(DamagedLongValue, AChainThatBreaksOffIsNamed) {
  table_.File().Write(table_.LongValuePages(0)[1]).SetU32(0x14, 0);
  ExpectError("breaks off after 8144 of 10000 bytes: the next part, row 0 of page 0, is not there.");
}

TEST_F(DamagedLongValue, LinksToOtherPagesAreNotFollowed) {
  SetDescriptor(4, RowPointer{table_.Definition().page, 0}.Packed());
  ExpectError("breaks off after 0 of 10000 bytes");
  SetDescriptor(4, RowPointer{0xFFFFFF, 0}.Packed());
  ExpectError("breaks off after 0 of 10000 bytes");
  SetDescriptor(4, row_.Packed());
  ExpectError("breaks off after 0 of 10000 bytes");
  SetDescriptor(4, RowPointer{table_.LongValuePages(0)[0], 1}.Packed());
  ExpectError("breaks off after 0 of 10000 bytes");
}

TEST_F(DamagedLongValue, UnknownFormsAndMissingRowsAreNamed) {
  SetDescriptor(0, 0xC0000000U + 10000);
  ExpectError("has an unknown form.");
  SetDescriptor(0, 0x40000000U + 10000);
  ExpectError("should have 10000 bytes in row 0 of page");
  SetDescriptor(0, 0x80000000U + 10000);
  ExpectError("is cut off in its row.");
}

TEST_F(DamagedLongValue, ARowWithABadLinkCanBeDeletedWithoutTouchingOtherPages) {
  SetDescriptor(4, RowPointer{table_.Definition().page, 0}.Packed());
  table_.Rows().Delete(row_);
  EXPECT_EQ(table_.LongValuePages(0).size(), 3U);
  EXPECT_NO_THROW(static_cast<void>(ReadTableDefinition(table_.File(), table_.Definition().page)));
}

}  // namespace
}  // namespace tavi::access::test
