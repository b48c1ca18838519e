#include "util/SettingsStore.h"

#include <exception>

#include "util/SettingsFile.h"

namespace tavi {
namespace {

/// The value of the settings file; a file that cannot be read holds none.
std::string FileValue(const Platform& platform, const std::string& keyPath, const std::string& valueName) {
  try {
    return SettingsFile(platform).Value(keyPath, valueName).value_or("");
  } catch (const std::exception&) {
    return {};
  }
}

}  // namespace

std::string GetSetting(const Platform& platform, RegistryRoot root, const std::string& KeyPath,
                       const std::string& ValueName, const std::string& Default) {
  const bool isMachineWide = root == RegistryRoot::LocalMachine;
  if (isMachineWide) {
    if (std::string value = FileValue(platform, KeyPath, ValueName); !value.empty()) return value;
  }
  const std::optional<std::string> found = platform.registry->ReadText(root, KeyPath, ValueName);
  // Removing a setting by emptying it must not leave a club without a folder.
  if (!found || found->empty()) return Default;
  if (isMachineWide) {
    SettingsFile file(platform);
    file.SetValue(KeyPath, ValueName, *found);
    file.Save();
  }
  return *found;
}

}  // namespace tavi
