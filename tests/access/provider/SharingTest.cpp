// Many threads and processes use one file at the same time, and other database programs come and go.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <thread>

#include "access/catalog/Check.h"
#include "access/file/Pager.h"
#include "access/file/support/LongRun.h"
#include "access/file/support/TemporaryFolder.h"
#include "access/provider/AccessProvider.h"
#include "access/provider/support/Counters.h"
#include "access/provider/support/Evening.h"
#include "access/provider/support/Worker.h"
#include "platform/values/Error.h"

namespace tavi::access::test {
namespace {

constexpr int kThreads = 8;
constexpr int kProcesses = 4;
// Files of Windows are locked more slowly, most of all under Wine.
#ifdef _WIN32
constexpr std::size_t kRounds = 100;
#else
constexpr std::size_t kRounds = 700;
#endif

class SharingTest : public testing::Test {
 protected:
  void SetUp() override {
    Database::CreateFile(*NativeFileSystem(), path_, Date{45000});
    MakeCounters(*OpenCounters(path_));
  }

  std::unique_ptr<Pager> Open(int timeout = 100) {
    return Pager::Open(NativeFileSystem(), path_, {.lockTimeout = std::chrono::milliseconds(timeout)});
  }
  static std::string FailureOf(const std::function<void()>& action) {
    try {
      action();
    } catch (const Error& error) {
      return error.Description();
    }
    return "";
  }
  /// `holder` is named where the system tells who has a lock, which Windows does not.
  [[nodiscard]] std::string Waited(const std::string& holder) const {
    constexpr bool kIsTold = std::filesystem::path::preferred_separator == '/';
    return "Could not use '" + path_ + "'; file already in use" + (kIsTold ? " by " + holder : "") +
           ". It stayed locked for 100 milliseconds; try again when the other user has finished.";
  }
  void ExpectSound() {
    Database database(Open());
    EXPECT_EQ(CheckDatabase(database, CheckKind::Strict), std::vector<std::string>());
  }

