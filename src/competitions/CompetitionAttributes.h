#pragma once

#include <cstdint>
#include <string>

#include "store/cDatabase.h"

namespace tavi {

/// What kind of competition a competition is. The defaults are those of one that is not known.
struct CompetitionAttributes {
  bool Individual = false;  ///< scored for single players, not pairs
  bool IsTeams = false;
  bool IsSwiss = false;
  std::string NatCode = "EBU";  ///< the governing body under whose rules it is held
};

/// The attributes of a competition; the defaults when there is none of that identifier. Errors of the store pass on.
CompetitionAttributes ReadCompetitionAttributes(cDatabase& database, std::int32_t CompetitionID);

}  // namespace tavi
