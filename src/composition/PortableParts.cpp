#include <iostream>

#include "composition/SystemParts.h"
#include "names/NameKeys.h"
#include "platform/portable/PortableServices.h"
#include "util/Paths.h"

namespace tavi {

void SetSystemParts(Platform& platform) {
  platform.messageBoxes = std::make_shared<ConsoleMessageBoxes>(std::cerr);
  platform.nameKeyService = std::make_shared<OwnNameKeys>();
  platform.registry = std::make_shared<EmptyRegistry>();
  platform.settingsDocuments =
      std::make_shared<XmlSettingsDocuments>([](const std::string& path) { return NativePath(path); });
  platform.shellFolders = std::make_shared<XdgShellFolders>();
}

}  // namespace tavi
