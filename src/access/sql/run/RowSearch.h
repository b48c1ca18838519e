#pragma once

#include <map>

#include "access/sql/plan/FunctionReference.h"
#include "access/sql/run/RowScope.h"

namespace tavi::access::sql {

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
};

}  // namespace tavi::access::sql
