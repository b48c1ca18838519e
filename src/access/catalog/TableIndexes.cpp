// The indexes of a table while rows change. A change goes in two steps: Plan makes the old and the new key for each
// index that is concerned and asks whether the new one may be added; Apply removes and adds the entries once the row is
// stored. Between them the tree is as it was when asked, since nobody else writes.
//
// An index whose columns keep their values costs a comparison; any other one a look for duplicates, a removal and an
// addition, each a way down its tree. The count of distinct keys is kept upwards only, as Access does: to count it down
// each removal would have to look for a neighbour with the same key.
#include "access/catalog/TableIndexes.h"

#include <algorithm>

#include "access/catalog/ChangeErrors.h"
#include "access/file/EngineError.h"

namespace tavi::access {

namespace {

using Kind = LogicalIndexDefinition::Kind;

/// Name and kind of a physical index: a primary key or ordinary index on it goes before the side of a relationship.
void NameIndex(const TableDefinition& definition, std::size_t realIndex, Index& index) {
  const LogicalIndexDefinition* best = nullptr;
  for (const LogicalIndexDefinition& logical : definition.logicalIndexes) {
    if (logical.realIndex != realIndex) continue;
    if (logical.kind == Kind::PrimaryKey) index.primaryKey = true;
    const bool better = best == nullptr || (best->kind == Kind::Relationship && logical.kind != Kind::Relationship) ||
                        (best->kind == Kind::Normal && logical.kind == Kind::PrimaryKey);
    if (better) best = &logical;
  }
  if (best != nullptr) index.name = best->name;
}

/// A column that the definition has not got is damage that no key could be made with: the table is not opened.
Index MakeIndex(Pager& pager, const TableDefinition& definition, std::size_t realIndex) {
  Index index;
  index.definition = definition.realIndexes[realIndex];
  NameIndex(definition, realIndex, index);
  for (const IndexColumn& column : index.definition.columns) {
    const auto place = std::ranges::find(definition.columns, column.columnId, &ColumnDefinition::id);
    if (place == definition.columns.end()) {
      RaiseDamage("the index '" + index.name + "' of the table with definition page " +
                  std::to_string(definition.page) + " uses column " + std::to_string(column.columnId) +
                  ", which does not exist.");
    }
    index.columns.push_back(static_cast<std::size_t>(place - definition.columns.begin()));
    index.ascending.push_back(column.ascending);
  }
  index.statistics = ReadIndexStatistics(pager, definition, realIndex);
  return index;
}

}  // namespace

TableIndexes::TableIndexes(Pager& pager, const std::string& tableName, const TableDefinition& definition)
    : pager_(&pager), tableName_(&tableName), definition_(&definition), encoders_(definition.realIndexes.size()) {
  for (std::size_t i = 0; i < definition.realIndexes.size(); ++i) {
    indexes_.push_back(MakeIndex(pager, definition, i));
    const RealIndexDefinition& real = definition.realIndexes[i];
    trees_.emplace_back(pager, definition.page, real.root, real.ownedPages);
  }
}

// Made late, because an index in a foreign sort order must not keep the table from being read.
const KeyEncoder& TableIndexes::Encoder(std::size_t index) {
  std::unique_ptr<KeyEncoder>& encoder = encoders_[index];
  if (encoder == nullptr) encoder = std::make_unique<KeyEncoder>(*definition_, indexes_[index].definition);
  return *encoder;
}

bool TableIndexes::SameColumns(std::size_t index, const RowValues& left, const RowValues& right) const {
  return std::ranges::all_of(indexes_[index].columns,
                             [&](std::size_t column) { return left[column] == right[column]; });
}

std::vector<IndexChange> TableIndexes::Plan(const RowValues* before, const RowValues* after) {
  std::vector<IndexChange> changes;
  for (std::size_t i = 0; i < indexes_.size(); ++i) {
    // Asked before the encoder, so that rows can be changed beside an index whose keys cannot be made.
    if (before != nullptr && after != nullptr && SameColumns(i, *before, *after)) continue;
    const KeyEncoder& encoder = Encoder(i);
    IndexChange change;
    change.index = i;
    if (before != nullptr && encoder.HasEntry(*before)) change.removed = encoder.RowKey(*before);
    if (after != nullptr) {
      const bool nullsRefused = indexes_[i].primaryKey || indexes_[i].definition.required;
      if (nullsRefused && encoder.AnyNull(*after)) RaiseNullKey(*tableName_, indexes_[i].name);
      if (encoder.HasEntry(*after)) change.added = encoder.RowKey(*after);
    }
    // Other values may have the same key: a name whose letters change case.
    if (change.removed == change.added) continue;
    if (change.added.has_value()) CheckAdded(change, *after);
    changes.push_back(std::move(change));
  }
  return changes;
}

// The row's own old entry never counts as a duplicate: its key is another one, or the change would have been left out.
// Keys that are all null may be there any number of times.
void TableIndexes::CheckAdded(IndexChange& change, const RowValues& after) {
  if (change.added->size() > BTree::kMaximumKeySize) RaiseLongKey(*tableName_, indexes_[change.index].name);
  const bool exists = trees_[change.index].ContainsKey(*change.added);
  change.addsDistinctKey = !exists;
  if (exists && indexes_[change.index].definition.unique && !Encoder(change.index).AllNull(after))
    RaiseDuplicate(*tableName_, indexes_[change.index].name);
}

void TableIndexes::Apply(const std::vector<IndexChange>& changes, RowPointer row) {
  for (const IndexChange& change : changes) {
    if (change.removed.has_value()) RemoveEntry(change.index, {*change.removed, row});
    if (!change.added.has_value()) continue;
    trees_[change.index].Insert({*change.added, row});
    if (!change.addsDistinctKey) continue;
    IndexStatistics& statistics = indexes_[change.index].statistics;
    // Asked of the page, as a rollback may have taken the number back.
    statistics = ReadIndexStatistics(*pager_, *definition_, change.index);
    ++statistics.distinctKeys;
    WriteIndexStatistics(*pager_, *definition_, change.index, statistics);
  }
}

// Other programs weigh some rare letters differently, so that the stored key may not be the one made here: then the
// entry is found by its row. An entry that is missing altogether is as wanted.
void TableIndexes::RemoveEntry(std::size_t index, const IndexEntry& entry) {
  if (trees_[index].Remove(entry)) return;
  std::optional<IndexEntry> stored;
  for (auto cursor = trees_[index].SeekFirst(std::nullopt); cursor->Current() != nullptr; cursor->Next()) {
    if (cursor->Current()->row != entry.row) continue;
    stored = *cursor->Current();
    break;
  }
  if (stored.has_value()) trees_[index].Remove(*stored);
}

}  // namespace tavi::access
