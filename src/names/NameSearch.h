#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "names/cPlayerDetails.h"
#include "store/cDatabase.h"

namespace tavi {

/// The columns of Members that ReadMemberRow reads, for a SELECT statement.
inline constexpr const char* kMemberRowColumns =
    "MembershipNumber, FirstName, MiddleInitials, LastName, KnownAs, Handicap, EBUNumber, UniquenessFlag";

/// The player of the current row. The uniqueness flag is 2 whatever the row holds. Raises "End of Record Set"
/// (0x80040000, source "TaviMembership") when there is no current row.
std::shared_ptr<cPlayerDetails> ReadMemberRow(const ado::Recordset& row,
                                              const std::shared_ptr<const NameKeyService>& nameKeyService);

/// The number of the member of exactly this name, or -1. `Retired` is set when a row was found.
std::int32_t GetMembershipID(cDatabase& database, const std::string& FirstName, const std::string& Initials,
                             const std::string& LastName, bool& Retired);

/// The number of the one active member that a typed name means, or -1: the member of exactly that name, else (unless
/// ExactMatchRequired) the only one of that first name and surname whose initials fit the typed ones. An empty name
/// means nobody.
std::int32_t FindMember(cDatabase& database, const std::string& Name, bool ExactMatchRequired);

/// The numbers of the active members whose names sound like a typed one, best first; those that fit equally well in the
/// order of the file. Empty for an empty name.
std::vector<std::int32_t> FindNearestMatches(cDatabase& database, const std::string& Name);

}  // namespace tavi
