#include <iostream>

#include "composition/SystemParts.h"
#include "names/NameKeys.h"
#include "platform/portable/PortableServices.h"
#include "util/Paths.h"

namespace tavi {

// Without a desktop messages go to standard error, where they do not mix with what a command answers. There is no
// registry: settings come from the settings file alone.
void SetSystemParts(Platform& platform) {
  platform.messageBoxes = std::make_shared<ConsoleMessageBoxes>(std::cerr);
  platform.nameKeyService = std::make_shared<OwnNameKeys>();
  platform.registry = std::make_shared<EmptyRegistry>();
  platform.settingsDocuments =
      std::make_shared<XmlSettingsDocuments>([](const std::string& path) { return NativePath(path); });
  platform.shellFolders = std::make_shared<XdgShellFolders>();
}

}  // namespace tavi
