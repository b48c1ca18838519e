// Statements that say what has changed in a page: what stands in the log, what it says of a page, and the images that
// stand there before a checkpoint writes the database.
#include <gtest/gtest.h>
#include <algorithm>

#include "access/file/Bytes.h"
#include "access/file/Pager.h"
#include "access/file/RedoLog.h"
#include "access/file/support/ClubPaths.h"
#include "access/file/support/FailingFileSystem.h"
#include "access/file/support/MemoryFileSystem.h"
#include "access/file/support/Random.h"
#include "access/file/support/SmallDatabase.h"
#include "platform/values/Error.h"

namespace tavi::access {
namespace {

using test::CrashKind;
using test::FailingFileSystem;
using test::kLog;
using test::kPath;
using test::MemoryFileSystem;
using test::ReadText;
using test::WriteText;
using Operation = FailingFileSystem::Operation;
using Bytes = MemoryFileSystem::Bytes;

constexpr PageNumber kPages = 16;

class RedoLogDeltaTest : public ::testing::Test {
 protected:
  RedoLogDeltaTest() {
    Pager::Create(*memory_, kPath, test::MakeSmallDatabase(kPages));
    database_ = memory_->Open(kPath, FileSystem::OpenMode::ReadWrite);
  }

  Page Stored(PageNumber number) {
    Page page(number);
    if (number < kPages) database_->ReadAt(number * kPageSize, page.AllMutable());
    return page;
  }
  PageSums SumsOf(PageNumber number) { return number < kPages ? PageSums::Of(Stored(number).All()) : PageSums{}; }
  void Append(RedoLog& log, const Page& before, const Page& after, PageNumber pageCount = kPages) {
    const StatementPage entry{after.Number(), SumsOf(after.Number()), after.All(), before.All()};
    log.Append(LogOwner::Of(*database_), {&entry, 1}, pageCount);
  }
  // Appends a statement that sets one byte of the page, which becomes what is logged.
  void SetByte(RedoLog& log, Page& page, std::size_t offset, std::uint8_t value) {
    const Page before = page;
    page.SetU8(offset, value);
    Append(log, before, page);
  }
  Page Read(RedoLog& log, PageNumber number) {
    Page page(number);
    EXPECT_NE(log.Find(number), nullptr);
    if (const LoggedPage* logged = log.Find(number)) log.ReadPage(number, *logged, *database_, page.AllMutable());
    return page;
  }
  static void ExpectSame(const Page& one, const Page& other) {
    EXPECT_TRUE(std::ranges::equal(one.All(), other.All()));
  }

