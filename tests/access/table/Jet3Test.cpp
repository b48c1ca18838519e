// Files of Access 97: their definitions, rows and long values lie elsewhere on smaller pages, their texts are ANSI.
#include <gtest/gtest.h>
#include <algorithm>
#include <memory>
#include <string>

#include "access/file/Bytes.h"
#include "access/file/DatabaseHeader.h"
#include "access/file/Format.h"
#include "access/file/support/MemoryFileSystem.h"
#include "access/table/RowView.h"
#include "access/table/TableRows.h"
#include "access/table/support/Hex.h"
#include "access/table/support/TestTable.h"
#include "platform/values/Error.h"

namespace tavi::access::test {
namespace {

using std::string_literals::operator""s;
using FileBytes = std::vector<std::uint8_t>;

namespace jet3 = format::jet3;

constexpr FormatVersion kVersion = {true, 1252};
constexpr const char* kOldFile = "old.mdb";

// ---------------------------------------------------------------------------------------------------------------------
// Rows
// ---------------------------------------------------------------------------------------------------------------------

RowValues DecodedOld(const FileBytes& bytes, const TableDefinition& definition) {
  const RowView row(bytes, kVersion, {5, 0});
  RowValues values;
  for (const ColumnDefinition& column : definition.columns) values.push_back(row.Get(column));
  return values;
}

TEST(Jet3Row, AShortRowHasOneByteOffsets) {
  const TableDefinition definition =
      PlanTable({{"n", ColumnType::Long}, TextColumn("t", 50), TextColumn("u", 50), {"b", ColumnType::Boolean}});
  const auto bytes = FromHex("04 | 07 00 00 00 | 41 E9 | 42 | 08 07 05 | 02 | 0F");
  EXPECT_EQ(DecodedOld(bytes, definition), (RowValues{std::int32_t{7}, "A\u00E9"s, "B"s, true}));
}

TEST(Jet3Row, ARowMayHaveNothingButAnEmptyText) {
  EXPECT_EQ(DecodedOld(FromHex("01 | 01 01 | 01 | 01"), PlanTable({TextColumn("t", 50)})), (RowValues{""s}));
}

TEST(Jet3Row, NullsAndColumnsThatCameLaterAreNull) {
  const TableDefinition definition =
      PlanTable({{"n", ColumnType::Long}, TextColumn("t", 50), TextColumn("u", 50), {"m", ColumnType::Long}});
  const auto bytes = FromHex("02 | 07 00 00 00 | 41 | 06 05 | 01 | 02");
  EXPECT_EQ(DecodedOld(bytes, definition), (RowValues{Null{}, "A"s, Null{}, Null{}}));
}

// A row of texts of the given lengths behind the column count, with the jump table that Access writes.
FileBytes LongRow(const std::vector<std::size_t>& lengths) {
  FileBytes row = {static_cast<std::uint8_t>(lengths.size())};
  std::vector<std::size_t> offsets = {1};
  for (std::size_t i = 0; i < lengths.size(); ++i) {
    row.insert(row.end(), lengths[i], static_cast<std::uint8_t>('a' + i));
    offsets.push_back(row.size());
  }
  const std::size_t maskSize = (lengths.size() + 7) / 8;
  const std::size_t plainSize = row.size() + offsets.size() + 1 + maskSize;
  std::size_t jumps = (plainSize - 1) / 256;
  if ((plainSize + jumps - 1) / 256 > jumps) ++jumps;
  for (auto offset = offsets.rbegin(); offset != offsets.rend(); ++offset) {
    row.push_back(static_cast<std::uint8_t>(*offset & 0xFFU));
  }
  // The first entry lies nearest to the end.
  for (std::size_t i = jumps; i-- > 0;) {
    const auto reached = std::ranges::find_if(offsets, [i](std::size_t offset) { return offset >= (i + 1) * 256; });
    const bool isReached = reached != offsets.end();
    row.push_back(isReached ? static_cast<std::uint8_t>(reached - offsets.begin()) : jet3::row::kJumpDummy);
  }
  row.push_back(static_cast<std::uint8_t>(lengths.size()));
  row.insert(row.end(), maskSize, 0xFF);
  return row;
}

TEST(Jet3Row, ALongRowHasAJumpTable) {
  for (const std::vector<std::size_t>& lengths : {std::vector<std::size_t>{100, 100, 100, 100},
                                                  {255, 255, 255, 255, 255, 255},
                                                  {0, 254, 1, 0, 1},
                                                  {248},
                                                  {249},
                                                  {250},
                                                  {251},
                                                  {252},
                                                  {253},
                                                  {254},
                                                  {10, 240},
                                                  {255, 0, 0, 0, 250},
                                                  {200, 200, 200, 200, 200, 200, 200, 200, 200}}) {
    std::vector<ColumnPlan> columns;
    RowValues expected;
    for (std::size_t i = 0; i < lengths.size(); ++i) {
      columns.push_back(TextColumn("t" + std::to_string(i), 255));
      expected.emplace_back(std::string(lengths[i], static_cast<char>('a' + i)));
    }
    EXPECT_EQ(DecodedOld(LongRow(lengths), PlanTable(columns)), expected) << lengths.size() << " texts";
  }
}

TEST(Jet3Row, DamagedRowsGiveAnAnswerOrAnError) {
  const TableDefinition definition =
      PlanTable({{"n", ColumnType::Long}, TextColumn("t", 50), TextColumn("u", 50), {"b", ColumnType::Boolean}});
  const auto whole = FromHex("04 | 07 00 00 00 | 41 E9 | 42 | 08 07 05 | 02 | 0F");
  for (std::size_t offset = 0; offset < whole.size(); ++offset) {
    for (const unsigned value : {0U, 1U, 2U, 4U, 9U, 0x40U, 0x80U, 0xFFU}) {
      auto bytes = whole;
      bytes[offset] = static_cast<std::uint8_t>(value);
      for (std::size_t length = 0; length <= bytes.size(); ++length) {
        try {
          static_cast<void>(
              DecodedOld({bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length)}, definition));
        } catch (const Error& error) {
          EXPECT_TRUE(error.Is(ErrorNumber::ProviderFailure));
        }
      }
    }
  }
}

// ---------------------------------------------------------------------------------------------------------------------
// A file
// ---------------------------------------------------------------------------------------------------------------------

constexpr PageNumber kTablePage = 6;
constexpr PageNumber kMapPage = 7;
constexpr PageNumber kDataPage = 8;
constexpr PageNumber kLongValuePage = 9;
constexpr PageNumber kPageCount = 12;

std::span<std::uint8_t> PageOf(FileBytes& file, PageNumber number) {
  return std::span(file).subspan(number * jet3::kPageSize, jet3::kPageSize);
}

void PutBytes(std::span<std::uint8_t> target, std::size_t offset, std::span<const std::uint8_t> bytes) {
  std::ranges::copy(bytes, target.begin() + static_cast<std::ptrdiff_t>(offset));
}

void MakeHeader(std::span<std::uint8_t> page) {
  PutBytes(page, 0, FromHex("00 01 00 00 53 74 61 6E 64 61 72 64 20 4A 65 74 20 44 42 00 00"));
  PutLittle(page, format::header::kCodePageOffset, std::uint16_t{1250});
  ApplyRc4(format::header::kMaskKey, page.subspan(format::header::kMaskOffset, format::header::kJet3MaskSize));
}

// Rows from the end of the page downwards.
void MakeDataPage(std::span<std::uint8_t> page, std::uint32_t owner, const std::vector<FileBytes>& rows) {
  page[0] = format::page_type::kData;
  page[1] = format::kPageMark;
  PutLittle(page, format::data::kOwnerOffset, owner);
  PutLittle(page, jet3::data::kRowCountOffset, static_cast<std::uint16_t>(rows.size()));
  std::size_t offset = jet3::kPageSize;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    offset -= rows[i].size();
    PutBytes(page, offset, rows[i]);
    PutLittle(page, jet3::data::kRowDirectoryOffset + 2 * i, static_cast<std::uint16_t>(offset));
  }
}

