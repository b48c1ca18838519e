#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// Index pages (types 03 and 04) and index keys in numbers. Units as in Format.h.
namespace tavi::access::format {

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

}  // namespace tavi::access::format
