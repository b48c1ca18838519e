// Statements are written into a log.
#include <algorithm>
#include <array>

#include "access/file/Bytes.h"
#include "access/file/LogLayout.h"
#include "access/file/LogStatement.h"

// A statement is put together in pieces of the size of a chunk and summed as it goes; its checksum is the last of its
// bytes. Without the right one the statement does not exist for anybody who reads the log, so a crash in the middle
// leaves what was there before. The form is chosen by the entries: whole pages alone are written with their directory
// in front, the only form that logs of version 2 have.

namespace tavi::access {

using namespace log_layout;

namespace {

// Collects small writes into large ones, and sums what it is given piece by piece.
class SummingWriter {
 public:
  SummingWriter(File& file, std::uint64_t offset, std::uint64_t expected, std::uint64_t checksum)
      : file_(file), offset_(offset), checksum_(checksum) {
    chunk_.reserve(static_cast<std::size_t>(std::min<std::uint64_t>(kChunkSize, expected)));
  }

  /// Where the next piece will lie.
  [[nodiscard]] std::uint64_t Offset() const { return offset_ + chunk_.size(); }
  [[nodiscard]] std::uint64_t Sum() const { return checksum_; }
  void Put(std::span<const std::uint8_t> bytes) {
    checksum_ = Checksum(checksum_, bytes);
    PutUnsummed(bytes);
  }
  /// Puts the sum behind what it sums, and writes everything.
  void Finish() {
    std::array<std::uint8_t, kChecksumSize> last{};
    PutLittle<std::uint64_t>(last, 0, checksum_);
    PutUnsummed(last);
    Flush();
  }

