#include "util/SettingsStore.h"

#include <exception>
#include <memory>
#include <optional>

#include "platform/values/Text.h"
#include "util/SettingsFile.h"

namespace tavi {
namespace {

/// The value of the settings file; a file that cannot be read holds none.
std::optional<std::string> FileValue(const Platform& platform, const std::string& keyPath,
                                     const std::string& valueName) {
  try {
    return SettingsFile(platform).Value(keyPath, valueName);
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

/// Puts a value into the settings file; a file that cannot be read is left as it is.
void CopyIntoFile(const Platform& platform, const std::string& keyPath, const std::string& valueName,
                  const std::string& value) {
  SettingsFile::MakeSure(platform);
  std::unique_ptr<SettingsFile> file;
  try {
    file = std::make_unique<SettingsFile>(platform);
  } catch (const std::exception&) {
    return;
  }
  file->SetValue(keyPath, valueName, value);
  file->Save();
}

/// Removing the database folder by emptying it must not leave a club without one; other settings may be empty.
bool IsFound(const std::string& valueName, const std::optional<std::string>& value) {
  return value && !(value->empty() && EqualIgnoringCase(valueName, kDatabaseFolderSetting));
}

}  // namespace

std::string GetSetting(const Platform& platform, RegistryRoot root, const std::string& KeyPath,
                       const std::string& ValueName, const std::string& Default) {
  const bool isMachineWide = root == RegistryRoot::LocalMachine;
  if (isMachineWide) {
    const std::optional<std::string> value = FileValue(platform, KeyPath, ValueName);
    if (IsFound(ValueName, value)) return *value;
  }
  const std::optional<std::string> found = platform.registry->ReadText(root, KeyPath, ValueName);
  if (!IsFound(ValueName, found)) return Default;
  if (isMachineWide) CopyIntoFile(platform, KeyPath, ValueName, *found);
  return *found;
}

}  // namespace tavi
