#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "names/cPlayerDetails.h"
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
