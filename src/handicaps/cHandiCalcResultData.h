#pragma once

#include <cstdint>
#include <string>

#include "names/MemberValues.h"
#include "platform/values/Date.h"
#include "util/KeyedList.h"

/// The results and seeds that take part in the averages of a handicap calculation, and lists of them.
namespace tavi {

/// Two member numbers without regard to who was named first; -1 is no member.
class cPairMemberNumbers {
 public:
  /// Nobody: both numbers -1.
  cPairMemberNumbers() = default;
  /// The numbers in ascending order.
  static cPairMemberNumbers Create(std::int32_t Player, std::int32_t Partner);

  [[nodiscard]] std::int32_t Lower() const { return lower_; }
  [[nodiscard]] std::int32_t Higher() const { return higher_; }
  [[nodiscard]] bool BothMembers() const;
  [[nodiscard]] bool BothNonMembers() const;
  /// True for the same two numbers, provided that neither is -1.
  [[nodiscard]] bool SameAs(const cPairMemberNumbers& Other) const;

 private:
  std::int32_t lower_ = kNoMember;
  std::int32_t higher_ = kNoMember;
};

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

/// Results and seeds, newest first, by key.
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
