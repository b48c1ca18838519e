#pragma once

#include <string>
#include <vector>

namespace tavi::host {

/// The files of a folder that a pattern means, in the order of their names: `*` stands for any text and `?` for any
/// character of a file's name, capitals or not. Folders have no pattern. The pattern itself when no file fits.
[[nodiscard]] std::vector<std::string> FilesOfPattern(const std::string& pattern);

/// The files that were named on a command line. Under Windows, where no shell does that and no file's name can hold
/// them, the names with `*` and `?` are taken as patterns.
[[nodiscard]] std::vector<std::string> FilesNamed(const std::vector<std::string>& names);

}  // namespace tavi::host
