// The check of one table, from its definition to its indexes. Each step relies on what the one before has found sound:
//
//   definition   the pages that it fills, numbers and places of columns, names of indexes
//   pages        the maps, then the row directory of each page; what does not fit there is not looked into
//   rows         outline, fixed fields, long values, and that the row can be read at all
//   moved rows   one link for each moved body, one body for each link
//   counters     against the rows that were counted on the way
//   indexes      entry by entry against the rows (IndexCheck.cpp)
//
// Damage never ends the check: each step runs under a guard that makes a finding of an error. Each row is read once as
// bytes and once as values; of pages only the directories are held in memory.
#include "access/catalog/TableCheck.h"

#include <algorithm>

#include "access/catalog/Names.h"
#include "access/catalog/RowShape.h"
#include "access/file/Format.h"
#include "access/file/UsageMap.h"
#include "access/table/RowView.h"

namespace tavi::access {

TableCheck::TableCheck(Pager& pager, Table& table, PageOwners& owners, CheckReport& report)
    : pager_(pager),
      table_(table),
      definition_(table.Definition()),
      owners_(owners),
      report_(report),
      name_("table '" + table.Name() + "'") {}

std::string TableCheck::Where(const std::string& part) const {
  return part + " of " + name_;
}

// Findings carry the part that was begun last. The definition counts with the rows: damage of either makes compacting
// refuse the file.
void TableCheck::Run() {
  report_.Begin(CheckPart::Rows, table_.Name());
  report_.Guard(Where("The definition"), [&] { CheckDefinition(); });
  report_.Guard(Where("The pages"), [&] { CheckPages(); });
  // All directories are known by now: a moved row may lead to any page of the table, also to one before its own.
  for (const auto& [number, entries] : pages_) CheckRows(number, entries);
  CheckTargets();
  if (report_.IsStrict()) {
    for (auto& [id, check] : longValues_) check.ReportUnused();
  }
  report_.Begin(CheckPart::Counter, table_.Name());
  report_.Guard(Where("The counters"), [&] { CheckCounters(); });
  report_.Begin(CheckPart::Index, table_.Name());
  for (std::size_t i = 0; i < table_.Indexes().size(); ++i) CheckIndex(pager_, table_, i, owners_, report_);
  CheckResult& result = report_.Result();
  ++result.tables;
  result.rows += liveRows_;
  result.indexes += table_.Indexes().size();
}

// Names out of order are found all the same; a name without a tree is damage.
void TableCheck::CheckDefinition() {
  for (const PageNumber page : TableDefinitionPages(pager_, definition_.page))
    owners_.Claim(page, "the definition of " + name_);
  CheckColumns();
  for (std::size_t i = 1; i < definition_.logicalIndexes.size(); ++i) {
    if (NameBefore(definition_.logicalIndexes[i].name, definition_.logicalIndexes[i - 1].name))
      report_.Leftover(Where("The index '" + definition_.logicalIndexes[i].name + "'") +
                       " is not listed in the order of names.");
  }
  for (const LogicalIndexDefinition& logical : definition_.logicalIndexes) {
    if (logical.realIndex >= definition_.realIndexes.size())
      report_.Add(Where("The index '" + logical.name + "'") + " has no tree.");
  }
}

// Numbers and slots are given once and never again, so those in use are unique and below the counters, with gaps where
// columns were dropped. Fixed fields may have gaps between them for the same reason, but never lie over each other.
// Booleans take no bytes: their value is the bit in the null mask.
void TableCheck::CheckColumns() {
  std::set<std::uint16_t> ids;
  std::set<std::uint16_t> variableIndexes;
  std::map<std::size_t, std::size_t> fixedAreas;
  for (const ColumnDefinition& column : definition_.columns) {
    const std::string where = Where("The column '" + column.name + "'");
    if (column.id >= definition_.columnIdCounter || !ids.insert(column.id).second)
      report_.Add(where + " has the number " + std::to_string(column.id) + ", which is taken or too high.");
    if (!column.IsFixed()) {
      if (column.variableIndex >= definition_.variableColumnCounter ||
          !variableIndexes.insert(column.variableIndex).second)
        report_.Add(where + " has the slot " + std::to_string(column.variableIndex) + ", which is taken or too high.");
    } else if (column.type != ColumnType::Boolean) {
      fixedAreas.emplace(column.fixedOffset, column.length);
    }
    const bool hasMaps = std::ranges::find(definition_.longValueMaps, column.id, &LongValueMaps::columnId) !=
                         definition_.longValueMaps.end();
    if (hasMaps != column.IsLongValue()) report_.Add(where + " has long-value maps by its type or in fact, not both.");
  }
  std::size_t end = 0;
  for (const auto& [offset, length] : fixedAreas) {
    if (offset < end) report_.Add(Where("The column at byte " + std::to_string(offset)) + " overlaps the one before.");
    end = offset + length;
  }
}

// The map of owned pages says where rows are; the map of pages with room is only an offer and must lie within it. Long
// values have maps of their own for each column: their pages are claimed here, before the rows that refer to them.
void TableCheck::CheckPages() {
  owners_.ClaimMap(definition_.ownedPages, "the rows of " + name_);
  owners_.ClaimMap(definition_.freeSpacePages, "the free space of " + name_);
  for (const PageNumber number : UsageMap(pager_, definition_.ownedPages).Pages()) {
    owners_.Claim(number, "the rows of " + name_);
    pages_[number] = CheckDataPage(*pager_.Read(number), definition_.page,
                                   "Page " + std::to_string(number) + " of " + name_, report_);
  }
  for (const PageNumber number : UsageMap(pager_, definition_.freeSpacePages).Pages()) {
    if (!pages_.contains(number))
      report_.Add(Where("Page " + std::to_string(number)) + " is offered for rows but not the table's.");
  }
  for (const LongValueMaps& maps : definition_.longValueMaps) {
    // Maps of a column that is not there any more own pages all the same; its number names it.
    const ColumnDefinition* column = definition_.FindColumn(maps.columnId);
    const std::string columnName = column == nullptr ? std::to_string(maps.columnId) : column->name;
    longValues_.try_emplace(maps.columnId, pager_, Where("the column '" + columnName + "'"), maps, owners_, report_);
  }
}

// A moved row is counted where its link stands, which is the row's identity for indexes; its body is skipped here and
// looked at through the link.
void TableCheck::CheckRows(PageNumber number, const std::vector<RowEntry>& entries) {
  report_.CountPage();
  report_.Guard(Where("Page " + std::to_string(number)), [&] {
    const PageHandle page = pager_.Read(number);
    for (std::size_t i = 0; i < entries.size(); ++i) {
      const RowPointer row{number, static_cast<std::uint8_t>(i)};
      if (entries[i].IsDeleted() || entries[i].IsMovedTarget()) continue;
      ++liveRows_;
      if (entries[i].IsMoved()) {
        CheckMoved(*page, entries[i], row);
      } else {
        CheckRow(page->Slice(entries[i].offset, entries[i].length), row);
      }
      // Reading decodes each value and fetches the long ones, which the outline alone does not show to be possible.
      report_.Guard(Where("The " + NameOf(row)), [&] { static_cast<void>(table_.Read(row)); });
    }
  });
}

// The link is the first 4 bytes of what is left in the old place. It must lead to a body (an entry with the flag 8000)
// on a page of this very table, and no two links to one body: a change through either would spoil the other's row.
void TableCheck::CheckMoved(const Page& page, const RowEntry& entry, RowPointer row) {
  const std::string where = Where("The moved " + NameOf(row));
  if (entry.length < format::row::kRowPointerSize) {
    report_.Add(where + " is too short for its link.");
    return;
  }
  const RowPointer target = RowPointer::FromPacked(page.U32(entry.offset));
  const auto holder = pages_.find(target.page);
  if (holder == pages_.end() || target.row >= holder->second.size() || !holder->second[target.row].IsMovedTarget()) {
    report_.Add(where + " leads to the " + NameOf(target) + ", which is no moved row of the table.");
    return;
  }
  if (!movedTargets_.insert(target).second) {
    report_.Add(where + " leads to the " + NameOf(target) + ", as another row does.");
    return;
  }
  const RowEntry& targetEntry = holder->second[target.row];
  CheckRow(pager_.Read(target.page)->Slice(targetEntry.offset, targetEntry.length), row);
}

// The bytes of a row, wherever they lie; `row` is its identity. A row that was written before a column was added may
// end before that column's place; it has no value there, so that its place is not asked about.
void TableCheck::CheckRow(std::span<const std::uint8_t> bytes, RowPointer row) {
  report_.Guard(Where("The " + NameOf(row)), [&] {
    const RowShape shape(bytes, definition_);
    const RowView view(bytes, FormatVersion(), row);
    for (const ColumnDefinition& column : definition_.columns) {
      const bool isInFixedArea = column.IsFixed() && column.type != ColumnType::Boolean && !view.IsNull(column);
      if (isInFixedArea && std::size_t{column.fixedOffset} + column.length > shape.FixedAreaSize())
        report_.Add(Where("The " + NameOf(row)) + " ends its fixed fields before the field '" + column.name + "'.");
    }
    for (const ColumnDefinition& column : definition_.columns) {
      const auto check = longValues_.find(column.id);
      if (check == longValues_.end() || view.IsNull(column)) continue;
      const auto value = view.Stored(column);
      if (!value.empty()) check->second.Use(value, row);
    }
  });
}

// A body that no link leads to cannot be reached by anybody: a row was lost, or deleted by halves.
void TableCheck::CheckTargets() {
  for (const auto& [number, entries] : pages_) {
    for (std::size_t i = 0; i < entries.size(); ++i) {
      const RowPointer row{number, static_cast<std::uint8_t>(i)};
      if (entries[i].IsMovedTarget() && !movedTargets_.contains(row))
        report_.Add(Where("The moved bytes in " + NameOf(row)) + " belong to no row.");
    }
  }
}

// Access itself lets the counters of its own four tables drift, so that only a strict check speaks of these. An
// automatic number above the counter does no harm before the next row is added; a strict check walks the table once
// more for it.
void TableCheck::CheckCounters() {
  if (table_.RowCount() != liveRows_) {
    std::string text = Where("The counter") + " says " + std::to_string(table_.RowCount()) + " rows; there are " +
                       std::to_string(liveRows_) + ".";
    if (definition_.isSystem) {
      report_.Leftover(std::move(text));
    } else {
      report_.Add(std::move(text));
    }
  }
  if (!report_.IsStrict()) return;
  const std::int32_t last = LastAutoNumber(pager_, definition_);
  for (std::size_t i = 0; i < table_.Columns().size(); ++i) {
    if (!table_.Columns()[i].definition.IsAutoNumber()) continue;
    std::vector<bool> wanted(table_.Columns().size());
    wanted[i] = true;
    for (auto row = table_.Next(std::nullopt); row.has_value(); row = table_.Next(row)) {
      const RowValues values = table_.Read(*row, wanted);
      const auto* number = std::get_if<std::int32_t>(&values[i]);
      if (number != nullptr && *number > last)
        report_.Leftover(Where("The automatic number " + std::to_string(*number)) + " is above the last one, " +
                         std::to_string(last) + ".");
    }
  }
}

}  // namespace tavi::access
