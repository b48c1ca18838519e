#pragma once

#include <functional>

#include "platform/Platform.h"

namespace tavi {

/// The special folders of a desktop that follows the XDG base directories: 5 is the user's documents folder (as
/// user-dirs.dirs names it, else ~/Documents), 35 the configuration folder (XDG_CONFIG_HOME, else ~/.config). Every
/// other number, 46 among them, has no folder. Paths are absolute, with slashes; a folder need not exist. With the bit
/// 0x8000 the folder is created, and there is no answer when that fails.
class XdgShellFolders : public ShellFolders {
 public:
  /// Looks up an environment variable; nothing when it is not set.
  using Environment = std::function<std::optional<std::string>(const std::string& name)>;

  /// Uses the environment of the process.
  XdgShellFolders();
  explicit XdgShellFolders(Environment environment) : environment_(std::move(environment)) {}

  [[nodiscard]] std::optional<std::string> FolderPath(std::int32_t folderNumber) const override;
  /// There is no second way of asking here: never an answer.
  [[nodiscard]] std::optional<Location> FolderLocation(std::int32_t folderNumber) const override;

 private:
  [[nodiscard]] std::optional<std::string> AbsolutePathOf(const std::string& variable) const;
  [[nodiscard]] std::optional<std::string> ConfigurationFolder() const;
  [[nodiscard]] std::optional<std::string> DocumentsFolder() const;

  Environment environment_;
};

}  // namespace tavi
