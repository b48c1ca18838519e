#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tavi::access::test {

/// A process of its own that works on a database file: the program test_access_worker, which lies beside the test.
class Worker {
 public:
  /// What Wait returns for a process that was killed.
  static constexpr int kKilled = -9;

  /// Starts it. `arguments` as in WorkerMain.cpp.
  explicit Worker(const std::vector<std::string>& arguments);
  /// Kills it when it still runs.
  ~Worker();
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

  /// The next line that it printed; nothing when it has ended and all has been read.
  [[nodiscard]] std::optional<std::string> ReadLine();
  /// Ends its standard input, which some tasks wait for.
  void EndInput();
  /// The number of the process.
  [[nodiscard]] std::string Process() const;
  /// Ends it at once: no chance to tidy up.
  void Kill();
  /// Waits for its end; the exit code, or kKilled.
  int Wait();

 private:
  struct System;

  std::unique_ptr<System> system_;
  std::string buffered_;
};

}  // namespace tavi::access::test
