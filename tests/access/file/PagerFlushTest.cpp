// Loss of power: what a flush has made durable stays, in the background or before the statement returns; a flush that
// failed is told, and nothing that comes after it counts before a checkpoint.
#include <gtest/gtest.h>

#include <utility>

#include "access/file/Pager.h"
#include "access/file/support/ClubPaths.h"
#include "access/file/support/FailingFileSystem.h"
#include "access/file/support/InterceptedFileSystem.h"
#include "access/file/support/LongRun.h"
#include "access/file/support/MemoryFileSystem.h"
#include "access/file/support/PagerFixture.h"
#include "access/file/support/Random.h"
#include "access/file/support/SmallDatabase.h"
#include "platform/values/Error.h"

namespace tavi::access {
namespace {

using test::CrashKind;
using test::FailingFileSystem;
using test::kLog;
using test::kPath;
using test::MakeSmallDatabase;
using test::MemoryFileSystem;
using test::PageText;
using test::ReadText;
using test::SetPageText;
using test::WriteText;
using Operation = FailingFileSystem::Operation;

class PagerFlushTest : public test::PagerFixture {
 protected:
  [[nodiscard]] std::string AfterPowerFailure(PageNumber number) const {
    return ReadText(*Pager::Open(memory_->AfterCrash(CrashKind::Dropped, 0), kPath, {}), number);
  }
};

TEST_F(PagerFlushTest, AStatementIsFlushedInTheBackground) {
  const auto pager = Pager::Open(memory_, kPath, {});
  WriteText(*pager, 3, "one");
  EXPECT_EQ(AfterPowerFailure(3), "page 3");
  memory_->RunBackgroundWork();
  EXPECT_EQ(AfterPowerFailure(3), "one");
}

TEST_F(PagerFlushTest, ManyStatementsAreOneFlush) {
  const auto counting = std::make_shared<FailingFileSystem>(memory_);
  const auto pager = Pager::Open(counting, kPath, {});
  counting->FailCall(1000, {Operation::Sync, Operation::SyncFolder});
  for (int i = 0; i < 20; ++i) WriteText(*pager, 3, "statement " + std::to_string(i));
  EXPECT_EQ(counting->Calls(), 0u);
  memory_->RunBackgroundWork();
  EXPECT_EQ(counting->Calls(), 2u);  // the log and, once, its name
  WriteText(*pager, 4, "more");
  memory_->RunBackgroundWork();
  EXPECT_EQ(counting->Calls(), 3u);
  EXPECT_FALSE(memory_->HasBackgroundWork());
  EXPECT_EQ(AfterPowerFailure(3), "statement 19");
}

TEST_F(PagerFlushTest, WhoReadsWritesOrRollsBackNothingFlushesNothing) {
  const auto pager = Pager::Open(memory_, kPath, {});
  EXPECT_EQ(ReadText(*pager, 3), "page 3");
  pager->BeginWrite();
  SetPageText(pager->Write(3), "never");
  pager->Rollback();
  WriteText(*pager, 3, "page 3");
  EXPECT_FALSE(memory_->HasBackgroundWork());
}

TEST_F(PagerFlushTest, AFlushThatIsAskedForIsOverWhenTheStatementReturns) {
  const auto pager = Pager::Open(memory_, kPath, {.flush = FlushTime::EachStatement});
  WriteText(*pager, 3, "one");
  EXPECT_EQ(AfterPowerFailure(3), "one");
  WriteText(*pager, 4, "two");
  EXPECT_EQ(AfterPowerFailure(4), "two");
  EXPECT_FALSE(memory_->HasBackgroundWork());
}

TEST_F(PagerFlushTest, FlushMakesAllDurableWhoeverWroteIt) {
  const auto writer = Pager::Open(memory_, kPath, {});
  const auto pager = Pager::Open(memory_, kPath, {});
  WriteText(*writer, 3, "one");
  pager->Flush();
  EXPECT_EQ(AfterPowerFailure(3), "one");
  WriteText(*pager, 4, "two");
  pager->Flush();
  EXPECT_EQ(AfterPowerFailure(4), "two");
}

TEST_F(PagerFlushTest, WhatADeadProgramLeftUnflushedIsFlushedByWhoeverTakesItIn) {
  const auto other = Pager::Open(memory_, kPath, {});
  EXPECT_EQ(ReadText(*other, 3), "page 3");
  // The writer is gone before its flush: what it asked for is never done.
  auto writer = Pager::Open(memory_, kPath, {});
  WriteText(*writer, 3, "one");
  const auto left = memory_->AfterCrash(CrashKind::Kept, 0);
  EXPECT_EQ(ReadText(*other, 3), "one");
  EXPECT_TRUE(memory_->HasBackgroundWork());
  memory_->RunBackgroundWork();
  EXPECT_EQ(AfterPowerFailure(3), "one");
  // Nobody is left: who opens the file makes it durable at once.
  const auto opened = Pager::Open(left, kPath, {});
  const auto afterwards = left->AfterCrash(CrashKind::Dropped, 0);
  EXPECT_EQ(ReadText(*Pager::Open(afterwards, kPath, {}), 3), "one");
}

TEST_F(PagerFlushTest, AFailedFlushIsTheErrorOfTheNextStatement) {
  for (const bool isRead : {false, true}) {
    const std::string text = isRead ? "one" : "another";
    const auto pager = Pager::Open(memory_, kPath, {});
    WriteText(*pager, 3, text);
    memory_->FailNextFlush(kLog, 1);
    memory_->RunBackgroundWork();
    const std::string error = FailureOf([&] {
      if (isRead) {
        static_cast<void>(ReadText(*pager, 3));
      } else {
        WriteText(*pager, 4, "two");
      }
    });
    // As all troubles of writing begin: so a recovery knows them from damage of what it reads.
    EXPECT_TRUE(error.starts_with("Could not flush")) << error;
    EXPECT_NE(error.find(kPath), std::string::npos) << error;
    EXPECT_NE(error.find("Input/output error"), std::string::npos) << error;
    EXPECT_FALSE(pager->InStatement());
    // Once: what was stored is there.
    EXPECT_EQ(ReadText(*pager, 3), text);
    EXPECT_EQ(ReadText(*pager, 4), "page 4");
    pager->Close();
    EXPECT_EQ(AfterPowerFailure(3), text);
  }
}

TEST_F(PagerFlushTest, AFailedFlushIsTheErrorOfTheCloseThatFollowsIt) {
  auto pager = Pager::Open(memory_, kPath, {});
  WriteText(*pager, 3, "one");
  memory_->FailNextFlush(kLog, 1);
  memory_->RunBackgroundWork();
  EXPECT_NE(FailureOf([&] { pager->Close(); }).find("Input/output error"), std::string::npos);
  // The close has brought it into the file all the same.
  EXPECT_EQ(memory_->Paths(), std::vector<std::string>{kPath});
  EXPECT_EQ(AfterPowerFailure(3), "one");
}

TEST_F(PagerFlushTest, AfterAFailedFlushACheckpointComesFirst) {
  for (std::uint32_t seed = 0; seed < 50; ++seed) {
    SCOPED_TRACE(seed);
    const auto pager = Pager::Open(memory_, kPath, {.flush = FlushTime::EachStatement});
    WriteText(*pager, 3, "one " + std::to_string(seed));
    memory_->FailNextFlush(kLog, seed);
    EXPECT_NE(FailureOf([&] { WriteText(*pager, 4, "two"); }), "");
    EXPECT_NE(ReadText(*pager, 4), "two");
    EXPECT_EQ(AfterPowerFailure(3), "one " + std::to_string(seed));
    WriteText(*pager, 4, "three " + std::to_string(seed));
    EXPECT_EQ(AfterPowerFailure(3), "one " + std::to_string(seed));
    EXPECT_EQ(AfterPowerFailure(4), "three " + std::to_string(seed));
    const auto bytes = memory_->Contents(kPath);
    EXPECT_NE(std::string(bytes.begin(), bytes.end()).find("one " + std::to_string(seed)), std::string::npos);
    pager->Close();
  }
}

TEST_F(PagerFlushTest, AFlushThatFailedForOneIsKnownToAll) {
  const auto other = Pager::Open(memory_, kPath, {.flush = FlushTime::EachStatement});
  for (std::uint32_t seed = 0; seed < 50; ++seed) {
    SCOPED_TRACE(seed);
    const auto pager = Pager::Open(memory_, kPath, {});
    WriteText(*pager, 3, "one " + std::to_string(seed));
    memory_->FailNextFlush(kLog, seed);
    memory_->RunBackgroundWork();
    // The other one's own flush succeeds, but says nothing about what the system has forgotten.
    WriteText(*other, 4, "two " + std::to_string(seed));
    EXPECT_EQ(AfterPowerFailure(3), "one " + std::to_string(seed));
    EXPECT_EQ(AfterPowerFailure(4), "two " + std::to_string(seed));
    EXPECT_NE(FailureOf([&] { pager->Close(); }), "");
  }
}

TEST_F(PagerFlushTest, ClosingFlushesWhatOthersHaveStored) {
  const auto other = Pager::Open(memory_, kPath, {});
  auto pager = Pager::Open(memory_, kPath, {.checkpointBytes = 1});
  WriteText(*pager, 3, "one");  // and brought into the file at once, so that nothing of it is in the log
  WriteText(*other, 4, "two");
  pager->Close();
  EXPECT_EQ(AfterPowerFailure(4), "two");
}

TEST_F(PagerFlushTest, WhoReadsWhatADeadProgramLeftFlushesItAtItsCloseAtTheLatest) {
  const auto other = Pager::Open(memory_, kPath, {});
  const auto writer = Pager::Open(memory_, kPath, {});
  const auto reader = Pager::Open(memory_, kPath, {});
  WriteText(*writer, 3, "one");
  EXPECT_EQ(ReadText(*reader, 3), "one");
  reader->Close();
  EXPECT_EQ(AfterPowerFailure(3), "one");
}

TEST_F(PagerFlushTest, AFlushThatFailedDuringAStatementOfAnotherIsKnownAtItsEnd) {
  const auto other = Pager::Open(memory_, kPath, {.flush = FlushTime::EachStatement});
  for (std::uint32_t seed = 0; seed < 50; ++seed) {
    SCOPED_TRACE(seed);
    const auto pager = Pager::Open(memory_, kPath, {});
    WriteText(*pager, 3, "one " + std::to_string(seed));
    other->BeginWrite();
    SetPageText(other->Write(4), "two " + std::to_string(seed));
    memory_->FailNextFlush(kLog, seed);
    EXPECT_NE(FailureOf([&] { pager->Flush(); }), "");
    other->Commit();
    EXPECT_EQ(AfterPowerFailure(3), "one " + std::to_string(seed));
    EXPECT_EQ(AfterPowerFailure(4), "two " + std::to_string(seed));
  }
}

// Calls `between` before the first write into the log that follows Arm.
class BusyFileSystem final : public test::InterceptedFileSystem {
 public:
  using InterceptedFileSystem::InterceptedFileSystem;
  void Arm(std::function<void()> between) { between_ = std::move(between); }
  void Before(InterceptedFileSystem::Operation operation, const std::string& path,
              const std::function<void()>& partDone) override {
    if (operation != InterceptedFileSystem::Operation::Write || path != kLog || !between_) return;
    std::exchange(between_, nullptr)();
    static_cast<void>(partDone);
  }

