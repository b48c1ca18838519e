#pragma once

#include <functional>
#include <iosfwd>
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

}  // namespace tavi::host
