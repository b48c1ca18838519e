#include "handicaps/cHandiCalcResultData.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace tavi {
namespace {

/// Nobody leaves the place empty: "K12__7" for a result of member 7 with a visitor.
std::string NumberInKey(std::int32_t memberNumber) {
  return memberNumber == kNoMember ? std::string() : std::to_string(memberNumber);
}

// A result is read for either of its two players, and must stand once in a list of both.
std::string KeyOf(std::int32_t competition, const cPairMemberNumbers& pair, bool samePair) {
  if (competition != 0) {
    return "K" + std::to_string(competition) + "_" + NumberInKey(pair.Lower()) + "_" + NumberInKey(pair.Higher());
  }
  return samePair ? cHandiCalcResultData::kPairSeedKey : cHandiCalcResultData::kSeedKey;
}

}  // namespace

// In ascending order, so that a pair is the same whoever is named first; -1 comes before every member.
cPairMemberNumbers cPairMemberNumbers::Create(std::int32_t Player, std::int32_t Partner) {
  cPairMemberNumbers pair;
  pair.lower_ = std::min(Player, Partner);
  pair.higher_ = std::max(Player, Partner);
  return pair;
}

bool cPairMemberNumbers::BothMembers() const {
  return lower_ != kNoMember && higher_ != kNoMember;
}

bool cPairMemberNumbers::BothNonMembers() const {
  return lower_ == kNoMember && higher_ == kNoMember;
}

// Two pairs of a member and a visitor are never the same: visitors have one number for all of them.
bool cPairMemberNumbers::SameAs(const cPairMemberNumbers& Other) const {
  return higher_ == Other.higher_ && lower_ == Other.lower_ && BothMembers();
}

cHandiCalcResultData cHandiCalcResultData::Create(std::int32_t nCompetitionID, Date dCompetitionDate, double dPercent,
                                                  const cPairMemberNumbers& PairInfo, bool SamePair) {
  cHandiCalcResultData data;
  data.competition_ = nCompetitionID;
  data.percentage_ = dPercent;
  data.date_ = dCompetitionDate;
  data.samePair_ = SamePair;
  // No competition has the identifier 0: automatic numbers begin with 1.
  data.isSeed_ = nCompetitionID == 0;
  data.key_ = KeyOf(nCompetitionID, PairInfo, SamePair);
  return data;
}

// By days: the times of day of two sessions say nothing, and equal days keep the order of the file.
bool cHandiCalcResultData::LaterThan(const cHandiCalcResultData& Other) const {
  return date_.DayNumber() > Other.date_.DayNumber();
}

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

// A seed stands for results that a new player has not got yet, and goes when there are enough.
void TrimSeeds(HandicapResultList& List, std::int16_t MaxResults) {
  if (static_cast<std::int64_t>(List.Count()) <= MaxResults) return;
  List.Remove(cHandiCalcResultData::kPairSeedKey);
  List.Remove(cHandiCalcResultData::kSeedKey);
}

double AverageOf(const HandicapResultList& List, std::int32_t playerNumber, double unknownPlayerHandicap) {
  // A member without results is an average player until he has some; of a visitor the club's settings say it.
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
