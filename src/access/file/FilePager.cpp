#include "access/file/FilePager.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "access/file/DatabaseHeader.h"
#include "access/file/EngineError.h"
#include "access/file/Format.h"

// Opening, statements and pages; what concerns the log and checkpoints is in FilePagerLog.cpp. The order of steps is
// what keeps the rules of Pager.h. A writer takes the writer's byte first, then looks whether another database program
// is there, then reads what others have committed, and only then changes anything, in memory. Storing appends to the
// log, then makes the changed pages the cached ones, then gives the byte back. An error on the way leaves either the
// state before or the state after, never something between.
//
// A page comes from the first of four places that has it: the changes of the open statement or transaction, the cache,
// the log, the file. Only the first is private; the cache is right as long as it is refreshed at the beginning of each
// statement.

namespace tavi::access {

// ---------------------------------------------------------------------------------------------------------------------
// Opening
// ---------------------------------------------------------------------------------------------------------------------

FilePager::FilePager(std::shared_ptr<FileSystem> fileSystem, std::string path, PagerOptions options,
                     const LockDeadline& deadline)
    : fileSystem_(std::move(fileSystem)),
      path_(std::move(path)),
      canonical_(fileSystem_->CanonicalPath(path_)),
      options_(std::move(options)),
      readOnly_(options_.readOnly || !fileSystem_->IsWritable(canonical_)),
      file_(
          fileSystem_->Open(canonical_, readOnly_ ? FileSystem::OpenMode::ReadOnly : FileSystem::OpenMode::ReadWrite)),
      lock_(*file_, *fileSystem_, path_, canonical_, options_.writingThreads),
      lockFile_(*fileSystem_, canonical_),
      log_(*fileSystem_, canonical_, readOnly_),
      cache_(options_.cacheBytes),
      checkpointAt_(options_.checkpointBytes) {
  Start(deadline);
}

FilePager::~FilePager() {
  try {
    Close();
  } catch (const std::exception&) {
    // The log holds whatever could not be written; the next opener brings it in.
  }
}

void FilePager::Start(const LockDeadline& deadline) {
  // From here on nobody can take the file for himself alone.
  lock_.AcquireOpen(deadline);
  // Whoever had the file alone may have put another one into its place while we waited.
  if (!file_->IsStillAt(canonical_)) throw FileWasReplaced();
  // The header may stand in the log, and a checkpoint may be writing it: so it is read in a statement, like any page.
  EnterRead(deadline);
  try {
    ReadHeader();
  } catch (...) {
    EndRead();
    throw;
  }
  EndRead();
  // Before the log is brought in, so that no other database program opens the file in between.
  if (!readOnly_) lockFile_.Try();
  RecoverWhenAlone(deadline);
  if (options_.alone) StayAlone(deadline);
}

void FilePager::ReadHeader() {
  Page first(format::kHeaderPage);
  // With statements in the log the file has as many pages as the last of them says; it may be longer than what has been
  // written.
  const std::uint64_t size = log_.HasStatements() ? std::uint64_t{log_.PageCount()} * kPageSize : fileSize_;
  const auto stored = first.AllMutable().first(static_cast<std::size_t>(std::min<std::uint64_t>(size, kPageSize)));
  if (const LoggedPage* logged = log_.Find(format::kHeaderPage)) {
    log_.ReadPage(format::kHeaderPage, *logged, *file_, first.AllMutable());
  } else {
    file_->ReadAt(0, stored);
  }
  header_ = DecodeHeader(stored, size, path_);
  // Files of Access 97 are never written, whatever their permissions.
  if (header_.isJet3) readOnly_ = true;
  const std::uint64_t largest = std::uint64_t{format::kMaximumPageCount} * header_.pageSize;
  // A file that ends in the middle of a page was cut off, by a copy that was interrupted or by a full disk.
  if (size % header_.pageSize != 0 || size > largest) {
    RaiseFailure("Unrecognized database format '" + path_ + "'. Its length of " + std::to_string(size) + " bytes is " +
                 (size > largest ? "more than an Access database can have."
                                 : "not a whole number of pages; the file is incomplete. Restore it from a backup."));
  }
  pageCount_ = static_cast<PageNumber>(size / header_.pageSize);
}

// Brings a log that a crash left behind into the file. Where others have the file open it is their log, and they bring
// it in. They are not waited for: what is in the log is seen all the same.
void FilePager::RecoverWhenAlone(const LockDeadline& deadline) {
  if (readOnly_ || !log_.HasFile() || lockFile_.FindUse()) return;
  if (!lock_.TryBecomeAlone()) return;
  bool isOfFile = true;
  try {
    const SoleUse use(lock_, deadline);
    // Read again, as somebody may have brought it in while we were not alone.
    isOfFile = RefreshAfterCrash();
    if (isOfFile && log_.HasFile()) Checkpoint(true);
  } catch (const Error& error) {
    // The file can be used all the same: its pages are looked for in the log first.
    // The next statement reads log and file anew, whatever the times of the file say.
    times_.reset();
    Report("The log of '" + path_ + "' could not be brought into the file yet: " + error.Description());
  }
  if (!isOfFile) SetLogAside(true);
  lock_.LeaveAlone();
}

// For the user who must not be disturbed (compacting): the open byte stays exclusive until Close.
void FilePager::StayAlone(const LockDeadline& deadline) {
  if (readOnly_) RaiseReadOnly();
  RefuseForeignUse();
  lock_.BecomeAlone(deadline);
  const SoleUse use(lock_, deadline);
  if (!RefreshAfterCrash()) SetLogAside(true);
  if (log_.HasFile()) Checkpoint(true);
}

// Such a program keeps pages in memory of its own and knows nothing of the log: either could overwrite what the other
// has stored.
void FilePager::RefuseForeignUse() const {
  const auto foreign = lockFile_.FindUse();
  if (!foreign) return;
  RaiseFailure("Could not use '" + path_ + "'; file already in use. " + foreign->Describe() +
               "; close the database there and try again.");
}

// The log lies beside one of the names; who comes by another one would not find it.
void FilePager::RefuseSeveralNames() const {
  const std::uint64_t names = file_->Identity().names;
  if (names <= 1) return;
  RaiseFailure("Could not use '" + path_ + "' for changes: the file has " + std::to_string(names) +
               " names (hard links), and a change made under one of them might not be seen under the others. Make a "
               "copy of the file, and use that.");
}

void FilePager::RaiseReadOnly() const {
  throw Error(ErrorNumber::ProviderPermission, kErrorSource,
              "Cannot update.  Database or object is read-only. '" + path_ +
                  (header_.isJet3 ? "' is a file of Access 97, which is only read; convert it to Access 2002-2003."
                                  : "' is open for reading only; check the permissions of the file and its folder."));
}

// ---------------------------------------------------------------------------------------------------------------------
// Statements and transactions
// ---------------------------------------------------------------------------------------------------------------------

void FilePager::BeginRead() {
  EnterRead(NewDeadline());
}

// The writer sees its own changes, and nobody else can commit any, so there is nothing to lock or to read.
void FilePager::EnterRead(const LockDeadline& deadline) {
  if (state_ != State::Idle)
    RaiseFailure("A read statement was begun on '" + path_ + "' inside another or after Close.");
  if (!lock_.HoldsWriter()) {
    lock_.AcquireShared(deadline);
    try {
      // A failed flush in the background is told to whoever comes next, in reading too: what he sees may not survive.
      RaiseFailedFlush();
      RefreshForReading(deadline);
    } catch (...) {
      lock_.Release();
      throw;
    }
  }
  state_ = State::Reading;
}

void FilePager::EndRead() {
  if (state_ != State::Reading) return;
  state_ = State::Idle;
  if (!lock_.HoldsWriter()) lock_.Release();
}

void FilePager::BeginWrite() {
  if (state_ != State::Idle)
    RaiseFailure("A write statement was begun on '" + path_ + "' inside another or after Close.");
  if (readOnly_) RaiseReadOnly();
  // Within a transaction this pager is the writer already.
  if (transactions_ == 0) BecomeWriter();
  changes_.BeginLevel(pageCount_);
  state_ = State::Writing;
}

void FilePager::Commit() {
  if (state_ != State::Writing) RaiseFailure("Commit was called on '" + path_ + "' outside of a write statement.");
  // The end of a statement in a transaction writes nothing: the log gets the transaction as one.
  if (transactions_ == 0) return Store();
  changes_.KeepLevel();
  state_ = State::Idle;
}

void FilePager::Rollback() {
  if (state_ != State::Writing) return;
  Undo();
  state_ = State::Idle;
}

std::int32_t FilePager::BeginTransaction() {
  if (state_ != State::Idle)
    RaiseFailure("A transaction was begun on '" + path_ + "' inside a statement or after Close.");
  if (transactions_ == 0 && !readOnly_) BecomeWriter();
  changes_.BeginLevel(pageCount_);
  return ++transactions_;
}

void FilePager::CommitTransaction() {
  RequireTransaction("commit");
  if (transactions_ > 1) {
    changes_.KeepLevel();
    --transactions_;
    return;
  }
  // Much may have happened since it was begun: under systems that keep nobody from opening the file another program may
  // be using it, or have written it.
  if (!changes_.IsEmpty()) RefuseForeignChange();
  Store();
}

void FilePager::RollbackTransaction() {
  RequireTransaction("roll back");
  Undo();
  --transactions_;
}

void FilePager::RequireTransaction(const std::string& what) const {
  if (state_ != State::Idle)
    RaiseFailure("A transaction on '" + path_ + "' was to end inside a statement or after Close.");
  if (transactions_ == 0) {
    RaiseFailure("There is no transaction to " + what + ": none was begun on '" + path_ +
                 "', or it has ended already.");
  }
}

void FilePager::RefuseForeignChange() const {
  RefuseForeignUse();
  // Without times a checkpoint of our own has failed in the middle, and the log says what counts. A file that has only
  // been looked at by a backup program has another time of change.
  if (!times_ || file_->Times().written == times_->written) return;
  RaiseFailure("'" + path_ +
               "' has been changed by another program since the transaction was begun. Roll the transaction back and "
               "begin it again.");
}

// Everything that can refuse a change is asked here, before the first page is changed.
void FilePager::BecomeWriter() {
  const LockDeadline deadline = NewDeadline();
  lock_.AcquireWriter(deadline);
  try {
    lockFile_.Try();
    RefuseForeignUse();
    RefuseSeveralNames();
    RefreshForWriting(deadline);
    RequireSoundLog(deadline);
  } catch (...) {
    lock_.ReleaseWriter();
    throw;
  }
}

// Ends what is open, a write statement or the only transaction, once its changes are in the log. Before the log has
// them an error leaves everything open, to be tried again or rolled back; behind it they are stored, and the error of a
// checkpoint that failed is told without taking them back.
void FilePager::Store() {
  const bool any = !changes_.IsEmpty();
  if (any) RequireSoundLog(NewDeadline());
  if (any && AppendToLog()) hasOwnStatements_ = true;
  KeepChangedPages();
  state_ = State::Idle;
  transactions_ = 0;
  try {
    if (any) CheckpointWhenLogIsLong();
  } catch (...) {
    lock_.Release();
    lock_.ReleaseWriter();
    throw;
  }
  lock_.ReleaseWriter();
}

// The pages go back to what they were; caches of what pages say cannot know that, hence the new generation.
void FilePager::Undo() {
  const PageChanges::Undone undone = changes_.UndoLevel();
  pageCount_ = undone.pageCount;
  if (undone.any) ++generation_;
  if (changes_.LevelCount() == 0) lock_.ReleaseWriter();
}

// ---------------------------------------------------------------------------------------------------------------------
// Pages
// ---------------------------------------------------------------------------------------------------------------------

void FilePager::RequireStatement(PageNumber number) const {
  if (!InStatement())
    RaiseFailure("Page " + std::to_string(number) + " of '" + path_ + "' was asked for outside of a statement.");
  if (number >= pageCount_) {
    RaiseDamage("page " + std::to_string(number) + " of '" + path_ + "' is referred to, but the file has only " +
                std::to_string(pageCount_) + " pages.");
  }
}

PageHandle FilePager::Read(PageNumber number) {
  RequireStatement(number);
  // Most statements read only, and are spared the look-up.
  if (!changes_.IsEmpty()) {
    if (PageHandle changed = changes_.Read(number)) return changed;
  }
  return ReadCommitted(number);
}

PageHandle FilePager::ReadCommitted(PageNumber number) {
  if (PageHandle cached = cache_.Find(number)) return cached;
  const auto page = std::make_shared<Page>(number);
  ReadStored(number, *page);
  ToggleEncoding(*page);
  // In the plain form: an encoded page is decoded once for all who read it.
  cache_.Put(page);
  return page;
}

// A page that is in the log is not read from the file alone: the file has it as it was at the last checkpoint, if at
// all.
void FilePager::ReadStored(PageNumber number, Page& target) {
  if (const LoggedPage* logged = log_.Find(number)) return log_.ReadPage(number, *logged, *file_, target.AllMutable());
  if (number >= FilePageCount()) RaiseDamage("page " + std::to_string(number) + " of '" + path_ + "' is missing.");
  file_->ReadAt(std::uint64_t{number} * header_.pageSize, target.AllMutable().first(header_.pageSize));
}

// Encoded files: from the stored form to the plain one or back.
void FilePager::ToggleEncoding(Page& page) const {
  if (header_.databaseKey == 0 || page.Number() == format::kHeaderPage) return;
  ApplyRc4(header_.databaseKey ^ page.Number(), page.AllMutable().first(header_.pageSize));
}

Page& FilePager::Write(PageNumber number) {
  RequireStatement(number);
  if (state_ != State::Writing)
    RaiseFailure("Page " + std::to_string(number) + " was to be changed in a read statement.");
  if (Page* changed = changes_.Write(number)) return *changed;
  // The committed content is kept beside the copy: it tells at the end what has changed, and whether anything has.
  return changes_.Add(number, ReadCommitted(number));
}

Page& FilePager::WriteNew(PageNumber number) {
  if (state_ != State::Writing)
    RaiseFailure("Page " + std::to_string(number) + " was to be written outside of a write statement.");
  // The file grows by one page at a time, so that there are never pages in it that nobody has written.
  if (number > pageCount_ || number >= format::kMaximumPageCount) {
    RaiseFailure("Page " + std::to_string(number) + " cannot be added to '" + path_ + "', which has " +
                 std::to_string(pageCount_) + " pages.");
  }
  if (number == pageCount_) ++pageCount_;
  Page* changed = changes_.Write(number);
  if (changed == nullptr) return changes_.Add(number, nullptr);
  changed->Fill(0, kPageSize, 0);
  return *changed;
}

}  // namespace tavi::access
