#pragma once

#include <memory>
#include <set>
#include <string>

#include "access/file/support/InterceptedFileSystem.h"

namespace tavi::access::test {

/// A file system in which chosen calls fail with an error ("Could not ...: Input/output error."); a failing write has
/// stored its first half.
class FailingFileSystem final : public InterceptedFileSystem {
 public:
  using InterceptedFileSystem::InterceptedFileSystem;

  /// The call number `number` (from 0, counted from now on) of the given operations fails; with `andAllLater` so do all
  /// after it.
  void FailCall(std::size_t number, std::set<Operation> operations, bool andAllLater = false);
  /// Lets everything pass again.
  void FailNothing();
  /// Whether a call has failed since FailCall.
  [[nodiscard]] bool HasFailed() const { return hasFailed_; }
  /// Calls of the given operations since FailCall.
  [[nodiscard]] std::size_t Calls() const { return calls_; }
  /// All calls so far except reads and locks, for tests that nothing was touched.
  [[nodiscard]] std::size_t ChangingCalls() const { return changingCalls_; }
  /// All reads so far.
  [[nodiscard]] std::size_t Reads() const { return reads_; }

  void Before(Operation operation, const std::string& path, const std::function<void()>& partDone) override;

 private:
  std::set<Operation> operations_;
  std::size_t failingCall_ = 0;
  bool andAllLater_ = false;
  std::size_t calls_ = 0;
  std::size_t changingCalls_ = 0;
  std::size_t reads_ = 0;
  bool hasFailed_ = false;
};

}  // namespace tavi::access::test
