#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "names/MemberValues.h"
#include "names/cPlayerDetails.h"
#include "platform/values/Date.h"
#include "store/cDatabase.h"

/// The records of members: what is read of them and changed in them. A member is never deleted: who retires is
/// inactive. Operations reach retired members too unless they say "active". Errors of the store pass on.
namespace tavi {

/// The condition for a member's record, "MembershipNumber = 7".
[[nodiscard]] std::string NumberIs(std::int32_t memberNumber);

[[nodiscard]] bool MemberExists(cDatabase& database, std::int32_t memberNumber);
/// False when no row was found.
bool GetMembersNames(cDatabase& database, std::int32_t memberNumber, std::string& FirstName, std::string& Initials,
                     std::string& LastName, bool& Active);
/// First name, initials and last name joined with blanks, each pair of blanks made one; empty when unknown.
[[nodiscard]] std::string GetFullName(cDatabase& database, std::int32_t memberNumber);
/// The record of an active member, with the stored uniqueness flag; null for unknown and retired members.
std::shared_ptr<cPlayerDetails> FindActiveMember(cDatabase& database, std::int32_t memberNumber);

/// The name in a display format, DefaultName for unknown and retired members; EBUNumber is passed back, "" for those.
std::string GetNameAndEBUNumber(cDatabase& database, std::int32_t MemberNo, std::int16_t NameFormat,
                                std::string& EBUNumber, const std::string& DefaultName);
/// The EBU number; the name parts are passed back. All are empty for unknown and retired members.
std::string GetEBUNoAndNames(cDatabase& database, std::int32_t MemberNo, std::string& FirstName, std::string& Initials,
                             std::string& LastName);
void SetEBUNumber(cDatabase& database, std::int32_t MemberNo, const std::string& EBUNo);
/// The club number that a typed club or EBU number means; a club number wins. 0 when it is neither.
std::int32_t EnteredNumberToClubNumber(cDatabase& database, std::int32_t EnteredNumber);
bool IsValidMemberID(cDatabase& database, std::int32_t MemberID);

/// Makes the member inactive; the record stays.
void DeleteMember(cDatabase& database, std::int32_t MembershipNumber);

/// The stored handicap; 50 where there is none.
[[nodiscard]] double GetHandicap(cDatabase& database, std::int32_t memberNumber);
/// The handicap of an active member, else 50.
double GetActiveHandicap(cDatabase& database, std::int32_t MemberID);
/// Changes nothing for a retired member. Raises InvalidArgument for a number that no file can hold; so do the next two.
void SetActiveHandicap(cDatabase& database, std::int32_t MemberID, double NewHandicap);
void StoreHandicap(cDatabase& database, std::int32_t memberNumber, double handicap);
/// Stores the handicap that two players had together, as that of each of them.
void StoreHandicapOfBoth(cDatabase& database, std::int32_t first, std::int32_t second, double handicap);

/// The stratum; 0 where there is none.
[[nodiscard]] std::int16_t GetPlayerStratum(cDatabase& database, std::int32_t memberNumber);
void SetPlayerStratum(cDatabase& database, std::int32_t memberNumber, std::int16_t NewStratum);

}  // namespace tavi

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
