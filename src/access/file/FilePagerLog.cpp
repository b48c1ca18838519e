// What the pager does with the redo log: it reads what others have committed, commits, makes checkpoints, and
// leaves.
#include <algorithm>
#include <chrono>
#include <deque>
#include <exception>
#include <utility>

#include "access/file/EngineError.h"
#include "access/file/FilePager.h"
#include "access/file/Format.h"

namespace tavi::access {

namespace {

// New readers wait as long as a checkpoint waits for old ones.
constexpr std::chrono::milliseconds kPatienceWithReaders{50};
// A checkpoint that was put off is tried again when the log has grown by this part of what is long.
constexpr std::uint64_t kPartsOfPatience = 8;

}  // namespace

// ---------------------------------------------------------------------------------------------------------------------
// What others have committed
// ---------------------------------------------------------------------------------------------------------------------

// False when the log must be set aside first: it is not one of ours, or another program has written the database.
bool FilePager::Refresh() {
  try {
    return ReadLogAndFile();
  } catch (...) {
    // Part of the changes may have been read. Without times the next statement trusts no page that is cached.
    times_.reset();
    throw;
  }
}

// For who is alone with a log that a dead program left: whatever may have happened to the file since, its times too.
bool FilePager::RefreshAfterCrash() {
  return Refresh() && (!log_.HasStatements() || log_.BelongsTo(*file_, RedoLog::Proof::Content));
}

bool FilePager::ReadLogAndFile() {
  std::vector<PageNumber> taken;
  switch (log_.Refresh(taken)) {
    case RedoLog::Change::None:
      break;
    // Only these pages have changed; all others stay cached.
    case RedoLog::Change::Statements:
      for (const PageNumber number : taken) cache_.Erase(number);
      ++generation_;
      // Whoever appended them may be gone.
      log_.FlushSoon();
      break;
    // Somebody has made a checkpoint, or another log was begun: what was cached came from the old one.
    case RedoLog::Change::Replaced:
      log_.FlushSoon();
      DropCache();
      hasOwnStatements_ = false;
      fileSize_ = file_->Size();
      break;
  }
  const FileTimes times = file_->Times();
  const bool isRewritten = times_ != times;
  if (isRewritten) {
    DropCache();
    fileSize_ = file_->Size();
  }
  times_.reset();
  if (log_.IsUnknown() && !readOnly_) return false;
  if (isRewritten && log_.HasStatements() && !log_.BelongsTo(*file_, RedoLog::Proof::Times)) return false;
  times_ = times;
  pageCount_ = log_.HasStatements() ? log_.PageCount() : static_cast<PageNumber>(FilePageCount());
  return true;
}

// Whatever is remembered of pages elsewhere, definitions and plans, goes by the generation.
void FilePager::DropCache() {
  cache_.Clear();
  ++generation_;
}

void FilePager::RefreshForReading(const LockDeadline& deadline) {
  if (Refresh()) return;
  if (readOnly_) {
    Report("The log of '" + path_ + "' belongs to another state of the file and is left out of account.");
    log_.Ignore();
  } else {
    // The start of the log may just have been half written; alone, what is found holds.
    lock_.Release();
    {
      const SoleUse use(lock_, deadline);
      if (!Refresh()) SetLogAside(false);
    }
    lock_.AcquireShared(deadline);
  }
  if (!Refresh()) RaiseFailure("'" + path_ + "' is being changed by another program; try again when it has finished.");
}

// The writer waits here for readers, as the log that is set aside is the one that they read.
void FilePager::RefreshForWriting(const LockDeadline& deadline) {
  if (Refresh()) return;
  const SoleUse use(lock_, deadline);
  SetLogAside(false);
}

// The statement that has met it fails, so that people learn of it; the next one goes on without that log.
void FilePager::SetLogAside(bool isAlone) {
  const std::string reason = log_.IsUnknown() ? "' cannot be understood: its start is damaged, another version has "
                                                "written it, or it is something else."
                                              : "' does not belong to the file as it now is: another program has "
                                                "written the file, or another file was put in its place.";
  const std::string target = log_.SetAside(isAlone);
  DropCache();
  times_.reset();
  hasOwnStatements_ = false;
  RaiseFailure("The log of '" + path_ + reason + " It was not applied but set aside as '" + target +
               "'; what was stored last may be missing in the file. It can be used as it is: try again.");
}

// ---------------------------------------------------------------------------------------------------------------------
// Committing
// ---------------------------------------------------------------------------------------------------------------------

// False when nothing had changed after all.
bool FilePager::AppendToLog() {
  const std::vector<PageNumber> numbers = changes_.Differing();
  if (numbers.empty()) return false;
  std::vector<StatementPage> pages;
  pages.reserve(numbers.size());
  // A list whose elements do not move, as spans lead into it.
  std::deque<Page> encoded;
  const auto stored = [&](const Page& page) {
    if (header_.databaseKey == 0) return page.All();
    encoded.push_back(page);
    ToggleEncoding(encoded.back());
    return std::as_const(encoded.back()).All();
  };
  for (const PageNumber number : numbers) {
    const PageChanges::Changed& changed = changes_.At(number);
    StatementPage page{number, ContentInDatabase(number, changed.base), stored(*changed.live)};
    if (changed.base != nullptr) page.base = stored(*changed.base);
    pages.push_back(page);
  }
  log_.Append(log_.HasStatements() ? LogOwner{} : OwnerOfNewLog(), pages, pageCount_, options_.flush);
  log_.FindContentSoon(*file_);
  return true;
}

// What the database file holds for the page; `base` is its committed content, if it was read. A page that is not in the
// log is in the file as it is committed, so nothing has to be read for it a second time.
PageSums FilePager::ContentInDatabase(PageNumber number, const PageHandle& base) {
  if (const LoggedPage* logged = log_.Find(number)) return logged->before;
  if (number >= FilePageCount()) return {};
  if (base != nullptr && header_.databaseKey == 0) return PageSums::Of(base->All());
  Page stored(number);
  if (base == nullptr) {
    ReadStored(number, stored);
  } else {
    stored.CopyFrom(*base);
    ToggleEncoding(stored);
  }
  return PageSums::Of(stored.All());
}

// The writer's own copies become the cached pages. Nobody writes to them any more: the references were good until now.
void FilePager::KeepChangedPages() {
  for (auto& [number, changed] : changes_.TakeAll()) cache_.Put(std::move(changed.live));
}

// ---------------------------------------------------------------------------------------------------------------------
// Checkpoints
// ---------------------------------------------------------------------------------------------------------------------

void FilePager::Checkpoint(bool isAlone) {
  // Until the end the state of the file is not known to this pager.
  times_.reset();
  if (log_.HasStatements()) log_.ApplyTo(*file_);
  if (isAlone) {
    log_.Remove();
  } else {
    log_.Reset(OwnerOfNewLog());
  }
  hasOwnStatements_ = false;
  fileSize_ = file_->Size();
  times_ = file_->Times();
}

// Readers are not disturbed by it: while one is reading it is put off, until the log has grown by another part.
void FilePager::CheckpointWhenLogIsLong() {
  // A long log costs memory for the places of its pages, and time at the next opening after a crash.
  if (log_.End() < checkpointAt_) return;
  try {
    if (!lock_.TryAcquireExclusive({*fileSystem_, std::min(options_.lockTimeout, kPatienceWithReaders)})) {
      // Trying again after each statement would cost every one of them the wait for readers.
      checkpointAt_ = log_.End() + options_.checkpointBytes / kPartsOfPatience;
      return;
    }
    Checkpoint(false);
    checkpointAt_ = options_.checkpointBytes;
  } catch (const Error& error) {
    // The statement is safe in the log; a later checkpoint may fare better.
    Report("The log of '" + path_ + "' could not be brought into the file yet: " + error.Description());
  }
  lock_.Release();
}

void FilePager::Close() {
  if (state_ == State::Closed) return;
  Rollback();
  EndRead();
  // What was not committed is given up, as by a crash.
  while (transactions_ > 0) RollbackTransaction();
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
  // All that follows happens whatever has failed: the file is let go of, and the error told at the end.
  log_.Release();
  if (lockFile_.IsHeld()) lockFile_.Release(lock_.TryBecomeAlone());
  file_.reset();
  if (failure) std::rethrow_exception(failure);
}

// The last checkpoint: when this pager has statements of its own in the log, or is the last one that could make it.
void FilePager::LeaveLog() {
  if (readOnly_ || !log_.HasFile()) return;
  // Alone means that nobody else has the file open at all; then the log can go with its name.
  const bool isAlone = lock_.TryBecomeAlone();
  if (isAlone || hasOwnStatements_) {
    BringLogIn(isAlone);
  } else if (!log_.IsDoubtful()) {
    // What others have stored, and what this pager was about to flush for one who may be gone.
    log_.Flush();
  }
  log_.SettleFlush();
  RaiseFailedFlush();
}

// Others who are in the way do not make closing fail: the log is flushed instead, and the next opener brings it in. A
// log that does not belong to the file does.
void FilePager::BringLogIn(bool isAlone) {
  if (const auto foreign = lockFile_.FindUse()) {
    return LeaveLogToOthers("was not brought into the file. " + foreign->Describe() + ".");
  }
  std::optional<SoleUse> use;
  try {
    use.emplace(lock_, NewDeadline());
  } catch (const Error& error) {
    return LeaveLogToOthers("was left for the next opener: " + error.Description());
  }
  if (!Refresh()) {
    SetLogAside(isAlone);
  } else if (log_.HasFile()) {
    Checkpoint(isAlone);
  }
}

// Flushed all the same: a close that returns has kept its promise, whoever brings the log in.
void FilePager::LeaveLogToOthers(const std::string& why) {
  Report("The log of '" + path_ + "' " + why);
  log_.Flush();
}

void FilePager::RaiseFailedFlush() {
  const std::optional<std::string> reason = log_.TakeFailedFlush();
  if (!reason) return;
  RaiseFailure("Could not flush what was stored last in '" + path_ + "' to the disk: " + *reason +
               " It is in the file's log, but would be lost if the power failed now. The next change, or the closing "
               "of the file, tries to bring it into the file itself; check the disk.");
}

// What is appended to a doubtful log would not count.
void FilePager::RequireSoundLog(const LockDeadline& deadline) {
  RaiseFailedFlush();
  if (!log_.IsDoubtful()) return;
  const SoleUse use(lock_, deadline);
  Checkpoint(false);
}

void FilePager::Flush() {
  if (readOnly_) return;
  {
    // So that what others have just committed is in what is flushed.
    const ReadStatement upToDate(*this);
    if (!log_.IsDoubtful()) return log_.Flush();
  }
  // Only a checkpoint helps, and it is the writer's.
  if (lock_.HoldsWriter()) return RequireSoundLog(NewDeadline());
  BecomeWriter();
  lock_.ReleaseWriter();
}

void FilePager::Report(const std::string& text) const {
  if (options_.report) options_.report(text);
}

}  // namespace tavi::access
