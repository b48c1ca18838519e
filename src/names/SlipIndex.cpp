// One slip makes of SMITH a text that shares with it what is left when one letter goes: SMITH without T is SMIH, and
// SMIHT without its last letter is SMIH too. So each form is filed under the hashes of itself and of itself without
// each of its letters, and a name is looked up under as many. Who is found is compared letter by letter.
#include "names/SlipIndex.h"

#include <algorithm>
#include <numeric>

namespace tavi {
namespace {

/// Of 15,000 surnames some eight entries have the same upper bits, so that they are looked through one by one.
constexpr unsigned kUpperBits = 14;
constexpr unsigned kLowerBits = 32 - kUpperBits;

}  // namespace

SlipIndex::SlipIndex(const NameTable& table) {
  for (std::size_t form = 0; form < table.Size(); ++form) {
    ForEachGap(table.LettersOf(form), [&](std::uint32_t hash) {
      entries_.push_back({hash, static_cast<std::uint32_t>(form)});
    });
  }
  Sort();
}

// By the upper bits in one pass, which is several times as fast as sorting all of them by comparing.
void SlipIndex::Sort() {
  starts_.assign((std::size_t{1} << kUpperBits) + 1, 0);
  for (const Entry& entry : entries_) ++starts_[(entry.hash >> kLowerBits) + 1];
  std::partial_sum(starts_.begin(), starts_.end(), starts_.begin());
  std::vector<std::uint32_t> next = starts_;
  std::vector<Entry> sorted(entries_.size());
  for (const Entry& entry : entries_) sorted[next[entry.hash >> kLowerBits]++] = entry;
  const auto byHash = [](const Entry& left, const Entry& right) {
    return left.hash != right.hash ? left.hash < right.hash : left.form < right.form;
  };
  for (std::size_t bits = 0; bits + 1 < starts_.size(); ++bits) {
    const auto range = std::span(sorted).subspan(starts_[bits], starts_[bits + 1] - starts_[bits]);
    std::sort(range.begin(), range.end(), byHash);
  }
  entries_ = std::move(sorted);
}

std::span<const SlipIndex::Entry> SlipIndex::Find(std::uint32_t hash) const {
  const std::uint32_t bits = hash >> kLowerBits;
  std::uint32_t first = starts_[bits];
  while (first < starts_[bits + 1] && entries_[first].hash < hash) ++first;
  std::uint32_t last = first;
  while (last < starts_[bits + 1] && entries_[last].hash == hash) ++last;
  return std::span<const Entry>(entries_).subspan(first, last - first);
}

}  // namespace tavi
