#pragma once

#include <string>
#include <vector>

#include "host/input/Csv.h"

namespace tavi::host {

/// The columns of a file that are none of `known`. Raises InvalidArgument ("FILE:1: ..."), which suggests the nearest
/// known name for each, when there are any and they are not to be passed over.
std::vector<std::string> UnknownColumns(const CsvFile& file, const std::vector<std::string>& known, bool passOver);

}  // namespace tavi::host
