#pragma once

#include <chrono>
#include <functional>
#include <string>

#include "access/file/FileSystem.h"

namespace tavi::access {

/// The locks by which the users of one database file keep out of each other's way. They are three bytes of the database
/// file itself, past the 2 GB that it can ever have, so that a lock of the whole file by another program stops us too:
///
///   byte       held shared by                    held exclusively by
///   gate       a reader while it enters          a writer from the moment it waits: no new reader comes in
///   statement  each reading statement            the writing statement, a checkpoint
///   presence   every open pager                  a pager that has found itself alone
///
/// Not for several threads.
class StatementLock {
 public:
  /// `path` is the file's name for error messages.
  StatementLock(File& file, FileSystem& fileSystem, std::string path, std::chrono::milliseconds timeout);

  /// Tells the others that this pager is there. Raises ProviderFailure "Could not use ..." after the timeout; so do the
  /// next two.
  void EnterPresence();
  void AcquireShared();
  void AcquireExclusive();
  /// Gives the statement's lock back. Never fails: the end of the file's life gives it back in any case.
  void Release() noexcept;

  /// Takes presence alone when no other pager has the file open; others then wait until LeaveAlone.
  [[nodiscard]] bool TryBecomeAlone();
  void LeaveAlone();
  /// Waits until it is alone. Raises ProviderFailure "Could not use ..." after the timeout.
  void BecomeAlone();

 private:
  void WaitFor(std::uint64_t offset, std::uint64_t length, const std::function<bool()>& attempt);
  [[noreturn]] void RaiseInUse(std::uint64_t offset, std::uint64_t length);

  File& file_;
  FileSystem& fileSystem_;
  std::string path_;
  std::chrono::milliseconds timeout_;
};

}  // namespace tavi::access
