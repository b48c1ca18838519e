#include "access/file/LockDeadline.h"

#include <algorithm>

namespace tavi::access {

namespace {

using std::chrono::milliseconds;

// Nobody waits longer, and the clock's range is not exceeded.
constexpr milliseconds kLongest = std::chrono::hours(24 * 365);

}  // namespace

LockDeadline::LockDeadline(FileSystem& fileSystem, milliseconds timeout)
    : timeout_(std::clamp(timeout, milliseconds{0}, kLongest)), end_(fileSystem.Now() + timeout_) {}

milliseconds LockDeadline::Left(FileSystem& fileSystem) const {
  return std::max(milliseconds{0}, std::chrono::ceil<milliseconds>(end_ - fileSystem.Now()));
}

}  // namespace tavi::access
