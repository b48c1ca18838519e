#include "composition/NameMatch.h"

#include "names/MatchReasons.h"

namespace tavi {

NameMatch CompareNames(const std::shared_ptr<const NameKeyService>& keys, const std::string& typed,
                       const MemberName& member) {
  cPlayerDetails own(keys);
  own.SetName(typed);
  cPlayerDetails other(keys);
  other.SetNameComponents(member.first, member.initials, member.last);
  return {own.MatchWeight(other), MatchReason(own, other)};
}

}  // namespace tavi