FileBytes InlineMap(std::initializer_list<PageNumber> members) {
  FileBytes row(jet3::usage::kRowSize);
  for (const PageNumber page : members) {
    row[format::usage::kInlineBitmapOffset + page / 8] |= static_cast<std::uint8_t>(1U << (page % 8));
  }
  return row;
}

FileBytes ColumnRecord(ColumnType type, std::uint16_t id, std::uint16_t variableIndex, std::uint8_t flags,
                       std::uint16_t length) {
  FileBytes record(jet3::column::kSize);
  record[jet3::column::kTypeOffset] = static_cast<std::uint8_t>(type);
  PutLittle(std::span(record), jet3::column::kIdOffset, id);
  PutLittle(std::span(record), jet3::column::kVariableIndexOffset, variableIndex);
  PutLittle(std::span(record), jet3::column::kOrdinalOffset, id);
  PutLittle(std::span(record), jet3::column::kSortOrderOffset, std::uint16_t{1033});
  record[jet3::column::kFlagsOffset] = flags;
  PutLittle(std::span(record), jet3::column::kLengthOffset, length);
  return record;
}

// A Long "Id", a Text "Nazwisko", a Memo "Opis"; an index on the first.
FileBytes Definition() {
  FileBytes bytes(jet3::table::kHeaderSize + jet3::index_slot::kSize);
  const std::span header(bytes);
  header[0] = format::page_type::kTableDefinition;
  header[1] = format::kPageMark;
  PutLittle(header, jet3::table::kRowCountOffset, std::uint32_t{3});
  PutLittle(header, jet3::table::kLastAutonumberOffset, std::uint32_t{12});
  header[jet3::table::kTypeOffset] = format::table::kTypeUser;
  PutLittle(header, jet3::table::kColumnIdCounterOffset, std::uint16_t{3});
  PutLittle(header, jet3::table::kVariableCountOffset, std::uint16_t{2});
  PutLittle(header, jet3::table::kColumnCountOffset, std::uint16_t{3});
  PutLittle(header, jet3::table::kLogicalIndexCountOffset, std::uint32_t{1});
  PutLittle(header, jet3::table::kRealIndexCountOffset, std::uint32_t{1});
  PutLittle(header, jet3::table::kOwnedPagesOffset, RowPointer{kMapPage, 0}.Packed());
  PutLittle(header, jet3::table::kFreeSpacePagesOffset, RowPointer{kMapPage, 1}.Packed());
  PutLittle(header, jet3::table::kHeaderSize + 4, std::uint32_t{3});
  const auto append = [&bytes](const FileBytes& part) { bytes.insert(bytes.end(), part.begin(), part.end()); };
  append(ColumnRecord(ColumnType::Long, 0, 0, 0x07, 4));
  append(ColumnRecord(ColumnType::Text, 1, 0, 0x02, 50));
  append(ColumnRecord(ColumnType::Memo, 2, 1, 0x02, 0));
  append(FromHex("02 49 64 | 08 4E 61 7A 77 69 73 6B 6F | 04 4F 70 69 B3"));
  FileBytes index =
      FromHex("00 00 01 ff ff 00 ff ff 00 ff ff 00 ff ff 00 ff ff 00 ff ff 00 ff ff 00 ff ff 00 ff ff 00");
  index.resize(jet3::real_index::kSize);
  PutLittle(std::span(index), jet3::real_index::kRootPageOffset, std::uint32_t{11});
  index[jet3::real_index::kFlagsOffset] = 0x09;
  append(index);
  FileBytes logical(jet3::logical_index::kSize);
  logical[jet3::logical_index::kTypeOffset] = format::logical_index::kTypePrimaryKey;
  append(logical);
  append(FromHex("02 50 4B | 02 00 | 02 07 00 00 | 03 07 00 00 | FF FF"));
  PutLittle(std::span(bytes), jet3::table::kLengthOffset, static_cast<std::uint32_t>(bytes.size()));
  return bytes;
}

