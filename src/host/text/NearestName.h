#pragma once

#include <string>
#include <vector>

namespace tavi::host {

/// The name of a list that somebody who typed `typed` most likely meant: the one with the fewest slips of the pen
/// between them, capitals aside. Empty when none is near.
[[nodiscard]] std::string NearestName(const std::string& typed, const std::vector<std::string>& names);

}  // namespace tavi::host
