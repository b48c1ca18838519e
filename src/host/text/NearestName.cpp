#include "host/text/NearestName.h"

#include <algorithm>
#include <numeric>

#include "platform/values/Text.h"

namespace tavi::host {
namespace {

/// How many letters must be changed, added or taken away to make one text of the other.
std::size_t SlipsBetween(const std::u32string& left, const std::u32string& right) {
  // One row of the table of distances at a time: costs[j] is what it takes from the letters of `left` so far to the
  // first j of `right`.
  std::vector<std::size_t> costs(right.size() + 1);
  std::iota(costs.begin(), costs.end(), std::size_t{0});
  for (std::size_t i = 0; i < left.size(); ++i) {
    std::size_t diagonal = costs[0];
    costs[0] = i + 1;
    for (std::size_t j = 0; j < right.size(); ++j) {
      const std::size_t change = diagonal + (left[i] == right[j] ? 0 : 1);
      diagonal = costs[j + 1];
      costs[j + 1] = std::min({change, costs[j] + 1, costs[j + 1] + 1});
    }
  }
  return costs.back();
}

}  // namespace

std::string NearestName(const std::string& typed, const std::vector<std::string>& names) {
  const std::u32string wanted = ToCodePoints(LowerCase(typed));
  std::string nearest;
  // Half of the letters may differ, and two in any case; beyond that it is another word.
  std::size_t fewest = std::max<std::size_t>(2, wanted.size() / 2) + 1;
  for (const std::string& name : names) {
    const std::size_t slips = SlipsBetween(wanted, ToCodePoints(LowerCase(name)));
    // As many slips as letters would be a name that has nothing in common. Of equally near ones the first stays.
    if (slips >= std::min(fewest, std::max(wanted.size(), name.size()))) continue;
    fewest = slips;
    nearest = name;
  }
  return nearest;
}

}  // namespace tavi::host
