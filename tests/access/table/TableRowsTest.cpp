#include <gtest/gtest.h>
#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <set>
#include <string>

#include "access/file/Bytes.h"
#include "access/file/Format.h"
#include "access/file/PageAllocator.h"
#include "access/file/UsageMap.h"
#include "access/table/DataPage.h"
#include "access/table/RowPlaces.h"
#include "access/table/TableRows.h"
#include "access/table/support/TestTable.h"
#include "platform/values/Error.h"

namespace tavi::access::test {
namespace {

namespace data = format::data;

const std::vector<ColumnPlan> kColumns = {
    {"n", ColumnType::Long}, TextColumn("t", 255, false), TextColumn("u", 255, false)};

RowValues Row(std::int32_t number, std::size_t length, std::size_t secondLength = 0) {
  return {number, std::string(length, 'x'), std::string(secondLength, 'y')};
}

RowEntry EntryOf(TestTable& table, RowPointer row) {
  return DataPageReader(*table.File().Read(row.page), Jet4DataPageLayout()).Entry(row.row);
}

RowPointer BodyOf(TestTable& table, RowPointer row) {
  return RowFinder(table.File(), table.Definition().page).Find(row)->body;
}

std::vector<Page> Snapshot(TestTable& table) {
  std::vector<Page> pages;
  for (PageNumber page = 1; page < table.File().PageCount(); ++page) pages.push_back(*table.File().Read(page));
  return pages;
}

bool SamePages(const std::vector<Page>& left, const std::vector<Page>& right) {
  return std::ranges::equal(left, right,
                            [](const Page& a, const Page& b) { return std::ranges::equal(a.All(), b.All()); });
}

std::string MessageOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const Error& error) {
    EXPECT_TRUE(error.Is(ErrorNumber::ProviderFailure)) << error.Description();
    return error.Description();
  }
  return "no error";
}

TEST(TableRows, AnEmptyTableHasNoRows) {
  TestTable table(kColumns);
  EXPECT_EQ(table.Rows().Next(std::nullopt), std::nullopt);
  EXPECT_TRUE(table.AllRows().empty());
  EXPECT_EQ(RowCount(table.File(), table.Definition()), 0U);
}

TEST(TableRows, InsertedRowsAreReadAndCounted) {
  TestTable table(kColumns);
  const RowPointer first = table.Rows().Insert(Row(1, 3));
  const RowPointer second = table.Rows().Insert({Null{}, Null{}, std::string()});
  EXPECT_EQ(table.Rows().Read(first), Row(1, 3));
  EXPECT_EQ(table.Rows().Read(second), (RowValues{Null{}, Null{}, std::string()}));
  EXPECT_EQ(RowCount(table.File(), table.Definition()), 2U);
  EXPECT_EQ(table.AllRows(), (std::vector<RowPointer>{first, second}));
  EXPECT_TRUE(table.Faults().empty());
}

TEST(TableRows, OnlyWantedColumnsAreRead) {
  TestTable table(kColumns);
  const RowPointer row = table.Rows().Insert(Row(1, 3, 2));
  EXPECT_EQ(table.Rows().Read(row, {true, false, true}), (RowValues{std::int32_t{1}, Null{}, std::string("yy")}));
}

TEST(TableRows, RowsComeInTheOrderOfPages) {
  TestTable table(kColumns);
  for (int i = 0; i < 500; ++i) table.Rows().Insert(Row(i, 50));
  const std::vector<RowPointer> rows = table.AllRows();
  ASSERT_EQ(rows.size(), 500U);
  EXPECT_TRUE(std::ranges::is_sorted(rows));
  EXPECT_GT(table.DataPages().size(), 10U);
  std::set<std::int32_t> numbers;
  for (const RowPointer row : rows) numbers.insert(std::get<std::int32_t>(table.Rows().Read(row).at(0)));
  EXPECT_EQ(numbers.size(), 500U);
}

TEST(TableRows, AWalkEndsEarlyWhenTheVisitorSaysSo) {
  TestTable table(kColumns);
  for (int i = 0; i < 10; ++i) table.Rows().Insert(Row(i, 5));
  int visited = 0;
  table.Rows().Walk([&visited](RowPointer) { return ++visited < 3; });
  EXPECT_EQ(visited, 3);
}

