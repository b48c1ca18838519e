#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/Platform.h"

namespace tavi {

/// How well a member's name fits a typed one, and why (names/MatchReasons.h).
struct NameMatch {
  std::int16_t weight = 0;  ///< 121 to 444; 0: another name
  std::string reason;
};

/// The parts of a member's name.
struct MemberName {
  std::string first;
  std::string initials;
  std::string last;
};

/// Compares a typed full name with a member's. Errors of the platform's name-key service pass on.
[[nodiscard]] NameMatch CompareNames(const std::shared_ptr<const NameKeyService>& keys, const std::string& typed,
                                     const MemberName& member);

}  // namespace tavi
