#include "automation/ThreadUse.h"

#include "facade/ThreadStore.h"

namespace tavi::automation {

ThreadUse::ThreadUse() : thread_(Current().lock()) {
  if (thread_) return;
  thread_ = std::make_shared<Thread>();
  Current() = thread_;
}

ThreadUse::~ThreadUse() {
  const bool isOwnThread = Current().lock() == thread_;
  const std::weak_ptr<Thread> others = thread_;
  thread_.reset();
  if (isOwnThread && others.expired()) SetThreadStore(nullptr);
}

std::weak_ptr<ThreadUse::Thread>& ThreadUse::Current() {
  thread_local std::weak_ptr<Thread> current;
  return current;
}

}  // namespace tavi::automation
