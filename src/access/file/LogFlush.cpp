#include "access/file/LogFlush.h"

#include <exception>
#include <utility>

#include "platform/values/Error.h"

namespace tavi::access {

LogFlush::LogFlush(FileSystem& fileSystem, std::string logPath)
    : fileSystem_(fileSystem), logPath_(std::move(logPath)) {}

void LogFlush::Begin(File& log, std::function<void(File&)> markAsDoubtful) {
  End();
  log_ = log.OpenAgain();
  markAsDoubtful_ = std::move(markAsDoubtful);
  nameIsDurable_ = false;
}

void LogFlush::Soon() {
  if (log_ == nullptr) return;
  if (work_ == nullptr) work_ = fileSystem_.NewBackgroundWork(kDelay, [this] { FlushInBackground(); });
  work_->Ask();
}

void LogFlush::Now() {
  Settle();
  if (log_ == nullptr) return;
  try {
    Flush();
  } catch (...) {
    NoteFailure(std::nullopt);
    throw;
  }
}

void LogFlush::Flush() {
  log_->Sync();
  if (!nameIsDurable_) fileSystem_.SyncFolderOf(logPath_);
  nameIsDurable_ = true;
}

void LogFlush::FlushInBackground() {
  std::string reason;
  try {
    return Flush();
  } catch (const Error& error) {
    reason = error.Description();
  } catch (const std::exception& error) {
    reason = error.what();
  }
  NoteFailure(reason);
}

// `reason` when nobody else has learnt it.
void LogFlush::NoteFailure(std::optional<std::string> reason) {
  markAsDoubtful_(*log_);
  const std::lock_guard lock(mutex_);
  hasFailed_ = true;
  if (reason) failure_ = std::move(reason);
}

void LogFlush::Settle() {
  if (work_ != nullptr) work_->Settle();
}

void LogFlush::End() {
  Settle();
  log_.reset();
  ForgetFailures();
}

bool LogFlush::HasFailed() const {
  const std::lock_guard lock(mutex_);
  return hasFailed_;
}

void LogFlush::ForgetFailures() {
  const std::lock_guard lock(mutex_);
  hasFailed_ = false;
}

std::optional<std::string> LogFlush::TakeFailure() {
  const std::lock_guard lock(mutex_);
  return std::exchange(failure_, std::nullopt);
}

}  // namespace tavi::access
