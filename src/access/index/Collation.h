#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tavi::access {

/// The "General" (legacy) sort order of Access files, LCID 1033 version 0: ignores case; a hyphen or apostrophe counts
/// only when all else is equal. Texts that give the same key are equal to the database.
/// The key of a text (UTF-8) as index pages hold it, without the flag byte: primary codes 01 diacritics ... 00. Only the
/// first 255 characters count; trailing blanks do not.
std::vector<std::uint8_t> CollationKey(std::string_view text);
/// Compares two texts in that order: negative, 0 or positive. Agrees with comparing their keys, but is quick for plain
/// Latin letters.
int CollationCompare(std::string_view left, std::string_view right);
/// True when text of this sort order can be indexed and compared here.
bool IsSupportedSortOrder(std::uint16_t sortOrder, std::uint8_t version);

}  // namespace tavi::access
