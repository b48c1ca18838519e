#pragma once

#include <map>
#include <string>

namespace tavi {

/// A table to be recovered and its column of identifiers, which may be empty.
struct TableSpecification {
  std::string table;
  std::string identifier;
};

/// Reads "Competitions:ID" or "Members": what stands before the first ":", and, trimmed, what stands behind it.
TableSpecification ParseTableSpecification(const std::string& text);

/// Reads "IsTeams=0,IsSwiss=0": the values of columns that an old file lacks, by their names in lower case. An empty
/// text has no items. Raises "Illegal defaults setting" (source "Recovery") for an item without "=".
std::map<std::string, std::string> ParseDefaults(const std::string& text);

}  // namespace tavi
