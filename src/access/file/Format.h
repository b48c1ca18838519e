#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// The Access (Jet 4) file format in numbers: every page type, offset, size, flag and limit, in the order of the pages
/// and of the fields in them. No other file holds a literal place of the format.
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
// Data pages (type 01): rows of a table, long values, usage maps
// ---------------------------------------------------------------------------------------------------------------------

namespace data {
inline constexpr std::size_t kFreeBytesOffset = 0x02;  // [2] lowest row offset - (kRowDirectoryOffset + 2 x row count)
inline constexpr std::size_t kOwnerOffset = 0x04;      // [4] TDEF page, or one of the owners below
inline constexpr std::uint32_t kOwnerUsageMaps = 0;    // usage-map pages
inline constexpr std::uint32_t kOwnerGlobalMap = 1;    // page 1
inline constexpr std::uint32_t kOwnerLongValues = 0x4C41564C;  // "LVAL"
inline constexpr std::size_t kStampOffset = 0x08;         // [4] stamp on the first page of a long-value chain, else 0
inline constexpr std::size_t kRowCountOffset = 0x0C;      // [2] entries of the row directory
inline constexpr std::size_t kRowDirectoryOffset = 0x0E;  // 2 bytes for each row
inline constexpr std::size_t kRowEntrySize = 2;
/// Most entries of a row directory: a row number is one byte.
inline constexpr std::size_t kMaximumRowCount = 255;

/// A row-directory entry: the offset of the row's first byte and two flags. Row r ends where row r-1 starts, row 0 at
/// the end of the page.
inline constexpr std::uint16_t kRowOffsetMask = 0x1FFF;  // 4096 (a deleted row 0) must fit
inline constexpr std::uint16_t kRowFlagsMask = 0xC000;
inline constexpr std::uint16_t kRowNormal = 0x0000;
inline constexpr std::uint16_t kRowMoved = 0x4000;        // alone: the first 4 bytes are a row pointer to the moved row
inline constexpr std::uint16_t kRowMovedTarget = 0x8000;  // alone: target of a moved row, not a row of its own
inline constexpr std::uint16_t kRowDeleted = 0xC000;      // both: deleted; its bytes may be gone already

/// Free bytes of a page without rows.
inline constexpr std::size_t kEmptyFreeBytes = 4096 - kRowDirectoryOffset;  // 4082
}  // namespace data

/// A table row (offsets from the start of the row; the trailer is read from its end).
namespace row {
inline constexpr std::size_t kColumnCountOffset = 0;  // [2] the table's id counter when the row was written
inline constexpr std::size_t kColumnCountSize = 2;
inline constexpr std::size_t kFixedAreaOffset = 2;  // fixed columns lie at this + their fixed offset
// Trailer, in file order: padding, EOD [2], variable offsets [2 each, reverse order], variable count [2], null mask.
inline constexpr std::size_t kEndOfDataSize = 2;
inline constexpr std::size_t kVariableOffsetSize = 2;
inline constexpr std::size_t kVariableCountSize = 2;
inline constexpr std::size_t kRowPointerSize = 4;  // what a moved row leaves behind
inline constexpr std::size_t kMinimumSize = 4;     // so that a row pointer always fits
inline constexpr std::size_t kMaximumSize = 4060;  // without long values kept elsewhere
}  // namespace row

/// Text in rows.
namespace text {
inline constexpr std::array<std::uint8_t, 2> kCompressedMark = {0xFF, 0xFE};  // first bytes of a compressed value
inline constexpr std::uint8_t kModeSwitch = 0x00;                             // between compressed and plain segments
inline constexpr std::size_t kMinimumCompressedLength = 3;  // characters; shorter TEXT values stay plain
inline constexpr std::size_t kMaximumLength = 255;          // characters of a TEXT value
inline constexpr std::size_t kMaximumMemoLength = 65535;    // characters, by the user interface
}  // namespace text

