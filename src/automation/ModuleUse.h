#pragma once

#include <memory>

namespace tavi::automation {

/// Keeps the library loaded: every object that a program may hold has one, and so has every lock of the server that a
/// program asks for. Safe on any thread.
class ModuleLock {
 public:
  ModuleLock() noexcept;
  ~ModuleLock();
  ModuleLock(const ModuleLock&) = delete;
  ModuleLock& operator=(const ModuleLock&) = delete;

  /// How many there are; the library can be unloaded at 0.
  static long Count() noexcept;
  /// The same without an object, for programs that lock and unlock the server.
  static void Add() noexcept;
  static void Remove() noexcept;
};

/// What each MembershipDatabase for automation has as a part. The last one on a thread releases the thread's store,
/// which closes the file: a program that has given back its objects may unload the library, and nobody could reach the
/// store again. Where the last one is released on another thread than its own, the store goes with its thread.
class ThreadUse {
 public:
  ThreadUse();
  ~ThreadUse();
  ThreadUse(const ThreadUse&) = delete;
  ThreadUse& operator=(const ThreadUse&) = delete;

 private:
  struct Thread {};

  static std::weak_ptr<Thread>& Current();

  std::shared_ptr<Thread> thread_;
};

}  // namespace tavi::automation
