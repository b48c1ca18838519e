// What a redo log says: reading it. Appending and applying have files of their own.
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
      flush_(fileSystem, path_) {}

RedoLog::Change RedoLog::Refresh(std::vector<PageNumber>& changed) {
  const bool isFirstSight = file_ == nullptr;
  if (isFirstSight && !OpenFile()) return Change::None;
  fileSize_ = file_->Size();
  const LogHeader header = LogHeader::ReadFrom(*file_);
  if (fileSize_ < kHeaderSize) return BecomeEmpty(!header.IsUnfinished() && !header.IsValid());
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
  if (header_.IsApplied()) return BecomeEmpty(false);
  const bool more = fileSize_ > end_ && salt_ != ignored_ && ReadNewStatements(fileSize_, changed);
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

void RedoLog::BeginFlushing() {
  try {
    flush_.Begin(*file_, &LogHeader::MarkDoubtful);
  } catch (...) {
    file_.reset();
    throw;
  }
}

void RedoLog::Forget() {
  salt_ = 0;
  isUnknown_ = false;
  end_ = 0;
  chain_ = 0;
  pageCount_ = 0;
  pages_.clear();
  known_.clear();
}

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
    if (!statement || !IsNext(*statement)) return any;
    for (const LogEntry& entry : statement->entries) changed.push_back(entry.number);
    Keep(*statement);
    any = true;
  }
}

bool RedoLog::IsNext(const LogStatement& statement) const {
  // New pages are always logged, so that the database cannot grow by more than there are.
  const std::uint64_t pagesBefore = pages_.empty() ? header_.Owner().size / kPageSize : pageCount_;
  return statement.pageCount <= pagesBefore + statement.entries.size() &&
         std::all_of(statement.entries.begin(), statement.entries.end(),
                     [&](const LogEntry& entry) { return entry.number < statement.pageCount && Follows(entry); });
}

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
  if (page.imageOffset != 0 && header_.Applying()) page.olderImages.push_back(page.imageOffset);
  page.imageOffset = entry.image;
  page.lastDelta = 0;
  page.deltaCount = 0;
  known_.erase(entry.number);
}

void RedoLog::ReadPage(PageNumber number, const LoggedPage& page, File& database,
                       std::span<std::uint8_t, kPageSize> target) {
  const auto known = known_.find(number);
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
  if (deltas.size() < kManyDeltas) return;
  if (known_.size() >= kMostKnown) known_.clear();
  known_[number] = {page.lastDelta, {target.begin(), target.end()}};
}

// The last one first, back to one whose outcome is known.
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
  flush_.End();
  file_.reset();
}

void RedoLog::Ignore() {
  ignored_ = salt_;
  pages_.clear();
  known_.clear();
  pageCount_ = 0;
  chain_ = 0;
}

}  // namespace tavi::access
