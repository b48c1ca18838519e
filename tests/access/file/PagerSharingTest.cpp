// Several users of one file: rules 1 and 5 of Pager.h, locks, other programs.
#include <gtest/gtest.h>

#include <limits>

#include "access/file/Pager.h"
#include "access/file/support/ClubPaths.h"
#include "access/file/support/FailingFileSystem.h"
#include "access/file/support/MemoryFileSystem.h"
#include "access/file/support/PagerFixture.h"
#include "access/file/support/SmallDatabase.h"
#include "platform/values/Error.h"

namespace tavi::access {
namespace {

using test::CrashKind;
using test::kAside;
using test::kLog;
using test::kPath;
using test::MakeSmallDatabase;
using test::MemoryFileSystem;
using test::PageText;
using test::ReadText;
using test::SetPageText;
using test::WriteText;

constexpr std::uint64_t kWholeFile = std::numeric_limits<std::uint64_t>::max();

class PagerSharingTest : public test::PagerFixture {
 protected:
  std::unique_ptr<Pager> Open(std::uint64_t checkpointBytes = 1U << 26U, bool readOnly = false) {
    PagerOptions options;
    options.lockTimeout = std::chrono::milliseconds(100);
    options.checkpointBytes = checkpointBytes;
    options.readOnly = readOnly;
    options.report = [this](const std::string& text) { reports_.push_back(text); };
    return Pager::Open(memory_, kPath, options);
  }

