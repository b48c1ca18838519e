#pragma once

#include <string>

#include "host/commands/Context.h"

namespace tavi::host {

/// `tavi dump`: writes the contents of an Access file into a folder as text files that can be compared with others (see
/// DatabaseDump.h). The folder is made, or must be empty: a file of an earlier dump would look like a table of
/// this one.
int Dump(const Context& context, const std::string& file, const std::string& folder);

}  // namespace tavi::host
