#include "platform/portable/PortableServices.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "platform/values/Text.h"

// The folders by which a club is found, on desktops that follow the XDG base directories. Their rules are followed
// where they differ from what one would guess: a variable that holds no absolute path counts as not set, and the
// documents folder stands in a file of shell assignments, user-dirs.dirs in the configuration folder. That file is
// read, not run:
//
//   XDG_DOCUMENTS_DIR="$HOME/Dokumente"
//
// Nothing is remembered; each question reads the environment and the file anew, a few times in the life of a program.
namespace tavi {
namespace {

// The numbers by which Windows knows these folders, and the bit with which it is asked to make one.
constexpr std::int32_t kPersonal = 5;
constexpr std::int32_t kCommonApplicationData = 35;
constexpr std::int32_t kCreate = 0x8000;
// The file has eight assignments. What is longer is something else, and is not read to its end.
constexpr int kMostLines = 1000;

std::optional<std::string> ProcessVariable(const std::string& name) {
  const char* value = std::getenv(name.c_str());
  return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

/// The text between the double quotes of a shell assignment, its backslash escapes resolved.
/// Nothing when a quote is missing: the desktop writes both.
std::optional<std::string> QuotedValue(std::string_view line) {
  const std::size_t open = line.find('"');
  if (open == std::string_view::npos) return std::nullopt;
  std::string value;
  for (std::size_t index = open + 1; index < line.size(); ++index) {
    if (line[index] == '"') return value;
    if (line[index] == '\\' && index + 1 < line.size()) ++index;
    value.push_back(line[index]);
  }
  return std::nullopt;
}

/// The root keeps its only one. Paths are joined with a slash afterwards and shown to people.
std::string WithoutTrailingSlashes(std::string path) {
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path;
}

/// The documents folder that a user-dirs.dirs file names; the last assignment counts.
std::optional<std::string> NamedDocumentsFolder(const std::string& fileName, const std::string& home) {
  constexpr std::string_view kAssignment = "XDG_DOCUMENTS_DIR=";
  constexpr std::string_view kHome = "$HOME";
  std::optional<std::string> folder;
  std::ifstream file(fileName);
  std::string line;
  for (int count = 0; count < kMostLines && std::getline(file, line); ++count) {
    const std::string trimmed = Trim(line);
    if (!trimmed.starts_with(kAssignment)) continue;
    const std::optional<std::string> value = QuotedValue(trimmed);
    if (!value) continue;
    // The desktop writes either form and no other; a relative path is against its rules and passed over.
    if (value->starts_with(kHome)) folder = WithoutTrailingSlashes(home + value->substr(kHome.size()));
    if (value->starts_with('/')) folder = WithoutTrailingSlashes(*value);
  }
  return folder;
}

}  // namespace

XdgShellFolders::XdgShellFolders() : environment_(ProcessVariable) {}

std::optional<std::string> XdgShellFolders::AbsolutePathOf(const std::string& variable) const {
  const std::optional<std::string> value = environment_(variable);
  if (!value || !value->starts_with('/')) return std::nullopt;
  return WithoutTrailingSlashes(*value);
}

std::optional<std::string> XdgShellFolders::ConfigurationFolder() const {
  if (auto configured = AbsolutePathOf("XDG_CONFIG_HOME")) return configured;
  // What the rules give for a variable that is not set.
  if (const auto home = AbsolutePathOf("HOME")) return *home + "/.config";
  return std::nullopt;
}

std::optional<std::string> XdgShellFolders::DocumentsFolder() const {
  const std::optional<std::string> home = AbsolutePathOf("HOME");
  if (!home) return std::nullopt;
  const std::optional<std::string> configuration = ConfigurationFolder();
  // With a home folder there is always a configuration folder.
  return NamedDocumentsFolder(*configuration + "/user-dirs.dirs", *home).value_or(*home + "/Documents");
}

std::optional<std::string> XdgShellFolders::FolderPath(std::int32_t folderNumber) const {
  std::optional<std::string> folder;
  if ((folderNumber & ~kCreate) == kPersonal) folder = DocumentsFolder();
  if ((folderNumber & ~kCreate) == kCommonApplicationData) folder = ConfigurationFolder();
  if (folder && (folderNumber & kCreate) != 0) {
    std::error_code failure;
    // Whether there is a folder at the end is what counts, whoever made it.
    std::filesystem::create_directories(*folder, failure);
    if (!std::filesystem::is_directory(*folder, failure)) return std::nullopt;
  }
  return folder;
}

std::optional<ShellFolders::Location> XdgShellFolders::FolderLocation(std::int32_t /*folderNumber*/) const {
  return std::nullopt;
}

}  // namespace tavi
