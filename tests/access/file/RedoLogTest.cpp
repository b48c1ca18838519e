// The layout of the redo log, as LogLayout.h describes it, and what its reader makes of a hostile one.
#include <gtest/gtest.h>

#include "access/file/Bytes.h"
#include "access/file/RedoLog.h"
#include "access/file/support/ClubPaths.h"
#include "access/file/support/MemoryFileSystem.h"
#include "access/file/support/Random.h"
#include "access/file/support/SmallDatabase.h"
#include "platform/values/Error.h"

namespace tavi::access {
namespace {

using test::kLog;
using test::kPath;
using test::MemoryFileSystem;

LogOwner MakeOwner() {
  LogOwner owner;
  owner.size = 16 * kPageSize;
  owner.times.written = 0x1122334455667788;
  owner.fileNumber = 6699;
  owner.contentSum = 0x99AABBCCDDEEFF00;
  for (std::uint32_t i = 0; i < LogOwner::kWitnesses; ++i) owner.witnesses[i] = 100 + i;
  return owner;
}
const LogOwner kOwner = MakeOwner();

// Sums of a page that the database has.
PageSums Sums(std::uint32_t first) {
  PageSums sums;
  sums.isInDatabase = true;
  for (std::uint32_t i = 0; i < PageSums::kSectors; ++i) sums.sectors[i] = first + i;
  return sums;
}

class RedoLogTest : public ::testing::Test {
 protected:
  static Page PageOf(PageNumber number, std::uint8_t fill) {
    Page page(number);
    page.Fill(0, kPageSize, fill);
    return page;
  }
  static void Append(RedoLog& log, const Page& page, std::uint32_t before, PageNumber pageCount = 16) {
    const StatementPage entry{page.Number(), Sums(before), page.All()};
    log.Append(kOwner, {&entry, 1}, pageCount);
  }
  std::span<const std::uint8_t> Bytes() {
    bytes_ = memory_.Contents(kLog);
    return bytes_;
  }

