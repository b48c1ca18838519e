#include "access/file/StatementLock.h"

#include <algorithm>
#include <array>
#include <utility>

#include "access/file/EngineError.h"

// Locks are tried, never waited for by the system: a wait in the system could not be ended by the deadline, nor by
// seeing that it is hopeless. Between attempts the thread pauses a little longer each time, up to 10 ms, so that a
// short wait costs next to nothing and a long one no processor. Whoever waits for readers to leave closes the gate
// first: else new readers could come in for ever.

namespace tavi::access {

namespace {

using std::chrono::milliseconds;

// Nobody waits longer, and the clock's range is not exceeded.
constexpr milliseconds kLongest = std::chrono::hours(24 * 365);

}  // namespace

// A timeout of any size comes from a connection string.
LockDeadline::LockDeadline(FileSystem& fileSystem, milliseconds timeout)
    : timeout_(std::clamp(timeout, milliseconds{0}, kLongest)), end_(fileSystem.Now() + timeout_) {}

// Rounded up, so that a wait of less than a millisecond is not taken for none.
milliseconds LockDeadline::Left(FileSystem& fileSystem) const {
  return std::max(milliseconds{0}, std::chrono::ceil<milliseconds>(end_ - fileSystem.Now()));
}

void WritingThreads::Hold(const std::string& path) {
  const std::lock_guard guard(mutex_);
  holders_[path] = std::this_thread::get_id();
}

void WritingThreads::Release(const std::string& path) noexcept {
  const std::lock_guard guard(mutex_);
  holders_.erase(path);
}

WritingThreads::Wait::Wait(WritingThreads& threads, std::string path) : threads_(threads), path_(std::move(path)) {
  const std::lock_guard guard(threads_.mutex_);
  threads_.waiting_[std::this_thread::get_id()] = path_;
}

WritingThreads::Wait::~Wait() {
  const std::lock_guard guard(threads_.mutex_);
  threads_.waiting_.erase(std::this_thread::get_id());
}

// Goes from the file that is wanted to the thread that may write it, from there to the file that this thread waits for,
// and so on. Where it comes back to the asking thread nobody in the circle can go on. A holder in another process is
// not listed; the deadline ends such a wait.
bool WritingThreads::Wait::IsHopeless() const {
  const std::lock_guard guard(threads_.mutex_);
  const std::thread::id self = std::this_thread::get_id();
  std::string wanted = path_;
  // Each step leads to another waiting thread; a circle that this one is not part of is not its business.
  for (std::size_t step = 0; step <= threads_.waiting_.size(); ++step) {
    const auto holder = threads_.holders_.find(wanted);
    if (holder == threads_.holders_.end()) return false;
    if (holder->second == self) return true;
    const auto next = threads_.waiting_.find(holder->second);
    if (next == threads_.waiting_.end()) return false;
    wanted = next->second;
  }
  return false;
}

namespace {

using LockKind = File::LockKind;

// A database file has at most 2 GB, so these bytes never hold data.
constexpr std::uint64_t kGate = std::uint64_t{1} << 31U;
constexpr std::uint64_t kStatement = kGate + 1;
constexpr std::uint64_t kOpen = kGate + 2;
constexpr std::uint64_t kWriter = kGate + 3;
constexpr std::uint64_t kOneByte = 1;
// The two bytes lie next to each other, to be locked in one call.
constexpr std::uint64_t kGateAndStatement = 2;

// Pauses between attempts in milliseconds; the last one is repeated. The first attempts only let others run.
constexpr std::array<int, 8> kPauses = {0, 0, 1, 1, 2, 3, 5, 10};

}  // namespace

StatementLock::StatementLock(File& file, FileSystem& fileSystem, std::string path, std::string canonical,
                             std::shared_ptr<WritingThreads> threads)
    : file_(file),
      fileSystem_(fileSystem),
      path_(std::move(path)),
      canonical_(std::move(canonical)),
      threads_(threads ? std::move(threads) : std::make_shared<WritingThreads>()) {}

StatementLock::~StatementLock() {
  // The file gives its locks back by itself; the list of threads does not.
  if (holdsWriter_) threads_->Release(canonical_);
}

void StatementLock::AcquireOpen(const LockDeadline& deadline) {
  const auto enter = [&] { return file_.TryLock(kOpen, kOneByte, LockKind::Shared); };
  if (!WaitUntil(deadline, enter)) RaiseInUse(deadline, kOpen, kOneByte);
}

// Both bytes at once, then the gate is given back: a reader never holds the gate while it waits for the statement's
// byte.
void StatementLock::AcquireShared(const LockDeadline& deadline) {
  const auto enter = [&] { return file_.TryLock(kGate, kGateAndStatement, LockKind::Shared); };
  if (!WaitUntil(deadline, enter)) RaiseInUse(deadline, kGate, kGateAndStatement);
  file_.Unlock(kGate, kOneByte);
}

void StatementLock::Release() noexcept {
  try {
    file_.Unlock(kGate, kGateAndStatement);
  } catch (const std::exception&) {
    // Unlocking a range of an open file has no reason to fail that waiting or reporting could help.
  }
}

void StatementLock::AcquireWriter(const LockDeadline& deadline) {
  const auto become = [&] { return file_.TryLock(kWriter, kOneByte, LockKind::Exclusive); };
  // The wait is listed only when there is one.
  if (!become()) {
    const WritingThreads::Wait wait(*threads_, canonical_);
    const auto becomeUnlessHopeless = [&] {
      if (become()) return true;
      if (wait.IsHopeless()) {
        RaiseFailure("Could not use '" + path_ +
                     "'; file already in use by a connection whose changes are not committed and that cannot go on "
                     "before this one does: waiting would never end. Commit or roll back one of the two first.");
      }
      return false;
    };
    if (!WaitUntil(deadline, becomeUnlessHopeless)) RaiseInUse(deadline, kWriter, kOneByte);
  }
  // Behind the byte, and taken off the list before it: so the list never names two holders, nor one who has let go.
  threads_->Hold(canonical_);
  holdsWriter_ = true;
}

void StatementLock::ReleaseWriter() noexcept {
  if (!holdsWriter_) return;
  holdsWriter_ = false;
  // Before the byte: who gets it next enters the list himself.
  threads_->Release(canonical_);
  try {
    file_.Unlock(kWriter, kOneByte);
  } catch (const std::exception&) {
    // As in Release.
  }
}

bool StatementLock::TryAcquireExclusive(const LockDeadline& deadline) {
  if (file_.TryLock(kGate, kGateAndStatement, LockKind::Exclusive)) return true;
  // Somebody is reading: nobody else comes in from here on, and those who are in leave when their statements end.
  const auto closeGate = [&] { return file_.TryLock(kGate, kOneByte, LockKind::Exclusive); };
  const auto seeLastReaderOff = [&] { return file_.TryLock(kStatement, kOneByte, LockKind::Exclusive); };
  try {
    if (WaitUntil(deadline, closeGate) && WaitUntil(deadline, seeLastReaderOff)) return true;
  } catch (...) {
    Release();
    throw;
  }
  Release();
  return false;
}

void StatementLock::AcquireExclusive(const LockDeadline& deadline) {
  if (!TryAcquireExclusive(deadline)) RaiseInUse(deadline, kGate, kGateAndStatement);
}

// The shared lock that every open pager has on this byte is converted, which works only for the last one.
bool StatementLock::TryBecomeAlone() {
  return file_.TryLock(kOpen, kOneByte, LockKind::Exclusive);
}

void StatementLock::BecomeAlone(const LockDeadline& deadline) {
  if (!WaitUntil(deadline, [&] { return TryBecomeAlone(); })) RaiseInUse(deadline, kOpen, kOneByte);
}

void StatementLock::LeaveAlone() {
  static_cast<void>(file_.TryLock(kOpen, kOneByte, LockKind::Shared));
}

bool StatementLock::WaitUntil(const LockDeadline& deadline, const std::function<bool()>& attempt) {
  for (std::size_t round = 0; !attempt(); ++round) {
    const std::chrono::milliseconds left = deadline.Left(fileSystem_);
    // There are two attempts at least, even with a timeout of 0, and a moment between them in which the holder can run.
    if (left.count() == 0 && round >= 1) return false;
    fileSystem_.Pause(std::min(left, std::chrono::milliseconds{kPauses[std::min(round, kPauses.size() - 1)]}));
  }
  return true;
}

void StatementLock::RaiseInUse(const LockDeadline& deadline, std::uint64_t offset, std::uint64_t length) {
  // Looked for now, when the wait has failed: it may cost a walk over all processes.
  const std::string holder = file_.LockHolder(offset, length);
  RaiseFailure("Could not use '" + path_ + "'; file already in use" + (holder.empty() ? "" : " by " + holder) +
               ". It stayed locked for " + std::to_string(deadline.Timeout().count()) +
               " milliseconds; try again when the other user has finished.");
}

SoleUse::SoleUse(StatementLock& lock, const LockDeadline& deadline) : lock_(lock), ownsWriter_(!lock.HoldsWriter()) {
  // In the order that the header gives, so that two who want the whole file do not wait for each other.
  if (ownsWriter_) lock_.AcquireWriter(deadline);
  try {
    lock_.AcquireExclusive(deadline);
  } catch (...) {
    if (ownsWriter_) lock_.ReleaseWriter();
    throw;
  }
}

SoleUse::~SoleUse() {
  lock_.Release();
  if (ownsWriter_) lock_.ReleaseWriter();
}

}  // namespace tavi::access
