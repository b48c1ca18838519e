#include "handicaps/cHandiCalcResultData.h"

namespace tavi {
namespace {

std::string NumberInKey(std::int32_t memberNumber) {
  return memberNumber == kNoMember ? std::string() : std::to_string(memberNumber);
}

std::string KeyOf(std::int32_t competition, const cPairMemberNumbers& pair, bool samePair) {
  if (competition != 0) {
    return "K" + std::to_string(competition) + "_" + NumberInKey(pair.Lower()) + "_" + NumberInKey(pair.Higher());
  }
  return samePair ? cHandiCalcResultData::kPairSeedKey : cHandiCalcResultData::kSeedKey;
}

}  // namespace

cHandiCalcResultData cHandiCalcResultData::Create(std::int32_t nCompetitionID, Date dCompetitionDate, double dPercent,
                                                  const cPairMemberNumbers& PairInfo, bool SamePair) {
  cHandiCalcResultData data;
  data.competition_ = nCompetitionID;
  data.percentage_ = dPercent;
  data.date_ = dCompetitionDate;
  data.samePair_ = SamePair;
  data.isSeed_ = nCompetitionID == 0;
  data.key_ = KeyOf(nCompetitionID, PairInfo, SamePair);
  return data;
}

bool cHandiCalcResultData::LaterThan(const cHandiCalcResultData& Other) const {
  return date_.DayNumber() > Other.date_.DayNumber();
}

}  // namespace tavi
