#include "util/TextHelpers.h"

#include <string_view>

namespace tavi {

std::string PaddedNumber(std::int32_t number, std::size_t digits) {
  std::string text = std::to_string(number);
  const std::size_t sign = number < 0 ? 1U : 0U;
  if (text.size() - sign < digits) text.insert(sign, digits - (text.size() - sign), '0');
  return text;
}

std::string HexadecimalNumber(std::int32_t number) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string text = "0x";
  for (unsigned shift = 32; shift > 0; shift -= 4) {
    text.push_back(kDigits[(static_cast<std::uint32_t>(number) >> (shift - 4)) & 0xFU]);
  }
  return text;
}

}  // namespace tavi
