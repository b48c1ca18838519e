#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace tavi {

/// The few calls on files that the component makes beside its database, straight to the system: streams would bring
/// the standard library's locales into the Windows library, a third of its size. Paths are written as the component
/// writes them (see NativePath); one that holds a null character names nothing.

/// True when the path names something that is no folder.
bool IsNativeFile(std::string_view path) noexcept;
/// True when both paths lead to one file that is there, in whatever spelling and over whatever links.
bool IsSameNativeFile(std::string_view path, std::string_view other) noexcept;
/// Makes a folder in one that exists. False when that cannot be done, also because it is there already.
bool MakeNativeFolder(std::string_view path) noexcept;
/// Makes a file that holds `text`. False, and nothing is changed, when it is there already or cannot be made.
bool MakeNativeFile(std::string_view path, std::string_view text) noexcept;
/// The content of a file of at most `most` bytes; nothing for a larger one, and where it cannot be read.
std::optional<std::string> ReadNativeFile(std::string_view path, std::size_t most) noexcept;
/// Puts `text` in place of what a file holds, which is made where it is missing. False when it cannot be written.
bool ReplaceNativeFile(std::string_view path, std::string_view text) noexcept;
/// Adds `text` to a file, which is made where it is missing, in one call of the system: texts of several programs do
/// not mix. False when the file cannot be written.
bool AppendToNativeFile(std::string_view path, std::string_view text) noexcept;

}  // namespace tavi
