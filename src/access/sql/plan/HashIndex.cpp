#include "access/sql/plan/HashIndex.h"

#include <algorithm>

namespace tavi::access::sql {

HashIndex::HashIndex(std::vector<Entry> entries) : entries_(std::move(entries)) {
  std::sort(entries_.begin(), entries_.end());
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    if (i == 0 || entries_[i].first != entries_[i - 1].first) ++distinct_;
  }
}

void HashIndex::Find(std::uint64_t hash, std::vector<std::uint32_t>& candidates) const {
  auto it = std::lower_bound(entries_.begin(), entries_.end(), Entry{hash, 0});
  for (; it != entries_.end() && it->first == hash; ++it) candidates.push_back(it->second);
  const auto [first, last] = added_.equal_range(hash);
  for (auto added = first; added != last; ++added) candidates.push_back(added->second);
}

double HashIndex::RowsPerKey() const {
  if (distinct_ == 0) return 1.0;
  return static_cast<double>(entries_.size()) / static_cast<double>(distinct_);
}

}  // namespace tavi::access::sql
