#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "access/file/Page.h"

namespace tavi::access {

// What has changed in a page, as bytes: pieces back to back, each at another place of the page.
//
//   offset  size    meaning
//   0x00    2       where in the page the piece lies, little-endian as all numbers here
//   0x02    2       its length, at least 1; 0x8000 added: it lay elsewhere in the page before
//   0x04    length  its bytes; in a piece that lay elsewhere only 2 bytes, the place where it lay
//
// Example, an entry of 2 bytes (aa bb) put in at 0x1F0, before 0x40 bytes that move up, and a count at 0x0C that grows:
//   0c 00 01 00 06   f0 01 02 00 aa bb   f2 01 40 80 f0 01

/// What leads from one content of a page to another; nothing when they are the same.
[[nodiscard]] std::vector<std::uint8_t> DeltaBetween(std::span<const std::uint8_t, kPageSize> before,
                                                     std::span<const std::uint8_t, kPageSize> after);
/// Whether any bytes are a delta, whose pieces lie in the page.
[[nodiscard]] bool IsDelta(std::span<const std::uint8_t> bytes);
/// Makes the page what it is after the delta, which must be one.
void ApplyDelta(std::span<const std::uint8_t> delta, std::span<std::uint8_t, kPageSize> page);

}  // namespace tavi::access
