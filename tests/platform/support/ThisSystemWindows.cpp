#include <stdexcept>
#include <system_error>

#include "platform/support/ThisSystem.h"
#include "platform/windows/SystemXmlDocuments.h"

namespace tavi::testing {

DiagnosticsLog::DiagnosticsLog() : drive_("C:\\") {
  if (std::filesystem::exists(File().parent_path())) {
    throw std::runtime_error(File().parent_path().string() + " is in use; its log would be lost.");
  }
  SwitchOn();
}

DiagnosticsLog::~DiagnosticsLog() {
  std::error_code ignored;
  std::filesystem::remove_all(File().parent_path(), ignored);
}

std::shared_ptr<const SettingsDocuments> SettingsDocumentsOfThisSystem() {
  return std::make_shared<SystemXmlDocuments>();
}

}  // namespace tavi::testing
