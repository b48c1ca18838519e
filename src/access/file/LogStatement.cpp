// Statements are read from a log.
#include "access/file/LogStatement.h"

#include <algorithm>
#include <array>

#include "access/file/Bytes.h"
#include "access/file/Format.h"
#include "access/file/LogLayout.h"

// Nothing of a log is believed before its checksum was right, and nothing is taken from it before it is known to lie in
// the log: it may have been torn in the middle of a number. The header of a statement says how long it is, so it is
// looked at first, and must follow the statement before (its chain) and fit what is left of the log. Then the statement
// is read once, in large pieces, and summed on the way. What is kept are places: images and deltas stay in the log
// until somebody asks for their page.

namespace tavi::access {

using namespace log_layout;

namespace {

// More than nearly all records have, so that they are read at once, without asking for their length first.
constexpr std::size_t kRecordGuess = 256;

// Reads a stretch of a file from its start to its end in large pieces, and sums what is taken piece by piece.
class SummingReader {
 public:
  SummingReader(File& file, std::uint64_t offset, std::uint64_t end, std::uint64_t checksum)
      : file_(file), offset_(offset), end_(end), checksum_(checksum) {}

  [[nodiscard]] std::uint64_t Offset() const { return offset_; }
  [[nodiscard]] std::uint64_t Sum() const { return checksum_; }
  /// The next bytes, of which so many are left; valid until the next call.
  // A piece that is cut by the end of the chunk is read again with the next one, so that it lies in one run.
  std::span<const std::uint8_t> Peek(std::size_t count) {
    if (chunk_.size() - at_ < count) {
      chunk_.resize(static_cast<std::size_t>(std::min<std::uint64_t>(std::max(kChunkSize, count), end_ - offset_)));
      file_.ReadAt(offset_, chunk_);
      at_ = 0;
    }
    return std::span(chunk_).subspan(at_, count);
  }
  std::span<const std::uint8_t> Take(std::size_t count) {
    const auto bytes = Peek(count);
    checksum_ = Checksum(checksum_, bytes);
    at_ += count;
    offset_ += count;
    return bytes;
  }

 private:
  File& file_;
  std::uint64_t offset_;
  std::uint64_t end_;
  std::uint64_t checksum_;
  std::vector<std::uint8_t> chunk_;
  std::size_t at_ = 0;
};

/// What the header of a statement says; nothing of it is checked by a sum yet.
struct Header {
  bool hasDeltas = false;
  std::uint32_t count = 0;
  PageNumber pageCount = 0;
  std::uint64_t recordsSize = 0;

