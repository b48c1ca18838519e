#pragma once

#include <memory>

#include "platform/Platform.h"

namespace tavi {

/// This machine's own platform: its database engine, clock, settings, folders and message boxes. Defined where all of
/// it is put together.
std::shared_ptr<const Platform> DefaultPlatform();

}  // namespace tavi
