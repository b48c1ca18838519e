#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "access/catalog/Database.h"

namespace tavi::host {

/// Rows of a club's file that lack a number which the handicaps are made of.
struct MissingNumbers {
  std::vector<std::string> rows;  ///< one line each, the first hundred
  std::size_t more = 0;           ///< how many were left out
};

/// Finds results without a percentage, and members and partnerships without a number: what is made of percentages and
/// numbers passes them over. None for a file that is no club's. Raises the engine's error where a table cannot be read.
MissingNumbers FindMissingNumbers(access::Database& database);

}  // namespace tavi::host
