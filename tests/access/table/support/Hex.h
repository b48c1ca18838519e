#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tavi::access::test {

/// Bytes from hexadecimal digits; blanks and bars between them are passed over.
[[nodiscard]] inline std::vector<std::uint8_t> FromHex(std::string_view text) {
  std::string digits;
  for (const char character : text) {
    if (character != ' ' && character != '|' && character != '\n') digits.push_back(character);
  }
  std::vector<std::uint8_t> bytes;
  for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
    bytes.push_back(static_cast<std::uint8_t>(std::stoi(digits.substr(i, 2), nullptr, 16)));
  }
  return bytes;
}

/// Lower-case digits, two for each byte, with blanks between the bytes.
[[nodiscard]] inline std::string ToHex(std::span<const std::uint8_t> bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text;
  for (const std::uint8_t byte : bytes) {
    if (!text.empty()) text.push_back(' ');
    text.push_back(kDigits[byte >> 4U]);
    text.push_back(kDigits[byte & 0xFU]);
  }
  return text;
}

}  // namespace tavi::access::test