FileBytes OldFile() {
  FileBytes file(kPageCount * jet3::kPageSize);
  MakeHeader(PageOf(file, 0));
  MakeDataPage(PageOf(file, 1), format::data::kOwnerGlobalMap, {InlineMap({}), InlineMap({})});
  PutBytes(PageOf(file, kTablePage), 0, Definition());
  MakeDataPage(PageOf(file, kMapPage), format::data::kOwnerUsageMaps,
               {InlineMap({kDataPage}), InlineMap({}), InlineMap({kLongValuePage, 10}), InlineMap({})});
  MakeDataPage(
      PageOf(file, kDataPage), kTablePage,
      {FromHex("03 | 01 00 00 00 | A3 75 | 05 00 00 80 00 00 00 00 00 00 00 00 41 42 43 44 45 | 18 07 05 | 02 | 07"),
       FromHex("03 | 02 00 00 00 | 46 00 00 40 00 09 00 00 00 00 00 00 | 11 05 05 | 02 | 05"),
       FromHex("03 | 0C 00 00 00 | B4 00 00 00 01 09 00 00 00 00 00 00 | 11 05 05 | 02 | 07")});
  FileBytes firstPart = FromHex("00 0A 00 00");
  firstPart.insert(firstPart.end(), 100, 'p');
  FileBytes lastPart = FromHex("00 00 00 00");
  lastPart.insert(lastPart.end(), 80, 'q');
  MakeDataPage(PageOf(file, kLongValuePage), format::data::kOwnerLongValues, {FileBytes(70, 'm'), firstPart});
  MakeDataPage(PageOf(file, 10), format::data::kOwnerLongValues, {lastPart});
  return file;
}

