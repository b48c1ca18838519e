#pragma once

#include <cstddef>
#include <cstdint>

namespace tavi::access {

/// What a UTF-16 code unit does in a text key.
enum class CollationKind : std::uint8_t {
  Element = 0,    // makes one to three collation elements with primary codes
  Special = 1,    // hyphen, apostrophe, control characters: counts only when all else is equal
  Combining = 2,  // adds to the diacritic weight of the element before it
  Ignored = 3
};

/// All about a code unit but its first two primary bytes.
struct CollationTrait {
  CollationKind kind;
  std::uint8_t elements;         // collation elements that it makes
  std::uint8_t diacritics[2];    // weights of the first two of them; a third has the default weight
  std::uint8_t furtherBytes[2];  // third and fourth primary byte, 0 = none
  std::uint8_t value;            // Special: its code; Combining: what it adds to the weight
  std::uint8_t kanaFlag;         // 2 or 3, 0 = none
};

/// The generated data: two levels, 256 blocks of 256 code units, equal blocks held once.
namespace collation_table {

extern const std::uint8_t kInlineBlockOf[256];
extern const std::uint8_t kTraitBlockOf[256];
extern const CollationTrait kTraits[];
extern const std::uint16_t kTraitBlocks[];
extern const std::uint16_t kInlineBlocks[];

}  // namespace collation_table

/// The first two primary bytes of a code unit as one number, the first byte high; a single byte stands alone in the low
/// half; 0 when there is none.
inline std::uint16_t CollationInline(char16_t unit) {
  return collation_table::kInlineBlocks[(std::size_t{collation_table::kInlineBlockOf[unit >> 8U]} << 8U) |
                                        (unit & 0xFFU)];
}

inline const CollationTrait& CollationTraitOf(char16_t unit) {
  return collation_table::kTraits
      [collation_table::kTraitBlocks[(std::size_t{collation_table::kTraitBlockOf[unit >> 8U]} << 8U) | (unit & 0xFFU)]];
}

/// True for a trait that says no more than "one element of default weight".
inline bool IsPlainElement(const CollationTrait& trait) {
  return &trait == collation_table::kTraits;
}

}  // namespace tavi::access
