#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/values/Date.h"

namespace tavi::host {

/// A member as a members file gives one.
struct ImportedMember {
  std::size_t line = 0;
  std::int32_t number = 0;
  std::string nationalNumber;  ///< without leading zeros, as the governing body's own list has them
  std::string title, firstName, initials, lastName, knownAs;
  std::int32_t sex = 0;  ///< 0 not known, 1 male, 2 female
  std::string email, homePhone, mobilePhone;
  Date joined;  ///< the zero date when it is not given
  std::string memberType;
  std::string house, address, postCode;
  bool active = true;
};

/// Reads a members file: comma-separated, with the columns club_number, first and last, and any of ebu_number, title,
/// initials, known_as, sex (M, F), email, phone, mobile, join_date (yyyy-mm-dd or dd/mm/yyyy), member_type, house,
/// address, town, postcode, active (y, n). Raises InvalidArgument ("FILE:LINE: ...") for the first thing wrong with it.
std::vector<ImportedMember> ReadMemberFile(const std::string& path);

/// A regular pair as a pairs file gives one.
struct ImportedPair {
  std::size_t line = 0;
  std::int32_t firstNumber = 0;  ///< the player whom the pair is entered with first
  std::int32_t secondNumber = 0;
  std::string knownAs;
  bool active = true;
};

/// Reads a pairs file: comma-separated, with the columns club_number_1 and club_number_2, and any of known_as and
/// active. Raises InvalidArgument ("FILE:LINE: ...") for the first thing wrong with it.
std::vector<ImportedPair> ReadPairFile(const std::string& path);

}  // namespace tavi::host