 private:
  std::function<void()> between_;
};

TEST_F(PagerFlushTest, MakingADoubtfulLogDurableDisturbsNobodyWhoIsAppendingToIt) {
  const auto busy = std::make_shared<BusyFileSystem>(memory_);
  const auto other = Pager::Open(memory_, kPath, {});
  const auto pager = Pager::Open(busy, kPath, {.lockTimeout = std::chrono::milliseconds(0)});
  WriteText(*pager, 3, "one");
  other->BeginWrite();
  SetPageText(other->Write(4), "two");
  memory_->FailNextFlush(kLog, 1);
  memory_->RunBackgroundWork();
  busy->Arm([&] { other->Commit(); });
  EXPECT_NE(FailureOf([&] { pager->Flush(); }), "");  // the flush that failed
  EXPECT_NE(FailureOf([&] { pager->Flush(); }), "");  // the other one is writing
  if (other->InWrite()) other->Commit();
  busy->Arm(nullptr);
  EXPECT_EQ(ReadText(*pager, 4), "two");
  pager->Flush();
  EXPECT_EQ(AfterPowerFailure(3), "one");
  EXPECT_EQ(AfterPowerFailure(4), "two");
}

TEST_F(PagerFlushTest, ACheckpointOfADoubtfulLogThatFailsLosesNothing) {
  const auto failing = std::make_shared<FailingFileSystem>(memory_);
  for (const Operation operation : {Operation::Write, Operation::Sync, Operation::Read, Operation::Truncate}) {
    for (std::size_t call = 0;; ++call) {
      SCOPED_TRACE("operation " + std::to_string(static_cast<int>(operation)) + ", call " + std::to_string(call));
      const std::string text = "one " + std::to_string(static_cast<int>(operation)) + " " + std::to_string(call);
      const auto pager = Pager::Open(failing, kPath, {});
      WriteText(*pager, 3, text);
      memory_->FailNextFlush(kLog, static_cast<std::uint32_t>(call));
      memory_->RunBackgroundWork();
      EXPECT_NE(FailureOf([&] { static_cast<void>(ReadText(*pager, 3)); }), "");
      failing->FailCall(call, {operation});
      const bool isStored = FailureOf([&] { WriteText(*pager, 4, "two"); }).empty();
      const bool hasFailed = failing->HasFailed();
      failing->FailNothing();
      EXPECT_EQ(ReadText(*pager, 3), text);
      EXPECT_EQ(ReadText(*pager, 4), isStored ? "two" : "page 4");
      WriteText(*pager, 4, "page 4");
      pager->Close();
      EXPECT_EQ(AfterPowerFailure(3), text);
      if (!hasFailed) break;
    }
  }
}

// A history of statements, flushes that succeed or fail in any part, checkpoints that do, and a loss of power at any
// time: the file has the state after some number of statements, of all that were confirmed to be durable at least.
class PowerFailures {
 public:
  explicit PowerFailures(std::uint32_t seed) : random_(seed) {
    Pager::Create(*memory_, kPath, MakeSmallDatabase(8));
    states_.push_back(StateOf(*Pager::Open(memory_, kPath, {})));
  }

