#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "members/EBUMembershipDetails.h"
#include "store/cDatabase.h"

namespace tavi {

/// A member's e-mail address, retired members' too; empty for an unknown number.
std::string MembersEmailAddress(cDatabase& store, std::int32_t MemberNo);

/// The addresses of all active members who have one. Two members of one address (ignoring case) raise DuplicateKey: a
/// caller that needs the list must not let members share addresses.
std::vector<std::string> AllEmailAddresses(cDatabase& store);

/// The rows of the governing body's list with this surname, and this given name unless it is empty. A row that cannot
/// be read ends the search with the rows found before it.
std::vector<EBUMembershipDetails> SearchEBUList(cDatabase& store, const std::string& GivenName,
                                                const std::string& Surname);

}  // namespace tavi
