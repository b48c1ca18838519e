// Statements are written into a redo log and flushed.
#include <algorithm>
#include <array>

#include "access/file/Bytes.h"
#include "access/file/Checksum.h"
#include "access/file/EngineError.h"
#include "access/file/RedoLog.h"

namespace tavi::access {

using namespace log_layout;

namespace {

// Collects small writes into large ones.
class ChunkWriter {
 public:
  ChunkWriter(File& file, std::uint64_t offset, std::uint64_t expected) : file_(file), offset_(offset) {
    chunk_.reserve(static_cast<std::size_t>(std::min<std::uint64_t>(kChunkSize, expected)));
  }

  void Put(std::span<const std::uint8_t> bytes) {
    if (chunk_.size() + bytes.size() > kChunkSize) Flush();
    if (bytes.size() >= kChunkSize) {
      file_.WriteAt(offset_, bytes);
      offset_ += bytes.size();
      return;
    }
    chunk_.insert(chunk_.end(), bytes.begin(), bytes.end());
  }
  void Flush() {
    if (chunk_.empty()) return;
    file_.WriteAt(offset_, chunk_);
    offset_ += chunk_.size();
    chunk_.clear();
  }

 private:
  File& file_;
  std::uint64_t offset_;
  std::vector<std::uint8_t> chunk_;
};

}  // namespace

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
  const std::uint64_t oldEnd = begins ? 0 : end_;
  try {
    if (fileSize_ > oldEnd) file_->Truncate(oldEnd);
    if (begins) BeginLog(owner);
    const std::uint64_t checksum = WriteStatement(pages, pageCount);
    if (flush == FlushTime::EachStatement) flush_.Now();
    chain_ = checksum;
  } catch (...) {
    if (oldEnd == 0) Forget();
    try {
      file_->Truncate(oldEnd);
      fileSize_ = oldEnd;
    } catch (const Error&) {
      // What is left is a torn end, which does not count.
      fileSize_ = end_ + 1;
    }
    throw;
  }
  std::uint64_t imageOffset = end_ + kStatementHeaderSize + pages.size() * kEntrySize;
  for (const StatementPage& page : pages) {
    Remember(page.number, imageOffset, page.before);
    imageOffset += kPageSize;
  }
  pageCount_ = pageCount;
  end_ += StatementSize(pages.size());
  fileSize_ = end_;
  if (flush == FlushTime::Soon) flush_.Soon();
}

void RedoLog::BeginLog(const LogOwner& owner) {
  // A flush that fails marks the header.
  flush_.Settle();
  header_ = LogHeader::Begin(header_, owner, file_->Identity().number);
  header_.WriteTo(*file_);
  salt_ = header_.Salt();
  chain_ = salt_;
  end_ = kHeaderSize;
  fileSize_ = kHeaderSize;
}

// Writes the statement at the end and returns its checksum.
std::uint64_t RedoLog::WriteStatement(std::span<const StatementPage> pages, PageNumber pageCount) {
  std::array<std::uint8_t, kStatementHeaderSize> start{};
  PutLittle<std::uint32_t>(start, 0, kStatementMagic);
  PutLittle<std::uint32_t>(start, kStatementCountOffset, static_cast<std::uint32_t>(pages.size()));
  PutLittle<std::uint32_t>(start, kStatementPageCountOffset, pageCount);
  PutLittle<std::uint64_t>(start, kStatementChainOffset, chain_);
  std::vector<std::uint8_t> directory(pages.size() * kEntrySize);
  for (std::size_t i = 0; i < pages.size(); ++i) {
    const auto entry = std::span(directory).subspan(i * kEntrySize, kEntrySize);
    PutLittle<std::uint32_t>(entry, 0, pages[i].number);
    PutLittle<std::uint32_t>(entry, kEntryIsInDatabaseOffset, pages[i].before.isInDatabase ? 1 : 0);
    for (std::size_t sector = 0; sector < PageSums::kSectors; ++sector)
      PutLittle<std::uint32_t>(entry, kEntrySumsOffset + sector * kSumSize, pages[i].before.sectors[sector]);
  }
  std::uint64_t checksum = Checksum(Checksum(chain_, start), directory);
  ChunkWriter writer(*file_, end_, StatementSize(pages.size()));
  writer.Put(start);
  writer.Put(directory);
  for (const StatementPage& page : pages) {
    checksum = Checksum(checksum, page.image);
    writer.Put(page.image);
  }
  std::array<std::uint8_t, kChecksumSize> last{};
  PutLittle<std::uint64_t>(last, 0, checksum);
  writer.Put(last);
  writer.Flush();
  return checksum;
}

bool RedoLog::IsDoubtful() const {
  return flush_.HasFailed() || (salt_ != 0 && header_.IsDoubtful());
}

void RedoLog::FlushSoon() {
  if (!readOnly_) flush_.Soon();
}

void RedoLog::Flush() {
  if (file_ != nullptr && !readOnly_) MakeDurable();
}

void RedoLog::MakeDurable() {
  flush_.Settle();
  if (salt_ != 0) header_ = LogHeader::ReadFrom(*file_);
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
  static_cast<void>(written.TakeIn(pages));
  if (written.end_ != end_) {
    RaiseFailure("The log '" + path_ +
                 "' could not be flushed, and the system has forgotten a part of it. What the file '" + databasePath_ +
                 "' itself holds is sound.");
  }
}

}  // namespace tavi::access
