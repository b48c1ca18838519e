#pragma once

#include <string>
#include <vector>

#include "store/cDatabase.h"

/// How much of a name tells a member from the other active ones: the column UniquenessFlag of the table Members, by
/// which names are shown no longer than they must be (cPlayerDetails::UniquenessFlag has the values).
namespace tavi {

/// Writes the flag of every active member, or of those of one first name. Errors of the store pass on.
void SetNameUniquenessFlags(cDatabase& database, const std::string& FirstName);

/// What a file keeps beside the names themselves, to be brought up to date in a file that is new to the store: the
/// flags, whose errors pass on, and the sound-alike keys (names/StoredNameKeys.h).
[[nodiscard]] std::vector<FirstOpenStep> NameSteps();

}  // namespace tavi
