// The calls of NativeFiles.h on POSIX systems. None of them raises an error: whether a failure matters (a line that is
// not logged does not) is for the caller to say.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "platform/FileSizeSignal.h"
#include "util/NativeFiles.h"
#include "util/Paths.h"

namespace tavi {
namespace {

/// Less what the user's mask takes away.
constexpr mode_t kFolderRights = 0777;
constexpr mode_t kFileRights = 0666;

/// The system would take the path to end there, and name another file.
bool CanBePath(std::string_view path) {
  return path.find('\0') == std::string_view::npos;
}

/// One call of write, which is what keeps appended lines of several programs apart; a part that was written before the
/// disk was full counts as not written. A limit on the size of files must not end the program by its signal.
bool WriteThrough(std::string_view path, int flags, std::string_view text) noexcept {
  try {
    if (!CanBePath(path)) return false;
    const int file = ::open(NativePath(path).c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | flags, kFileRights);
    if (file < 0) return false;
    const ssize_t written = WithoutFileSizeSignal([&] { return ::write(file, text.data(), text.size()); });
    // Network file systems tell some errors of writing only when a file is closed.
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

// Device and inode tell a file whatever its name is, and over links.
bool IsSameNativeFile(std::string_view path, std::string_view other) noexcept {
  try {
    struct stat first {};
    struct stat second {};
    return CanBePath(path) && CanBePath(other) && ::stat(NativePath(path).c_str(), &first) == 0 &&
           ::stat(NativePath(other).c_str(), &second) == 0 && first.st_dev == second.st_dev &&
           first.st_ino == second.st_ino;
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

// O_EXCL makes sure of it in one step with the look whether it is there.
bool MakeNativeFile(std::string_view path, std::string_view text) noexcept {
  return WriteThrough(path, O_EXCL, text);
}

std::optional<std::string> ReadNativeFile(std::string_view path, std::size_t most) noexcept {
  try {
    if (!CanBePath(path)) return std::nullopt;
    const int file = ::open(NativePath(path).c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) return std::nullopt;
    // One byte more, to see whether the file is larger.
    std::string content(most + 1, '\0');
    // A read may give less than was asked for.
    std::size_t size = 0;
    ssize_t count = 1;
    while (count > 0 && size < content.size()) {
      count = ::read(file, content.data() + size, content.size() - size);
      if (count > 0) size += static_cast<std::size_t>(count);
    }
    ::close(file);
    if (count < 0 || size > most) return std::nullopt;
    content.resize(size);
    return content;
  } catch (...) {
    return std::nullopt;
  }
}

bool ReplaceNativeFile(std::string_view path, std::string_view text) noexcept {
  return WriteThrough(path, O_TRUNC, text);
}

bool AppendToNativeFile(std::string_view path, std::string_view text) noexcept {
  return WriteThrough(path, O_APPEND, text);
}

}  // namespace tavi
