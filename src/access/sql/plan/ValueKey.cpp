// Hashes of values, and what is found by them: distinct rows, groups, and indexes in memory. The one rule is that
// values which compare equal have one hash. So a text is hashed by its key in the file's sort order, where "SMITH" and
// "Smith" are the same, and a number of any type by its amount as a double. Different values may share a hash, as
// decimals that differ behind the precision of a double do; whoever looks up compares the values themselves.
#include "access/sql/plan/ValueKey.h"

#include <algorithm>
#include <bit>
#include <string_view>

#include "access/index/Collation.h"
#include "platform/values/Convert.h"

namespace tavi::access::sql {

namespace {

/// FNV-1a, for bytes in a row. It hardly spreads the last byte into the high bits, which Mix then does.
constexpr std::uint64_t kHashSeed = 0xCBF29CE484222325U;
constexpr std::uint64_t kHashPrime = 0x100000001B3U;

/// A mixing of all bits that can be undone, so that it makes no two numbers the same.
std::uint64_t Mix(std::uint64_t hash) {
  hash ^= hash >> 33U;
  hash *= 0xFF51AFD7ED558CCDU;
  hash ^= hash >> 33U;
  hash *= 0xC4CEB9FE1A85EC53U;
  return hash ^ (hash >> 33U);
}

template <typename Range>
std::uint64_t HashBytes(const Range& bytes) {
  std::uint64_t hash = kHashSeed;
  for (const auto byte : bytes) hash = (hash ^ static_cast<std::uint8_t>(byte)) * kHashPrime;
  return Mix(hash);
}

std::uint64_t HashNumber(double number) {
  if (number == 0.0) number = 0.0;  // -0 equals 0
  return Mix(std::bit_cast<std::uint64_t>(number) ^ kHashSeed);
}

}  // namespace

ValueFamily FamilyOf(ColumnType type) {
  switch (type) {
    case ColumnType::Text:
    case ColumnType::Memo:
      return ValueFamily::Text;
    case ColumnType::Binary:
    case ColumnType::Ole:
    case ColumnType::FixedBinary:
      return ValueFamily::Bytes;
    case ColumnType::Guid:
      return ValueFamily::Guid;
    case ColumnType::Complex:
      return ValueFamily::None;
    default:
      return ValueFamily::Number;
  }
}

std::uint64_t HashOf(const Value& value) {
  switch (FamilyOf(value)) {
    case ValueFamily::None:
      return kHashSeed;
    case ValueFamily::Text:
      return HashBytes(CollationKey(std::get<std::string>(value)));
    case ValueFamily::Bytes:
      return HashBytes(std::get<Bytes>(value));
    case ValueFamily::Guid:
      return HashBytes(std::get<Guid>(value).bytes);
    case ValueFamily::Number:
      break;
  }
  // True compares equal to -1, and has to be found by it.
  if (const bool* truth = std::get_if<bool>(&value)) return HashNumber(*truth ? -1.0 : 0.0);
  return HashNumber(ToDouble(value));
}

// The order of the values counts: (1, 2) and (2, 1) are different rows.
std::uint64_t HashOf(const RowValues& values) {
  std::uint64_t hash = kHashSeed;
  for (const Value& value : values) hash = Mix(hash ^ HashOf(value)) + kHashPrime;
  return hash;
}

// Values of different families are never one key. Comparing them could raise a type conflict, so it is not tried.
bool SameKey(const Value& left, const Value& right) {
  // Groups and DISTINCT put nulls together, unlike comparisons.
  if (IsNull(left) || IsNull(right)) return IsNull(left) && IsNull(right);
  return FamilyOf(left) == FamilyOf(right) && CompareValues(left, right) == 0;
}

bool SameKey(const RowValues& left, const RowValues& right) {
  if (left.size() != right.size()) return false;
  for (std::size_t i = 0; i < left.size(); ++i) {
    if (!SameKey(left[i], right[i])) return false;
  }
  return true;
}

// Among rows of one hash, which nearly always are one; `hash` is that of the row.
std::optional<std::size_t> DistinctRows::Find(const RowValues& row, std::uint64_t hash) const {
  const auto [first, last] = numbers_.equal_range(hash);
  for (auto it = first; it != last; ++it) {
    if (SameKey(rows_[it->second], row)) return it->second;
  }
  return std::nullopt;
}

std::pair<std::size_t, bool> DistinctRows::Add(const RowValues& row) {
  const std::uint64_t hash = HashOf(row);
  if (const auto known = Find(row, hash)) return {*known, false};
  numbers_.emplace(hash, rows_.size());
  rows_.push_back(row);
  return {rows_.size() - 1, true};
}

// A sorted list takes much less memory than a hash table and is made once; only the few rows that are added later are
// in a table.
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

// As of the making: entries that were added since do not count.
double HashIndex::RowsPerKey() const {
  if (distinct_ == 0) return 1.0;
  return static_cast<double>(entries_.size()) / static_cast<double>(distinct_);
}

}  // namespace tavi::access::sql
