#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// Table definitions in numbers (pages of type 02), and what the catalogue holds of tables: rows of the system tables,
/// property blobs. Units as in Format.h.
namespace tavi::access::format {

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

}  // namespace tavi::access::format