  std::vector<std::string> reports_;
};

TEST_F(PagerSharingTest, EachSeesWhatTheOtherHasCommitted) {
  const auto one = Open();
  const auto two = Open();
  EXPECT_EQ(ReadText(*two, 3), "page 3");
  for (int round = 0; round < 20; ++round) {
    WriteText(*one, 3, "one " + std::to_string(round));
    EXPECT_EQ(ReadText(*two, 3), "one " + std::to_string(round));
    WriteText(*two, 3, "two " + std::to_string(round));
    EXPECT_EQ(ReadText(*one, 3), "two " + std::to_string(round));
  }
}

TEST_F(PagerSharingTest, NewPagesOfTheOtherAreSeen) {
  const auto one = Open();
  const auto two = Open();
  {
    WriteStatement statement(*one);
    SetPageText(one->WriteNew(8), "eight");
    statement.Commit();
  }
  {
    WriteStatement statement(*two);
    EXPECT_EQ(two->PageCount(), 9u);
    EXPECT_EQ(PageText(*two->Read(8)), "eight");
    SetPageText(two->WriteNew(9), "nine");
    statement.Commit();
  }
  EXPECT_EQ(ReadText(*one, 9), "nine");
  EXPECT_EQ(one->PageCount(), 10u);
}

TEST_F(PagerSharingTest, NobodySeesAnUnfinishedStatement) {
  const auto one = Open();
  const auto two = Open();
  one->BeginWrite();
  SetPageText(one->Write(3), "half");
  SetPageText(one->WriteNew(8), "half");
  EXPECT_EQ(ReadText(*two, 3), "page 3");
  EXPECT_EQ(two->PageCount(), 8u);
  EXPECT_EQ(ReadText(*Open(), 3), "page 3");
  one->Commit();
  EXPECT_EQ(ReadText(*two, 3), "half");
  EXPECT_EQ(memory_->Paused().count(), 0);
}

TEST_F(PagerSharingTest, AReaderSeesToItsEndWhatItSawAtItsBeginning) {
  const auto writer = Open();
  const auto reader = Open();
  for (const bool isLogged : {false, true}) {
    const std::string before = ReadText(*writer, 3);
    const PageNumber count = writer->PageCount();
    {
      const ReadStatement statement(*reader);
      if (isLogged) {
        EXPECT_EQ(PageText(*reader->Read(3)), before);
      }
      for (int round = 0; round < 3; ++round) {
        WriteStatement writing(*writer);
        SetPageText(writer->Write(3), "changed meanwhile");
        SetPageText(writer->Write(4), "changed meanwhile");
        SetPageText(writer->WriteNew(writer->PageCount()), "new");
        writing.Commit();
      }
      EXPECT_EQ(reader->PageCount(), count);
      EXPECT_EQ(PageText(*reader->Read(3)), before);
      EXPECT_EQ(PageText(*reader->Read(4)), isLogged ? "changed meanwhile" : "page 4");
    }
    EXPECT_EQ(ReadText(*reader, 3), "changed meanwhile");
    EXPECT_EQ(reader->PageCount(), count + 3);
    WriteText(*writer, 3, "between");
  }
}

TEST_F(PagerSharingTest, GenerationTellsThatAnotherHasCommitted) {
  const auto one = Open();
  const auto two = Open();
  ReadText(*two, 3);
  const std::uint64_t before = two->Generation();
  ReadText(*two, 4);
  EXPECT_EQ(two->Generation(), before);
  WriteText(*one, 3, "changed");
  EXPECT_EQ(two->Generation(), before);
  ReadText(*two, 4);
  EXPECT_GT(two->Generation(), before);
}

TEST_F(PagerSharingTest, ACheckpointOfTheOtherLeavesNoStalePages) {
  // Each statement of `one` is brought into the file at once, so `two` meets another log every time.
  const auto one = Open(1);
  const auto two = Open();
  for (int round = 0; round < 20; ++round) {
    WriteText(*one, 3, "one " + std::to_string(round));
    EXPECT_EQ(ReadText(*two, 3), "one " + std::to_string(round));
    WriteText(*two, 4, "two " + std::to_string(round));
    EXPECT_EQ(ReadText(*one, 4), "two " + std::to_string(round));
  }
}

TEST_F(PagerSharingTest, CheckpointsBetweenTwoStatementsAreNoticedEvenAtTheSameLogLength) {
  const auto one = Open(1);
  const auto two = Open();
  EXPECT_EQ(ReadText(*two, 3), "page 3");
  WriteText(*one, 3, "first");
  EXPECT_EQ(ReadText(*two, 3), "first");
  WriteText(*one, 3, "second");
  WriteText(*one, 3, "third");
  EXPECT_EQ(ReadText(*two, 3), "third");
}

TEST_F(PagerSharingTest, TheOtherMayCloseAndLeaveItsPagesInTheFile) {
  auto one = Open();
  const auto two = Open();
  WriteText(*one, 3, "left");
  EXPECT_EQ(ReadText(*two, 3), "left");
  one->Close();
  EXPECT_EQ(memory_->Contents(kLog).size(), 0x180u);
  EXPECT_EQ(ReadText(*two, 3), "left");
  WriteText(*two, 3, "right");
  two->Close();
  EXPECT_FALSE(memory_->Exists(kLog));
  EXPECT_EQ(ReadText(*Open(), 3), "right");
}

TEST_F(PagerSharingTest, AReaderThatClosesLeavesTheLogToItsWriter) {
  const auto one = Open();
  const auto two = Open();
  WriteText(*one, 3, "mine");
  EXPECT_EQ(ReadText(*two, 3), "mine");
  const auto log = memory_->Contents(kLog);
  two->Close();
  EXPECT_EQ(memory_->Contents(kLog), log);
  EXPECT_EQ(ReadText(*one, 3), "mine");
}

TEST_F(PagerSharingTest, TheLastOneOutMakesTheCheckpointOfACrashedWriter) {
  const auto one = Open();
  const auto two = Open();
  WriteText(*one, 3, "first");
  WriteText(*two, 4, "second");
  two->Close();
  one->Close();
  EXPECT_EQ(memory_->Paths(), std::vector<std::string>{kPath});
  EXPECT_EQ(ReadText(*Open(), 3), "first");
  EXPECT_EQ(ReadText(*Open(), 4), "second");
}

TEST_F(PagerSharingTest, ManyInterleavedStatementsEndAsOneAfterTheOther) {
  std::vector<std::unique_ptr<Pager>> pagers;
  std::vector<std::string> model;
  for (int i = 0; i < 3; ++i) pagers.push_back(Open(40000));
  for (PageNumber number = 0; number < 8; ++number) model.push_back("page " + std::to_string(number));
  unsigned random = 1;
  const auto next = [&random](unsigned count) { return (random = random * 1103515245 + 12345) / 65536 % count; };
  for (int step = 0; step < 2000; ++step) {
    auto& pager = pagers[next(3)];
    const PageNumber number = 2 + next(static_cast<unsigned>(model.size()) - 2);
    switch (next(8)) {
      case 0:
        pager->Close();
        pager = Open(40000);
        break;
      case 1: {
        WriteStatement statement(*pager);
        ASSERT_EQ(pager->PageCount(), model.size());
        model.push_back("new " + std::to_string(step));
        SetPageText(pager->WriteNew(static_cast<PageNumber>(model.size() - 1)), model.back());
        statement.Commit();
        break;
      }
      case 2: {
        const WriteStatement statement(*pager);
        SetPageText(pager->Write(number), "rolled back");
        break;
      }
      case 3:
      case 4:
        model[number] = "text " + std::to_string(step);
        WriteText(*pager, number, model[number]);
        break;
      default:
        ASSERT_EQ(ReadText(*pager, number), model[number]) << "step " << step;
    }
  }
  pagers.clear();
  EXPECT_EQ(memory_->Paths(), std::vector<std::string>{kPath});
  const auto pager = Open();
  for (PageNumber number = 2; number < model.size(); ++number) EXPECT_EQ(ReadText(*pager, number), model[number]);
}

TEST_F(PagerSharingTest, ReadersDoNotDisturbEachOther) {
  const auto one = Open();
  const auto two = Open();
  const ReadStatement first(*one);
  const ReadStatement second(*two);
  EXPECT_EQ(PageText(*one->Read(3)), PageText(*two->Read(3)));
}

TEST_F(PagerSharingTest, AWriterDoesNotWaitForReaders) {
  const auto one = Open();
  const auto two = Open();
  const ReadStatement reading(*one);
  WriteText(*two, 3, "written");
  EXPECT_EQ(ReadText(*two, 3), "written");
  EXPECT_EQ(memory_->Paused().count(), 0);
}

TEST_F(PagerSharingTest, AWriterWaitsForAWriter) {
  const auto one = Open();
  const auto two = Open();
  one->BeginWrite();
  SetPageText(one->Write(3), "first");
  int pauses = 0;
  memory_->OnPause([&] {
    if (++pauses == 5) one->Commit();
  });
  {
    WriteStatement statement(*two);
    EXPECT_EQ(PageText(*two->Read(3)), "first");
    SetPageText(two->Write(3), "second");
    statement.Commit();
  }
  EXPECT_EQ(pauses, 5);
  EXPECT_EQ(ReadText(*one, 3), "second");
}

TEST_F(PagerSharingTest, ACheckpointIsPutOffWhileSomebodyReads) {
  const auto reader = Open();
  const auto writer = Open(1);
  const auto database = memory_->Contents(kPath);
  reader->BeginRead();
  WriteText(*writer, 3, "written");
  WriteText(*writer, 4, "written");
  EXPECT_EQ(memory_->Contents(kPath), database);
  EXPECT_EQ(PageText(*reader->Read(3)), "page 3");
  reader->EndRead();
  EXPECT_TRUE(reports_.empty());
  WriteText(*writer, 5, "written");
  EXPECT_NE(memory_->Contents(kPath), database);
  EXPECT_EQ(memory_->Contents(kLog).size(), 0x180u);
  EXPECT_EQ(ReadText(*reader, 3), "written");
}

TEST_F(PagerSharingTest, ACheckpointThatWasPutOffIsNotTriedAgainAtEveryCommit) {
  const auto reader = Open();
  const auto writer = Open(2300);
  reader->BeginRead();
  std::vector<int> waits;
  for (int round = 0; round < 60; ++round) {
    const auto before = memory_->Paused();
    WriteText(*writer, 3, "written " + std::to_string(round));
    if (memory_->Paused() > before) waits.push_back(round);
  }
  // About 2,300 bytes at first, and then another eighth each time.
  EXPECT_EQ(waits, (std::vector<int>{28, 33, 38, 43, 48, 53, 58}));
}

TEST_F(PagerSharingTest, ACheckpointWaitsALittleForReaders) {
  const auto reader = Open();
  const auto writer = Open(1);
  reader->BeginRead();
  memory_->OnPause([&] { reader->EndRead(); });
  WriteText(*writer, 3, "written");
  EXPECT_EQ(memory_->Contents(kLog).size(), 0x180u);
  EXPECT_EQ(ReadText(*reader, 3), "written");
}

TEST_F(PagerSharingTest, AWaitingCheckpointLetsNoNewReaderIn) {
  const auto reader = Open();
  const auto newcomer = Open();
  const auto writer = Open(1);
  reader->BeginRead();
  int pauses = 0;
  bool triedToEnter = false;
  memory_->OnPause([&] {
    ++pauses;
    if (pauses == 3) {
      memory_->OnPause({});
      triedToEnter = true;
      EXPECT_NE(FailureOf([&] { newcomer->BeginRead(); }), "");
      reader->EndRead();
    }
  });
  WriteText(*writer, 3, "written");
  EXPECT_TRUE(triedToEnter);
  EXPECT_EQ(memory_->Contents(kLog).size(), 0x180u);
  EXPECT_EQ(ReadText(*newcomer, 3), "written");
}

TEST_F(PagerSharingTest, AfterTheTimeoutTheErrorSaysWhoHasTheFile) {
  const auto one = Open();
  const auto two = Open();
  one->BeginWrite();
  const std::string failure = FailureOf([&] { two->BeginWrite(); });
  EXPECT_EQ(
      failure,
      "Could not use 'club.mdb'; file already in use by process 4711. It stayed locked for 100 milliseconds; try again "
      "when the other user has finished.");
  EXPECT_EQ(memory_->Paused().count(), 100);
  one->Rollback();
  WriteText(*two, 3, "now");
  WriteText(*one, 4, "and now");
}

// Symptom: a wait of ten seconds took up to sixteen, since only its pauses were counted.
TEST_F(PagerSharingTest, AWaitEndsInTimeHoweverLongEachAttemptTakes) {
  const auto one = Open();
  const auto two = Open();
  one->BeginWrite();
  const auto start = memory_->Now();
  memory_->OnPause([&] { memory_->WorkTakes(std::chrono::milliseconds(7)); });
  EXPECT_NE(FailureOf([&] { two->BeginWrite(); }), "");
  EXPECT_GE(memory_->Now() - start, std::chrono::milliseconds(100));
  EXPECT_LE(memory_->Now() - start, std::chrono::milliseconds(100 + 7));
}

TEST_F(PagerSharingTest, TheLocksOfOneOperationShareItsTime) {
  constexpr std::uint64_t kGate = std::uint64_t{1} << 31U;
  constexpr std::uint64_t kOpen = kGate + 2;
  const auto other = memory_->Open(kPath, FileSystem::OpenMode::ReadWrite);
  ASSERT_TRUE(other->TryLock(kGate, 1, File::LockKind::Exclusive));
  ASSERT_TRUE(other->TryLock(kOpen, 1, File::LockKind::Exclusive));
  memory_->OnPause([&] {
    if (memory_->Paused().count() >= 60) other->Unlock(kOpen, 1);
  });
  EXPECT_NE(FailureOf([&] { static_cast<void>(Open()); }), "");
  EXPECT_EQ(memory_->Paused().count(), 100);
}

TEST_F(PagerSharingTest, ALockOfTheWholeFileByAnotherProgramKeepsUsOut) {
  const auto pager = Open();
  const auto foreign = memory_->Open(kPath, FileSystem::OpenMode::ReadWrite);
  EXPECT_FALSE(foreign->TryLock(0, kWholeFile, File::LockKind::Exclusive));
  pager->Close();
  ASSERT_TRUE(foreign->TryLock(0, kWholeFile, File::LockKind::Exclusive));
  EXPECT_EQ(FailureOf([&] { static_cast<void>(Open()); }).substr(0, 59),
            "Could not use 'club.mdb'; file already in use by process 47");
  ASSERT_TRUE(foreign->TryLock(0, kWholeFile, File::LockKind::Shared));
  const auto reader = Open();
  EXPECT_EQ(ReadText(*reader, 3), "page 3");
  EXPECT_NE(FailureOf([&] { reader->BeginWrite(); }), "");
}

TEST_F(PagerSharingTest, AnotherDatabaseProgramIsToldByItsLockFile) {
  const auto pager = Open();
  memory_->SetContents("club.ldb", std::vector<std::uint8_t>(64));
  WriteText(*pager, 3, "a lock file left behind by a crash does not matter");
  {
    const auto foreign = memory_->Open("club.ldb", FileSystem::OpenMode::ReadWrite);
    ASSERT_TRUE(foreign->TryLock(0x10000001, 1, File::LockKind::Exclusive));
    EXPECT_EQ(FailureOf([&] { pager->BeginWrite(); }),
              "Could not use 'club.mdb'; file already in use. Another database program has it open, as its lock file "
              "'club.ldb' shows; close the database there and try again.");
    EXPECT_FALSE(pager->InStatement());
    EXPECT_EQ(ReadText(*pager, 4), "page 4");
  }
  WriteText(*pager, 3, "works again");
}

std::vector<std::uint8_t> MakeLockFile(const std::vector<std::pair<std::string, std::string>>& users) {
  std::vector<std::uint8_t> bytes(64 * users.size());
  for (std::size_t i = 0; i < users.size(); ++i) {
    std::copy(users[i].first.begin(), users[i].first.end(), bytes.begin() + static_cast<std::ptrdiff_t>(64 * i));
    std::copy(users[i].second.begin(), users[i].second.end(), bytes.begin() + static_cast<std::ptrdiff_t>(64 * i + 32));
  }
  return bytes;
}

TEST_F(PagerSharingTest, TheLockFileOfAnotherDatabaseProgramSaysWhoIsThere) {
  const auto pager = Open();
  memory_->SetContents("club.ldb", MakeLockFile({{"GONE-PC", "Admin"}, {"SCORER", "Admin"}, {"OFFICE   ", ""}}));
  const auto foreign = memory_->Open("club.ldb", FileSystem::OpenMode::ReadWrite);
  const auto users = [&] {
    const std::string text = FailureOf([&] { pager->BeginWrite(); });
    const std::size_t start = text.find('(');
    return start == std::string::npos ? "" : text.substr(start, text.find(')') + 1 - start);
  };
  ASSERT_TRUE(foreign->TryLock(0x10000002, 1, File::LockKind::Exclusive));
  EXPECT_EQ(users(), "(user Admin on computer SCORER)");
  ASSERT_TRUE(foreign->TryLock(0x10000003, 1, File::LockKind::Exclusive));
  EXPECT_EQ(users(), "(user Admin on computer SCORER, somebody on computer OFFICE)");
  // Locks that name no place: all who may be there.
  foreign->Unlock(0, kWholeFile);
  ASSERT_TRUE(foreign->TryLock(0, 1, File::LockKind::Exclusive));
  EXPECT_EQ(users(), "(user Admin on computer GONE-PC, user Admin on computer SCORER, somebody on computer OFFICE)");
}

TEST_F(PagerSharingTest, ALockFileWithUnprintableOrManyNamesIsToldInShort) {
  const auto pager = Open();
  memory_->SetContents("club.ldb", MakeLockFile({{"A\n\x80", "B\t"},
                                                 {"C", "c"},
                                                 {"D", "d"},
                                                 {"E", "e"},
                                                 {"F", "f"},
                                                 {"G", "g"},
                                                 {std::string(32, 'x'), std::string(32, 'y')}}));
  const auto foreign = memory_->Open("club.ldb", FileSystem::OpenMode::ReadWrite);
  ASSERT_TRUE(foreign->TryLock(0, 1, File::LockKind::Exclusive));
  EXPECT_NE(FailureOf([&] { pager->BeginWrite(); })
                .find("(user B? on computer A??, user c on computer C, user d on computer D, user e on computer E, "
                      "user f on computer F, ...)"),
            std::string::npos);
}

TEST_F(PagerSharingTest, WhileAnotherDatabaseProgramIsThereTheLogIsNotBroughtIn) {
  memory_->SetContents("club.ldb", {1});
  {
    const auto pager = Open();
    WriteText(*pager, 3, "logged");
    const auto database = memory_->Contents(kPath);
    const auto foreign = memory_->Open("club.ldb", FileSystem::OpenMode::ReadWrite);
    ASSERT_TRUE(foreign->TryLock(0, 1, File::LockKind::Shared));
    pager->Close();
    EXPECT_EQ(memory_->Contents(kPath), database);
    EXPECT_EQ(reports_.size(), 1u);
    const auto other = Open();
    EXPECT_EQ(ReadText(*other, 3), "logged");
    other->Close();
    EXPECT_EQ(memory_->Contents(kPath), database);
  }
  EXPECT_EQ(ReadText(*Open(), 3), "logged");
  EXPECT_FALSE(memory_->Exists(kLog));
}

TEST_F(PagerSharingTest, PagesWrittenByAnotherProgramAreNotTakenFromTheCache) {
  const auto pager = Open();
  EXPECT_EQ(ReadText(*pager, 3), "page 3");
  const std::uint64_t generation = pager->Generation();
  auto pages = MakeSmallDatabase(9);
  SetPageText(pages[3], "foreign");
  std::vector<std::uint8_t> bytes;
  for (const Page& page : pages) bytes.insert(bytes.end(), page.All().begin(), page.All().end());
  memory_->SetContents(kPath, bytes);
  EXPECT_EQ(ReadText(*pager, 3), "foreign");
  EXPECT_EQ(pager->PageCount(), 9u);
  EXPECT_GT(pager->Generation(), generation);
  WriteText(*pager, 8, "ours");
  pager->Close();
  EXPECT_EQ(ReadText(*Open(), 8), "ours");
  EXPECT_EQ(ReadText(*Open(), 3), "foreign");
}

TEST_F(PagerSharingTest, AnEmptyLogFollowsAForeignChangeOfTheFile) {
  const auto one = Open(1);
  const auto two = Open();
  WriteText(*one, 3, "brought in");
  auto bytes = memory_->Contents(kPath);
  bytes.resize(bytes.size() + kPageSize);
  memory_->SetContents(kPath, bytes);
  WriteText(*two, 4, "after the foreign change");
  memory_ = memory_->AfterCrash(CrashKind::Kept, 0);
  EXPECT_EQ(ReadText(*Open(), 4), "after the foreign change");
  EXPECT_FALSE(memory_->Exists(kAside));
}

TEST_F(PagerSharingTest, AForeignChangeUnderALiveLogSetsTheLogAside) {
  const auto one = Open();
  const auto two = Open();
  WriteText(*one, 3, "logged");
  EXPECT_EQ(ReadText(*two, 3), "logged");
  const auto log = memory_->Contents(kLog);
  auto bytes = memory_->Contents(kPath);
  bytes[3 * kPageSize + 17] = '!';
  memory_->SetContents(kPath, bytes);
  // Who meets it learns of it; then everybody goes on.
  EXPECT_THROW(static_cast<void>(ReadText(*two, 3)), Error);
  EXPECT_EQ(ReadText(*two, 3), "p!ge 3");
  EXPECT_EQ(memory_->Contents(kAside), log);
  EXPECT_EQ(ReadText(*one, 3), "p!ge 3");
  WriteText(*one, 4, "goes on");
  EXPECT_EQ(ReadText(*two, 4), "goes on");
  one->Close();
  two->Close();
  EXPECT_EQ(ReadText(*Open(), 3), "p!ge 3");
  EXPECT_EQ(ReadText(*Open(), 4), "goes on");
}

TEST_F(PagerSharingTest, AForeignChangeIsAlsoMetByAWriter) {
  const auto pager = Open();
  WriteText(*pager, 3, "logged");
  auto bytes = memory_->Contents(kPath);
  bytes[3 * kPageSize + 17] = '!';
  memory_->SetContents(kPath, bytes);
  EXPECT_THROW(WriteText(*pager, 4, "never"), Error);
  WriteText(*pager, 4, "goes on");
  EXPECT_EQ(ReadText(*pager, 3), "p!ge 3");
  EXPECT_TRUE(memory_->Exists(kAside));
  pager->Close();
  EXPECT_EQ(ReadText(*Open(), 4), "goes on");
}

TEST_F(PagerSharingTest, AForeignChangeOfOtherPagesSetsTheLogAsideToo) {
  const auto pager = Open();
  WriteText(*pager, 3, "logged");
  EXPECT_EQ(ReadText(*pager, 5), "page 5");
  auto bytes = memory_->Contents(kPath);
  bytes[5 * kPageSize + 17] = '!';
  memory_->SetContents(kPath, bytes);
  EXPECT_THROW(static_cast<void>(ReadText(*pager, 5)), Error);
  EXPECT_EQ(ReadText(*pager, 5), "p!ge 5");
  EXPECT_EQ(ReadText(*pager, 3), "page 3");
  EXPECT_TRUE(memory_->Exists(kAside));
}

TEST_F(PagerSharingTest, AReadOnlyUserSeesTheCommitsOfAWriter) {
  const auto writer = Open(1);
  const auto reader = Open(1, true);
  for (int round = 0; round < 5; ++round) {
    WriteText(*writer, 3, std::to_string(round));
    EXPECT_EQ(ReadText(*reader, 3), std::to_string(round));
  }
  const auto logging = Open();
  WriteText(*logging, 3, "in the log");
  EXPECT_EQ(ReadText(*reader, 3), "in the log");
}

TEST_F(PagerSharingTest, CloseLeavesTheLogWhenOthersKeepTheFileBusy) {
  const auto one = Open();
  const auto two = Open();
  WriteText(*one, 3, "logged");
  const auto database = memory_->Contents(kPath);
  two->BeginRead();
  one->Close();
  EXPECT_EQ(memory_->Contents(kPath), database);
  EXPECT_EQ(reports_.size(), 1u);
  EXPECT_EQ(PageText(*two->Read(3)), "logged");
  two->EndRead();
  two->Close();
  EXPECT_FALSE(memory_->Exists(kLog));
  EXPECT_EQ(ReadText(*Open(), 3), "logged");
}

}  // namespace
}  // namespace tavi::access
