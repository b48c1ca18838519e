#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "access/catalog/Database.h"
#include "host/commands/Context.h"
#include "platform/Platform.h"

namespace tavi::host {

/// How the keys that a club's file stores for names (see names/NameKeys.h) compare with the ones that are made now.
struct NameKeyCount {
  std::size_t members = 0;
  std::size_t stale = 0;  ///< members with a key that is not the one made now: searches by similar names miss them
};

/// Counts them; all zero for a file that is no club's. Raises the engine's error where the members cannot be read.
NameKeyCount CountNameKeys(access::Database& database, const NameKeyService& keys);

/// Rows of a club's file that lack a number, or a readable one, which the handicaps are made of.
struct MissingNumbers {
  std::vector<std::string> rows;  ///< one line each, the first hundred
  std::size_t more = 0;           ///< how many were left out
};

/// Finds results without a percentage, and members and partnerships without a number, which are passed over where
/// handicaps are made, and those whose value is no number, where that fails. None for a file that is no club's. Raises
/// the engine's error where a table cannot be read.
MissingNumbers FindMissingNumbers(access::Database& database);

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
