#include "handicaps/cPairMemberNumbers.h"

#include <algorithm>

namespace tavi {

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

bool cPairMemberNumbers::SameAs(const cPairMemberNumbers& Other) const {
  return higher_ == Other.higher_ && lower_ == Other.lower_ && BothMembers();
}

}  // namespace tavi
