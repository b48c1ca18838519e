#pragma once

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <string>
#include <system_error>

namespace tavi::host {

/// Where a command reads and writes, and which of the three is a terminal with a person at it.
struct Terminal {
  std::istream& in;
  std::ostream& out;
  std::ostream& error;
  bool inputIsTerminal = false;
  bool outputIsTerminal = false;
  bool errorIsTerminal = false;
  /// Why `out` could not be written, when the system told; may be empty.
  std::function<std::error_code()> outputFailure{};
};

/// Shows on a terminal how far a long piece of work has come, on one line that is rewritten and finally cleared. Writes
/// nothing when `visible` is false.
class ProgressBar {
 public:
  ProgressBar(std::ostream& out, bool visible, std::size_t total) : out_(out), visible_(visible), total_(total) {}
  ~ProgressBar();
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  /// So many of the total are done; `label` tells what is being done.
  void Show(std::size_t done, const std::string& label);

 private:
  std::ostream& out_;
  bool visible_;
  std::size_t total_;
  std::string shown_;
};

}  // namespace tavi::host
