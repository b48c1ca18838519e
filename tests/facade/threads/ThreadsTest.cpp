#include <gtest/gtest.h>

#include <condition_variable>
#include <future>
#include <mutex>
#include <set>
#include <thread>

#include "facade/ThreadStore.h"
#include "facade/threads/support/SharedClub.h"

namespace tavi {
namespace {

using testing::SharedClub;
using Texts = std::vector<std::string>;

const Date kDay = Date::FromCivil(2025, 9, 17);

/// Where threads wait for one another. A std::latch would do, but that of GCC 12 forgets waiting threads on Windows.
class StartLine {
 public:
  explicit StartLine(std::size_t threads) : missing_(threads) {}

  void ArriveAndWait() {
    std::unique_lock lock(mutex_);
    if (--missing_ == 0) allAreThere_.notify_all();
    allAreThere_.wait(lock, [this] { return missing_ == 0; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable allAreThere_;
  std::size_t missing_;
};

/// Threads that use one club's file, each through objects and a store of its own.
class ThreadsTest : public ::testing::Test {
 protected:
  /// Runs the actions at once, each on a thread of its own; an error of one reaches the caller.
  static void AtOnce(const std::vector<std::function<void()>>& actions) {
    StartLine start(actions.size());
    std::vector<std::future<void>> running;
    for (const auto& action : actions) {
      running.push_back(std::async(std::launch::async, [&start, action] {
        start.ArriveAndWait();
        action();
      }));
    }
    for (auto& thread : running) thread.get();
  }

  SharedClub club_;
};

TEST_F(ThreadsTest, WriteOneFileAtOnceAndLoseNothing) {
  constexpr int kEach = 12;
  club_.NewObject()->AddNewMember("Ann", "", "Lee");
  const auto addMembers = [this] {
    const auto object = club_.NewObject();
    for (int number = 0; number < kEach; ++number) {
      object->AddNewMember("Bob" + std::to_string(number), "", "Ray");
    }
  };
  const auto scoreAnEvening = [this] {
    const auto object = club_.NewObject();
    const std::int32_t id = object->SetCompetition("Tuesday", kDay, false, 0, 0, 0, 5, 2, 0, true);
    for (int number = 0; number < kEach; ++number) {
      object->NoteCompetitorResult(id, 1, "", -1, "Vic", 50.0, 50.0);
      object->AddMasterPoints(id, 1, -1, "Vic", -1, "Sue", 0.5, 0);
    }
    object->EndResultUpdate(id);
    object->CloseDatabase();
  };
  const auto look = [this] {
    const auto object = club_.NewObject();
    for (int count = 0; count < kEach; ++count) {
      EXPECT_EQ(object->FindMember("Ann Lee"), 1);
      EXPECT_GE(object->FindNearestMatches("Ann Lee").Numbers.size(), 1U);
    }
  };
  AtOnce({addMembers, scoreAnEvening, look});
  EXPECT_EQ(club_.Column("Select MembershipNumber From Members").size(), kEach + 1U);
  EXPECT_EQ(club_.Column("Select Player From Results").size(), std::size_t{kEach});
  EXPECT_EQ(club_.Column("Select NonMemberName From MasterPoints").size(), kEach + 1U)
      << "each result clears the awards of its players before it";
  EXPECT_EQ(club_.Column("Select Handicap From Members Where MembershipNumber = 1"), (Texts{"50"}));
  club_.ExpectASoundClosedFile();
}

TEST_F(ThreadsTest, AddMembersAtOnceWithNumbersOfTheirOwn) {
  constexpr int kEach = 8;
  std::vector<std::vector<std::int32_t>> numbers(2);
  const auto adding = [&](std::size_t thread) {
    return [&, thread] {
      const auto object = club_.NewObject();
      for (int count = 0; count < kEach; ++count) {
        try {
          numbers[thread].push_back(
              object->AddNewMember("Thread" + std::to_string(thread), std::to_string(count), "Moor"));
        } catch (const Error& error) {
          // The other thread took the next number between the question for it and the insert.
          EXPECT_TRUE(error.Is(ErrorNumber::ProviderFailure)) << error.Description();
        }
      }
    };
  };
  AtOnce({adding(0), adding(1)});
  std::set<std::int32_t> all(numbers[0].begin(), numbers[0].end());
  all.insert(numbers[1].begin(), numbers[1].end());
  EXPECT_EQ(all.size(), numbers[0].size() + numbers[1].size()) << "no number was given twice";
  EXPECT_EQ(club_.Column("Select MembershipNumber From Members").size(), all.size());
  club_.ExpectASoundClosedFile();
}

TEST_F(ThreadsTest, SeeAtOnceWhatTheOthersStored) {
  const auto here = club_.NewObject();
  here->OpenDatabase();
  EXPECT_EQ(here->FindMember("Ann Lee"), -1);
  std::thread([this] {
    const auto there = club_.NewObject();
    there->OpenDatabase();
    there->AddNewMember("Ann", "", "Lee", 45.0);
    there->CloseDatabase();
  }).join();
  EXPECT_EQ(here->FindMember("Ann Lee"), 1);
  EXPECT_EQ(here->GetHandicap(1), 45.0);
  EXPECT_EQ(ThreadStore()->OpenCount(), 1) << "the other thread's closing did not close this one's file";
  here->CloseDatabase();
}

TEST_F(ThreadsTest, WalkIndependently) {
  const auto here = club_.NewObject();
  here->AddNewMember("Ann", "", "Lee");
  here->AddNewMember("Bob", "", "Ray");
  std::int32_t number = 0;
  std::string name;
  double par = 0.0;
  ASSERT_TRUE(here->GetFirstMember(number, name, par, 5));
  std::thread([this] {
    const auto there = club_.NewObject();
    std::int32_t otherNumber = 0;
    std::string otherName;
    double otherPar = 0.0;
    EXPECT_TRUE(there->GetFirstMember(otherNumber, otherName, otherPar, 5));
    there->EndGet();
    EXPECT_EQ(otherName, "Ann Lee");
  }).join();
  ASSERT_TRUE(here->GetNextMember(number, name, par, 5)) << "this thread's walk is still open";
  EXPECT_EQ(name, "Bob Ray");
  here->EndGet();
}

TEST_F(ThreadsTest, MayEndBeforeTheirObjects) {
  std::unique_ptr<MembershipDatabase> object;
  std::thread([&] {
    object = club_.NewObject();
    object->OpenDatabase();
    std::int32_t number = 0;
    std::string name;
    double par = 0.0;
    EXPECT_FALSE(object->GetFirstMember(number, name, par, 5));
    object->OpenDatabase();
  }).join();
  club_.ExpectASoundClosedFile();
  object.reset();
}

TEST_F(ThreadsTest, StartAtOnceWithOneSettingsFileAndOneLog) {
  constexpr int kThreads = 4;
  constexpr int kEach = 5;
  const auto start = [this] {
    for (int count = 0; count < kEach; ++count) {
      const MembershipDatabase object(club_.SharedPlatform());
      EXPECT_EQ(object.DatabaseFolder(), club_.Folder().Path("Documents\\Bridge\\Database"));
    }
  };
  AtOnce(std::vector<std::function<void()>>(kThreads, start));
  std::string lines;
  for (int count = 0; count < kThreads * kEach; ++count) lines += "TaviMembership Initialising\r\n";
  EXPECT_EQ(club_.Log().Text(), lines) << "lines of threads do not mix";
}

}  // namespace
}  // namespace tavi
