#include "util/NativePath.h"

#include <algorithm>
#include <cstdlib>

namespace tavi {
namespace {

#ifdef _WIN32
constexpr bool kHasDrives = true;
#else
constexpr bool kHasDrives = false;
#endif

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
    if (!path.empty() && path[0] != '\\' && path[0] != '/') native += '/';
  }
  native += path;
  std::replace(native.begin(), native.end(), '\\', '/');
  return native;
}

}  // namespace tavi
