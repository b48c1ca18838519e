#include "automation/ModuleLock.h"

#include <atomic>

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

}  // namespace tavi::automation