/// A NUMERIC value: sign, then the magnitude as four little-endian u32, most significant first.
namespace numeric {
inline constexpr std::size_t kSize = 17;
inline constexpr std::uint8_t kPositive = 0x00;
inline constexpr std::uint8_t kNegative = 0x80;
inline constexpr std::size_t kMagnitudeOffset = 1;
inline constexpr std::size_t kWordCount = 4;
inline constexpr std::uint8_t kMaximumPrecision = 28;
}  // namespace numeric

/// A long value (MEMO, OLE): the descriptor in the row, and LVAL pages (data pages with owner kOwnerLongValues).
namespace long_value {
inline constexpr std::size_t kLengthOffset = 0;     // [4] low 30 bits: data bytes; top 2 bits: form
inline constexpr std::size_t kPointerOffset = 4;    // [4] row pointer to the (first) LVAL row; 0 when inline
inline constexpr std::size_t kStampOffset = 8;      // [4] form chain: equals data::kStampOffset of its first page
inline constexpr std::size_t kDescriptorSize = 12;  // inline data follow
inline constexpr std::uint32_t kLengthMask = 0x3FFFFFFF;
inline constexpr std::uint32_t kFormMask = 0xC0000000;
inline constexpr std::uint32_t kFormInline = 0x80000000;
inline constexpr std::uint32_t kFormSingle = 0x40000000;    // the whole LVAL row
inline constexpr std::uint32_t kFormChain = 0x00000000;     // each LVAL row: pointer to the next [4], data
inline constexpr std::size_t kMaximumInlineSize = 64;       // bytes before compression
inline constexpr std::size_t kMaximumSingleSize = 3801;     // bytes before compression, when writing
inline constexpr std::size_t kMaximumSingleRowSize = 4080;  // what readers accept
inline constexpr std::size_t kChainPointerSize = 4;         // at the start of a chain row; 0 = last
inline constexpr std::size_t kChainRowOffset = 0x14;        // a full chain page: row 0 lies here
inline constexpr std::size_t kChainDataSize = 4072;         // data bytes on a full chain page
}  // namespace long_value

/// Security ids (Owner, SID) are stored masked; with s = masked Admin the others follow by XOR of their second byte.
namespace security {
inline constexpr std::array<std::uint8_t, 2> kAdmin = {0x03, 0x01};  // plain values
inline constexpr std::array<std::uint8_t, 2> kUsers = {0x02, 0x01};
inline constexpr std::array<std::uint8_t, 2> kEngine = {0x02, 0x03};
inline constexpr std::array<std::uint8_t, 2> kCreator = {0x02, 0x04};
}  // namespace security

// ---------------------------------------------------------------------------------------------------------------------
// Table definition pages (type 02)
// ---------------------------------------------------------------------------------------------------------------------

