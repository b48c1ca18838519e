#pragma once

#include <iosfwd>

namespace tavi::host {

/// Where a command reads and writes, and which of the three is a terminal with a person at it.
struct Terminal {
  std::istream& in;
  std::ostream& out;
  std::ostream& error;
  bool inputIsTerminal = false;
  bool outputIsTerminal = false;
  bool errorIsTerminal = false;
};

/// The standard streams of the process.
Terminal StandardTerminal();

}  // namespace tavi::host
