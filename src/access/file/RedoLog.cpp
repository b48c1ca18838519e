#include "access/file/RedoLog.h"

#include <algorithm>
#include <chrono>
#include <random>
#include <utility>

#include "access/file/Bytes.h"
#include "access/file/Checksum.h"
#include "access/file/EngineError.h"
#include "access/file/Format.h"

namespace tavi::access {

namespace {

constexpr std::array<std::uint8_t, 8> kMagic = {'T', 'A', 'V', 'I', 'R', 'E', 'D', 'O'};
constexpr std::uint32_t kVersion = 1;
constexpr std::size_t kVersionOffset = 0x08;
constexpr std::size_t kPageSizeOffset = 0x0C;
constexpr std::size_t kSaltOffset = 0x10;
constexpr std::size_t kDatabaseSizeOffset = 0x18;
constexpr std::size_t kFingerprintOffset = 0x20;
constexpr std::size_t kHeaderChecksumOffset = 0x38;

constexpr std::size_t kMarkOffset = 0x40;
constexpr std::size_t kMarkedSize = 8;
constexpr std::size_t kMarkSize = 16;
constexpr std::size_t kAppliedOffset = 0x50;
constexpr std::size_t kAppliedSize = 8;
constexpr std::size_t kDoubtfulOffset = 0x58;
constexpr std::size_t kDoubtfulSize = 8;

constexpr std::uint32_t kStatementMagic = 0x544D5453;  // "STMT"
constexpr std::size_t kStatementCountOffset = 0x04;
constexpr std::size_t kStatementPageCountOffset = 0x08;
constexpr std::size_t kStatementChainOffset = 0x10;
constexpr std::size_t kStatementHeaderSize = 0x20;
constexpr std::size_t kEntrySize = 16;
constexpr std::size_t kEntryBeforeOffset = 8;
constexpr std::size_t kChecksumSize = 8;

// Bytes that are read or written at once.
constexpr std::size_t kChunkSize = std::size_t{64} * kPageSize;

std::uint64_t StatementSize(std::uint64_t count) {
  return kStatementHeaderSize + count * (kEntrySize + kPageSize) + kChecksumSize;
}

std::uint64_t NewSalt(std::uint64_t old) {
  std::random_device random;
  const auto now = static_cast<std::uint64_t>(std::chrono::system_clock::now().time_since_epoch().count());
  std::array<std::uint8_t, 24> seed{};
  PutLittle<std::uint64_t>(seed, 0, old + 1);
  PutLittle<std::uint64_t>(seed, 8, now);
  PutLittle<std::uint64_t>(seed, 16, (std::uint64_t{random()} << 32U) | random());
  std::uint64_t salt = Checksum(0, seed);
  while (salt == 0 || salt == old) ++salt;
  return salt;
}

void MarkAsDoubtful(File& log) {
  std::array<std::uint8_t, kDoubtfulSize> mark{};
  PutLittle<std::uint64_t>(mark, 0, 1);
  try {
    if (log.Size() >= RedoLog::kHeaderSize) log.WriteAt(kDoubtfulOffset, mark);
  } catch (const Error&) {
    // The others learn it from the system when they flush.
  }
}

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

RedoLog::RedoLog(FileSystem& fileSystem, std::string databasePath, bool readOnly)
    : fileSystem_(fileSystem),
      databasePath_(std::move(databasePath)),
      path_(databasePath_ + ".redo"),
      readOnly_(readOnly),
      flush_(fileSystem, path_) {}

std::uint64_t RedoLog::PageChecksum(std::span<const std::uint8_t> stored) {
  const std::uint64_t checksum = Checksum(0, stored);
  return checksum == kNotInDatabase ? 1 : checksum;
}

// ---------------------------------------------------------------------------------------------------------------------
// Reading
// ---------------------------------------------------------------------------------------------------------------------

RedoLog::News RedoLog::TakeIn(std::vector<PageNumber>& changed) {
  const bool isFirstSight = file_ == nullptr;
  if (isFirstSight && !OpenFile()) return News::None;
  fileSize_ = file_->Size();
  if (fileSize_ < kHeaderSize) return BecomeEmpty(false);

  Header header{};
  file_->ReadAt(0, header);
  const bool isSame =
      salt_ != 0 && fileSize_ >= end_ && std::equal(header.begin(), header.begin() + kMarkOffset, header_.begin());
  header_ = header;
  if (!isSame) {
    Forget();
    // Zeros are what a power failure leaves of a start that was never written.
    const bool isBlank = std::all_of(header.begin(), header.end(), [](std::uint8_t byte) { return byte == 0; });
    if (isBlank || !TakeInHeader()) return BecomeEmpty(!isBlank);
  }
  if (IsApplied()) return BecomeEmpty(false);
  const bool more = fileSize_ > end_ && salt_ != ignored_ && TakeInStatements(fileSize_, changed);
  if (!isSame || isFirstSight) return News::Replaced;
  return more ? News::Statements : News::None;
}

bool RedoLog::OpenFile() {
  if (!fileSystem_.Exists(path_)) return false;
  file_ = fileSystem_.Open(path_, readOnly_ ? FileSystem::OpenMode::ReadOnly : FileSystem::OpenMode::ReadWrite);
  if (!readOnly_) BeginFlushing();
  return true;
}

void RedoLog::BeginFlushing() {
  try {
    flush_.Begin(*file_, MarkAsDoubtful);
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

// Takes the salt from the header; false when it is not a header of ours.
bool RedoLog::TakeInHeader() {
  if (!std::equal(kMagic.begin(), kMagic.end(), header_.begin())) return false;
  const auto checked = std::span<const std::uint8_t>(header_).first(kHeaderChecksumOffset);
  if (Checksum(0, checked) != GetLittle<std::uint64_t>(header_, kHeaderChecksumOffset)) return false;
  const auto version = GetLittle<std::uint32_t>(header_, kVersionOffset);
  if (version != kVersion || GetLittle<std::uint32_t>(header_, kPageSizeOffset) != kPageSize) {
    RaiseFailure("The log '" + path_ + "' holds changes of '" + databasePath_ + "' in a layout (" +
                 std::to_string(version) +
                 ") that this version does not know. Open the database with the version that wrote it.");
  }
  salt_ = GetLittle<std::uint64_t>(header_, kSaltOffset);
  end_ = kHeaderSize;
  chain_ = salt_;
  return salt_ != 0;
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
  const std::uint64_t pagesBefore =
      pages_.empty() ? GetLittle<std::uint64_t>(header_, kDatabaseSizeOffset) / kPageSize : pageCount_;
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
    const auto number = GetLittle<std::uint32_t>(directory, i * kEntrySize);
    Remember(number, firstImage + i * kPageSize,
             GetLittle<std::uint64_t>(directory, i * kEntrySize + kEntryBeforeOffset));
    changed.push_back(number);
  }
  return true;
}

void RedoLog::Remember(PageNumber number, std::uint64_t imageOffset, std::uint64_t before) {
  const auto [place, isNew] = pages_.try_emplace(number, LoggedPage{imageOffset, before});
  if (!isNew) place->second.imageOffset = imageOffset;
}

void RedoLog::ReadImage(const LoggedPage& page, std::span<std::uint8_t, kPageSize> target) {
  file_->ReadAt(page.imageOffset, target);
}

bool RedoLog::ApplyingHasBegun() const {
  const auto mark = std::span<const std::uint8_t>(header_).subspan(kMarkOffset);
  const auto end = GetLittle<std::uint64_t>(mark, 0);
  return end != 0 && end <= end_ &&
         GetLittle<std::uint64_t>(mark, kMarkedSize) == Checksum(salt_, mark.first(kMarkedSize));
}

bool RedoLog::IsApplied() const {
  const auto mark = std::span<const std::uint8_t>(header_).subspan(kMarkOffset, kMarkSize);
  return GetLittle<std::uint64_t>(header_, kAppliedOffset) == Checksum(salt_, mark);
}

bool RedoLog::BelongsTo(File& database) {
  Page stored(0);
  const std::uint64_t size = database.Size();
  const auto isAsBefore = [&](PageNumber number, std::uint64_t before) {
    const std::uint64_t offset = std::uint64_t{number} * kPageSize;
    if (offset + kPageSize > size) return before == kNotInDatabase;
    if (before == kNotInDatabase) return false;
    database.ReadAt(offset, stored.AllMutable());
    return PageChecksum(stored.All()) == before;
  };
  const auto fingerprint = GetLittle<std::uint64_t>(header_, kFingerprintOffset);
  // Page 0 tells databases apart (date of creation), and hardly any statement changes it.
  if (ApplyingHasBegun()) return Find(format::kHeaderPage) != nullptr || isAsBefore(format::kHeaderPage, fingerprint);
  return size == GetLittle<std::uint64_t>(header_, kDatabaseSizeOffset) &&
         isAsBefore(format::kHeaderPage, fingerprint) &&
         std::all_of(pages_.begin(), pages_.end(),
                     [&](const auto& entry) { return isAsBefore(entry.first, entry.second.before); });
}

// ---------------------------------------------------------------------------------------------------------------------
// Appending
// ---------------------------------------------------------------------------------------------------------------------

void RedoLog::CreateFile() {
  file_ = fileSystem_.Open(path_, FileSystem::OpenMode::CreateNew);
  fileSystem_.CopyPermissions(databasePath_, path_);
  fileSize_ = 0;
  BeginFlushing();
}

void RedoLog::Append(const LogOwner& owner, std::span<const StatementPage> pages, PageNumber pageCount,
                     FlushTime flush) {
  if (file_ == nullptr) CreateFile();
  const std::uint64_t oldEnd = end_;
  try {
    if (fileSize_ > end_) file_->Truncate(end_);
    // A log without statements may have been begun before another program wrote the database.
    if (salt_ == 0 || (pages_.empty() && !IsOf(owner))) WriteHeader(owner);
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

bool RedoLog::IsOf(const LogOwner& owner) const {
  return GetLittle<std::uint64_t>(header_, kDatabaseSizeOffset) == owner.size &&
         GetLittle<std::uint64_t>(header_, kFingerprintOffset) == owner.fingerprint;
}

void RedoLog::WriteHeader(const LogOwner& owner) {
  const std::uint64_t salt = NewSalt(GetLittle<std::uint64_t>(header_, kSaltOffset));
  header_ = {};
  std::copy(kMagic.begin(), kMagic.end(), header_.begin());
  PutLittle<std::uint32_t>(header_, kVersionOffset, kVersion);
  PutLittle<std::uint32_t>(header_, kPageSizeOffset, kPageSize);
  PutLittle<std::uint64_t>(header_, kSaltOffset, salt);
  PutLittle<std::uint64_t>(header_, kDatabaseSizeOffset, owner.size);
  PutLittle<std::uint64_t>(header_, kFingerprintOffset, owner.fingerprint);
  PutLittle<std::uint64_t>(header_, kHeaderChecksumOffset,
                           Checksum(0, std::span<const std::uint8_t>(header_).first(kHeaderChecksumOffset)));
  file_->WriteAt(0, header_);
  salt_ = salt;
  chain_ = salt;
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
    PutLittle<std::uint32_t>(directory, i * kEntrySize, pages[i].number);
    PutLittle<std::uint64_t>(directory, i * kEntrySize + kEntryBeforeOffset, pages[i].before);
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

// ---------------------------------------------------------------------------------------------------------------------
// Applying and dropping
// ---------------------------------------------------------------------------------------------------------------------

// A mark that is there already is left alone: a second attempt that fails in the middle of it would leave a log that
// seems to have nothing to do with a database into which the first attempt has written. It serves, since all that was
// appended after it is flushed here too.
void RedoLog::MarkApplying() {
  if (!ApplyingHasBegun()) {
    Header marked = header_;
    const auto mark = std::span<std::uint8_t>(marked).subspan(kMarkOffset, kMarkSize);
    PutLittle<std::uint64_t>(mark, 0, end_);
    PutLittle<std::uint64_t>(mark, kMarkedSize, Checksum(salt_, mark.first(kMarkedSize)));
    file_->WriteAt(kMarkOffset, mark);
    header_ = marked;
  }
  MakeDurable();
}

bool RedoLog::IsDoubtful() const {
  return flush_.HasFailed() || (salt_ != 0 && GetLittle<std::uint64_t>(header_, kDoubtfulOffset) != 0);
}

void RedoLog::FlushSoon() {
  if (!readOnly_) flush_.Soon();
}

void RedoLog::Flush() {
  if (file_ != nullptr && !readOnly_) MakeDurable();
}

void RedoLog::MakeDurable() {
  flush_.Settle();
  file_->ReadAt(0, header_);
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

// Not flushed: where it gets lost the log is applied once more, which changes nothing.
void RedoLog::MarkApplied() {
  const auto mark = std::span<const std::uint8_t>(header_).subspan(kMarkOffset, kMarkSize);
  const auto applied = std::span<std::uint8_t>(header_).subspan(kAppliedOffset, kAppliedSize);
  PutLittle<std::uint64_t>(applied, 0, Checksum(salt_, mark));
  file_->WriteAt(kAppliedOffset, applied);
}

void RedoLog::ApplyTo(File& database) {
  MarkApplying();
  // New pages first: a full disk is then met before any old page is touched.
  const auto firstNew = static_cast<PageNumber>(database.Size() / kPageSize);
  std::vector<PageNumber> numbers;
  numbers.reserve(pages_.size());
  for (const auto& entry : pages_) numbers.push_back(entry.first);
  std::sort(numbers.begin(), numbers.end());
  std::rotate(numbers.begin(), std::lower_bound(numbers.begin(), numbers.end(), firstNew), numbers.end());

  std::vector<std::uint8_t> run;
  run.reserve(kChunkSize);
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    run.resize(run.size() + kPageSize);
    ReadImage(pages_.at(numbers[i]), std::span(run).last<kPageSize>());
    const bool goesOn = i + 1 < numbers.size() && numbers[i + 1] == numbers[i] + 1 && run.size() < kChunkSize;
    if (goesOn) continue;
    database.WriteAt((std::uint64_t{numbers[i]} + 1) * kPageSize - run.size(), run);
    run.clear();
  }
  const std::uint64_t size = std::uint64_t{pageCount_} * kPageSize;
  if (database.Size() != size) database.Truncate(size);
  database.Sync();
  MarkApplied();
}

void RedoLog::Reset(const LogOwner& owner) {
  flush_.Settle();
  Forget();
  file_->Truncate(0);
  fileSize_ = 0;
  // Without this a power failure could bring old statements back that no longer belong to the database.
  flush_.Now();
  flush_.ForgetFailures();
  WriteHeader(owner);
}

void RedoLog::Remove() {
  // A doubtful log may hold a statement that was refused because it could not be flushed.
  const bool mayHoldStatements = fileSize_ > kHeaderSize || IsDoubtful();
  Release();
  Forget();
  fileSystem_.Remove(path_);
  // As in Reset: old statements must not come back.
  if (mayHoldStatements) fileSystem_.SyncFolderOf(path_);
}

std::string RedoLog::SetAside(bool isAlone) {
  std::string target = FreeSetAsidePath();
  Forget();
  flush_.Settle();
  if (isAlone) {
    Release();
    fileSystem_.Rename(path_, target);
    fileSystem_.SyncFolderOf(path_);
  } else {
    // The others know the file, not only its name. The copy is durable, its name too, before the original goes.
    CopyTo(target);
    fileSystem_.SyncFolderOf(target);
    file_->Truncate(0);
    flush_.Now();
    fileSize_ = 0;
  }
  return target;
}

std::string RedoLog::FreeSetAsidePath() const {
  for (unsigned number = 1;; ++number) {
    std::string path = path_ + "-setaside-" + std::to_string(number);
    if (!fileSystem_.Exists(path)) return path;
  }
}

void RedoLog::CopyTo(const std::string& path) {
  const auto target = fileSystem_.Open(path, FileSystem::OpenMode::CreateNew);
  fileSystem_.CopyPermissions(path_, path);
  const std::uint64_t size = file_->Size();
  std::vector<std::uint8_t> chunk(kChunkSize);
  for (std::uint64_t offset = 0; offset < size; offset += chunk.size()) {
    chunk.resize(static_cast<std::size_t>(std::min<std::uint64_t>(kChunkSize, size - offset)));
    file_->ReadAt(offset, chunk);
    target->WriteAt(offset, chunk);
  }
  target->Sync();
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
