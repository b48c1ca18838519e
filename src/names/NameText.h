#pragma once

#include <string>
#include <string_view>

#include "names/PlayerNameParts.h"
#include "platform/Platform.h"

/// Splitting, joining and tidying names. No case is changed, and titles, prefixes and hyphens get no special treatment.
namespace tavi {

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
