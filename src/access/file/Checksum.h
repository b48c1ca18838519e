#pragma once

#include <cstdint>
#include <span>

namespace tavi::access {

/// A 64-bit checksum that tells whether bytes are the ones that were written; made for torn and stale writes, not
/// against forgery. Every change of a single byte changes it. Chained by passing the last result as the seed of the
/// next stretch; the result depends on where the stretches were cut. The same on every machine.
[[nodiscard]] std::uint64_t Checksum(std::uint64_t seed, std::span<const std::uint8_t> bytes);

}  // namespace tavi::access
