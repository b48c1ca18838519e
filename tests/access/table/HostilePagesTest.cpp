// Every byte of the small parts of a table's pages changed, one at a time: reading and changing the table gives an
// answer or an error, never anything worse.
#include <gtest/gtest.h>
#include <functional>
#include <random>

#include "access/file/Format.h"
#include "access/table/TableRows.h"
#include "access/table/support/TestTable.h"
#include "platform/values/Error.h"

namespace tavi::access::test {
namespace {

class HostilePages : public ::testing::Test {
 protected:
  HostilePages() {
    for (std::int32_t i = 0; i < 12; ++i) {
      table_.Rows().Insert(
          {i, std::string(static_cast<std::size_t>(i) * 12, 't'), std::string(static_cast<std::size_t>(i) * 300, 'm')});
    }
    table_.Rows().Update(table_.AllRows().front(), {std::int32_t{1}, std::string(255, 'u'), std::string(9000, 'm')});
    table_.Commit();
  }

  // Does what can be done with a table; true when it went without an error.
  bool Use() {
    try {
      TableDefinition definition = ReadTableDefinition(table_.File(), table_.Definition().page);
      TableRows rows(table_.File(), definition);
      std::vector<RowPointer> all;
      rows.Walk([&](RowPointer row) {
        all.push_back(row);
        return true;
      });
      for (const RowPointer row : all) static_cast<void>(rows.Read(row));
      RowValues values(definition.columns.size());
      rows.Insert(values);
      if (!all.empty()) rows.Update(all.front(), values);
      if (!all.empty()) rows.Delete(all.back());
      return true;
    } catch (const Error& error) {
      EXPECT_FALSE(error.Description().empty());
      return false;
    }
  }

  void Damage(PageNumber page, std::size_t offset, std::uint8_t value) {
    table_.Rollback();
    table_.File().Write(page).SetU8(offset, value);
  }

  void SweepPage(PageNumber page, std::size_t begin, std::size_t end) {
    std::size_t errors = 0;
    for (std::size_t offset = begin; offset < end; ++offset) {
      const PageHandle whole = table_.File().Read(page);
      const std::uint8_t old = whole->U8(offset);
      for (const unsigned value : {old ^ 0x01U, old ^ 0xC0U, 0xFFU}) {
        Damage(page, offset, static_cast<std::uint8_t>(value));
        if (!Use()) ++errors;
      }
      table_.Rollback();
    }
    EXPECT_GT(errors, 0U);
  }

  TestTable table_{{{"n", ColumnType::Long}, TextColumn("t", 255, false), {"m", ColumnType::Memo}}};
};

TEST_F(HostilePages, EveryByteOfTheDefinition) {
  const PageHandle page = table_.File().Read(table_.Definition().page);
  SweepPage(table_.Definition().page, 0, page->U32(format::table::kLengthOffset));
}

TEST_F(HostilePages, TheHeaderAndDirectoryOfDataPages) {
  for (const PageNumber page : table_.DataPages()) SweepPage(page, 0, 48);
}

TEST_F(HostilePages, TheHeaderAndFirstRowsOfLongValuePages) {
  const std::vector<PageNumber> pages = table_.LongValuePages(2);
  SweepPage(pages.front(), 0, 32);
  SweepPage(pages.back(), 0, 32);
}

TEST_F(HostilePages, TheUsageMaps) {
  SweepPage(table_.Definition().ownedPages.page, 0, 32);
  const std::size_t rows = 4 * format::usage::kRowSize;
  SweepPage(table_.Definition().ownedPages.page, kPageSize - rows, kPageSize);
}

TEST_F(HostilePages, RandomBytesAnywhere) {
  std::mt19937 random(5);
  std::size_t errors = 0;
  for (int round = 0; round < 1000; ++round) {
    table_.Rollback();
    for (std::uint32_t i = 0; i < 1 + random() % 20; ++i) {
      const auto page = static_cast<PageNumber>(1 + random() % (table_.File().PageCount() - 1));
      const std::size_t offset = random() % 3 == 0 ? random() % 64 : random() % kPageSize;
      table_.File().Write(page).SetU8(offset, static_cast<std::uint8_t>(random()));
    }
    if (!Use()) ++errors;
  }
  EXPECT_GT(errors, 150U);
}

}  // namespace
}  // namespace tavi::access::test
