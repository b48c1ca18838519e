#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>

#include "access/file/FileSystem.h"
#include "access/file/LogFlush.h"
#include "access/file/Page.h"

namespace tavi::access {

class WritingThreads;

struct PagerOptions {
  /// Memory that unchanged pages may take, in bytes.
  std::size_t cacheBytes = std::size_t{64} << 20U;
  /// How long an operation (a statement, opening) waits in all for other users of the file before it gives up.
  std::chrono::milliseconds lockTimeout{10000};
  /// Shared by the pagers of this process that are to see when they would wait for each other for ever. May be empty.
  std::shared_ptr<WritingThreads> writingThreads = {};
  /// Opens for reading even when the file could be written.
  bool readOnly = false;
  /// Opens for this user alone: nobody else, here or in another process, can open the file until Close. Needs a file
  /// that may be written. What the redo log holds is in the file when it is open.
  bool alone = false;
  /// Size of the redo log in bytes from which on a commit makes a checkpoint.
  std::uint64_t checkpointBytes = std::uint64_t{64} << 20U;
  /// Files of up to so many bytes are read through when a log is begun for them, 30 ms for the largest; larger ones in
  /// the background while statements go on.
  std::uint64_t largestReadAtOnce = std::uint64_t{64} << 20U;
  /// When a finished statement is flushed.
  FlushTime flush = FlushTime::Soon;
  /// Told in words what people should know although nothing failed (a log set aside, a checkpoint put off). May be
  /// empty.
  std::function<void(const std::string&)> report = {};
};

/// Hands out the pages of one open file and takes changed ones back; nobody above it touches the file. One pager
/// belongs to one connection and one thread; several pagers (in this or other processes) may have the same file open.
///
/// Rules that hold at all times:
///  1. Pages are read and changed only inside a statement (Begin... to Commit or Rollback). One pager at a time writes
///     the file, from the beginning of its write statement or outermost transaction to the end. Nobody waits for the
///     writer in order to read, and the writer waits for no reader: a read statement sees the file as it was committed
///     when the statement began.
///  2. Until they are committed changed pages live in the writer's memory only. Rollback forgets them: the file is as
///     before. Within a transaction a write statement that is rolled back undoes itself alone.
///  3. Commit of a write statement, or of the outermost transaction around it, appends all changed pages and a
///     checksummed commit record to the redo log, all of them or none; from then on a crash of the process loses
///     nothing, and a loss of power nothing once the flush is over that begins within 100 ms. The database file itself
///     is not touched. A flush that failed is the error of the next statement, or of Close, and no statement is
///     committed after it before a checkpoint has succeeded.
///  4. Only a checkpoint writes the database file, while nobody reads or writes: first the log is flushed, then its
///     pages are written and flushed, then the log goes. Close makes a checkpoint; it can be repeated from the log
///     after a crash at any point.
///  5. At the start of each statement the pager reads what others have committed: nobody sees stale pages. A writer
///     does so once, as it becomes the writer.
///
/// States of a pager and what leads from one to the next:
///
///               BeginRead                      BeginWrite
///   reading  <-------------  no statement  ------------------>  writing
///            ------------->       |        <------------------
///               EndRead           | Close    Commit, Rollback
///                                 v
///                               closed
///
/// Transactions are begun and ended where there is no statement. They nest: each ends the one begun last, and what an
/// inner one committed goes when the one around it is rolled back.
///
/// States of a page in a write statement: as committed -> changed (Write, WriteNew) -> logged (Commit) -> in the
/// database file (checkpoint). A page that was changed back to what it was is not logged.
///
/// Beside the database file NAME lie, while they are needed: NAME.redo (the log, layout in LogLayout.h) and
/// NAME.redo-setaside-1, -2, ... (logs that belonged to an older state of the file; never read again).
class Pager {
 public:
  /// Opens a file: applies a redo log that a crash left behind, decodes the header. Raises ProviderFailure when the
  /// file is missing ("Could not find file ..."), is no Access database ("Unrecognized database format ..."), has a
  /// version or password that is not supported, or is in use (`alone`: by anybody). A redo log that does not belong to
  /// the file as it now is, because another program has written it since, is renamed aside and reported. A file that
  /// must not be written (its own permissions, its folder's, Access 97) is opened for reading only; a pending log is
  /// then looked through, not applied.
  static std::unique_ptr<Pager> Open(const std::shared_ptr<FileSystem>& fileSystem, const std::string& path,
                                     const PagerOptions& options);
  /// Writes a new file of the given pages (page i of the list is page i of the file), durable on return.
  /// Page 0 is given as it is stored (masked); when it holds a database key the other pages are encoded with it.
  /// Raises ProviderFailure when the file exists already; on any error no file is left. The same people may use it as
  /// the file `permissionsOf`, when one is named, before anything is in it.
  static void Create(FileSystem& fileSystem, const std::string& path, std::span<const Page> pages,
                     const std::string& permissionsOf = {});

  virtual ~Pager() = default;

