// Whose log it is: a log is applied to the generation of the file that it was written for and to no other, before a
// checkpoint and in the middle of one.
#include <gtest/gtest.h>

#include <algorithm>

#include "access/file/LogHeader.h"
#include "access/file/Pager.h"
#include "access/file/support/ClubPaths.h"
#include "access/file/support/CrashingFileSystem.h"
#include "access/file/support/FailingFileSystem.h"
#include "access/file/support/MemoryFileSystem.h"
#include "access/file/support/SmallDatabase.h"
#include "platform/values/Error.h"

namespace tavi::access {
namespace {

using test::CrashKind;
using test::FailingFileSystem;
using test::kAside;
using test::kLog;
using test::kPath;
using test::MakeSmallDatabase;
using test::MemoryFileSystem;
using test::ReadText;
using test::SetPageText;
using test::WriteText;
using Bytes = MemoryFileSystem::Bytes;

// A file and the log that a dead program left: page 3 says "ours" in the log, page 6 was written by the checkpoint
// before.
class LogOwnerTest : public ::testing::Test {
 protected:
  LogOwnerTest() { LeaveLog(8, {}); }

  void LeaveLog(PageNumber pages, const PagerOptions& options, bool hasTimeToRead = false, bool tellsChanges = true) {
    memory_ = std::make_shared<MemoryFileSystem>();
    if (!tellsChanges) memory_->KeepNoChangeTimes();
    Pager::Create(*memory_, kPath, MakeSmallDatabase(pages));
    oldest_ = memory_->Contents(kPath);
    WriteText(*Pager::Open(memory_, kPath, {}), 6, "a generation later");
    const auto pager = Pager::Open(memory_, kPath, options);
    WriteText(*pager, 3, "ours");
    if (hasTimeToRead) memory_->RunBackgroundWork();
    memory_ = memory_->AfterCrash(CrashKind::Kept, 0);
  }

  // The same, where a checkpoint had begun and written the first half of page 3.
  void BeginCheckpoint() {
    const auto failing = std::make_shared<FailingFileSystem>(memory_);
    auto pager = Pager::Open(failing, kPath, {.readOnly = true});
    pager.reset();
    // The images, the content where the log does not know it yet, the mark, the page.
    const auto log = memory_->Open(kLog, FileSystem::OpenMode::ReadOnly);
    failing->FailCall(LogHeader::ReadFrom(*log).Content() ? 2 : 3, {FailingFileSystem::Operation::Write}, true);
    EXPECT_EQ(ReadText(*Pager::Open(failing, kPath, {}), 3), "ours");
    memory_ = memory_->AfterCrash(CrashKind::Kept, 0);
    ASSERT_TRUE(memory_->Exists(kLog));
  }

  void ExpectApplied(const std::shared_ptr<MemoryFileSystem>& memory) {
    const auto pager = Pager::Open(memory, kPath, {});
    EXPECT_EQ(ReadText(*pager, 3), "ours");
    EXPECT_EQ(ReadText(*pager, 6), "a generation later");
    EXPECT_FALSE(memory->Exists(kAside));
  }

  // The open that meets the log fails and names both files; the next one works. Not a byte of the file changes.
  void ExpectSetAside(const std::shared_ptr<MemoryFileSystem>& memory) {
    const Bytes file = memory->Contents(kPath);
    const Bytes log = memory->Contents(kLog);
    try {
      static_cast<void>(Pager::Open(memory, kPath, {}));
      ADD_FAILURE() << "the file was opened";
    } catch (const Error& error) {
      EXPECT_NE(error.Description().find("'club.mdb'"), std::string::npos) << error.Description();
      EXPECT_NE(error.Description().find(kAside), std::string::npos) << error.Description();
    }
    EXPECT_EQ(memory->Contents(kAside), log);
    const auto pager = Pager::Open(memory, kPath, {});
    EXPECT_FALSE(memory->Exists(kLog));
    EXPECT_EQ(memory->Contents(kPath), file);
  }

  // Puts another file in the place of the database: under its name, or written over it.
  std::shared_ptr<MemoryFileSystem> With(const Bytes& content, bool isNewFile) {
    auto changed = memory_->AfterCrash(CrashKind::Kept, 0);
    if (isNewFile) {
      changed->SetContents("other", content);
      changed->Rename("other", kPath);
    } else {
      changed->SetContents(kPath, content);
    }
    return changed;
  }

  // The same as by a program that then gives the file the time that the former one had (cp --preserve, touch -r).
  std::shared_ptr<MemoryFileSystem> WithTimeKept(const Bytes& content) {
    auto changed = With(content, false);
    changed->SetStamp(kPath, memory_->Stamp(kPath));
    return changed;
  }

