// Rules 3 and 4 of Pager.h: the machine stops at every single operation, in the middle of it or before it, and what had
// not been flushed is kept, dropped or torn. What is found afterwards is the state after some whole number of
// statements: all finished ones when only the process died, at least those up to the last close or flush when the power
// went.
#include <gtest/gtest.h>

#include <optional>

#include "access/file/Pager.h"
#include "access/file/support/ClubPaths.h"
#include "access/file/support/CrashingFileSystem.h"
#include "access/file/support/MemoryFileSystem.h"
#include "access/file/support/SmallDatabase.h"
#include "platform/values/Error.h"

namespace tavi::access {
namespace {

using test::CrashingFileSystem;
using test::CrashKind;
using test::kPath;
using test::MakeSmallDatabase;
using test::MemoryFileSystem;
using test::PageText;
using test::ReadText;
using test::SetPageText;
using test::SimulatedCrash;

using State = std::vector<std::string>;  // the texts of pages 2, 3, ..., with what page 2 is filled with

constexpr std::size_t kFilled = 100;  // from here on

std::uint8_t FillByte(std::size_t at, int statement) {
  return static_cast<std::uint8_t>(at * 7 + static_cast<std::size_t>(statement) * 31);
}

// What fills page 2 after the statement; nothing at first.
std::string FillOf(int statement) {
  return statement == 0 ? "" : ", filled by " + std::to_string(statement);
}

std::string FillOf(const Page& page) {
  for (int statement = 0; statement <= 100; statement += 5) {
    std::size_t at = kFilled;
    while (at < kPageSize && page.U8(at) == (statement == 0 ? 0 : FillByte(at, statement))) ++at;
    if (at == kPageSize) return FillOf(statement);
  }
  return ", filled by several";
}

// Each statement leaves a state of its own. Every third adds a page; every fifth changes nearly all of one.
void ApplyToModel(State& state, int statement) {
  const std::string text = "statement " + std::to_string(statement);
  const std::size_t fill = std::min(state[0].find(", filled"), state[0].size());
  state[0] = text + (statement % 5 == 0 ? FillOf(statement) : state[0].substr(fill));
  state[static_cast<std::size_t>(1 + statement % 4)] = text;
  if (statement % 3 == 0) state.push_back(text);
}

void RunStatement(Pager& pager, int statement) {
  const std::string text = "statement " + std::to_string(statement);
  WriteStatement guard(pager);
  Page& second = pager.Write(2);
  SetPageText(second, text);
  for (std::size_t at = kFilled; statement % 5 == 0 && at < kPageSize; ++at) second.SetU8(at, FillByte(at, statement));
  SetPageText(pager.Write(static_cast<PageNumber>(3 + statement % 4)), text);
  if (statement % 3 == 0) SetPageText(pager.WriteNew(pager.PageCount()), text);
  guard.Commit();
}

State ReadState(Pager& pager) {
  const ReadStatement statement(pager);
  State state;
  for (PageNumber number = 2; number < pager.PageCount(); ++number) state.push_back(PageText(*pager.Read(number)));
  state[0] += FillOf(*pager.Read(2));
  return state;
}

class Story {
 public:
  explicit Story(bool withSecondUser) : withSecondUser_(withSecondUser) {
    State state;
    for (PageNumber number = 2; number < 8; ++number) state.push_back("page " + std::to_string(number));
    states_.push_back(state);
    for (int statement = 1; statement <= kStatements; ++statement) {
      ApplyToModel(state, statement);
      states_.push_back(state);
    }
  }

  // Tells the story until the machine stops at operation `stop`; false when it never did.
  bool StopsAt(std::size_t stop, bool halfWritten) {
    memory_ = std::make_shared<MemoryFileSystem>();
    Pager::Create(*memory_, kPath, MakeSmallDatabase(8));
    finished_ = 0;
    durable_ = 0;
    const auto crashing = std::make_shared<CrashingFileSystem>(memory_);
    crashing->StopAt(stop, halfWritten);
    try {
      Tell(crashing);
    } catch (const SimulatedCrash&) {
    }
    return crashing->HasStopped();
  }

