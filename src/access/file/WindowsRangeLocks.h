#pragma once

#include <cstdint>
#include <vector>

#include "access/file/FileSystem.h"

namespace tavi::access {

/// The byte-range locks of one opener of a file under Windows. The system can turn no shared lock into an exclusive one
/// without giving it up in between, and releases only what was locked in one call. So a byte behind the 2 GB that a
/// database can have, where the engine's own locks are, stands for 256 places far behind it: who shares holds one place
/// alone, who excludes holds all of them. Other bytes, which other programs lock too, are locked where they are; there
/// a shared lock of one's own hides the shared locks of others from IsLockedByOther.
///
/// Not for several threads.
class WindowsRangeLocks {
 public:
  /// `file` is the handle, `path` its name for error messages.
  WindowsRangeLocks(void* file, std::string path) : file_(file), path_(std::move(path)) {}

  /// As File::TryLock. More than one byte of the engine's own is locked byte by byte, all or none.
  bool TryLock(std::uint64_t offset, std::uint64_t length, File::LockKind kind);
  void Unlock(std::uint64_t offset, std::uint64_t length);
  bool IsLockedByOther(std::uint64_t offset, std::uint64_t length);

 private:
  // A held byte of the engine's own (place: which of its places), or a held range as it was locked.
  struct Held {
    std::uint64_t offset = 0;
    std::uint64_t length = 0;
    File::LockKind kind = File::LockKind::Shared;
    std::uint64_t place = 0;
  };

  bool TryLockByte(std::uint64_t offset, File::LockKind kind);
  bool TryShare(std::uint64_t offset);
  bool TryLockOtherPlaces(std::uint64_t offset, std::uint64_t place);
  void UnlockOtherPlaces(std::uint64_t offset, std::uint64_t place);
  bool TryLockRange(std::uint64_t offset, std::uint64_t length, File::LockKind kind);
  void Release(const Held& held);
  Held* Find(std::uint64_t offset);
  bool TryNative(std::uint64_t offset, std::uint64_t length, File::LockKind kind);
  void UnlockNative(std::uint64_t offset, std::uint64_t length);
  [[noreturn]] void Fail(const char* operation, unsigned long code) const;

  void* file_;
  std::string path_;
  std::vector<Held> held_;
};

}  // namespace tavi::access
