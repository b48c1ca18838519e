// A file laid out anew, in memory: what compacting writes. Tables are made one after another, each with the steps of a
// new one: definition, maps and roots, rows, indexes. Rows are read as values and stored as values, so that no byte of
// the old layout comes along; rules are not asked, as rows that were good enough to be stored stay.
//
// Two things keep their numbers, because other rows of the file and Access' own objects refer to them: the page of each
// table's definition, and indexes. So those pages are reserved first, and everything else fills the gaps between them
// from the lowest up; the file ends behind the last table's definition at the earliest.
//
// The whole new file is held in memory, a table's index entries besides, one index at a time.
#include <algorithm>
#include <map>
#include <set>

#include "access/catalog/Compact.h"
#include "access/catalog/DefinitionChanges.h"
#include "access/catalog/MemoryPager.h"
#include "access/catalog/NewFile.h"
#include "access/catalog/TableLayout.h"
#include "access/file/EngineError.h"
#include "access/file/Format.h"
#include "access/file/PageAllocator.h"
#include "access/file/UsageMap.h"

namespace tavi::access {

namespace {

/// Gives the columns new numbers and places, in the order of the old numbers.
/// Order by the old numbers is order by age, in which fixed places ascend as in a table that was made at once. Indexes
/// name their columns by number and follow.
void RenumberColumns(TableDefinition& definition) {
  std::map<std::uint16_t, std::uint16_t> newIds;
  std::vector<ColumnDefinition*> byId;
  for (ColumnDefinition& column : definition.columns) byId.push_back(&column);
  std::ranges::stable_sort(byId, {}, [](const ColumnDefinition* column) { return column->id; });
  definition.columnIdCounter = 0;
  definition.variableColumnCounter = 0;
  std::uint16_t fixedEnd = 0;
  for (ColumnDefinition* column : byId) {
    newIds[column->id] = definition.columnIdCounter;
    column->id = definition.columnIdCounter++;
    column->variableIndex = definition.variableColumnCounter;
    column->fixedOffset = 0;
    if (!column->IsFixed()) {
      ++definition.variableColumnCounter;
    } else if (column->type != ColumnType::Boolean) {
      column->fixedOffset = fixedEnd;
      fixedEnd = static_cast<std::uint16_t>(fixedEnd + column->length);
    }
  }
  for (RealIndexDefinition& index : definition.realIndexes) {
    for (IndexColumn& column : index.columns) {
      const auto found = newIds.find(column.columnId);
      if (found == newIds.end())
        RaiseDamage("an index refers to the column number " + std::to_string(column.columnId) +
                    ", which is not there.");
      column.columnId = found->second;
    }
  }
}

/// The definition without anything that says where things lie.
TableDefinition WithoutPlaces(TableDefinition definition) {
  RenumberColumns(definition);
  // Columns keep their order, which is that of all row values; only names are put in the order that Access keeps.
  SortIndexRecords(definition);
  definition.ownedPages = {};
  definition.freeSpacePages = {};
  definition.longValueMaps.clear();
  for (RealIndexDefinition& index : definition.realIndexes) {
    index.root = 0;
    index.ownedPages = {};
  }
  return definition;
}

/// The new file while it is made.
class Rebuild {
 public:
  Rebuild(Database& database, std::vector<std::shared_ptr<Table>> tables)
      : source_(database.GetPager()), tables_(std::move(tables)), pager_(EndOfDefinitions()) {
    pager_.Write(format::kHeaderPage).CopyFrom(*source_.Read(format::kHeaderPage));
    FormatGlobalMap(pager_.Write(format::kGlobalMapPage));
    ReserveDefinitions();
  }

  std::vector<Page> Run() {
    // The system's tables share one page of maps, as in a new file; each other table has its own.
    PageNumber systemMaps = 0;
    for (const std::shared_ptr<Table>& table : tables_) {
      TableDefinition definition = WithoutPlaces(table->Definition());
      // The definition is written after its parts are known and before rows are stored, which count themselves in it.
      AllocateParts(pager_, definition, definition.isSystem ? systemMaps : 0);
      if (definition.isSystem) systemMaps = definition.ownedPages.page;
      WriteTableDefinition(pager_, definition, false);
      // Without properties: required columns and defaults are not asked again.
      StoredTable made(pager_, table->Name(), table->IsSystem(), std::move(definition), PropertyBlob(), nullptr);
      // Indexes come after the rows: building each at once is quicker than an entry for each row, and leaves full
      // pages.
      CopyRows(*table, made);
      for (std::size_t index = 0; index < made.Indexes().size(); ++index) FillIndex(pager_, made, index);
    }
    return pager_.Pages();
  }

 private:
  [[nodiscard]] PageNumber EndOfDefinitions() const {
    PageNumber end = format::kRelationshipsTablePage + 1;
    for (const std::shared_ptr<Table>& table : tables_) end = std::max(end, table->Definition().page + 1);
    return end;
  }

  /// All pages are free but those with fixed places and the first ones of the definitions.
  void ReserveDefinitions() {
    std::set<PageNumber> definitions;
    for (const std::shared_ptr<Table>& table : tables_) definitions.insert(table->Definition().page);
    PageAllocator allocator(pager_);
    UsageMap free(pager_, {format::kGlobalMapPage, format::kGlobalFreeMapRow});
    const PageNumber end = EndOfDefinitions();
    for (PageNumber page = format::kRelationshipsTablePage + 1; page < end; ++page) {
      if (definitions.contains(page)) {
        free.Remove(page);
      } else {
        allocator.Free(page);
      }
    }
  }

  void CopyRows(Table& from, StoredTable& to) {
    const std::size_t automatic = AutomaticColumn(from);
    // The counter goes to the greatest number that is stored, where another program has left it below.
    std::int32_t last = LastAutoNumber(source_, from.Definition());
    for (auto row = from.Next(std::nullopt); row.has_value(); row = from.Next(row)) {
      const RowValues values = from.Read(*row);
      if (automatic < values.size()) {
        if (const auto* number = std::get_if<std::int32_t>(&values[automatic])) last = std::max(last, *number);
      }
      // Past the indexes, which are not filled yet.
      to.Rows().Insert(values);
    }
    SetLastAutoNumber(pager_, to.Definition(), last);
  }

  /// The position of the automatic number; past all columns when there is none.
  static std::size_t AutomaticColumn(const Table& table) {
    std::size_t i = 0;
    while (i < table.Columns().size() && !table.Columns()[i].definition.IsAutoNumber()) ++i;
    return i;
  }

  Pager& source_;
  std::vector<std::shared_ptr<Table>> tables_;
  MemoryPager pager_;
};

}  // namespace

std::vector<Page> RebuildPages(Database& database) {
  const ReadStatement statement(database.GetPager());
  std::vector<std::shared_ptr<Table>> tables;
  for (const CatalogEntry& entry : database.Tables()) {
    if (entry.isLinked) continue;
    // A name that is there twice opens the same table twice: the other's rows would be lost.
    tables.push_back(database.OpenTable(entry.name));
    if (tables.back()->Definition().page != entry.page)
      RaiseDamage("the catalogue has two tables of the name '" + entry.name + "'.");
  }
  // By their pages, so that the system's tables come first and the result depends on the contents alone.
  std::ranges::sort(tables, {}, [](const std::shared_ptr<Table>& table) { return table->Definition().page; });
  return Rebuild(database, std::move(tables)).Run();
}

}  // namespace tavi::access
