// What a redo log says: reading it. Appending and applying have files of their own.
#include "access/file/RedoLog.h"

#include <algorithm>
#include <array>
#include <utility>

#include "access/file/Bytes.h"
#include "access/file/Checksum.h"
#include "access/file/EngineError.h"
#include "access/file/Format.h"
#include "platform/values/Text.h"

namespace tavi::access {

using namespace log_layout;

RedoLog::RedoLog(FileSystem& fileSystem, std::string databasePath, bool readOnly)
    : fileSystem_(fileSystem),
      databasePath_(std::move(databasePath)),
      path_(databasePath_ + ".redo"),
      readOnly_(readOnly),
      flush_(fileSystem, path_) {}

RedoLog::News RedoLog::TakeIn(std::vector<PageNumber>& changed) {
  const bool isFirstSight = file_ == nullptr;
  if (isFirstSight && !OpenFile()) return News::None;
  fileSize_ = file_->Size();
  const LogHeader header = LogHeader::ReadFrom(*file_);
  if (fileSize_ < kHeaderSize) return BecomeEmpty(!header.IsUnfinished());
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
  const bool more = fileSize_ > end_ && salt_ != ignored_ && TakeInStatements(fileSize_, changed);
  if (!isSame || isFirstSight) return News::Replaced;
  return more ? News::Statements : News::None;
}

bool RedoLog::OpenFile() {
  if (!fileSystem_.Exists(path_)) return false;
  // Its pages would go into, or come from, a file that has nothing to do with the database.
  if (const std::string target = fileSystem_.CanonicalPath(path_); !EqualIgnoringCase(target, path_)) {
    RaiseFailure("The log '" + path_ + "' of '" + databasePath_ + "' is a link to '" + target +
                 "' and is not used. Remove the link, or put the log itself in its place.");
  }
  file_ = fileSystem_.Open(path_, readOnly_ ? FileSystem::OpenMode::ReadOnly : FileSystem::OpenMode::ReadWrite);
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
}

RedoLog::News RedoLog::BecomeEmpty(bool isUnknown) {
  const bool wasEmpty = salt_ == 0;
  Forget();
  isUnknown_ = isUnknown;
  return wasEmpty ? News::None : News::Replaced;
}

bool RedoLog::TakeInStatements(std::uint64_t size, std::vector<PageNumber>& changed) {
  bool any = false;
  for (;;) {
    std::uint64_t checksum = chain_;
    std::optional<Statement> statement;
    try {
      statement = ReadStatementHeader(end_, size, checksum);
      if (!statement || !TakeInStatement(*statement, checksum, changed)) return any;
    } catch (const Error&) {
      // A torn end goes while others read: the writer cuts it off before it appends.
      if (file_->Size() >= size) throw;
      return any;
    }
    chain_ = checksum;
    pageCount_ = statement->pageCount;
    end_ += StatementSize(statement->count);
    any = true;
  }
}

std::optional<RedoLog::Statement> RedoLog::ReadStatementHeader(std::uint64_t offset, std::uint64_t size,
                                                               std::uint64_t& checksum) {
  if (size - offset < kStatementHeaderSize) return std::nullopt;
  std::array<std::uint8_t, kStatementHeaderSize> bytes{};
  file_->ReadAt(offset, bytes);
  const Statement statement{offset, GetLittle<std::uint32_t>(bytes, kStatementCountOffset),
                            GetLittle<std::uint32_t>(bytes, kStatementPageCountOffset)};
  // New pages are always logged, so that the database cannot grow by more than there are.
  const std::uint64_t pagesBefore = pages_.empty() ? header_.Owner().size / kPageSize : pageCount_;
  const bool isPlausible = GetLittle<std::uint32_t>(bytes, 0) == kStatementMagic &&
                           GetLittle<std::uint64_t>(bytes, kStatementChainOffset) == chain_ && statement.count > 0 &&
                           statement.count <= statement.pageCount && statement.pageCount <= format::kMaximumPageCount &&
                           statement.pageCount <= pagesBefore + statement.count &&
                           StatementSize(statement.count) <= size - offset;
  if (!isPlausible) return std::nullopt;
  checksum = Checksum(checksum, bytes);
  return statement;
}

// Reads a statement through; takes its pages in when the checksum is right. `checksum` goes on from the header's.
bool RedoLog::TakeInStatement(const Statement& statement, std::uint64_t& checksum, std::vector<PageNumber>& changed) {
  std::vector<std::uint8_t> directory(statement.count * kEntrySize);
  std::uint64_t offset = statement.offset + kStatementHeaderSize;
  file_->ReadAt(offset, directory);
  checksum = Checksum(checksum, directory);
  offset += directory.size();
  const std::uint64_t firstImage = offset;

  std::vector<std::uint8_t> chunk(std::min<std::size_t>(kChunkSize, statement.count * kPageSize));
  const std::uint64_t imagesEnd = firstImage + std::uint64_t{statement.count} * kPageSize;
  while (offset < imagesEnd) {
    const auto part =
        std::span(chunk).first(static_cast<std::size_t>(std::min<std::uint64_t>(chunk.size(), imagesEnd - offset)));
    file_->ReadAt(offset, part);
    for (std::size_t at = 0; at < part.size(); at += kPageSize)
      checksum = Checksum(checksum, part.subspan(at, kPageSize));
    offset += part.size();
  }
  std::array<std::uint8_t, kChecksumSize> stored{};
  file_->ReadAt(imagesEnd, stored);
  if (GetLittle<std::uint64_t>(stored, 0) != checksum) return false;
  for (std::size_t i = 0; i < statement.count; ++i) {
    if (GetLittle<std::uint32_t>(directory, i * kEntrySize) >= statement.pageCount) return false;
  }

  for (std::size_t i = 0; i < statement.count; ++i) {
    const auto entry = std::span<const std::uint8_t>(directory).subspan(i * kEntrySize, kEntrySize);
    PageSums before;
    before.isInDatabase = GetLittle<std::uint32_t>(entry, kEntryIsInDatabaseOffset) != 0;
    for (std::size_t sector = 0; sector < PageSums::kSectors; ++sector)
      before.sectors[sector] = GetLittle<std::uint32_t>(entry, kEntrySumsOffset + sector * kSumSize);
    const auto number = GetLittle<std::uint32_t>(entry, 0);
    Remember(number, firstImage + i * kPageSize, before);
    changed.push_back(number);
  }
  return true;
}

void RedoLog::Remember(PageNumber number, std::uint64_t imageOffset, const PageSums& before) {
  const auto [place, isNew] = pages_.try_emplace(number, LoggedPage{imageOffset, before, {}});
  if (isNew) return;
  LoggedPage& page = place->second;
  if (header_.Applying()) page.olderImages.push_back(page.imageOffset);
  page.imageOffset = imageOffset;
}

void RedoLog::ReadImage(const LoggedPage& page, std::span<std::uint8_t, kPageSize> target) {
  file_->ReadAt(page.imageOffset, target);
}

void RedoLog::Release() {
  flush_.End();
  file_.reset();
}

void RedoLog::Ignore() {
  ignored_ = salt_;
  pages_.clear();
  pageCount_ = 0;
  chain_ = 0;
}

}  // namespace tavi::access
