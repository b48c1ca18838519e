#include "access/file/WindowsRangeLocks.h"

#include <windows.h>

#include <algorithm>
#include <limits>
#include <random>

#include "access/file/EngineError.h"
#include "platform/values/WideText.h"

// A byte of ours stands for 256 places. Who shares it holds one of them, exclusively for the system; who excludes
// others holds all: his own one, those before it and those behind it, in three calls. So a shared lock becomes an
// exclusive one by taking the rest, and goes back by giving the rest up, and at no moment is the byte free in between.
// The system's own shared locks are never used for these bytes.
//
// Example, the first byte of ours (2^31) and place 7: one lock of 1 at 2^32 + 7; exclusive, further locks of 7 at 2^32
// and of 248 at 2^32 + 8. The system gives back only what was locked in one call, so what is held is kept in a list.

namespace tavi::access {

namespace {

using LockKind = File::LockKind;

constexpr std::uint64_t kFirstOwnByte = std::uint64_t{1} << 31U;
// More than the four that are used.
constexpr std::uint64_t kOwnBytes = 16;
constexpr std::uint64_t kFirstPlace = std::uint64_t{1} << 32U;
constexpr std::uint64_t kPlaces = 256;
// Of these tries one meets a free place, unless nearly everything is taken.
constexpr int kTries = 8;

/// Bytes from 2^31 on belong to no database page, and are used by the engine alone.
bool IsOwnByte(std::uint64_t offset, std::uint64_t length) {
  return offset >= kFirstOwnByte && length <= kOwnBytes && offset + length <= kFirstOwnByte + kOwnBytes;
}

/// The places of different bytes lie one after the other, beyond anything that another program locks.
std::uint64_t PlacesOf(std::uint64_t offset) {
  return kFirstPlace + (offset - kFirstOwnByte) * kPlaces;
}

/// Any place: openers know nothing of each other, and would all try the same one first.
std::uint64_t SomePlace() {
  thread_local std::minstd_rand random{std::random_device{}()};
  return random() % kPlaces;
}

DWORD Low(std::uint64_t value) {
  return static_cast<DWORD>(value & std::numeric_limits<DWORD>::max());
}

DWORD High(std::uint64_t value) {
  return static_cast<DWORD>(value >> 32U);
}

OVERLAPPED At(std::uint64_t offset) {
  OVERLAPPED position{};
  position.Offset = Low(offset);
  position.OffsetHigh = High(offset);
  return position;
}

}  // namespace

bool WindowsRangeLocks::TryLock(std::uint64_t offset, std::uint64_t length, LockKind kind) {
  if (!IsOwnByte(offset, length)) return TryLockRange(offset, length, kind);
  // All or none: what was taken before a failure goes back to what it was.
  const std::vector<Held> before = held_;
  for (std::uint64_t i = 0; i < length; ++i) {
    if (TryLockByte(offset + i, kind)) continue;
    for (std::uint64_t taken = 0; taken < i; ++taken) {
      const auto old =
          std::find_if(before.begin(), before.end(), [&](const Held& held) { return held.offset == offset + taken; });
      if (old == before.end()) {
        Unlock(offset + taken, 1);
      } else {
        static_cast<void>(TryLockByte(offset + taken, old->kind));
      }
    }
    return false;
  }
  return true;
}

// What is held inside of the range, and nothing else: the system would refuse a range that was not locked as such.
void WindowsRangeLocks::Unlock(std::uint64_t offset, std::uint64_t length) {
  const auto isInside = [&](const Held& held) { return held.offset >= offset && held.offset - offset < length; };
  for (const Held& held : held_) {
    if (isInside(held)) Release(held);
  }
  std::erase_if(held_, isInside);
}

// The system has no question for this, so it is tried: a lock of the whole range is taken for a moment and given back.
// In that moment others who try it may find it locked, and try again.
bool WindowsRangeLocks::IsLockedByOther(std::uint64_t offset, std::uint64_t length) {
  if (IsOwnByte(offset, length)) {
    for (std::uint64_t i = 0; i < length; ++i) {
      const Held* held = Find(offset + i);
      if (held != nullptr && held->kind == LockKind::Exclusive) continue;
      if (held == nullptr) {
        if (!TryNative(PlacesOf(offset + i), kPlaces, LockKind::Exclusive)) return true;
        UnlockNative(PlacesOf(offset + i), kPlaces);
      } else {
        if (!TryLockOtherPlaces(offset + i, held->place)) return true;
        UnlockOtherPlaces(offset + i, held->place);
      }
    }
    return false;
  }
  // A probe would meet this opener's own locks; so these are left out of it.
  std::uint64_t start = offset;
  const std::uint64_t end = length > std::numeric_limits<std::uint64_t>::max() - offset
                                ? std::numeric_limits<std::uint64_t>::max()
                                : offset + length;
  std::vector<Held> own;
  for (const Held& held : held_) {
    if (IsOwnByte(held.offset, held.length)) {
      const bool isAll = held.kind == LockKind::Exclusive;
      own.push_back({PlacesOf(held.offset) + (isAll ? 0 : held.place), isAll ? kPlaces : 1, held.kind, 0});
    } else {
      own.push_back(held);
    }
  }
  std::sort(own.begin(), own.end(), [](const Held& left, const Held& right) { return left.offset < right.offset; });
  own.push_back({end, 0, LockKind::Shared, 0});
  // The stretches between the own locks, one after the other, and the last one up to the end.
  for (const Held& held : own) {
    const std::uint64_t stop = std::min(held.offset, end);
    if (stop > start) {
      if (!TryNative(start, stop - start, LockKind::Exclusive)) return true;
      UnlockNative(start, stop - start);
    }
    start = std::max(start, held.offset + held.length);
  }
  return false;
}

// From nothing, from shared or from exclusive to what is wanted. A failure leaves what was held.
bool WindowsRangeLocks::TryLockByte(std::uint64_t offset, LockKind kind) {
  Held* held = Find(offset);
  if (held == nullptr) {
    if (!TryShare(offset)) return false;
    held = Find(offset);
    if (kind == LockKind::Exclusive && !TryLockOtherPlaces(offset, held->place)) {
      Unlock(offset, 1);
      return false;
    }
  } else if (held->kind == kind) {
    return true;
  } else if (kind == LockKind::Shared) {
    UnlockOtherPlaces(offset, held->place);
  } else if (!TryLockOtherPlaces(offset, held->place)) {
    return false;
  }
  held->kind = kind;
  return true;
}

// False when everything is taken, by an exclusive lock, or by bad luck with nearly 256 others; the caller tries again
// later.
bool WindowsRangeLocks::TryShare(std::uint64_t offset) {
  for (int attempt = 0; attempt < kTries; ++attempt) {
    const std::uint64_t place = SomePlace();
    if (!TryNative(PlacesOf(offset) + place, 1, LockKind::Exclusive)) continue;
    held_.push_back({offset, 1, LockKind::Shared, place});
    return true;
  }
  return false;
}

// Two calls, as one over the whole would meet the own place, which the system counts as somebody else's lock.
bool WindowsRangeLocks::TryLockOtherPlaces(std::uint64_t offset, std::uint64_t place) {
  const std::uint64_t first = PlacesOf(offset);
  if (place > 0 && !TryNative(first, place, LockKind::Exclusive)) return false;
  if (place + 1 == kPlaces || TryNative(first + place + 1, kPlaces - place - 1, LockKind::Exclusive)) return true;
  if (place > 0) UnlockNative(first, place);
  return false;
}

void WindowsRangeLocks::UnlockOtherPlaces(std::uint64_t offset, std::uint64_t place) {
  const std::uint64_t first = PlacesOf(offset);
  if (place > 0) UnlockNative(first, place);
  if (place + 1 < kPlaces) UnlockNative(first + place + 1, kPlaces - place - 1);
}

// Bytes that other programs lock too are locked as they do it. A change of the kind gives the lock up in between, and
// another program may come first; then the old kind is tried, and if that fails nothing is held.
bool WindowsRangeLocks::TryLockRange(std::uint64_t offset, std::uint64_t length, LockKind kind) {
  const auto own = std::find_if(held_.begin(), held_.end(),
                                [&](const Held& held) { return held.offset == offset && held.length == length; });
  if (own == held_.end()) {
    if (!TryNative(offset, length, kind)) return false;
    held_.push_back({offset, length, kind, 0});
    return true;
  }
  if (own->kind == kind) return true;
  UnlockNative(offset, length);
  const bool isLocked = TryNative(offset, length, kind);
  if (isLocked) {
    own->kind = kind;
  } else if (!TryNative(offset, length, own->kind)) {
    held_.erase(own);
  }
  return isLocked;
}

// In the reverse order of locking: the own place is the last to go.
void WindowsRangeLocks::Release(const Held& held) {
  if (!IsOwnByte(held.offset, held.length)) return UnlockNative(held.offset, held.length);
  if (held.kind == LockKind::Exclusive) UnlockOtherPlaces(held.offset, held.place);
  UnlockNative(PlacesOf(held.offset) + held.place, 1);
}

WindowsRangeLocks::Held* WindowsRangeLocks::Find(std::uint64_t offset) {
  const auto found = std::find_if(held_.begin(), held_.end(), [&](const Held& held) { return held.offset == offset; });
  return found == held_.end() ? nullptr : &*found;
}

bool WindowsRangeLocks::TryNative(std::uint64_t offset, std::uint64_t length, LockKind kind) {
  OVERLAPPED position = At(offset);
  const DWORD flags = LOCKFILE_FAIL_IMMEDIATELY | (kind == LockKind::Exclusive ? LOCKFILE_EXCLUSIVE_LOCK : 0);
  if (::LockFileEx(file_, flags, 0, Low(length), High(length), &position) != 0) return true;
  const DWORD code = ::GetLastError();
  // Both mean that somebody else holds it.
  if (code == ERROR_LOCK_VIOLATION || code == ERROR_IO_PENDING) return false;
  Fail("lock", code);
}

void WindowsRangeLocks::UnlockNative(std::uint64_t offset, std::uint64_t length) {
  OVERLAPPED position = At(offset);
  if (::UnlockFileEx(file_, 0, Low(length), High(length), &position) == 0) Fail("unlock", ::GetLastError());
}

void WindowsRangeLocks::Fail(const char* operation, unsigned long code) const {
  RaiseFailure("Could not " + std::string(operation) + " '" + path_ + "': " + windows::SystemErrorText(code) + ".");
}

}  // namespace tavi::access
