#pragma once

#include <string>

#include "handicaps/cHandiCalcResultData.h"
#include "util/KeyedList.h"

/// Lists of results and seeds, newest first, by key.
namespace tavi {

using HandicapResultList = KeyedList<std::string, cHandiCalcResultData>;

bool KeyExists(const HandicapResultList& List, const std::string& Key);

/// Puts an entry before the first one that it is later than; nothing when its key is in the list. The list must be
/// newest first, and stays so; entries of one day keep the order in which they came.
void AddResultInOrder(HandicapResultList& List, const cHandiCalcResultData& Entry);

/// Removes the seeds when the list holds more than MaxResults entries; 0 therefore removes them from any list.
void TrimSeeds(HandicapResultList& List, std::int16_t MaxResults);

/// The mean percentage. Of an empty list: `unknownPlayerHandicap` for the player number -1, else 50.
double AverageOf(const HandicapResultList& List, std::int32_t playerNumber, double unknownPlayerHandicap);

}  // namespace tavi
