#pragma once

#include <cstdint>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

#include "access/sql/expression/Operators.h"
#include "access/table/TableDefinition.h"
#include "access/table/TableRows.h"
#include "platform/values/Value.h"

namespace tavi::access::sql {

/// The family of the values of a column. Dates, amounts and truth values are numbers.
ValueFamily FamilyOf(ColumnType type);

/// A number such that values which compare equal (=) have equal ones: numbers of all types by amount, texts by the
/// file's sort order. Different values may share one.
std::uint64_t HashOf(const Value& value);
std::uint64_t HashOf(const RowValues& values);
/// True when the values are equal as keys of a group: nulls equal each other.
bool SameKey(const Value& left, const Value& right);
bool SameKey(const RowValues& left, const RowValues& right);

/// Numbers the distinct rows that it is shown: 0, 1, 2, ... in the order of their first appearance.
class DistinctRows {
 public:
  /// The number of the row, and whether it was new. Rows are kept.
  std::pair<std::size_t, bool> Add(const RowValues& row);
  [[nodiscard]] bool Contains(const RowValues& row) const { return Find(row, HashOf(row)).has_value(); }
  [[nodiscard]] const std::vector<RowValues>& Rows() const { return rows_; }
  [[nodiscard]] std::vector<RowValues> Take() { return std::move(rows_); }

 private:
  [[nodiscard]] std::optional<std::size_t> Find(const RowValues& row, std::uint64_t hash) const;

  std::vector<RowValues> rows_;
  std::unordered_multimap<std::uint64_t, std::size_t> numbers_;
};

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
