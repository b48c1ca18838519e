#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "access/file/DatabaseHeader.h"
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
class PagerImplementation final : public Pager {
 public:
  PagerImplementation(std::shared_ptr<FileSystem> fileSystem, std::string path, PagerOptions options);
  ~PagerImplementation() override;
  PagerImplementation(const PagerImplementation&) = delete;
  PagerImplementation& operator=(const PagerImplementation&) = delete;

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

  [[nodiscard]] PageNumber PageCount() const override { return pageCount_; }
  [[nodiscard]] PageHandle Read(PageNumber number) override;
  [[nodiscard]] Page& Write(PageNumber number) override;
  [[nodiscard]] Page& WriteNew(PageNumber number) override;
  [[nodiscard]] std::uint64_t Generation() const override { return generation_; }
  void Close() override;

 private:
  enum class State { Idle, Reading, Writing, Closed };

  /// A page that the write statement has changed.
  struct ChangedPage {
    std::shared_ptr<Page> live;  // what Write hands out
    PageHandle base;             // as it was before; null when it was written from scratch
    PageHandle snapshot;         // what Read handed out last; null when it has not been asked for
  };
  using ChangedPages = std::unordered_map<PageNumber, ChangedPage>;

  // Opening.
  void Start();
  void ReadHeader();
  void RecoverWhenAlone();
  void StayAlone();
  [[noreturn]] void RaiseReadOnly() const;

  // Taking in what others have done (rule 5).
  [[nodiscard]] bool Refresh();
  [[nodiscard]] bool TakeInOthers();
  void DropCache();
  void RefreshForReading();
  void RefreshForWriting();
  void SetLogAside(bool isAlone);

  // Pages.
  void RequireStatement(PageNumber number) const;
  [[nodiscard]] std::uint64_t FilePageCount() const { return fileSize_ / header_.pageSize; }
  [[nodiscard]] PageHandle ReadCommitted(PageNumber number);
  void ReadStored(PageNumber number, Page& target);
  void ToggleEncoding(Page& page) const;
  [[nodiscard]] static PageHandle Snapshot(ChangedPage& changed);

  // Committing.
  [[nodiscard]] bool AppendToLog();
  [[nodiscard]] std::vector<PageNumber> NumbersToLog() const;
  [[nodiscard]] std::uint64_t ContentInDatabase(PageNumber number, const PageHandle& base);
  void KeepChangedPages();
  void EndWrite() noexcept;

  // Checkpoints (rule 4).
  [[nodiscard]] LogOwner DescribeDatabase();
  void Checkpoint(bool isAlone);
  void CheckpointWhenLogIsLong();
  void LeaveLog();
  void Report(const std::string& text) const;

  std::shared_ptr<FileSystem> fileSystem_;
  std::string path_;       // as the caller gave it
  std::string canonical_;  // the same for all openers, whatever links they came by
  PagerOptions options_;
  bool readOnly_;
  std::unique_ptr<File> file_;
  StatementLock lock_;
  RedoLog log_;
  DatabaseHeader header_;
  PageCache cache_;

  State state_ = State::Idle;
  bool hasOwnStatements_ = false;  // this pager has committed since the last checkpoint
  std::optional<std::int64_t> stamp_;
  std::uint64_t fileSize_ = 0;
  PageNumber committedPageCount_ = 0;
  PageNumber pageCount_ = 0;
  std::uint64_t generation_ = 0;
  ChangedPages changed_;
};

}  // namespace tavi::access
