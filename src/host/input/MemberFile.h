#pragma once

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

}  // namespace tavi::host
