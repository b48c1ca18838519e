#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tavi::host {

/// What a line of a members file says of one person.
struct MemberLine {
  std::size_t line = 0;
  std::optional<std::int32_t> number;  ///< the club number; nothing where the column is missing or its cell is empty
  /// The other columns that the file has, by name, in one way of writing: `ebu_number` without leading zeros, `sex` M
  /// or F, `join_date` yyyy-mm-dd, `active` y or n, `member_type` Standard when it is empty, the lines of `address`
  /// separated by CR LF. Empty cells are empty texts.
  std::map<std::string, std::string> values;

  /// The value of a column; nothing when the file lacks it.
  [[nodiscard]] std::optional<std::string> Value(const std::string& column) const;
};

/// A members file.
struct MemberFile {
  std::string name;
  std::vector<MemberLine> members;
  std::vector<std::string> passedOver;  ///< unknown columns
};

/// Reads a members file: comma-separated, with a column club_number or ebu_number, and any of title, first, initials,
/// last, known_as, sex (M, F), email, phone, mobile, join_date (yyyy-mm-dd or dd/mm/yyyy), member_type, house, address,
/// town, postcode, active (y, n). Raises InvalidArgument ("FILE:LINE: ...") for the first thing wrong with it, such as
/// an unknown column, unless these are to be passed over.
MemberFile ReadMemberFile(const std::string& path, bool passOverUnknown);

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
