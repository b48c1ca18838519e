#pragma once

#include <cstdint>
#include <string>
#include <string_view>

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

/// Paths as the component writes them, and as this system does; only FileExists and IsSameFile look at the disk.
namespace tavi {

/// Folder, separator and file name; no separator is put behind one that is there already ("\" or "/"), nor behind the
/// empty folder.
std::string PathJoin(std::string_view folder, std::string_view fileName, std::string_view separator = "\\");

/// True for a file that is there and is no folder. Never raises an error.
bool FileExists(std::string_view path) noexcept;

/// True for two paths of one file: on the disk, in whatever spelling and over whatever links; or of the same text, but
/// for case and the kind of separators, whether the file is there or not.
bool IsSameFile(std::string_view path, std::string_view other);

/// Everything before the last ":", "\" or "/"; nothing for a drive alone ("C:"). Raises InvalidArgument for a path
/// without any of them.
std::string ParentPath(std::string_view path);

/// Turns a path as the component writes it (backslashes, drive letters) into one of this system. On Windows that is the
/// path itself. Elsewhere "\" becomes "/", and a drive "X:" the folder "x" below a root: the folder that the
/// environment variable TAVI_DRIVES names, else ~/.local/share/tavimembership. Paths with slashes pass through
/// unchanged.
std::string NativePath(std::string_view path);
/// The same with the root given.
std::string NativePath(std::string_view path, std::string_view drivesRoot);

}  // namespace tavi
