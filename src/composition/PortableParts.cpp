#include <iostream>

#include "composition/NameKeyAdapter.h"
#include "composition/SystemParts.h"
#include "platform/portable/ConsoleMessageBoxes.h"
#include "platform/portable/EmptyRegistry.h"
#include "platform/portable/XdgShellFolders.h"
#include "platform/portable/XmlSettingsDocuments.h"
#include "util/NativePath.h"

namespace tavi {

void SetSystemParts(Platform& platform) {
  platform.messageBoxes = std::make_shared<ConsoleMessageBoxes>(std::cerr);
  platform.nameKeyService = std::make_shared<NameKeyAdapter>();
  platform.registry = std::make_shared<EmptyRegistry>();
  platform.settingsDocuments =
      std::make_shared<XmlSettingsDocuments>([](const std::string& path) { return NativePath(path); });
  platform.shellFolders = std::make_shared<XdgShellFolders>();
}

}  // namespace tavi
