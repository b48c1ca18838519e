#include "access/file/LogOwner.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "access/file/Bytes.h"

namespace tavi::access {

namespace {

constexpr unsigned kUpperHalf = 32;
constexpr std::int64_t kCoarseStep = 10'000'000;   // the finest of the coarse file systems, in nanoseconds
constexpr std::int64_t kCoarsest = 2'000'000'000;  // the coarsest
constexpr std::uint64_t kPagesAtOnce = 64;

std::uint32_t Folded(std::uint64_t checksum) {
  return static_cast<std::uint32_t>(checksum ^ (checksum >> kUpperHalf));
}

// What one page adds to the sum of a file's content.
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

LogOwner LogOwner::Of(File& database) {
  LogOwner owner;
  owner.size = database.Size();
  owner.stamp = database.ModificationStamp();
  owner.fileNumber = database.Identity().number;
  if (owner.IsSummed()) {
    owner.contentSum = ContentSum(database, owner.size, [](PageNumber) { return nullptr; });
    return owner;
  }
  for (std::size_t i = 0; i < kWitnesses; ++i) owner.witnesses[i] = WitnessSum(database, WitnessPage(i, owner.size));
  return owner;
}

std::uint64_t LogOwner::ContentSum(File& database, std::uint64_t size, const KnownPages& known) {
  const std::uint64_t count = size / kPageSize;
  std::uint64_t sum = 0;
  std::vector<std::uint8_t> chunk;
  for (std::uint64_t first = 0; first < count; first += kPagesAtOnce) {
    const std::uint64_t end = std::min(first + kPagesAtOnce, count);
    chunk.resize(static_cast<std::size_t>((end - first) * kPageSize));
    database.ReadAt(first * kPageSize, chunk);
    for (std::uint64_t page = first; page < end; ++page) {
      const auto number = static_cast<PageNumber>(page);
      const auto stored = std::span(chunk).subspan(static_cast<std::size_t>((page - first) * kPageSize), kPageSize);
      const PageSums* sums = known(number);
      sum += Share(number, sums != nullptr ? *sums : PageSums::Of(stored));
    }
  }
  return sum;
}

PageNumber LogOwner::WitnessPage(std::size_t index, std::uint64_t size) {
  return static_cast<PageNumber>(index * (size / kPageSize) / kWitnesses);
}

std::uint32_t LogOwner::WitnessSum(File& database, PageNumber page) {
  Page stored(page);
  database.ReadAt(std::uint64_t{page} * kPageSize, stored.AllMutable());
  return Folded(Checksum(0, stored.All()));
}

bool IsSameMoment(std::int64_t remembered, std::int64_t now) {
  return remembered == now || (now % kCoarseStep == 0 && std::abs(remembered - now) < kCoarsest);
}

}  // namespace tavi::access
