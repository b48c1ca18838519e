// Settings that are kept for a machine stand in an XML file, which takes over from the registry one value after the
// other: what only the registry has is copied when it is first asked for. Asking must work whatever state the file is
// in, so reading it never fails; writing it does, because a setting that is not stored is worth knowing of.
#include "util/SettingsStore.h"

#include <algorithm>
#include <exception>

#include "platform/values/Error.h"
#include "platform/values/Text.h"
#include "util/NativeFiles.h"
#include "util/Paths.h"

namespace tavi {
namespace {

/// A file without elements is not longer, whatever comments it has.
constexpr std::size_t kLongestWithoutElement = 4096;
constexpr const char* kSkeleton =
    "<settings>\r\n"
    "  <hkey_local_machine>\r\n"
    "    <software>\r\n"
    "      <pelmont>\r\n"
    "      </pelmont>\r\n"
    "    </software>\r\n"
    "  </hkey_local_machine>\r\n"
    "</settings>\r\n";

// "A & B" stands in the file as "A &amp;amp; B".
/// Puts entities for markup characters, before the document escapes the text once more.
std::string Escaped(std::string_view value) {
  return ReplaceAll(ReplaceAll(ReplaceAll(value, "&", "&amp;"), "<", "&lt;"), ">", "&gt;");
}

/// In the opposite order of Escaped, so that "&amp;lt;" becomes "&lt;" and not "<".
std::string Unescaped(std::string_view value) {
  return ReplaceAll(ReplaceAll(ReplaceAll(value, "&lt;", "<"), "&gt;", ">"), "&amp;", "&");
}

/// The chain of element names from the document to a value.
/// "Software\Pelmont\Bridge\ClubDatabase" and "DB Folder" lead to
///   <settings><hkey_local_machine><software><pelmont><bridge><clubdatabase><DB_Folder>
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

/// True for an empty text and an XML document without a root: nobody's settings are lost with it.
/// Passes over a byte order mark, blanks, comments and declarations. A text that breaks off within one of these is
/// somebody's file that was damaged, and is left alone.
bool HoldsNoElement(std::string_view text) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  for (;;) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
    if (text.empty()) return true;
    const bool isComment = text.starts_with("<!--");
    if (!isComment && !text.starts_with("<?")) return false;
    const std::string_view end = isComment ? "-->" : "?>";
    const std::size_t place = text.find(end);
    if (place == std::string_view::npos) return false;
    text.remove_prefix(place + end.size());
  }
}

/// Created when it is missing, as the first program on a machine finds none.
std::string SettingsFolder(const ShellFolders& shell) {
  std::int32_t folderNumber = kCommonApplicationDataFolder;
  const std::string commonFolder = SpecialFolderPath(shell, folderNumber, true);
  return commonFolder.empty() ? "" : commonFolder + "\\Madrigo";
}

std::string SettingsPath(const ShellFolders& shell) {
  const std::string folder = SettingsFolder(shell);
  if (!folder.empty()) return folder + "\\Settings.xml";
  throw Error(ErrorNumber::InvalidArgument, "TaviMembership",
              "There is no folder for the settings file: the system names none for the data of all programs.");
}

/// The value of the settings file; a file that cannot be read holds none.
/// Loading it makes the file where it is missing; that it cannot be made is no reason to fail a question.
std::optional<std::string> FileValue(const Platform& platform, const std::string& keyPath,
                                     const std::string& valueName) {
  try {
    return SettingsFile(platform).Value(keyPath, valueName);
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

/// Puts a value into the settings file; a file that cannot be read is left as it is.
/// MakeSure raises what keeps the file from being made; loading it fails for a file that is somebody else's to mend.
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

void SettingsFile::MakeSure(const Platform& platform) {
  const std::string folder = SettingsFolder(*platform.shellFolders);
  // A system without such a folder is told by SettingsPath, which names what is missing.
  if (folder.empty()) return;
  const std::string path = SettingsPath(*platform.shellFolders);
  MakeNativeFolder(folder);
  bool isThere = true;
  if (!FileExists(path)) {
    // Another program may make it at the same time.
    isThere = MakeNativeFile(path, kSkeleton) || FileExists(path);
  } else if (const auto content = ReadNativeFile(path, kLongestWithoutElement); content && HoldsNoElement(*content)) {
    isThere = ReplaceNativeFile(path, kSkeleton);
  }
  if (isThere) return;
  throw Error(ErrorNumber::InvalidArgument, "TaviMembership",
              "The settings file " + path + " cannot be made; let this user write into its folder.");
}

SettingsFile::SettingsFile(const Platform& platform) {
  MakeSure(platform);
  document_ = platform.settingsDocuments->Load(SettingsPath(*platform.shellFolders));
}

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

std::string GetSetting(const Platform& platform, RegistryRoot root, const std::string& KeyPath,
                       const std::string& ValueName, const std::string& Default) {
  const bool isMachineWide = root == RegistryRoot::LocalMachine;
  if (isMachineWide) {
    const std::optional<std::string> value = FileValue(platform, KeyPath, ValueName);
    if (IsFound(ValueName, value)) return *value;
  }
  // Whatever the file does not hold, and all values of a user.
  const std::optional<std::string> found = platform.registry->ReadText(root, KeyPath, ValueName);
  if (!IsFound(ValueName, found)) return Default;
  if (isMachineWide) CopyIntoFile(platform, KeyPath, ValueName, *found);
  return *found;
}

}  // namespace tavi
