#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace tavi::access {

/// Little-endian integers in bytes that are not a page (log records, headers). The caller knows that they fit.
template <typename Integer>
[[nodiscard]] constexpr Integer GetLittle(std::span<const std::uint8_t> bytes, std::size_t offset) {
  Integer value = 0;
  for (std::size_t i = 0; i < sizeof(Integer); ++i) {
    value = static_cast<Integer>(value | (static_cast<Integer>(bytes[offset + i]) << (8U * i)));
  }
  return value;
}

template <typename Integer>
constexpr void PutLittle(std::span<std::uint8_t> bytes, std::size_t offset, Integer value) {
  for (std::size_t i = 0; i < sizeof(Integer); ++i) bytes[offset + i] = static_cast<std::uint8_t>(value >> (8U * i));
}

}  // namespace tavi::access
