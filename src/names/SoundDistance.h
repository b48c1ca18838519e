#pragma once

#include <string_view>

namespace tavi {

/// How unlike two names sound (SoundsOf): 0 the same, 100 about one clearly different sound. Stops counting at `limit`:
/// whatever is as unlike as that, or more, has the distance `limit`.
int SoundDistance(std::string_view left, std::string_view right, int limit);

/// True when one wrong key makes one text of the other: a letter left out, put in, or put for another, or two
/// neighbours in the wrong order.
bool IsOneSlipAway(std::string_view left, std::string_view right);

}  // namespace tavi
