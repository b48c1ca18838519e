#include <gtest/gtest.h>
#include <map>
#include <random>

#include "access/file/Format.h"
#include "access/table/DataPage.h"
#include "access/table/support/Hex.h"
#include "platform/values/Error.h"

namespace tavi::access::test {
namespace {

namespace data = format::data;

constexpr PageNumber kOwner = 23;

Page EmptyPage() {
  Page page(31);
  DataPageEditor::Format(page, kOwner);
  return page;
}

std::vector<std::uint8_t> Filled(std::size_t size, std::uint8_t byte) {
  return std::vector<std::uint8_t>(size, byte);
}

std::string RowHex(const Page& page, std::size_t row) {
  const DataPageReader reader(page, Jet4DataPageLayout());
  return ToHex(reader.Bytes(reader.Entry(row)));
}

// Three rows of 15 bytes, the middle one deleted, as Access has left them.
Page RealPage() {
  Page page(31);
  page.Put(0, FromHex("01 01 ce 0f 17 00 00 00 00 00 00 00 03 00 f1 0f f1 cf e2 0f"));
  page.Fill(0xFE2, 15, 0x22);
  page.Fill(0xFF1, 15, 0x11);
  return page;
}

TEST(DataPage, ARealPageIsRead) {
  const Page page = RealPage();
  const DataPageReader reader(page, Jet4DataPageLayout());
  ASSERT_EQ(reader.RowCount(), 3U);
  EXPECT_EQ(reader.Entry(0).offset, 0xFF1U);
  EXPECT_EQ(reader.Entry(0).length, 15U);
  EXPECT_TRUE(reader.Entry(1).IsDeleted());
  EXPECT_EQ(reader.Entry(1).length, 0U);
  EXPECT_EQ(reader.Entry(2).offset, 0xFE2U);
  EXPECT_TRUE(DataPageReader::IsOwnedBy(page, kOwner));
  EXPECT_FALSE(DataPageReader::IsOwnedBy(page, 24));
}

TEST(DataPage, DeletingTheMiddleRowGivesTheBytesThatAccessWrites) {
  Page page = EmptyPage();
  DataPageEditor editor(page);
  editor.Append(Filled(15, 0x11), data::kRowNormal);
  editor.Append(Filled(9, 0x33), data::kRowNormal);
  editor.Append(Filled(15, 0x22), data::kRowNormal);
  editor.Delete(1);
  const Page expected = RealPage();
  EXPECT_EQ(ToHex(page.Slice(0, 20)), ToHex(expected.Slice(0, 20)));
  EXPECT_EQ(ToHex(page.Slice(0xFE2, 30)), ToHex(expected.Slice(0xFE2, 30)));
}

TEST(DataPage, AnEmptyPageHas4082FreeBytes) {
  const Page page = EmptyPage();
  EXPECT_EQ(ToHex(page.Slice(0, 16)), "01 01 f2 0f 17 00 00 00 00 00 00 00 00 00 00 00");
}

TEST(DataPage, ADeletedFirstRowLiesAtTheEndOfThePage) {
  Page page = EmptyPage();
  DataPageEditor editor(page);
  editor.Append(Filled(20, 1), data::kRowNormal);
  editor.Delete(0);
  EXPECT_EQ(page.U16(data::kRowDirectoryOffset), 0xD000);
  EXPECT_TRUE(editor.HasOnlyDeletedRows());
  EXPECT_EQ(editor.FreeBytes(), 4080U);
}

TEST(DataPage, RowsBelowSlideWhenOneGrowsOrShrinks) {
  Page page = EmptyPage();
  DataPageEditor editor(page);
  for (std::uint8_t i = 0; i < 3; ++i) editor.Append(Filled(10, i), data::kRowNormal);
  editor.Replace(1, Filled(14, 9), data::kRowNormal);
  EXPECT_EQ(RowHex(page, 0), ToHex(Filled(10, 0)));
  EXPECT_EQ(RowHex(page, 1), ToHex(Filled(14, 9)));
  EXPECT_EQ(RowHex(page, 2), ToHex(Filled(10, 2)));
  editor.Replace(1, Filled(4, 8), data::kRowMoved);
  EXPECT_EQ(RowHex(page, 1), ToHex(Filled(4, 8)));
  EXPECT_EQ(RowHex(page, 2), ToHex(Filled(10, 2)));
  EXPECT_EQ(editor.FreeBytes(), 4082U - 24 - 6);
  EXPECT_EQ(page.U16(data::kFreeBytesOffset), editor.FreeBytes());
}

TEST(DataPage, APageTakesNoMoreThan255Rows) {
  Page page = EmptyPage();
  DataPageEditor editor(page);
  for (int i = 0; i < 255; ++i) {
    ASSERT_TRUE(editor.Takes(4));
    editor.Append(Filled(4, 1), data::kRowNormal);
  }
  EXPECT_FALSE(editor.Takes(4));
  editor.Delete(100);
  EXPECT_FALSE(editor.Takes(4));
  EXPECT_TRUE(editor.TakesInstead(0, 2000));
}

TEST(DataPage, ARowFillsThePageToTheLastByte) {
  Page page = EmptyPage();
  DataPageEditor editor(page);
  EXPECT_TRUE(editor.Takes(4080));
  EXPECT_FALSE(editor.Takes(4081));
  editor.Append(Filled(4080, 7), data::kRowNormal);
  EXPECT_EQ(editor.FreeBytes(), 0U);
  EXPECT_EQ(page.U16(data::kRowDirectoryOffset), 16);
}

TEST(DataPage, BytesOfRowsThatAccessDeletedAreReclaimedWhenTheyAreNeeded) {
  Page page = EmptyPage();
  DataPageEditor editor(page);
  editor.Append(Filled(2000, 1), data::kRowNormal);
  editor.Append(Filled(1500, 2), data::kRowNormal);
  editor.Append(Filled(500, 3), data::kRowNormal);
  // Only the flags are set; the bytes stay.
  const std::size_t entry = data::kRowDirectoryOffset + data::kRowEntrySize;
  page.SetU16(entry, static_cast<std::uint16_t>(page.U16(entry) | data::kRowDeleted));
  EXPECT_EQ(editor.FreeBytes(), 76U);
  EXPECT_TRUE(editor.Takes(1574));
  EXPECT_FALSE(editor.Takes(1575));
  EXPECT_TRUE(editor.TakesInstead(2, 2076));
  EXPECT_FALSE(editor.TakesInstead(2, 2077));
  editor.Append(Filled(1574, 4), data::kRowNormal);
  EXPECT_EQ(RowHex(page, 2), ToHex(Filled(500, 3)));
  EXPECT_EQ(RowHex(page, 3), ToHex(Filled(1574, 4)));
  EXPECT_EQ(editor.FreeBytes(), 0U);
}

TEST(DataPage, RoomForATypicalRowDependsOnTheRowsThatAreThere) {
  Page page = EmptyPage();
  DataPageEditor editor(page);
  EXPECT_TRUE(editor.HasRoomForTypicalRow());
  for (std::uint8_t i = 0; i < 2; ++i) editor.Append(Filled(1500, i), data::kRowNormal);
  EXPECT_FALSE(editor.HasRoomForTypicalRow());
  editor.Delete(0);
  EXPECT_TRUE(editor.HasRoomForTypicalRow());
}

TEST(DataPage, DamageIsNamed) {
  const auto message = [](std::size_t offset, std::uint16_t value) -> std::string {
    Page page = RealPage();
    page.SetU16(offset, value);
    try {
      DataPageEditor{page};
    } catch (const Error& error) {
      return error.Description();
    }
    return "no error";
  };
  EXPECT_NE(message(0, 0x0104).find("page 31 has type 4"), std::string::npos);
  EXPECT_NE(message(data::kRowCountOffset, 256).find("page 31 is said to have 256 rows"), std::string::npos);
  EXPECT_NE(message(data::kRowDirectoryOffset, 0x1001).find("row 0 of page 31 lies at bytes 4097 to 4096"),
            std::string::npos);
  EXPECT_NE(message(data::kRowDirectoryOffset + 4, 0x0010).find("row 2 of page 31"), std::string::npos);
  EXPECT_NE(message(data::kRowDirectoryOffset + 2, 0xDFF2).find("row 1 of page 31"), std::string::npos);
}

// A history of changes on one page against a map.
TEST(DataPage, ChangesInAnyOrderKeepEveryOtherRow) {
  std::mt19937 random(7);
  const auto below = [&random](std::size_t limit) { return random() % limit; };
  for (int round = 0; round < 20; ++round) {
    Page page = EmptyPage();
    DataPageEditor editor(page);
    std::map<std::size_t, std::vector<std::uint8_t>> rows;
    for (int step = 0; step < 300; ++step) {
      const auto bytes = Filled(4 + below(300), static_cast<std::uint8_t>(below(256)));
      const std::size_t kind = below(3);
      if (kind == 0 && editor.Takes(bytes.size())) {
        const std::uint8_t row = editor.Append(bytes, data::kRowNormal);
        EXPECT_FALSE(rows.contains(row));
        rows[row] = bytes;
      } else if (!rows.empty()) {
        const auto at = std::next(rows.begin(), static_cast<std::ptrdiff_t>(below(rows.size())));
        const auto row = static_cast<std::uint8_t>(at->first);
        if (kind == 1) {
          editor.Delete(row);
          rows.erase(at);
        } else if (editor.TakesInstead(row, bytes.size())) {
          editor.Replace(row, bytes, data::kRowNormal);
          at->second = bytes;
        }
      }
    }
    for (const auto& [row, bytes] : rows) EXPECT_EQ(RowHex(page, row), ToHex(bytes));
    EXPECT_EQ(page.U16(data::kFreeBytesOffset), editor.FreeBytes());
  }
}

}  // namespace
}  // namespace tavi::access::test
