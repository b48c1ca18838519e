#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "access/file/FormatIndexes.h"
#include "access/file/FormatJet3.h"
#include "access/file/FormatRows.h"
#include "access/file/FormatTables.h"

/// The Access (Jet 4) file format in numbers: every page type, offset, size, flag and limit, in the order of the pages
/// and of the fields in them. Here is what concerns all pages, and the header; the files included hold the other kinds
/// of pages. No other file holds a literal place of the format.
///
/// Units: "Offset" constants are byte offsets from the start of what the namespace describes; "Size" constants are
/// bytes; integers in the file are little-endian except in index entries. Where a field's width is not in its comment
/// it is the one written as [n] (bytes).
namespace tavi::access::format {

// ---------------------------------------------------------------------------------------------------------------------
// All pages
// ---------------------------------------------------------------------------------------------------------------------

/// Byte 0 of a page. Freed pages keep their content, so the type says nothing about whether a page is in use.
namespace page_type {
inline constexpr std::uint8_t kHeader = 0x00;                  // page 0 only; elsewhere a page that was never written
inline constexpr std::uint8_t kData = 0x01;                    // table rows, long values ("LVAL"), usage maps
inline constexpr std::uint8_t kTableDefinition = 0x02;         // TDEF
inline constexpr std::uint8_t kIndexNode = 0x03;               // index page above others
inline constexpr std::uint8_t kIndexLeaf = 0x04;               // index page with entries of rows
inline constexpr std::uint8_t kUsageBitmap = 0x05;             // bitmap page of a reference usage map
inline constexpr std::uint8_t kDroppedTableDefinition = 0x08;  // TDEF page whose table was dropped
inline constexpr std::uint8_t kReleasedData = 0x09;            // data page that was emptied and released
}  // namespace page_type

/// Bits of masks and maps.
inline constexpr std::uint32_t kBitsPerByte = 8;

inline constexpr std::size_t kPageTypeOffset = 0;  // [1] one of page_type
inline constexpr std::size_t kPageMarkOffset = 1;  // [1] kPageMark on every page but page 0
inline constexpr std::uint8_t kPageMark = 0x01;
inline constexpr std::size_t kPageFreeBytesOffset = 2;  // [2] free bytes, on data, TDEF and index pages

/// Pages with a fixed place.
inline constexpr std::uint32_t kHeaderPage = 0;
inline constexpr std::uint32_t kGlobalMapPage = 1;
inline constexpr std::uint8_t kGlobalFreeMapRow = 0;         // bit = 1: the page is free
inline constexpr std::uint8_t kGlobalSecondMapRow = 1;       // always empty
inline constexpr std::uint32_t kObjectsTablePage = 2;        // TDEF of MSysObjects
inline constexpr std::uint32_t kAcesTablePage = 3;           // TDEF of MSysACEs
inline constexpr std::uint32_t kQueriesTablePage = 4;        // TDEF of MSysQueries
inline constexpr std::uint32_t kRelationshipsTablePage = 5;  // TDEF of MSysRelationships

/// The file never grows past 2 GB: 524,288 pages of 4096 bytes.
inline constexpr std::uint32_t kMaximumPageCount = 524288;

// ---------------------------------------------------------------------------------------------------------------------
// Page 0: the database header
// ---------------------------------------------------------------------------------------------------------------------

namespace header {
inline constexpr std::size_t kMagicOffset = 0x000;  // [4] page type 0, then 1, 0, 0
inline constexpr std::array<std::uint8_t, 4> kMagic = {0x00, 0x01, 0x00, 0x00};
inline constexpr std::size_t kEngineNameOffset = 0x004;  // [16] NUL-padded
inline constexpr std::size_t kEngineNameSize = 16;
inline constexpr char kEngineNameJet[] = "Standard Jet DB";
inline constexpr char kEngineNameAce[] = "Standard ACE DB";    // Access 2007 and later
inline constexpr char kEngineNameMoney[] = "MSISAM Database";  // Microsoft Money
inline constexpr std::size_t kVersionOffset = 0x014;           // [4] only the first byte counts
inline constexpr std::uint8_t kVersionJet3 = 0;
inline constexpr std::uint8_t kVersionJet4 = 1;
inline constexpr std::size_t kGlobalFreeMapOffset = 0x018;       // [4] row pointer, page 1 row 0
inline constexpr std::size_t kGlobalSecondMapOffset = 0x01C;     // [4] row pointer, page 1 row 1
inline constexpr std::size_t kObjectsTableOffset = 0x020;        // [4] page 2
inline constexpr std::size_t kAcesTableOffset = 0x024;           // [4] page 3
inline constexpr std::size_t kQueriesTableOffset = 0x028;        // [4] page 4
inline constexpr std::size_t kRelationshipsTableOffset = 0x02C;  // [4] page 5
inline constexpr std::size_t kJet3SortOrderOffset = 0x03A;       // [2] zero in Jet 4
inline constexpr std::size_t kCodePageOffset = 0x03C;            // [2] ANSI code page of the creating machine
inline constexpr std::uint16_t kCodePage1252 = 1252;
inline constexpr std::size_t kDatabaseKeyOffset = 0x03E;  // [4] 0 = plain pages, else pages >= 1 are RC4-encoded
inline constexpr std::size_t kPasswordOffset = 0x042;     // [40] UTF-16LE, XOR-ed with the date mask
inline constexpr std::size_t kPasswordSize = 40;
inline constexpr std::size_t kJet3PasswordSize = 20;      // single-byte characters, no date mask
inline constexpr std::size_t kBuildNumberOffset = 0x06A;  // [2] build of the engine that made the file
inline constexpr std::size_t kSortOrderOffset = 0x06E;    // [4] default text sort order: u16 LCID, u8 0, u8 version
inline constexpr std::size_t kSortOrderSize = 4;
inline constexpr std::size_t kCreationDateOffset = 0x072;  // [8] f64 days; the password and SID masks depend on it
inline constexpr std::size_t kConstantOffset = 0x098;      // [4] kConstant; the page is plain from here on
inline constexpr std::uint32_t kConstant = 1620;
inline constexpr std::size_t kVersionTextOffset = 0x09C;  // [4] "4.0" NUL
inline constexpr std::array<std::uint8_t, 4> kVersionText = {0x34, 0x2E, 0x30, 0x00};
inline constexpr std::size_t kCommitBytesOffset = 0xE00;  // [512] one u16 per user slot
inline constexpr std::size_t kCommitSlotCount = 256;
inline constexpr std::array<std::uint8_t, 2> kCommitSlotUnused = {0x00, 0x01};
inline constexpr std::array<std::uint8_t, 2> kCommitSlotUsedOnce = {0x01, 0x01};
/// Bytes 0x18-0x97 are XOR-ed with the RC4 key stream of kMaskKey (stored little-endian: C7 DA 39 6B).
inline constexpr std::size_t kMaskOffset = 0x018;
inline constexpr std::size_t kMaskSize = 128;
inline constexpr std::size_t kJet3MaskSize = 126;
inline constexpr std::uint32_t kMaskKey = 0x6B39DAC7;
}  // namespace header

// ---------------------------------------------------------------------------------------------------------------------
// The lock file beside an open database (.ldb)
// ---------------------------------------------------------------------------------------------------------------------

namespace lock_file {
/// An array of slots, one for each user; the entry stays when its user has gone.
inline constexpr std::size_t kNameSize = 32;  // computer name, then user name; bytes up to a zero
inline constexpr std::size_t kSlotSize = 64;
inline constexpr std::size_t kMaximumUsers = 255;
/// A user who is there holds a lock on this byte plus the slot's number; the file is never that long.
inline constexpr std::uint64_t kFirstUserLock = 0x10000001;
}  // namespace lock_file

}  // namespace tavi::access::format
