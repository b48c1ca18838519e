#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "names/MemberValues.h"
#include "platform/values/Date.h"
#include "store/cDatabase.h"

/// Records for people who become members.
namespace tavi {

/// The type of members that operations of the component add.
inline constexpr const char* kStandardMember = "Standard";

/// The details that AddMember stores beside number, names and keys; the defaults are those of an unknown detail.
struct MemberDetails {
  std::string Title;
  std::string FirstName;
  std::string Initials;
  std::string LastName;
  double Handicap = kNeutralHandicap;
  std::string MemberType;
  Date JoinDate;
  Date LastPaid;
  Date NextDue;
  double Subs = 0.0;
  std::int32_t RequiredID = kNoMember;  ///< kNoMember: the next free number
  std::int32_t Gender = 0;
  std::string HouseID;
  std::string Address;
  std::string PostCode;
  std::string email;
  std::string HomePhone;
  std::string WorkPhone;
  std::string MobilePhone;
  std::string Notes;
  bool Privacy = false;
};

/// The number behind the highest one; 1 in an empty table. Raises Overflow when there is none.
[[nodiscard]] std::int32_t NextAvailableMemberNo(cDatabase& database);

/// Inserts a member with fresh keys, stores the handicap and refreshes the uniqueness flags of that first name: all of
/// it or, with an error, nothing. Returns the number.
std::int32_t AddMember(cDatabase& database, const MemberDetails& details);

/// Adds a standard member whose dates are 1 January 1800. A handicap below 1, or none, becomes 50. Returns the new
/// number. Raises 0x80040000 when a member, active or retired, bears exactly this name.
std::int32_t AddNewMember(cDatabase& database, const std::string& FirstName, const std::string& Initials,
                          const std::string& LastName, std::optional<double> Handicap);

}  // namespace tavi
