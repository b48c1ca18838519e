#pragma once

#include <string>

#include "platform/Platform.h"

namespace tavi {

/// The key of all settings of the component, and the names of its values.
inline constexpr const char* kSettingsKey = "Software\\Pelmont\\Bridge\\ClubDatabase";
inline constexpr const char* kDatabaseFolderSetting = "DB Folder";
inline constexpr const char* kGoverningBodySetting = "Governing Body";
/// What that is where nothing else is set.
inline constexpr const char* kUsualGoverningBody = "EBU";

/// A setting, or `Default` when it is missing or cannot be read; an empty "DB Folder" counts as missing. Machine-wide
/// values are looked up in the settings file first, then in the registry; one that only the registry holds is copied
/// into the file, so that the file takes over by and by. Per-user values are in the registry only. A file that cannot
/// be read is left as it is and never an error; writing it that fails is one.
std::string GetSetting(const Platform& platform, RegistryRoot root, const std::string& KeyPath,
                       const std::string& ValueName, const std::string& Default);

}  // namespace tavi
