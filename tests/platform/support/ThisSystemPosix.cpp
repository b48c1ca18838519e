#include <algorithm>
#include <cstdlib>
#include <random>

#include "platform/portable/PortableServices.h"
#include "platform/support/ThisSystem.h"

namespace tavi::testing {

// Drives are folders there, wherever the environment says.
DiagnosticsLog::DiagnosticsLog() {
  std::random_device random;
  const std::filesystem::path root =
      std::filesystem::temp_directory_path() / ("tavi-drives-" + std::to_string(random()) + std::to_string(random()));
  drive_ = root / "c";
  setenv("TAVI_DRIVES", root.c_str(), 1);
  SwitchOn();
}

DiagnosticsLog::~DiagnosticsLog() {
  unsetenv("TAVI_DRIVES");
  std::error_code ignored;
  std::filesystem::remove_all(drive_.parent_path(), ignored);
}

std::shared_ptr<const SettingsDocuments> SettingsDocumentsOfThisSystem() {
  // The component joins paths by backslashes.
  return std::make_shared<XmlSettingsDocuments>([](std::string path) {
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
  });
}

}  // namespace tavi::testing
