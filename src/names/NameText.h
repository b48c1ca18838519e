#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/Platform.h"

/// Splitting, joining and tidying names. No case is changed, and titles, prefixes and hyphens get no special treatment.
namespace tavi {

/// The three parts of a player's name.
struct PlayerNameParts {
  std::string FirstName;
  std::string Initials;
  std::string Surname;

  bool operator==(const PlayerNameParts&) const = default;
};

/// The codes of the formats in which names are shown (see cPlayerDetails::Name).
namespace name_format {
inline constexpr std::int16_t kFirstNameOnly = 1;
inline constexpr std::int16_t kInitialsOnly = 2;
inline constexpr std::int16_t kSurnameOnly = 3;
inline constexpr std::int16_t kFirstNameWithInitials = 4;
inline constexpr std::int16_t kFirstAndLast = 5;
inline constexpr std::int16_t kFirstAndLastIfUnique = 6;
inline constexpr std::int16_t kInFull = 7;
inline constexpr std::int16_t kFirstAndLetter = 8;
inline constexpr std::int16_t kFamiliar = 9;
inline constexpr std::int16_t kSurnameFirst = 10;
}  // namespace name_format

/// Every tab becomes a blank, every run of blanks one blank; TrimEnds also removes those at the ends.
std::string CollapseWhitespace(std::string_view text, bool TrimEnds);

/// The first word is the first name, the last of at least two the surname, all between them, without blanks, the
/// initials: "John A B Smith" has the initials "AB". A single word is a first name.
PlayerNameParts SplitName(std::string_view FullName);

/// First name, initials and surname with single blanks between those that are not empty.
std::string JoinNameParts(std::string_view FirstName, std::string_view Initials, std::string_view Surname);

/// Empties all parts.
void ClearNameParts(PlayerNameParts& parts);

/// The sound-alike keys of first name and surname. Errors of the service pass on.
void MakeFuzzedNames(std::string& FuzzedFirstName, std::string& FuzzedSurname, const PlayerNameParts& parts,
                     const NameKeyService& service);

}  // namespace tavi