  std::shared_ptr<MemoryFileSystem> memory_ = std::make_shared<MemoryFileSystem>();
  std::unique_ptr<File> database_;
  std::vector<PageNumber> changed_;
};

TEST_F(RedoLogDeltaTest, LiesInTheFileAsItsLayoutSays) {
  RedoLog log(*memory_, kPath, false);
  const Page before = Stored(6);
  Page after = before;
  after.SetU16(0x10, 0x3412);
  Append(log, before, after);
  const Bytes contents = memory_->Contents(kLog);
  const std::span<const std::uint8_t> bytes = contents;
  ASSERT_EQ(bytes.size(), 0x1E2u);
  EXPECT_EQ(std::string(bytes.begin() + 0x180, bytes.begin() + 0x184), "DLTA");
  EXPECT_EQ(GetLittle<std::uint32_t>(bytes, 0x184), 1u);
  EXPECT_EQ(GetLittle<std::uint32_t>(bytes, 0x188), 16u);
  EXPECT_EQ(GetLittle<std::uint32_t>(bytes, 0x18C), 58u);
  const auto salt = GetLittle<std::uint64_t>(bytes, 0x10);
  EXPECT_EQ(GetLittle<std::uint64_t>(bytes, 0x190), salt);
  EXPECT_EQ(GetLittle<std::uint32_t>(bytes, 0x1A0), 6u);
  const std::uint64_t sum = Checksum(0, after.All());
  EXPECT_EQ(GetLittle<std::uint32_t>(bytes, 0x1A4), static_cast<std::uint32_t>(sum ^ (sum >> 32U)));
  EXPECT_EQ(GetLittle<std::uint64_t>(bytes, 0x1A8), 0u);
  EXPECT_EQ(GetLittle<std::uint16_t>(bytes, 0x1B0), 6u);
  EXPECT_EQ(GetLittle<std::uint16_t>(bytes, 0x1B2), 3u);
  for (std::size_t i = 0; i < PageSums::kSectors; ++i)
    EXPECT_EQ(GetLittle<std::uint32_t>(bytes, 0x1B4 + 4 * i), SumsOf(6).sectors[i]);
  EXPECT_EQ(Bytes(bytes.begin() + 0x1D4, bytes.begin() + 0x1DA), (Bytes{0x10, 0, 2, 0, 0x12, 0x34}));
  EXPECT_EQ(GetLittle<std::uint64_t>(bytes, 0x1DA),
            Checksum(Checksum(salt, bytes.subspan(0x180, 0x20)), bytes.subspan(0x1A0, 58)));
}

TEST_F(RedoLogDeltaTest, ALaterDeltaOfAPageNamesTheOneBeforeAndHasNoSectorChecksums) {
  RedoLog log(*memory_, kPath, false);
  Page page = Stored(6);
  SetByte(log, page, 100, 1);
  const std::size_t second = memory_->Contents(kLog).size();
  SetByte(log, page, 100, 2);
  const Bytes bytes = memory_->Contents(kLog);
  EXPECT_EQ(bytes.size() - second, 40u + 20 + 5);
  EXPECT_EQ(GetLittle<std::uint64_t>(bytes, second + 0x28), 0x1A0u);
  EXPECT_EQ(GetLittle<std::uint16_t>(bytes, second + 0x32), 0u);
}

TEST_F(RedoLogDeltaTest, EveryReaderPutsTogetherWhatTheWriterHas) {
  RedoLog writer(*memory_, kPath, false);
  RedoLog follower(*memory_, kPath, false);
  test::Random random(1);
  std::vector<Page> pages;
  for (PageNumber number = 3; number < 8; ++number) pages.push_back(Stored(number));
  for (int statement = 0; statement < 300; ++statement) {
    Page& page = pages[random.Below(pages.size())];
    if (random.Below(40) == 0) {
      const Page before = page;
      for (std::size_t i = 0; i < kPageSize; ++i) page.SetU8(i, random.Byte());
      Append(writer, before, page);
    } else {
      SetByte(writer, page, random.Below(kPageSize), random.Byte());
    }
    if (statement % 7 != 6) continue;
    RedoLog newcomer(*memory_, kPath, true);
    static_cast<void>(newcomer.Refresh(changed_));
    static_cast<void>(follower.Refresh(changed_));
    for (RedoLog* log : {&writer, &follower, &newcomer}) {
      for (const Page& expected : pages) {
        if (writer.Find(expected.Number()) != nullptr) ExpectSame(Read(*log, expected.Number()), expected);
      }
    }
  }
}

TEST_F(RedoLogDeltaTest, ANewPageIsToldByWhatIsNotZeroInIt) {
  RedoLog log(*memory_, kPath, false);
  Page page(kPages);
  page.SetU8(3, 7);
  const StatementPage entry{kPages, {}, page.All()};
  log.Append(LogOwner::Of(*database_), {&entry, 1}, kPages + 1);
  EXPECT_LT(memory_->Contents(kLog).size(), 0x180u + 100);
  ExpectSame(Read(log, kPages), page);
}

TEST_F(RedoLogDeltaTest, AfterVeryManyDeltasThePageIsLoggedWhole) {
  RedoLog log(*memory_, kPath, false);
  Page page = Stored(6);
  for (std::uint32_t i = 0; i < log_layout::kMostDeltas; ++i) SetByte(log, page, 100, static_cast<std::uint8_t>(i + 1));
  EXPECT_EQ(log.Find(6)->imageOffset, 0u);
  ExpectSame(Read(log, 6), page);
  SetByte(log, page, 100, 99);
  EXPECT_NE(log.Find(6)->imageOffset, 0u);
  EXPECT_EQ(log.Find(6)->lastDelta, 0u);
  ExpectSame(Read(log, 6), page);
}

TEST_F(RedoLogDeltaTest, AStatementThatChangesVeryManyPagesLogsThemWhole) {
  std::vector<Page> pages;
  for (PageNumber number = kPages; number <= kPages + log_layout::kMostPagesByDeltas; ++number)
    pages.emplace_back(number);
  std::vector<StatementPage> entries;
  for (const Page& page : pages) entries.push_back({page.Number(), {}, page.All()});
  RedoLog log(*memory_, kPath, false);
  log.Append(LogOwner::Of(*database_), entries, static_cast<PageNumber>(kPages + entries.size()));
  EXPECT_EQ(memory_->Contents(kLog).size(), 0x180 + log_layout::WholePagesSize(entries.size()));
}

TEST_F(RedoLogDeltaTest, ADeltaOnAnotherBaseThanItsOwnIsRefused) {
  RedoLog log(*memory_, kPath, false);
  Page page = Stored(6);
  SetByte(log, page, 100, 1);
  Bytes changed = memory_->Contents(kPath);
  changed[6 * kPageSize + 200] ^= 1U;
  memory_->SetContents(kPath, changed);
  EXPECT_THROW(Read(log, 6), Error);
  EXPECT_FALSE(log.BelongsTo(*database_, RedoLog::Proof::Times));
}

TEST_F(RedoLogDeltaTest, AStatementWhoseDeltaDoesNotFollowItsPageDoesNotCount) {
  RedoLog log(*memory_, kPath, false);
  Page page = Stored(6);
  SetByte(log, page, 100, 1);
  const std::size_t second = memory_->Contents(kLog).size();
  SetByte(log, page, 100, 2);
  const Bytes good = memory_->Contents(kLog);
  // The offset of the delta before; the page, which has none before then.
  for (const std::size_t place : {second + 0x28, second + 0x20}) {
    Bytes bad = good;
    bad[place] ^= 1U;
    const auto statement = std::span<const std::uint8_t>(bad).subspan(second);
    const std::uint64_t chain = GetLittle<std::uint64_t>(good, second - 8);
    PutLittle<std::uint64_t>(bad, bad.size() - 8,
                             Checksum(Checksum(chain, statement.first(0x20)), statement.subspan(0x20, 25)));
    memory_->SetContents(kLog, bad);
    RedoLog reader(*memory_, kPath, false);
    static_cast<void>(reader.Refresh(changed_));
    EXPECT_EQ(reader.End(), second);
    EXPECT_EQ(Read(reader, 6).U8(100), 1);
  }
}

TEST_F(RedoLogDeltaTest, ACheckpointLogsWholePagesBeforeItTouchesTheDatabase) {
  const auto failing = std::make_shared<FailingFileSystem>(memory_);
  RedoLog log(*failing, kPath, false);
  Page page = Stored(6);
  SetByte(log, page, 100, 1);
  const Bytes before = memory_->Contents(kPath);
  const std::size_t size = memory_->Contents(kLog).size();
  const auto database = failing->Open(kPath, FileSystem::OpenMode::ReadWrite);
  // The images, the mark, the page.
  for (const std::size_t call : {0U, 1U, 2U}) {
    failing->FailCall(call, {Operation::Write}, true);
    EXPECT_THROW(log.ApplyTo(*database), Error);
    failing->FailNothing();
    EXPECT_EQ(memory_->Contents(kPath) == before, call < 2);
  }
  EXPECT_EQ(memory_->Contents(kLog).size(), size + log_layout::WholePagesSize(1));
  // The page is torn, and its image is whole, also where only what was flushed is left.
  const auto after = memory_->AfterCrash(CrashKind::Dropped, 0);
  const auto pager = Pager::Open(after, kPath, {});
  const ReadStatement statement(*pager);
  ExpectSame(*pager->Read(6), page);
}

TEST_F(RedoLogDeltaTest, AStatementAfterACheckpointThatFailedGoesOnFromItsImages) {
  const auto failing = std::make_shared<FailingFileSystem>(memory_);
  {
    const auto pager = Pager::Open(failing, kPath, {.checkpointBytes = 1});
    // The header, the statement, the images, the mark, the page.
    failing->FailCall(4, {Operation::Write}, true);
    WriteText(*pager, 3, "one");
    EXPECT_TRUE(failing->HasFailed());
    // The statement, the images, the page.
    failing->FailCall(2, {Operation::Write}, true);
    WriteText(*pager, 3, "two");
    EXPECT_TRUE(failing->HasFailed());
    failing->FailCall(0, {Operation::Write}, true);
    EXPECT_EQ(ReadText(*pager, 3), "two");
    EXPECT_EQ(ReadText(*Pager::Open(memory_->AfterCrash(CrashKind::Kept, 0), kPath, {}), 3), "two");
    for (std::uint32_t seed = 0; seed < 200; ++seed) {
      const std::string text = ReadText(*Pager::Open(memory_->AfterCrash(CrashKind::Torn, seed), kPath, {}), 3);
      EXPECT_TRUE(text == "one" || text == "two") << text;
    }
  }
}

// A log as an earlier version left it: whole pages, and that version in its header.
TEST_F(RedoLogDeltaTest, ALogOfWholePagesOfAnEarlierVersionIsAppliedAndTakesWholePagesOnly) {
  Page page = Stored(6);
  {
    RedoLog log(*memory_, kPath, false);
    test::SetPageText(page, "earlier");
    const StatementPage entry{6, SumsOf(6), page.All()};
    log.Append(LogOwner::Of(*database_), {&entry, 1}, kPages);
  }
  Bytes bytes = memory_->Contents(kLog);
  EXPECT_EQ(bytes.size(), 0x180 + log_layout::WholePagesSize(1));
  bytes[8] = 2;
  PutLittle<std::uint64_t>(bytes, 0x140, Checksum(0, std::span<const std::uint8_t>(bytes).first(0x140)));
  memory_->SetContents(kLog, bytes);
  {
    const auto memory = memory_->AfterCrash(CrashKind::Kept, 0);
    EXPECT_EQ(ReadText(*Pager::Open(memory, kPath, {}), 6), "earlier");
    EXPECT_EQ(memory->Paths(), std::vector<std::string>{kPath});
  }
  RedoLog log(*memory_, kPath, false);
  static_cast<void>(log.Refresh(changed_));
  SetByte(log, page, 100, 1);
  EXPECT_EQ(memory_->Contents(kLog).size(), 0x180 + 2 * log_layout::WholePagesSize(1));
  ExpectSame(Read(log, 6), page);
}

TEST_F(RedoLogDeltaTest, AnyBytesOfDeltasAreReadWithoutHarm) {
  RedoLog writer(*memory_, kPath, false);
  Page page = Stored(6);
  for (std::uint8_t i = 1; i < 6; ++i) SetByte(writer, page, i * 100U, i);
  const Bytes good = memory_->Contents(kLog);
  test::Random random(20);
  for (int round = 0; round < 3000; ++round) {
    Bytes bad = good;
    // The reader has taken the log in when its bytes change under it.
    RedoLog reader(*memory_, kPath, true);
    memory_->SetContents(kLog, good);
    static_cast<void>(reader.Refresh(changed_));
    for (unsigned i = 0; i < 1 + random.Below(6); ++i) bad[0x180 + random.Below(bad.size() - 0x180)] = random.Byte();
    bad.resize(random.Below(3) == 0 ? random.Below(bad.size()) : bad.size());
    memory_->SetContents(kLog, bad);
    RedoLog newcomer(*memory_, kPath, true);
    for (RedoLog* log : {&reader, &newcomer}) {
      try {
        if (log == &newcomer) static_cast<void>(log->Refresh(changed_));
        if (const LoggedPage* logged = log->Find(6)) log->ReadPage(6, *logged, *database_, page.AllMutable());
      } catch (const Error&) {
      }
    }
    EXPECT_LE(newcomer.End(), bad.size());
  }
}

}  // namespace
}  // namespace tavi::access
