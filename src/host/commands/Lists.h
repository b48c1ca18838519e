#pragma once

#include <string>

#include "host/commands/Context.h"

namespace tavi::host {

/// `tavi members`: the members, retired ones too when `all`.
int ListMembers(const Context& context, bool all);
/// `tavi pairs`: the regular partnerships.
int ListPairs(const Context& context, bool all);
/// `tavi handicaps`: stored handicaps of members and partnerships; recalculates all of them first when asked to.
int ListHandicaps(const Context& context, bool recalculate);
/// `tavi find NAME`: the member of a name and the members whose names sound like it, best first, with the weight of
/// each match and the reason for it.
int FindByName(const Context& context, const std::string& name);

}  // namespace tavi::host
