#include "host/sql/CancelKey.h"

#include <atomic>

namespace tavi::host {
namespace {

// A signal's handler reaches nothing else.
std::atomic<bool> isPressed = false;
static_assert(std::atomic<bool>::is_always_lock_free, "a handler of signals may not wait");

extern "C" void NoteCancelKey(int /*signal*/) {
  isPressed = true;
}

}  // namespace

CancelKey::CancelKey() {
  isPressed = false;
  former_ = std::signal(SIGINT, NoteCancelKey);
}

CancelKey::~CancelKey() {
  isPressed = false;
  std::signal(SIGINT, former_ == SIG_ERR ? SIG_DFL : former_);
}

bool CancelKey::IsPressed() {
  return isPressed.load(std::memory_order_relaxed);
}

}  // namespace tavi::host
