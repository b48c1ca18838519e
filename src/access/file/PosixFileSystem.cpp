// The operating system's files on POSIX systems (Linux). Locks are open-file-description locks, so that two openers in
// one process exclude each other as two processes do.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>
#include <cerrno>
#include <cstdlib>
#include <limits>
#include <system_error>
#include <utility>

#include "access/file/EngineError.h"
#include "access/file/FileSystem.h"
#include "access/file/LockOwner.h"
#include "platform/FileSizeSignal.h"

// Every call of the system is tried again when a signal interrupts it, and goes on where less was read or written than
// was asked. Errors carry the system's own words, the file and, where there is one, the byte: they are what somebody
// sees who has a full disk.
//
// Permissions are judged by the bits of file and folder, not only by whether a call succeeds: the administrator may
// write anything, and would write files that are marked as read-only for everybody.

namespace tavi::access {

namespace {

constexpr mode_t kAnyWrite = S_IWUSR | S_IWGRP | S_IWOTH;
constexpr mode_t kNewFileMode = 0666;
constexpr mode_t kPermissionBits = 07777;

/// `code` is the errno of the call, taken before anything else could change it.
[[noreturn]] void RaiseSystemError(const std::string& operation, const std::string& path, int code,
                                   const std::string& place = "") {
  RaiseFailure("Could not " + operation + " '" + path + "'" + place + ": " + std::generic_category().message(code) +
               ".");
}

std::string AtByte(std::uint64_t offset) {
  return " at byte " + std::to_string(offset);
}

std::string FolderOf(const std::string& path) {
  const std::size_t slash = path.find_last_of('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

/// The read-only attribute of Access, as far as there is one here: a file that nobody may write.
bool HasWriteBit(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 && (status.st_mode & kAnyWrite) != 0;
}

/// A folder that nobody may write takes no new files from the administrator either.
void RequireFolderTakesFiles(const std::string& operation, const std::string& path) {
  if (!HasWriteBit(FolderOf(path))) RaiseSystemError(operation, path, EACCES);
}

// Runs a call again while a signal interrupts it.
template <typename Call>
auto Retry(Call call) {
  auto result = call();
  while (result == -1 && errno == EINTR) result = call();
  return result;
}

std::int64_t Nanoseconds(const struct timespec& time) {
  constexpr std::int64_t kNanosecondsPerSecond = 1000000000;
  return time.tv_sec * kNanosecondsPerSecond + time.tv_nsec;
}

/// Closing is not looked at: what counts was flushed before, and a flush tells of errors.
class Descriptor {
 public:
  explicit Descriptor(int value) : value_(value) {}
  ~Descriptor() {
    if (value_ >= 0) ::close(value_);
  }
  Descriptor(Descriptor&& other) noexcept : value_(std::exchange(other.value_, -1)) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(value_, other.value_);
    return *this;
  }
  [[nodiscard]] int Value() const { return value_; }

 private:
  int value_;
};

class PosixFile final : public File {
 public:
  PosixFile(Descriptor descriptor, std::string path, bool isReadOnly)
      : descriptor_(std::move(descriptor)), path_(std::move(path)), isReadOnly_(isReadOnly) {}

  // By the place, not by a position of the opener, which two calls could fight for.
  void ReadAt(std::uint64_t offset, std::span<std::uint8_t> target) override {
    while (!target.empty()) {
      const ssize_t count =
          Retry([&] { return ::pread(descriptor_.Value(), target.data(), target.size(), static_cast<off_t>(offset)); });
      if (count < 0) RaiseSystemError("read", path_, errno, AtByte(offset));
      if (count == 0)
        RaiseFailure("Could not read '" + path_ + "': the file ends at byte " + std::to_string(offset) + ".");
      offset += static_cast<std::uint64_t>(count);
      target = target.subspan(static_cast<std::size_t>(count));
    }
  }

  void WriteAt(std::uint64_t offset, std::span<const std::uint8_t> source) override {
    while (!source.empty()) {
      const ssize_t count = Retry([&] {
        return WithoutFileSizeSignal(
            [&] { return ::pwrite(descriptor_.Value(), source.data(), source.size(), static_cast<off_t>(offset)); });
      });
      if (count < 0) RaiseSystemError("write", path_, errno, AtByte(offset));
      // Nothing was written without an error, which only a full device does; going on would never end.
      if (count == 0) RaiseSystemError("write", path_, ENOSPC, AtByte(offset));
      offset += static_cast<std::uint64_t>(count);
      source = source.subspan(static_cast<std::size_t>(count));
    }
  }

  std::uint64_t Size() override { return static_cast<std::uint64_t>(Status().st_size); }

  void Truncate(std::uint64_t size) override {
    const auto change = [&] { return ::ftruncate(descriptor_.Value(), static_cast<off_t>(size)); };
    if (Retry([&] { return WithoutFileSizeSignal(change); }) != 0) {
      RaiseSystemError("change the length of", path_, errno);
    }
  }

  void Sync() override {
    if (Retry([&] { return ::fsync(descriptor_.Value()); }) != 0) RaiseSystemError("flush", path_, errno);
  }

  FileTimes Times() override {
    const struct stat status = Status();
    return {Nanoseconds(status.st_mtim), Nanoseconds(status.st_ctim)};
  }

  void StampNow() noexcept override {
    // Who does not own the file may not set it; then it is as exact as the system's writing has made it.
    struct timespec times[2] = {{0, UTIME_OMIT}, {0, 0}};
    if (::clock_gettime(CLOCK_REALTIME, &times[1]) == 0) static_cast<void>(::futimens(descriptor_.Value(), times));
  }

  FileIdentity Identity() override {
    const struct stat status = Status();
    return {static_cast<std::uint64_t>(status.st_ino), static_cast<std::uint64_t>(status.st_nlink)};
  }

  // By device and number: a file that was replaced has the same name and another number.
  bool IsStillAt(const std::string& path) override {
    const struct stat own = Status();
    struct stat named {};
    return ::stat(path.c_str(), &named) == 0 && named.st_dev == own.st_dev && named.st_ino == own.st_ino;
  }

  std::unique_ptr<File> OpenAgain() override {
    // By the opened file, not by its name, which may belong to another one by now. The new opener has locks of its own,
    // and its flush does not wait for the other's calls.
    const std::string self = "/proc/self/fd/" + std::to_string(descriptor_.Value());
    Descriptor again(Retry([&] { return ::open(self.c_str(), (isReadOnly_ ? O_RDONLY : O_RDWR) | O_CLOEXEC); }));
    // Where the system does not show open files the same opener serves twice; calls of several threads are allowed.
    if (again.Value() < 0) again = Descriptor(::fcntl(descriptor_.Value(), F_DUPFD_CLOEXEC, 0));
    if (again.Value() < 0) RaiseSystemError("open", path_, errno);
    return std::make_unique<PosixFile>(std::move(again), path_, isReadOnly_);
  }

  [[nodiscard]] bool IsReadOnly() const override { return isReadOnly_; }

  // Locks of the open file, not of the process: two openers in one process keep each other out, and closing one does
  // not give back the locks of another, as it does with the classic kind.
  bool TryLock(std::uint64_t offset, std::uint64_t length, LockKind kind) override {
    struct flock range = Range(offset, length, kind == LockKind::Shared ? F_RDLCK : F_WRLCK);
    if (Retry([&] { return ::fcntl(descriptor_.Value(), F_OFD_SETLK, &range); }) == 0) return true;
    // Both mean that somebody else holds it; anything else (a file system without locks) is an error.
    if (errno == EAGAIN || errno == EACCES) return false;
    RaiseSystemError("lock", path_, errno);
  }

  void Unlock(std::uint64_t offset, std::uint64_t length) override {
    struct flock range = Range(offset, length, F_UNLCK);
    if (Retry([&] { return ::fcntl(descriptor_.Value(), F_OFD_SETLK, &range); }) != 0) {
      RaiseSystemError("unlock", path_, errno);
    }
  }

  bool IsLockedByOther(std::uint64_t offset, std::uint64_t length) override {
    return FirstConflict(offset, length).l_type != F_UNLCK;
  }

  std::string LockHolder(std::uint64_t offset, std::uint64_t length) override {
    const struct flock conflict = FirstConflict(offset, length);
    if (conflict.l_type == F_UNLCK) return {};
    // The system names the process of classic locks only; open-file-description locks show -1.
    if (conflict.l_pid > 0) return "process " + std::to_string(conflict.l_pid);
    return FindLockOwner({descriptor_.Value(), offset, length});
  }

 private:
  [[nodiscard]] struct stat Status() const {
    struct stat status {};
    if (::fstat(descriptor_.Value(), &status) != 0) RaiseSystemError("examine", path_, errno);
    return status;
  }

  static struct flock Range(std::uint64_t offset, std::uint64_t length, short kind) {
    struct flock range {};
    range.l_type = kind;
    range.l_whence = SEEK_SET;
    range.l_start = static_cast<off_t>(offset);
    constexpr auto kLargest = static_cast<std::uint64_t>(std::numeric_limits<off_t>::max());
    range.l_len = length >= kLargest - offset ? 0 : static_cast<off_t>(length);  // 0: to the end, however far
    return range;
  }

  // Asks as if for an exclusive lock, which any lock of another opener would prevent. Own locks are not met.
  struct flock FirstConflict(std::uint64_t offset, std::uint64_t length) {
    struct flock range = Range(offset, length, F_WRLCK);
    if (Retry([&] { return ::fcntl(descriptor_.Value(), F_OFD_GETLK, &range); }) != 0) {
      RaiseSystemError("examine the locks of", path_, errno);
    }
    return range;
  }

  Descriptor descriptor_;
  std::string path_;
  bool isReadOnly_;
};

// Network file systems turn a lock of the whole file into one that would shut our own writers out.
bool HoldsWholeFileLocksApart(int descriptor) {
  constexpr auto kNetworkFileSystem = 0x6969;
  struct statfs status {};
  return ::fstatfs(descriptor, &status) == 0 && status.f_type != kNetworkFileSystem;
}

class PosixFileSystem final : public FileSystem {
 public:
  std::unique_ptr<File> Open(const std::string& path, OpenMode mode) override {
    if (mode == OpenMode::ReadWrite && Exists(path) && !HasWriteBit(path)) RaiseSystemError("open", path, EACCES);
    if (mode == OpenMode::CreateNew) RequireFolderTakesFiles("create", path);
    Descriptor descriptor(Retry([&] { return ::open(path.c_str(), Flags(mode), kNewFileMode); }));
    if (descriptor.Value() < 0) RaiseSystemError(mode == OpenMode::CreateNew ? "create" : "open", path, errno);
    struct stat status {};
    if (::fstat(descriptor.Value(), &status) != 0) RaiseSystemError("examine", path, errno);
    if (!S_ISREG(status.st_mode)) RaiseFailure("Could not open '" + path + "': it is not a file.");
    // A shared lock of the whole file, held as long as the file is open: programs that lock it as a whole are seen
    // here, and see us. Ours share it.
    if (HoldsWholeFileLocksApart(descriptor.Value()) && ::flock(descriptor.Value(), LOCK_SH | LOCK_NB) != 0 &&
        errno == EWOULDBLOCK) {
      RaiseFailure("Could not use '" + path + "'; file already in use. Another program has locked it as a whole.");
    }
    return std::make_unique<PosixFile>(std::move(descriptor), path, mode == OpenMode::ReadOnly);
  }

  // Whatever it is: something else in the place of a file is an error of opening, not a missing file.
  bool Exists(const std::string& path) override {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0;
  }

  // Also the folder, as the log is made in it.
  bool IsWritable(const std::string& path) override {
    const std::string folder = FolderOf(path);
    return HasWriteBit(path) && HasWriteBit(folder) && ::access(path.c_str(), W_OK) == 0 &&
           ::access(folder.c_str(), W_OK | X_OK) == 0;
  }

  // Without links and dots, so that all who open the file name its log alike.
  std::string CanonicalPath(const std::string& path) override {
    const std::unique_ptr<char, decltype(&std::free)> resolved(::realpath(path.c_str(), nullptr), &std::free);
    return resolved == nullptr ? path : std::string(resolved.get());
  }

  void Remove(const std::string& path) override {
    if (::unlink(path.c_str()) != 0) RaiseSystemError("remove", path, errno);
  }

  void Rename(const std::string& from, const std::string& to) override {
    RequireFolderTakesFiles("rename", to);
    if (::rename(from.c_str(), to.c_str()) != 0) RaiseSystemError("rename", from, errno);
  }

  // By a descriptor, so that both changes meet the same file. The group first: changing it may take permission bits
  // away.
  void CopyPermissions(const std::string& from, const std::string& to) override {
    struct stat status {};
    if (::stat(from.c_str(), &status) != 0) return;
    const Descriptor target(::open(to.c_str(), O_RDONLY | O_CLOEXEC));
    if (target.Value() < 0) return;
    const bool sameGroup = ::fchown(target.Value(), static_cast<uid_t>(-1), status.st_gid) == 0;
    // With another group its permissions would go to the wrong people.
    const mode_t mode = sameGroup ? status.st_mode : status.st_mode & ~static_cast<mode_t>(S_IRWXG);
    static_cast<void>(::fchmod(target.Value(), mode & kPermissionBits));
  }

  // A new name is in the folder, which is a file of its own to the system: without this a power cut may leave the
  // content without a name.
  void SyncFolderOf(const std::string& path) override {
    const std::string folder = FolderOf(path);
    const Descriptor descriptor(Retry([&] { return ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
    if (descriptor.Value() < 0) RaiseSystemError("open the folder", folder, errno);
    // Some file systems keep folders durable by themselves and know no flush of them.
    if (::fsync(descriptor.Value()) != 0 && errno != EINVAL && errno != EROFS) {
      RaiseSystemError("flush the folder", folder, errno);
    }
  }

 private:
  static int Flags(OpenMode mode) {
    // Without waiting: a pipe under the name must not stop the program.
    constexpr int kAlways = O_CLOEXEC | O_NONBLOCK;
    switch (mode) {
      case OpenMode::ReadOnly:
        return O_RDONLY | kAlways;
      case OpenMode::ReadWrite:
        return O_RDWR | kAlways;
      case OpenMode::CreateNew:
        return O_RDWR | O_CREAT | O_EXCL | kAlways;
    }
    return O_RDONLY | kAlways;
  }
};

}  // namespace

std::shared_ptr<FileSystem> NativeFileSystem() {
  return std::make_shared<PosixFileSystem>();
}

}  // namespace tavi::access
