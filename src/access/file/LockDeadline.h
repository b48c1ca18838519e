#pragma once

#include <chrono>

#include "access/file/FileSystem.h"

namespace tavi::access {

/// When a wait for locks ends, by a clock that nobody sets. An operation has one, however many locks it needs, so that
/// it takes no longer than it says.
class LockDeadline {
 public:
  LockDeadline(FileSystem& fileSystem, std::chrono::milliseconds timeout);

  /// How long the operation may wait in all.
  [[nodiscard]] std::chrono::milliseconds Timeout() const { return timeout_; }
  /// What is left of it, rounded up; 0 when it is over.
  [[nodiscard]] std::chrono::milliseconds Left(FileSystem& fileSystem) const;

 private:
  std::chrono::milliseconds timeout_;
  std::chrono::steady_clock::time_point end_;
};

}  // namespace tavi::access
