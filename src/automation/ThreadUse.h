#pragma once

#include <memory>

namespace tavi::automation {

/// What each MembershipDatabase for automation has as a part. The last one on a thread releases the thread's store,
/// which closes the file: a program that has given back its objects may unload the library, and nobody could reach the
/// store again. Where the last one is released on another thread than its own, the store goes with its thread.
class ThreadUse {
 public:
  ThreadUse();
  ~ThreadUse();
  ThreadUse(const ThreadUse&) = delete;
  ThreadUse& operator=(const ThreadUse&) = delete;

 private:
  struct Thread {};

  static std::weak_ptr<Thread>& Current();

  std::shared_ptr<Thread> thread_;
};

}  // namespace tavi::automation
