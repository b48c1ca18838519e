#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>

#include "access/file/FileSystem.h"
#include "access/file/LogLayout.h"
#include "access/file/Page.h"

namespace tavi::access {

/// Checksums of a page as the database file holds it, one for each part of it that a disk writes whole or not at all.
struct PageSums {
  static constexpr std::size_t kSectorSize = 512;
  static constexpr std::size_t kSectors = kPageSize / kSectorSize;

  /// False for a page that the database file does not have.
  bool isInDatabase = false;
  std::array<std::uint32_t, kSectors> sectors{};

  [[nodiscard]] static std::uint32_t OfSector(std::span<const std::uint8_t> sector);
  [[nodiscard]] static PageSums Of(std::span<const std::uint8_t> stored);
  bool operator==(const PageSums&) const = default;
};

/// A generation of a database file, as the log that belongs to it remembers it: no other has all of this. A generation
/// begins when a checkpoint, or another program, has written the file.
struct LogOwner {
  /// Of files whose content is not known yet checksums of so many pages are kept, from the first one on evenly over the
  /// file.
  static constexpr std::size_t kWitnesses = 64;

  std::uint64_t size = 0;
  /// When it was changed last; every checkpoint gives other times.
  FileTimes times;
  /// What tells the file from others on its disk.
  std::uint64_t fileNumber = 0;
  /// Of all its pages; 0 for a file that has not been read through for it.
  std::uint64_t contentSum = 0;
  /// 0 for a file whose content is known.
  std::array<std::uint32_t, kWitnesses> witnesses{};

  /// Reads a file of up to `largestRead` bytes through.
  [[nodiscard]] static LogOwner Of(File& database, std::uint64_t largestRead = ~std::uint64_t{0});

  /// The sums that stand in for a page that is not to be read, null for a page that is.
  using KnownPages = std::function<const PageSums*(PageNumber)>;
  /// The sum of the content of the file's first `size` bytes, which it must have. It does not depend on the order of
  /// the pages, and counts each with its number.
  [[nodiscard]] static std::uint64_t ContentSum(File& database, std::uint64_t size, const KnownPages& known);
  /// What the pages from `first` to the one before `end` add to that sum.
  [[nodiscard]] static std::uint64_t ContentSumOf(File& database, PageNumber first, PageNumber end,
                                                  const KnownPages& known);

  /// The page whose checksum is the witness `index`, in a file of the size.
  [[nodiscard]] static PageNumber WitnessPage(std::size_t index, std::uint64_t size);
  [[nodiscard]] static std::uint32_t WitnessSum(File& database, PageNumber page);
  bool operator==(const LogOwner&) const = default;
};

/// Whether two stamps are of one moment, on file systems too that keep it less exactly than they first tell it.
[[nodiscard]] bool IsSameMoment(std::int64_t remembered, std::int64_t now);

/// The header of a log file with its marks. The Mark... functions write what they change into the file.
class LogHeader {
 public:
  LogHeader() = default;
  /// A new header, with a salt that `older` does not have.
  static LogHeader Begin(const LogHeader& older, const LogOwner& owner, std::uint64_t logNumber);
  /// What a shorter file does not have is 0.
  static LogHeader ReadFrom(File& log);
  void WriteTo(File& log) const;

  /// True when it was never written to its end, whatever marks are there: a start of ours, or nothing, and then zeros.
  [[nodiscard]] bool IsUnfinished() const;
  /// False when it is no header of this layout, or a damaged one.
  [[nodiscard]] bool IsValid() const;
  /// The version of a layout that is later than this one, of which nothing else is known; nothing for any other bytes.
  [[nodiscard]] std::optional<std::uint32_t> LaterVersion() const;
  /// Whether statements may be appended that tell what has changed in a page.
  [[nodiscard]] bool TakesDeltas() const;
  /// Whether both begin the same log; marks do not count.
  [[nodiscard]] bool IsOfSameLog(const LogHeader& other) const;

  [[nodiscard]] std::uint64_t Salt() const;
  [[nodiscard]] std::uint64_t LogNumber() const;
  [[nodiscard]] LogOwner Owner() const;

  /// The offset in the applying mark, nothing when there is none.
  [[nodiscard]] std::optional<std::uint64_t> Applying() const;
  [[nodiscard]] bool IsApplied() const;
  [[nodiscard]] bool IsDoubtful() const;
  /// The content of the database when the log was begun; nothing while it is not known.
  [[nodiscard]] std::optional<std::uint64_t> Content() const;
  void MarkContent(File& log, std::uint64_t sum);
  void MarkApplying(File& log, std::uint64_t end);
  void MarkApplied(File& log);
  /// Does nothing in a file without a header, or where it cannot write.
  static void MarkDoubtful(File& log);

 private:
  [[nodiscard]] bool IsWhole() const;

  std::array<std::uint8_t, log_layout::kHeaderSize> bytes_{};
};

}  // namespace tavi::access
