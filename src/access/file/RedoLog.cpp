// What a redo log says: reading it. Appending and applying have files of their own.
//
// Each opener keeps in memory where the newest image and the last delta of each logged page lie, and reads the rest
// when a page is asked for. At the beginning of each statement Refresh brings this up to date: it reads the header,
// which says whether it is still the same log, and what was appended since. So the cost is that of what is new, however
// long the log has become. The writer appends behind what readers know; they take a statement only when it is there
// whole, and look again the next time if it is not.
#include "access/file/RedoLog.h"

#include <algorithm>
#include <utility>

#include "access/file/EngineError.h"
#include "access/file/LogStatement.h"
#include "platform/values/Text.h"

namespace tavi::access {

using namespace log_layout;

namespace {

// Who has read so many deltas of a page remembers what came out; as many pages at most, a megabyte.
constexpr std::size_t kManyDeltas = 32;
constexpr std::size_t kMostKnown = 256;

}  // namespace

RedoLog::RedoLog(FileSystem& fileSystem, std::string databasePath, bool readOnly)
    : fileSystem_(fileSystem),
      databasePath_(std::move(databasePath)),
      path_(databasePath_ + ".redo"),
      readOnly_(readOnly),
      flush_(fileSystem, path_),
      content_(fileSystem) {}

RedoLog::Change RedoLog::Refresh(std::vector<PageNumber>& changed) {
  const bool isFirstSight = file_ == nullptr;
  if (isFirstSight && !OpenFile()) return Change::None;
  fileSize_ = file_->Size();
  const LogHeader header = LogHeader::ReadFrom(*file_);
  // A file that was just made, or emptied, by another opener. Only foreign bytes make it unknown.
  if (fileSize_ < kHeaderSize) return BecomeEmpty(!header.IsUnfinished() && !header.IsValid());
  // Marks change during the life of a log; anything else in its header says that another one was begun. One that is
  // shorter than what was read of it was emptied meanwhile.
  const bool isSame = salt_ != 0 && fileSize_ >= end_ && header.IsOfSameLog(header_);
  header_ = header;
  if (!isSame) {
    Forget();
    RefuseLaterVersion();
    // What comes behind a start that was not written to its end was never durable, and who wrote it died in doing so.
    if (!header_.IsValid()) return BecomeEmpty(!header_.IsUnfinished());
    salt_ = header_.Salt();
    end_ = kHeaderSize;
    chain_ = salt_;
  }
  // The database has all of it, and may have been changed since by programs that know nothing of logs.
  if (header_.IsApplied()) return BecomeEmpty(false);
  const bool more = fileSize_ > end_ && salt_ != ignored_ && ReadNewStatements(fileSize_, changed);
  // What was cached while no log was known is not trusted either.
  if (!isSame || isFirstSight) return Change::Replaced;
  return more ? Change::Statements : Change::None;
}

bool RedoLog::OpenFile() {
  if (!fileSystem_.Exists(path_)) return false;
  // Its pages would go into, or come from, a file that has nothing to do with the database.
  if (const std::string target = fileSystem_.CanonicalPath(path_); !EqualIgnoringCase(target, path_)) {
    RaiseFailure("The log '" + path_ + "' of '" + databasePath_ + "' is a link to '" + target +
                 "' and is not used. Remove the link, or put the log itself in its place.");
  }
  auto file = fileSystem_.Open(path_, readOnly_ ? FileSystem::OpenMode::ReadOnly : FileSystem::OpenMode::ReadWrite);
  if (const std::uint64_t names = file->Identity().names; names > 1) {
    RaiseFailure(
        "The log '" + path_ + "' of '" + databasePath_ + "' has " + std::to_string(names) +
        " names (hard links) and is not used: what is written into it would change a file of another name. Put "
        "a copy of the log in its place, or remove it if it is not this file's.");
  }
  file_ = std::move(file);
  if (!readOnly_) BeginFlushing();
  return true;
}

// Only the version that wrote it can bring it in; set aside it would be lost.
void RedoLog::RefuseLaterVersion() const {
  const std::optional<std::uint32_t> version = header_.LaterVersion();
  if (!version) return;
  RaiseFailure("The log '" + path_ + "' holds changes of '" + databasePath_ + "' in a layout (" +
               std::to_string(*version) +
               ") that this version does not know. Open the database with the version that wrote it.");
}

// Without an opener to flush it by, the log is not used at all.
void RedoLog::BeginFlushing() {
  try {
    flush_.Begin(*file_, &LogHeader::MarkDoubtful);
  } catch (...) {
    file_.reset();
    throw;
  }
}

// The file stays open, and with it what is known of flushes.
void RedoLog::Forget() {
  salt_ = 0;
  isUnknown_ = false;
  end_ = 0;
  chain_ = 0;
  pageCount_ = 0;
  pages_.clear();
  known_.clear();
}

// News only where there was something before.
RedoLog::Change RedoLog::BecomeEmpty(bool isUnknown) {
  const bool wasEmpty = salt_ == 0;
  Forget();
  isUnknown_ = isUnknown;
  return wasEmpty ? Change::None : Change::Replaced;
}

bool RedoLog::ReadNewStatements(std::uint64_t size, std::vector<PageNumber>& changed) {
  bool any = false;
  for (;;) {
    std::optional<LogStatement> statement;
    try {
      statement = ReadLogStatement(*file_, end_, size, chain_);
    } catch (const Error&) {
      // A torn end goes while others read: the writer cuts it off before it appends.
      if (file_->Size() >= size) throw;
      return any;
    }
    // Either a torn end, which does not count, or a statement that another opener is writing at this moment.
    if (!statement || !IsNext(*statement)) return any;
    for (const LogEntry& entry : statement->entries) changed.push_back(entry.number);
    Keep(*statement);
    any = true;
  }
}

// Checksums have shown that a statement is as it was written. What is asked here is whether it makes sense behind those
// before it: nothing that is read may lead out of the file that the log is for.
bool RedoLog::IsNext(const LogStatement& statement) const {
  // New pages are always logged, so that the database cannot grow by more than there are.
  const std::uint64_t pagesBefore = pages_.empty() ? header_.Owner().size / kPageSize : pageCount_;
  return statement.pageCount <= pagesBefore + statement.entries.size() &&
         std::all_of(statement.entries.begin(), statement.entries.end(),
                     [&](const LogEntry& entry) { return entry.number < statement.pageCount && Follows(entry); });
}

// A page that was not logged before has to bring what the database file holds for it; a delta has to begin where the
// page's last one ended, which may be its image or the file.
bool RedoLog::Follows(const LogEntry& entry) const {
  const LoggedPage* page = Find(entry.number);
  if (page == nullptr && !entry.before) return false;
  return entry.image != 0 || entry.previous == (page == nullptr ? 0 : page->lastDelta);
}

void RedoLog::Keep(const LogStatement& statement) {
  for (const LogEntry& entry : statement.entries) Remember(entry);
  pageCount_ = statement.pageCount;
  chain_ = statement.checksum;
  end_ = statement.end;
}

void RedoLog::Remember(const LogEntry& entry) {
  const auto [place, isNew] = pages_.try_emplace(entry.number);
  LoggedPage& page = place->second;
  if (isNew) page.before = entry.before.value_or(PageSums{});
  if (entry.image == 0) {
    page.lastDelta = entry.delta;
    page.sum = entry.sum;
    ++page.deltaCount;
    return;
  }
  // A checkpoint that did not come to its end may have written sectors of that image, so it is needed to recognise the
  // file.
  if (page.imageOffset != 0 && header_.Applying()) page.olderImages.push_back(page.imageOffset);
  page.imageOffset = entry.image;
  page.lastDelta = 0;
  page.deltaCount = 0;
  // With a new image the deltas before it are of no account any more.
  known_.erase(entry.number);
}

void RedoLog::ReadPage(PageNumber number, const LoggedPage& page, File& database,
                       std::span<std::uint8_t, kPageSize> target) {
  const auto known = known_.find(number);
  // The base is the nearest state that is known whole; it is never torn (LogLayout.h says why).
  if (known != known_.end()) {
    std::copy(known->second.stored.begin(), known->second.stored.end(), target.begin());
  } else if (page.imageOffset != 0) {
    file_->ReadAt(page.imageOffset, target);
  } else if (page.before.isInDatabase) {
    database.ReadAt(std::uint64_t{number} * kPageSize, target);
  } else {
    std::fill(target.begin(), target.end(), std::uint8_t{0});
  }
  if (page.lastDelta == 0) return;
  const std::vector<LoggedDelta> deltas = DeltasSince(known == known_.end() ? 0 : known->second.lastDelta, page);
  std::for_each(deltas.rbegin(), deltas.rend(), [&](const LoggedDelta& delta) { ApplyDelta(delta.bytes, target); });
  if (SumOfPage(target) != page.sum) {
    RaiseFailure("Page " + std::to_string(number) + " of '" + databasePath_ +
                 "' cannot be put together from the log '" + path_ +
                 "': another program has changed one of the two files, or the system has forgotten what it could not "
                 "write. Close the file everywhere and open it again.");
  }
  // A page that is changed by every statement of an evening has thousands of deltas; without this each new one would
  // cost reading all of them.
  if (deltas.size() < kManyDeltas) return;
  if (known_.size() >= kMostKnown) known_.clear();
  known_[number] = {page.lastDelta, {target.begin(), target.end()}};
}

// The last one first, back to one whose outcome is known (`known` is its place, 0 for the image or the file).
std::vector<LoggedDelta> RedoLog::DeltasSince(std::uint64_t known, const LoggedPage& page) {
  std::vector<LoggedDelta> deltas;
  for (std::uint64_t offset = page.lastDelta; offset > known; offset = deltas.back().previous) {
    deltas.push_back(ReadLoggedDelta(*file_, offset, end_));
    // Each lies behind the one before it, so that the way back ends.
    if (deltas.back().previous >= offset) break;
  }
  return deltas;
}

void RedoLog::Release() {
  content_.End();
  flush_.End();
  file_.reset();
}

// The end stays where it is: what is the same log is not read again, another one is.
void RedoLog::Ignore() {
  ignored_ = salt_;
  pages_.clear();
  known_.clear();
  pageCount_ = 0;
  chain_ = 0;
}

}  // namespace tavi::access
