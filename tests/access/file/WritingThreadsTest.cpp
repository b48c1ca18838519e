// Waits that can never end are seen; others are not taken for such.
#include <gtest/gtest.h>
#include <future>

#include "access/file/StatementLock.h"

namespace tavi::access {
namespace {

using Wait = WritingThreads::Wait;

/// A thread that does one thing after the other, each told by the test.
class Helper {
 public:
  explicit Helper(WritingThreads& threads) : threads_(threads) {}
  ~Helper() {
    go_.set_value();
    thread_.join();
  }
  Helper(const Helper&) = delete;
  Helper& operator=(const Helper&) = delete;

  /// Holds one file and waits for another, until the end of its life. Tells whether its wait was hopeless.
  bool HoldAndWait(const std::string& held, const std::string& wanted) {
    std::promise<bool> begun;
    std::future<bool> isHopeless = begun.get_future();
    thread_ = std::thread([this, held, wanted, begun = std::move(begun)]() mutable {
      threads_.Hold(held);
      {
        const Wait wait(threads_, wanted);
        begun.set_value(wait.IsHopeless());
        go_.get_future().wait();
      }
      threads_.Release(held);
    });
    return isHopeless.get();
  }

 private:
  WritingThreads& threads_;
  std::promise<void> go_;
  std::thread thread_;
};

TEST(WritingThreads, AWaitForOnesOwnThreadIsHopeless) {
  WritingThreads threads;
  threads.Hold("a");
  EXPECT_TRUE(Wait(threads, "a").IsHopeless());
  EXPECT_FALSE(Wait(threads, "b").IsHopeless());
  threads.Release("a");
  EXPECT_FALSE(Wait(threads, "a").IsHopeless());
}

TEST(WritingThreads, AWaitForAThreadThatGoesOnIsNot) {
  WritingThreads threads;
  Helper other(threads);
  EXPECT_FALSE(other.HoldAndWait("a", "free"));
  EXPECT_FALSE(Wait(threads, "a").IsHopeless());
}

TEST(WritingThreads, ThreadsThatWaitInACircleAreSeenByTheLastOne) {
  WritingThreads threads;
  threads.Hold("mine");
  Helper first(threads);
  Helper second(threads);
  EXPECT_FALSE(first.HoldAndWait("a", "mine"));
  EXPECT_FALSE(second.HoldAndWait("b", "a"));
  EXPECT_TRUE(Wait(threads, "b").IsHopeless());
  EXPECT_TRUE(Wait(threads, "a").IsHopeless());
  threads.Release("mine");
  EXPECT_FALSE(Wait(threads, "b").IsHopeless());
}

TEST(WritingThreads, ACircleOfOthersIsTheirBusiness) {
  WritingThreads threads;
  Helper first(threads);
  Helper second(threads);
  EXPECT_FALSE(first.HoldAndWait("a", "b"));
  EXPECT_TRUE(second.HoldAndWait("b", "a"));
  EXPECT_FALSE(Wait(threads, "a").IsHopeless());
}

}  // namespace
}  // namespace tavi::access
