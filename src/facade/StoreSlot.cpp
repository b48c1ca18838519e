#include "facade/StoreSlot.h"

namespace tavi {
namespace {

std::shared_ptr<cDatabase>& Slot() {
  thread_local std::shared_ptr<cDatabase> slot;
  return slot;
}

}  // namespace

void SetThreadStore(std::shared_ptr<cDatabase> store) {
  Slot() = std::move(store);
}

std::shared_ptr<cDatabase> ThreadStore() {
  if (!Slot()) {
    throw Error(ErrorNumber::NoObject, "TaviMembership",
                "Object variable not set: this thread has no membership store; use a MembershipDatabase only on the "
                "thread that created it.");
  }
  return Slot();
}

}  // namespace tavi
