#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tavi::access::test {

/// Bytes as upper-case hexadecimal pairs with blanks between, the way keys are written in these tests.
inline std::string ToHex(const std::vector<std::uint8_t>& bytes) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string text;
  for (const std::uint8_t byte : bytes) {
    if (!text.empty()) text += ' ';
    text += kDigits[byte >> 4U];
    text += kDigits[byte & 0x0FU];
  }
  return text;
}

}  // namespace tavi::access::test
