#pragma once

#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

/// Paths as people write them: UTF-8 on every system. Under Windows they may lie on another computer ("\\server\share")
/// and be longer than 260 characters, neither of which the standard library takes apart rightly.
namespace tavi::host {

/// A path for calls of the system.
[[nodiscard]] std::filesystem::path PathOf(const std::string& text);

/// A path of the system as text.
[[nodiscard]] std::string TextOf(const std::filesystem::path& path);

/// A path from the root on, without "." and "..".
[[nodiscard]] std::string AbsolutePath(const std::string& path);

struct PathParts {
  std::string folder;  ///< empty where the path is a name alone
  std::string name;    ///< empty where the path ends in a separator
};
/// Takes the last name off a path.
[[nodiscard]] PathParts SplitPath(const std::string& path);

/// The path of what lies in a folder; an empty folder is the current one.
[[nodiscard]] std::string JoinPath(const std::string& folder, const std::string& name);

/// Makes a folder, and first those that it lies in; one that is there already is no failure.
[[nodiscard]] std::error_code MakeFolders(const std::string& path);

/// Makes a folder that nobody but its owner may enter, in one that exists; one of that kind that is there already is no
/// failure, but a link to a folder is one. Under Windows it is as open as the folder that it lies in.
[[nodiscard]] std::error_code MakePrivateFolder(const std::string& path);

/// The names of the files and folders that lie in a folder, in no order; none where it cannot be read, and `failure`
/// says why then.
[[nodiscard]] std::vector<std::string> NamesIn(const std::string& folder, std::error_code& failure);

/// Removes a file, or a folder with all that lies in it; links are removed, not followed. What cannot be removed stays.
void RemoveAll(const std::string& path);

/// The system's words for a failure of a file operation.
[[nodiscard]] std::string ReasonOf(const std::error_code& failure);

}  // namespace tavi::host
