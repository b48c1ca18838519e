#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "access/file/FileSystem.h"
#include "access/file/LogHeader.h"
#include "access/file/Page.h"

namespace tavi::access {

// What has changed in a page, as bytes: pieces back to back, each at another place of the page.
//
//   offset  size    meaning
//   0x00    2       where in the page the piece lies, little-endian as all numbers here
//   0x02    2       its length, at least 1; 0x8000 added: it lay elsewhere in the page before
//   0x04    length  its bytes; in a piece that lay elsewhere only 2 bytes, the place where it lay
//
// Example, an entry of 2 bytes (aa bb) put in at 0x1F0, before 0x40 bytes that move up, and a count at 0x0C that grows:
//   0c 00 01 00 06   f0 01 02 00 aa bb   f2 01 40 80 f0 01

/// What leads from one content of a page to another; nothing when they are the same.
[[nodiscard]] std::vector<std::uint8_t> DeltaBetween(std::span<const std::uint8_t, kPageSize> before,
                                                     std::span<const std::uint8_t, kPageSize> after);
/// Whether any bytes are a delta, whose pieces lie in the page.
[[nodiscard]] bool IsDelta(std::span<const std::uint8_t> bytes);
/// Makes the page what it is after the delta, which must be one.
void ApplyDelta(std::span<const std::uint8_t> delta, std::span<std::uint8_t, kPageSize> page);

/// What a statement in the log says of one page, without its bytes.
struct LogEntry {
  PageNumber number = 0;
  /// The page's content in the database file; there at least when the page is logged for the first time.
  std::optional<PageSums> before = {};
  /// Where its image lies in the log, 0 when the statement tells what has changed.
  std::uint64_t image = 0;
  /// Where the record with the delta lies, 0 when there is an image.
  std::uint64_t delta = 0;
  /// Where the record with the delta before that one lies.
  std::uint64_t previous = 0;
  /// Checksum of the page after the delta.
  std::uint32_t sum = 0;
};

/// A whole statement in the log.
struct LogStatement {
  std::uint64_t end = 0;
  PageNumber pageCount = 0;
  std::uint64_t checksum = 0;
  std::vector<LogEntry> entries;
};

/// Reads the statement at an offset of a log of so many bytes. Nothing where none stands whose numbers fit together and
/// whose checksums are right; that the entries fit what the log says before is for the caller to see.
[[nodiscard]] std::optional<LogStatement> ReadLogStatement(File& log, std::uint64_t offset, std::uint64_t size,
                                                           std::uint64_t chain);

/// A delta as it stands in the log.
struct LoggedDelta {
  std::uint64_t previous = 0;
  std::vector<std::uint8_t> bytes;
};
/// Reads the record at an offset of a log whose statements end at `end`.
[[nodiscard]] LoggedDelta ReadLoggedDelta(File& log, std::uint64_t offset, std::uint64_t end);

/// A page as a statement is to tell it.
struct NewLogEntry {
  PageNumber number = 0;
  PageSums before;
  bool isFirst = true;
  /// A delta and what belongs to it; a whole page has none of them.
  bool isWhole = true;
  std::vector<std::uint8_t> delta = {};
  std::uint64_t previous = 0;
  std::uint32_t sum = 0;
};
/// The bytes of the page with this index among the entries; called once for each whole page, in order.
using PageSource = std::function<std::span<const std::uint8_t>(std::size_t)>;
/// Writes a statement at an offset and returns it as it would be read. The entries are in ascending order.
[[nodiscard]] LogStatement WriteLogStatement(File& log, std::uint64_t offset, std::uint64_t chain, PageNumber pageCount,
                                             std::span<const NewLogEntry> entries, const PageSource& page);

/// Checksum of a stored page, as deltas prove it.
[[nodiscard]] std::uint32_t SumOfPage(std::span<const std::uint8_t, kPageSize> page);

}  // namespace tavi::access
