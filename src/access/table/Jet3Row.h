#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace tavi::access {

// The variable part of a Jet 3 row. Its trailer, from the end of the row: null mask, number of variable columns v [1],
// a jump table [1 for each 256 bytes of row], v + 1 offsets [1 each] in reverse order, the last one that of the end of
// the data. An offset has only its low byte there; each entry of the jump table names the first column from which
// another 256 is to be added.

/// Where the value of a variable column lies in a Jet 3 row, or nothing when the row has no such column. `row` has at
/// least `maskSize` bytes. `first` may be behind `end` or past the row in a damaged one.
struct Jet3Extent {
  std::size_t first = 0;
  std::size_t end = 0;
};
[[nodiscard]] std::optional<Jet3Extent> FindJet3Variable(std::span<const std::uint8_t> row, std::size_t maskSize,
                                                         std::size_t variableIndex);

/// Number of variable columns of a Jet 3 row; 0 when it is too short to have any.
[[nodiscard]] std::size_t Jet3VariableCount(std::span<const std::uint8_t> row, std::size_t maskSize);

}  // namespace tavi::access
