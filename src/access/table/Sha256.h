#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace tavi::access {

/// The SHA-256 digest of bytes (FIPS 180-4).
[[nodiscard]] std::array<std::uint8_t, 32> Sha256(std::span<const std::uint8_t> bytes);

}  // namespace tavi::access
