#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "access/file/FileSystem.h"
#include "access/file/support/SharedBytes.h"

namespace tavi::access::test {

/// What of the things that were not flushed a crash leaves behind.
enum class CrashKind {
  Kept,     // all: only the process died
  Dropped,  // nothing: the machine went off, the disk had written nothing ahead
  Torn,     // any sectors, chosen by the seed, in any order within a file
};

/// The part of a file that a disk writes whole or not at all, in bytes.
inline constexpr std::size_t kSectorSize = 512;

/// A file system in memory. Counts what is flushed and what is not, so that the state after a crash can be made; knows
/// locks, read-only files, links and a limited disk. For one thread.
class MemoryFileSystem final : public FileSystem {
 public:
  using Bytes = std::vector<std::uint8_t>;

  std::unique_ptr<File> Open(const std::string& path, OpenMode mode) override;
  bool Exists(const std::string& path) override;
  bool IsWritable(const std::string& path) override;
  std::string CanonicalPath(const std::string& path) override;
  void Remove(const std::string& path) override;
  void Rename(const std::string& from, const std::string& to) override;
  void CopyPermissions(const std::string& from, const std::string& to) override;
  void SyncFolderOf(const std::string& path) override;
  /// Time passes by pauses only, and with WorkTakes.
  void Pause(std::chrono::milliseconds duration) override;
  [[nodiscard]] std::chrono::steady_clock::time_point Now() override {
    return std::chrono::steady_clock::time_point{paused_ + worked_};
  }
  std::unique_ptr<BackgroundWork> NewBackgroundWork(std::chrono::milliseconds delay,
                                                    std::function<void()> work) override;

  /// The content of a file.
  [[nodiscard]] Bytes Contents(const std::string& path) const;
  /// A checksum of the files' paths and contents, quick among file systems that one another's crashes have left.
  [[nodiscard]] std::uint64_t Sum() const;
  /// The time of a file's last change, in nanoseconds; set as by a program that copies it with its times.
  [[nodiscard]] std::int64_t Stamp(const std::string& path) const;
  void SetStamp(const std::string& path, std::int64_t stamp);
  /// From now on nobody learns when a file was changed but from the time that programs can set.
  void KeepNoChangeTimes() { keepsChangeTimes_ = false; }
  /// Gives a file another content, durably, as another program would (its times change).
  void SetContents(const std::string& path, const Bytes& bytes);
  [[nodiscard]] std::vector<std::string> Paths() const;
  /// Sets or takes away the read-only attribute of a file.
  void SetReadOnly(const std::string& path, bool readOnly);
  /// Lets the folder take no new files.
  void SetFolderReadOnly(bool readOnly) { folderIsReadOnly_ = readOnly; }
  /// Another path of a file.
  void AddLink(const std::string& link, const std::string& path) { links_[link] = path; }
  /// Another name of the same file.
  void AddHardLink(const std::string& name, const std::string& path);
  /// Bytes that all files together may have. A write past it stores what fits and fails.
  void SetCapacity(std::uint64_t bytes) { capacity_ = bytes; }
  [[nodiscard]] std::uint64_t BytesUsed() const;
  /// Called in each Pause, for another user's turn.
  void OnPause(std::function<void()> action) { onPause_ = std::move(action); }
  [[nodiscard]] std::chrono::milliseconds Paused() const { return paused_; }
  /// Lets so much time pass.
  void WorkTakes(std::chrono::milliseconds duration) { worked_ += duration; }

  /// Does, on this thread, all work that was asked for and has not been done: what threads would have done by now.
  void RunBackgroundWork();
  [[nodiscard]] bool HasBackgroundWork() const;
  /// Lets the next flush of the file fail as a failing device does it: the system forgets that there was something to
  /// write, of which any part, chosen by the seed, is on the device. What is read is as before.
  void FailNextFlush(const std::string& path, std::uint32_t seed);

  /// The file system as it is found after a crash now: no locks, nothing unflushed. Cheap: contents are shared.
  [[nodiscard]] std::shared_ptr<MemoryFileSystem> AfterCrash(CrashKind kind, std::uint32_t seed) const;

 private:
  friend class MemoryFile;
  friend class MemoryWork;

  /// A write at an offset, or, without bytes, a change of the length to `offset`.
  struct Change {
    std::uint64_t offset;
    std::shared_ptr<const Bytes> bytes;
  };
  struct Lock {
    const void* opener;
    std::uint64_t start;
    std::uint64_t end;
    File::LockKind kind;
  };
  struct Node {
    SharedBytes bytes;
    SharedBytes durable;
    std::vector<Change> unflushed;
    FileTimes times;
    FileTimes durableTimes;
    std::uint64_t number = 0;
    bool isReadOnly = false;
    std::vector<Lock> locks;
    std::optional<std::uint32_t> failingFlush;  // seed of what the next flush loses
  };
  using Names = std::map<std::string, std::shared_ptr<Node>>;

  static void Apply(const Change& change, SharedBytes& bytes);
  static void ApplySome(const std::vector<Change>& changes, SharedBytes& bytes,
                        const std::function<std::size_t(std::size_t)>& choose);
  std::shared_ptr<Node> Find(const std::string& path) const;
  FileTimes Tick();
  void NamesChanged() { unflushedNames_.push_back(names_); }

  Names names_;
  Names durableNames_;
  std::vector<Names> unflushedNames_;  // after each change since the folder was flushed
  std::map<std::string, std::string> links_;
  bool folderIsReadOnly_ = false;
  std::uint64_t capacity_ = ~std::uint64_t{0};
  std::int64_t clock_ = 0;
  bool keepsChangeTimes_ = true;
  std::function<void()> onPause_;
  std::vector<class MemoryWork*> works_;
  std::chrono::milliseconds paused_{0};
  std::chrono::milliseconds worked_{0};
};

}  // namespace tavi::access::test
