#pragma once

#include <cstdint>
#include <unordered_map>
#include <utility>
#include <vector>

namespace tavi::access::sql {

/// Finds row identifiers by the hash of a value. Gives candidates: rows of other values with the same hash, and rows
/// that have been changed or removed since, may be among them.
class HashIndex {
 public:
  using Entry = std::pair<std::uint64_t, std::uint32_t>;

  explicit HashIndex(std::vector<Entry> entries);

  /// Appends the candidates of a hash.
  void Find(std::uint64_t hash, std::vector<std::uint32_t>& candidates) const;
  /// Adds a row. Nothing is ever removed: a row that is gone stays a candidate.
  void Add(std::uint64_t hash, std::uint32_t row) { added_.emplace(hash, row); }

  [[nodiscard]] std::size_t Size() const { return entries_.size() + added_.size(); }
  /// Entries for each hash, on average.
  [[nodiscard]] double RowsPerKey() const;

 private:
  std::vector<Entry> entries_;  // sorted
  std::size_t distinct_ = 0;
  std::unordered_multimap<std::uint64_t, std::uint32_t> added_;
};

}  // namespace tavi::access::sql
