#pragma once

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

}  // namespace tavi::automation