  void Run() {
    Open();
    for (int step = 0; step < 40; ++step) {
      SCOPED_TRACE("step " + std::to_string(step));
      Step();
      CheckPowerFailure();
      if (::testing::Test::HasFailure()) return;
    }
  }

 private:
  using State = std::vector<std::string>;

  static State StateOf(Pager& pager) {
    const ReadStatement statement(pager);
    State state;
    for (PageNumber number = 2; number < pager.PageCount(); ++number) state.push_back(PageText(*pager.Read(number)));
    return state;
  }

  void Open() {
    PagerOptions options;
    options.checkpointBytes = 600 + random_.Below(4000);
    options.flush = random_.Below(3) == 0 ? FlushTime::EachStatement : FlushTime::Soon;
    open_.push_back(Pager::Open(memory_, kPath, options));
    isEach_.push_back(options.flush == FlushTime::EachStatement);
  }

  void Step() {
    if (open_.empty()) return Open();
    const std::size_t user = random_.Below(open_.size());
    if (random_.Below(6) == 0) {
      memory_->FailNextFlush(random_.Below(3) == 0 ? kPath : kLog, static_cast<std::uint32_t>(random_.Below(100000)));
    }
    try {
      switch (random_.Below(12)) {
        case 0:
        case 1:
          // A failure shows as the error of a later statement; nothing is confirmed by it.
          memory_->RunBackgroundWork();
          break;
        case 2:
          open_.at(user)->Flush();
          durable_ = states_.size() - 1;
          refused_.reset();
          break;
        case 3:
          Reopen(user);
          break;
        default:
          Write(user);
          break;
      }
    } catch (const Error&) {
    }
  }

