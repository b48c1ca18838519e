#include "host/text/StandardStreams.h"

#include <unistd.h>
#include <cerrno>
#include <iostream>

// Output by the system's own call, because the library's streams only tell that a write failed, and a closed pipe has
// to be told from a full disk. Errors of writing are remembered, never thrown: they are looked at once, at the end.
namespace tavi::host {

DescriptorOutput::DescriptorOutput(int descriptor) : descriptor_(descriptor) {
  setp(buffer_.data(), buffer_.data() + buffer_.size());
}

// A failure here is nobody's any more; who wants to know flushes before.
DescriptorOutput::~DescriptorOutput() {
  WritePending();
}

// The buffer is full: it is written, and the character is the first of the next.
DescriptorOutput::int_type DescriptorOutput::overflow(int_type character) {
  if (!WritePending()) return traits_type::eof();
  if (traits_type::eq_int_type(character, traits_type::eof())) return traits_type::not_eof(character);
  return sputc(traits_type::to_char_type(character));
}

int DescriptorOutput::sync() {
  return WritePending() ? 0 : -1;
}

bool DescriptorOutput::WritePending() {
  const char* at = pbase();
  while (!failure_ && at < pptr()) {
    const ssize_t written = ::write(descriptor_, at, static_cast<std::size_t>(pptr() - at));
    if (written >= 0) {
      at += written;
    } else if (errno != EINTR) {
      // A signal in between is no failure: what has not been written yet is tried again.
      failure_ = std::error_code(errno, std::generic_category());
    }
  }
  // Empty again, also after a failure: what follows is dropped, and is not to be written later without what came
  // before.
  setp(buffer_.data(), buffer_.data() + buffer_.size());
  return !failure_;
}

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
