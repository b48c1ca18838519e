#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "names/cPlayerDetails.h"

namespace tavi {

/// Why a member is offered for a typed name, in words: "same name", or what differs, the surname first: "surname sounds
/// alike, first name is short for Katherine". For two names that do not match (MatchWeight 0) "different name".
[[nodiscard]] std::string MatchReason(const cPlayerDetails& typed, const cPlayerDetails& member);

/// How well a member's name fits a typed one, and why (MatchReason).
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
