#pragma once

#include <exception>
#include <memory>
#include <string>

#include "access/file/support/InterceptedFileSystem.h"
#include "access/file/support/MemoryFileSystem.h"

namespace tavi::access::test {

/// Thrown out of every call once the simulated machine has stopped. Not an Error, so that nothing takes it for one.
class SimulatedCrash : public std::exception {
 public:
  [[nodiscard]] const char* what() const noexcept override { return "the simulated machine has stopped"; }
};

/// A file system in memory that stops at a chosen operation that changes something: it and everything after it throws
/// SimulatedCrash and has no effect (a write may have stored its first half). What is left is asked of the memory file
/// system given: AfterCrash.
class CrashingFileSystem final : public InterceptedFileSystem {
 public:
  explicit CrashingFileSystem(std::shared_ptr<MemoryFileSystem> memory) : InterceptedFileSystem(std::move(memory)) {}

  /// Stops at changing operation number `number`, from 0, counted from now on; `halfWritten`: a write that is stopped
  /// at has stored half of its bytes.
  void StopAt(std::size_t number, bool halfWritten);
  [[nodiscard]] bool HasStopped() const { return hasStopped_; }

  void Before(Operation operation, const std::string& path, const std::function<void()>& partDone) override;

 private:
  bool isArmed_ = false;
  std::size_t left_ = 0;
  bool halfWritten_ = false;
  bool hasStopped_ = false;
};

}  // namespace tavi::access::test