namespace table {
// Page header, on each page of a definition. The definition is the first page whole, followed by what lies behind the
// page header of each further page; all later offsets are offsets in that concatenation.
inline constexpr std::size_t kFreeBytesOffset = 0x02;  // [2] unused bytes of the page - 8, never negative
inline constexpr std::size_t kFreeBytesReserve = 8;
inline constexpr std::size_t kNextPageOffset = 0x04;  // [4] next page of the definition, 0 = last
inline constexpr std::size_t kPageHeaderSize = 8;

// Fixed header.
inline constexpr std::size_t kLengthOffset = 0x08;    // [4] bytes of the whole definition, terminator included
inline constexpr std::size_t kConstantOffset = 0x0C;  // [4] kConstant
inline constexpr std::uint32_t kConstant = 1625;
inline constexpr std::size_t kRowCountOffset = 0x10;             // [4] may disagree with the rows
inline constexpr std::size_t kLastAutonumberOffset = 0x14;       // [4] last value handed out
inline constexpr std::size_t kAutonumberIncrementOffset = 0x18;  // [4] 1 in every table
inline constexpr std::size_t kUnusedOffset = 0x1C;               // [12] garbage; written as 0
inline constexpr std::size_t kUnusedSize = 12;
inline constexpr std::size_t kTypeOffset = 0x28;               // [1] kTypeUser or kTypeSystem
inline constexpr std::uint8_t kTypeUser = 0x4E;                // 'N'
inline constexpr std::uint8_t kTypeSystem = 0x53;              // 'S': the four engine system tables
inline constexpr std::size_t kColumnIdCounterOffset = 0x29;    // [2] columns ever created; never decreases
inline constexpr std::size_t kVariableCountOffset = 0x2B;      // [2] variable columns ever created
inline constexpr std::size_t kColumnCountOffset = 0x2D;        // [2] columns now defined
inline constexpr std::size_t kLogicalIndexCountOffset = 0x2F;  // [4]
inline constexpr std::size_t kRealIndexCountOffset = 0x33;     // [4]
inline constexpr std::size_t kOwnedPagesOffset = 0x37;         // [4] row pointer of the owned-pages map
inline constexpr std::size_t kFreeSpacePagesOffset = 0x3B;     // [4] row pointer of the free-space map
inline constexpr std::size_t kHeaderSize = 0x3F;               // 63

// Then, in this order: real-index slots, column records, column names, real-index definitions, logical-index records,
// logical-index names, long-value map records, terminator. A name is u16 byte length + UTF-16LE.
inline constexpr std::size_t kNameLengthSize = 2;
inline constexpr std::uint16_t kTerminator = 0xFFFF;
inline constexpr std::size_t kTerminatorSize = 2;

inline constexpr std::size_t kMaximumColumnCount = 255;  // over the table's lifetime, dropped ones included
inline constexpr std::size_t kMaximumIndexCount = 32;    // logical, relationship ones included
inline constexpr std::size_t kMaximumNameLength = 64;    // characters
}  // namespace table

/// Real-index slot of a table definition: optimizer statistics.
namespace index_slot {
inline constexpr std::size_t kEntryCountOffset = 0;     // [4] entries at the last build; 0 when created empty
inline constexpr std::size_t kDistinctCountOffset = 4;  // [4] distinct keys, incremented on insert
inline constexpr std::size_t kUnusedOffset = 8;         // [4] 0
inline constexpr std::size_t kSize = 12;
}  // namespace index_slot

/// Column record of a table definition.
namespace column {
inline constexpr std::size_t kTypeOffset = 0;            // [1] column_type
inline constexpr std::size_t kConstantOffset = 1;        // [4] table::kConstant
inline constexpr std::size_t kIdOffset = 5;              // [2] permanent number; bit in the null mask
inline constexpr std::size_t kVariableIndexOffset = 7;   // [2] slot in the row's offset table
inline constexpr std::size_t kOrdinalOffset = 9;         // [2] display position; 0 in system tables
inline constexpr std::size_t kSortOrderOffset = 11;      // [4] u16 LCID, u8 0, u8 version; all but NUMERIC
inline constexpr std::size_t kPrecisionOffset = 11;      // [1] NUMERIC
inline constexpr std::size_t kScaleOffset = 12;          // [1] NUMERIC
inline constexpr std::size_t kFlagsOffset = 15;          // [1] column_flag
inline constexpr std::size_t kExtendedFlagsOffset = 16;  // [1] column_extended_flag
inline constexpr std::size_t kUnusedOffset = 17;         // [4] 0
inline constexpr std::size_t kFixedOffsetOffset = 21;  // [2] from the start of the row's fixed area; variable: garbage
inline constexpr std::size_t kLengthOffset = 23;       // [2] bytes; 0 for MEMO and OLE
inline constexpr std::size_t kSize = 25;
/// Sort order "General (legacy)": LCID 1033, version 0.
inline constexpr std::array<std::uint8_t, 4> kSortOrderGeneral = {0x09, 0x04, 0x00, 0x00};
}  // namespace column

