#include "names/NameText.h"

#include "platform/values/Text.h"

namespace tavi {

// Only blanks and tabs: whatever else a text holds belongs to it.
std::string CollapseWhitespace(std::string_view text, bool TrimEnds) {
  std::string result;
  for (const char character : text) {
    const bool isBlank = character == ' ' || character == '\t';
    if (isBlank && !result.empty() && result.back() == ' ') continue;
    result.push_back(isBlank ? ' ' : character);
  }
  return TrimEnds ? Trim(result) : result;
}

// A text without a word gives one empty one, so that the first name is empty.
PlayerNameParts SplitName(std::string_view FullName) {
  const std::vector<std::string> words = Split(CollapseWhitespace(FullName, true), ' ');
  PlayerNameParts parts;
  parts.FirstName = words.front();
  if (words.size() > 1) parts.Surname = words.back();
  for (std::size_t index = 1; index + 1 < words.size(); ++index) parts.Initials += words[index];
  return parts;
}

std::string JoinNameParts(std::string_view FirstName, std::string_view Initials, std::string_view Surname) {
  std::string name(FirstName);
  name.append(" ").append(Initials).append(" ").append(Surname);
  return CollapseWhitespace(name, true);
}

void ClearNameParts(PlayerNameParts& parts) {
  parts = PlayerNameParts{};
}

// Both keys in one call, because the outside class makes them with one object.
void MakeFuzzedNames(std::string& FuzzedFirstName, std::string& FuzzedSurname, const PlayerNameParts& parts,
                     const NameKeyService& service) {
  NameKeys keys = service.Keys(parts.Surname, parts.FirstName);
  FuzzedSurname = std::move(keys.surname);
  FuzzedFirstName = std::move(keys.firstName);
}

}  // namespace tavi
