#pragma once

#include <functional>
#include <memory>

#include "access/file/support/InterceptedFileSystem.h"
#include "access/file/support/MemoryFileSystem.h"

namespace tavi::access::test {

/// A file system in memory that shows what a crash would leave behind at every single point: before each operation that
/// changes something, and in the middle of each write. Nothing really stops, so one run of a story shows all points.
class StoppingFileSystem final : public InterceptedFileSystem {
 public:
  /// Called at each point with the file system as it is then; it must not change it.
  using AtPoint = std::function<void(const MemoryFileSystem&)>;

  StoppingFileSystem(std::shared_ptr<MemoryFileSystem> memory, AtPoint atPoint)
      : InterceptedFileSystem(memory), memory_(std::move(memory)), atPoint_(std::move(atPoint)) {}

  void Before(Operation operation, const std::string& /*path*/, const std::function<void()>& partDone) override {
    if (operation == Operation::Read || operation == Operation::Lock || operation == Operation::Open) return;
    atPoint_(*memory_);
    if (operation != Operation::Write) return;
    partDone();
    atPoint_(*memory_);
  }

 private:
  std::shared_ptr<MemoryFileSystem> memory_;
  AtPoint atPoint_;
};

}  // namespace tavi::access::test
