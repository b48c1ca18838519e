#pragma once

#include "access/sql/run/RowScope.h"

namespace tavi::access::sql {

/// A stretch of an index of the file: the entries whose first columns have given values and whose next column lies
/// between bounds. It may hold entries that do not satisfy the conditions; it leaves out none that does.
class IndexRange {
 public:
  /// The range that a path asks for, with the values that its expressions have in `scope`.
  IndexRange(const AccessPath& path, Table& table, const RowScope& scope);

  /// False when a value cannot be looked up in the index (it is of another kind than the column).
  [[nodiscard]] bool IsUsable() const { return isUsable_; }
  /// Appends the rows of the entries, as packed pointers, in key order.
  void Collect(std::vector<std::uint32_t>& rows) const;

 private:
  /// The value of an expression; notes when the range is empty or of no use.
  Value Take(const Expression& expression, std::size_t column, const RowScope& scope);
  void SetEnds(const AccessPath& path, std::vector<Value> equals, const Value& low, const Value& high);

  Table& table_;
  std::size_t index_;
  bool isUsable_ = true;
  bool isEmpty_ = false;
  bool isOneKey_ = false;
  std::optional<IndexKey> first_;  ///< where to start; none: at the beginning
  std::optional<IndexKey> last_;   ///< the last key, or what the last keys begin with; none: to the end
};

}  // namespace tavi::access::sql