namespace column_type {
inline constexpr std::uint8_t kBoolean = 0x01;
inline constexpr std::uint8_t kByte = 0x02;
inline constexpr std::uint8_t kInteger = 0x03;
inline constexpr std::uint8_t kLong = 0x04;
inline constexpr std::uint8_t kCurrency = 0x05;
inline constexpr std::uint8_t kSingle = 0x06;
inline constexpr std::uint8_t kDouble = 0x07;
inline constexpr std::uint8_t kDate = 0x08;
inline constexpr std::uint8_t kBinary = 0x09;
inline constexpr std::uint8_t kText = 0x0A;
inline constexpr std::uint8_t kOle = 0x0B;
inline constexpr std::uint8_t kMemo = 0x0C;
inline constexpr std::uint8_t kGuid = 0x0F;
inline constexpr std::uint8_t kNumeric = 0x10;
inline constexpr std::uint8_t kFixedBinary = 0x11;  // MSysAccessObjects.Data only, 3992 bytes
inline constexpr std::uint8_t kComplex = 0x12;      // Access 2007 and later
}  // namespace column_type

namespace column_flag {
inline constexpr std::uint8_t kFixed = 0x01;      // stored in the fixed area; decides alone, whatever the type
inline constexpr std::uint8_t kUpdatable = 0x02;  // always set; says nothing about nulls
inline constexpr std::uint8_t kAutonumber = 0x04;
inline constexpr std::uint8_t kSystem = 0x10;      // columns of the four engine system tables
inline constexpr std::uint8_t kSecurityId = 0x20;  // MSysObjects.Owner, MSysACEs.SID
inline constexpr std::uint8_t kAutonumberGuid = 0x40;
inline constexpr std::uint8_t kHyperlink = 0x80;
}  // namespace column_flag

namespace column_extended_flag {
inline constexpr std::uint8_t kCompressed = 0x01;  // Unicode compression of TEXT and MEMO
inline constexpr std::uint8_t kCalculated = 0xC0;  // not in Jet 4
}  // namespace column_extended_flag

/// Real-index definition of a table definition.
namespace real_index {
inline constexpr std::size_t kConstantOffset = 0;  // [4] kConstant
inline constexpr std::uint32_t kConstant = 1923;
inline constexpr std::size_t kColumnsOffset = 4;  // 10 x (u16 column id, u8 order)
inline constexpr std::size_t kColumnSize = 3;
inline constexpr std::size_t kColumnOrderOffset = 2;  // [1] in a column's three bytes
inline constexpr std::size_t kMaximumColumnCount = 10;
inline constexpr std::uint16_t kNoColumn = 0xFFFF;  // id of an unused place; its order is garbage
inline constexpr std::uint8_t kAscending = 0x01;
inline constexpr std::uint8_t kDescending = 0x00;
inline constexpr std::size_t kUsageMapOffset = 34;  // [4] row pointer of the map of the index's pages
inline constexpr std::size_t kRootPageOffset = 38;  // [4] never changes
inline constexpr std::size_t kUnusedOffset = 42;    // [4] garbage; written as 0
inline constexpr std::size_t kFlagsOffset = 46;     // [1] flags below
inline constexpr std::size_t kTailOffset = 47;      // [5] 0
inline constexpr std::size_t kSize = 52;
inline constexpr std::uint8_t kFlagUnique = 0x01;
inline constexpr std::uint8_t kFlagIgnoreNulls = 0x02;
inline constexpr std::uint8_t kFlagRequired = 0x08;
inline constexpr std::uint8_t kFlagAlways = 0x80;
}  // namespace real_index

/// Logical-index record of a table definition. Records and names are in the collation order of the names.
namespace logical_index {
inline constexpr std::size_t kConstantOffset = 0;   // [4] table::kConstant
inline constexpr std::size_t kNumberOffset = 4;     // [4] unique in the table
inline constexpr std::size_t kRealIndexOffset = 8;  // [4] position in the list of real indexes
inline constexpr std::size_t kSideOffset = 12;      // [1] kSide...
inline constexpr std::uint8_t kSideNone = 0;
inline constexpr std::uint8_t kSidePrimary = 1;    // this table is the "one" side
inline constexpr std::uint8_t kSideForeign = 2;    // this table is the "many" side
inline constexpr std::size_t kPartnerOffset = 13;  // [4] index number in the other table
inline constexpr std::uint32_t kNoPartner = 0xFFFFFFFF;
inline constexpr std::size_t kOtherTableOffset = 17;      // [4] TDEF page of the other table, 0 = none
inline constexpr std::size_t kCascadeUpdatesOffset = 21;  // [1] kCascade...
inline constexpr std::size_t kCascadeDeletesOffset = 22;  // [1] kCascade...
inline constexpr std::uint8_t kCascadeNo = 0;
inline constexpr std::uint8_t kCascadeYes = 1;
inline constexpr std::uint8_t kCascadeSetNull = 2;        // deletes only
inline constexpr std::uint8_t kCascadeNotApplicable = 4;  // not a relationship
inline constexpr std::size_t kTypeOffset = 23;            // [1] kType...
inline constexpr std::uint8_t kTypeNormal = 0;
inline constexpr std::uint8_t kTypePrimaryKey = 1;
inline constexpr std::uint8_t kTypeRelationship = 2;
inline constexpr std::size_t kUnusedOffset = 24;  // [4] 0
inline constexpr std::size_t kSize = 28;
}  // namespace logical_index

