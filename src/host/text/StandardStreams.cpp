#include "host/text/StandardStreams.h"

#include <unistd.h>

#include <iostream>

namespace tavi::host {

StandardStreams::StandardStreams() : output_(STDOUT_FILENO), out_(&output_) {
  // What was written is to be seen before a person is waited for, and before an error that came after it.
  std::cin.tie(&out_);
  std::cerr.tie(&out_);
}

StandardStreams::~StandardStreams() {
  std::cin.tie(&std::cout);
  std::cerr.tie(&std::cout);
}

Terminal StandardStreams::Streams() {
  return {std::cin,
          out_,
          std::cerr,
          isatty(STDIN_FILENO) == 1,
          isatty(STDOUT_FILENO) == 1,
          isatty(STDERR_FILENO) == 1,
          [this] { return output_.Failure(); }};
}

}  // namespace tavi::host
