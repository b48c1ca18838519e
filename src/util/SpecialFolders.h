#pragma once

#include <cstdint>
#include <string>

#include "platform/Platform.h"

namespace tavi {

/// Numbers of the special folders that the component asks for.
inline constexpr std::int32_t kPersonalFolder = 5;
inline constexpr std::int32_t kCommonApplicationDataFolder = 35;
inline constexpr std::int32_t kCommonDocumentsFolder = 46;

/// The path of a special folder, empty when it cannot be found. `create` asks for it to be created when missing; it
/// sets the bit 0x8000 in the caller's `folderNumber`, and because of that the step from the common documents folder
/// (46) to the personal one (5) is only made without `create`. Errors of the shell are written to the diagnostics log.
std::string SpecialFolderPath(const ShellFolders& shell, std::int32_t& folderNumber, bool create);

}  // namespace tavi
