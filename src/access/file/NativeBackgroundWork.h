#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "access/file/FileSystem.h"

namespace tavi::access {

/// Work in a thread of the operating system, which begins when the first work is asked for.
std::unique_ptr<BackgroundWork> NativeBackgroundWork(std::chrono::milliseconds delay, std::function<void()> work);

}  // namespace tavi::access
