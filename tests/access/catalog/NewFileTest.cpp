#include "access/catalog/NewFile.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>

#include "access/catalog/support/TestFile.h"

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
