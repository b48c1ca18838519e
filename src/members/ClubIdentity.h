#pragma once

#include <string>

#include "store/cDatabase.h"

/// What the file's history of club names says. Errors of the store pass on.
namespace tavi {

/// The EBU number of the newest club name.
std::string ClubID(cDatabase& database);
bool WasClubEverCalled(cDatabase& database, const std::string& ClubName);

}  // namespace tavi
