#pragma once

#include <cstddef>
#include <cstdint>

#include "access/file/Page.h"

// The redo log: a file beside the database, <database path>.redo, that holds what finished statements have made of its
// pages until a checkpoint has brought them into the database. All integers are little-endian.
//
//   Log header, 384 bytes at offset 0
//   offset  size  meaning
//   0x00    8     "TAVIREDO"
//   0x08    4     version of this layout, 3
//   0x0C    4     bytes of a page, 4096
//   0x10    8     salt: another number for each log; seeds the checksums, so that stale bytes are never taken for new
//   0x18    8     size of the database file in bytes when the log was begun
//   0x20    8     when it had been written last then, in nanoseconds since 1970
//   0x28    8     number of the database file on its disk, 0 when the system tells none
//   0x30    8     number of the log file on its disk, 0 when the system tells none
//   0x38    8     content: sum, modulo 2^64, over all pages of the database file then, of the checksum of the page's
//                 eight sector checksums (below), seed = its number; 0 when it was too large to be read at once
//   0x40    256   witnesses: in such a file checksums [4] of 64 of its pages, of page 0 first; else 0
//   0x140   8     checksum of bytes 0x00-0x13F, seed 0; at this place in later layouts too
//
//   Marks, all 0 at first
//   0x148   8     applying: offset of the log's end when a checkpoint began to write the database
//   0x150   8     checksum of the 8 bytes before, seed = salt
//   0x158   8     applied: checksum of the 16 bytes before, seed = salt; written when the database has been flushed
//   0x160   8     doubtful: not 0 when a flush of the log has failed
//   0x168   8     content as above of a file that was too large, written when it has been read, at the latest before
//   the
//                 applying mark; the logged pages counted by what stood there before
//   0x170   8     checksum of the 8 bytes before, seed = salt
//   0x178   8     when the database file had been changed last, by the system's own clock, when the log was begun; 0
//                 where the system does not tell, and in logs of an earlier version
//
//   From offset 0x180 on: statements, back to back, each in one of two forms.
//
//   A statement of n whole pages, 40 + n x (40 + 4096) bytes:
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
//   A statement of n pages of which at least one is told by what has changed in it:
//   +0x00   32    as above, but "DLTA", and at +0x0C the bytes of all records together [4]
//   +0x20         n records, in ascending order of the pages:
//                 +0x00  4   number of the page
//                 +0x04  4   checksum of the page after the statement; 0 for a whole page
//                 +0x08  8   offset of the record with the delta before this one of the page; 0 where there is none
//                            since its last image, and for a whole page
//                 +0x10  2   bytes of the delta; 0 for a whole page
//                 +0x12  2   1: the page has not been logged before; +2: the database file has it, 8 checksums follow;
//                            +4: a whole page
//                 then   32  checksums of the sectors that the file has there, when flag 2 is set
//                 then       the delta (LogStatement.h) from the page as it was stored before, or the image [4096]
//   then 8        checksum of the statement: header and each record, seeded likewise
//
// Example, a log with one statement that writes 12 34 at 0x10 of page 6 of a database of 16 pages (checksums c1 ..):
//   0000  54 41 56 49 52 45 44 4f 03 00 00 00 00 10 00 00   "TAVIREDO", version 3, 4096
//   0010  s1 s2 s3 s4 s5 s6 s7 s8 00 00 01 00 00 00 00 00   salt, 65,536 bytes
//   0020  t1 t2 t3 t4 t5 t6 t7 t8 2b 1a 00 00 00 00 00 00   last written, file 6699
//   0030  2c 1a 00 00 00 00 00 00 f1 f2 f3 f4 f5 f6 f7 f8   the log is file 6700; content
//   0040  00 00 00 00 ..                                    no witnesses
//   0140  c1 c2 c3 c4 c5 c6 c7 c8 00 00 00 00 00 00 00 00   header checksum; no checkpoint has begun
//   0170  00 00 00 00 00 00 00 00 u1 u2 u3 u4 u5 u6 u7 u8   last changed
//   0180  44 4c 54 41 01 00 00 00 10 00 00 00 3a 00 00 00   "DLTA", 1 page, 16 pages after it, 58 bytes of records
//   0190  s1 s2 s3 s4 s5 s6 s7 s8 00 00 00 00 00 00 00 00   chain = salt
//   01a0  06 00 00 00 a1 a2 a3 a4 00 00 00 00 00 00 00 00   page 6, its checksum afterwards, no delta before
//   01b0  06 00 03 00 b1 b2 b3 b4 ..                        6 bytes of delta; checksums of what the file has there
//   01d4  10 00 02 00 12 34                                 the delta
//   01da  d1 d2 d3 d4 d5 d6 d7 d8                           statement checksum; the end is at 0x1e2
//
// Which statements count: the longest run from 0x180 on in which every chain and checksum is right, and every delta
// follows what the run before it says of its page. What comes after it is the torn end of a statement that was not
// finished; it does not count and the next one is written over it. None counts in a log that is marked as applied: the
// database has them all, and other programs may have changed it since.
//
// What a page is: its last image in the run, changed by the deltas after it; without an image the page of the database
// file, zeros where that has none, changed by all deltas. For this the following holds at all times:
//  1. A delta begins where the record before it in the run ends, so who applies all of them is never on another
//     base than who wrote them. The checksum of the page afterwards proves it to each reader.
//  2. Nothing is written into the database file but images that stand in the log, and these only when the log has been
//     flushed behind them: a checkpoint appends an image of each page that has deltas behind its last one, sets the
//     applying mark, and flushes. So a page without an image in the run is in the file exactly as its sector checksums
//     say, torn nowhere, and a page that may be torn there has its image in the run.
//  3. An image is made of what a reader can trust: a doubtful log (below) is written anew and read through before.
//
// What is durable when: a statement is appended, and a flush begins soon after (LogFlush), or is over before the
// statement returns. A checkpoint flushes the log before it touches the database, and flushes the database before the
// log goes; so whenever the applying mark is there and the run reaches the offset in it, the database may hold any
// mixture of old and new sectors, and the log holds images of all pages concerned. While it is absent the database is
// as it was when the log was begun.
//
// Which database file the log belongs to: the one that has the content it had when the log was begun, so that a file
// that was touched, or copied or moved together with its log, keeps it. Each sector of each logged page must be as it
// was when the page was first logged, or, under the mark, as in an image of that page. The other pages must be as they
// were: the content must, with the checksums of the log for the logged pages, which may be old or new by sectors. While
// programs have the file open, and for who only reads it, they are also when number, size and times of the file are as
// they were, and the log's own number (without the mark; a checkpoint changes them). Who is alone with a log that a
// dead program left reads the content, since times can be set.
//
// Reading a large file would make its first statement wait, so this is done in the background (LogContent) while it has
// the times of the header, which it has until a checkpoint. Where the writer died before, the file must have its
// number, both times and the witnesses; where the system tells the time of writing only, this and the witnesses, and
// its number while the log has the number that its header says; else both were copied or moved.
//
// After a flush that failed the system may have forgotten what it could not write, and a later flush that succeeds says
// nothing about it: the log may have holes that show only after a power failure. It is doubtful then. Nothing is
// appended to it before a checkpoint, which writes it once more from its start before it flushes it.
//
// Logs of version 2, which an earlier version of this program left behind, differ in that number and have whole pages
// only. They are read like others, and nothing else is appended to them: that version may be using the file too.
namespace tavi::access::log_layout {
inline constexpr std::uint32_t kVersion = 3;
inline constexpr std::uint32_t kVersionOfWholePages = 2;
inline constexpr std::size_t kHeaderSize = 0x180;

inline constexpr std::uint32_t kWholePagesMagic = 0x544D5453;  // "STMT"
inline constexpr std::uint32_t kDeltasMagic = 0x41544C44;      // "DLTA"
inline constexpr std::size_t kStatementCountOffset = 0x04;
inline constexpr std::size_t kStatementPageCountOffset = 0x08;
inline constexpr std::size_t kStatementRecordsSizeOffset = 0x0C;
inline constexpr std::size_t kStatementChainOffset = 0x10;
inline constexpr std::size_t kStatementHeaderSize = 0x20;
inline constexpr std::size_t kChecksumSize = 8;

inline constexpr std::size_t kEntryIsInDatabaseOffset = 4;
inline constexpr std::size_t kEntrySumsOffset = 8;
inline constexpr std::size_t kSumSize = 4;
inline constexpr std::size_t kSumsSize = 32;
inline constexpr std::size_t kEntrySize = 40;

inline constexpr std::size_t kRecordSumOffset = 0x04;
inline constexpr std::size_t kRecordPreviousOffset = 0x08;
inline constexpr std::size_t kRecordDeltaSizeOffset = 0x10;
inline constexpr std::size_t kRecordFlagsOffset = 0x12;
inline constexpr std::uint16_t kRecordIsFirst = 1;
inline constexpr std::uint16_t kRecordIsInDatabase = 2;
inline constexpr std::uint16_t kRecordIsWhole = 4;
inline constexpr std::size_t kRecordHeadSize = 0x14;

/// A longer delta gives way to the whole page.
inline constexpr std::size_t kLongestDelta = kPageSize / 2;
/// As many deltas of a page may follow each other; then an image comes, so that nobody reads many more to know the
/// page.
inline constexpr std::uint32_t kMostDeltas = 4096;
/// A statement that changes more pages logs them whole: so much at once is near the next checkpoint, which needs
/// images.
inline constexpr std::size_t kMostPagesByDeltas = 1024;
/// Bytes that are read or written at once.
inline constexpr std::size_t kChunkSize = std::size_t{64} * kPageSize;

/// Bytes of a statement of so many whole pages.
constexpr std::uint64_t WholePagesSize(std::uint64_t count) {
  return kStatementHeaderSize + count * (kEntrySize + kPageSize) + kChecksumSize;
}
/// Bytes of a statement whose records have so many bytes.
constexpr std::uint64_t DeltasSize(std::uint64_t recordsSize) {
  return kStatementHeaderSize + recordsSize + kChecksumSize;
}
}  // namespace tavi::access::log_layout
