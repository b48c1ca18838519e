#include "members/RetiredPlayers.h"

#include <limits>
#include <string>

namespace tavi {
namespace {

void RetireFrom(cDatabase& store, std::int32_t memberNumber) {
  const std::string number = std::to_string(memberNumber);
  store.Execute("Update Partnerships set Active = 0 where LowerPlayer = " + number + " Or HigherPlayer = " + number);
}

}  // namespace

void RetiredPlayers::Add(std::int32_t memberNumber) {
  using Limits = std::numeric_limits<std::int16_t>;
  const bool isListed = memberNumber >= Limits::min() && memberNumber <= Limits::max();
  if (isListed && list_.Count() < Limits::max()) {
    list_.Add(static_cast<std::int16_t>(memberNumber));
  } else {
    beyondList_.insert(memberNumber);
  }
}

void RetiredPlayers::RetireFromPartnerships(cDatabase& store) const {
  for (std::int32_t position = 1; position <= list_.Count(); ++position) {
    RetireFrom(store, list_.Item(static_cast<std::int16_t>(position)));
  }
  for (const std::int32_t number : beyondList_) RetireFrom(store, number);
}

}  // namespace tavi
