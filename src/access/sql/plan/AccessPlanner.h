#pragma once

#include <vector>

#include "access/sql/plan/NameBinder.h"

namespace tavi::access::sql {

/// One of the conditions that AND joins, and the sources that it depends on.
struct Conjunct {
  const Expression* expression = nullptr;
  SourceSet sources = 0;
};
using Conjuncts = std::vector<Conjunct>;

/// Appends the conditions of an expression that AND joins at the top. The expression is bound; null appends nothing.
void SplitConjuncts(const Expression* expression, const NameBinder& binder, Conjuncts& conjuncts);

/// Chooses how the rows of one source are found.
class AccessPlanner {
 public:
  AccessPlanner(PlanContext& context, const SelectPlan& plan, const NameBinder& binder)
      : context_(context), plan_(plan), binder_(binder) {}

  /// The cheapest path for the rows of `source` that satisfy `conjuncts`, while the rows of the sources `bound` are
  /// known. All conjuncts depend on these sources only.
  [[nodiscard]] AccessPath Choose(std::size_t source, const Conjuncts& conjuncts, SourceSet bound) const;

  /// The part of the rows that is likely to satisfy the conditions, 0..1.
  [[nodiscard]] static double Selectivity(const Conjuncts& conjuncts);

 private:
  /// A condition "column operator value" whose value is known before the source's rows are read.
  struct Argument {
    std::size_t column = 0;
    enum class Kind { Equal, Low, High, Between, List } kind = Kind::Equal;
    const Expression* condition = nullptr;
    const Expression* value = nullptr;
    const Expression* high = nullptr;  // Between
  };
  struct Task {
    std::size_t source;
    SourceSet bound;
    Table* table;  // null for a derived table
    double rowCount;
  };

  void CollectArguments(const Task& task, const Expression& condition, std::vector<Argument>& arguments) const;
  void CollectComparison(const Task& task, const Expression& condition, std::vector<Argument>& arguments) const;
  [[nodiscard]] std::optional<std::size_t> OwnColumn(const Task& task, const Expression& expression) const;
  [[nodiscard]] bool IsKnown(const Task& task, const Expression& expression) const;

  /// The best path that is no scan; nothing when there is none.
  [[nodiscard]] std::optional<AccessPath> ChooseIndexed(const Task& task,
                                                        const std::vector<const Expression*>& conditions) const;
  void TryIndexes(const Task& task, const std::vector<Argument>& arguments, std::optional<AccessPath>& best) const;
  void TryMemoryIndexes(const Task& task, const std::vector<Argument>& arguments,
                        std::optional<AccessPath>& best) const;
  /// True when an index of the file begins with the column, so that one in memory would gain little.
  [[nodiscard]] bool LeadsFileIndex(Table& table, std::size_t column) const;
  void NoteConsidered(const Table& table, std::size_t column) const;
  void TryLists(const Task& task, const std::vector<Argument>& arguments, std::optional<AccessPath>& best) const;
  void TryUnion(const Task& task, const Expression& condition, std::optional<AccessPath>& best) const;
  [[nodiscard]] std::optional<AccessPath> IndexPath(const Task& task, std::size_t index,
                                                    const std::vector<Argument>& arguments) const;
  void AddRange(const std::vector<Argument>& arguments, std::size_t column, AccessPath& path) const;
  [[nodiscard]] double EstimateIndexRows(const Task& task, const Index& index, const AccessPath& path) const;

  PlanContext& context_;
  const SelectPlan& plan_;
  const NameBinder& binder_;
};

}  // namespace tavi::access::sql
