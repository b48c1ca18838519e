#include "util/TextHelpers.h"

#include <algorithm>
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

bool IsFigures(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

std::string WithoutLeadingZeros(std::string_view number) {
  const std::size_t digit = number.find_first_not_of('0');
  return digit == std::string_view::npos ? std::string() : std::string(number.substr(digit));
}

}  // namespace tavi