  TemporaryFolder folder_;
  std::string path_ = folder_.File("club.mdb");
};

TEST_F(SharingTest, EightThreadsAndFourProcessesLoseNothingAndSeeWholeStatements) {
  const std::size_t rounds = Lengthened(kRounds);
  std::vector<std::unique_ptr<Worker>> workers;
  for (int i = 0; i < kProcesses; ++i) {
    workers.push_back(std::make_unique<Worker>(
        std::vector<std::string>{"count", path_, std::to_string(rounds), std::to_string(kThreads + i)}));
  }
  std::vector<std::string> failures(kThreads);
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&, i] {
      try {
        Count(path_, rounds, i);
      } catch (const std::exception& exception) {
        failures[static_cast<std::size_t>(i)] = exception.what();
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(failures, std::vector<std::string>(kThreads));
  for (const auto& worker : workers) {
    EXPECT_EQ(worker->ReadLine(), "begun");
    EXPECT_EQ(worker->ReadLine(), "done");
    EXPECT_EQ(worker->Wait(), 0);
  }
  EXPECT_EQ(CountersAfter(*OpenCounters(path_), rounds, kThreads + kProcesses), "");
  ExpectSound();
  EXPECT_FALSE(NativeFileSystem()->Exists(path_ + ".redo"));
}

// Some of the processes are killed in the middle; the others go on where they died.
TEST_F(SharingTest, KilledUsersDoNotHoldTheOthersUp) {
  const std::size_t rounds = Lengthened(200);
  std::vector<std::unique_ptr<Worker>> doomed;
  for (int i = 0; i < 4; ++i) {
    doomed.push_back(
        std::make_unique<Worker>(std::vector<std::string>{"count", path_, "1000000", std::to_string(100 + i)}));
  }
  std::string failure;
  std::thread survivor([&] {
    try {
      Count(path_, rounds, 0);
    } catch (const std::exception& exception) {
      failure = exception.what();
    }
  });
  for (const auto& worker : doomed) {
    EXPECT_EQ(worker->ReadLine(), "begun");
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    worker->Kill();
    EXPECT_EQ(worker->Wait(), Worker::kKilled);
  }
  survivor.join();
  EXPECT_EQ(failure, "");
  ExpectSound();
}

TEST_F(SharingTest, ReadersDoNotWaitForReaders) {
  const auto first = Open();
  const ReadStatement reading(*first);
  // A lock timeout of nothing: had it to wait, it would fail.
  const auto second = Open(0);
  const ReadStatement also(*second);
  EXPECT_GT(second->PageCount(), 0u);
}

TEST_F(SharingTest, AWaitEndsWithAnErrorThatNamesTheOtherProcess) {
  const auto reader = Open();
  const auto writer = Open();
  Worker holder({"hold", path_});
  EXPECT_EQ(holder.ReadLine(), "ready");
  const std::string name = "process " + holder.Process() + " (test_access_wor)";
  EXPECT_EQ(FailureOf([&] { writer->BeginWrite(); }), Waited(name));
  EXPECT_EQ(FailureOf([&] { writer->BeginTransaction(); }), Waited(name));
  // Who only reads does not wait, nor who comes.
  EXPECT_EQ(FailureOf([&] { const ReadStatement works(*reader); }), "");
  EXPECT_EQ(FailureOf([&] { static_cast<void>(Open(0)); }), "");
  holder.EndInput();
  EXPECT_EQ(holder.Wait(), 0);
  const WriteStatement works(*writer);
}

TEST_F(SharingTest, AWaitForAnotherConnectionOfTheSameProcessSaysSo) {
  const auto one = Open();
  const auto two = Open();
  const WriteStatement writing(*one);
  EXPECT_EQ(FailureOf([&] { two->BeginWrite(); }), Waited("another connection of this process"));
}

// Symptom: a wait of ten seconds took up to sixteen.
TEST_F(SharingTest, AWaitEndsWhenItSays) {
  constexpr int kTimeout = 1000;
  const auto one = Open();
  const auto two = Open(kTimeout);
  const WriteStatement writing(*one);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_NE(FailureOf([&] { two->BeginWrite(); }), "");
  const auto waited = std::chrono::steady_clock::now() - start;
  EXPECT_GE(waited, std::chrono::milliseconds(kTimeout));
  EXPECT_LE(waited, std::chrono::milliseconds(kTimeout + 400));
}

TEST_F(SharingTest, AFileThatAnotherDatabaseProgramHoldsIsReadButNotWritten) {
  OpenCounters(path_)->Execute("Insert Into Entries (Who, Round) Values (0, 0)");
  const std::string lockPath = folder_.File("club.ldb");
  std::string slots(128, '\0');
  slots.replace(0, 6, "OFFICE").replace(32, 5, "Admin").replace(64, 6, "SCORER").replace(96, 5, "Admin");
  std::ofstream(lockPath, std::ios::binary) << slots;
  Worker other({"lock", lockPath, std::to_string(0x10000002), "1"});
  ASSERT_EQ(other.ReadLine(), "ready");
  const auto connection = OpenCounters(path_);
  const std::string failure = FailureOf([&] { connection->Execute("Insert Into Entries (Who, Round) Values (0, 1)"); });
  EXPECT_EQ(failure, "Could not use '" + path_ +
                         "'; file already in use. Another database program has it open (user Admin on computer "
                         "SCORER), as its lock file '" +
                         lockPath + "' shows; close the database there and try again.");
  EXPECT_EQ(CountersAfter(*OpenCounters(path_), 0, 0), "1 rows instead of 0");
  other.EndInput();
  EXPECT_EQ(other.Wait(), 0);
  // The lock file that is left behind does not matter.
  connection->Execute("Insert Into Entries (Who, Round) Values (0, 1)");
  connection->Close();
  EXPECT_EQ(CountersAfter(*OpenCounters(path_), 0, 0), "2 rows instead of 0");
  ExpectSound();
}

}  // namespace
}  // namespace tavi::access::test
