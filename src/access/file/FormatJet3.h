#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// Jet 3 (Access 97) in numbers, which is only read: what lies elsewhere than in Jet 4. Units as in Format.h.
namespace tavi::access::format::jet3 {

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

}  // namespace tavi::access::format::jet3
