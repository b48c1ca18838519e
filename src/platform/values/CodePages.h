#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

/// Texts of one byte for each character, in a code page of Windows: 1250 (Central European), 1251 (Cyrillic), 1252
/// (Western European), 1253 (Greek), 1254 (Turkish) or 1257 (Baltic). Any other number is taken for 1252.
namespace tavi {

inline constexpr std::uint16_t kWesternCodePage = 1252;

/// The character of a byte; for one that the page leaves open the control character of the same number (80 to 9F).
[[nodiscard]] char32_t CharacterOfByte(std::uint8_t byte, std::uint16_t codePage);
/// The byte of a character; nothing when the page has none for it.
[[nodiscard]] std::optional<std::uint8_t> ByteOfCharacter(char32_t character, std::uint16_t codePage);
/// The bytes' characters as UTF-8.
[[nodiscard]] std::string DecodeCodePage(std::span<const std::uint8_t> bytes, std::uint16_t codePage);

}  // namespace tavi
