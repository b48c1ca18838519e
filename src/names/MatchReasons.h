#pragma once

#include <string>

#include "names/cPlayerDetails.h"

namespace tavi {

/// Why a member is offered for a typed name, in words: "same name", or what differs, the surname first: "surname sounds
/// alike, first name is short for Katherine". For two names that do not match (MatchWeight 0) "different name".
[[nodiscard]] std::string MatchReason(const cPlayerDetails& typed, const cPlayerDetails& member);

}  // namespace tavi
