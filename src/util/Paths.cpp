// Paths. The component's own have the form that its callers know, of Windows: they go into settings, messages and the
// connection string unchanged on every system. Only where the disk is touched a path is translated (NativePath), by
//
//   C:\Club\ClubMembers.mdb    ->  ROOT/c/Club/ClubMembers.mdb
//   \Club\Notes.txt            ->  /Club/Notes.txt
//   /srv/club/ClubMembers.mdb  ->  the same
#include "util/Paths.h"

#include <algorithm>
#include <cstdlib>
#include <exception>

#include "platform/values/Error.h"
#include "platform/values/Text.h"
#include "util/Diagnostics.h"
#include "util/NativeFiles.h"

namespace tavi {
namespace {

constexpr std::int32_t kCreateFlag = 0x8000;

/// Asks the shell in one of its two ways; an error counts as no answer.
template <typename Question>
std::optional<std::string> Ask(Question question) {
  try {
    return question();
  } catch (const std::exception& error) {
    WriteDiagnostic("SHGetFolderPath error: " + std::string(error.what()));
    return std::nullopt;
  }
}

}  // namespace

std::string SpecialFolderPath(const ShellFolders& shell, std::int32_t& folderNumber, bool create) {
  if (create) folderNumber |= kCreateFlag;
  if (const auto path = Ask([&] { return shell.FolderPath(folderNumber); })) return *path;

  const auto located = Ask([&]() -> std::optional<std::string> {
    const std::optional<ShellFolders::Location> location = shell.FolderLocation(folderNumber);
    // The test is the wrong way round, and installed clubs' folders depend on that.
    if (!location || location->nonZeroReturn) return std::nullopt;
    return location->path;
  });
  if (located) return *located;

  // With `create` the number bears the flag and is another one, so that the personal folder is not tried then.
  if (folderNumber != kCommonDocumentsFolder) return {};
  std::int32_t personal = kPersonalFolder;
  return SpecialFolderPath(shell, personal, create);
}

namespace {

#ifdef _WIN32
constexpr bool kHasDrives = true;
#else
constexpr bool kHasDrives = false;
#endif

// Looked up at each call: tests and hosts set the variable while the program runs.
std::string DrivesRoot() {
  if (const char* root = std::getenv("TAVI_DRIVES"); root != nullptr && *root != '\0') return root;
  const char* home = std::getenv("HOME");
  return std::string(home == nullptr ? "" : home) + "/.local/share/tavimembership";
}

bool IsDriveLetter(char character) {
  return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z');
}

bool HasDrive(std::string_view path) {
  return path.size() >= 2 && path[1] == ':' && IsDriveLetter(path[0]);
}

}  // namespace

std::string PathJoin(std::string_view folder, std::string_view fileName, std::string_view separator) {
  std::string path(folder);
  if (!folder.empty() && folder.back() != '\\' && folder.back() != '/') path += separator;
  path += fileName;
  return path;
}

bool FileExists(std::string_view path) noexcept {
  return IsNativeFile(path);
}

// By the text first, which also serves for a file that is still to be made.
bool IsSameFile(std::string_view path, std::string_view other) {
  return EqualIgnoringCase(ReplaceAll(path, "\\", "/"), ReplaceAll(other, "\\", "/")) || IsSameNativeFile(path, other);
}

// The last separator goes too: "C:\Club\a.mdb" gives "C:\Club", "C:a.mdb" gives "C".
std::string ParentPath(std::string_view path) {
  const std::size_t end = path.find_last_of(":\\/");
  if (end == std::string_view::npos) {
    throw Error(ErrorNumber::InvalidArgument, "TaviMembership",
                "Invalid procedure call or argument: the path \"" + std::string(path) + "\" names no folder.");
  }
  const bool isDriveAlone = path.size() == 2 && path[1] == ':';
  return isDriveAlone ? std::string() : std::string(path.substr(0, end));
}

// The root is only asked for when there is a drive, for it looks at the environment.
std::string NativePath(std::string_view path) {
  if (kHasDrives) return std::string(path);
  return NativePath(path, HasDrive(path) ? DrivesRoot() : std::string());
}

std::string NativePath(std::string_view path, std::string_view drivesRoot) {
  std::string native;
  if (HasDrive(path)) {
    constexpr char kLowerCaseBit = 0x20;
    native = std::string(drivesRoot) + "/" + static_cast<char>(path[0] | kLowerCaseBit);
    path.remove_prefix(2);
    // "C:Club" has no folder of its own on that drive to start from; it begins at its root.
    if (!path.empty() && path[0] != '\\' && path[0] != '/') native += '/';
  }
  native += path;
  std::replace(native.begin(), native.end(), '\\', '/');
  return native;
}

}  // namespace tavi
