#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

namespace tavi::access::test {

/// A process of its own that works on a database file: the program test_access_worker, which lies beside the test.
class Worker {
 public:
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
  [[nodiscard]] pid_t Process() const { return process_; }
  /// Signal 9: no chance to tidy up.
  void Kill();
  /// Waits for its end; the exit code, or minus the signal that ended it.
  int Wait();

 private:
  pid_t process_ = -1;
  int input_ = -1;
  int output_ = -1;
  std::string buffered_;
};

}  // namespace tavi::access::test