/// Long-value map record of a table definition, one per MEMO or OLE column.
namespace long_value_maps {
inline constexpr std::size_t kColumnIdOffset = 0;    // [2]
inline constexpr std::size_t kOwnedPagesOffset = 2;  // [4] row pointer, 0 = no map
inline constexpr std::size_t kFreeSpaceOffset = 6;   // [4] row pointer, 0 = no map
inline constexpr std::size_t kSize = 10;
}  // namespace long_value_maps

// ---------------------------------------------------------------------------------------------------------------------
// Index pages (types 03 and 04)
// ---------------------------------------------------------------------------------------------------------------------

namespace index {
inline constexpr std::size_t kFreeBytesOffset = 0x02;     // [2] kEntriesSize - end of the last entry
inline constexpr std::size_t kTableOffset = 0x04;         // [4] TDEF page of the table
inline constexpr std::size_t kUnusedOffset = 0x08;        // [4] 0
inline constexpr std::size_t kPreviousOffset = 0x0C;      // [4] previous page of the level, 0 = none
inline constexpr std::size_t kNextOffset = 0x10;          // [4] next page of the level, 0 = none
inline constexpr std::size_t kTailOffset = 0x14;          // [4] node: last child, which has no entry; leaf: 0
inline constexpr std::size_t kPrefixLengthOffset = 0x18;  // [2] bytes left out of every entry but the first
inline constexpr std::size_t kLevelOffset = 0x1A;         // [1] 0 = leaf
inline constexpr std::size_t kMaskOffset = 0x1B;          // bit k set: an entry ends at kEntriesOffset + k
inline constexpr std::size_t kMaskSize = 453;
inline constexpr std::size_t kEntriesOffset = 0x1E0;
inline constexpr std::size_t kEntriesSize = 0xE20;  // 3616
// An entry: key bytes, page u24 big-endian, row u8; on nodes the child page u32 big-endian follows.
inline constexpr std::size_t kEntryPageSize = 3;
inline constexpr std::size_t kEntryRowPointerSize = 4;
inline constexpr std::size_t kEntryChildSize = 4;
}  // namespace index

/// Index keys: one flag byte for each column, then the encoded value unless it is null. Big-endian.
namespace key {
inline constexpr std::uint8_t kNullAscending = 0x00;
inline constexpr std::uint8_t kNullDescending = 0xFF;
inline constexpr std::uint8_t kValueAscending = 0x7F;
inline constexpr std::uint8_t kValueDescending = 0x80;
inline constexpr std::uint8_t kTrue = 0x00;   // ascending; inverted when descending
inline constexpr std::uint8_t kFalse = 0xFF;  // ascending; inverted when descending
// Binary values and GUIDs: groups of 8 bytes, each but the last followed by kGroupContinues, the last by its length.
inline constexpr std::size_t kGroupSize = 8;
inline constexpr std::uint8_t kGroupContinues = 0x09;
// Text.
inline constexpr std::size_t kMaximumTextLength = 255;  // UTF-16 units that count
inline constexpr std::uint8_t kTextPartEnd = 0x01;
inline constexpr std::uint8_t kTextEnd = 0x00;
inline constexpr std::uint8_t kDefaultDiacritic = 0x02;  // weight of an element without one
inline constexpr std::uint8_t kSpecialMiddle = 0x06;     // third byte of a special entry
inline constexpr std::uint16_t kSpecialPositionFlag = 0x8000;
inline constexpr std::uint16_t kSpecialPositionBase = 7;
inline constexpr std::uint16_t kSpecialPositionStep = 4;
}  // namespace key

