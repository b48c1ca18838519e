#include "host/text/Terminal.h"

#include <unistd.h>

#include <iostream>

namespace tavi::host {

Terminal StandardTerminal() {
  return {std::cin,
          std::cout,
          std::cerr,
          isatty(STDIN_FILENO) == 1,
          isatty(STDOUT_FILENO) == 1,
          isatty(STDERR_FILENO) == 1};
}

}  // namespace tavi::host
