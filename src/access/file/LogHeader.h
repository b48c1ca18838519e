#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "access/file/FileSystem.h"
#include "access/file/LogOwner.h"

namespace tavi::access {

// The redo log: a file beside the database, <database path>.redo, that holds the pages of finished statements until a
// checkpoint has brought them into the database. All integers are little-endian.
//
//   Log header, 384 bytes at offset 0
//   offset  size  meaning
//   0x00    8     "TAVIREDO"
//   0x08    4     version of this layout, 2
//   0x0C    4     bytes of a page, 4096
//   0x10    8     salt: another number for each log; seeds the checksums, so that stale bytes are never taken for new
//   0x18    8     size of the database file in bytes when the log was begun
//   0x20    8     when it had been written last then, in nanoseconds since 1970
//   0x28    8     number of the database file on its disk, 0 when the system tells none
//   0x30    8     number of the log file on its disk, 0 when the system tells none
//   0x38    8     content: sum, modulo 2^64, over all pages of the database file then, of the checksum of the page's
//                 eight sector checksums (below), seed = its number; 0 for a file of more than 16 MiB
//   0x40    256   witnesses: in such a file checksums [4] of 64 of its pages, of page 0 first; else 0
//   0x140   8     checksum of bytes 0x00-0x13F, seed 0; at this place in later layouts too
//
//   Marks, all 0 at first
//   0x148   8     applying: offset of the log's end when a checkpoint began to write the database
//   0x150   8     checksum of the 8 bytes before, seed = salt
//   0x158   8     applied: checksum of the 16 bytes before, seed = salt; written when the database has been flushed
//   0x160   8     doubtful: not 0 when a flush of the log has failed
//   0x168   24    0
//
//   From offset 0x180 on: statements, back to back. A statement with n pages, 40 + n x (40 + 4096) bytes:
//   +0x00   4     "STMT"
//   +0x04   4     n, at least 1
//   +0x08   4     number of pages of the database after the statement, at most n more than before
//   +0x0C   4     0
//   +0x10   8     chain: checksum of the statement before (of the first one: the salt)
//   +0x18   8     0
//   +0x20   40 n  directory: for each page its number [4], 1 when the database file had it when it was first logged,
//                 else 0 [4], and then the checksums of the eight sectors of 512 bytes that the file had there [8 x 4]
//   then 4096 n   images of the pages as they are to be stored (encoded, in an encoded database), in directory order
//   then 8        checksum of the statement: header, directory, and each image, each seeded with the result before; the
//                 header with the chain
//
// Example, a log with one statement that changes page 6 of a database of 16 pages (checksums written as c1 ..):
//   0000  54 41 56 49 52 45 44 4f 02 00 00 00 00 10 00 00   "TAVIREDO", version 2, 4096
//   0010  s1 s2 s3 s4 s5 s6 s7 s8 00 00 01 00 00 00 00 00   salt, 65,536 bytes
//   0020  t1 t2 t3 t4 t5 t6 t7 t8 2b 1a 00 00 00 00 00 00   last written, file 6699
//   0030  2c 1a 00 00 00 00 00 00 f1 f2 f3 f4 f5 f6 f7 f8   the log is file 6700; content
//   0040  00 00 00 00 ..                                    no witnesses
//   0140  c1 c2 c3 c4 c5 c6 c7 c8 00 00 00 00 00 00 00 00   header checksum; no checkpoint has begun
//   0180  53 54 4d 54 01 00 00 00 10 00 00 00 00 00 00 00   "STMT", 1 page, 16 pages after it
//   0190  s1 s2 s3 s4 s5 s6 s7 s8 00 00 00 00 00 00 00 00   chain = salt
//   01a0  06 00 00 00 01 00 00 00 b1 b2 b3 b4 ..            page 6, checksums of what the database file has there
//   01c8  01 01 ..                                          4096 bytes of page 6
//   11c8  d1 d2 d3 d4 d5 d6 d7 d8                           statement checksum; the end is at 0x11d0
//
// Which statements count: the longest run from 0x180 on in which every chain and checksum is right. What follows is the
// torn end of a statement that was not finished; it does not count and the next one is written over it. None counts in
// a log that is marked as applied: the database has them all, and other programs may have changed it since.
//
// What is durable when: a statement is appended, and a flush begins soon after (LogFlush), or is over before the
// statement returns. A checkpoint sets the mark and flushes the log before it touches the database, and flushes the
// database before the log goes; so whenever the applying mark is there and the run reaches the offset in it, the
// database may hold any mixture of old and new sectors, and the log holds all new pages. While it is absent the
// database is as it was when the log was begun.
//
// Which database file the log belongs to: the one that has the content it had when the log was begun, so that a file
// that was touched, or copied or moved together with its log, keeps it. Each sector of each logged page must be as the
// directory says, or, under the mark, as in an image of that page. The other pages must be as they were: they are if
// number, size and last change of the file are, and the log's own number (without the mark; a checkpoint changes them);
// else if the content is, with the directory's checksums for the logged pages, which may be old or new by sectors.
// A file of more than 16 MiB is known by number, last change and witnesses. A log that has another number than its
// header says was copied or moved, presumably with its file; then that file is known by its witnesses alone. Under the
// mark last change and size say nothing, and witnesses only where their pages are not logged.
//
// After a flush that failed the system may have forgotten what it could not write, and a later flush that succeeds says
// nothing about it: the log may have holes that show only after a power failure. It is doubtful then. Nothing is
// appended to it before a checkpoint, which writes it once more from its start before it flushes it.
namespace log_layout {
inline constexpr std::size_t kHeaderSize = 0x180;
inline constexpr std::uint32_t kStatementMagic = 0x544D5453;  // "STMT"
inline constexpr std::size_t kStatementCountOffset = 0x04;
inline constexpr std::size_t kStatementPageCountOffset = 0x08;
inline constexpr std::size_t kStatementChainOffset = 0x10;
inline constexpr std::size_t kStatementHeaderSize = 0x20;
inline constexpr std::size_t kEntryIsInDatabaseOffset = 4;
inline constexpr std::size_t kEntrySumsOffset = 8;
inline constexpr std::size_t kSumSize = 4;
inline constexpr std::size_t kEntrySize = 40;
inline constexpr std::size_t kChecksumSize = 8;
/// Bytes that are read or written at once.
inline constexpr std::size_t kChunkSize = std::size_t{64} * kPageSize;

constexpr std::uint64_t StatementSize(std::uint64_t count) {
  return kStatementHeaderSize + count * (kEntrySize + kPageSize) + kChecksumSize;
}
}  // namespace log_layout

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
  /// Whether both begin the same log; marks do not count.
  [[nodiscard]] bool IsOfSameLog(const LogHeader& other) const;

  [[nodiscard]] std::uint64_t Salt() const;
  [[nodiscard]] std::uint64_t LogNumber() const;
  [[nodiscard]] LogOwner Owner() const;

  /// The offset in the applying mark, nothing when there is none.
  [[nodiscard]] std::optional<std::uint64_t> Applying() const;
  [[nodiscard]] bool IsApplied() const;
  [[nodiscard]] bool IsDoubtful() const;
  void MarkApplying(File& log, std::uint64_t end);
  void MarkApplied(File& log);
  /// Does nothing in a file without a header, or where it cannot write.
  static void MarkDoubtful(File& log);

 private:
  [[nodiscard]] bool IsWhole() const;

  std::array<std::uint8_t, log_layout::kHeaderSize> bytes_{};
};

}  // namespace tavi::access
