#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "access/file/FileSystem.h"
#include "access/file/FlushTime.h"
#include "access/file/LogFlush.h"
#include "access/file/Page.h"

namespace tavi::access {

// The redo log: a file beside the database, <database path>.redo, that holds the pages of finished statements until a
// checkpoint has brought them into the database. All integers are little-endian.
//
//   Log header, 64 bytes at offset 0
//   offset  size  meaning
//   0x00    8     "TAVIREDO"
//   0x08    4     version of this layout, 1
//   0x0C    4     bytes of a page, 4096
//   0x10    8     salt: another number for each log; seeds the checksums, so that stale bytes are never taken for new
//   0x18    8     size of the database file in bytes when the log was begun
//   0x20    8     fingerprint: checksum of the database's page 0 then, as stored
//   0x28    16    0
//   0x38    8     checksum of bytes 0x00-0x37, seed 0
//
//   Marks of a checkpoint, 32 bytes at offset 0x40: all 0 until one begins to write the database
//   0x40    8     applying: offset of the log's end at that time
//   0x48    8     checksum of the 8 bytes before, seed = salt
//   0x50    8     applied: checksum of the 16 bytes before, seed = salt; written when the database has been flushed
//   0x58    8     doubtful: not 0 when a flush of the log has failed
//
//   From offset 0x60 on: statements, back to back. A statement with n pages, 40 + n x (16 + 4096) bytes:
//   +0x00   4     "STMT"
//   +0x04   4     n, at least 1
//   +0x08   4     number of pages of the database after the statement, at most n more than before
//   +0x0C   4     0
//   +0x10   8     chain: checksum of the statement before (of the first one: the salt)
//   +0x18   8     0
//   +0x20   16 n  directory: for each page its number [4], 0 [4], and the checksum (seed 0) of its content in the
//   database
//                 file when it was first logged [8], 0 for a page that the file did not have
//   then 4096 n   images of the pages as they are to be stored (encoded, in an encoded database), in directory order
//   then 8        checksum of the statement: header, directory, and each image, each seeded with the result before; the
//                 header with the chain
//
// Example, a log with one statement that changes page 6 of a database of 16 pages (checksums written as c1 ..):
//   0000  54 41 56 49 52 45 44 4f 01 00 00 00 00 10 00 00   "TAVIREDO", version 1, 4096
//   0010  s1 s2 s3 s4 s5 s6 s7 s8 00 00 01 00 00 00 00 00   salt, 65,536 bytes
//   0020  f1 f2 f3 f4 f5 f6 f7 f8 00 00 00 00 00 00 00 00   fingerprint
//   0030  00 00 00 00 00 00 00 00 c1 c2 c3 c4 c5 c6 c7 c8   header checksum
//   0040  00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00   no checkpoint has begun
//   0050  00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00
//   0060  53 54 4d 54 01 00 00 00 10 00 00 00 00 00 00 00   "STMT", 1 page, 16 pages after it
//   0070  s1 s2 s3 s4 s5 s6 s7 s8 00 00 00 00 00 00 00 00   chain = salt
//   0080  06 00 00 00 00 00 00 00 b1 b2 b3 b4 b5 b6 b7 b8   page 6, checksum of what the database file has there
//   0090  01 01 ..                                          4096 bytes of page 6
//   1090  d1 d2 d3 d4 d5 d6 d7 d8                           statement checksum; the end is at 0x1098
//
// Which statements count: the longest run from 0x60 on in which every chain and checksum is right. What follows is the
// torn end of a statement that was not finished; it does not count and the next one is written over it. None counts in
// a log that is marked as applied: the database has them all, and other programs may have changed it since.
//
// What is durable when: a statement is appended, and a flush begins soon after (LogFlush), or is over before the
// statement returns. A checkpoint sets the mark and flushes the log before it touches the database, and flushes the
// database before the log goes; so whenever the applying mark is there and the run reaches the offset in it, the
// database may hold any mixture of old and new pages, and the log holds all new ones. While it is absent the database
// is as it was when the log was begun, and a log whose checksums of old pages disagree with it is not its own.
//
// After a flush that failed the system may have forgotten what it could not write, and a later flush that succeeds says
// nothing about it: the log may have holes that show only after a power failure. It is doubtful then. Nothing is
// appended to it before a checkpoint, which writes it once more from its start before it flushes it.

/// A page in the log.
struct LoggedPage {
  /// Where its newest image lies in the log, in bytes.
  std::uint64_t imageOffset = 0;
  /// Checksum of its content in the database file, RedoLog::kNotInDatabase for a page that the file does not have.
  std::uint64_t before = 0;
};

/// A page that a statement has changed: its image as it is to be stored.
struct StatementPage {
  PageNumber number = 0;
  std::uint64_t before = 0;
  std::span<const std::uint8_t> image;
};

/// The database file as a log remembers it.
struct LogOwner {
  std::uint64_t size = 0;
  std::uint64_t fingerprint = 0;
};

/// One opener's view of the redo log: reads what others have appended, appends, and drops the log. Append is for the
/// one writer, while others may read; the other calls that change the file are for who is alone with it; the rest need
/// the statement lock shared, or the writer's. Errors are those of the file system.
class RedoLog {
 public:
  static constexpr std::uint64_t kNotInDatabase = 0;
  static constexpr std::size_t kHeaderSize = 0x60;