  std::shared_ptr<MemoryFileSystem> CopyWithLog(const Bytes& content) {
    auto copy = std::make_shared<MemoryFileSystem>();
    copy->SetContents("folder", Bytes{});  // other numbers than where it comes from
    copy->SetContents(kPath, content);
    copy->SetStamp(kPath, memory_->Stamp(kPath));
    copy->SetContents(kLog, memory_->Contents(kLog));
    return copy;
  }

  // A page changed that is neither logged nor one of those of which checksums are kept in any case.
  [[nodiscard]] Bytes WithAnotherPage5() const {
    Bytes changed = memory_->Contents(kPath);
    changed[5 * kPageSize + 100] ^= 1U;
    return changed;
  }

  std::shared_ptr<MemoryFileSystem> memory_;
  Bytes oldest_;
};

TEST_F(LogOwnerTest, TheLogOfTheFileAsItIsIsApplied) {
  ExpectApplied(memory_);
}

TEST_F(LogOwnerTest, ABackupInThePlaceOfTheFileSetsTheLogAside) {
  for (const bool isNewFile : {false, true}) ExpectSetAside(With(oldest_, isNewFile));
}

TEST_F(LogOwnerTest, AFileWithTheSameContentKeepsItsLog) {
  for (const bool hasBegun : {false, true}) {
    if (hasBegun) BeginCheckpoint();
    for (const bool isNewFile : {false, true}) ExpectApplied(With(memory_->Contents(kPath), isNewFile));
  }
}

TEST_F(LogOwnerTest, ABackupOfTheFileAsTheLogKnowsItTakesTheLogInTheMiddleOfACheckpointToo) {
  const Bytes before = memory_->Contents(kPath);
  BeginCheckpoint();
  ASSERT_NE(memory_->Contents(kPath), before);
  ExpectApplied(With(before, true));
}

TEST_F(LogOwnerTest, AFileWithOneOtherByteAnywhereSetsTheLogAside) {
  for (const bool hasBegun : {false, true}) {
    if (hasBegun) BeginCheckpoint();
    for (PageNumber page = 0; page < 8; ++page) {
      SCOPED_TRACE(page);
      // Page 0 where nothing of the format stands; some place in each sector of the others, by turns.
      for (std::size_t sector = 0; sector < 8; ++sector) {
        Bytes changed = memory_->Contents(kPath);
        changed[page * kPageSize + sector * 512 + 400 + page * 13] ^= 1U;
        ExpectSetAside(With(changed, sector % 2 == 0));
      }
    }
  }
}

TEST_F(LogOwnerTest, AFileWhoseOtherPagesHaveChangedPlacesSetsTheLogAside) {
  Bytes changed = memory_->Contents(kPath);
  std::swap_ranges(changed.begin() + 5 * kPageSize, changed.begin() + 6 * kPageSize, changed.begin() + 6 * kPageSize);
  ExpectSetAside(With(changed, false));
}

TEST_F(LogOwnerTest, ABackupInThePlaceOfAHalfWrittenFileSetsTheLogAside) {
  BeginCheckpoint();
  for (const bool isNewFile : {false, true}) ExpectSetAside(With(oldest_, isNewFile));
}

TEST_F(LogOwnerTest, AHalfWrittenCheckpointIsFinished) {
  BeginCheckpoint();
  ExpectApplied(memory_);
}

TEST_F(LogOwnerTest, AFileThatAnotherProgramChangedInAnySectorOfALoggedPageSetsTheLogAside) {
  for (const bool hasBegun : {false, true}) {
    if (hasBegun) BeginCheckpoint();
    for (std::size_t sector = 0; sector < 8; ++sector) {
      Bytes changed = memory_->Contents(kPath);
      changed[3 * kPageSize + sector * 512 + 500] ^= 0x55U;
      ExpectSetAside(With(changed, false));
    }
  }
}

TEST_F(LogOwnerTest, AnotherClubsFileSetsTheLogAside) {
  MemoryFileSystem other;
  Pager::Create(other, kPath, MakeSmallDatabase(8));
  ExpectSetAside(With(other.Contents(kPath), true));
  BeginCheckpoint();
  Bytes changed = other.Contents(kPath);
  changed[6 * kPageSize + 100] ^= 1U;
  ExpectSetAside(With(changed, true));
}

TEST_F(LogOwnerTest, AFileThatWasCopiedWithItsLogKeepsIt) {
  for (const bool hasBegun : {false, true}) {
    if (hasBegun) BeginCheckpoint();
    const auto copy = std::make_shared<MemoryFileSystem>();
    copy->SetContents("folder", Bytes{});  // other numbers than where it comes from
    copy->SetContents(kPath, memory_->Contents(kPath));
    copy->SetContents(kLog, memory_->Contents(kLog));
    ExpectApplied(copy);
  }
}

TEST_F(LogOwnerTest, AFileThatWasChangedAfterItWasCopiedWithItsLogSetsItAside) {
  for (const PageNumber page : {3U, 5U}) {
    const auto copy = std::make_shared<MemoryFileSystem>();
    copy->SetContents("folder", Bytes{});
    Bytes changed = memory_->Contents(kPath);
    changed[page * kPageSize + 100] ^= 1U;
    copy->SetContents(kPath, changed);
    copy->SetContents(kLog, memory_->Contents(kLog));
    ExpectSetAside(copy);
  }
}

TEST_F(LogOwnerTest, AnotherFileWithTheSameNumberAndTheSameTimeSetsTheLogAside) {
  ExpectSetAside(WithTimeKept(WithAnotherPage5()));
  LeaveLog(8, {}, false, false);
  ExpectSetAside(WithTimeKept(WithAnotherPage5()));
}

TEST_F(LogOwnerTest, AnotherFileWithTheSameNumberAndTheSameTimeIsNoticedWhileItIsInUse) {
  const auto pager = Pager::Open(memory_, kPath, {});
  WriteText(*pager, 3, "once more");
  const Bytes other = WithAnotherPage5();
  const std::int64_t stamp = memory_->Stamp(kPath);
  memory_->SetContents(kPath, other);
  memory_->SetStamp(kPath, stamp);
  EXPECT_THROW(static_cast<void>(ReadText(*pager, 3)), Error);
  EXPECT_TRUE(memory_->Exists(kAside));
  pager->Close();
  EXPECT_EQ(memory_->Contents(kPath), other);
}

// A file that is too large to be read when its log is begun; it was read in the background.
class LogOwnerOfLargeFileTest : public LogOwnerTest {
 protected:
  static constexpr PageNumber kPages = 200;

