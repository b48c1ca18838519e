#pragma once

#include <optional>
#include <string>
#include <unordered_map>

#include "access/catalog/Database.h"
#include "access/sql/plan/MemoryIndexes.h"
#include "access/sql/plan/Plan.h"

namespace tavi::access::sql {

/// Which ways of finding rows may be planned. Answers do not depend on it; tests compare them.
struct PlanOptions {
  bool fileIndexes = true;
  bool memoryIndexes = true;
};

/// What planning needs of the session.
struct PlanContext {
  Database& database;
  MemoryIndexes& memoryIndexes;
  PlanOptions options;
  /// Columns for which an index in memory was thought of, since the last level was planned.
  std::vector<MemoryIndexes::Considered> considered = {};
};

/// Finds out, for one select level, where the names of its expressions lead, and writes that into the level's plan.
class NameBinder {
 public:
  /// What a column is needed for: finding and ordering rows, or the select list.
  enum class Use { Search, Output };

  /// `outer`: the level around this one, null for none.
  NameBinder(PlanContext& context, SelectPlan& plan, const NameBinder* outer)
      : context_(context), plan_(plan), outer_(outer) {}

  [[nodiscard]] SelectPlan& Plan() const { return plan_; }

  /// Opens the tables of a FROM clause and plans its derived tables. Raises ProviderNoTable.
  void AddSources(const Source& tree);
  /// The number of a leaf of the FROM clause.
  [[nodiscard]] std::size_t NumberOf(const Source& leaf) const { return numbers_.at(&leaf); }

  /// Finds all names of an expression and plans its sub-selects. The aliases of the first `visibleItems` items of the
  /// select list may be named. Raises ProviderBadParameter for an unknown name, ProviderFailure for an ambiguous one.
  void Bind(const Expression& expression, Use use, std::size_t visibleItems = 0);

  /// The sources of this level that an expression (already bound) depends on.
  [[nodiscard]] SourceSet SourcesOf(const Expression& expression) const;

 private:
  void AddLeaf(const Source& leaf);
  [[nodiscard]] std::optional<Slot> FindColumn(const Expression& column) const;
  [[nodiscard]] std::optional<Slot> FindItem(const Expression& column, std::size_t visibleItems) const;
  void BindColumn(const Expression& column, Use use, std::size_t visibleItems);
  void BindSubselect(const Expression& expression, Use use);
  void MarkUse(const Slot& slot, Use use);
  [[nodiscard]] std::string SourceNames() const;

  PlanContext& context_;
  SelectPlan& plan_;
  const NameBinder* outer_;
  std::unordered_map<const Source*, std::size_t> numbers_;
};

/// The position of a column in a source; nothing when it has none of that name (ignoring case).
std::optional<std::size_t> FindColumn(const PlannedSource& source, std::string_view name);

}  // namespace tavi::access::sql
