#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

namespace tavi::access {

/// Little-endian integers, as everything in the file is written. The caller knows that they fit; a page looks first.
template <typename Integer>
[[nodiscard]] constexpr Integer GetLittle(std::span<const std::uint8_t> bytes, std::size_t offset) {
  // One expression without a loop, of which compilers make a single load.
  return [&]<std::size_t... kPlace>(std::index_sequence<kPlace...>) {
    return static_cast<Integer>((... | (static_cast<std::uint64_t>(bytes[offset + kPlace]) << (8U * kPlace))));
  }
  (std::make_index_sequence<sizeof(Integer)>());
}

template <typename Integer>
constexpr void PutLittle(std::span<std::uint8_t> bytes, std::size_t offset, Integer value) {
  for (std::size_t i = 0; i < sizeof(Integer); ++i) bytes[offset + i] = static_cast<std::uint8_t>(value >> (8U * i));
}

/// A 64-bit checksum that tells whether bytes are the ones that were written; made for torn and stale writes, not
/// against forgery. Every change of a single byte changes it. Chained by passing the last result as the seed of the
/// next stretch; the result depends on where the stretches were cut. The same on every machine.
[[nodiscard]] std::uint64_t Checksum(std::uint64_t seed, std::span<const std::uint8_t> bytes);

}  // namespace tavi::access
