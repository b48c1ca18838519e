#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tavi::access {

/// The "General" (legacy) sort order of Access files, LCID 1033 version 0: ignores case; a hyphen or apostrophe counts
/// only when all else is equal. Texts that give the same key are equal to the database.
///
/// The key of a text (UTF-8) as index pages hold it, without the flag byte, compared as unsigned bytes. Only the first
/// 255 characters (UTF-16 units) count; trailing blanks do not.
[[nodiscard]] std::vector<std::uint8_t> CollationKey(std::string_view text);
/// Appends the key of a text to `bytes`.
void AppendCollationKey(std::string_view text, std::vector<std::uint8_t>& bytes);
/// Compares two texts in that order: negative, 0 or positive. Agrees with comparing their keys, but is quick for plain
/// Latin letters.
[[nodiscard]] int CollationCompare(std::string_view left, std::string_view right);
/// True when text of this sort order can be indexed here.
[[nodiscard]] bool IsSupportedSortOrder(std::uint16_t sortOrder, std::uint8_t version);

}  // namespace tavi::access
