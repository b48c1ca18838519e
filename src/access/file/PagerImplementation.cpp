#include "access/file/PagerImplementation.h"

#include <algorithm>
#include <cstring>
#include <deque>
#include <exception>
#include <utility>

#include "access/file/EngineError.h"
#include "access/file/ForeignUse.h"
#include "access/file/Format.h"
#include "access/file/Rc4.h"

namespace tavi::access {

namespace {

bool SameBytes(const Page& left, const Page& right) {
  return std::memcmp(left.All().data(), right.All().data(), kPageSize) == 0;
}

}  // namespace

// ---------------------------------------------------------------------------------------------------------------------
// Opening
// ---------------------------------------------------------------------------------------------------------------------

PagerImplementation::PagerImplementation(std::shared_ptr<FileSystem> fileSystem, std::string path, PagerOptions options)
    : fileSystem_(std::move(fileSystem)),
      path_(std::move(path)),
      canonical_(fileSystem_->CanonicalPath(path_)),
      options_(std::move(options)),
      readOnly_(options_.readOnly || !fileSystem_->IsWritable(canonical_)),
      file_(
          fileSystem_->Open(canonical_, readOnly_ ? FileSystem::OpenMode::ReadOnly : FileSystem::OpenMode::ReadWrite)),
      lock_(*file_, *fileSystem_, path_, options_.lockTimeout),
      log_(*fileSystem_, canonical_, readOnly_),
      cache_(options_.cacheBytes) {
  Start();
}

PagerImplementation::~PagerImplementation() {
  try {
    Close();
  } catch (const std::exception&) {
    // The log holds whatever could not be written; the next opener brings it in.
  }
}

void PagerImplementation::Start() {
  lock_.EnterPresence();
  // Whoever had the file alone may have put another one into its place while we waited.
  if (!file_->IsStillAt(canonical_)) throw FileWasReplaced();
  BeginRead();
  try {
    ReadHeader();
  } catch (...) {
    EndRead();
    throw;
  }
  EndRead();
  RecoverWhenAlone();
  if (options_.alone) StayAlone();
}

void PagerImplementation::ReadHeader() {
  Page first(format::kHeaderPage);
  const std::uint64_t size = log_.HasStatements() ? std::uint64_t{log_.PageCount()} * kPageSize : fileSize_;
  const auto stored = first.AllMutable().first(static_cast<std::size_t>(std::min<std::uint64_t>(size, kPageSize)));
  if (const LoggedPage* logged = log_.Find(format::kHeaderPage)) {
    log_.ReadImage(*logged, first.AllMutable());
  } else {
    file_->ReadAt(0, stored);
  }
  header_ = DecodeHeader(stored, size, path_);
  if (header_.isJet3) readOnly_ = true;
  const std::uint64_t largest = std::uint64_t{format::kMaximumPageCount} * header_.pageSize;
  if (size % header_.pageSize != 0 || size > largest) {
    RaiseFailure("Unrecognized database format '" + path_ + "'. Its length of " + std::to_string(size) + " bytes is " +
                 (size > largest ? "more than an Access database can have."
                                 : "not a whole number of pages; the file is incomplete. Restore it from a backup."));
  }
  committedPageCount_ = static_cast<PageNumber>(size / header_.pageSize);
  pageCount_ = committedPageCount_;
}

// Brings a log that a crash left behind into the file. Where others have the file open it is their log.
void PagerImplementation::RecoverWhenAlone() {
  if (readOnly_ || !log_.HasFile() || FindForeignUse(*fileSystem_, canonical_)) return;
  if (!lock_.TryBecomeAlone()) return;
  try {
    lock_.AcquireExclusive();
    if (!Refresh()) SetLogAside(true);
    if (log_.HasFile()) Checkpoint(true);
  } catch (const Error& error) {
    // The file can be used all the same: its pages are looked for in the log first.
    stamp_.reset();
    Report("The log of '" + path_ + "' could not be brought into the file yet: " + error.Description());
  }
  lock_.Release();
  lock_.LeaveAlone();
}

void PagerImplementation::StayAlone() {
  if (readOnly_) RaiseReadOnly();
  if (const auto foreign = FindForeignUse(*fileSystem_, canonical_))
    RaiseFailure("Could not use '" + path_ + "'; file already in use. " + foreign->Describe() +
                 "; close the database there and try again.");
  lock_.BecomeAlone();
  lock_.AcquireExclusive();
  if (!Refresh()) SetLogAside(true);
  if (log_.HasFile()) Checkpoint(true);
  lock_.Release();
}

void PagerImplementation::RaiseReadOnly() const {
  throw Error(ErrorNumber::ProviderPermission, kErrorSource,
              "Cannot update.  Database or object is read-only. '" + path_ +
                  (header_.isJet3 ? "' is a file of Access 97, which is only read; convert it to Access 2002-2003."
                                  : "' is open for reading only; check the permissions of the file and its folder."));
}

// ---------------------------------------------------------------------------------------------------------------------
// Statements
// ---------------------------------------------------------------------------------------------------------------------

void PagerImplementation::BeginRead() {
  if (state_ != State::Idle)
    RaiseFailure("A read statement was begun on '" + path_ + "' inside another or after Close.");
  lock_.AcquireShared();
  try {
    RefreshForReading();
  } catch (...) {
    lock_.Release();
    throw;
  }
  state_ = State::Reading;
}

void PagerImplementation::EndRead() {
  if (state_ != State::Reading) return;
  state_ = State::Idle;
  lock_.Release();
}

void PagerImplementation::BeginWrite() {
  if (state_ != State::Idle)
    RaiseFailure("A write statement was begun on '" + path_ + "' inside another or after Close.");
  if (readOnly_) RaiseReadOnly();
  lock_.AcquireExclusive();
  try {
    if (const auto foreign = FindForeignUse(*fileSystem_, canonical_)) {
      RaiseFailure("Could not use '" + path_ + "'; file already in use. " + foreign->Describe() +
                   "; close the database there and try again.");
    }
    RefreshForWriting();
  } catch (...) {
    lock_.Release();
    throw;
  }
  state_ = State::Writing;
}

void PagerImplementation::Commit() {
  if (state_ != State::Writing) RaiseFailure("Commit was called on '" + path_ + "' outside of a write statement.");
  if (!changed_.empty()) {
    if (AppendToLog()) hasOwnStatements_ = true;
    KeepChangedPages();
    CheckpointWhenLogIsLong();
  }
  EndWrite();
}

void PagerImplementation::Rollback() {
  if (state_ != State::Writing) return;
  if (!changed_.empty()) ++generation_;
  pageCount_ = committedPageCount_;
  EndWrite();
}

void PagerImplementation::EndWrite() noexcept {
  changed_.clear();
  state_ = State::Idle;
  lock_.Release();
}

// ---------------------------------------------------------------------------------------------------------------------
// Taking in what others have done
// ---------------------------------------------------------------------------------------------------------------------

// False when the log must be set aside first: it is not one of ours, or another program has written the database.
bool PagerImplementation::Refresh() {
  try {
    return TakeInOthers();
  } catch (...) {
    // Part of the news may have been taken in. Without the stamp the next statement trusts no page that is cached.
    stamp_.reset();
    throw;
  }
}

bool PagerImplementation::TakeInOthers() {
  std::vector<PageNumber> taken;
  switch (log_.TakeIn(taken)) {
    case RedoLog::News::None:
      break;
    case RedoLog::News::Statements:
      for (const PageNumber number : taken) cache_.Erase(number);
      ++generation_;
      break;
    case RedoLog::News::Replaced:
      DropCache();
      hasOwnStatements_ = false;
      fileSize_ = file_->Size();
      break;
  }
  const std::int64_t stamp = file_->ModificationStamp();
  const bool isRewritten = stamp_ != stamp;
  if (isRewritten) {
    DropCache();
    fileSize_ = file_->Size();
  }
  stamp_.reset();
  if (log_.IsUnknown() && !readOnly_) return false;
  if (isRewritten && log_.HasStatements() && !log_.BelongsTo(*file_)) return false;
  stamp_ = stamp;
  committedPageCount_ = log_.HasStatements() ? log_.PageCount() : static_cast<PageNumber>(FilePageCount());
  pageCount_ = committedPageCount_;
  return true;
}

void PagerImplementation::DropCache() {
  cache_.Clear();
  ++generation_;
}

void PagerImplementation::RefreshForReading() {
  if (Refresh()) return;
  if (readOnly_) {
    Report("The log of '" + path_ + "' belongs to another state of the file and is left out of account.");
    log_.Ignore();
  } else {
    lock_.Release();
    lock_.AcquireExclusive();
    if (!Refresh()) SetLogAside(false);
    lock_.Release();
    lock_.AcquireShared();
  }
  if (!Refresh()) RaiseFailure("'" + path_ + "' is being changed by another program; try again when it has finished.");
}

void PagerImplementation::RefreshForWriting() {
  if (Refresh()) return;
  SetLogAside(false);
  if (!Refresh()) RaiseFailure("'" + path_ + "' is being changed by another program; try again when it has finished.");
}

void PagerImplementation::SetLogAside(bool isAlone) {
  const std::string reason = log_.IsUnknown()
                                 ? "' cannot be understood; its start is damaged, or it is something else."
                                 : "' does not belong to the file as it now is, because another program has "
                                   "written the file.";
  const std::string target = log_.SetAside(isAlone);
  DropCache();
  stamp_.reset();
  hasOwnStatements_ = false;
  Report("The log of '" + path_ + reason + " It was not applied but set aside as '" + target + "'.");
}

// ---------------------------------------------------------------------------------------------------------------------
// Pages
// ---------------------------------------------------------------------------------------------------------------------

void PagerImplementation::RequireStatement(PageNumber number) const {
  if (!InStatement())
    RaiseFailure("Page " + std::to_string(number) + " of '" + path_ + "' was asked for outside of a statement.");
  if (number >= pageCount_) {
    RaiseDamage("page " + std::to_string(number) + " of '" + path_ + "' is referred to, but the file has only " +
                std::to_string(pageCount_) + " pages.");
  }
}

PageHandle PagerImplementation::Read(PageNumber number) {
  RequireStatement(number);
  if (!changed_.empty()) {
    const auto found = changed_.find(number);
    if (found != changed_.end()) return Snapshot(found->second);
  }
  return ReadCommitted(number);
}

// The caller may go on changing the live page by the reference that it holds, so readers get a copy of their own; the
// last one serves again while nothing has changed.
PageHandle PagerImplementation::Snapshot(ChangedPage& changed) {
  if (changed.snapshot == nullptr || !SameBytes(*changed.snapshot, *changed.live)) {
    changed.snapshot = std::make_shared<const Page>(*changed.live);
  }
  return changed.snapshot;
}

PageHandle PagerImplementation::ReadCommitted(PageNumber number) {
  if (PageHandle cached = cache_.Find(number)) return cached;
  const auto page = std::make_shared<Page>(number);
  ReadStored(number, *page);
  ToggleEncoding(*page);
  cache_.Put(page);
  return page;
}

void PagerImplementation::ReadStored(PageNumber number, Page& target) {
  if (const LoggedPage* logged = log_.Find(number)) return log_.ReadImage(*logged, target.AllMutable());
  if (number >= FilePageCount()) RaiseDamage("page " + std::to_string(number) + " of '" + path_ + "' is missing.");
  file_->ReadAt(std::uint64_t{number} * header_.pageSize, target.AllMutable().first(header_.pageSize));
}

// Encoded files: from the stored form to the plain one or back.
void PagerImplementation::ToggleEncoding(Page& page) const {
  if (header_.databaseKey == 0 || page.Number() == format::kHeaderPage) return;
  ApplyRc4(header_.databaseKey ^ page.Number(), page.AllMutable().first(header_.pageSize));
}

Page& PagerImplementation::Write(PageNumber number) {
  RequireStatement(number);
  if (state_ != State::Writing)
    RaiseFailure("Page " + std::to_string(number) + " was to be changed in a read statement.");
  const auto found = changed_.find(number);
  if (found != changed_.end()) return *found->second.live;
  ChangedPage changed;
  changed.base = ReadCommitted(number);
  changed.live = std::make_shared<Page>(*changed.base);
  return *changed_.emplace(number, std::move(changed)).first->second.live;
}

Page& PagerImplementation::WriteNew(PageNumber number) {
  if (state_ != State::Writing)
    RaiseFailure("Page " + std::to_string(number) + " was to be written outside of a write statement.");
  if (number > pageCount_ || number >= format::kMaximumPageCount) {
    RaiseFailure("Page " + std::to_string(number) + " cannot be added to '" + path_ + "', which has " +
                 std::to_string(pageCount_) + " pages.");
  }
  if (number == pageCount_) ++pageCount_;
  ChangedPage& changed = changed_[number];
  if (changed.live == nullptr) {
    changed.live = std::make_shared<Page>(number);
  } else {
    changed.live->Fill(0, kPageSize, 0);
  }
  return *changed.live;
}

// ---------------------------------------------------------------------------------------------------------------------
// Committing
// ---------------------------------------------------------------------------------------------------------------------

// False when nothing had changed after all.
bool PagerImplementation::AppendToLog() {
  const std::vector<PageNumber> numbers = NumbersToLog();
  if (numbers.empty()) return false;
  std::vector<StatementPage> pages;
  pages.reserve(numbers.size());
  std::deque<Page> encoded;
  for (const PageNumber number : numbers) {
    const ChangedPage& changed = changed_.at(number);
    const Page* stored = changed.live.get();
    if (header_.databaseKey != 0) {
      encoded.push_back(*changed.live);
      ToggleEncoding(encoded.back());
      stored = &encoded.back();
    }
    pages.push_back({number, ContentInDatabase(number, changed.base), stored->All()});
  }
  log_.Append(log_.HasStatements() ? LogOwner{} : DescribeDatabase(), pages, pageCount_);
  return true;
}

std::vector<PageNumber> PagerImplementation::NumbersToLog() const {
  std::vector<PageNumber> numbers;
  numbers.reserve(changed_.size());
  for (const auto& [number, changed] : changed_) {
    if (changed.base == nullptr || !SameBytes(*changed.base, *changed.live)) numbers.push_back(number);
  }
  std::sort(numbers.begin(), numbers.end());
  return numbers;
}

// Checksum of what the database file holds for the page; `base` is its committed content, if it was read.
std::uint64_t PagerImplementation::ContentInDatabase(PageNumber number, const PageHandle& base) {
  if (const LoggedPage* logged = log_.Find(number)) return logged->before;
  if (number >= FilePageCount()) return RedoLog::kNotInDatabase;
  Page stored(number);
  if (base == nullptr) {
    ReadStored(number, stored);
    return RedoLog::PageChecksum(stored.All());
  }
  if (header_.databaseKey == 0) return RedoLog::PageChecksum(base->All());
  stored.CopyFrom(*base);
  ToggleEncoding(stored);
  return RedoLog::PageChecksum(stored.All());
}

void PagerImplementation::KeepChangedPages() {
  for (auto& [number, changed] : changed_) cache_.Put(std::move(changed.live));
  changed_.clear();
  committedPageCount_ = pageCount_;
}

// ---------------------------------------------------------------------------------------------------------------------
// Checkpoints
// ---------------------------------------------------------------------------------------------------------------------

LogOwner PagerImplementation::DescribeDatabase() {
  Page first(format::kHeaderPage);
  file_->ReadAt(0, first.AllMutable());
  return {file_->Size(), RedoLog::PageChecksum(first.All())};
}

void PagerImplementation::Checkpoint(bool isAlone) {
  // Until the end the state of the file is not known to this pager.
  stamp_.reset();
  if (log_.HasStatements()) log_.ApplyTo(*file_);
  if (isAlone) {
    log_.Remove();
  } else {
    log_.Reset(DescribeDatabase());
  }
  hasOwnStatements_ = false;
  fileSize_ = file_->Size();
  stamp_ = file_->ModificationStamp();
}

void PagerImplementation::CheckpointWhenLogIsLong() {
  if (log_.End() < options_.checkpointBytes) return;
  try {
    Checkpoint(false);
  } catch (const Error& error) {
    // The statement is safe in the log; a later checkpoint may fare better.
    Report("The log of '" + path_ + "' could not be brought into the file yet: " + error.Description());
  }
}

void PagerImplementation::Close() {
  if (state_ == State::Closed) return;
  Rollback();
  EndRead();
  state_ = State::Closed;
  const std::exception_ptr failure = [this]() -> std::exception_ptr {
    try {
      LeaveLog();
      return nullptr;
    } catch (...) {
      return std::current_exception();
    }
  }();
  cache_.Clear();
  log_.Release();
  file_.reset();
  if (failure) std::rethrow_exception(failure);
}

// The last checkpoint: when this pager has statements of its own in the log, or is the last one that could make it.
void PagerImplementation::LeaveLog() {
  if (readOnly_ || !log_.HasFile()) return;
  const bool isAlone = lock_.TryBecomeAlone();
  if (!isAlone && !hasOwnStatements_) return;
  if (const auto foreign = FindForeignUse(*fileSystem_, canonical_)) {
    return Report("The log of '" + path_ + "' was not brought into the file. " + foreign->Describe() + ".");
  }
  try {
    lock_.AcquireExclusive();
  } catch (const Error& error) {
    return Report("The log of '" + path_ + "' was left for the next opener: " + error.Description());
  }
  if (!Refresh()) {
    SetLogAside(isAlone);
  } else if (log_.HasFile()) {
    Checkpoint(isAlone);
  }
}

void PagerImplementation::Report(const std::string& text) const {
  if (options_.report) options_.report(text);
}

}  // namespace tavi::access
