#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/Platform.h"

namespace tavi {

/// The key of all settings of the component, and the names of its values.
inline constexpr const char* kSettingsKey = "Software\\Pelmont\\Bridge\\ClubDatabase";
inline constexpr const char* kDatabaseFolderSetting = "DB Folder";
inline constexpr const char* kGoverningBodySetting = "Governing Body";
/// What that is where nothing else is set.
inline constexpr const char* kUsualGoverningBody = "EBU";

/// A setting, or `Default` when it is missing or cannot be read; an empty "DB Folder" counts as missing. Machine-wide
/// values are looked up in the settings file first, then in the registry; one that only the registry holds is copied
/// into the file, so that the file takes over by and by. Per-user values are in the registry only. A file that cannot
/// be read is left as it is and never an error; writing it that fails is one.
std::string GetSetting(const Platform& platform, RegistryRoot root, const std::string& KeyPath,
                       const std::string& ValueName, const std::string& Default);

/// The settings file "Madrigo\Settings.xml" below the common application-data folder, loaded: the machine-wide values,
/// each under a chain of elements named after its key ("Software\Pelmont" is <software><pelmont>, blanks become "_").
/// Markup characters of a value stand in the file escaped twice, as all installed files have them.
class SettingsFile {
 public:
  /// Makes the folder and a file without values where they are missing, and such a file in place of an empty one or one
  /// without a root. Raises an error when that fails. Whatever else a file holds is left alone.
  static void MakeSure(const Platform& platform);

  /// Makes sure of the file and loads it. Raises an error when it cannot be made, read or understood.
  explicit SettingsFile(const Platform& platform);

  /// The value, nothing when the file does not hold it.
  [[nodiscard]] std::optional<std::string> Value(const std::string& keyPath, const std::string& valueName) const;
  /// Sets a value; Save stores it. Raises InvalidArgument for one with control characters.
  void SetValue(const std::string& keyPath, const std::string& valueName, const std::string& value);
  /// Writes the file when a value was set. Raises an error when that fails.
  void Save();

 private:
  std::unique_ptr<SettingsDocument> document_;
  bool changed_ = false;
};

}  // namespace tavi
