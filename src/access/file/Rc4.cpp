#include "access/file/Rc4.h"

#include <array>
#include <utility>

namespace tavi::access {

void ApplyRc4(std::uint32_t key, std::span<std::uint8_t> bytes) {
  constexpr unsigned kStateSize = 256;
  constexpr unsigned kKeySize = 4;
  std::array<std::uint8_t, kStateSize> state{};
  for (unsigned i = 0; i < kStateSize; ++i) state[i] = static_cast<std::uint8_t>(i);
  std::uint8_t mixed = 0;
  for (unsigned i = 0; i < kStateSize; ++i) {
    const auto keyByte = static_cast<std::uint8_t>(key >> (8U * (i % kKeySize)));
    mixed = static_cast<std::uint8_t>(mixed + state[i] + keyByte);
    std::swap(state[i], state[mixed]);
  }
  std::uint8_t first = 0;
  std::uint8_t second = 0;
  for (std::uint8_t& byte : bytes) {
    first = static_cast<std::uint8_t>(first + 1U);
    second = static_cast<std::uint8_t>(second + state[first]);
    std::swap(state[first], state[second]);
    byte = static_cast<std::uint8_t>(byte ^ state[static_cast<std::uint8_t>(state[first] + state[second])]);
  }
}

}  // namespace tavi::access