  [[nodiscard]] const MemoryFileSystem& Memory() const { return *memory_; }
  [[nodiscard]] int Finished() const { return finished_; }
  [[nodiscard]] int Durable() const { return durable_; }
  [[nodiscard]] std::optional<int> NumberOf(const State& state) const {
    for (int number = 0; number <= kStatements; ++number) {
      if (states_[static_cast<std::size_t>(number)] == state) return number;
    }
    return std::nullopt;
  }

 private:
  static constexpr int kStatements = 12;

  void Tell(const std::shared_ptr<FileSystem>& fileSystem) {
    // A log of about four statements makes a checkpoint.
    PagerOptions options;
    options.checkpointBytes = 6000;
    std::unique_ptr<Pager> second = withSecondUser_ ? Pager::Open(fileSystem, kPath, options) : nullptr;
    int statement = 1;
    for (const int sessionEnd : {2, 3, 9, kStatements}) {
      const auto pager = Pager::Open(fileSystem, kPath, options);
      for (; statement <= sessionEnd; ++statement) {
        RunStatement(second && statement % 5 == 0 ? *second : *pager, statement);
        finished_ = statement;
        if (statement % 4 == 0) {
          memory_->RunBackgroundWork();
          durable_ = finished_;
        }
        const WriteStatement rolledBack(*pager);
        SetPageText(pager->Write(4), "never");
      }
      pager->Close();
      // A statement of the other user is made durable by this close only while it is in the same log.
      durable_ = finished_;
    }
    if (second) second->Close();
  }