TEST(TableRows, RowsMayBeDeletedWhileTheyAreFollowed) {
  TestTable table(kColumns);
  for (int i = 0; i < 300; ++i) table.Rows().Insert(Row(i, 100));
  int seen = 0;
  for (auto row = table.Rows().Next(std::nullopt); row; row = table.Rows().Next(row)) {
    table.Rows().Delete(*row);
    ++seen;
  }
  EXPECT_EQ(seen, 300);
  EXPECT_TRUE(table.DataPages().empty());
  EXPECT_TRUE(table.Faults().empty());
}

TEST(TableRows, SmallRowsFillAPageWith255) {
  TestTable table({{"b", ColumnType::Boolean}});
  for (int i = 0; i < 600; ++i) table.Rows().Insert({i % 2 == 0});
  ASSERT_EQ(table.DataPages().size(), 3U);
  EXPECT_EQ(table.File().Read(table.DataPages()[0])->U16(data::kRowCountOffset), 255);
  EXPECT_EQ(table.AllRows().size(), 600U);
  EXPECT_TRUE(table.Faults().empty());
}

TEST(TableRows, DeletedRowsLeaveTheOthersWhereTheyAre) {
  TestTable table(kColumns);
  std::vector<RowPointer> rows;
  for (int i = 0; i < 20; ++i) rows.push_back(table.Rows().Insert(Row(i, 20)));
  for (std::size_t i = 0; i < rows.size(); i += 2) table.Rows().Delete(rows[i]);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    EXPECT_EQ(table.Rows().Exists(rows[i]), i % 2 == 1);
    if (i % 2 == 1) {
      EXPECT_EQ(table.Rows().Read(rows[i]), Row(static_cast<std::int32_t>(i), 20));
    }
  }
  EXPECT_EQ(RowCount(table.File(), table.Definition()), 10U);
  EXPECT_NE(MessageOf([&] { static_cast<void>(table.Rows().Read(rows[0])); }).find("Record is deleted."),
            std::string::npos);
  EXPECT_NE(MessageOf([&] { table.Rows().Delete(rows[0]); }).find("Record is deleted."), std::string::npos);
  EXPECT_TRUE(table.Faults().empty());
}

TEST(TableRows, TheLastRowOfAPageTakesThePageWithIt) {
  TestTable table(kColumns);
  const RowPointer row = table.Rows().Insert(Row(1, 10));
  table.Rows().Delete(row);
  EXPECT_TRUE(table.DataPages().empty());
  EXPECT_TRUE(PageAllocator(table.File()).IsFree(row.page));
  EXPECT_EQ(table.File().Read(row.page)->U8(0), format::page_type::kReleasedData);
  EXPECT_FALSE(table.Rows().Exists(row));
}

TEST(TableRows, SpaceOfDeletedRowsIsUsedAgain) {
  TestTable table(kColumns);
  std::vector<RowPointer> rows;
  for (int i = 0; i < 200; ++i) rows.push_back(table.Rows().Insert(Row(i, 200)));
  const std::size_t pages = table.DataPages().size();
  for (std::size_t i = 0; i < rows.size(); i += 2) table.Rows().Delete(rows[i]);
  for (int i = 0; i < 100; ++i) table.Rows().Insert(Row(i, 200));
  EXPECT_EQ(table.DataPages().size(), pages);
  EXPECT_TRUE(table.Faults().empty());
}

TEST(TableRows, ARowGrowsOnItsPageWhileThereIsRoom) {
  TestTable table(kColumns);
  const RowPointer first = table.Rows().Insert(Row(1, 10));
  const RowPointer second = table.Rows().Insert(Row(2, 10));
  table.Rows().Update(first, Row(1, 255, 255));
  EXPECT_EQ(table.Rows().Read(first), Row(1, 255, 255));
  EXPECT_EQ(table.Rows().Read(second), Row(2, 10));
  EXPECT_EQ(BodyOf(table, first), first);
  table.Rows().Update(first, Row(1, 0));
  EXPECT_EQ(table.Rows().Read(first), Row(1, 0));
  EXPECT_EQ(table.Rows().Read(second), Row(2, 10));
  EXPECT_TRUE(table.Faults().empty());
}

/// A table whose first page is full; the first row on it is about to grow.
class FullPage : public ::testing::Test {
 protected:
  FullPage() {
    do {
      rows_.push_back(table_.Rows().Insert(Row(static_cast<std::int32_t>(rows_.size()), 100)));
    } while (rows_.back().page == rows_.front().page);
  }

  TestTable table_{kColumns};
  std::vector<RowPointer> rows_;
};

