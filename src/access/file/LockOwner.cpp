// Open-file-description locks belong to no process as far as the lock calls tell; what a process has open says which
// locks are on it.
#include "access/file/LockOwner.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <sstream>

// The system shows for each process which files it has open (/proc/N/fd), and for each of these which locks are on it
// (/proc/N/fdinfo). So all processes are gone through, as far as they may be looked into. That takes milliseconds, and
// is done only for the message of a wait that has failed. What cannot be read belongs to somebody else, and is passed
// over.

namespace tavi::access {

namespace {

namespace fs = std::filesystem;

bool IsNumber(const std::string& text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

/// By device and number, as the other process may have it open under another name.
bool IsSameFile(const fs::path& descriptor, const struct stat& wanted) {
  struct stat status {};
  return ::stat(descriptor.c_str(), &status) == 0 && status.st_dev == wanted.st_dev && status.st_ino == wanted.st_ino;
}

enum class Kind { Write, Any };

// A line "lock: 1: OFDLCK ADVISORY WRITE -1 08:01:4711 100 200", the last number "EOF" when there is no end. Locks of
// whole files (FLOCK) are another matter.
bool IsLockIn(const std::string& line, const LockRange& range, Kind wanted) {
  if (!line.starts_with("lock:")) return false;
  std::istringstream words(line);
  std::string skipped;
  std::string type;
  std::string kind;
  std::uint64_t first = 0;
  std::string lastText;
  words >> skipped >> skipped >> type >> skipped >> kind >> skipped >> skipped >> first >> lastText;
  if (!words || type == "FLOCK" || (wanted == Kind::Write && kind != "WRITE")) return false;
  const std::uint64_t last =
      IsNumber(lastText) ? std::strtoull(lastText.c_str(), nullptr, 10) : std::numeric_limits<std::uint64_t>::max();
  return first < range.offset + range.length && range.offset <= last;
}

bool HoldsLock(const fs::path& process, const std::string& descriptor, const LockRange& range, Kind wanted) {
  std::ifstream information(process / "fdinfo" / descriptor);
  for (std::string line; std::getline(information, line);) {
    if (IsLockIn(line, range, wanted)) return true;
  }
  return false;
}

bool HoldsLock(const fs::path& process, bool isOwn, const LockRange& range, const struct stat& file, Kind wanted) {
  std::error_code unreadable;
  for (const auto& entry : fs::directory_iterator(process / "fd", unreadable)) {
    const std::string descriptor = entry.path().filename();
    // The asking connection's own locks are not what it waits for.
    if (isOwn && descriptor == std::to_string(range.descriptor)) continue;
    if (IsSameFile(entry.path(), file) && HoldsLock(process, descriptor, range, wanted)) return true;
  }
  return false;
}

/// The name that the process goes by, when it may be read.
std::string Describe(const fs::path& process, bool isOwn) {
  if (isOwn) return "another connection of this process";
  std::string name;
  std::getline(std::ifstream(process / "comm"), name);
  return "process " + process.filename().string() + (name.empty() ? "" : " (" + name + ")");
}

std::string FindHolder(const LockRange& range, Kind wanted) {
  struct stat file {};
  if (::fstat(range.descriptor, &file) != 0) return {};
  std::error_code unreadable;
  for (const auto& entry : fs::directory_iterator("/proc", unreadable)) {
    const std::string name = entry.path().filename();
    if (!IsNumber(name)) continue;
    const bool isOwn = name == std::to_string(::getpid());
    if (HoldsLock(entry.path(), isOwn, range, file, wanted)) return Describe(entry.path(), isOwn);
  }
  return {};
}

}  // namespace

// Who writes keeps out everybody, who reads only writers.
std::string FindLockOwner(const LockRange& range) {
  const std::string writer = FindHolder(range, Kind::Write);
  return writer.empty() ? FindHolder(range, Kind::Any) : writer;
}

}  // namespace tavi::access