  RedoLog(FileSystem& fileSystem, std::string databasePath, bool readOnly);

  /// Checksum of a page as it is stored, never kNotInDatabase.
  [[nodiscard]] static std::uint64_t PageChecksum(std::span<const std::uint8_t> stored);

  /// What TakeIn has found: nothing new; more statements; or another log than before, of which all is new.
  enum class News { None, Statements, Replaced };
  /// Brings the view up to date with the file. Adds the pages of new statements to `changed`.
  News TakeIn(std::vector<PageNumber>& changed);

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
  void ReadImage(const LoggedPage& page, std::span<std::uint8_t, kPageSize> target);

  /// Whether the statements belong to the database file as it now is.
  [[nodiscard]] bool BelongsTo(File& database);

  /// Appends a statement, making the file when there is none. It is flushed soon, or before the call returns. On an
  /// error, also of that flush, the file is as it was before.
  void Append(const LogOwner& owner, std::span<const StatementPage> pages, PageNumber pageCount,
              FlushTime flush = FlushTime::Soon);

  /// Lets what others have appended be flushed soon: they may be gone.
  void FlushSoon();
  /// Returns when all statements are durable.
  void Flush();
  /// Waits for a flush that is going on in the background and drops what was asked for.
  void SettleFlush() { flush_.Settle(); }
  /// The reason why a flush in the background failed, once.
  [[nodiscard]] std::optional<std::string> TakeFailedFlush() { return flush_.TakeFailure(); }
  /// True when a flush has failed, here or by another opener: a checkpoint must come before the next statement.
  [[nodiscard]] bool IsDoubtful() const;

  /// Writes all logged pages into the database file and flushes it; the log stays, marked as being applied. Can be
  /// repeated after an error or a crash.
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
  struct Statement {
    std::uint64_t offset = 0;
    std::uint32_t count = 0;
    PageNumber pageCount = 0;
  };

  bool OpenFile();
  void CreateFile();
  void BeginFlushing();
  void MakeDurable();
  void WriteAnew();
  void Forget();
  News BecomeEmpty(bool isUnknown);
  [[nodiscard]] bool TakeInHeader();
  bool TakeInStatements(std::uint64_t size, std::vector<PageNumber>& changed);
  [[nodiscard]] std::optional<Statement> ReadStatementHeader(std::uint64_t offset, std::uint64_t size,
                                                             std::uint64_t& checksum);
  [[nodiscard]] bool TakeInStatement(const Statement& statement, std::uint64_t& checksum,
                                     std::vector<PageNumber>& changed);
  [[nodiscard]] bool IsOf(const LogOwner& owner) const;
  void WriteHeader(const LogOwner& owner);
  std::uint64_t WriteStatement(std::span<const StatementPage> pages, PageNumber pageCount);
  void Remember(PageNumber number, std::uint64_t imageOffset, std::uint64_t before);
  void MarkApplying();
  void MarkApplied();
  [[nodiscard]] bool ApplyingHasBegun() const;
  [[nodiscard]] bool IsApplied() const;
  [[nodiscard]] std::string FreeSetAsidePath() const;
  void CopyTo(const std::string& path);

  using Header = std::array<std::uint8_t, kHeaderSize>;

  FileSystem& fileSystem_;
  std::string databasePath_;
  std::string path_;
  bool readOnly_;
  std::unique_ptr<File> file_;
  LogFlush flush_;

  Header header_{};            // as last read; valid when salt_ is not 0
  std::uint64_t salt_ = 0;     // 0: the file has no header yet
  std::uint64_t ignored_ = 0;  // salt of a log that is taken as empty
  bool isUnknown_ = false;
  std::uint64_t fileSize_ = 0;
  std::uint64_t end_ = 0;
  std::uint64_t chain_ = 0;
  PageNumber pageCount_ = 0;
  std::unordered_map<PageNumber, LoggedPage> pages_;
};

}  // namespace tavi::access