// ---------------------------------------------------------------------------------------------------------------------
// Usage maps: rows of usage-map pages (type 01, owner 0; page 1 has owner 1), and bitmap pages (type 05)
// ---------------------------------------------------------------------------------------------------------------------

namespace usage {
inline constexpr std::size_t kKindOffset = 0;  // [1] kKind...
inline constexpr std::uint8_t kKindInline = 0;
inline constexpr std::uint8_t kKindReference = 1;
// Inline map: a bitmap, least significant bit first; its size is the row's length - kInlineBitmapOffset.
inline constexpr std::size_t kInlineStartOffset = 1;  // [4] the page that bit 0 stands for
inline constexpr std::size_t kInlineBitmapOffset = 5;
inline constexpr std::uint32_t kInlineStartStep = 8;   // the start page is a multiple of it
inline constexpr std::size_t kLengthenStep = 4;        // bytes by which a row is lengthened
inline constexpr std::size_t kLongestInlineRow = 113;  // bytes; longer ones are not seen in files
// Reference map: one page number [4] for each bitmap page, 0 = no such page.
inline constexpr std::size_t kReferencesOffset = 1;
inline constexpr std::size_t kReferenceSize = 4;
// A fresh row.
inline constexpr std::size_t kRowSize = 69;  // 512 bits inline, or 17 references
inline constexpr std::size_t kRowsPerPage = 57;
// Bitmap page: 05 01 00 00, then the bits.
inline constexpr std::size_t kBitmapOffset = 4;
inline constexpr std::size_t kBitmapSize = 4092;
inline constexpr std::uint32_t kPagesPerBitmap = 32736;
}  // namespace usage

// ---------------------------------------------------------------------------------------------------------------------
// The catalog: MSysObjects and its companions, property blobs
// ---------------------------------------------------------------------------------------------------------------------

namespace catalog {
/// MSysObjects.Type.
inline constexpr std::int16_t kTypeTable = 1;
inline constexpr std::int16_t kTypeDatabase = 2;  // MSysDb
inline constexpr std::int16_t kTypeContainer = 3;
inline constexpr std::int16_t kTypeOdbcTable = 4;
inline constexpr std::int16_t kTypeQuery = 5;
inline constexpr std::int16_t kTypeLinkedTable = 6;
inline constexpr std::int16_t kTypeRelationship = 8;
inline constexpr std::int16_t kTypeForm = -32768;
inline constexpr std::int16_t kTypeMacro = -32766;
inline constexpr std::int16_t kTypeReport = -32764;
inline constexpr std::int16_t kTypeModule = -32761;
inline constexpr std::int16_t kTypeUserRelationships = -32758;
inline constexpr std::int16_t kTypeDocument = -32757;
inline constexpr std::int16_t kTypeDataAccessPage = -32756;

/// MSysObjects.Flags.
inline constexpr std::uint32_t kFlagEngineSystem = 0x80000000;
inline constexpr std::uint32_t kFlagAccessSystem = 0x00000002;
inline constexpr std::uint32_t kFlagHidden = 0x00000008;
inline constexpr std::uint32_t kFlagLinked = 0x00200000;
inline constexpr std::uint32_t kFlagSystemMask = kFlagEngineSystem | kFlagAccessSystem;
inline constexpr std::uint32_t kQueryKindMask = 0x000000F0;

/// MSysObjects.Id of the fixed objects; tables have the number of their TDEF page, all others count from kFirstFreeId.
inline constexpr std::uint32_t kRootId = 0x0F000000;
inline constexpr std::uint32_t kTablesId = 0x0F000001;
inline constexpr std::uint32_t kDatabasesId = 0x0F000002;
inline constexpr std::uint32_t kRelationshipsId = 0x0F000003;
inline constexpr std::uint32_t kDatabaseId = 0x10000000;  // MSysDb
inline constexpr std::uint32_t kFirstFreeId = 0x80000000;

/// MSysACEs.ACM of the rows of a new table and of the fixed objects.
inline constexpr std::uint32_t kRightsFull = 0x000FFFFF;
inline constexpr std::uint32_t kRightsTable = 0x000FFEFF;
inline constexpr std::uint32_t kRightsOwner = 0x000F00FE;

/// MSysRelationships.grbit.
inline constexpr std::uint32_t kRelationOneToOne = 0x00000001;
inline constexpr std::uint32_t kRelationNotEnforced = 0x00000002;
inline constexpr std::uint32_t kRelationCascadeUpdates = 0x00000100;
inline constexpr std::uint32_t kRelationCascadeDeletes = 0x00001000;
inline constexpr std::uint32_t kRelationCascadeSetNull = 0x00002000;
inline constexpr std::uint32_t kRelationLeftJoin = 0x01000000;
inline constexpr std::uint32_t kRelationRightJoin = 0x02000000;
}  // namespace catalog