  /// True when the file may only be read. BeginWrite then raises ProviderPermission.
  [[nodiscard]] virtual bool IsReadOnly() const = 0;
  [[nodiscard]] virtual const std::string& Path() const = 0;
  /// True for Jet 3 files, which are only read. Their pages have 2048 bytes; the rest of each Page is zero.
  [[nodiscard]] virtual bool IsJet3() const = 0;

  /// Begins a read statement. Raises ProviderFailure when another user makes a checkpoint for longer than the lock
  /// timeout.
  virtual void BeginRead() = 0;
  virtual void EndRead() = 0;
  /// Begins a write statement. Raises ProviderPermission on a read-only file, ProviderFailure when another writes for
  /// longer than the lock timeout or would do so for ever, when another database program has the file open (the .ldb
  /// file beside it is locked), or inside a read statement.
  virtual void BeginWrite() = 0;
  /// Ends the write statement; its changes are in the log and others see them, or, within a transaction, they belong to
  /// that one. On an error (disk full, ...) nothing has changed for anybody and the statement is still open, to be
  /// rolled back.
  virtual void Commit() = 0;
  /// Ends the write statement without a trace. Does nothing outside of one.
  virtual void Rollback() = 0;

  /// Begins a transaction, within another one when there is one, and returns how many are open then. The outermost one
  /// makes this pager the writer (errors as BeginWrite), so that what is read in it stays true until its end; on a
  /// read-only file it does not, and writing is refused later. Not inside a statement.
  virtual std::int32_t BeginTransaction() = 0;
  /// Ends the innermost transaction. Its changes belong to the one around it; those of the outermost go to the log
  /// together, and others see them. On an error (disk full, ...) nothing has changed for anybody and the transaction is
  /// still open, to be committed again or rolled back; also where another program has written the file since it was
  /// begun. Raises ProviderFailure without a transaction and inside a statement.
  virtual void CommitTransaction() = 0;
  /// Ends the innermost transaction without a trace. Raises ProviderFailure without one and inside a statement.
  virtual void RollbackTransaction() = 0;
  /// How many transactions are open.
  [[nodiscard]] virtual std::int32_t TransactionLevel() const = 0;

  [[nodiscard]] virtual bool InStatement() const = 0;
  [[nodiscard]] virtual bool InWrite() const = 0;

  /// Number of pages of the file, the current statement's new ones included.
  [[nodiscard]] virtual PageNumber PageCount() const = 0;
  /// A page as it is in this statement. A handle keeps its content even when the page is changed afterwards, so after
  /// Write(n) read it again. Page 0 is handed out as it is stored, masked (see DatabaseHeader.h). Raises an error for a
  /// page past the end and outside of a statement.
  [[nodiscard]] virtual PageHandle Read(PageNumber number) = 0;
  /// The statement's own copy of a page, to be changed. The reference is valid until the end of the statement.
  [[nodiscard]] virtual Page& Write(PageNumber number) = 0;
  /// A page that is to be written from scratch: all zero, not read from the file; extends the file when it lies at its
  /// end. Allocation is the business of PageAllocator.
  [[nodiscard]] virtual Page& WriteNew(PageNumber number) = 0;

  /// Grows whenever something that was read before may have become untrue by other means than this pager's own
  /// writes: another user's commit was read, or a statement or transaction was rolled back. Caches of what pages
  /// say (table definitions, statistics) are dropped when it has changed.
  [[nodiscard]] virtual std::uint64_t Generation() const = 0;

  /// Returns when everything committed is durable, by whomever. Raises an error when the system cannot flush.
  virtual void Flush() = 0;

  /// Checkpoint and release of the file; open statements and transactions are rolled back. Costs nothing when nothing
  /// is to be written. Where others keep the file busy for longer than the lock timeout the log stays for them or the
  /// next opener. An error of the disk is raised after the release; the log then stays too, and nothing is lost. A
  /// second call does nothing; the destructor calls it, swallowing errors.
  virtual void Close() = 0;
};

/// A read statement as a guard. Inside an open statement (read or write) it joins that one.
class ReadStatement {
 public:
  explicit ReadStatement(Pager& pager) : pager_(pager), owns_(!pager.InStatement()) {
    if (owns_) pager_.BeginRead();
  }
  ~ReadStatement() {
    if (owns_) pager_.EndRead();
  }
  ReadStatement(const ReadStatement&) = delete;
  ReadStatement& operator=(const ReadStatement&) = delete;

 private:
  Pager& pager_;
  bool owns_;
};

/// A write statement as a guard: rolled back at the end of its life unless Commit was called. Inside an open write
/// statement it joins that one (its Commit then does nothing, its failure must be passed on).
class WriteStatement {
 public:
  explicit WriteStatement(Pager& pager) : pager_(pager), owns_(!pager.InWrite()) {
    if (owns_) pager_.BeginWrite();
  }
  ~WriteStatement() {
    if (owns_ && !committed_) pager_.Rollback();
  }
  void Commit() {
    if (owns_) pager_.Commit();
    committed_ = true;
  }
  WriteStatement(const WriteStatement&) = delete;
  WriteStatement& operator=(const WriteStatement&) = delete;

 private:
  Pager& pager_;
  bool owns_;
  bool committed_ = false;
};

}  // namespace tavi::access
