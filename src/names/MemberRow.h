#pragma once

#include <memory>

#include "names/cPlayerDetails.h"
#include "platform/ado/Provider.h"

namespace tavi {

/// The columns of Members that ReadMemberRow reads, for a SELECT statement.
inline constexpr const char* kMemberRowColumns =
    "MembershipNumber, FirstName, MiddleInitials, LastName, KnownAs, Handicap, EBUNumber, UniquenessFlag";

/// The player of the current row. The uniqueness flag is 2 whatever the row holds. Raises "End of Record Set"
/// (0x80040000, source "TaviMembership") when there is no current row.
std::shared_ptr<cPlayerDetails> ReadMemberRow(const ado::Recordset& row,
                                              const std::shared_ptr<const NameKeyService>& nameKeyService);

}  // namespace tavi