/// Property blobs (MSysObjects.LvProp): the magic, then chunks.
namespace property {
inline constexpr std::array<std::uint8_t, 4> kMagic = {0x4D, 0x52, 0x32, 0x00};  // "MR2" NUL
inline constexpr std::size_t kChunkLengthOffset = 0;                             // [4] these bytes included
inline constexpr std::size_t kChunkKindOffset = 4;                               // [2]
inline constexpr std::size_t kChunkHeaderSize = 6;
inline constexpr std::uint16_t kChunkNames = 0x0080;
inline constexpr std::uint16_t kChunkObject = 0x0000;
inline constexpr std::uint16_t kChunkColumn = 0x0001;
// Names chunk: u16 byte length + UTF-16LE for each name. Other chunks: u32 length of the name part (these bytes
// included), u16 byte length, UTF-16LE name, then values.
inline constexpr std::size_t kNameLengthSize = 2;
inline constexpr std::size_t kNamePartLengthSize = 4;
inline constexpr std::size_t kValueLengthOffset = 0;      // [2] these bytes included
inline constexpr std::size_t kValueDdlFlagOffset = 2;     // [1] 1: needs definition permission
inline constexpr std::size_t kValueTypeOffset = 3;        // [1] column_type
inline constexpr std::size_t kValueNameOffset = 4;        // [2] number in the names chunk
inline constexpr std::size_t kValueDataLengthOffset = 6;  // [2]
inline constexpr std::size_t kValueDataOffset = 8;
}  // namespace property

// ---------------------------------------------------------------------------------------------------------------------
// Jet 3 (Access 97), read only: what lies elsewhere
// ---------------------------------------------------------------------------------------------------------------------

