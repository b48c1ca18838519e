#include "util/SettingsFile.h"

#include <algorithm>

#include "platform/values/Error.h"
#include "platform/values/Text.h"
#include "util/NativeFiles.h"
#include "util/Paths.h"
#include "util/SpecialFolders.h"

namespace tavi {
namespace {

constexpr const char* kSkeleton =
    "<settings>\r\n"
    "  <hkey_local_machine>\r\n"
    "    <software>\r\n"
    "      <pelmont>\r\n"
    "      </pelmont>\r\n"
    "    </software>\r\n"
    "  </hkey_local_machine>\r\n"
    "</settings>\r\n";

/// Puts entities for markup characters, before the document escapes the text once more.
std::string Escaped(std::string_view value) {
  return ReplaceAll(ReplaceAll(ReplaceAll(value, "&", "&amp;"), "<", "&lt;"), ">", "&gt;");
}

std::string Unescaped(std::string_view value) {
  return ReplaceAll(ReplaceAll(ReplaceAll(value, "&lt;", "<"), "&gt;", ">"), "&amp;", "&");
}

/// The chain of element names from the document to a value.
std::vector<std::string> ElementPath(const std::string& keyPath, const std::string& valueName) {
  std::vector<std::string> path{"settings", "hkey_local_machine"};
  const std::string key = ReplaceAll(ReplaceAll(LowerCase(keyPath), "/", "\\"), " ", "_");
  for (std::string& component : Split(key, '\\')) path.push_back(std::move(component));
  path.push_back(ReplaceAll(valueName, " ", "_"));
  return path;
}

/// Refuses a value with a character that no XML document holds: the file could not be loaded any more.
void RequireXmlText(const std::string& valueName, const std::string& value) {
  const auto isForbidden = [](char character) {
    return character >= 0 && character < ' ' && character != '\t' && character != '\r' && character != '\n';
  };
  if (std::none_of(value.begin(), value.end(), isForbidden)) return;
  throw Error(ErrorNumber::InvalidArgument, "TaviMembership",
              "The setting \"" + valueName + "\" holds a control character, so the settings file cannot take it.");
}

/// The path of the settings file, which is there on return unless it could not be made.
std::string MakeSureOfFile(const ShellFolders& shell) {
  std::int32_t folderNumber = kCommonApplicationDataFolder;
  const std::string commonFolder = SpecialFolderPath(shell, folderNumber, true);
  if (commonFolder.empty()) {
    throw Error(ErrorNumber::InvalidArgument, "TaviMembership",
                "There is no folder for the settings file: the system names none for the data of all programs.");
  }
  const std::string folder = commonFolder + "\\Madrigo";
  MakeNativeFolder(folder);
  std::string fileName = folder + "\\Settings.xml";
  if (!FileExists(fileName)) MakeNativeFile(fileName, kSkeleton);
  return fileName;
}

}  // namespace

SettingsFile::SettingsFile(const Platform& platform)
    : document_(platform.settingsDocuments->Load(MakeSureOfFile(*platform.shellFolders))) {}

std::optional<std::string> SettingsFile::Value(const std::string& keyPath, const std::string& valueName) const {
  const std::optional<std::string> text = document_->Text(ElementPath(keyPath, valueName));
  return text ? std::optional<std::string>(Unescaped(*text)) : std::nullopt;
}

void SettingsFile::SetValue(const std::string& keyPath, const std::string& valueName, const std::string& value) {
  RequireXmlText(valueName, value);
  document_->SetText(ElementPath(keyPath, valueName), Escaped(value));
  changed_ = true;
}

void SettingsFile::Save() {
  if (changed_) document_->Save();
  changed_ = false;
}

}  // namespace tavi
