#pragma once

#include <array>
#include <ostream>
#include <streambuf>
#include <system_error>

#include "host/text/Terminal.h"

namespace tavi::host {

/// Writes to an open file of the process and remembers why a write failed, which the library's own streams do not tell.
/// After a failure nothing more is written. What is buffered is written by flushing, and at the end.
class DescriptorOutput final : public std::streambuf {
 public:
  explicit DescriptorOutput(int descriptor);
  ~DescriptorOutput() override;
  DescriptorOutput(const DescriptorOutput&) = delete;
  DescriptorOutput& operator=(const DescriptorOutput&) = delete;

  /// The reason of the first failure; none while all went well.
  [[nodiscard]] std::error_code Failure() const { return failure_; }

 protected:
  int_type overflow(int_type character) override;
  int sync() override;

 private:
  bool WritePending();

  int descriptor_;
  std::error_code failure_;
  std::array<char, 16384> buffer_{};
};

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
