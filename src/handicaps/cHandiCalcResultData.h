#pragma once

#include <cstdint>
#include <string>

#include "handicaps/cPairMemberNumbers.h"
#include "platform/values/Date.h"

namespace tavi {

/// One result, or one seed (a starting handicap that counts like a result), that takes part in an average.
class cHandiCalcResultData {
 public:
  /// The keys of seeds.
  static constexpr const char* kPairSeedKey = "PairSeed";
  static constexpr const char* kSeedKey = "Seed";

  /// A competition identifier of 0 makes a seed: one of the pair when SamePair, else one of a player. `dPercent` is in
  /// per cent.
  static cHandiCalcResultData Create(std::int32_t nCompetitionID, Date dCompetitionDate, double dPercent,
                                     const cPairMemberNumbers& PairInfo, bool SamePair);

  /// Tells results apart: "K" with competition and pair, the same whichever of the two players it was read for; of a
  /// seed one of the seeds' keys.
  [[nodiscard]] const std::string& Key() const { return key_; }
  [[nodiscard]] bool IsSeed() const { return isSeed_; }
  /// True when it is a result of the two players together whose handicaps are asked for.
  [[nodiscard]] bool SamePairResult() const { return samePair_; }
  [[nodiscard]] double Percentage() const { return percentage_; }
  [[nodiscard]] Date CompetitionDate() const { return date_; }
  /// True when its calendar day is later than the other one's.
  [[nodiscard]] bool LaterThan(const cHandiCalcResultData& Other) const;

 private:
  std::int32_t competition_ = 0;
  double percentage_ = 0.0;
  Date date_;
  bool samePair_ = false;
  bool isSeed_ = false;
  std::string key_;
};

}  // namespace tavi