  LogOwnerOfLargeFileTest() : LogOwnerOfLargeFileTest(true) {}
  explicit LogOwnerOfLargeFileTest(bool hasTimeToRead) { LeaveLargeLog(hasTimeToRead); }

  void LeaveLargeLog(bool hasTimeToRead, bool tellsChanges = true) {
    LeaveLog(kPages, {.largestReadAtOnce = 0}, hasTimeToRead, tellsChanges);
  }

  [[nodiscard]] bool LogKnowsContent() const {
    return LogHeader::ReadFrom(*memory_->Open(kLog, FileSystem::OpenMode::ReadOnly)).Content().has_value();
  }
};

TEST_F(LogOwnerOfLargeFileTest, ItsLogIsAppliedToItAndToACopyMadeTogetherWithTheLog) {
  EXPECT_TRUE(LogKnowsContent());
  const auto copy = CopyWithLog(memory_->Contents(kPath));
  copy->SetStamp(kPath, 0);
  ExpectApplied(copy);
  ExpectApplied(memory_);
}

TEST_F(LogOwnerOfLargeFileTest, AFileThatWasMerelyTouchedKeepsItsLog) {
  memory_->SetStamp(kPath, memory_->Stamp(kPath) + 1);
  ExpectApplied(memory_);
}

TEST_F(LogOwnerOfLargeFileTest, AFileWithTheSameContentKeepsItsLog) {
  for (const bool isNewFile : {false, true}) ExpectApplied(With(memory_->Contents(kPath), isNewFile));
}

TEST_F(LogOwnerOfLargeFileTest, AnotherFileWithTheSameNumberAndTheSameTimeSetsTheLogAside) {
  ExpectSetAside(WithTimeKept(WithAnotherPage5()));
  LeaveLargeLog(true, false);
  ExpectSetAside(WithTimeKept(WithAnotherPage5()));
}

TEST_F(LogOwnerOfLargeFileTest, AnotherNightsFileThatWasCopiedBesideTheLogSetsItAside) {
  ExpectSetAside(CopyWithLog(WithAnotherPage5()));
}

TEST_F(LogOwnerOfLargeFileTest, ABackupInThePlaceOfAHalfWrittenFileSetsTheLogAside) {
  for (const bool hadTimeToRead : {true, false}) {
    LeaveLargeLog(hadTimeToRead);
    EXPECT_EQ(LogKnowsContent(), hadTimeToRead);
    BeginCheckpoint();
    const Bytes backup = WithAnotherPage5();
    for (const bool isNewFile : {false, true}) ExpectSetAside(With(backup, isNewFile));
    ExpectSetAside(WithTimeKept(backup));
    ExpectSetAside(CopyWithLog(backup));
  }
}

TEST_F(LogOwnerOfLargeFileTest, AHalfWrittenCheckpointIsFinishedAlsoInACopy) {
  BeginCheckpoint();
  const auto copy = CopyWithLog(memory_->Contents(kPath));
  copy->SetStamp(kPath, 0);
  ExpectApplied(copy);
  ExpectApplied(memory_);
}

// Its log's writer died before the file was read: what is known of it are its number, its times, and some pages.
class LogOwnerOfUnreadFileTest : public LogOwnerOfLargeFileTest {
 protected:
  LogOwnerOfUnreadFileTest() : LogOwnerOfLargeFileTest(false) { EXPECT_FALSE(LogKnowsContent()); }
};

TEST_F(LogOwnerOfUnreadFileTest, ItsLogIsAppliedToIt) {
  ExpectApplied(memory_);
}

TEST_F(LogOwnerOfUnreadFileTest, AnotherFileWithTheSameNumberAndTheSameTimeSetsTheLogAside) {
  ExpectSetAside(WithTimeKept(WithAnotherPage5()));
}

TEST_F(LogOwnerOfUnreadFileTest, AFileThatWasTouchedSinceOrIsAnotherSetsItsLogAside) {
  for (const bool isNewFile : {false, true}) ExpectSetAside(With(memory_->Contents(kPath), isNewFile));
  ExpectSetAside(WithTimeKept(memory_->Contents(kPath)));
  ExpectSetAside(CopyWithLog(memory_->Contents(kPath)));
}

TEST_F(LogOwnerOfUnreadFileTest, WhereTheSystemTellsOneTimeOnlyACopyIsKnownByIt) {
  LeaveLargeLog(false, false);
  ExpectApplied(CopyWithLog(memory_->Contents(kPath)));
  const auto copy = CopyWithLog(memory_->Contents(kPath));
  copy->SetStamp(kPath, memory_->Stamp(kPath) - 86'400'000'000'000);
  ExpectSetAside(copy);
  Bytes changed = memory_->Contents(kPath);
  changed[LogOwner::WitnessPage(7, changed.size()) * kPageSize + 100] ^= 1U;
  ExpectSetAside(CopyWithLog(changed));
}

TEST_F(LogOwnerTest, ALogOfAnOlderVersionIsSetAside) {
  Bytes log = memory_->Contents(kLog);
  log[8] = 1;
  memory_->SetContents(kLog, log);
  ExpectSetAside(memory_);
}

TEST_F(LogOwnerTest, ALinkInThePlaceOfTheLogIsRefused) {
  memory_->SetContents("elsewhere", memory_->Contents(kLog));
  memory_->Remove(kLog);
  memory_->AddLink(kLog, "elsewhere");
  try {
    static_cast<void>(Pager::Open(memory_, kPath, {}));
    FAIL();
  } catch (const Error& error) {
    EXPECT_NE(error.Description().find(kLog), std::string::npos) << error.Description();
    EXPECT_NE(error.Description().find("elsewhere"), std::string::npos) << error.Description();
  }
}

TEST_F(LogOwnerTest, AnotherFilesHardLinkInThePlaceOfTheLogIsRefusedAndNotWritten) {
  const Bytes database = memory_->Contents(kPath);
  for (const Bytes& content : {memory_->Contents(kLog), Bytes{}, Bytes(500, 'x')}) {
    memory_->Remove(kLog);
    memory_->SetContents("letter.txt", content);
    memory_->AddHardLink(kLog, "letter.txt");
    for (const bool readOnly : {false, true}) {
      try {
        static_cast<void>(Pager::Open(memory_, kPath, {.readOnly = readOnly}));
        ADD_FAILURE() << "the file was opened";
      } catch (const Error& error) {
        EXPECT_NE(error.Description().find(kLog), std::string::npos) << error.Description();
        EXPECT_NE(error.Description().find("2 names"), std::string::npos) << error.Description();
      }
    }
    EXPECT_EQ(memory_->Contents("letter.txt"), content);
    EXPECT_EQ(memory_->Contents(kPath), database);
    EXPECT_FALSE(memory_->Exists(kAside));
    memory_->Remove("letter.txt");
    ASSERT_NO_THROW(static_cast<void>(memory_->Contents(kLog)));
  }
}

TEST_F(LogOwnerTest, AStatementInAFileWithTwoNamesIsRefused) {
  ExpectApplied(memory_);
  const auto pager = Pager::Open(memory_, kPath, {});
  memory_->AddHardLink("other name.mdb", kPath);
  EXPECT_EQ(ReadText(*pager, 3), "ours");
  EXPECT_THROW(WriteText(*pager, 3, "hidden"), Error);
  EXPECT_THROW(WriteText(*Pager::Open(memory_, "other name.mdb", {}), 3, "hidden"), Error);
  memory_->Remove("other name.mdb");
  WriteText(*pager, 3, "seen");
  EXPECT_EQ(ReadText(*pager, 3), "seen");
}

}  // namespace
}  // namespace tavi::access
