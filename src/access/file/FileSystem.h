#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>

namespace tavi::access {

/// What the system knows of a file, whatever its name.
struct FileIdentity {
  /// What tells the file from all others on its disk, 0 when the system does not say.
  std::uint64_t number = 0;
  /// How many names it has.
  std::uint64_t names = 1;
};

/// When a file was changed last, in nanoseconds since 1970.
struct FileTimes {
  /// Its content: changes whenever any program writes the file, and can be set by any.
  std::int64_t written = 0;
  /// Anything of it, this time included, by the system's own clock: nobody sets it. 0 where the system does not tell.
  std::int64_t changed = 0;
  bool operator==(const FileTimes&) const = default;
};

/// What the engine needs of files, as a small interface: the native one serves programs; the tests have one in memory,
/// one that fails at a chosen call, and one that loses what was not flushed. Errors are tavi::Error ProviderFailure
/// whose description names the file, the operation and the system's reason.
class File {
 public:
  virtual ~File() = default;

  /// Reads exactly the span. Raises an error when the file ends before it.
  virtual void ReadAt(std::uint64_t offset, std::span<std::uint8_t> target) = 0;
  /// Writes the span, extending the file when it goes past the end.
  virtual void WriteAt(std::uint64_t offset, std::span<const std::uint8_t> source) = 0;
  [[nodiscard]] virtual std::uint64_t Size() = 0;
  virtual void Truncate(std::uint64_t size) = 0;
  /// Returns when everything written is on the device.
  virtual void Sync() = 0;
  [[nodiscard]] virtual FileTimes Times() = 0;
  /// Sets the time of writing to this moment as exactly as the system keeps it, so that no two states of a file have
  /// the same; never fails.
  virtual void StampNow() noexcept = 0;
  [[nodiscard]] virtual FileIdentity Identity() = 0;
  /// True when a path still leads to this very file, and not to another one that has taken its name since it was
  /// opened. Always true where the system does not let an open file be replaced.
  [[nodiscard]] virtual bool IsStillAt(const std::string& /*path*/) { return true; }
  /// Another opener of this very file, whatever has become of its name, whose calls do not wait for those of this one.
  [[nodiscard]] virtual std::unique_ptr<File> OpenAgain() = 0;
  /// True when the file was opened for reading only.
  [[nodiscard]] virtual bool IsReadOnly() const = 0;

  enum class LockKind { Shared, Exclusive };
  /// Tries to lock a byte range against other openers of the file, in this process or another; false when one of them
  /// holds it. A lock of this opener on the range is converted.
  virtual bool TryLock(std::uint64_t offset, std::uint64_t length, LockKind kind) = 0;
  virtual void Unlock(std::uint64_t offset, std::uint64_t length) = 0;
  /// True when another opener holds any lock in the range.
  virtual bool IsLockedByOther(std::uint64_t offset, std::uint64_t length) = 0;
  /// Who holds a lock of another opener in the range, for error messages ("process 1234"); empty when nobody does or
  /// the system does not tell.
  [[nodiscard]] virtual std::string LockHolder(std::uint64_t offset, std::uint64_t length) = 0;
};

/// Work that is done in the background a little after it was asked for. The calls are for one thread; the destructor
/// waits for work that is being done and drops what was asked for.
class BackgroundWork {
 public:
  virtual ~BackgroundWork() = default;
  /// Lets the work begin after the delay. What is asked until it begins is done in one.
  virtual void Ask() = 0;
  /// Drops what was asked for, and returns when nothing is being done.
  virtual void Settle() = 0;
};

class FileSystem {
 public:
  virtual ~FileSystem() = default;

  enum class OpenMode { ReadOnly, ReadWrite, CreateNew };
  /// Opens or creates a file. CreateNew fails when it exists. A file without any write permission counts as read-only
  /// for everybody (the read-only attribute), so ReadWrite fails on it; a folder without any write permission takes no
  /// new files. Fails with "file already in use" when another program has locked the file as a whole.
  [[nodiscard]] virtual std::unique_ptr<File> Open(const std::string& path, OpenMode mode) = 0;
  [[nodiscard]] virtual bool Exists(const std::string& path) = 0;
  /// True when the file may be written and its folder may take new files.
  [[nodiscard]] virtual bool IsWritable(const std::string& path) = 0;
  /// The one path of a file that may have several (links, relative paths); the path itself when it does not exist.
  [[nodiscard]] virtual std::string CanonicalPath(const std::string& path) = 0;
  virtual void Remove(const std::string& path) = 0;
  /// Replaces a file of the new name.
  virtual void Rename(const std::string& from, const std::string& to) = 0;
  /// Lets a file be used by the same people as another one, as far as the system allows; never fails.
  virtual void CopyPermissions(const std::string& from, const std::string& to) = 0;
  /// Makes creations, removals and renames in a file's folder durable.
  virtual void SyncFolderOf(const std::string& path) = 0;
  /// Waits a little before a lock is tried again; for 0 it only lets others go first.
  virtual void Pause(std::chrono::milliseconds duration);
  /// The time by a clock that nobody sets, by which waits are measured.
  [[nodiscard]] virtual std::chrono::steady_clock::time_point Now() { return std::chrono::steady_clock::now(); }
  /// Makes ready for work beside the caller's. `work` runs in a thread of its own and must not throw.
  [[nodiscard]] virtual std::unique_ptr<BackgroundWork> NewBackgroundWork(std::chrono::milliseconds delay,
                                                                          std::function<void()> work);
  /// Opens a file for reading, or makes it, in such a way that nobody can open it for writing; others may hold it
  /// likewise. Null where somebody has it open for writing, where it cannot be made, and where the system does not know
  /// such a thing.
  [[nodiscard]] virtual std::unique_ptr<File> HoldUnwritten(const std::string& /*path*/) { return nullptr; }
};

/// The operating system's files.
std::shared_ptr<FileSystem> NativeFileSystem();

/// Work in a thread of the operating system, which begins when the first work is asked for.
std::unique_ptr<BackgroundWork> NativeBackgroundWork(std::chrono::milliseconds delay, std::function<void()> work);

}  // namespace tavi::access