  MemoryFileSystem memory_;
  std::vector<std::uint8_t> bytes_;
  std::vector<PageNumber> changed_;
};

TEST_F(RedoLogTest, LiesInTheFileAsItsLayoutSays) {
  RedoLog log(memory_, kPath, false);
  Append(log, PageOf(6, 0xAB), 0x04030201);
  const auto bytes = Bytes();
  ASSERT_EQ(bytes.size(), 0x11D0u);
  EXPECT_EQ(std::string(bytes.begin(), bytes.begin() + 8), "TAVIREDO");
  EXPECT_EQ(GetLittle<std::uint32_t>(bytes, 0x08), 3u);
  EXPECT_EQ(GetLittle<std::uint32_t>(bytes, 0x0C), 4096u);
  const auto salt = GetLittle<std::uint64_t>(bytes, 0x10);
  EXPECT_NE(salt, 0u);
  EXPECT_EQ(GetLittle<std::uint64_t>(bytes, 0x18), 65536u);
  EXPECT_EQ(GetLittle<std::uint64_t>(bytes, 0x20), 0x1122334455667788u);
  EXPECT_EQ(GetLittle<std::uint64_t>(bytes, 0x28), 6699u);
  EXPECT_EQ(GetLittle<std::uint64_t>(bytes, 0x30),
            memory_.Open(kLog, FileSystem::OpenMode::ReadOnly)->Identity().number);
  EXPECT_EQ(GetLittle<std::uint64_t>(bytes, 0x38), 0x99AABBCCDDEEFF00);
  for (std::uint32_t i = 0; i < 64; ++i) EXPECT_EQ(GetLittle<std::uint32_t>(bytes, 0x40 + 4 * i), 100 + i);
  EXPECT_EQ(GetLittle<std::uint64_t>(bytes, 0x140), Checksum(0, bytes.first(0x140)));
  for (std::size_t i = 0x148; i < 0x180; ++i) EXPECT_EQ(bytes[i], 0) << i;
  EXPECT_EQ(std::string(bytes.begin() + 0x180, bytes.begin() + 0x184), "STMT");
  EXPECT_EQ(GetLittle<std::uint32_t>(bytes, 0x184), 1u);
  EXPECT_EQ(GetLittle<std::uint32_t>(bytes, 0x188), 16u);
  EXPECT_EQ(GetLittle<std::uint64_t>(bytes, 0x190), salt);
  EXPECT_EQ(GetLittle<std::uint32_t>(bytes, 0x1A0), 6u);
  EXPECT_EQ(GetLittle<std::uint32_t>(bytes, 0x1A4), 1u);
  for (std::uint32_t i = 0; i < 8; ++i) EXPECT_EQ(GetLittle<std::uint32_t>(bytes, 0x1A8 + 4 * i), 0x04030201u + i);
  EXPECT_EQ(bytes[0x1C8], 0xAB);
  EXPECT_EQ(bytes[0x11C7], 0xAB);
  std::uint64_t checksum = Checksum(salt, bytes.subspan(0x180, 0x20));
  checksum = Checksum(checksum, bytes.subspan(0x1A0, 0x28));
  checksum = Checksum(checksum, bytes.subspan(0x1C8, kPageSize));
  EXPECT_EQ(GetLittle<std::uint64_t>(bytes, 0x11C8), checksum);
}

TEST_F(RedoLogTest, StatementsAreChained) {
  RedoLog log(memory_, kPath, false);
  Append(log, PageOf(6, 1), 5);
  Append(log, PageOf(7, 2), 5);
  const auto bytes = Bytes();
  EXPECT_EQ(GetLittle<std::uint64_t>(bytes, 0x11D0 + 0x10), GetLittle<std::uint64_t>(bytes, 0x11C8));
}

TEST_F(RedoLogTest, AnotherReaderTakesInWhatIsNew) {
  Pager::Create(memory_, kPath, test::MakeSmallDatabase(16));
  const auto database = memory_.Open(kPath, FileSystem::OpenMode::ReadOnly);
  RedoLog writer(memory_, kPath, false);
  RedoLog reader(memory_, kPath, false);
  EXPECT_EQ(reader.Refresh(changed_), RedoLog::Change::None);
  EXPECT_FALSE(reader.HasFile());
  Append(writer, PageOf(6, 1), 5);
  EXPECT_EQ(reader.Refresh(changed_), RedoLog::Change::Replaced);
  EXPECT_EQ(reader.PageCount(), 16u);
  EXPECT_EQ(reader.Refresh(changed_), RedoLog::Change::None);
  changed_.clear();
  Append(writer, PageOf(6, 2), 99, 17);
  Append(writer, PageOf(9, 3), 7, 18);
  EXPECT_EQ(reader.Refresh(changed_), RedoLog::Change::Statements);
  EXPECT_EQ(changed_, (std::vector<PageNumber>{6, 9}));
  EXPECT_EQ(reader.PageCount(), 18u);
  ASSERT_NE(reader.Find(6), nullptr);
  EXPECT_EQ(reader.Find(6)->before, Sums(5));
  EXPECT_EQ(reader.Find(7), nullptr);
  Page page(6);
  reader.ReadPage(6, *reader.Find(6), *database, page.AllMutable());
  EXPECT_EQ(page.U8(100), 2);
  EXPECT_EQ(writer.Refresh(changed_), RedoLog::Change::None);
}

TEST_F(RedoLogTest, ResetMakesAnotherLogOfIt) {
  RedoLog writer(memory_, kPath, false);
  RedoLog reader(memory_, kPath, false);
  Append(writer, PageOf(6, 1), 5);
  static_cast<void>(reader.Refresh(changed_));
  const auto salt = GetLittle<std::uint64_t>(Bytes(), 0x10);
  writer.Reset(kOwner);
  EXPECT_EQ(memory_.Contents(kLog).size(), 0x180u);
  EXPECT_NE(GetLittle<std::uint64_t>(Bytes(), 0x10), salt);
  Append(writer, PageOf(7, 2), 5);
  EXPECT_EQ(reader.Refresh(changed_), RedoLog::Change::Replaced);
  EXPECT_EQ(reader.Find(6), nullptr);
  EXPECT_NE(reader.Find(7), nullptr);
}

TEST_F(RedoLogTest, StaleStatementsOfAnOlderLogAreNeverTakenForNew) {
  RedoLog old(memory_, kPath, false);
  Append(old, PageOf(6, 1), 5);
  Append(old, PageOf(7, 1), 5);
  const auto stale = memory_.Contents(kLog);
  old.Reset(kOwner);
  Append(old, PageOf(6, 2), 5);
  // As if the file system had kept the end of the old file.
  auto mixed = memory_.Contents(kLog);
  mixed.insert(mixed.end(), stale.begin() + static_cast<std::ptrdiff_t>(mixed.size()), stale.end());
  memory_.SetContents(kLog, mixed);
  RedoLog reader(memory_, kPath, false);
  static_cast<void>(reader.Refresh(changed_));
  EXPECT_EQ(changed_, std::vector<PageNumber>{6});
  EXPECT_EQ(reader.End(), 0x11D0u);
}

TEST_F(RedoLogTest, AppendingWritesOverATornEnd) {
  {
    RedoLog log(memory_, kPath, false);
    Append(log, PageOf(6, 1), 5);
  }
  auto torn = memory_.Contents(kLog);
  torn.insert(torn.end(), 5000, 0x53);
  memory_.SetContents(kLog, torn);
  RedoLog log(memory_, kPath, false);
  static_cast<void>(log.Refresh(changed_));
  Append(log, PageOf(7, 2), 5);
  EXPECT_EQ(memory_.Contents(kLog).size(), 0x11D0u + 0x1050u);
}

TEST_F(RedoLogTest, AStatementThatNamesAPagePastItsEndDoesNotCount) {
  RedoLog writer(memory_, kPath, false);
  Append(writer, PageOf(16, 1), 5, 16);
  RedoLog reader(memory_, kPath, false);
  static_cast<void>(reader.Refresh(changed_));
  EXPECT_FALSE(reader.HasStatements());
}

TEST_F(RedoLogTest, ApplyingMarksTheLogBeforeItTouchesTheDatabase) {
  Pager::Create(memory_, kPath, test::MakeSmallDatabase(16));
  const auto database = memory_.Open(kPath, FileSystem::OpenMode::ReadWrite);
  RedoLog log(memory_, kPath, false);
  const Page page = PageOf(6, 0xEE);
  Page old(6);
  database->ReadAt(6 * kPageSize, old.AllMutable());
  const StatementPage entry{6, PageSums::Of(old.All()), page.All()};
  log.Append(LogOwner::Of(*database), {&entry, 1}, 16);
  EXPECT_TRUE(log.BelongsTo(*database, RedoLog::Proof::Times));
  log.ApplyTo(*database);
  EXPECT_EQ(memory_.Contents(kPath)[6 * kPageSize], 0xEE);
  const auto bytes = Bytes();
  EXPECT_EQ(GetLittle<std::uint64_t>(bytes, 0x148), 0x11D0u);
  EXPECT_EQ(GetLittle<std::uint64_t>(bytes, 0x150),
            Checksum(GetLittle<std::uint64_t>(bytes, 0x10), bytes.subspan(0x148, 8)));
  EXPECT_EQ(GetLittle<std::uint64_t>(bytes, 0x158),
            Checksum(GetLittle<std::uint64_t>(bytes, 0x10), bytes.subspan(0x148, 16)));
  // What is applied does not count any more.
  EXPECT_EQ(log.Refresh(changed_), RedoLog::Change::Replaced);
  EXPECT_FALSE(log.HasStatements());
  // Before that its old pages may be gone, but the mark says why.
  auto applying = memory_.Contents(kLog);
  std::fill(applying.begin() + 0x158, applying.begin() + 0x160, std::uint8_t{0});
  memory_.SetContents(kLog, applying);
  RedoLog other(memory_, kPath, false);
  static_cast<void>(other.Refresh(changed_));
  EXPECT_TRUE(other.HasStatements());
  EXPECT_TRUE(other.BelongsTo(*database, RedoLog::Proof::Times));
  // Without the mark it is a log of another state.
  auto unmarked = memory_.Contents(kLog);
  std::fill(unmarked.begin() + 0x148, unmarked.begin() + 0x160, std::uint8_t{0});
  memory_.SetContents(kLog, unmarked);
  RedoLog third(memory_, kPath, false);
  static_cast<void>(third.Refresh(changed_));
  EXPECT_TRUE(third.HasStatements());
  EXPECT_FALSE(third.BelongsTo(*database, RedoLog::Proof::Times));
}

TEST_F(RedoLogTest, AnyBytesAreReadWithoutHarm) {
  RedoLog writer(memory_, kPath, false);
  Append(writer, PageOf(6, 1), 5);
  Append(writer, PageOf(7, 2), 5);
  const auto good = memory_.Contents(kLog);
  test::Random random(20);
  for (int round = 0; round < 3000; ++round) {
    auto bad = good;
    for (unsigned i = 0; i < 1 + random.Below(6); ++i) {
      // Mostly in the headers, where lengths and counts are.
      const std::size_t place = random.Below(2) == 0 ? random.Below(0x1C8) : 0x11D0 + random.Below(0x48);
      bad[place] = random.Byte();
    }
    bad.resize(random.Below(3) == 0 ? random.Below(bad.size()) : bad.size());
    memory_.SetContents(kLog, bad);
    RedoLog reader(memory_, kPath, false);
    try {
      static_cast<void>(reader.Refresh(changed_));
    } catch (const Error&) {
    }
    EXPECT_LE(reader.End(), bad.size());
  }
}

}  // namespace
}  // namespace tavi::access
