#pragma once

#include <cstdint>
#include <set>

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
  std::set<std::int32_t> beyondList_;  // numbers that a 16-bit list, or a full one, cannot hold
};

}  // namespace tavi