  bool withSecondUser_;
  std::vector<State> states_;
  std::shared_ptr<MemoryFileSystem> memory_;
  int finished_ = 0;
  int durable_ = 0;
};

void CheckFound(const Story& story, MemoryFileSystem& found, CrashKind kind,
                const std::shared_ptr<MemoryFileSystem>& system) {
  const State state = ReadState(*Pager::Open(system, kPath, {}));
  const std::optional<int> number = story.NumberOf(state);
  ASSERT_TRUE(number.has_value()) << ::testing::PrintToString(state);
  EXPECT_LE(*number, story.Finished() + 1);
  EXPECT_GE(*number, kind == CrashKind::Kept ? story.Finished() : story.Durable());
  EXPECT_FALSE(found.Exists("club.mdb.redo"));
  // A log whose very start is torn cannot be understood; it is kept for people.
  EXPECT_TRUE(kind == CrashKind::Torn || !found.Exists("club.mdb.redo-setaside-1"));
  EXPECT_EQ(found.Contents(kPath).size(), (state.size() + 2) * kPageSize);
  EXPECT_EQ(ReadState(*Pager::Open(system, kPath, {})), state);
}

class PagerCrashTest : public ::testing::TestWithParam<bool> {};

TEST_P(PagerCrashTest, AfterAStopAtAnyOperationTheFileHasWholeStatements) {
  Story story(GetParam());
  std::size_t stops = 0;
  for (std::size_t stop = 0; story.StopsAt(stop, false); ++stop) {
    for (const bool halfWritten : {false, true}) {
      ASSERT_TRUE(story.StopsAt(stop, halfWritten));
      for (const auto& [kind, seeds] :
           {std::pair{CrashKind::Kept, 1U}, {CrashKind::Dropped, 1U}, {CrashKind::Torn, 25U}}) {
        for (std::uint32_t seed = 0; seed < seeds; ++seed) {
          SCOPED_TRACE("stop " + std::to_string(stop) + (halfWritten ? " half written" : "") + ", kind " +
                       std::to_string(static_cast<int>(kind)) + ", seed " + std::to_string(seed));
          const auto found = story.Memory().AfterCrash(kind, seed);
          CheckFound(story, *found, kind, found);
          if (::testing::Test::HasFatalFailure() || ::testing::Test::HasNonfatalFailure()) return;
        }
      }
    }
    ++stops;
  }
  EXPECT_GT(stops, 40u);
  EXPECT_EQ(story.Finished(), 12);
}

TEST_P(PagerCrashTest, ARecoveryMayBeStoppedAnyNumberOfTimes) {
  Story story(GetParam());
  for (std::size_t stop = 0; story.StopsAt(stop, true); ++stop) {
    for (std::uint32_t seed = 0; seed < 3; ++seed) {
      // The first crash may lose what was not flushed; from then on nothing more may go.
      const CrashKind first = seed == 0 ? CrashKind::Kept : CrashKind::Torn;
      const auto found = story.Memory().AfterCrash(first, seed);
      const State expected = ReadState(*Pager::Open(found->AfterCrash(CrashKind::Kept, 0), kPath, {}));
      for (std::size_t again = 0;; ++again) {
        SCOPED_TRACE("stop " + std::to_string(stop) + ", seed " + std::to_string(seed) + ", again " +
                     std::to_string(again));
        const auto attempt = found->AfterCrash(CrashKind::Kept, 0);
        const auto crashing = std::make_shared<CrashingFileSystem>(attempt);
        crashing->StopAt(again, again % 2 == 0);
        try {
          Pager::Open(crashing, kPath, {})->Close();
        } catch (const SimulatedCrash&) {
        }
        const auto after = attempt->AfterCrash(seed == 2 ? CrashKind::Torn : CrashKind::Kept, seed + 7);
        ASSERT_EQ(ReadState(*Pager::Open(after, kPath, {})), expected);
        EXPECT_FALSE(after->Exists("club.mdb.redo"));
        if (!crashing->HasStopped()) break;
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Users, PagerCrashTest, ::testing::Values(false, true),
                         [](const auto& users) { return users.param ? "Two" : "One"; });

TEST(PagerCrash, AnotherUserGoesOnWhereAWriterDied) {
  // The writer dies within each operation of a statement and its checkpoint; a pager that was open all the time sees
  // the statement or not, whole, and can write.
  for (std::size_t stop = 0;; ++stop) {
    SCOPED_TRACE(stop);
    const auto memory = std::make_shared<MemoryFileSystem>();
    Pager::Create(*memory, kPath, MakeSmallDatabase(8));
    const auto survivor = Pager::Open(memory, kPath, {});
    EXPECT_EQ(ReadText(*survivor, 2), "page 2");
    const auto crashing = std::make_shared<CrashingFileSystem>(memory);
    bool isFinished = false;
    try {
      PagerOptions options;
      options.checkpointBytes = 1;
      const auto writer = Pager::Open(crashing, kPath, options);
      crashing->StopAt(stop, true);
      RunStatement(*writer, 3);
      isFinished = true;
    } catch (const SimulatedCrash&) {
    }
    const State state = ReadState(*survivor);
    State before;
    for (PageNumber number = 2; number < 8; ++number) before.push_back("page " + std::to_string(number));
    State after = before;
    ApplyToModel(after, 3);
    ASSERT_TRUE(state == after || (!isFinished && state == before)) << ::testing::PrintToString(state);
    RunStatement(*survivor, 6);
    State expected = state;
    ApplyToModel(expected, 6);
    EXPECT_EQ(ReadState(*survivor), expected);
    survivor->Close();
    EXPECT_EQ(memory->Paths(), std::vector<std::string>{kPath});
    EXPECT_EQ(ReadState(*Pager::Open(memory, kPath, {})), expected);
    if (!crashing->HasStopped()) break;
  }
}

// Opens the file; when a log that does not belong to it was met and set aside, once more.
std::unique_ptr<Pager> OpenTwice(const std::shared_ptr<FileSystem>& fileSystem) {
  try {
    return Pager::Open(fileSystem, kPath, {});
  } catch (const Error&) {
    return Pager::Open(fileSystem, kPath, {});
  }
}

// Writes a text into page 3 as another program would.
void ChangeAsForeigner(MemoryFileSystem& memory) {
  auto bytes = memory.Contents(kPath);
  Page page(3);
  page.Put(0, std::span(bytes).subspan(3 * kPageSize, kPageSize));
  SetPageText(page, "foreign");
  std::copy(page.All().begin(), page.All().end(), bytes.begin() + 3 * kPageSize);
  memory.SetContents(kPath, bytes);
}

TEST(PagerCrash, ALogThatAWriterLeftWhereverItDiedIsNotAppliedOverAForeignChange) {
  for (const bool withSecondUser : {false, true}) {
    std::vector<bool> foreignChangeSurvived;
    for (std::size_t stop = 0;; ++stop) {
      auto memory = std::make_shared<MemoryFileSystem>();
      Pager::Create(*memory, kPath, MakeSmallDatabase(8));
      const auto second = withSecondUser ? Pager::Open(memory, kPath, {}) : nullptr;
      const auto crashing = std::make_shared<CrashingFileSystem>(memory);
      try {
        const auto writer = Pager::Open(crashing, kPath, {});
        test::WriteText(*writer, 3, "ours");
        crashing->StopAt(stop, false);
        writer->Close();
      } catch (const SimulatedCrash&) {
      }
      if (!crashing->HasStopped()) break;
      ChangeAsForeigner(*memory);
      const auto after = memory->AfterCrash(CrashKind::Kept, 0);
      foreignChangeSurvived.push_back(ReadText(*OpenTwice(after), 3) == "foreign");
    }
    // The stops: images, marking, flushing the log and its folder, writing and flushing the database, the second mark,
    // and then the log goes. At each of them a sector that is neither old nor new, or another last change, tells the
    // log off.
    const std::vector<bool> expected(withSecondUser ? 10 : 9, true);
    EXPECT_EQ(foreignChangeSurvived, expected);
  }
}

// The log of statements that another program's change has left without a file is kept for people, wherever the machine
// stops while it is set aside.
TEST(PagerCrash, ALogThatIsBeingSetAsideIsNeverLost) {
  for (const bool withSecondUser : {false, true}) {
    std::size_t stops = 0;
    for (std::size_t stop = 0;; ++stop) {
      auto memory = std::make_shared<MemoryFileSystem>();
      Pager::Create(*memory, kPath, MakeSmallDatabase(8));
      {
        const auto crashing = std::make_shared<CrashingFileSystem>(memory);
        crashing->StopAt(3, false);
        try {
          test::WriteText(*Pager::Open(crashing, kPath, {}), 3, "ours");
        } catch (const SimulatedCrash&) {
        }
      }
      ChangeAsForeigner(*memory);
      memory = memory->AfterCrash(CrashKind::Kept, 0);
      const auto log = memory->Contents("club.mdb.redo");
      const auto second = withSecondUser ? Pager::Open(memory, kPath, {.readOnly = true}) : nullptr;
      const auto crashing = std::make_shared<CrashingFileSystem>(memory);
      crashing->StopAt(stop, false);
      try {
        test::WriteText(*OpenTwice(crashing), 4, "later");
      } catch (const SimulatedCrash&) {
      }
      if (!crashing->HasStopped()) break;
      ++stops;
      for (const CrashKind kind : {CrashKind::Kept, CrashKind::Dropped, CrashKind::Torn}) {
        SCOPED_TRACE("stop " + std::to_string(stop) + ", kind " + std::to_string(static_cast<int>(kind)));
        const auto after = memory->AfterCrash(kind, static_cast<std::uint32_t>(stop));
        EXPECT_TRUE(after->Contents("club.mdb.redo") == log || after->Contents("club.mdb.redo-setaside-1") == log);
        EXPECT_EQ(ReadText(*OpenTwice(after), 3), "foreign");
        EXPECT_TRUE(after->Contents("club.mdb.redo-setaside-1") == log ||
                    after->Contents("club.mdb.redo-setaside-2") == log);
      }
    }
    EXPECT_GT(stops, 2u);
  }
}

// A close, then a change by another program, then a power failure: the log that was done with must not come back and
// undo the change.
void ExpectForeignChangeSurvives(MemoryFileSystem& memory) {
  ChangeAsForeigner(memory);
  const auto after = memory.AfterCrash(CrashKind::Dropped, 0);
  EXPECT_EQ(ReadText(*OpenTwice(after), 3), "foreign");
}

TEST(PagerCrash, ALogThatWasRemovedDoesNotComeBack) {
  const auto memory = std::make_shared<MemoryFileSystem>();
  Pager::Create(*memory, kPath, MakeSmallDatabase(8));
  test::WriteText(*Pager::Open(memory, kPath, {}), 3, "ours");
  ExpectForeignChangeSurvives(*memory);
}

TEST(PagerCrash, ALogThatWasBegunAnewDoesNotComeBack) {
  const auto memory = std::make_shared<MemoryFileSystem>();
  Pager::Create(*memory, kPath, MakeSmallDatabase(8));
  const auto other = Pager::Open(memory, kPath, {});
  test::WriteText(*Pager::Open(memory, kPath, {}), 3, "ours");
  ExpectForeignChangeSurvives(*memory);
}

}  // namespace
}  // namespace tavi::access
