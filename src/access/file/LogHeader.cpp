#include "access/file/LogHeader.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <random>
#include <vector>

#include "access/file/Bytes.h"
#include "platform/values/Error.h"

// Which database file a log belongs to, and the header in which it says so. The first part of the header is written
// once, with a checksum over it; the marks behind it are written later, one at a time, with checksums that are seeded
// with the salt, so that none counts which was not written whole, or which is left of an older log. Only the mark of
// doubt has none: whatever stands there counts.

namespace tavi::access {

namespace {

constexpr unsigned kUpperHalf = 32;
constexpr std::int64_t kCoarseStep = 10'000'000;   // the finest of the coarse file systems, in nanoseconds
constexpr std::int64_t kCoarsest = 2'000'000'000;  // the coarsest
constexpr PageNumber kPagesAtOnce = 64;

/// Half a checksum serves for a sector of 512 bytes, of which a log has eight for each page.
std::uint32_t Folded(std::uint64_t checksum) {
  return static_cast<std::uint32_t>(checksum ^ (checksum >> kUpperHalf));
}

/// What one page adds to the sum of a file's content. It is made of the page's sector sums, so that the sums that a log
/// has of pages can stand in for pages that have changed since; and of its number, so that pages cannot change places.
std::uint64_t Share(PageNumber number, const PageSums& sums) {
  std::array<std::uint8_t, PageSums::kSectors * sizeof(std::uint32_t)> bytes{};
  for (std::size_t i = 0; i < PageSums::kSectors; ++i) PutLittle(bytes, i * sizeof(std::uint32_t), sums.sectors[i]);
  return Checksum(number, bytes);
}

}  // namespace

std::uint32_t PageSums::OfSector(std::span<const std::uint8_t> sector) {
  return Folded(Checksum(0, sector));
}

PageSums PageSums::Of(std::span<const std::uint8_t> stored) {
  PageSums sums;
  sums.isInDatabase = true;
  for (std::size_t i = 0; i < kSectors; ++i) sums.sectors[i] = OfSector(stored.subspan(i * kSectorSize, kSectorSize));
  return sums;
}

LogOwner LogOwner::Of(File& database, std::uint64_t largestRead) {
  LogOwner owner;
  owner.size = database.Size();
  owner.times = database.Times();
  owner.fileNumber = database.Identity().number;
  if (owner.size <= largestRead) {
    owner.contentSum = ContentSum(database, owner.size, [](PageNumber) { return nullptr; });
    return owner;
  }
  for (std::size_t i = 0; i < kWitnesses; ++i) owner.witnesses[i] = WitnessSum(database, WitnessPage(i, owner.size));
  return owner;
}

std::uint64_t LogOwner::ContentSum(File& database, std::uint64_t size, const KnownPages& known) {
  return ContentSumOf(database, 0, static_cast<PageNumber>(size / kPageSize), known);
}

std::uint64_t LogOwner::ContentSumOf(File& database, PageNumber first, PageNumber end, const KnownPages& known) {
  std::uint64_t sum = 0;
  std::vector<std::uint8_t> chunk;
  while (first < end) {
    const PageNumber count = std::min(kPagesAtOnce, end - first);
    chunk.resize(count * kPageSize);
    database.ReadAt(std::uint64_t{first} * kPageSize, chunk);
    for (PageNumber i = 0; i < count; ++i, ++first) {
      const PageSums* sums = known(first);
      sum += Share(first, sums != nullptr ? *sums : PageSums::Of(std::span(chunk).subspan(i * kPageSize, kPageSize)));
    }
  }
  return sum;
}

// Evenly over the file, whatever its size; the first one is page 0.
PageNumber LogOwner::WitnessPage(std::size_t index, std::uint64_t size) {
  return static_cast<PageNumber>(index * (size / kPageSize) / kWitnesses);
}

std::uint32_t LogOwner::WitnessSum(File& database, PageNumber page) {
  Page stored(page);
  database.ReadAt(std::uint64_t{page} * kPageSize, stored.AllMutable());
  return Folded(Checksum(0, stored.All()));
}

// Some file systems first tell the time of a change exactly, and keep it in steps of 10 milliseconds to 2 seconds. So a
// time that lies on such a step may be the one that was remembered.
bool IsSameMoment(std::int64_t remembered, std::int64_t now) {
  return remembered == now || (now % kCoarseStep == 0 && std::abs(remembered - now) < kCoarsest);
}

using log_layout::kHeaderSize;
using log_layout::kVersion;
using log_layout::kVersionOfWholePages;

namespace {

constexpr std::array<std::uint8_t, 8> kMagic = {'T', 'A', 'V', 'I', 'R', 'E', 'D', 'O'};
constexpr std::size_t kVersionOffset = 0x08;
constexpr std::size_t kPageSizeOffset = 0x0C;
constexpr std::size_t kSaltOffset = 0x10;
constexpr std::size_t kDatabaseSizeOffset = 0x18;
constexpr std::size_t kStampOffset = 0x20;
constexpr std::size_t kDatabaseNumberOffset = 0x28;
constexpr std::size_t kLogNumberOffset = 0x30;
constexpr std::size_t kContentSumOffset = 0x38;
constexpr std::size_t kWitnessesOffset = 0x40;
constexpr std::size_t kWitnessSize = 4;
constexpr std::size_t kChecksumOffset = 0x140;

constexpr std::size_t kMarkOffset = 0x148;
constexpr std::size_t kMarkedSize = 8;
constexpr std::size_t kMarkSize = 16;
constexpr std::size_t kAppliedOffset = 0x158;
constexpr std::size_t kAppliedSize = 8;
constexpr std::size_t kDoubtfulOffset = 0x160;
constexpr std::size_t kDoubtfulSize = 8;
constexpr std::size_t kMarkedContentOffset = 0x168;
constexpr std::size_t kMarkedContentSize = 16;
constexpr std::size_t kChangedOffset = 0x178;

/// From three sources, as each alone may fail: the salt of the log before (never the same again), the clock, and the
/// system's random numbers. 0 stands for "no log".
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

}  // namespace

LogHeader LogHeader::Begin(const LogHeader& older, const LogOwner& owner, std::uint64_t logNumber) {
  LogHeader header;
  std::span<std::uint8_t> bytes = header.bytes_;
  std::copy(kMagic.begin(), kMagic.end(), bytes.begin());
  PutLittle<std::uint32_t>(bytes, kVersionOffset, kVersion);
  PutLittle<std::uint32_t>(bytes, kPageSizeOffset, kPageSize);
  PutLittle<std::uint64_t>(bytes, kSaltOffset, NewSalt(older.Salt()));
  PutLittle<std::uint64_t>(bytes, kDatabaseSizeOffset, owner.size);
  PutLittle<std::uint64_t>(bytes, kStampOffset, static_cast<std::uint64_t>(owner.times.written));
  PutLittle<std::uint64_t>(bytes, kDatabaseNumberOffset, owner.fileNumber);
  PutLittle<std::uint64_t>(bytes, kLogNumberOffset, logNumber);
  PutLittle<std::uint64_t>(bytes, kContentSumOffset, owner.contentSum);
  for (std::size_t i = 0; i < LogOwner::kWitnesses; ++i)
    PutLittle<std::uint32_t>(bytes, kWitnessesOffset + i * kWitnessSize, owner.witnesses[i]);
  PutLittle<std::uint64_t>(bytes, kChecksumOffset, Checksum(0, bytes.first(kChecksumOffset)));
  PutLittle<std::uint64_t>(bytes, kChangedOffset, static_cast<std::uint64_t>(owner.times.changed));
  return header;
}

// Bytes that the file does not have yet are 0, which no valid header is.
LogHeader LogHeader::ReadFrom(File& log) {
  LogHeader header;
  const std::uint64_t size = log.Size();
  log.ReadAt(0, std::span(header.bytes_).first(static_cast<std::size_t>(std::min<std::uint64_t>(size, kHeaderSize))));
  return header;
}

// In one write, marks included: they are zeros in a header that begins.
void LogHeader::WriteTo(File& log) const {
  log.WriteAt(0, bytes_);
}

// A header goes to the file in one write. Where that was torn its start is there, or a part of it, and behind that
// zeros as far as the checksum: such a log never held anything. Marks do not count, as a failing flush may have set
// one.
bool LogHeader::IsUnfinished() const {
  std::array<std::uint8_t, kPageSizeOffset> start{};
  std::copy(kMagic.begin(), kMagic.end(), start.begin());
  const auto version = GetLittle<std::uint32_t>(bytes_, kVersionOffset);
  PutLittle<std::uint32_t>(start, kVersionOffset, version == kVersionOfWholePages ? version : kVersion);
  std::size_t length = kMarkOffset;
  while (length > 0 && bytes_[length - 1] == 0) --length;
  const auto compared = static_cast<std::ptrdiff_t>(std::min(length, start.size()));
  return length < kMarkOffset && std::equal(start.begin(), start.begin() + compared, bytes_.begin());
}

// The same in all layouts from this one on.
bool LogHeader::IsWhole() const {
  const std::span<const std::uint8_t> bytes = bytes_;
  return std::equal(kMagic.begin(), kMagic.end(), bytes.begin()) &&
         Checksum(0, bytes.first(kChecksumOffset)) == GetLittle<std::uint64_t>(bytes, kChecksumOffset);
}

// Everything that the rest of this file takes for granted, so that no other question has to be asked of a valid header.
bool LogHeader::IsValid() const {
  const auto version = GetLittle<std::uint32_t>(bytes_, kVersionOffset);
  return IsWhole() && (version == kVersion || version == kVersionOfWholePages) &&
         GetLittle<std::uint32_t>(bytes_, kPageSizeOffset) == kPageSize && Salt() != 0;
}

// A later version keeps magic, version and checksum where they are; nothing else of it is looked at.
std::optional<std::uint32_t> LogHeader::LaterVersion() const {
  const auto version = GetLittle<std::uint32_t>(bytes_, kVersionOffset);
  if (version <= kVersion || !IsWhole()) return std::nullopt;
  return version;
}

bool LogHeader::TakesDeltas() const {
  return GetLittle<std::uint32_t>(bytes_, kVersionOffset) == kVersion;
}

// Compares all that is written once; the salt in it is what makes two logs differ.
bool LogHeader::IsOfSameLog(const LogHeader& other) const {
  return std::equal(bytes_.begin(), bytes_.begin() + kMarkOffset, other.bytes_.begin());
}

std::uint64_t LogHeader::Salt() const {
  return GetLittle<std::uint64_t>(bytes_, kSaltOffset);
}

std::uint64_t LogHeader::LogNumber() const {
  return GetLittle<std::uint64_t>(bytes_, kLogNumberOffset);
}

LogOwner LogHeader::Owner() const {
  LogOwner owner;
  owner.size = GetLittle<std::uint64_t>(bytes_, kDatabaseSizeOffset);
  owner.times.written = static_cast<std::int64_t>(GetLittle<std::uint64_t>(bytes_, kStampOffset));
  owner.times.changed = static_cast<std::int64_t>(GetLittle<std::uint64_t>(bytes_, kChangedOffset));
  owner.fileNumber = GetLittle<std::uint64_t>(bytes_, kDatabaseNumberOffset);
  owner.contentSum = GetLittle<std::uint64_t>(bytes_, kContentSumOffset);
  for (std::size_t i = 0; i < LogOwner::kWitnesses; ++i)
    owner.witnesses[i] = GetLittle<std::uint32_t>(bytes_, kWitnessesOffset + i * kWitnessSize);
  return owner;
}

// A mark that is torn counts as none: it was not flushed, and the database is untouched then.
std::optional<std::uint64_t> LogHeader::Applying() const {
  const auto mark = std::span<const std::uint8_t>(bytes_).subspan(kMarkOffset);
  const auto end = GetLittle<std::uint64_t>(mark, 0);
  if (end == 0 || GetLittle<std::uint64_t>(mark, kMarkedSize) != Checksum(Salt(), mark.first(kMarkedSize)))
    return std::nullopt;
  return end;
}

// The checksum is over the applying mark, so it is right for that checkpoint only.
bool LogHeader::IsApplied() const {
  const auto mark = std::span<const std::uint8_t>(bytes_).subspan(kMarkOffset, kMarkSize);
  return GetLittle<std::uint64_t>(bytes_, kAppliedOffset) == Checksum(Salt(), mark);
}

// Anything but 0: the mark is written by openers that have just seen the disk fail, and a part of it has to do.
bool LogHeader::IsDoubtful() const {
  return GetLittle<std::uint64_t>(bytes_, kDoubtfulOffset) != 0;
}

std::optional<std::uint64_t> LogHeader::Content() const {
  if (const auto atOnce = GetLittle<std::uint64_t>(bytes_, kContentSumOffset); atOnce != 0) return atOnce;
  const auto content = std::span<const std::uint8_t>(bytes_).subspan(kMarkedContentOffset, kMarkedContentSize);
  const auto sum = GetLittle<std::uint64_t>(content, 0);
  if (GetLittle<std::uint64_t>(content, kMarkedSize) != Checksum(Salt(), content.first(kMarkedSize)))
    return std::nullopt;
  return sum;
}

void LogHeader::MarkContent(File& log, std::uint64_t sum) {
  const auto content = std::span<std::uint8_t>(bytes_).subspan(kMarkedContentOffset, kMarkedContentSize);
  PutLittle<std::uint64_t>(content, 0, sum);
  PutLittle<std::uint64_t>(content, kMarkedSize, Checksum(Salt(), content.first(kMarkedSize)));
  log.WriteAt(kMarkedContentOffset, content);
}

void LogHeader::MarkApplying(File& log, std::uint64_t end) {
  // First the file, then what is known of it: where the write fails no checkpoint has begun for this opener.
  LogHeader marked = *this;
  const auto mark = std::span<std::uint8_t>(marked.bytes_).subspan(kMarkOffset, kMarkSize);
  PutLittle<std::uint64_t>(mark, 0, end);
  PutLittle<std::uint64_t>(mark, kMarkedSize, Checksum(Salt(), mark.first(kMarkedSize)));
  log.WriteAt(kMarkOffset, mark);
  *this = marked;
}

void LogHeader::MarkApplied(File& log) {
  const auto mark = std::span<const std::uint8_t>(bytes_).subspan(kMarkOffset, kMarkSize);
  const auto applied = std::span<std::uint8_t>(bytes_).subspan(kAppliedOffset, kAppliedSize);
  PutLittle<std::uint64_t>(applied, 0, Checksum(Salt(), mark));
  log.WriteAt(kAppliedOffset, applied);
}

void LogHeader::MarkDoubtful(File& log) {
  std::array<std::uint8_t, kDoubtfulSize> mark{};
  PutLittle<std::uint64_t>(mark, 0, 1);
  try {
    if (log.Size() >= log_layout::kHeaderSize) log.WriteAt(kDoubtfulOffset, mark);
  } catch (const Error&) {
    // The others learn it from the system when they flush.
  }
}

}  // namespace tavi::access
