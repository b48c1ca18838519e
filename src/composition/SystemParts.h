#pragma once

#include "platform/Platform.h"

namespace tavi {

/// Sets the parts of a platform that each operating system has in its own way: message boxes, name keys, registry,
/// settings documents and special folders.
void SetSystemParts(Platform& platform);

}  // namespace tavi
