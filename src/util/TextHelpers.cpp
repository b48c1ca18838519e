#include "util/TextHelpers.h"

#include <array>

#include "platform/values/Digits.h"

namespace tavi {

// -42 with five digits is "-00042".
std::string PaddedNumber(std::int32_t number, std::size_t digits) {
  std::string text = std::to_string(number);
  const std::size_t sign = number < 0 ? 1U : 0U;
  if (text.size() - sign < digits) text.insert(sign, digits - (text.size() - sign), '0');
  return text;
}

// With all eight digits, as error numbers are looked up: "0x80040E14".
std::string HexadecimalNumber(std::int32_t number) {
  const auto bits = static_cast<std::uint32_t>(number);
  const std::array<std::uint8_t, 4> bytes{static_cast<std::uint8_t>(bits >> 24U),
                                          static_cast<std::uint8_t>(bits >> 16U), static_cast<std::uint8_t>(bits >> 8U),
                                          static_cast<std::uint8_t>(bits)};
  return "0x" + HexadecimalText(bytes);
}

}  // namespace tavi
