#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "access/catalog/Database.h"

namespace tavi::host {

/// Rows of a club's file that lack a number, or a readable one, which the handicaps are made of.
struct MissingNumbers {
  std::vector<std::string> rows;  ///< one line each, the first hundred
  std::size_t more = 0;           ///< how many were left out
};

/// Finds results without a percentage, and members and partnerships without a number, which are passed over where
/// handicaps are made, and those whose value is no number, where that fails. None for a file that is no club's. Raises
/// the engine's error where a table cannot be read.
MissingNumbers FindMissingNumbers(access::Database& database);

}  // namespace tavi::host
