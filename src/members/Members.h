#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "names/cPlayerDetails.h"
#include "store/cDatabase.h"

/// The public operations on members. Errors of the store pass on.
namespace tavi {

/// The condition for the rows of a member.
[[nodiscard]] std::string WhereNumberIs(std::int32_t memberNumber);

/// The record of an active member, with the stored uniqueness flag; null for unknown and retired members.
std::shared_ptr<cPlayerDetails> FindActiveMember(cDatabase& database, std::int32_t memberNumber);

/// Adds a member of type "Standard" whose dates are 1 January 1800. A handicap below 1, or none, becomes 50. Returns
/// the new number. Raises 0x80040000 when a member, active or retired, bears exactly this name.
std::int32_t AddNewMember(cDatabase& database, const std::string& FirstName, const std::string& Initials,
                          const std::string& LastName, std::optional<double> Handicap);

/// The name in a display format, DefaultName for unknown and retired members; EBUNumber is passed back, "" for those.
std::string GetNameAndEBUNumber(cDatabase& database, std::int32_t MemberNo, std::int16_t NameFormat,
                                std::string& EBUNumber, const std::string& DefaultName);

/// The EBU number; the name parts are passed back. All are empty for unknown and retired members.
std::string GetEBUNoAndNames(cDatabase& database, std::int32_t MemberNo, std::string& FirstName, std::string& Initials,
                             std::string& LastName);
void SetEBUNumber(cDatabase& database, std::int32_t MemberNo, const std::string& EBUNo);

/// The club number that a typed club or EBU number means; a club number wins. 0 when it is neither.
std::int32_t EnteredNumberToClubNumber(cDatabase& database, std::int32_t EnteredNumber);

/// Makes the member inactive; the record stays.
void DeleteMember(cDatabase& database, std::int32_t MembershipNumber);

/// The handicap of an active member, else 50.
double GetActiveHandicap(cDatabase& database, std::int32_t MemberID);
/// Changes nothing for a retired member.
void SetActiveHandicap(cDatabase& database, std::int32_t MemberID, double NewHandicap);

/// True for retired members too.
bool IsValidMemberID(cDatabase& database, std::int32_t MemberID);

}  // namespace tavi
