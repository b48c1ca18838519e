#pragma once

#include <map>

#include "access/sql/plan/FunctionReference.h"
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
  /// The key, where one entry at most can have it; else null.
  [[nodiscard]] const IndexKey* OneKey() const { return isOneKey_ && first_ && !isEmpty_ ? &*first_ : nullptr; }
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

/// Finds the rows of a FROM and WHERE clause as a plan says: nested loops over the sources, each found by scan or
/// index.
class RowSearch {
 public:
  using Visit = FunctionReference<bool()>;

  /// Finds rows for `scope`. `withOutputs`: the columns of the select list are read along with those searched.
  RowSearch(RowScope& scope, bool withOutputs);

  /// Puts each combination of rows that satisfies all conditions into the scope and calls `visit`, until it gives
  /// false.
  void ForEach(Visit visit);
  /// The same with these rows of the one source in the place of all.
  void ForEachAmong(const std::vector<RowPointer>& rows, Visit visit);

 private:
  bool Run(const PlanNode& node, Visit visit);
  bool RunNested(const PlanNode& node, std::size_t part, Visit visit);
  bool RunOuter(const PlanNode& node, Visit visit);
  bool RunTable(const PlanNode& node, Visit visit);
  bool RunDerived(const PlanNode& node, Visit visit);
  bool RunInOrder(const PlanNode& node, const OrderWalk& walk, Visit visit);
  /// Makes a row the current one of its source and passes it on when it satisfies the node's conditions.
  bool Offer(const PlanNode& node, RowPointer pointer, Visit visit);
  bool PassOn(const PlanNode& node, Visit visit);

  /// Appends the rows that a path gives, as packed pointers or positions. False when it cannot serve the values that it
  /// is asked for now, so that every row must be looked at.
  bool Candidates(const AccessPath& path, std::size_t source, std::vector<std::uint32_t>& rows);
  bool IndexCandidates(const AccessPath& path, Table& table, std::vector<std::uint32_t>& rows);
  bool MemoryCandidates(const AccessPath& path, std::size_t source, std::vector<std::uint32_t>& rows);
  const std::vector<RowValues>& DerivedRows(std::size_t source);
  const HashIndex& DerivedIndex(std::size_t source, std::size_t column);

  RowScope& scope_;
  const SelectPlan& plan_;
  std::vector<std::vector<bool>> wanted_;  // columns to read, by source
  std::vector<bool> wantsAny_;
  std::map<std::pair<std::size_t, std::size_t>, HashIndex> derivedIndexes_;
  std::map<const AccessPath*, BTree::Finder> finders_;  // of indexes in which one key is looked up after the other
};

}  // namespace tavi::access::sql
