#pragma once

#include <cstdint>

#include "names/MemberValues.h"

namespace tavi {

/// The limits of HandiCalcSettings::SamePartnerWeighting: the players' own averages alone, the joint results alone.
inline constexpr std::int16_t kPlayersAlone = 50;
inline constexpr std::int16_t kJointResultsAlone = 100;

/// How handicaps are calculated: over which results, how a pair's joint results count, and how a regular pair's
/// handicap is adjusted. A plain value; a new one holds the defaults.
class HandiCalcSettings {
 public:
  /// Weeks back from which results are taken; below 1: results of any age.
  [[nodiscard]] std::int16_t MaxWeeks() const { return maxWeeks_; }
  void SetMaxWeeks(std::int16_t value) { maxWeeks_ = value; }
  /// How many of the latest results are taken; 0: all of them, and then no seeds beside results.
  [[nodiscard]] std::int16_t MaxResults() const { return maxResults_; }
  void SetMaxResults(std::int16_t value) { maxResults_ = value; }
  /// The factor for a regular pair's handicap.
  [[nodiscard]] double RegularPairMultiplier() const { return regularPairMultiplier_; }
  void SetRegularPairMultiplier(double value) { regularPairMultiplier_ = value; }
  /// What a regular pair's handicap gains after the factor, in per cent.
  [[nodiscard]] double RegularPairAdd() const { return regularPairAdd_; }
  void SetRegularPairAdd(double value) { regularPairAdd_ = value; }
  /// The handicap of somebody who is no member, in per cent.
  [[nodiscard]] double UnknownPlayerHandicap() const { return unknownPlayerHandicap_; }
  void SetUnknownPlayerHandicap(double value) { unknownPlayerHandicap_ = value; }
  /// True when the club has switched the calculation off.
  [[nodiscard]] bool Disabled() const { return disabled_; }
  void SetDisabled(bool value) { disabled_ = value; }

  /// An independent copy.
  [[nodiscard]] HandiCalcSettings Clone() const;
  /// No limits, same-partner weighting 50, no adjustment, unknown players 50, not disabled.
  void SetDefaults();

  /// The weight of results that the pair had together, in per cent: kPlayersAlone (50) to kJointResultsAlone
  /// (100). Values outside are set to the nearer limit.
  [[nodiscard]] std::int16_t SamePartnerWeighting() const { return samePartnerWeighting_; }
  void SetSamePartnerWeighting(std::int16_t value);
  /// True when factor or addition for regular pairs change anything (by more than 0.00001).
  [[nodiscard]] bool IncludesRegularPairAdjustment() const;
  /// A regular pair's handicap from its gross one, neither rounded nor limited, whether or not the adjustment changes
  /// anything.
  [[nodiscard]] double AdjustRegularPair(double GrossHandicap) const {
    return GrossHandicap * regularPairMultiplier_ + regularPairAdd_;
  }

 private:
  std::int16_t maxWeeks_ = 0;
  std::int16_t maxResults_ = 0;
  std::int16_t samePartnerWeighting_ = kPlayersAlone;
  double regularPairMultiplier_ = 1.0;
  double regularPairAdd_ = 0.0;
  double unknownPlayerHandicap_ = kNeutralHandicap;
  bool disabled_ = false;
};

}  // namespace tavi
