// The settings of the handicap calculation as values that know their limits.
#include "handicaps/HandiCalcSettings.h"

#include <algorithm>
#include <cmath>

namespace tavi {
namespace {

constexpr double kTolerance = 0.00001;
/// What two doubles that are written 1 and 1.00001 differ by beyond the tolerance.
constexpr double kNoise = 1e-12;

bool IsActive(double difference) {
  // As near as that, a number is meant to be 1, or 0, and switches nothing on.
  return std::abs(difference) > kTolerance + kNoise;
}

}  // namespace

HandiCalcSettings HandiCalcSettings::Clone() const {
  return *this;
}

void HandiCalcSettings::SetDefaults() {
  *this = HandiCalcSettings();
}

void HandiCalcSettings::SetSamePartnerWeighting(std::int16_t value) {
  samePartnerWeighting_ = std::clamp(value, kPlayersAlone, kJointResultsAlone);
}

bool HandiCalcSettings::IncludesRegularPairAdjustment() const {
  return IsActive(1.0 - regularPairMultiplier_) || IsActive(regularPairAdd_);
}

}  // namespace tavi
