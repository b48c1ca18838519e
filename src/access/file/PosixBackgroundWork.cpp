#include <pthread.h>
#include <signal.h>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

#include "access/file/FileSystem.h"

// One thread for each connection that writes, begun when the first work is asked for and kept until the end. It sleeps
// until work is asked for, then as long again as the delay, so that all statements of that time are flushed by one. The
// mutex is never held while the work is done, so asking never waits for the disk.

namespace tavi::access {

namespace {

/// Keeps signals away from a thread that is begun during its life: they are the program's own threads' business.
class WithoutSignals {
 public:
  WithoutSignals() {
    sigset_t all{};
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_BLOCK, &all, &before_);
  }
  ~WithoutSignals() { ::pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  WithoutSignals(const WithoutSignals&) = delete;
  WithoutSignals& operator=(const WithoutSignals&) = delete;

 private:
  sigset_t before_{};
};

class PosixBackgroundWork final : public BackgroundWork {
 public:
  PosixBackgroundWork(std::chrono::milliseconds delay, std::function<void()> work)
      : delay_(delay), work_(std::move(work)) {}

  // What was asked for and has not begun is dropped; who needs it done does it himself before (LogFlush::Now).
  ~PosixBackgroundWork() override {
    if (!thread_.joinable()) return;
    {
      const std::lock_guard lock(mutex_);
      isEnding_ = true;
    }
    news_.notify_all();
    thread_.join();
  }
  PosixBackgroundWork(const PosixBackgroundWork&) = delete;
  PosixBackgroundWork& operator=(const PosixBackgroundWork&) = delete;

  // The thread is made before the mutex is taken, and with all signals blocked, which it inherits.
  void Ask() override {
    if (!thread_.joinable()) {
      const WithoutSignals blocked;
      thread_ = std::thread([this] { Run(); });
    }
    const std::lock_guard lock(mutex_);
    if (std::exchange(isAsked_, true)) return;
    news_.notify_all();
  }

  // What is dropped here may leave the thread in its delay; it finds nothing to do then.
  void Settle() override {
    std::unique_lock lock(mutex_);
    isAsked_ = false;
    news_.wait(lock, [this] { return !isWorking_; });
  }

 private:
  void Run() {
    std::unique_lock lock(mutex_);
    for (;;) {
      news_.wait(lock, [this] { return isAsked_ || isEnding_; });
      // What is asked for, dropped and asked for again meanwhile begins the sooner.
      news_.wait_for(lock, delay_, [this] { return isEnding_; });
      if (isEnding_) return;
      // What is asked for from here on is done in the next round: its bytes may come too late for this one.
      if (!std::exchange(isAsked_, false)) continue;
      isWorking_ = true;
      lock.unlock();
      work_();
      lock.lock();
      isWorking_ = false;
      news_.notify_all();
    }
  }

  std::chrono::milliseconds delay_;
  std::function<void()> work_;
  std::mutex mutex_;
  std::condition_variable news_;
  bool isAsked_ = false;
  bool isWorking_ = false;
  bool isEnding_ = false;
  std::thread thread_;
};

}  // namespace

std::unique_ptr<BackgroundWork> NativeBackgroundWork(std::chrono::milliseconds delay, std::function<void()> work) {
  return std::make_unique<PosixBackgroundWork>(delay, std::move(work));
}

}  // namespace tavi::access
