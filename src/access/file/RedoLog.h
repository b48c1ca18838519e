#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "access/file/FileSystem.h"
#include "access/file/LogContent.h"
#include "access/file/LogFlush.h"
#include "access/file/LogHeader.h"
#include "access/file/LogStatement.h"
#include "access/file/Page.h"

namespace tavi::access {

/// A page in the log.
struct LoggedPage {
  /// Its content in the database file when it was first logged.
  PageSums before;
  /// Where its newest image lies in the log, in bytes; 0 when it has none.
  std::uint64_t imageOffset = 0;
  /// Where older images lie that a checkpoint which was not finished may have written into the database.
  std::vector<std::uint64_t> olderImages;
  /// Where the last delta after that image lies, 0 when there is none, and how many there are.
  std::uint64_t lastDelta = 0;
  std::uint32_t deltaCount = 0;
  /// Checksum of the page after the last delta.
  std::uint32_t sum = 0;
};

/// A page that a statement has changed, as it is to be stored.
struct StatementPage {
  PageNumber number = 0;
  PageSums before;
  std::span<const std::uint8_t, kPageSize> image;
  /// The page as it was stored before the statement, from which a delta may lead; empty when that is not known.
  std::span<const std::uint8_t> base = {};
};

/// One opener's view of the redo log: reads what others have appended, appends, and drops the log. Append is for the
/// one writer, while others may read; the other calls that change the file are for who is alone with it; the rest need
/// the statement lock shared, or the writer's. Errors are those of the file system.
class RedoLog {
 public:
  RedoLog(FileSystem& fileSystem, std::string databasePath, bool readOnly);

  /// What Refresh has found: nothing new; more statements; or another log than before, of which all is new.
  enum class Change { None, Statements, Replaced };
  /// Brings the view up to date with the file. Adds the pages of new statements to `changed`.
  Change Refresh(std::vector<PageNumber>& changed);

  /// True when a log file is there, whatever is in it.
  [[nodiscard]] bool HasFile() const { return file_ != nullptr; }
  /// True when it holds finished statements.
  [[nodiscard]] bool HasStatements() const { return !pages_.empty(); }
  /// True when the file is not a log of ours: it must be set aside before anything is written.
  [[nodiscard]] bool IsUnknown() const { return isUnknown_; }
  /// Number of pages of the database after the last statement; only with statements.
  [[nodiscard]] PageNumber PageCount() const { return pageCount_; }
  /// Offset of the end of the last statement in bytes.
  [[nodiscard]] std::uint64_t End() const { return end_; }

  /// The page in the log, null when it is not there.
  [[nodiscard]] const LoggedPage* Find(PageNumber number) const {
    if (pages_.empty()) return nullptr;
    const auto found = pages_.find(number);
    return found == pages_.end() ? nullptr : &found->second;
  }
  /// Reads a page that is in the log, as it is stored after the last statement. Raises ProviderFailure when what it is
  /// put together from has changed under it.
  void ReadPage(PageNumber number, const LoggedPage& page, File& database, std::span<std::uint8_t, kPageSize> target);

  /// What must be as the log remembers it: the file's number and times, which is quickly seen, or else its content; or
  /// the content in any case.
  enum class Proof { Times, Content };
  /// Whether the statements belong to the database file as it now is; see LogLayout.h. Without its content, where that
  /// is not known.
  [[nodiscard]] bool BelongsTo(File& database, Proof proof);

  /// Appends a statement, making the file when there is none. It is flushed soon, or before the call returns. On an
  /// error, also of that flush, the file is as it was before.
  void Append(const LogOwner& owner, std::span<const StatementPage> pages, PageNumber pageCount,
              FlushTime flush = FlushTime::Soon);

