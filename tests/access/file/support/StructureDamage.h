#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "access/file/support/Random.h"

namespace tavi::access::test {

/// Damages one field of a page that steers where and how far a reader goes: a link to another page, a count, an offset,
/// a length, a page's type or owner, the bits of a map. Links then lead to the page itself, to others of its kind, or
/// out of the file; counts are off by a little or by much. `page` is the page; one that is chosen, when it is 0.
/// Returns what was done, for messages, and sets `page` to the page that was hurt.
std::string DamageStructure(std::vector<std::uint8_t>& bytes, std::size_t& page, Random& random);

}  // namespace tavi::access::test
