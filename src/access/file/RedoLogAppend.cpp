// Statements are written into a redo log and flushed.
//
// A statement counts from the moment when all of its bytes are right, and not before, so there is no order to keep
// while it is written. What has to be kept is what lies before it: an append begins by cutting off a torn end, and when
// it fails the file gets its old length back. Then the caller's statement is refused. Only when the bytes are written
// does this opener take the statement for its own (Keep), as others do who read it.
#include <algorithm>
#include <array>
#include <utility>

#include "access/file/EngineError.h"
#include "access/file/LogStatement.h"
#include "access/file/RedoLog.h"

namespace tavi::access {

using namespace log_layout;

// The log holds what the database holds, so the same people may read it.
void RedoLog::CreateFile() {
  file_ = fileSystem_.Open(path_, FileSystem::OpenMode::CreateNew);
  fileSystem_.CopyPermissions(databasePath_, path_);
  fileSize_ = 0;
  BeginFlushing();
}

void RedoLog::Append(const LogOwner& owner, std::span<const StatementPage> pages, PageNumber pageCount,
                     FlushTime flush) {
  if (file_ == nullptr) CreateFile();
  // A log without statements may have been begun before another program wrote the database.
  const bool begins = salt_ == 0 || (pages_.empty() && header_.Owner() != owner);
  AppendWhole(begins ? 0 : end_, [&] {
    if (begins) BeginLog(owner);
    // A large statement is logged whole, and so is each one in a log that an earlier version has begun.
    const bool mayBeDeltas = header_.TakesDeltas() && pages.size() <= kMostPagesByDeltas;
    std::vector<NewLogEntry> entries;
    entries.reserve(pages.size());
    for (const StatementPage& page : pages) entries.push_back(EntryOf(page, mayBeDeltas));
    const auto image = [&](std::size_t i) { return std::span<const std::uint8_t>(pages[i].image); };
    LogStatement statement = WriteLogStatement(*file_, end_, chain_, pageCount, entries, image);
    // Inside, so that a flush that fails takes the statement back like any other error of writing it.
    if (flush == FlushTime::EachStatement) flush_.Now();
    return statement;
  });
  if (flush == FlushTime::Soon) flush_.Soon();
}

// Appends what `write` writes at the end and returns; on an error the file becomes as long again as it was. A log that
// was only just begun for it is forgotten, so that the next statement begins another.
void RedoLog::AppendWhole(std::uint64_t oldEnd, const std::function<LogStatement()>& write) {
  try {
    // A torn end, or, where a log begins, what was in the file before.
    if (fileSize_ > oldEnd) file_->Truncate(oldEnd);
    Keep(write());
    fileSize_ = end_;
  } catch (...) {
    if (oldEnd == 0) Forget();
    try {
      file_->Truncate(oldEnd);
      fileSize_ = oldEnd;
    } catch (const Error&) {
      // What is left is a torn end, which does not count. The length is noted as too long, so that the next append cuts
      // it off.
      fileSize_ = end_ + 1;
    }
    throw;
  }
}

NewLogEntry RedoLog::EntryOf(const StatementPage& page, bool mayBeDelta) const {
  static constexpr std::array<std::uint8_t, kPageSize> kZeros{};
  const LoggedPage* logged = Find(page.number);
  NewLogEntry entry{.number = page.number, .before = page.before, .isFirst = logged == nullptr};
  // A page that the file does not have begins as zeros, for the reader too.
  const bool isNew = logged == nullptr && !page.before.isInDatabase;
  const std::span<const std::uint8_t> base = isNew ? std::span<const std::uint8_t>(kZeros) : page.base;
  if (!mayBeDelta || base.empty() || (logged != nullptr && logged->deltaCount >= kMostDeltas)) return entry;
  std::vector<std::uint8_t> delta = DeltaBetween(base.first<kPageSize>(), page.image);
  // A long delta saves little, and the page would be read in two places.
  if (delta.size() > kLongestDelta) return entry;
  entry.isWhole = false;
  entry.delta = std::move(delta);
  // Where there is an image and no delta behind it this is 0 as well.
  entry.previous = logged == nullptr ? 0 : logged->lastDelta;
  entry.sum = SumOfPage(page.image);
  return entry;
}

// For a checkpoint: an image of each page that has changed since its last one. They are a statement like others, one
// that changes nothing: whoever reads it finds the same pages.
void RedoLog::AppendImages(File& database) {
  std::vector<NewLogEntry> entries;
  for (const auto& [number, page] : pages_) {
    if (page.lastDelta != 0) entries.push_back({.number = number, .before = page.before, .isFirst = false});
  }
  if (entries.empty()) return;
  // Ascending, as every statement has its pages.
  std::sort(entries.begin(), entries.end(),
            [](const auto& left, const auto& right) { return left.number < right.number; });
  std::array<std::uint8_t, kPageSize> image{};
  const auto next = [&](std::size_t i) {
    ReadPage(entries[i].number, pages_.at(entries[i].number), database, image);
    return std::span<const std::uint8_t>(image);
  };
  AppendWhole(end_, [&] { return WriteLogStatement(*file_, end_, chain_, pageCount_, entries, next); });
}

void RedoLog::BeginLog(const LogOwner& owner) {
  // A flush that fails marks the header.
  flush_.Settle();
  content_.Stop();
  header_ = LogHeader::Begin(header_, owner, file_->Identity().number);
  header_.WriteTo(*file_);
  salt_ = header_.Salt();
  chain_ = salt_;
  end_ = kHeaderSize;
  fileSize_ = kHeaderSize;
}

// Flushes fail in the background, those of others too, so that what was read of the header before may be past.
bool RedoLog::IsDoubtful() {
  if (flush_.HasFailed()) return true;
  if (salt_ == 0) return false;
  const LogHeader now = LogHeader::ReadFrom(*file_);
  if (now.IsOfSameLog(header_)) header_ = now;
  return now.IsDoubtful();
}

void RedoLog::FindContentSoon(File& database) {
  if (!header_.Content()) content_.FindSoon(database, *file_);
}

void RedoLog::FlushSoon() {
  if (!readOnly_) flush_.Soon();
}

void RedoLog::Flush() {
  if (file_ == nullptr || readOnly_) return;
  flush_.Now();
  if (!IsDoubtful()) return;
  RaiseFailure(
      "Could not flush what was stored last in '" + databasePath_ +
      "' to the disk: a flush has failed before. It is in the file's log, but would be lost if the power failed "
      "now. The next change, or the closing of the file, tries to bring it into the file itself; check the "
      "disk.");
}

// For who is alone with the log, since what it writes ends where this opener sees the end.
void RedoLog::MakeDurable() {
  flush_.Settle();
  if (IsDoubtful()) WriteAnew();
  flush_.Now();
}

// Writes every byte that counts once more, so that the flush that follows has it all to write.
void RedoLog::WriteAnew() {
  std::vector<std::uint8_t> chunk(kChunkSize);
  for (std::uint64_t offset = 0; offset < end_; offset += chunk.size()) {
    chunk.resize(static_cast<std::size_t>(std::min<std::uint64_t>(kChunkSize, end_ - offset)));
    file_->ReadAt(offset, chunk);
    file_->WriteAt(offset, chunk);
  }
  // A statement that was refused because of the failed flush must not come back behind them.
  const std::array<std::uint8_t, kStatementHeaderSize> nothing{};
  file_->WriteAt(end_, nothing);
  // The system may have read it from the disk, and not from its memory.
  RedoLog written(fileSystem_, databasePath_, true);
  std::vector<PageNumber> pages;
  static_cast<void>(written.Refresh(pages));
  if (written.end_ != end_) {
    RaiseFailure("Could not flush the log '" + path_ + "', and the system has forgotten a part of it. What the file '" +
                 databasePath_ + "' itself holds is sound.");
  }
}

}  // namespace tavi::access
