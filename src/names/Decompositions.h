#pragma once

#include <span>

namespace tavi {

/// A character that is canonically the same as one or two others; `second` is 0 when it is one. `first` may have a
/// decomposition of its own.
struct Decomposition {
  char32_t composed;
  char32_t first;
  char32_t second;
};

/// Combining marks from `first` to `last`: accents and the like that belong to the letter before them.
struct MarkRange {
  char32_t first;
  char32_t last;
};

/// All canonical decompositions but those of Hangul syllables, which are computed, in ascending order.
std::span<const Decomposition> Decompositions();
/// All combining marks, in ascending order.
std::span<const MarkRange> CombiningMarks();

}  // namespace tavi
