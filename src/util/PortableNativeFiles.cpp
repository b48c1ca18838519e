#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "util/NativeFiles.h"
#include "util/NativePath.h"

namespace tavi {
namespace {

constexpr mode_t kFolderRights = 0777;
constexpr mode_t kFileRights = 0666;

bool CanBePath(std::string_view path) {
  return path.find('\0') == std::string_view::npos;
}

bool WriteThrough(std::string_view path, int flags, std::string_view text) noexcept {
  try {
    if (!CanBePath(path)) return false;
    const int file = ::open(NativePath(path).c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | flags, kFileRights);
    if (file < 0) return false;
    const ssize_t written = ::write(file, text.data(), text.size());
    return ::close(file) == 0 && written == static_cast<ssize_t>(text.size());
  } catch (...) {
    return false;
  }
}

}  // namespace

bool IsNativeFile(std::string_view path) noexcept {
  try {
    struct stat status {};
    return CanBePath(path) && ::stat(NativePath(path).c_str(), &status) == 0 && !S_ISDIR(status.st_mode);
  } catch (...) {
    return false;
  }
}

bool MakeNativeFolder(std::string_view path) noexcept {
  try {
    return CanBePath(path) && ::mkdir(NativePath(path).c_str(), kFolderRights) == 0;
  } catch (...) {
    return false;
  }
}

bool MakeNativeFile(std::string_view path, std::string_view text) noexcept {
  return WriteThrough(path, O_EXCL, text);
}

bool AppendToNativeFile(std::string_view path, std::string_view text) noexcept {
  return WriteThrough(path, O_APPEND, text);
}

}  // namespace tavi