class Jet3File : public ::testing::Test {
 protected:
  Jet3File() {
    files_->SetContents(kOldFile, OldFile());
    pager_ = Pager::Open(files_, kOldFile, {});
    pager_->BeginRead();
  }

  std::shared_ptr<MemoryFileSystem> files_ = std::make_shared<MemoryFileSystem>();
  std::unique_ptr<Pager> pager_;
};

TEST_F(Jet3File, ItsDefinitionIsRead) {
  const TableDefinition definition = ReadTableDefinition(*pager_, kTablePage);
  ASSERT_EQ(definition.columns.size(), 3U);
  EXPECT_EQ(definition.columns[0].name, "Id");
  EXPECT_TRUE(definition.columns[0].IsFixed());
  EXPECT_TRUE(definition.columns[0].IsAutoNumber());
  EXPECT_EQ(definition.columns[1].name, "Nazwisko");
  EXPECT_EQ(definition.columns[1].length, 50);
  EXPECT_EQ(definition.columns[2].name, "Opi\u0142");
  EXPECT_EQ(definition.realIndexes.at(0).root, 11U);
  EXPECT_TRUE(definition.realIndexes.at(0).unique);
  EXPECT_EQ(definition.logicalIndexes.at(0).name, "PK");
  EXPECT_EQ(definition.logicalIndexes.at(0).kind, LogicalIndexDefinition::Kind::PrimaryKey);
  EXPECT_EQ(definition.longValueMaps.at(0).ownedPages, (RowPointer{kMapPage, 2}));
  EXPECT_EQ(RowCount(*pager_, definition), 3U);
  EXPECT_EQ(LastAutoNumber(*pager_, definition), 12);
  EXPECT_EQ(ReadIndexStatistics(*pager_, definition, 0).distinctKeys, 3U);
}

TEST_F(Jet3File, ItsRowsAreReadInTheCodePageOfTheFile) {
  const TableDefinition definition = ReadTableDefinition(*pager_, kTablePage);
  const TableRows rows(*pager_, definition);
  std::vector<RowValues> all;
  rows.Walk([&](RowPointer row) {
    all.push_back(rows.Read(row));
    return true;
  });
  ASSERT_EQ(all.size(), 3U);
  EXPECT_EQ(all[0], (RowValues{std::int32_t{1}, "\u0141u"s, "ABCDE"s}));
  EXPECT_EQ(all[1], (RowValues{std::int32_t{2}, Null{}, std::string(70, 'm')}));
  EXPECT_EQ(all[2], (RowValues{std::int32_t{12}, ""s, std::string(100, 'p') + std::string(80, 'q')}));
}

TEST_F(Jet3File, ItIsNotWritten) {
  pager_->EndRead();
  try {
    pager_->BeginWrite();
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_TRUE(error.Is(ErrorNumber::ProviderPermission));
  }
}

}  // namespace
}  // namespace tavi::access::test