TEST_F(FullPage, ARowThatDoesNotFitMovesAndLeavesAPointer) {
  const RowPointer row = rows_[0];
  table_.Rows().Update(row, Row(0, 255, 255));
  const RowPointer body = BodyOf(table_, row);
  EXPECT_NE(body.page, row.page);
  EXPECT_TRUE(EntryOf(table_, row).IsMoved());
  EXPECT_EQ(EntryOf(table_, row).length, 4U);
  EXPECT_TRUE(EntryOf(table_, body).IsMovedTarget());
  EXPECT_EQ(table_.Rows().Read(row), Row(0, 255, 255));
  EXPECT_FALSE(table_.Rows().Exists(body));
  EXPECT_EQ(table_.AllRows(), rows_);
  EXPECT_EQ(RowCount(table_.File(), table_.Definition()), rows_.size());
  EXPECT_TRUE(table_.Faults().empty());
}

TEST_F(FullPage, AMovedRowGrowsWhereItIs) {
  const RowPointer row = rows_[0];
  table_.Rows().Update(row, Row(0, 255, 10));
  const RowPointer body = BodyOf(table_, row);
  table_.Rows().Update(row, Row(0, 255, 255));
  EXPECT_EQ(BodyOf(table_, row), body);
  EXPECT_EQ(table_.Rows().Read(row), Row(0, 255, 255));
  EXPECT_TRUE(table_.Faults().empty());
}

TEST_F(FullPage, AMovedRowMovesAgain) {
  const RowPointer row = rows_[0];
  table_.Rows().Update(row, Row(0, 200, 0));
  const RowPointer body = BodyOf(table_, row);
  // Fills the page that the row went to.
  while (table_.Rows().Insert(Row(7, 100)).page == body.page) {
  }
  table_.Rows().Update(row, Row(0, 255, 255));
  EXPECT_NE(BodyOf(table_, row).page, body.page);
  EXPECT_TRUE(EntryOf(table_, body).IsDeleted());
  EXPECT_EQ(table_.Rows().Read(row), Row(0, 255, 255));
  EXPECT_TRUE(table_.Faults().empty());
}

TEST_F(FullPage, AMovedRowComesBackWhenItFitsAgain) {
  const RowPointer row = rows_[0];
  table_.Rows().Update(row, Row(0, 255, 255));
  const RowPointer body = BodyOf(table_, row);
  table_.Rows().Update(row, Row(0, 20));
  EXPECT_EQ(BodyOf(table_, row), row);
  EXPECT_TRUE(EntryOf(table_, body).IsDeleted());
  EXPECT_EQ(table_.Rows().Read(row), Row(0, 20));
  EXPECT_TRUE(table_.Faults().empty());
}

TEST_F(FullPage, DeletingAMovedRowDeletesItsBody) {
  const RowPointer row = rows_[0];
  table_.Rows().Update(row, Row(0, 255, 255));
  const RowPointer body = BodyOf(table_, row);
  table_.Rows().Delete(row);
  EXPECT_FALSE(table_.Rows().Exists(row));
  EXPECT_TRUE(EntryOf(table_, body).IsDeleted());
  EXPECT_EQ(RowCount(table_.File(), table_.Definition()), rows_.size() - 1);
  EXPECT_TRUE(table_.Faults().empty());
}

// Other programs leave the rest of the old row behind the pointer.
TEST_F(FullPage, BytesBehindThePointerAreIgnored) {
  const RowPointer row = rows_[0];
  table_.Rows().Update(row, Row(0, 255, 255));
  const RowPointer body = BodyOf(table_, row);
  std::vector<std::uint8_t> pointer(50, 0xEE);
  PutLittle(std::span(pointer), 0, body.Packed());
  DataPageEditor(table_.File().Write(row.page)).Replace(row.row, pointer, data::kRowMoved);
  EXPECT_EQ(table_.Rows().Read(row), Row(0, 255, 255));
  table_.Rows().Update(row, Row(0, 50));
  EXPECT_EQ(BodyOf(table_, row), row);
  EXPECT_EQ(table_.Rows().Read(row), Row(0, 50));
}

TEST_F(FullPage, PointersThatLeadNowhereAreNamed) {
  const RowPointer row = rows_[0];
  table_.Rows().Update(row, Row(0, 255, 255));
  const auto offset = EntryOf(table_, row).offset;
  for (const RowPointer wrong : {RowPointer{0, 0}, RowPointer{0xFFFFFF, 0}, RowPointer{1, 0}, rows_[1], row}) {
    table_.File().Write(row.page).SetU32(offset, wrong.Packed());
    const std::string message = MessageOf([&] { static_cast<void>(table_.Rows().Read(row)); });
    EXPECT_NE(message.find("row 0 of page " + std::to_string(row.page) + " was moved to row"), std::string::npos)
        << message;
  }
}

