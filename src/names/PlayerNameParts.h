#pragma once

#include <string>

namespace tavi {

/// The three parts of a player's name.
struct PlayerNameParts {
  std::string FirstName;
  std::string Initials;
  std::string Surname;

  bool operator==(const PlayerNameParts&) const = default;
};

}  // namespace tavi
