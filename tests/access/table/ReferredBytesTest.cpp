// Rows that refer to bytes elsewhere, long values and the bodies of moved rows: in a damaged file thousands of rows may
// refer to the same ones.
#include <gtest/gtest.h>

#include "access/file/Bytes.h"
#include "access/file/Format.h"
#include "access/table/DataPage.h"
#include "access/table/ReferredBytes.h"
#include "access/table/RowPlaces.h"
#include "access/table/RowView.h"
#include "access/table/TableRows.h"
#include "access/table/support/TestTable.h"
#include "platform/values/Error.h"

namespace tavi::access::test {
namespace {

constexpr std::size_t kMemoColumn = 1;
constexpr std::size_t kText = 2;
constexpr std::size_t kTextLength = 200'000;

class ReferredBytesOfATable : public ::testing::Test {
 protected:
  void AddRows(std::int32_t count, const std::string& memo) {
    for (std::int32_t number = 0; number < count; ++number) table_.Rows().Insert({number, memo, std::string()});
  }
  [[nodiscard]] std::uint64_t FileSize() { return std::uint64_t{table_.File().PageCount()} * kPageSize; }

  /// Where the stored bytes of a row's memo lie.
  std::pair<PageNumber, std::size_t> PlaceOfMemo(RowPointer row) {
    const FoundRow found = *RowFinder(table_.File(), table_.Definition().page).Find(row);
    const RowView view(found.bytes, FormatVersion(), row);
    const auto stored = view.Stored(table_.Definition().columns[kMemoColumn]);
    return {found.body.page, static_cast<std::size_t>(stored.data() - found.page->All().data())};
  }
  std::uint32_t NumberAt(std::pair<PageNumber, std::size_t> place) {
    return table_.File().Read(place.first)->U32(place.second);
  }
  void PutNumber(std::pair<PageNumber, std::size_t> place, std::uint32_t number) {
    table_.File().Write(place.first).SetU32(place.second, number);
  }

  /// Makes the memos of all rows that of the first one.
  void ShareMemoOfFirstRow() {
    const std::vector<RowPointer> all = table_.AllRows();
    const auto first = PlaceOfMemo(all.front());
    const auto pointer = [](std::pair<PageNumber, std::size_t> place) {
      place.second += format::long_value::kPointerOffset;
      return place;
    };
    for (const RowPointer row : all) {
      PutNumber(pointer(PlaceOfMemo(row)), NumberAt(pointer(first)));
      PutNumber(PlaceOfMemo(row), NumberAt(first));
    }
  }

  struct Reading {
    std::size_t rows = 0;
    std::size_t refused = 0;
    std::uint64_t bytes = 0;  ///< of texts
  };
  static Reading ReadAll(const TableRows& rows) {
    Reading reading;
    rows.Walk([&](RowPointer row) {
      try {
        const RowValues values = rows.Read(row);
        reading.bytes +=
            std::get<std::string>(values[kMemoColumn]).size() + std::get<std::string>(values[kText]).size();
        ++reading.rows;
      } catch (const Error& error) {
        EXPECT_NE(error.Description().find("refers to bytes elsewhere"), std::string::npos) << error.Description();
        ++reading.refused;
      }
      return true;
    });
    return reading;
  }

  TestTable table_{{{"n", ColumnType::Long}, {"m", ColumnType::Memo}, TextColumn("t", 255, false)}};
};

TEST_F(ReferredBytesOfATable, ALongValueOfTwoRowsIsReadForBoth) {
  table_.Rows().Insert({0, std::string(kTextLength, 'm'), std::string()});
  AddRows(1, "abc");
  ShareMemoOfFirstRow();
  const Reading reading = ReadAll(TableRows(table_.File(), table_.Definition()));
  EXPECT_EQ(reading.rows, 2U);
  EXPECT_EQ(reading.refused, 0U);
}

TEST_F(ReferredBytesOfATable, ALongValueOfThousandsOfRowsIsReadAsOftenAsTwiceTheFileHolds) {
  table_.Rows().Insert({0, std::string(kTextLength, 'm'), std::string()});
  AddRows(2000, "abc");
  ShareMemoOfFirstRow();
  const TableRows rows(table_.File(), table_.Definition());
  const Reading reading = ReadAll(rows);
  EXPECT_GT(reading.rows, 1U);
  EXPECT_EQ(reading.rows + reading.refused, 2001U);
  EXPECT_LE(reading.bytes, 2 * FileSize());
  EXPECT_EQ(ReadAll(rows).rows, reading.rows) << "the same rows, however often they are read";
}

TEST_F(ReferredBytesOfATable, ABodyOfThousandsOfMovedRowsIsReadAsOftenAsTwiceTheFileHolds) {
  AddRows(5000, "");
  const std::vector<RowPointer> all = table_.AllRows();
  // More than its page has room for.
  table_.Rows().Update(all.front(), {std::int32_t{0}, std::string(), std::string(255, 't')});
  const RowPointer body = RowFinder(table_.File(), table_.Definition().page).Find(all.front())->body;
  ASSERT_NE(body, all.front());
  Bytes pointer(format::row::kRowPointerSize);
  PutLittle<std::uint32_t>(pointer, 0, body.Packed());
  for (const RowPointer row : all)
    DataPageEditor(table_.File().Write(row.page)).Replace(row.row, pointer, format::data::kRowMoved);
  const Reading reading = ReadAll(TableRows(table_.File(), table_.Definition()));
  EXPECT_EQ(reading.rows + reading.refused, 5000U);
  EXPECT_LE(reading.bytes, 2 * FileSize());
  EXPECT_GT(reading.refused, 0U);
}

TEST_F(ReferredBytesOfATable, LongValuesThatAreReplacedAndDeletedForHoursAreAlwaysRead) {
  AddRows(10, std::string(3000, 'm'));
  std::size_t length = 3000;
  for (int hour = 0; hour < 400; ++hour) {
    length = 3000 + (length * 7 + 1) % 20'000;
    const std::vector<RowPointer> all = table_.AllRows();
    table_.Rows().Update(all[static_cast<std::size_t>(hour) % all.size()],
                         {hour, std::string(length, 'n'), std::string()});
    table_.Rows().Delete(all[static_cast<std::size_t>(hour * 3 + 1) % all.size()]);
    table_.Rows().Insert({hour, std::string(length / 2, 'o'), std::string()});
    EXPECT_EQ(ReadAll(table_.Rows()).refused, 0U) << hour;
  }
}

}  // namespace
}  // namespace tavi::access::test
