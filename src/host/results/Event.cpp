#include "host/results/Event.h"

#include <algorithm>

#include "platform/values/Text.h"

namespace tavi::host {

std::int32_t ColourCode(const std::string& name) {
  const std::string upper = UpperCase(name);
  if (upper.starts_with("G") && !upper.starts_with("GO")) return 1;
  if (upper.starts_with("R")) return 2;
  if (upper == "BLUE") return 3;
  if (upper.starts_with("GO")) return 4;
  return 0;
}

bool Event::HasPercentages() const {
  return std::all_of(contestants.begin(), contestants.end(),
                     [](const Contestant& contestant) { return contestant.actualPercentage.has_value(); });
}

}  // namespace tavi::host
