#pragma once

#include <string>
#include <string_view>

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
