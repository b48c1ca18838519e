// Indexes made and dropped. A table has two lists of them: physical indexes (a tree each, known by their position in
// the list) and logical ones (a name each, and the position of the tree). Several logical indexes may stand on one
// tree: a primary key and the primary side of a relationship usually do. So
//
//   making one     adds a tree and a name; the tree is then filled from the rows, in one pass
//   dropping one   takes away the name, and the tree only with its last name. Trees behind it move up by one, and with
//                  them the positions in the logical list and the statistics, which the file keeps by position.
#include <algorithm>

#include "access/catalog/Catalog.h"
#include "access/catalog/ChangeErrors.h"
#include "access/catalog/DefinitionChanges.h"
#include "access/catalog/Names.h"
#include "access/catalog/TableLayout.h"
#include "access/file/EngineError.h"
#include "access/file/Format.h"
#include "access/file/PageAllocator.h"

namespace tavi::access {

namespace {

using Kind = LogicalIndexDefinition::Kind;

[[noreturn]] void RaiseImpossible(const std::string& table, const std::string& index, const std::string& reason) {
  throw Error(ErrorNumber::ProviderSyntax, kErrorSource,
              "The index '" + index + "' of the table '" + table + "' cannot be made: " + reason);
}

/// Sides of relationships are in the list too: their names are taken.
bool HasIndex(const TableDefinition& definition, std::string_view name) {
  return std::ranges::any_of(definition.logicalIndexes,
                             [&](const LogicalIndexDefinition& logical) { return SameName(logical.name, name); });
}

/// A name for an index that was made without one.
std::string FreeIndexName(const TableDefinition& definition, bool primaryKey) {
  if (primaryKey && !HasIndex(definition, "PrimaryKey")) return "PrimaryKey";
  for (int number = 1;; ++number) {
    std::string name = "Index" + std::to_string(number);
    if (!HasIndex(definition, name)) return name;
  }
}

/// What must hold of a new index whatever the rows are. Asked before anything is changed.
void CheckDesign(const TableDefinition& definition, const std::string& table, const IndexDesign& design) {
  CheckName(design.name, "index");
  if (HasIndex(definition, design.name))
    RaiseFailure("Table '" + table + "' already has an index named '" + design.name + "'. Give it another name.");
  RefuseFullIndexList(definition, table);
  if (design.columns.empty() || design.columns.size() > format::real_index::kMaximumColumnCount)
    RaiseImpossible(table, design.name, "it needs 1 to 10 columns.");
  if (design.primaryKey && std::ranges::any_of(definition.logicalIndexes, [](const LogicalIndexDefinition& logical) {
        return logical.kind == Kind::PrimaryKey;
      })) {
    RaiseFailure("Primary key already exists. Delete the primary key of the table '" + table + "' first.");
  }
}

/// A primary key is unique and refuses nulls, whatever else its design says; so the file has the flags 89 for it.
/// Objects have no order by which they could be searched, while of a Memo the first 255 characters count.
RealIndexDefinition MakeRealIndex(const TableDefinition& definition, const std::string& table,
                                  const IndexDesign& design) {
  RealIndexDefinition real;
  for (const IndexDesign::Column& wanted : design.columns) {
    const auto column = std::ranges::find_if(
        definition.columns, [&](const ColumnDefinition& candidate) { return SameName(candidate.name, wanted.name); });
    if (column == definition.columns.end()) RaiseNoColumn(table, wanted.name);
    if (column->type == ColumnType::Ole)
      RaiseImpossible(table, design.name, "the column '" + wanted.name + "' holds objects, which have no order.");
    if (std::ranges::find(real.columns, column->id, &IndexColumn::columnId) != real.columns.end())
      RaiseImpossible(table, design.name, "the column '" + wanted.name + "' is in it twice.");
    real.columns.push_back({column->id, wanted.ascending});
  }
  real.unique = design.unique || design.primaryKey;
  real.required = design.required || design.primaryKey;
  real.ignoreNulls = design.ignoreNulls && !design.primaryKey;
  real.flags = IndexFlags(real);
  return real;
}

/// Makes the entries of an index from the rows of its table, and counts them. Raises when the rows do not allow it.
std::vector<IndexEntry> CollectEntries(StoredTable& table, std::size_t index, IndexStatistics& statistics) {
  const Index& made = table.Indexes()[index];
  const KeyEncoder& encoder = table.Encoder(index);
  // Only the key's columns are read: a Memo beside them would be fetched from other pages for nothing.
  std::vector<bool> wanted(table.Columns().size());
  for (const std::size_t column : made.columns) wanted[column] = true;
  std::vector<IndexEntry> entries;
  // Rows whose key is all null are no duplicates of each other. They all have the same key bytes, by which they are
  // known further down.
  std::optional<IndexKey> nullKey;
  table.Rows().Walk([&](RowPointer place) {
    const RowValues row = table.Read(place, wanted);
    if (made.definition.required && encoder.AnyNull(row)) RaiseNullKey(table.Name(), made.name);
    // An index that ignores nulls has no entry for a key of nulls alone.
    if (!encoder.HasEntry(row)) return true;
    entries.push_back({encoder.RowKey(row), place});
    if (encoder.AllNull(row)) nullKey = entries.back().key;
    return true;
  });
  std::ranges::sort(entries);
  statistics.entries = static_cast<std::uint32_t>(entries.size());
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (i == 0 || entries[i].key != entries[i - 1].key) {
      ++statistics.distinctKeys;
    } else if (made.definition.unique && entries[i].key != nullKey) {
      RaiseDuplicate(table.Name(), made.name);
    }
  }
  return entries;
}

/// The statistics stand in the definition's pages by position; see RemoveRealIndex.
std::vector<IndexStatistics> AllStatistics(Pager& pager, const TableDefinition& definition) {
  std::vector<IndexStatistics> all;
  for (std::size_t i = 0; i < definition.realIndexes.size(); ++i)
    all.push_back(ReadIndexStatistics(pager, definition, i));
  return all;
}

}  // namespace

