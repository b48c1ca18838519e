#pragma once

#include <ostream>

#include "host/text/DescriptorOutput.h"
#include "host/text/Terminal.h"

namespace tavi::host {

/// The standard streams of a process on a POSIX system. One at a time in a process.
class StandardStreams {
 public:
  StandardStreams();
  ~StandardStreams();
  StandardStreams(const StandardStreams&) = delete;
  StandardStreams& operator=(const StandardStreams&) = delete;

  /// The streams, which live as long as this object.
  [[nodiscard]] Terminal Streams();

 private:
  DescriptorOutput output_;
  std::ostream out_;
};

}  // namespace tavi::host
