#pragma once

#include "store/cDatabase.h"

namespace tavi {

/// Turns the one-letter codes of the old column Competitions.ExternalType ("P" pairs, "I" individual, "S" Swiss, "T"
/// teams) into Individual, IsSwiss and IsTeams. `setIsExternal`: IsExternal is a new column, so it becomes True for the
/// events that have a code; a column that was there keeps what it holds. Rows without a code stay as they are. A code
/// is emptied as it is converted, so that it is never converted again where the column then cannot be removed; what
/// cannot be read is no code.
void ConvertCompetitionTypes(cDatabase& database, bool setIsExternal);

/// The same for one competition of the current layout, whose old code was kept elsewhere. A code that is none of the
/// four (in either case) changes nothing.
void ConvertCompetitionType(cDatabase& database, std::int32_t competition, const std::string& code, bool setIsExternal);

/// Awards without any colour get the mark -1, which the repair then replaces.
void ConvertMasterPointColours(cDatabase& database);

/// Awards marked with a colour below 0 take the colour of their competition; where that has none they keep the mark.
void RepairMasterPointColours(cDatabase& database);

}  // namespace tavi
