#include "automation/ModuleUse.h"

#include <atomic>

#include "facade/ThreadStore.h"

namespace tavi::automation {
namespace {

/// In a function, so that it is there for whatever object is made first while the library is loaded.
std::atomic<long>& Locks() noexcept {
  static std::atomic<long> locks{0};
  return locks;
}

}  // namespace

ModuleLock::ModuleLock() noexcept {
  Add();
}

ModuleLock::~ModuleLock() {
  Remove();
}

long ModuleLock::Count() noexcept {
  return Locks();
}

void ModuleLock::Add() noexcept {
  ++Locks();
}

void ModuleLock::Remove() noexcept {
  --Locks();
}

// All of a thread share one token; the thread itself only knows of it, so that it goes with the last of them.
ThreadUse::ThreadUse() : thread_(Current().lock()) {
  if (thread_) return;
  thread_ = std::make_shared<Thread>();
  Current() = thread_;
}

ThreadUse::~ThreadUse() {
  // Asked before the token is given back: afterwards a thread without objects would look like the own one.
  const bool isOwnThread = Current().lock() == thread_;
  const std::weak_ptr<Thread> others = thread_;
  thread_.reset();
  if (isOwnThread && others.expired()) SetThreadStore(nullptr);
}

std::weak_ptr<ThreadUse::Thread>& ThreadUse::Current() {
  thread_local std::weak_ptr<Thread> current;
  return current;
}

}  // namespace tavi::automation
