#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "access/file/FileSystem.h"

namespace tavi::access {

/// When a finished statement is flushed to the device: a flush begins within 100 ms after the statement returned, in
/// the background; or the statement returns when the flush is over.
enum class FlushTime { Soon, EachStatement };

/// Flushes a log file while statements go on: soon after each of them in the background, or at once. The background has
/// an opener of its own, so that nobody waits for it. The calls are for one thread.
class LogFlush {
 public:
  /// A flush begins this long after the first statement that asked for it.
  static constexpr std::chrono::milliseconds kDelay{50};

  LogFlush(FileSystem& fileSystem, std::string logPath);

  /// Looks after a log file from now on. `markAsDoubtful` is called with an opener of it, from any thread, when a flush
  /// has failed.
  void Begin(File& log, std::function<void(File&)> markAsDoubtful);
  /// Lets a flush begin within 100 ms, one for all that is written until then.
  void Soon();
  /// Returns when everything written and the log's name are on the device. Raises the system's error.
  void Now();
  /// Drops what was asked for and waits for a flush that is going on.
  void Settle();
  /// Settles and lets go of the log file.
  void End();

  /// The reason why a flush in the background failed, once.
  [[nodiscard]] std::optional<std::string> TakeFailure();
  /// True when any flush of this log file has failed.
  [[nodiscard]] bool HasFailed() const;
  /// Begins anew with a log file that has been emptied.
  void ForgetFailures();

 private:
  void Flush();
  void FlushInBackground();
  void NoteFailure(std::optional<std::string> reason);

  FileSystem& fileSystem_;
  std::string logPath_;
  // Of the work while it is being done, of the caller otherwise.
  std::unique_ptr<File> log_;
  std::function<void(File&)> markAsDoubtful_;
  bool nameIsDurable_ = false;

  mutable std::mutex mutex_;  // guards the next two
  std::optional<std::string> failure_;
  bool hasFailed_ = false;

  std::unique_ptr<BackgroundWork> work_;  // the last member: ends before what it uses
};

}  // namespace tavi::access
