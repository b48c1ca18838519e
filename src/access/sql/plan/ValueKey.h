#pragma once

#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

#include "access/table/TableDefinition.h"
#include "access/table/TableRows.h"
#include "platform/values/Value.h"

namespace tavi::access::sql {

/// Kinds of values that can be compared with each other.
enum class ValueFamily { None, Number, Text, Bytes, Guid };
/// The family of a value (None for null), of a column's values. Dates, amounts and truth values are numbers.
ValueFamily FamilyOf(const Value& value);
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

}  // namespace tavi::access::sql
