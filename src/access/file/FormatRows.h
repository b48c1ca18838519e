#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// Data pages (type 01) in numbers: rows of a table, long values, usage maps and their bitmap pages (type 05). Units as
/// in Format.h.
namespace tavi::access::format {

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

}  // namespace tavi::access::format
