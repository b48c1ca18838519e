// Work beside the caller's, in a thread of the system.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "access/file/FileSystem.h"
#include "access/file/LogFlush.h"

namespace tavi::access {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

// Long enough for any machine.
constexpr auto kPatience = 20s;

// Waits until something holds; false when it never does.
template <typename Condition>
bool Eventually(Condition condition) {
  const auto end = Clock::now() + kPatience;
  while (!condition()) {
    if (Clock::now() > end) return false;
    std::this_thread::sleep_for(1ms);
  }
  return true;
}

class NativeBackgroundWorkTest : public ::testing::Test {
 protected:
  std::shared_ptr<FileSystem> system_ = NativeFileSystem();
  std::atomic<int> done_ = 0;
};

TEST_F(NativeBackgroundWorkTest, BeginsAfterTheDelayInAThreadOfItsOwn) {
  std::atomic<std::thread::id> thread;
  const auto asked = Clock::now();
  std::atomic<Clock::time_point> begun;
  const auto work = system_->NewBackgroundWork(50ms, [&] {
    thread = std::this_thread::get_id();
    begun = Clock::now();
    ++done_;
  });
  work->Ask();
  ASSERT_TRUE(Eventually([&] { return done_ == 1; }));
  EXPECT_NE(thread.load(), std::this_thread::get_id());
  EXPECT_GE(begun.load() - asked, 50ms);
}

TEST_F(NativeBackgroundWorkTest, BeginsTheFlushOfALogWithinAHundredMillisecondsWhereTheMachineIsFreeToDoSo) {
  std::atomic<Clock::time_point> begun;
  const auto work = system_->NewBackgroundWork(LogFlush::kDelay, [&] {
    begun = Clock::now();
    ++done_;
  });
  Clock::duration shortest = kPatience;
  for (int attempt = 1; attempt <= 50 && shortest > 100ms; ++attempt) {
    const auto asked = Clock::now();
    work->Ask();
    ASSERT_TRUE(Eventually([&] { return done_ == attempt; }));
    shortest = std::min<Clock::duration>(shortest, begun.load() - asked);
  }
  EXPECT_LE(shortest, 100ms);
}

TEST_F(NativeBackgroundWorkTest, WhatIsAskedUntilItBeginsIsDoneInOne) {
  const auto work = system_->NewBackgroundWork(200ms, [&] { ++done_; });
  for (int i = 0; i < 100; ++i) work->Ask();
  ASSERT_TRUE(Eventually([&] { return done_ == 1; }));
  work->Ask();
  ASSERT_TRUE(Eventually([&] { return done_ == 2; }));
}

TEST_F(NativeBackgroundWorkTest, SettlingDropsWhatHasNotBegun) {
  const auto work = system_->NewBackgroundWork(24h, [&] { ++done_; });
  work->Ask();
  work->Settle();
  EXPECT_EQ(done_, 0);
}

TEST_F(NativeBackgroundWorkTest, SettlingAndTheEndWaitForWorkThatIsBeingDone) {
  std::atomic<bool> hasBegun = false;
  auto work = system_->NewBackgroundWork(1ms, [&] {
    hasBegun = true;
    std::this_thread::sleep_for(100ms);
    ++done_;
  });
  work->Ask();
  ASSERT_TRUE(Eventually([&] { return hasBegun.load(); }));
  work->Settle();
  EXPECT_EQ(done_, 1);
  hasBegun = false;
  work->Ask();
  ASSERT_TRUE(Eventually([&] { return hasBegun.load(); }));
  work.reset();
  EXPECT_EQ(done_, 2);
}

TEST_F(NativeBackgroundWorkTest, TheEndDropsWhatHasNotBegun) {
  auto work = system_->NewBackgroundWork(24h, [&] { ++done_; });
  work->Ask();
  work.reset();
  EXPECT_EQ(done_, 0);
}

}  // namespace
}  // namespace tavi::access