namespace jet3 {
inline constexpr std::size_t kPageSize = 2048;
inline constexpr std::size_t kCommitBytesOffset = 0x600;

namespace data {
inline constexpr std::size_t kRowCountOffset = 0x08;      // [2]
inline constexpr std::size_t kRowDirectoryOffset = 0x0A;  // 2 bytes for each row
}  // namespace data

namespace row {
inline constexpr std::size_t kColumnCountSize = 1;
inline constexpr std::size_t kFixedAreaOffset = 1;
inline constexpr std::size_t kVariableOffsetSize = 1;  // reverse order, with a jump table behind
inline constexpr std::size_t kVariableCountSize = 1;
inline constexpr std::size_t kJumpStep = 256;
inline constexpr std::uint8_t kJumpDummy = 0xFF;
}  // namespace row

namespace usage {
inline constexpr std::size_t kRowSize = 133;  // 5 + 128
inline constexpr std::size_t kBitmapSize = 2044;
inline constexpr std::uint32_t kPagesPerBitmap = 16352;
}  // namespace usage

namespace long_value {
inline constexpr std::size_t kChainDataSize = 2028;
}  // namespace long_value

namespace table {
inline constexpr std::size_t kLengthOffset = 0x08;             // [4]
inline constexpr std::size_t kRowCountOffset = 0x0C;           // [4]
inline constexpr std::size_t kLastAutonumberOffset = 0x10;     // [4]
inline constexpr std::size_t kTypeOffset = 0x14;               // [1]
inline constexpr std::size_t kColumnIdCounterOffset = 0x15;    // [2]
inline constexpr std::size_t kVariableCountOffset = 0x17;      // [2]
inline constexpr std::size_t kColumnCountOffset = 0x19;        // [2]
inline constexpr std::size_t kLogicalIndexCountOffset = 0x1B;  // [4]
inline constexpr std::size_t kRealIndexCountOffset = 0x1F;     // [4]
inline constexpr std::size_t kOwnedPagesOffset = 0x23;         // [4] row pointer
inline constexpr std::size_t kFreeSpacePagesOffset = 0x27;     // [4] row pointer
inline constexpr std::size_t kHeaderSize = 43;
inline constexpr std::size_t kNameLengthSize = 1;  // names are in the ANSI code page
}  // namespace table

namespace index_slot {
inline constexpr std::size_t kSize = 8;
}  // namespace index_slot

namespace column {
inline constexpr std::size_t kTypeOffset = 0;           // [1]
inline constexpr std::size_t kIdOffset = 1;             // [2]
inline constexpr std::size_t kVariableIndexOffset = 3;  // [2]
inline constexpr std::size_t kOrdinalOffset = 5;        // [2]
inline constexpr std::size_t kSortOrderOffset = 7;      // [2]
inline constexpr std::size_t kPrecisionOffset = 9;      // [1] NUMERIC; otherwise the code page [2]
inline constexpr std::size_t kScaleOffset = 10;         // [1] NUMERIC
inline constexpr std::size_t kFlagsOffset = 13;         // [1]
inline constexpr std::size_t kFixedOffsetOffset = 14;   // [2]
inline constexpr std::size_t kLengthOffset = 16;        // [2]
inline constexpr std::size_t kSize = 18;
}  // namespace column

namespace real_index {
inline constexpr std::size_t kColumnsOffset = 0;
inline constexpr std::size_t kUsageMapOffset = 30;  // [4]
inline constexpr std::size_t kRootPageOffset = 34;  // [4]
inline constexpr std::size_t kFlagsOffset = 38;     // [1]
inline constexpr std::size_t kSize = 39;
}  // namespace real_index

namespace logical_index {
inline constexpr std::size_t kNumberOffset = 0;           // [4]
inline constexpr std::size_t kRealIndexOffset = 4;        // [4]
inline constexpr std::size_t kSideOffset = 8;             // [1]
inline constexpr std::size_t kPartnerOffset = 9;          // [4]
inline constexpr std::size_t kOtherTableOffset = 13;      // [4]
inline constexpr std::size_t kCascadeUpdatesOffset = 17;  // [1]
inline constexpr std::size_t kCascadeDeletesOffset = 18;  // [1]
inline constexpr std::size_t kTypeOffset = 19;            // [1]
inline constexpr std::size_t kSize = 20;
}  // namespace logical_index

namespace index {
inline constexpr std::size_t kPreviousOffset = 0x08;      // [4]
inline constexpr std::size_t kNextOffset = 0x0C;          // [4]
inline constexpr std::size_t kTailOffset = 0x10;          // [4]
inline constexpr std::size_t kPrefixLengthOffset = 0x14;  // [1]
inline constexpr std::size_t kLevelOffset = 0x15;         // [1]
inline constexpr std::size_t kMaskOffset = 0x16;
inline constexpr std::size_t kMaskSize = 226;
inline constexpr std::size_t kEntriesOffset = 0xF8;
inline constexpr std::size_t kEntriesSize = kPageSize - kEntriesOffset;  // 1800
}  // namespace index

namespace property {
inline constexpr std::array<std::uint8_t, 4> kMagic = {0x4B, 0x4B, 0x44, 0x00};  // "KKD" NUL
}  // namespace property
}  // namespace jet3

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