  void Reopen(std::size_t user) {
    if (open_.size() == 1 && random_.Below(2) == 0) {
      Open();
      return;
    }
    try {
      open_.at(user)->Close();
    } catch (const Error&) {
    }
    open_.erase(open_.begin() + static_cast<std::ptrdiff_t>(user));
    isEach_.erase(isEach_.begin() + static_cast<std::ptrdiff_t>(user));
  }

  void Write(std::size_t user) {
    Pager& pager = *open_.at(user);
    const std::string text = "statement " + std::to_string(++statements_);
    WriteStatement statement(pager);
    State state = states_.back();
    for (int i = 0; i < 2; ++i) {
      const std::size_t place = random_.Below(state.size());
      SetPageText(pager.Write(static_cast<PageNumber>(place + 2)), text);
      state[place] = text;
    }
    if (random_.Below(5) == 0) {
      SetPageText(pager.WriteNew(pager.PageCount()), text);
      state.push_back(text);
    }
    refused_ = state;
    statement.Commit();
    refused_.reset();
    states_.push_back(state);
    if (isEach_.at(user)) durable_ = states_.size() - 1;
  }

  void CheckPowerFailure() {
    for (std::uint32_t seed = 0; seed < 3; ++seed) {
      const auto kind = seed == 0 ? CrashKind::Dropped : CrashKind::Torn;
      const auto found = memory_->AfterCrash(kind, static_cast<std::uint32_t>(random_.Below(1000000)));
      const State state = StateOf(*Pager::Open(found, kPath, {}));
      // A flush that failed may have written all the same; then a statement that was refused for it comes back.
      if (state == refused_) continue;
      const auto place = std::find(states_.begin(), states_.end(), state);
      ASSERT_NE(place, states_.end()) << ::testing::PrintToString(state);
      ASSERT_GE(static_cast<std::size_t>(place - states_.begin()), durable_) << ::testing::PrintToString(state);
    }
  }

  std::shared_ptr<MemoryFileSystem> memory_ = std::make_shared<MemoryFileSystem>();
  test::Random random_;
  std::vector<std::unique_ptr<Pager>> open_;
  std::vector<bool> isEach_;
  std::vector<State> states_;
  std::optional<State> refused_;
  std::size_t durable_ = 0;
  int statements_ = 0;
};

TEST(PowerFailure, LeavesWholeStatementsAndAllThatWereFlushedWhateverFlushesFailed) {
  const std::uint32_t first = test::SeedOr(1);
  for (std::uint32_t seed = first; seed < first + test::Lengthened(120); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    PowerFailures(seed).Run();
    if (HasFailure()) return;
  }
}

}  // namespace
}  // namespace tavi::access