 private:
  // Pieces keep their order; one that is as long as a chunk goes to the file at once, without being copied.
  void PutUnsummed(std::span<const std::uint8_t> bytes) {
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

  File& file_;
  std::uint64_t offset_;
  std::uint64_t checksum_;
  std::vector<std::uint8_t> chunk_;
};

void PutSums(std::span<std::uint8_t> target, const PageSums& sums) {
  for (std::size_t sector = 0; sector < PageSums::kSectors; ++sector)
    PutLittle<std::uint32_t>(target, sector * kSumSize, sums.sectors[sector]);
}

// Bytes that have no meaning are 0, and are summed like the rest.
std::array<std::uint8_t, kStatementHeaderSize> HeaderOf(std::uint32_t magic, std::size_t count, PageNumber pageCount,
                                                        std::uint64_t recordsSize, std::uint64_t chain) {
  std::array<std::uint8_t, kStatementHeaderSize> header{};
  PutLittle<std::uint32_t>(header, 0, magic);
  PutLittle<std::uint32_t>(header, kStatementCountOffset, static_cast<std::uint32_t>(count));
  PutLittle<std::uint32_t>(header, kStatementPageCountOffset, pageCount);
  PutLittle<std::uint32_t>(header, kStatementRecordsSizeOffset, static_cast<std::uint32_t>(recordsSize));
  PutLittle<std::uint64_t>(header, kStatementChainOffset, chain);
  return header;
}

// The directory stands in front of the images, so who reads it knows all pages before the first image.
LogStatement WriteWholePages(File& log, std::uint64_t offset, std::uint64_t chain, PageNumber pageCount,
                             std::span<const NewLogEntry> entries, const PageSource& page) {
  std::vector<std::uint8_t> directory(entries.size() * kEntrySize);
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const auto entry = std::span(directory).subspan(i * kEntrySize, kEntrySize);
    PutLittle<std::uint32_t>(entry, 0, entries[i].number);
    PutLittle<std::uint32_t>(entry, kEntryIsInDatabaseOffset, entries[i].before.isInDatabase ? 1 : 0);
    PutSums(entry.subspan(kEntrySumsOffset), entries[i].before);
  }
  LogStatement written{offset + WholePagesSize(entries.size()), pageCount, 0, {}};
  written.entries.reserve(entries.size());
  SummingWriter writer(log, offset, WholePagesSize(entries.size()), chain);
  writer.Put(HeaderOf(kWholePagesMagic, entries.size(), pageCount, 0, chain));
  writer.Put(directory);
  for (std::size_t i = 0; i < entries.size(); ++i) {
    // What is returned is what a reader would find, so the caller need not read its own statement.
    written.entries.push_back({.number = entries[i].number, .before = entries[i].before, .image = writer.Offset()});
    writer.Put(page(i));
  }
  written.checksum = writer.Sum();
  writer.Finish();
  return written;
}

// The sums of the file's page are told once, when the page is logged for the first time, and only where the file has
// it.
std::uint64_t HeadSize(const NewLogEntry& entry) {
  return kRecordHeadSize + (entry.isFirst && entry.before.isInDatabase ? kSumsSize : 0);
}

// A record up to its delta or image.
std::vector<std::uint8_t> HeadOf(const NewLogEntry& entry) {
  std::vector<std::uint8_t> head(static_cast<std::size_t>(HeadSize(entry)));
  std::uint16_t flags = entry.isWhole ? kRecordIsWhole : 0;
  if (entry.isFirst) flags |= kRecordIsFirst;
  if (head.size() > kRecordHeadSize) {
    flags |= kRecordIsInDatabase;
    PutSums(std::span(head).subspan(kRecordHeadSize), entry.before);
  }
  PutLittle<std::uint32_t>(head, 0, entry.number);
  PutLittle<std::uint32_t>(head, kRecordSumOffset, entry.sum);
  PutLittle<std::uint64_t>(head, kRecordPreviousOffset, entry.previous);
  PutLittle<std::uint16_t>(head, kRecordDeltaSizeOffset, static_cast<std::uint16_t>(entry.delta.size()));
  PutLittle<std::uint16_t>(head, kRecordFlagsOffset, flags);
  return head;
}

LogStatement WriteDeltas(File& log, std::uint64_t offset, std::uint64_t chain, PageNumber pageCount,
                         std::span<const NewLogEntry> entries, const PageSource& page) {
  // The length comes before the records, so they are counted before the first is written.
  std::uint64_t recordsSize = 0;
  for (const NewLogEntry& entry : entries)
    recordsSize += HeadSize(entry) + (entry.isWhole ? kPageSize : entry.delta.size());
  LogStatement written{offset + DeltasSize(recordsSize), pageCount, 0, {}};
  SummingWriter writer(log, offset, DeltasSize(recordsSize), chain);
  writer.Put(HeaderOf(kDeltasMagic, entries.size(), pageCount, recordsSize, chain));
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const NewLogEntry& entry = entries[i];
    const std::uint64_t at = writer.Offset();
    // Put in one piece, as a reader sums each record as a whole.
    std::vector<std::uint8_t> record = HeadOf(entry);
    LogEntry told{.number = entry.number, .previous = entry.previous, .sum = entry.sum};
    if (entry.isFirst) told.before = entry.before;
    (entry.isWhole ? told.image : told.delta) = entry.isWhole ? at + record.size() : at;
    const std::span<const std::uint8_t> bytes = entry.isWhole ? page(i) : std::span(entry.delta);
    record.insert(record.end(), bytes.begin(), bytes.end());
    writer.Put(record);
    written.entries.push_back(told);
  }
  written.checksum = writer.Sum();
  writer.Finish();
  return written;
}

}  // namespace

LogStatement WriteLogStatement(File& log, std::uint64_t offset, std::uint64_t chain, PageNumber pageCount,
                               std::span<const NewLogEntry> entries, const PageSource& page) {
  // Also in a log that takes deltas: without a delta there is nothing that records could say better.
  const bool areWhole = std::all_of(entries.begin(), entries.end(), [](const auto& entry) { return entry.isWhole; });
  return areWhole ? WriteWholePages(log, offset, chain, pageCount, entries, page)
                  : WriteDeltas(log, offset, chain, pageCount, entries, page);
}

}  // namespace tavi::access
