#pragma once

#include <algorithm>
#include <cstddef>

namespace tavi {

/// Whether a whole text, a sequence of characters, fits a pattern: a sequence of pieces, some of which stand for any
/// run of characters or none, the others for one character each. `isRun(piece)` and `accepts(piece, character)` say
/// what a piece takes. The time is at most the product of both lengths: on a mismatch only the last run before it is
/// made one character longer, as a longer earlier one would leave less for the rest.
template <typename Text, typename Pattern, typename IsRun, typename Accepts>
[[nodiscard]] bool FitsPattern(const Text& text, const Pattern& pattern, const IsRun& isRun, const Accepts& accepts) {
  const std::size_t end = pattern.size();
  std::size_t place = 0;
  std::size_t piece = 0;
  std::size_t run = end;
  std::size_t runEnd = 0;
  while (place < text.size()) {
    if (piece < end && isRun(pattern[piece])) {
      run = piece++;
      runEnd = place;
    } else if (piece < end && accepts(pattern[piece], text[place])) {
      ++piece;
      ++place;
    } else if (run < end) {
      piece = run + 1;
      place = ++runEnd;
    } else {
      return false;
    }
  }
  return std::all_of(pattern.begin() + static_cast<std::ptrdiff_t>(piece), pattern.end(), isRun);
}

}  // namespace tavi
