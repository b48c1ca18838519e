#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>

/// What is to be copied out of an old file, and what the copies of its tables share.
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

/// Which identifier the copy of a row got in the new file, by the table and its identifier in the old one. Identifiers
/// of different tables are different things: competition 5 and award 5 have nothing to do with each other.
class IdentifierMap {
 public:
  void Enter(const std::string& table, std::int32_t oldIdentifier, std::int32_t newIdentifier) {
    entries_.try_emplace({table, oldIdentifier}, newIdentifier);
  }
  [[nodiscard]] std::optional<std::int32_t> Find(const std::string& table, std::int32_t oldIdentifier) const {
    const auto found = entries_.find({table, oldIdentifier});
    return found == entries_.end() ? std::nullopt : std::optional(found->second);
  }

 private:
  std::map<std::pair<std::string, std::int32_t>, std::int32_t> entries_;
};

/// A table as it is to be copied.
struct TableTask {
  std::string specification;        ///< ParseTableSpecification reads it
  std::string defaults{};           ///< ParseDefaults reads it
  std::string competitionColumn{};  ///< holds an identifier of Competitions; may be empty
};

/// What the copies of all tables of one recovery share.
struct CarriedOver {
  IdentifierMap identifiers;
  bool acceptsNegativeIdentifiers = false;  ///< random automatic numbers; without it they count as not found
  bool conversionNeeded = true;             ///< false as soon as the old Competitions table shows the current layout
  bool competitionsMayFollow = false;  ///< competitions were refused and are tried again, so their numbers may come
};

}  // namespace tavi
