#include "access/file/LogFlush.h"

#include <exception>
#include <utility>

#include "platform/values/Error.h"

// A flush has two parts: the log's content, and, once for a log file, its name in the folder. Without the second a
// power cut could leave a flushed log that nobody finds. The background works on an opener of its own, which is handed
// to and fro without a lock: `Settle` comes before every use by the caller.
//
// A flush that failed is never just tried again. The system may have dropped what it could not write, and a later
// success says nothing about it; so the log is marked as doubtful, in the file, where all users see it, and one of them
// is told.

namespace tavi::access {

LogFlush::LogFlush(FileSystem& fileSystem, std::string logPath)
    : fileSystem_(fileSystem), logPath_(std::move(logPath)) {}

// Another log file, perhaps under the same name: nothing is known of its name's durability.
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

// Whoever waits for this flush learns of its failure by the exception, so no reason is kept for others.
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
  // Behind the content: a name without content would be a log that is not one.
  if (!nameIsDurable_) fileSystem_.SyncFolderOf(logPath_);
  nameIsDurable_ = true;
}

// Nothing may leave a thread's function; whatever it was becomes the reason that the next statement tells.
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

// The reason of a failure stays to be taken; that the flushes of this file failed is forgotten with the file.
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
