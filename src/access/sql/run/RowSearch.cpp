// The rows of FROM and WHERE, by nested loops. A node of the plan puts one row after the other into the scope and calls
// what follows it: the next member of its group, the optional side of a join, at last the visitor of the whole. So only
// one row of each source is in memory, and a visitor that wants no more ends all loops by giving false (TOP, Exists).
//
// Candidates of a path are sorted by their place in the file before they are read. Pages are then read one after the
// other, a row that several branches gave is given once, and the rows of a source come in the order in which a scan
// would give them, whichever path was taken.
//
// A value may turn out to be one that cannot be looked up, such as a text where the column holds numbers. Then every
// row is looked at, and evaluating the condition gives what it gives without an index, an error included.
#include "access/sql/run/RowSearch.h"

#include <algorithm>

#include "access/sql/expression/Evaluator.h"
#include "access/sql/expression/Operators.h"
#include "access/sql/run/PlanRun.h"

namespace tavi::access::sql {

namespace {

bool BeginsWith(const IndexKey& key, const IndexKey& prefix) {
  return key.size() >= prefix.size() && std::equal(prefix.begin(), prefix.end(), key.begin());
}

/// Rows from such a path may have been removed since they were entered.
bool UsesMemory(const AccessPath& path) {
  return path.kind == AccessPath::Kind::MemoryIndex ||
         std::any_of(path.branches.begin(), path.branches.end(), UsesMemory);
}

}  // namespace

// The values are computed once for a range: what they name is the same for all of its rows.
IndexRange::IndexRange(const AccessPath& path, Table& table, const RowScope& scope)
    : table_(table), index_(path.index) {
  std::vector<Value> equals;
  for (std::size_t i = 0; i < path.equals.size(); ++i) {
    equals.push_back(Take(*path.equals[i], path.equalColumns[i], scope));
  }
  Value low;
  Value high;
  if (path.low != nullptr) low = Take(*path.low, path.rangeColumn, scope);
  if (path.high != nullptr) high = Take(*path.high, path.rangeColumn, scope);
  if (!isUsable_ || isEmpty_) return;
  if (path.boundsInAnyOrder && CompareValues(low, high) > 0) std::swap(low, high);
  SetEnds(path, std::move(equals), low, high);
}

Value IndexRange::Take(const Expression& expression, std::size_t column, const RowScope& scope) {
  Value value = Evaluate(expression, scope);
  if (IsNull(value)) {
    isEmpty_ = true;  // no comparison with null is true
  } else if (FamilyOf(value) != FamilyOf(table_.Columns()[column].definition.type)) {
    isUsable_ = false;
  }
  return value;
}

// The equal values are the beginning of both ends; a bound of the next column is put behind them at its end. In a
// descending column keys run the other way round, so the lower bound is the last key. A value that the column's type
// cannot hold has no key, and the range is of no use.
void IndexRange::SetEnds(const AccessPath& path, std::vector<Value> equals, const Value& low, const Value& high) {
  const KeyEncoder& encoder = table_.Encoder(index_);
  const Index& index = table_.Indexes()[index_];
  const auto keyOf = [&](const Value* next) {
    std::vector<Value> values = equals;
    if (next != nullptr) values.push_back(*next);
    std::optional<IndexKey> key = encoder.PrefixKey(values);
    if (!key) isUsable_ = false;
    return key;
  };
  // No bounds are left then, and at most one entry is found.
  isOneKey_ = index.definition.unique && path.equals.size() == index.columns.size();
  if (!path.equals.empty()) first_ = last_ = keyOf(nullptr);
  const bool ascending = path.equals.size() >= index.ascending.size() || index.ascending[path.equals.size()];
  if (path.low != nullptr) (ascending ? first_ : last_) = keyOf(&low);
  if (path.high != nullptr) (ascending ? last_ : first_) = keyOf(&high);
}

// The entries are walked from the first key on; keys that begin with the last one belong to the range, since the last
// one may be only the beginning of a key.
void IndexRange::Collect(std::vector<std::uint32_t>& rows) const {
  if (isEmpty_) return;
  const BTree& tree = table_.Tree(index_);
  const auto cursor = tree.SeekFirst(first_);
  for (; cursor->Current() != nullptr; cursor->Next()) {
    const IndexEntry& entry = *cursor->Current();
    if (last_ && entry.key > *last_ && !BeginsWith(entry.key, *last_)) return;
    rows.push_back(entry.row.Packed());
  }
}

// The columns of the select list are left out where only row pointers are wanted: they are read when somebody looks.
RowSearch::RowSearch(RowScope& scope, bool withOutputs) : scope_(scope), plan_(scope.Plan()) {
  for (const PlannedSource& source : plan_.sources) {
    std::vector<bool> wanted = source.searchColumns;
    for (std::size_t i = 0; i < wanted.size() && withOutputs; ++i) wanted[i] = wanted[i] || source.outputColumns[i];
    wantsAny_.push_back(std::find(wanted.begin(), wanted.end(), true) != wanted.end());
    wanted_.push_back(std::move(wanted));
  }
}

// Without FROM there is one row, of no source.
void RowSearch::ForEach(Visit visit) {
  for (const Expression* filter : plan_.constantFilters) {
    if (!IsTrue(*filter, scope_)) return;
  }
  if (plan_.root) {
    Run(*plan_.root, visit);
  } else {
    visit();
  }
}

void RowSearch::ForEachAmong(const std::vector<RowPointer>& rows, Visit visit) {
  for (const RowPointer row : rows) {
    if (!Offer(*plan_.root, row, visit)) return;
  }
}

bool RowSearch::Run(const PlanNode& node, Visit visit) {
  switch (node.kind) {
    case PlanNode::Kind::Nested:
      return RunNested(node, 0, visit);
    case PlanNode::Kind::Outer:
      return RunOuter(node, visit);
    case PlanNode::Kind::Access:
      break;
  }
  return plan_.sources[node.source].table ? RunTable(node, visit) : RunDerived(node, visit);
}

// Conditions of the group as a whole are checked behind its last part.
bool RowSearch::RunNested(const PlanNode& node, std::size_t part, Visit visit) {
  if (part == node.parts.size()) return PassOn(node, visit);
  return Run(*node.parts[part], [&] { return RunNested(node, part + 1, visit); });
}

// The conditions of ON are the optional part's own, so "found" means a partner. Without one its sources are marked as
// absent, which makes their columns null; all of them, as a join on that side may have left a row of its first table
// there.
bool RowSearch::RunOuter(const PlanNode& node, Visit visit) {
  return Run(*node.parts[0], [&] {
    bool found = false;
    const bool goOn = Run(*node.parts[1], [&] {
      found = true;
      return PassOn(node, visit);
    });
    // Stopped within, or a partner was found: no row of nulls then.
    if (!goOn || found) return goOn;
    for (std::size_t i = 0; i < scope_.rows.size(); ++i) {
      if ((node.parts[1]->sources >> i & 1U) != 0) scope_.rows[i].present = false;
    }
    return PassOn(node, visit);
  });
}

// Here every row of every source passes, so here it is asked whether the statement is to be given up.
bool RowSearch::PassOn(const PlanNode& node, Visit visit) {
  scope_.Context().GoOnUnlessCancelled();
  for (const Expression* filter : node.filters) {
    if (!IsTrue(*filter, scope_)) return true;
  }
  return visit();
}

// Where no column is wanted, as in Count(*), the row's bytes are not read at all.
bool RowSearch::Offer(const PlanNode& node, RowPointer pointer, Visit visit) {
  SourceRow& row = scope_.rows[node.source];
  row.present = true;
  row.pointer = pointer;
  if (wantsAny_[node.source]) {
    plan_.sources[node.source].table->Read(pointer, wanted_[node.source], row.values);
  }
  return PassOn(node, visit);
}

bool RowSearch::RunTable(const PlanNode& node, Visit visit) {
  if (plan_.orderWalk) return RunInOrder(node, *plan_.orderWalk, visit);
  Table& table = *plan_.sources[node.source].table;
  std::vector<std::uint32_t> rows;
  if (node.path.kind != AccessPath::Kind::Scan && Candidates(node.path, node.source, rows)) {
    std::sort(rows.begin(), rows.end());
    // An index in memory may hold a row twice, when its value was changed and changed back.
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    const bool mayBeGone = UsesMemory(node.path);
    for (const std::uint32_t packed : rows) {
      const RowPointer pointer = RowPointer::FromPacked(packed);
      if (mayBeGone && !table.Exists(pointer)) continue;
      if (!Offer(node, pointer, visit)) return false;
    }
    return true;
  }
  for (auto row = table.Next(std::nullopt); row; row = table.Next(row)) {
    if (!Offer(node, *row, visit)) return false;
  }
  return true;
}

// All entries of a key are taken before the first of them is given, because the cursor meets them in another order when
// it walks backwards.
bool RowSearch::RunInOrder(const PlanNode& node, const OrderWalk& walk, Visit visit) {
  const BTree& tree = plan_.sources[node.source].table->Tree(walk.index);
  const auto cursor = walk.backwards ? tree.SeekLast(std::nullopt, false) : tree.SeekFirst(std::nullopt);
  std::vector<RowPointer> ties;  // of one key, to be given in the order of a scan
  while (cursor->Current() != nullptr) {
    const IndexKey key = cursor->Current()->key;
    ties.clear();
    while (cursor->Current() != nullptr && cursor->Current()->key == key) {
      ties.push_back(cursor->Current()->row);
      if (walk.backwards) {
        cursor->Previous();
      } else {
        cursor->Next();
      }
    }
    std::sort(ties.begin(), ties.end());
    for (const RowPointer row : ties) {
      if (!Offer(node, row, visit)) return false;
    }
  }
  return true;
}

// A derived table has no row pointers; its rows are known by their positions, and found like rows of a table.
bool RowSearch::RunDerived(const PlanNode& node, Visit visit) {
  const std::vector<RowValues>& all = DerivedRows(node.source);
  std::vector<std::uint32_t> rows;
  const bool picked = node.path.kind != AccessPath::Kind::Scan && Candidates(node.path, node.source, rows);
  if (picked) {
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
  }
  const std::size_t count = picked ? rows.size() : all.size();
  for (std::size_t i = 0; i < count; ++i) {
    SourceRow& row = scope_.rows[node.source];
    row.present = true;
    row.values = all[picked ? rows[i] : i];
    if (!PassOn(node, visit)) return false;
  }
  return true;
}

// Run once in a statement and kept in its context, where all levels find it.
const std::vector<RowValues>& RowSearch::DerivedRows(std::size_t source) {
  const SelectPlan& derived = *plan_.sources[source].derived;
  auto& rows = scope_.Context().derived[&derived];
  if (!rows) {
    rows = std::make_shared<const std::vector<RowValues>>(CollectValues(scope_.Context(), derived, nullptr));
  }
  return *scope_.Context().derived[&derived];
}

// Kept for the life of the search: the rows of a derived table stay as they are in a statement.
const HashIndex& RowSearch::DerivedIndex(std::size_t source, std::size_t column) {
  const auto found = derivedIndexes_.find({source, column});
  if (found != derivedIndexes_.end()) return found->second;
  const std::vector<RowValues>& rows = DerivedRows(source);
  std::vector<HashIndex::Entry> entries;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (!IsNull(rows[i][column])) entries.emplace_back(HashOf(rows[i][column]), static_cast<std::uint32_t>(i));
  }
  return derivedIndexes_.emplace(std::pair{source, column}, HashIndex(std::move(entries))).first->second;
}

