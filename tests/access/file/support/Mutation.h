#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "access/file/support/Random.h"

namespace tavi::access::test {

/// Damages the bytes of a database file in one of many ways: single bytes and bits, stretches overwritten, numbers put
/// where page numbers, lengths and offsets may be, pages exchanged or copied over others, the end cut off or repeated.
/// Places in the first bytes of pages, which steer the rest, are hit more often. Returns what was done, for messages.
std::string DamageFile(std::vector<std::uint8_t>& bytes, Random& random);

/// Changes bytes of any kind: flips, inserts, removes, repeats, and takes in pieces of another example.
void Mutate(std::vector<std::uint8_t>& bytes, std::span<const std::uint8_t> other, Random& random);

}  // namespace tavi::access::test
