#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace tavi {

/// Turns a path as the component writes it (backslashes, drive letters) into one of this system. On Windows that is the
/// path itself. Elsewhere "\" becomes "/", and a drive "X:" the folder "x" below a root: the folder that the
/// environment variable TAVI_DRIVES names, else ~/.local/share/tavimembership. Paths with slashes pass through
/// unchanged.
std::string NativePath(std::string_view path);
/// The same with the root given.
std::string NativePath(std::string_view path, std::string_view drivesRoot);

/// The native path for calls of the standard library; the text is taken as UTF-8 on every system.
std::filesystem::path NativeFilePath(std::string_view path);

}  // namespace tavi
