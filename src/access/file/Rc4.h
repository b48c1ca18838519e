#pragma once

#include <cstdint>
#include <span>

namespace tavi::access {

/// XORs the bytes with the RC4 key stream of a 4-byte key (little-endian). Doing it twice gives the first bytes back.
/// Encoded files use it for whole pages, with the database key XOR the page number; the header for its masked region.
void ApplyRc4(std::uint32_t key, std::span<std::uint8_t> bytes);

}  // namespace tavi::access
