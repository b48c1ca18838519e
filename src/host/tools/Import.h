#pragma once

#include <string>

#include "host/commands/Context.h"

namespace tavi::host {

/// `tavi members import FILE`: adds the members of a file, and brings those whose number is in use already up to date
/// (handicap, notes and subscriptions stay). The whole file is checked first: names too long for their columns and the
/// like are refused before anything is stored.
int ImportMembers(const Context& context, const std::string& path);

/// `tavi pairs import FILE`: adds the regular pairs of a file. Both players must be members.
int ImportPairs(const Context& context, const std::string& path);

}  // namespace tavi::host