TEST(TableRows, AnUpdateThatChangesNothingWritesNothing) {
  TestTable table({{"n", ColumnType::Long}, {"d", ColumnType::Double}, TextColumn("t", 50), {"m", ColumnType::Memo}});
  const RowValues values = {std::int32_t{1}, 0.5, std::string("abc"), std::string(5000, 'm')};
  const RowPointer row = table.Rows().Insert(values);
  // Bytes that we would write differently: padding as another program leaves it.
  auto found = RowFinder(table.File(), table.Definition().page).Find(row);
  const std::vector<std::uint8_t> before(found->bytes.begin(), found->bytes.end());
  const auto pages = Snapshot(table);
  table.Rows().Update(row, values);
  EXPECT_TRUE(SamePages(pages, Snapshot(table)));
  table.Rows().Update(row, {std::int32_t{1}, -0.5, std::string("abc"), std::string(5000, 'm')});
  EXPECT_FALSE(SamePages(pages, Snapshot(table)));
}

TEST(TableRows, AZeroThatChangesItsSignIsWritten) {
  TestTable table({{"d", ColumnType::Double}});
  const RowPointer row = table.Rows().Insert({0.0});
  table.Rows().Update(row, {-0.0});
  EXPECT_TRUE(std::signbit(std::get<double>(table.Rows().Read(row).at(0))));
  table.Rows().Update(row, {std::numeric_limits<double>::quiet_NaN()});
  const auto pages = Snapshot(table);
  table.Rows().Update(row, {std::numeric_limits<double>::quiet_NaN()});
  EXPECT_TRUE(SamePages(pages, Snapshot(table)));
}

TEST(TableRows, ARefusedRowLeavesNoTrace) {
  TestTable table({TextColumn("a", 255, false),
                   TextColumn("b", 255, false),
                   TextColumn("c", 255, false),
                   TextColumn("d", 255, false),
                   TextColumn("e", 255, false),
                   TextColumn("f", 255, false),
                   TextColumn("g", 255, false),
                   TextColumn("h", 255, false),
                   {"m", ColumnType::Memo}});
  RowValues values(9, std::string(255, 'x'));
  values[8] = std::string(5000, 'm');
  const RowPointer row = table.Rows().Insert(RowValues(9));
  const auto pages = Snapshot(table);
  EXPECT_TRUE(MessageOf([&] { table.Rows().Insert(values); }).starts_with("Record is too large."));
  EXPECT_TRUE(MessageOf([&] { table.Rows().Update(row, values); }).starts_with("Record is too large."));
  EXPECT_TRUE(SamePages(pages, Snapshot(table)));
  values[0] = std::int32_t{1};
  EXPECT_THROW(table.Rows().Insert(values), Error);
  EXPECT_TRUE(SamePages(pages, Snapshot(table)));
}

TEST(TableRows, TheLargestRowTakesAPageOfItsOwn) {
  TestTable table({TextColumn("a", 255, false), TextColumn("b", 255, false), TextColumn("c", 255, false),
                   TextColumn("d", 255, false), TextColumn("e", 255, false), TextColumn("f", 255, false),
                   TextColumn("g", 255, false), TextColumn("h", 255, false)});
  const RowValues values(8, std::string(252, 'x'));
  const RowPointer first = table.Rows().Insert(values);
  const RowPointer second = table.Rows().Insert(values);
  EXPECT_NE(first.page, second.page);
  EXPECT_EQ(table.Rows().Read(second), values);
  EXPECT_TRUE(UsageMap(table.File(), table.Definition().freeSpacePages).Pages().empty());
  EXPECT_TRUE(table.Faults().empty());
}

TEST(TableRows, RowsOfAnEarlierStatementAreThereAndThoseOfARolledBackOneAreNot) {
  TestTable table(kColumns);
  const RowPointer kept = table.Rows().Insert(Row(1, 10));
  table.Commit();
  for (int i = 0; i < 200; ++i) table.Rows().Insert(Row(2, 100));
  table.Rollback();
  EXPECT_EQ(table.AllRows(), std::vector<RowPointer>{kept});
  EXPECT_EQ(RowCount(table.File(), table.Definition()), 1U);
  const RowPointer next = table.Rows().Insert(Row(3, 10));
  EXPECT_EQ(table.Rows().Read(next), Row(3, 10));
  EXPECT_TRUE(table.Faults().empty());
}