  [[nodiscard]] std::uint64_t Size() const { return hasDeltas ? DeltasSize(recordsSize) : WholePagesSize(count); }
};

std::optional<Header> ParseHeader(std::span<const std::uint8_t> bytes, std::uint64_t chain, std::uint64_t space) {
  const auto magic = GetLittle<std::uint32_t>(bytes, 0);
  const Header header{magic == kDeltasMagic, GetLittle<std::uint32_t>(bytes, kStatementCountOffset),
                      GetLittle<std::uint32_t>(bytes, kStatementPageCountOffset),
                      GetLittle<std::uint32_t>(bytes, kStatementRecordsSizeOffset)};
  // Old bytes of an earlier log can stand here, and random ones. The chain begins with the log's salt, so those of
  // another log do not fit.
  const bool isPlausible = (magic == kDeltasMagic || magic == kWholePagesMagic) &&
                           GetLittle<std::uint64_t>(bytes, kStatementChainOffset) == chain && header.count > 0 &&
                           header.count <= header.pageCount && header.pageCount <= format::kMaximumPageCount &&
                           header.Size() <= space;
  if (!isPlausible) return std::nullopt;
  return header;
}

/// Eight sums, for the sectors of a page that the file has.
PageSums GetSums(std::span<const std::uint8_t> bytes) {
  PageSums sums;
  sums.isInDatabase = true;
  for (std::size_t sector = 0; sector < PageSums::kSectors; ++sector)
    sums.sectors[sector] = GetLittle<std::uint32_t>(bytes, sector * kSumSize);
  return sums;
}

/// A statement of whole pages, from its directory on. Each image is summed by itself, which is why it is taken by
/// itself.
void TakeWholePages(SummingReader& reader, std::uint32_t count, std::vector<LogEntry>& entries) {
  entries.resize(count);
  const auto directory = reader.Take(count * kEntrySize);
  for (std::size_t i = 0; i < count; ++i) {
    const auto bytes = directory.subspan(i * kEntrySize, kEntrySize);
    entries[i].number = GetLittle<std::uint32_t>(bytes, 0);
    entries[i].before = GetSums(bytes.subspan(kEntrySumsOffset));
    entries[i].before->isInDatabase = GetLittle<std::uint32_t>(bytes, kEntryIsInDatabaseOffset) != 0;
  }
  for (LogEntry& entry : entries) {
    entry.image = reader.Offset();
    static_cast<void>(reader.Take(kPageSize));
  }
}

struct Record {
  LogEntry entry;
  std::size_t headSize = 0;
  std::size_t size = 0;
};

/// A record of which at least the fixed part is there, at an offset of the log. What its numbers say is for the caller
/// to judge.
Record ParseRecord(std::span<const std::uint8_t> bytes, std::uint64_t offset) {
  Record record;
  LogEntry& entry = record.entry;
  entry.number = GetLittle<std::uint32_t>(bytes, 0);
  entry.sum = GetLittle<std::uint32_t>(bytes, kRecordSumOffset);
  entry.previous = GetLittle<std::uint64_t>(bytes, kRecordPreviousOffset);
  const auto flags = GetLittle<std::uint16_t>(bytes, kRecordFlagsOffset);
  const bool isInDatabase = (flags & kRecordIsInDatabase) != 0;
  if ((flags & kRecordIsFirst) != 0) entry.before = PageSums{.isInDatabase = isInDatabase};
  record.headSize = kRecordHeadSize + (isInDatabase ? kSumsSize : 0);
  const bool isWhole = (flags & kRecordIsWhole) != 0;
  (isWhole ? entry.image : entry.delta) = isWhole ? offset + record.headSize : offset;
  record.size = record.headSize + (isWhole ? kPageSize : GetLittle<std::uint16_t>(bytes, kRecordDeltaSizeOffset));
  return record;
}

/// The records of a statement with deltas. False when they do not fill their place, or do not make sense: they must
/// ascend, so that a page is told once, and a page's sums are only there where it is logged for the first time.
bool TakeRecords(SummingReader& reader, std::uint32_t count, std::uint64_t end, std::vector<LogEntry>& entries) {
  for (std::uint32_t i = 0; i < count; ++i) {
    if (end - reader.Offset() < kRecordHeadSize) return false;
    Record record = ParseRecord(reader.Peek(kRecordHeadSize), reader.Offset());
    if (record.size > end - reader.Offset()) return false;
    const auto bytes = reader.Take(record.size);
    LogEntry& entry = record.entry;
    if (entry.image == 0 && !IsDelta(bytes.subspan(record.headSize))) return false;
    if (record.headSize > kRecordHeadSize) {
      if (!entry.before) return false;
      entry.before = GetSums(bytes.subspan(kRecordHeadSize));
    }
    if (!entries.empty() && entry.number <= entries.back().number) return false;
    entries.push_back(entry);
  }
  return reader.Offset() == end;
}

}  // namespace

std::optional<LogStatement> ReadLogStatement(File& log, std::uint64_t offset, std::uint64_t size, std::uint64_t chain) {
  if (size - offset < kStatementHeaderSize + kChecksumSize) return std::nullopt;
  std::array<std::uint8_t, kStatementHeaderSize> bytes{};
  log.ReadAt(offset, bytes);
  const std::optional<Header> header = ParseHeader(bytes, chain, size - offset);
  if (!header) return std::nullopt;
  LogStatement statement{offset + header->Size(), header->pageCount, 0, {}};
  SummingReader reader(log, offset + kStatementHeaderSize, statement.end, Checksum(chain, bytes));
  if (!header->hasDeltas) {
    TakeWholePages(reader, header->count, statement.entries);
  } else if (!TakeRecords(reader, header->count, statement.end - kChecksumSize, statement.entries)) {
    return std::nullopt;
  }
  statement.checksum = reader.Sum();
  // The last 8 bytes, which are not part of what they sum.
  if (GetLittle<std::uint64_t>(reader.Peek(kChecksumSize), 0) != statement.checksum) return std::nullopt;
  return statement;
}

// Not summed again: the page that comes out is proved by its own checksum.
LoggedDelta ReadLoggedDelta(File& log, std::uint64_t offset, std::uint64_t end) {
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(std::min<std::uint64_t>(kRecordGuess, end - offset)));
  log.ReadAt(offset, bytes);
  const Record record = ParseRecord(bytes, offset);
  // A second read for the rest of a long record. That it lies in the log was seen when the statement was read.
  if (const std::size_t known = bytes.size(); known < record.size) {
    bytes.resize(record.size);
    log.ReadAt(offset + known, std::span(bytes).subspan(known));
  }
  const auto delta = std::span(bytes).first(record.size).subspan(record.headSize);
  return {record.entry.previous, {delta.begin(), delta.end()}};
}

// Folded to 32 bits, which is enough to see that a delta met the right base.
std::uint32_t SumOfPage(std::span<const std::uint8_t, kPageSize> page) {
  const std::uint64_t checksum = Checksum(0, page);
  return static_cast<std::uint32_t>(checksum ^ (checksum >> 32U));
}

}  // namespace tavi::access
