#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>

namespace tavi {

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

}  // namespace tavi