void RefuseFullIndexList(const TableDefinition& definition, const std::string& table) {
  if (definition.logicalIndexes.size() < format::table::kMaximumIndexCount) return;
  RaiseFailure("Operation failed. There are too many indexes on table '" + table +
               "'. Delete some of the indexes on the table and try the operation again.");
}

// Statistics are read before the definition is written and put back after it, as writing keeps those of each position
// and the positions change.
void RemoveRealIndex(Pager& pager, StoredTable& table, TableDefinition& definition, std::uint32_t realIndex) {
  std::vector<IndexStatistics> statistics = AllStatistics(pager, definition);
  // The tree's pages go by its map, so that a damaged tree can be dropped as well; then the map itself.
  table.Tree(realIndex).Clear(false);
  PageAllocator(pager).RemoveUsageMap(definition.realIndexes[realIndex].ownedPages);
  const auto position = static_cast<std::ptrdiff_t>(realIndex);
  definition.realIndexes.erase(definition.realIndexes.begin() + position);
  statistics.erase(statistics.begin() + position);
  for (LogicalIndexDefinition& logical : definition.logicalIndexes)
    if (logical.realIndex > realIndex) --logical.realIndex;
  WriteTableDefinition(pager, definition, true);
  for (std::size_t i = 0; i < statistics.size(); ++i) WriteIndexStatistics(pager, definition, i, statistics[i]);
}

// Holds all entries in memory, sorts them and writes the leaves from left to right: that costs a fraction of inserting
// them one by one and leaves full pages.
void FillIndex(Pager& pager, StoredTable& table, std::size_t index) {
  IndexStatistics statistics;
  std::vector<IndexEntry> entries = CollectEntries(table, index, statistics);
  table.Tree(index).Build(std::move(entries));
  WriteIndexStatistics(pager, table.Definition(), index, statistics);
}

void AppendIndex(TableDefinition& definition, const std::string& table, const IndexDesign& design) {
  IndexDesign named = design;
  if (named.name.empty()) named.name = FreeIndexName(definition, named.primaryKey);
  CheckDesign(definition, table, named);
  LogicalIndexDefinition logical;
  logical.name = named.name;
  logical.realIndex = static_cast<std::uint32_t>(definition.realIndexes.size());
  for (const LogicalIndexDefinition& other : definition.logicalIndexes)
    logical.number = std::max(logical.number, other.number + 1);
  if (named.primaryKey) logical.kind = Kind::PrimaryKey;
  definition.realIndexes.push_back(MakeRealIndex(definition, table, named));
  definition.logicalIndexes.push_back(std::move(logical));
  SortRecords(definition);
  // Asks whether keys of these columns can be made at all.
  const KeyEncoder encoder(definition, definition.realIndexes.back());
}

void CreateIndex(Catalog& catalog, std::string_view table, const IndexDesign& design, std::optional<Date> now) {
  const CatalogObject object = ChangeableTable(catalog, table);
  Pager& pager = catalog.GetPager();
  TableDefinition definition = catalog.OpenTable(table)->Definition();
  AppendIndex(definition, object.name, design);
  AllocateParts(pager, definition, 0);
  WriteTableDefinition(pager, definition, true);
  catalog.Forget();

  // Sorting the records has changed the order of names alone: the new tree is still the last one.
  const std::shared_ptr<StoredTable> altered = catalog.OpenTable(table);
  FillIndex(pager, *altered, altered->Indexes().size() - 1);
  ChangeObject(catalog, object, nullptr, now);
}

void DropIndex(Catalog& catalog, std::string_view table, std::string_view index, std::optional<Date> now) {
  const CatalogObject object = ChangeableTable(catalog, table);
  Pager& pager = catalog.GetPager();
  const std::shared_ptr<StoredTable> stored = catalog.OpenTable(table);
  TableDefinition definition = stored->Definition();
  const auto found = std::ranges::find_if(
      definition.logicalIndexes, [&](const LogicalIndexDefinition& logical) { return SameName(logical.name, index); });
  if (found == definition.logicalIndexes.end()) RaiseNoIndex(object.name, index);
  const LogicalIndexDefinition dropped = *found;
  if (dropped.kind == Kind::Relationship) RaiseInRelationship(object.name, dropped.name);
  definition.logicalIndexes.erase(found);

  bool shared = false;
  for (const LogicalIndexDefinition& other : definition.logicalIndexes) {
    if (other.realIndex != dropped.realIndex) continue;
    if (other.kind == Kind::Relationship) RaiseInRelationship(dropped.name, other.name);
    shared = true;
  }
  // A name without a tree is damage that dropping it mends.
  if (shared || dropped.realIndex >= definition.realIndexes.size()) {
    WriteTableDefinition(pager, definition, true);
  } else {
    RemoveRealIndex(pager, *stored, definition, dropped.realIndex);
  }
  ChangeObject(catalog, object, nullptr, now);
}

}  // namespace tavi::access
