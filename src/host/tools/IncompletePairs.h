#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/commands/Context.h"

namespace tavi::host {

/// A stored partnership that lacks the number of one player or of both.
struct IncompletePair {
  std::optional<std::int32_t> first;  ///< in the order in which the pair was entered
  std::optional<std::int32_t> second;
  std::string knownAs;
  std::optional<double> handicap;
  bool active = false;
};

/// The partnerships of a club's file that walks pass over, because they do not say who plays, in the order of the
/// file. Raises the provider's errors.
std::vector<IncompletePair> IncompletePairs(const Context& context, const std::string& file);

}  // namespace tavi::host
