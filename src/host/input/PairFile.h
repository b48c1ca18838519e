#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tavi::host {

/// How a pairs file names one of the players.
struct PairPlayer {
  std::optional<std::int32_t> number;  ///< the club number
  std::string nationalNumber;          ///< without leading zeros; empty when it is not given
  std::string name;                    ///< to make sure; empty when it is not given
};

/// What a line of a pairs file says of one regular pair.
struct PairLine {
  std::size_t line = 0;
  std::array<PairPlayer, 2> players;   ///< the one whom the pair is entered with first, and the other
  std::optional<std::string> knownAs;  ///< nothing where the file lacks the column
  std::optional<bool> active;          ///< nothing where the column is missing or its cell is empty
};

/// A pairs file.
struct PairFile {
  std::string name;
  std::vector<PairLine> pairs;
  std::vector<std::string> passedOver;  ///< unknown columns, and known ones that a club's file has no place for
};

/// Reads a pairs file: comma-separated, with a column club_number_1 or ebu_number_1 and one for the second player, and
/// any of player_1, player_2 (names, to make sure), known_as, active (y, n) and since, which is passed over. Raises
/// InvalidArgument ("FILE:LINE: ...") for the first thing wrong with it, such as an unknown column, unless these are to
/// be passed over.
PairFile ReadPairFile(const std::string& path, bool passOverUnknown);

}  // namespace tavi::host
