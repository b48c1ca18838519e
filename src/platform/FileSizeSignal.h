#pragma once

#include <cerrno>
#include <csignal>
#include <ctime>

namespace tavi {

/// Runs a call of a POSIX system that may make a file longer. Past the limit that the system sets for the size of files
/// (ulimit -f) the call fails with EFBIG; the signal SIGXFSZ, which would end the process then, in the middle of a
/// change, is held back from this thread and taken away. What the host has settled for the signal stays as it is: its
/// handler, its mask, one that is pending already. Returns what the call returns; errno is the call's.
template <typename Call>
auto WithoutFileSizeSignal(Call call) {
  sigset_t signal;
  sigset_t before;
  sigemptyset(&signal);
  sigaddset(&signal, SIGXFSZ);
  ::pthread_sigmask(SIG_BLOCK, &signal, &before);
  sigset_t pending;
  sigemptyset(&pending);
  if (sigismember(&before, SIGXFSZ) == 1) ::sigpending(&pending);
  const auto result = call();
  const int error = errno;
  if (result == -1 && error == EFBIG && sigismember(&pending, SIGXFSZ) == 0) {
    const struct timespec noTime {};
    while (::sigtimedwait(&signal, nullptr, &noTime) == -1 && errno == EINTR) {
    }
  }
  ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
  errno = error;
  return result;
}

}  // namespace tavi
