#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "store/cDatabase.h"

namespace tavi {

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
