#include "automation/ModuleUse.h"

#include <atomic>

#include "facade/ThreadStore.h"

namespace tavi::automation {
namespace {

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

ThreadUse::ThreadUse() : thread_(Current().lock()) {
  if (thread_) return;
  thread_ = std::make_shared<Thread>();
  Current() = thread_;
}

ThreadUse::~ThreadUse() {
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
