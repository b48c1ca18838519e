#include "access/file/StatementLock.h"

#include <algorithm>
#include <array>
#include <utility>

#include "access/file/EngineError.h"

namespace tavi::access {

namespace {

using LockKind = File::LockKind;

// A database file has at most 2 GB, so these bytes never hold data.
constexpr std::uint64_t kGate = std::uint64_t{1} << 31U;
constexpr std::uint64_t kStatement = kGate + 1;
constexpr std::uint64_t kPresence = kGate + 2;
constexpr std::uint64_t kOneByte = 1;
constexpr std::uint64_t kGateAndStatement = 2;

// Pauses between attempts in milliseconds; the last one is repeated. The first attempts only let others run.
constexpr std::array<int, 8> kPauses = {0, 0, 1, 1, 2, 3, 5, 10};

}  // namespace

StatementLock::StatementLock(File& file, FileSystem& fileSystem, std::string path, std::chrono::milliseconds timeout)
    : file_(file), fileSystem_(fileSystem), path_(std::move(path)), timeout_(timeout) {}

void StatementLock::EnterPresence() {
  WaitFor(kPresence, kOneByte, [&] { return file_.TryLock(kPresence, kOneByte, LockKind::Shared); });
}

void StatementLock::AcquireShared() {
  WaitFor(kGate, kGateAndStatement, [&] { return file_.TryLock(kGate, kGateAndStatement, LockKind::Shared); });
  file_.Unlock(kGate, kOneByte);
}

void StatementLock::AcquireExclusive() {
  if (file_.TryLock(kGate, kGateAndStatement, LockKind::Exclusive)) return;
  WaitFor(kGate, kOneByte, [&] { return file_.TryLock(kGate, kOneByte, LockKind::Exclusive); });
  try {
    WaitFor(kStatement, kOneByte, [&] { return file_.TryLock(kStatement, kOneByte, LockKind::Exclusive); });
  } catch (...) {
    Release();
    throw;
  }
}

void StatementLock::Release() noexcept {
  try {
    file_.Unlock(kGate, kGateAndStatement);
  } catch (const std::exception&) {
    // Unlocking a range of an open file has no reason to fail that waiting or reporting could help.
  }
}

bool StatementLock::TryBecomeAlone() {
  return file_.TryLock(kPresence, kOneByte, LockKind::Exclusive);
}

void StatementLock::BecomeAlone() {
  WaitFor(kPresence, kOneByte, [&] { return TryBecomeAlone(); });
}

void StatementLock::LeaveAlone() {
  static_cast<void>(file_.TryLock(kPresence, kOneByte, LockKind::Shared));
}

void StatementLock::WaitFor(std::uint64_t offset, std::uint64_t length, const std::function<bool()>& attempt) {
  std::chrono::milliseconds waited{0};
  for (std::size_t round = 0; !attempt(); ++round) {
    if (waited >= timeout_ && round >= 1) RaiseInUse(offset, length);
    const std::chrono::milliseconds pause{kPauses[std::min(round, kPauses.size() - 1)]};
    fileSystem_.Pause(pause);
    waited += pause;
  }
}

void StatementLock::RaiseInUse(std::uint64_t offset, std::uint64_t length) {
  const std::string holder = file_.LockHolder(offset, length);
  RaiseFailure("Could not use '" + path_ + "'; file already in use" + (holder.empty() ? "" : " by " + holder) +
               ". It stayed locked for " + std::to_string(timeout_.count()) +
               " milliseconds; try again when the other user has finished.");
}

}  // namespace tavi::access
