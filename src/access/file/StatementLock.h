#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "access/file/FileSystem.h"

namespace tavi::access {

/// When a wait for locks ends, by a clock that nobody sets. An operation has one, however many locks it needs, so that
/// it takes no longer than it says.
class LockDeadline {
 public:
  LockDeadline(FileSystem& fileSystem, std::chrono::milliseconds timeout);

  /// How long the operation may wait in all.
  [[nodiscard]] std::chrono::milliseconds Timeout() const { return timeout_; }
  /// What is left of it, rounded up; 0 when it is over.
  [[nodiscard]] std::chrono::milliseconds Left(FileSystem& fileSystem) const;

 private:
  std::chrono::milliseconds timeout_;
  std::chrono::steady_clock::time_point end_;
};

/// Which threads of this process may write which files just now, and which wait for it. Its purpose is to see that a
/// wait can never end: because the thread waits for a connection of its own, or for one whose thread waits, perhaps by
/// way of others, for this one. What other processes do is not known here. For several threads.
class WritingThreads {
 public:
  /// Tells that the calling thread has got a file, or has given it back.
  void Hold(const std::string& path);
  void Release(const std::string& path) noexcept;

  /// The calling thread waits for a file while this lives.
  class Wait {
   public:
    Wait(WritingThreads& threads, std::string path);
    ~Wait();
    Wait(const Wait&) = delete;
    Wait& operator=(const Wait&) = delete;

    [[nodiscard]] bool IsHopeless() const;

   private:
    WritingThreads& threads_;
    std::string path_;
  };

 private:
  std::mutex mutex_;
  std::map<std::string, std::thread::id> holders_;
  std::map<std::thread::id, std::string> waiting_;
};

/// The locks by which the users of one database file keep out of each other's way. They are four bytes of the database
/// file itself, past the 2 GB that it can ever have, so that a lock of the whole file by another program stops us too:
///
///   byte       held shared by                    held exclusively by
///   gate       a reader while it enters          who wants the statement's byte, as long as he waits: nobody comes in
///   statement  each reading statement            a checkpoint, and who sets the log aside
///   open       every open pager                  a pager that has found itself alone
///   writer     nobody                            the one user who changes pages or the log, until commit or rollback
///
/// A writer keeps nobody from reading: what it has not committed is in its memory, and a commit appends to the log,
/// behind what others know of it. Whoever overwrites what readers may be looking at needs the statement's byte too, and
/// takes it as writer: in the order writer, gate, statement nobody waits for somebody who waits for him.
///
/// Not for several threads.
class StatementLock {
 public:
  /// `path` is the file's name for error messages, `canonical` the same for all who open the file. Without `threads`
  /// waits that can never end last until their deadline.
  StatementLock(File& file, FileSystem& fileSystem, std::string path, std::string canonical,
                std::shared_ptr<WritingThreads> threads);
  ~StatementLock();
  StatementLock(const StatementLock&) = delete;
  StatementLock& operator=(const StatementLock&) = delete;

  /// Tells the others that this pager is there. Raises ProviderFailure "Could not use ..." after the deadline; so do
  /// all calls that acquire something.
  void AcquireOpen(const LockDeadline& deadline);

  void AcquireShared(const LockDeadline& deadline);
  /// Gives the statement's byte back, however it is held. Never fails: the end of the file's life gives it back in any
  /// case.
  void Release() noexcept;

  /// Becomes the one writer. Raises ProviderFailure at once where the wait could never end.
  void AcquireWriter(const LockDeadline& deadline);
  void ReleaseWriter() noexcept;
  [[nodiscard]] bool HoldsWriter() const { return holdsWriter_; }

  /// Waits until the last reader has left and keeps new ones out; for the writer. False after the deadline.
  [[nodiscard]] bool TryAcquireExclusive(const LockDeadline& deadline);
  void AcquireExclusive(const LockDeadline& deadline);

  /// Takes the open byte exclusively when no other pager has the file open; others then wait until LeaveAlone.
  [[nodiscard]] bool TryBecomeAlone();
  void LeaveAlone();
  /// Waits until it is alone.
  void BecomeAlone(const LockDeadline& deadline);

 private:
  [[nodiscard]] bool WaitUntil(const LockDeadline& deadline, const std::function<bool()>& attempt);
  [[noreturn]] void RaiseInUse(const LockDeadline& deadline, std::uint64_t offset, std::uint64_t length);

  File& file_;
  FileSystem& fileSystem_;
  std::string path_;
  std::string canonical_;
  std::shared_ptr<WritingThreads> threads_;
  bool holdsWriter_ = false;
};

/// The whole file for oneself, as guard: nobody else writes or reads. Joins the writer's part where that is held.
class SoleUse {
 public:
  SoleUse(StatementLock& lock, const LockDeadline& deadline);
  ~SoleUse();
  SoleUse(const SoleUse&) = delete;
  SoleUse& operator=(const SoleUse&) = delete;

 private:
  StatementLock& lock_;
  bool ownsWriter_;
};

}  // namespace tavi::access