TEST(TableRows, OldRowsGetTheNewColumnsWhenTheyAreWritten) {
  TestTable table({{"n", ColumnType::Long}});
  const RowPointer row = table.Rows().Insert({std::int32_t{1}});
  table.AddColumn(TextColumn("t", 50));
  table.AddColumn({"m", ColumnType::Long});
  EXPECT_EQ(table.Rows().Read(row), (RowValues{std::int32_t{1}, Null{}, Null{}}));
  const auto pages = Snapshot(table);
  table.Rows().Update(row, {std::int32_t{1}, Null{}, Null{}});
  EXPECT_TRUE(SamePages(pages, Snapshot(table)));
  table.Rows().Update(row, {std::int32_t{1}, std::string("abc"), std::int32_t{5}});
  EXPECT_EQ(table.Rows().Read(row), (RowValues{std::int32_t{1}, std::string("abc"), std::int32_t{5}}));
}

TEST(TableRows, ANewFixedColumnMayTakeThePlaceOfADroppedOne) {
  TestTable table({{"n", ColumnType::Long}, {"gone", ColumnType::Long}});
  const RowPointer row = table.Rows().Insert({std::int32_t{1}, std::int32_t{2}});
  table.DropColumn("gone");
  table.AddColumn({"m", ColumnType::Long});
  EXPECT_EQ(table.Definition().columns.back().fixedOffset, 4);
  EXPECT_EQ(table.Rows().Read(row), (RowValues{std::int32_t{1}, Null{}}));
  const RowPointer next = table.Rows().Insert({std::int32_t{3}, std::int32_t{4}});
  EXPECT_EQ(table.Rows().Read(next), (RowValues{std::int32_t{3}, std::int32_t{4}}));
}

TEST(TableRows, RemoveAllGivesEveryPageBack) {
  TestTable table({{"n", ColumnType::Long}, {"m", ColumnType::Memo}, {"o", ColumnType::Ole}});
  for (int i = 0; i < 300; ++i) table.Rows().Insert({std::int32_t{i}, std::string(200, 'm'), Bytes(5000)});
  table.Rows().RemoveAll();
  EXPECT_TRUE(table.AllRows().empty());
  EXPECT_TRUE(table.DataPages().empty());
  EXPECT_TRUE(table.LongValuePages(1).empty());
  EXPECT_TRUE(table.LongValuePages(2).empty());
  EXPECT_EQ(RowCount(table.File(), table.Definition()), 0U);
  EXPECT_TRUE(table.Faults().empty());
  const RowPointer row = table.Rows().Insert({std::int32_t{1}, std::string(200, 'm'), Null{}});
  EXPECT_EQ(table.Rows().Read(row).at(1), Value(std::string(200, 'm')));
}

TEST(TableRows, TheRowCountNeverFallsBelowZero) {
  TestTable table(kColumns);
  const RowPointer row = table.Rows().Insert(Row(1, 1));
  SetRowCount(table.File(), table.Definition(), 0);
  table.Rows().Delete(row);
  EXPECT_EQ(RowCount(table.File(), table.Definition()), 0U);
}

TEST(TableRows, PlacesThatAreNoRowDoNotExist) {
  TestTable table(kColumns);
  const RowPointer row = table.Rows().Insert(Row(1, 1));
  for (const RowPointer wrong :
       {RowPointer{}, RowPointer{0, 5}, RowPointer{row.page, 1}, RowPointer{row.page, 255}, RowPointer{1, 0},
        RowPointer{table.Definition().page, 0}, RowPointer{table.Definition().ownedPages}, RowPointer{0xFFFFFF, 0}}) {
    EXPECT_FALSE(table.Rows().Exists(wrong)) << wrong.page;
    EXPECT_THROW(static_cast<void>(table.Rows().Read(wrong)), Error) << wrong.page;
  }
}

TEST(TableRows, APageThatIsListedButNotTheTablesIsDamage) {
  TestTable table(kColumns);
  const RowPointer row = table.Rows().Insert(Row(1, 1));
  table.File().Write(row.page).SetU32(data::kOwnerOffset, 4711);
  EXPECT_NE(MessageOf([&] { static_cast<void>(table.AllRows()); }).find("is no data page of it"), std::string::npos);
}

}  // namespace
}  // namespace tavi::access::test
