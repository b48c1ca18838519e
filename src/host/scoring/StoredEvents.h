#pragma once

#include <string>
#include <vector>

#include "host/scoring/EveningScorer.h"

namespace tavi::host {

/// What the open file of the calling thread holds of some events: their competitions, results and awards as texts to
/// compare, empty where none of the events is there. The numbers of the awards are left out, because scoring an event
/// again gives new ones. So are handicaps: those of a pair are as they were at its last event, and scoring an earlier
/// one again would have later ones count.
[[nodiscard]] std::vector<std::string> ReadStoredEvents(const std::vector<ScoredEvent>& events);

}  // namespace tavi::host
