#include "handicaps/HandicapResultList.h"

#include <cmath>
#include <iterator>

#include "names/MemberValues.h"

namespace tavi {

bool KeyExists(const HandicapResultList& List, const std::string& Key) {
  return List.Find(Key) != nullptr;
}

void AddResultInOrder(HandicapResultList& List, const cHandiCalcResultData& Entry) {
  if (KeyExists(List, Entry.Key())) return;
  // From the end, because rows arrive newest first: the place is nearly always the last one.
  auto place = List.end();
  while (place != List.begin() && Entry.LaterThan(std::prev(place)->second)) --place;
  if (place == List.end()) {
    List.Append(Entry.Key(), Entry);
  } else {
    List.InsertBefore(place->first, Entry.Key(), Entry);
  }
}

void TrimSeeds(HandicapResultList& List, std::int16_t MaxResults) {
  if (static_cast<std::int64_t>(List.Count()) <= MaxResults) return;
  List.Remove(cHandiCalcResultData::kPairSeedKey);
  List.Remove(cHandiCalcResultData::kSeedKey);
}

double AverageOf(const HandicapResultList& List, std::int32_t playerNumber, double unknownPlayerHandicap) {
  if (List.IsEmpty()) return playerNumber == kNoMember ? unknownPlayerHandicap : kNeutralHandicap;
  double sum = 0.0;
  for (const auto& [key, entry] : List) sum += entry.Percentage();
  const auto count = static_cast<double>(List.Count());
  if (std::isfinite(sum)) return sum / count;
  // Enormous percentages, whose sum alone is too large for a number.
  double mean = 0.0;
  for (const auto& [key, entry] : List) mean += entry.Percentage() / count;
  return mean;
}

}  // namespace tavi
