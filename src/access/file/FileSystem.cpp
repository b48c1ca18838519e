// What time and threads are for every file system, unless one tells a story of its own, as those of tests do.
#include "access/file/FileSystem.h"

#include <thread>
#include <utility>

namespace tavi::access {

void FileSystem::Pause(std::chrono::milliseconds duration) {
  // A sleep of no length may return at once and leave the processor to the one who waits; the lock's holder needs it.
  if (duration.count() > 0) {
    std::this_thread::sleep_for(duration);
  } else {
    std::this_thread::yield();
  }
}

std::unique_ptr<BackgroundWork> FileSystem::NewBackgroundWork(std::chrono::milliseconds delay,
                                                              std::function<void()> work) {
  return NativeBackgroundWork(delay, std::move(work));
}

}  // namespace tavi::access
