#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace tavi::access {

/// Text of a Jet 3 file: one byte for each character, in a Windows code page (1250 to 1254 and 1257; any other is read
/// as 1252). Gives UTF-8; a byte that the page leaves open becomes the control character of the same number.
[[nodiscard]] std::string DecodeAnsiText(std::span<const std::uint8_t> stored, std::uint16_t codePage);

}  // namespace tavi::access
