#pragma once

#include <atomic>
#include <chrono>
#include <memory>
#include <optional>

#include "access/file/FileSystem.h"
#include "access/file/LogHeader.h"

namespace tavi::access {

/// Reads a large database file through in the background, so that its log soon knows the content that it was begun on.
/// The background has openers of its own. The calls are for one thread.
class LogContent {
 public:
  /// Reading begins this long after the first statement.
  static constexpr std::chrono::milliseconds kDelay{50};

  explicit LogContent(FileSystem& fileSystem) : fileSystem_(fileSystem) {}

  /// Lets `database` be read, and its content be written into the header of `log`, which belongs to it. Of the files of
  /// the first call, until End. Does nothing after an error: whoever needs the content reads the file then.
  void FindSoon(File& database, File& log);
  /// Returns when nothing is being read any more; what has begun is read to its end.
  void Settle();
  /// The same, but gives up what has begun.
  void Stop();
  /// Stops and lets go of the files.
  void End();

 private:
  void Find() noexcept;
  [[nodiscard]] std::optional<std::uint64_t> Read(std::uint64_t size);

  FileSystem& fileSystem_;
  // Of the work while it is being done, of the caller otherwise.
  std::unique_ptr<File> database_;
  std::unique_ptr<File> log_;
  std::atomic<bool> isToStop_ = false;
  std::atomic<bool> hasFailed_ = false;

  std::unique_ptr<BackgroundWork> work_;  // the last member: ends before what it uses
};

}  // namespace tavi::access
