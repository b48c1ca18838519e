#pragma once

#include <cstdint>

#include "names/MemberValues.h"

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

}  // namespace tavi
