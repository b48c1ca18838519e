#include "access/file/WritingThreads.h"

#include <utility>

namespace tavi::access {

void WritingThreads::Hold(const std::string& path) {
  const std::lock_guard guard(mutex_);
  holders_[path] = std::this_thread::get_id();
}

void WritingThreads::Release(const std::string& path) noexcept {
  const std::lock_guard guard(mutex_);
  holders_.erase(path);
}

WritingThreads::Wait::Wait(WritingThreads& threads, std::string path) : threads_(threads), path_(std::move(path)) {
  const std::lock_guard guard(threads_.mutex_);
  threads_.waiting_[std::this_thread::get_id()] = path_;
}

WritingThreads::Wait::~Wait() {
  const std::lock_guard guard(threads_.mutex_);
  threads_.waiting_.erase(std::this_thread::get_id());
}

bool WritingThreads::Wait::IsHopeless() const {
  const std::lock_guard guard(threads_.mutex_);
  const std::thread::id self = std::this_thread::get_id();
  std::string wanted = path_;
  // Each step leads to another waiting thread; a circle that this one is not part of is not its business.
  for (std::size_t step = 0; step <= threads_.waiting_.size(); ++step) {
    const auto holder = threads_.holders_.find(wanted);
    if (holder == threads_.holders_.end()) return false;
    if (holder->second == self) return true;
    const auto next = threads_.waiting_.find(holder->second);
    if (next == threads_.waiting_.end()) return false;
    wanted = next->second;
  }
  return false;
}

}  // namespace tavi::access
