#pragma once

#include <cstdint>
#include <vector>

#include "store/cDatabase.h"
#include "util/cIntegerList.h"

namespace tavi {

/// The players that a walk of the partnerships met who are not active members (any more).
class RetiredPlayers {
 public:
  void Add(std::int32_t memberNumber);
  /// Makes every partnership of these players inactive, the smallest number first.
  void RetireFromPartnerships(cDatabase& store) const;

 private:
  cIntegerList list_;
  std::vector<std::int32_t> beyondList_;  // numbers that a 16-bit list cannot hold
};

}  // namespace tavi
