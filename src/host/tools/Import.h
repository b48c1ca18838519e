#pragma once

#include <string>

#include "host/commands/Context.h"

namespace tavi::host {

/// What an import is asked for.
struct ImportRequest {
  std::string file;
  bool dryRun = false;          ///< show what would be changed, and change nothing
  bool ignoreUnknown = false;   ///< pass over columns that are not known
  bool allowNamesakes = false;  ///< members only: a second member of one name may be added
};

/// `tavi members import FILE`: adds the members of a file, and changes of those who are there what the file says. The
/// whole file is checked first, and all of it stored or nothing. Writes how many members were added, changed and left,
/// or each change of a dry run.
int ImportMembers(const Context& context, const ImportRequest& request);

/// `tavi pairs import FILE`: the same for regular pairs. Both players must be members.
int ImportPairs(const Context& context, const ImportRequest& request);

}  // namespace tavi::host
