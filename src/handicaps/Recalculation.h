#pragma once

#include <cstdint>
#include <string>

#include "handicaps/HeldSettings.h"
#include "store/cDatabase.h"
#include "util/KeyedList.h"

namespace tavi {

/// Handicaps by member, key number + "M".
using RememberedHandicaps = KeyedList<std::string, double>;

/// Notes a member's handicap; of a second one for the same member nothing is kept.
void RememberHandicap(RememberedHandicaps& list, std::int32_t memberNumber, double handicap);

/// Calculates the handicap of every active partnership and member as of today and stores it. A member of a partnership
/// gets the player handicap of that calculation (of the first of several partnerships), anybody else, and who gets
/// exactly 0 there, an individual one. Rows without a number are left out; one that holds no number raises
/// TypeMismatch. Each calculation leaves the store open once more. Errors of the store pass on; the rows stored before
/// stay stored.
void RecalculateAllHandicaps(cDatabase& database, HeldSettings& held);

}  // namespace tavi
