#pragma once

#include "platform/Platform.h"

namespace tavi {

/// The special folders as the Windows shell names them.
class SystemFolders : public ShellFolders {
 public:
  [[nodiscard]] std::optional<std::string> FolderPath(std::int32_t folderNumber) const override;
  [[nodiscard]] std::optional<Location> FolderLocation(std::int32_t folderNumber) const override;
};

}  // namespace tavi
