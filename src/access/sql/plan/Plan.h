#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "access/catalog/Table.h"
#include "access/sql/parse/Statement.h"
#include "platform/ado/Provider.h"

namespace tavi::access::sql {

struct SelectPlan;

/// Sources of one select level, as bits.
using SourceSet = std::uint64_t;
/// The most tables that one statement level may name.
inline constexpr std::size_t kMaximumSources = 32;

/// Where a name in an expression leads: a column of a source, or an item of the select list (its alias). `depth` counts
/// the select levels outwards.
struct Slot {
  enum class Kind : std::uint8_t { None, Column, Item };
  Kind kind = Kind::None;  ///< None: not looked for
  std::uint16_t depth = 0;
  std::uint16_t source = 0;
  std::uint32_t column = 0;  ///< or the item's position

  bool operator==(const Slot&) const = default;
};

/// How the rows of one source are found. Except for Scan it gives candidates: every condition is checked again.
struct AccessPath {
  enum class Kind {
    Scan,         ///< every row
    Index,        ///< a range of an index of the table
    MemoryIndex,  ///< rows of one value of a column, by an index in memory (a scan while that does not pay)
    Union         ///< the rows of any of `branches`
  };
  Kind kind = Kind::Scan;
  std::size_t index = 0;                  ///< Index: position in Table::Indexes()
  std::vector<const Expression*> equals;  ///< Index: values of its first columns; MemoryIndex: the one value
  std::vector<std::size_t> equalColumns;  ///< the columns of `equals`
  const Expression* low = nullptr;        ///< Index: bounds of the next column, both ends included
  const Expression* high = nullptr;
  bool boundsInAnyOrder = false;  ///< Between: the larger bound may come first
  std::size_t rangeColumn = 0;
  bool joins = false;                ///< MemoryIndex: looked up once for each row of another source
  std::vector<AccessPath> branches;  ///< Union
  double cost = 0;                   ///< of finding the rows once, in rows of a scan
  double setup = 0;                  ///< to be paid once
  double rows = 0;                   ///< estimated
};

/// A part of the FROM clause, in the order in which it is run.
struct PlanNode {
  enum class Kind {
    Access,  ///< one source
    Nested,  ///< for each row of a part the rows of the next part
    Outer    ///< parts[0], with parts[1] where it has rows and nulls where it has none
  };
  Kind kind = Kind::Access;
  std::size_t source = 0;
  AccessPath path;
  std::vector<std::shared_ptr<const PlanNode>> parts;
  std::vector<const Expression*> filters;  ///< what the rows found must satisfy
  SourceSet sources = 0;
  double cost = 0;   ///< of one run, in rows of a scan
  double setup = 0;  ///< to be paid once
  double rows = 0;   ///< of one run
};

/// A table or a derived table of the FROM clause.
struct PlannedSource {
  std::string name;  ///< alias, or the table's name
  std::shared_ptr<Table> table;
  std::unique_ptr<SelectPlan> derived;  ///< instead of a table
  std::vector<bool> searchColumns;      ///< needed to find and order the rows
  std::vector<bool> outputColumns;      ///< needed for the select list
  std::uint32_t plannedRowCount = 0;

  [[nodiscard]] std::size_t ColumnCount() const { return searchColumns.size(); }
};

/// A column of a result: its name as record sets give it, the table that it comes from (empty for an expression) with
/// its name there, and its type.
struct ResultColumn {
  std::string name;
  std::string table;
  std::string columnName;
  ado::DataType type = ado::DataType::WChar;
};

// What the planner decides about a statement: where each name leads, and how each table is read. A plan refers to the
// statement's expressions, by their numbers, and holds no state of a run, so that it can be run many times and by
// nested runs. The statement's tree stays as it was parsed.

/// A column of the result, and where its values come from.
struct OutputColumn {
  ResultColumn column;
  const Expression* expression = nullptr;  ///< null where `slot` says all (SELECT *)
  std::optional<Slot> slot;                ///< a plain column
};

struct SortKey {
  const Expression* expression = nullptr;  ///< null: the output column `output`
  std::size_t output = 0;
  bool descending = false;
};

/// An index whose order is the statement's order.
struct OrderWalk {
  std::size_t index = 0;
  bool backwards = false;
};

/// How to run a SELECT (or to find the rows of an UPDATE or DELETE).
struct SelectPlan {
  const Select* select = nullptr;  ///< null for UPDATE and DELETE
  std::vector<PlannedSource> sources;
  /// Where the names of this level's expressions lead, the plans of their sub-selects, and which of `aggregates` they
  /// are: each by Expression::number.
  std::vector<Slot> slots;
  std::vector<std::unique_ptr<SelectPlan>> subselects;
  std::vector<std::size_t> aggregatePlaces;
  /// Columns of outer levels that this level or one below refers to; depths as seen from this level.
  std::vector<Slot> outerSlots;
  std::shared_ptr<const PlanNode> root;            ///< none without FROM
  std::vector<const Expression*> constantFilters;  ///< WHERE without FROM
  std::vector<OutputColumn> outputs;
  std::vector<SortKey> order;
  std::optional<OrderWalk> orderWalk;
  /// Indexes of the file may give answers without the rows (Min, Max, distinct values).
  bool usesFileIndexes = false;
  bool grouped = false;
  std::vector<const Expression*> groupBy;
  std::vector<const Expression*> aggregates;
  /// The selects that a union adds to this one, in their order.
  std::vector<std::unique_ptr<SelectPlan>> unionParts;
  /// DISTINCTROW: the sources whose rows are to be distinct; 0: no matter.
  SourceSet distinctSources = 0;

  /// Where a column's name leads.
  [[nodiscard]] Slot SlotOf(const Expression& column) const {
    return column.number < slots.size() ? slots[column.number] : Slot{};
  }
  /// The plan of an expression's sub-select; null before it is made.
  [[nodiscard]] const SelectPlan* SubselectOf(const Expression& expression) const {
    return expression.number < subselects.size() ? subselects[expression.number].get() : nullptr;
  }
  /// True when it has to be run again for each row of an outer level.
  [[nodiscard]] bool IsCorrelated() const { return !outerSlots.empty(); }
  /// True when the result can be held as pointers to rows of tables.
  [[nodiscard]] bool IsKeyset() const;
};

/// The plan in words, a line for each step: which index, which scan, which sort.
std::string Describe(const SelectPlan& plan);

/// An expression as text, for plans and messages.
std::string Describe(const Expression& expression);

/// True when two expressions of a plan say the same: same operators, values and columns, whatever the spelling.
bool SameExpression(const Expression& left, const Expression& right, const SelectPlan& plan);

/// Raises ProviderSyntax when an expression of a grouped statement names a column that is neither a group's nor in an
/// aggregate.
void CheckGrouped(const Expression& expression, const SelectPlan& plan);

/// The type of the values of an expression, as far as it can be told without running it.
ado::DataType TypeOf(const Expression& expression, const SelectPlan& plan);
/// The type of a column's values.
ado::DataType TypeOf(const ColumnDefinition& column);

}  // namespace tavi::access::sql