// A union is of use only when each of its branches is.
bool RowSearch::Candidates(const AccessPath& path, std::size_t source, std::vector<std::uint32_t>& rows) {
  switch (path.kind) {
    case AccessPath::Kind::Scan:
      return false;
    case AccessPath::Kind::Index:
      return IndexCandidates(path, *plan_.sources[source].table, rows);
    case AccessPath::Kind::MemoryIndex:
      return MemoryCandidates(path, source, rows);
    case AccessPath::Kind::Union:
      break;
  }
  return std::all_of(path.branches.begin(), path.branches.end(),
                     [&](const AccessPath& branch) { return Candidates(branch, source, rows); });
}

// A search of one whole key after the other keeps the leaf of the last one in hand, as keys of a join often lie
// together.
bool RowSearch::IndexCandidates(const AccessPath& path, Table& table, std::vector<std::uint32_t>& rows) {
  const IndexRange range(path, table, scope_);
  if (!range.IsUsable()) return false;
  const IndexKey* key = range.OneKey();
  if (key == nullptr) {
    range.Collect(rows);
  } else if (const auto row = finders_.try_emplace(&path, table.Tree(path.index)).first->second.FindKey(*key)) {
    rows.push_back(row->Packed());
  }
  return true;
}

// A look-up by hash only finds values of the same family; how values of two families compare, or what error that is,
// the comparison says. A table's column has one family, the rows of a derived table may have several.
bool RowSearch::MemoryCandidates(const AccessPath& path, std::size_t source, std::vector<std::uint32_t>& rows) {
  const Value value = Evaluate(*path.equals[0], scope_);
  const std::size_t column = path.equalColumns[0];
  const PlannedSource& planned = plan_.sources[source];
  if (!planned.table) {
    const std::vector<RowValues>& all = DerivedRows(source);
    const bool fits = std::all_of(all.begin(), all.end(), [&](const RowValues& row) {
      return IsNull(row[column]) || IsNull(value) || FamilyOf(row[column]) == FamilyOf(value);
    });
    if (fits && !IsNull(value)) DerivedIndex(source, column).Find(HashOf(value), rows);
    return fits;
  }
  // No row equals null: there are no candidates, and no scan is needed.
  if (IsNull(value)) return true;
  if (FamilyOf(value) != FamilyOf(planned.table->Columns()[column].definition.type)) return false;
  // A nested level is run again for rows of the level around it.
  const bool manyLookUps = path.joins || scope_.IsNested();
  const HashIndex* index = scope_.Context().memoryIndexes.Find(*planned.table, column, manyLookUps,
                                                               [&] { scope_.Context().GoOnUnlessCancelled(); });
  if (index != nullptr) index->Find(HashOf(value), rows);
  return index != nullptr;
}

}  // namespace tavi::access::sql