  /// Lets the content of the database be read and remembered soon, in the background, unless it is known.
  void FindContentSoon(File& database);
  /// Lets what others have appended be flushed soon: they may be gone.
  void FlushSoon();
  /// Returns when all that stands in the file is durable, whoever appended it. Raises ProviderFailure for a doubtful
  /// log, for which a flush proves nothing.
  void Flush();
  /// Waits for a flush that is going on in the background and drops what was asked for.
  void SettleFlush() { flush_.Settle(); }
  /// The reason why a flush in the background failed, once.
  [[nodiscard]] std::optional<std::string> TakeFailedFlush() { return flush_.TakeFailure(); }
  /// True when a flush has failed by now, here or by another opener: a checkpoint must come before the next statement.
  [[nodiscard]] bool IsDoubtful();

  /// Writes all logged pages into the database file and flushes it, once their images stand in the log. The log stays,
  /// marked as applied. Can be repeated after an error or a crash.
  void ApplyTo(File& database);
  /// Forgets all statements and begins the log anew; for use while other pagers know the file.
  void Reset(const LogOwner& owner);
  /// Removes the file; only when no other pager knows it.
  void Remove();
  /// Moves the log out of the way and returns its new path. `isAlone`: no other pager knows the file.
  std::string SetAside(bool isAlone);
  /// Takes the log as if it were empty until another one is begun: for readers, who cannot set it aside.
  void Ignore();
  /// Lets go of the file, whatever is in it, when no flush is going on any more.
  void Release();

 private:
  // Reading.
  struct KnownPage {
    std::uint64_t lastDelta = 0;
    std::vector<std::uint8_t> stored;
  };
  using KnownPages = std::unordered_map<PageNumber, KnownPage>;

  bool OpenFile();
  void RefuseLaterVersion() const;
  void BeginFlushing();
  void Forget();
  Change BecomeEmpty(bool isUnknown);
  bool ReadNewStatements(std::uint64_t size, std::vector<PageNumber>& changed);
  [[nodiscard]] bool IsNext(const LogStatement& statement) const;
  [[nodiscard]] bool Follows(const LogEntry& entry) const;
  void Keep(const LogStatement& statement);
  void Remember(const LogEntry& entry);
  [[nodiscard]] std::vector<LoggedDelta> DeltasSince(std::uint64_t known, const LoggedPage& page);

  // Appending.
  void CreateFile();
  void BeginLog(const LogOwner& owner);
  void AppendWhole(std::uint64_t oldEnd, const std::function<LogStatement()>& write);
  [[nodiscard]] NewLogEntry EntryOf(const StatementPage& page, bool mayBeDelta) const;
  void AppendImages(File& database);

  // Applying.
  [[nodiscard]] bool ApplyingHasBegun() const;
  [[nodiscard]] bool HasFittingSize(const LogOwner& owner, std::uint64_t size) const;
  [[nodiscard]] bool IsUntouched(File& database, const LogOwner& owner);
  [[nodiscard]] std::uint64_t ContentOf(File& database, const LogOwner& owner) const;
  [[nodiscard]] bool HasItsTimes(File& database, const LogOwner& owner);
  [[nodiscard]] bool HasWitnesses(File& database, const LogOwner& owner) const;
  [[nodiscard]] bool Recognises(File& database, std::uint64_t size, PageNumber number, const LoggedPage& page);
  [[nodiscard]] std::vector<PageSums> SumsOfImages(const LoggedPage& page);
  void MarkContent(File& database);
  void MarkApplying(File& database);
  void MakeDurable();
  void WriteAnew();
  [[nodiscard]] std::string FreeSetAsidePath() const;

  FileSystem& fileSystem_;
  std::string databasePath_;
  std::string path_;
  bool readOnly_;
  std::unique_ptr<File> file_;
  LogFlush flush_;
  LogContent content_;

  LogHeader header_;           // as last read; valid when salt_ is not 0
  std::uint64_t salt_ = 0;     // 0: the file has no header yet
  std::uint64_t ignored_ = 0;  // salt of a log that is taken as empty
  bool isUnknown_ = false;
  std::uint64_t fileSize_ = 0;
  std::uint64_t end_ = 0;
  std::uint64_t chain_ = 0;
  PageNumber pageCount_ = 0;
  std::unordered_map<PageNumber, LoggedPage> pages_;
  KnownPages known_;  // pages with many deltas, as they were put together last
};

}  // namespace tavi::access
