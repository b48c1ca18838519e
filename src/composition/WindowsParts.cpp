#include "composition/SystemParts.h"
#include "names/NameKeys.h"
#include "platform/windows/SystemServices.h"

namespace tavi {

void SetSystemParts(Platform& platform) {
  platform.messageBoxes = std::make_shared<SystemMessageBoxes>();
  // Keys are stored in the club's file: where the outside service made them, it has to make the new ones too.
  if (OutsideNameKeys::IsRegistered()) {
    platform.nameKeyService = std::make_shared<OutsideNameKeys>();
  } else {
    platform.nameKeyService = std::make_shared<OwnNameKeys>();
  }
  platform.registry = std::make_shared<SystemRegistry>();
  platform.settingsDocuments = std::make_shared<SystemXmlDocuments>();
  platform.shellFolders = std::make_shared<SystemFolders>();
}

}  // namespace tavi
