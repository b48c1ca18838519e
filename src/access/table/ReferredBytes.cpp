#include "access/table/ReferredBytes.h"

#include <algorithm>

// A sum over what was read, with one number for each reference that was seen, so that reading a row again counts once.
// Lengths change under it: long values are replaced and rows deleted without a word to this object, and what was noted
// may be gone. So the sum is only a suspicion. When it passes the bound all references are looked up again (Renew), and
// only the sum of what they lead to then refuses a row.

namespace tavi::access {

namespace {

constexpr unsigned kPartBits = 16;

/// Row pointer and part fit into one number of 48 bits.
std::uint64_t KeyOf(ReferredBytes::Reference reference) {
  return std::uint64_t{reference.row.Packed()} << kPartBits | reference.part;
}

ReferredBytes::Reference ReferenceOf(std::uint64_t key) {
  return {RowPointer::FromPacked(static_cast<std::uint32_t>(key >> kPartBits)), static_cast<std::uint16_t>(key)};
}

}  // namespace

// In a sound file the sum is at most the file's size right after a renewal, so that it takes as many new bytes again
// until another one is due. In a damaged file that stays above, none is made for each row that is refused: what is
// refused is taken out of the count again.
bool ReferredBytes::Note(Reference reference, std::size_t length, std::uint64_t fileSize,
                         const std::function<std::size_t(Reference)>& lengthNow) {
  const std::uint64_t key = KeyOf(reference);
  std::size_t& known = lengths_[key];
  // The usual case, a value that was read before, costs one look-up.
  if (known == length) return true;
  sum_ += length;
  sum_ -= known;
  notedSinceRenewal_ += length;
  known = length;
  if (sum_ <= 2 * fileSize) return true;
  if (!wasRenewed_ || notedSinceRenewal_ > fileSize) Renew(lengthNow);
  if (sum_ <= 2 * fileSize) return true;
  // The refused reference is forgotten, so that the rows that were read before it can still be read.
  notedSinceRenewal_ -= std::min<std::uint64_t>(notedSinceRenewal_, length);
  if (const auto refused = lengths_.find(key); refused != lengths_.end()) {
    sum_ -= refused->second;
    lengths_.erase(refused);
  }
  return false;
}

void ReferredBytes::Renew(const std::function<std::size_t(Reference)>& lengthNow) {
  sum_ = 0;
  for (auto& [key, length] : lengths_) {
    length = lengthNow(ReferenceOf(key));
    sum_ += length;
  }
  // References that lead nowhere any more need no memory.
  std::erase_if(lengths_, [](const auto& entry) { return entry.second == 0; });
  notedSinceRenewal_ = 0;
  wasRenewed_ = true;
}

}  // namespace tavi::access
