#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "access/file/DatabaseHeader.h"
#include "access/file/ForeignUse.h"
#include "access/file/PageCache.h"
#include "access/file/Pager.h"
#include "access/file/RedoLog.h"
#include "access/file/StatementLock.h"

namespace tavi::access {

/// Raised while a file is opened whose name has come to another file meanwhile; Pager::Open then opens that one.
class FileWasReplaced : public std::exception {
 public:
  [[nodiscard]] const char* what() const noexcept override { return "the file was replaced while it was opened"; }
};

/// The pager of a file: statements over the page cache, the redo log and the database file. See Pager.h for the
/// promises and its numbered rules, which the comments here cite.
class FilePager final : public Pager {
 public:
  /// `deadline` is that of the locks that opening takes.
  FilePager(std::shared_ptr<FileSystem> fileSystem, std::string path, PagerOptions options,
            const LockDeadline& deadline);
  ~FilePager() override;
  FilePager(const FilePager&) = delete;
  FilePager& operator=(const FilePager&) = delete;

  [[nodiscard]] bool IsReadOnly() const override { return readOnly_; }
  [[nodiscard]] const std::string& Path() const override { return path_; }
  [[nodiscard]] bool IsJet3() const override { return header_.isJet3; }

  void BeginRead() override;
  void EndRead() override;
  void BeginWrite() override;
  void Commit() override;
  void Rollback() override;
  [[nodiscard]] bool InStatement() const override { return state_ == State::Reading || state_ == State::Writing; }
  [[nodiscard]] bool InWrite() const override { return state_ == State::Writing; }

  std::int32_t BeginTransaction() override;
  void CommitTransaction() override;
  void RollbackTransaction() override;
  [[nodiscard]] std::int32_t TransactionLevel() const override { return transactions_; }

  [[nodiscard]] PageNumber PageCount() const override { return pageCount_; }
  [[nodiscard]] PageHandle Read(PageNumber number) override;
  [[nodiscard]] Page& Write(PageNumber number) override;
  [[nodiscard]] Page& WriteNew(PageNumber number) override;
  [[nodiscard]] std::uint64_t Generation() const override { return generation_; }
  void Flush() override;
  void Close() override;

 private:
  enum class State { Idle, Reading, Writing, Closed };

  // Opening (FilePager.cpp, up to the pages).
  void Start(const LockDeadline& deadline);
  void ReadHeader();
  void RecoverWhenAlone(const LockDeadline& deadline);
  void StayAlone(const LockDeadline& deadline);
  [[noreturn]] void RaiseReadOnly() const;
  void RefuseForeignUse() const;
  void RefuseSeveralNames() const;
  void RefuseForeignChange() const;
  [[nodiscard]] LockDeadline NewDeadline() const { return {*fileSystem_, options_.lockTimeout}; }

  // Statements and transactions.
  void EnterRead(const LockDeadline& deadline);
  void RequireTransaction(const std::string& what) const;
  void BecomeWriter();
  void Store();
  void Undo();

  // What others have committed (rule 5; FilePagerLog.cpp, as all that follows but the pages).
  [[nodiscard]] bool Refresh();
  [[nodiscard]] bool RefreshAfterCrash();
  [[nodiscard]] bool ReadLogAndFile();
  void DropCache();
  void RefreshForReading(const LockDeadline& deadline);
  void RefreshForWriting(const LockDeadline& deadline);
  [[noreturn]] void SetLogAside(bool isAlone);

  // Pages.
  void RequireStatement(PageNumber number) const;
  [[nodiscard]] std::uint64_t FilePageCount() const { return fileSize_ / header_.pageSize; }
  [[nodiscard]] PageHandle ReadCommitted(PageNumber number);
  void ReadStored(PageNumber number, Page& target);
  void ToggleEncoding(Page& page) const;

  // Committing.
  [[nodiscard]] bool AppendToLog();
  [[nodiscard]] LogOwner OwnerOfNewLog() { return LogOwner::Of(*file_, options_.largestReadAtOnce); }
  [[nodiscard]] PageSums ContentInDatabase(PageNumber number, const PageHandle& base);
  void KeepChangedPages();

  // Checkpoints (rule 4).
  void Checkpoint(bool isAlone);
  void CheckpointWhenLogIsLong();
  void LeaveLog();
  void BringLogIn(bool isAlone);
  void LeaveLogToOthers(const std::string& why);
  void RaiseFailedFlush();
  void RequireSoundLog(const LockDeadline& deadline);
  void Report(const std::string& text) const;

  std::shared_ptr<FileSystem> fileSystem_;
  std::string path_;       // as the caller gave it
  std::string canonical_;  // the same for all openers, whatever links they came by
  PagerOptions options_;
  bool readOnly_;
  std::unique_ptr<File> file_;
  StatementLock lock_;
  LockFileHold lockFile_;
  RedoLog log_;
  DatabaseHeader header_;
  PageCache cache_;

  State state_ = State::Idle;
  bool hasOwnStatements_ = false;   // this pager has committed since the last checkpoint
  std::optional<FileTimes> times_;  // of the file whose pages are cached, once it is known to be the log's
  std::uint64_t fileSize_ = 0;
  PageNumber pageCount_ = 0;
  std::uint64_t generation_ = 0;
  std::uint64_t checkpointAt_;  // length of the log from which on a commit makes a checkpoint
  std::int32_t transactions_ = 0;
  PageChanges changes_;  // a level for each open transaction, and one for the write statement
};

}  // namespace tavi::access
