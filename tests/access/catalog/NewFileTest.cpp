#include <gtest/gtest.h>
#include <algorithm>
#include <array>
#include <bit>
#include <tuple>

#include "access/catalog/NewFile.h"
#include "access/catalog/support/TestFile.h"
#include "host/dump/DatabaseDump.h"

namespace tavi::access::test {
namespace {

std::uint32_t Crc32(std::span<const std::uint8_t> bytes) {
  std::uint32_t crc = 0xFFFFFFFF;
  for (const std::uint8_t byte : bytes) {
    crc ^= byte;
    for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1U) ^ ((crc & 1U) != 0 ? 0xEDB88320U : 0U);
  }
  return ~crc;
}

// A file that a real engine made at this time has these pages (but for bytes that it left undefined).
const Date kRealTime{std::bit_cast<double>(std::uint64_t{0x40E4AB3E3BD3FB4E})};
constexpr std::array<std::uint32_t, 16> kRealPages = {
    0x69AAABE6, 0xF627D4C0, 0xBB9CC2EC, 0x5A5DA9A2, 0xCC462A2A, 0xBC028C0A, 0xD2088285, 0xEAA9FDE4,
    0xF4C8CFC5, 0x589E9DA0, 0x40EF71E4, 0x5313D8FA, 0x5313D8FA, 0x5313D8FA, 0xACC06680, 0x8F1821FE};

TEST(NewFile, HasThePagesThatARealEngineWrites) {
  const std::vector<Page> pages = MakeNewFile(kRealTime, kStampOf2015);
  ASSERT_EQ(pages.size(), kRealPages.size());
  for (std::size_t i = 0; i < pages.size(); ++i) EXPECT_EQ(Crc32(pages[i].All()), kRealPages[i]) << "page " << i;
}

TEST(NewFile, IsSoundAndHasTheSystemTables) {
  TestFile file;
  file.ExpectSound();
  std::vector<std::string> names;
  const ReadStatement statement(file.Get().GetPager());
  for (const CatalogEntry& entry : file.Get().Tables()) {
    names.push_back(entry.name);
    EXPECT_TRUE(entry.isSystem);
    EXPECT_FALSE(entry.isLinked);
  }
  EXPECT_EQ(names, (std::vector<std::string>{"MSysObjects", "MSysACEs", "MSysQueries", "MSysRelationships"}));
  EXPECT_EQ(file.Get().OpenTable("msysobjects")->RowCount(), 8U);
  EXPECT_EQ(file.Get().OpenTable("MSysACEs")->RowCount(), 16U);
}

TEST(NewFile, CarriesTheTimeOfItsMaking) {
  TestFile file;
  for (const Value& value : ColumnOf(file.Get(), "MSysObjects", "DateCreate")) EXPECT_EQ(value, Value(kNow));
}

TEST(NewFile, IsSoundWithEveryStamp) {
  for (const NewFileStamp& stamp : {kStampOf2004, kStampOf2015, kStampOf2017}) {
    TemporaryFolder folder;
    const std::string path = folder.File("new.mdb");
    Pager::Create(*NativeFileSystem(), path, MakeNewFile(kNow, stamp));
    Database database(Pager::Open(NativeFileSystem(), path, {}));
    EXPECT_EQ(CheckDatabase(database, CheckKind::Strict), std::vector<std::string>());
  }
}

auto Fields(const ColumnDefinition& column) {
  return std::tuple(column.name, column.type, column.id, column.variableIndex, column.ordinal, column.sortOrder,
                    column.sortVersion, column.precision, column.scale, column.flags, column.extendedFlags,
                    column.IsFixed() ? column.fixedOffset : 0, column.length);
}

auto Fields(const RealIndexDefinition& index) {
  std::vector<std::pair<std::uint16_t, bool>> columns;
  for (const IndexColumn& column : index.columns) columns.emplace_back(column.columnId, column.ascending);
  return std::tuple(columns, index.root, index.flags, index.ownedPages);
}

auto Fields(const LogicalIndexDefinition& index) {
  return std::tuple(index.name, index.number, index.realIndex, index.kind, index.side, index.partnerNumber,
                    index.partnerTable, index.cascadeUpdates, index.cascadeDeletes);
}

template <typename Record>
void ExpectSameFields(const std::vector<Record>& made, const std::vector<Record>& sample) {
  ASSERT_EQ(made.size(), sample.size());
  for (std::size_t i = 0; i < made.size(); ++i) EXPECT_TRUE(Fields(made[i]) == Fields(sample[i])) << i;
}

void ExpectSameTable(Database& made, Database& sample, const std::string& name) {
  SCOPED_TRACE(name);
  const ReadStatement madeStatement(made.GetPager());
  const ReadStatement sampleStatement(sample.GetPager());
  const TableDefinition& left = made.OpenTable(name)->Definition();
  const TableDefinition& right = sample.OpenTable(name)->Definition();
  EXPECT_EQ(left.page, right.page);
  EXPECT_EQ(left.isSystem, right.isSystem);
  EXPECT_EQ(left.columnIdCounter, right.columnIdCounter);
  EXPECT_EQ(left.variableColumnCounter, right.variableColumnCounter);
  EXPECT_EQ(left.ownedPages, right.ownedPages);
  EXPECT_EQ(left.freeSpacePages, right.freeSpacePages);
  ExpectSameFields(left.columns, right.columns);
  ExpectSameFields(left.realIndexes, right.realIndexes);
  ExpectSameFields(left.logicalIndexes, right.logicalIndexes);
  EXPECT_EQ(left.longValueMaps.size(), right.longValueMaps.size());
  EXPECT_EQ(RowCount(made.GetPager(), left), RowCount(sample.GetPager(), right));
  EXPECT_EQ(host::TableText(made, name), host::TableText(sample, name));
}

TEST(NewFile, HasEveryFieldOfAFileThatAnotherEngineMade) {
  const std::string path = SampleFile("adox_jet4.mdb");
  if (path.empty()) GTEST_SKIP() << "the sample files are not beside this checkout";
  TestFile sample(path);
  TemporaryFolder folder;
  Pager::Create(*NativeFileSystem(), folder.File("new.mdb"), MakeNewFile(kRealTime, kStampOf2015));
  Database made(Pager::Open(NativeFileSystem(), folder.File("new.mdb"), {}));
  for (const char* table : {"MSysObjects", "MSysACEs", "MSysQueries", "MSysRelationships"})
    ExpectSameTable(made, sample.Get(), table);
  const ReadStatement madeStatement(made.GetPager());
  const ReadStatement sampleStatement(sample.Get().GetPager());
  EXPECT_EQ(made.GetPager().PageCount(), sample.Get().GetPager().PageCount());
  EXPECT_TRUE(std::ranges::equal(made.GetPager().Read(0)->All(), sample.Get().GetPager().Read(0)->All()));
}

TEST(NewFile, NeverReplacesAFile) {
  TestFile file;
  try {
    Database::CreateFile(*NativeFileSystem(), file.Path(), kNow);
    FAIL();
  } catch (const Error& error) {
    EXPECT_TRUE(error.Is(ErrorNumber::ProviderFailure));
  }
}

}  // namespace
}  // namespace tavi::access::test
