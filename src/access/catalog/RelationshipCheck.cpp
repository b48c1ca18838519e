// The check of relationships, of one table at a time: whether both sides agree about each, and whether the rows on the
// foreign side find their partners. The second is done from the foreign side only, so that each relationship is looked
// through once: a search in the primary index for every foreign row.
#include <algorithm>
#include <set>

#include "access/catalog/KeyLookup.h"
#include "access/catalog/TableCheck.h"

namespace tavi::access {

namespace {

using Kind = LogicalIndexDefinition::Kind;
using Side = LogicalIndexDefinition::Side;

/// Null when the catalogue has no table there.
std::shared_ptr<Table> TableOfPage(Database& database, PageNumber page) {
  for (const CatalogEntry& entry : database.Tables())
    if (entry.page == page && !entry.isLinked) return database.OpenTable(entry.name);
  return nullptr;
}

const LogicalIndexDefinition* FindPartner(const Table& table, const LogicalIndexDefinition& logical) {
  const auto& indexes = table.Definition().logicalIndexes;
  // Numbers are unique in a table, so the first is the one.
  const auto partner = std::ranges::find(indexes, logical.partnerNumber, &LogicalIndexDefinition::number);
  return partner == indexes.end() ? nullptr : &*partner;
}

/// Everything that is said twice must be the same twice: each names the other by number and table, one is the primary
/// side and one the foreign, and both cascade alike.
bool AreSides(const Table& table, const LogicalIndexDefinition& logical, const LogicalIndexDefinition& partner) {
  const bool sidesDiffer = logical.side != Side::None && partner.side != Side::None && logical.side != partner.side;
  return partner.kind == Kind::Relationship && sidesDiffer && partner.partnerNumber == logical.number &&
         partner.partnerTable == table.Definition().page && partner.cascadeUpdates == logical.cascadeUpdates &&
         partner.cascadeDeletes == logical.cascadeDeletes;
}

/// Which columns to read for a key: long values beside them would be fetched for nothing.
std::vector<bool> ColumnsOf(const Table& table, std::size_t index) {
  std::vector<bool> wanted(table.Columns().size());
  for (const std::size_t column : table.Indexes()[index].columns) wanted[column] = true;
  return wanted;
}

/// The keys of a table's rows, looked for in its index, or gathered where that cannot be searched.
class PrimaryKeys {
 public:
  PrimaryKeys(Table& table, std::size_t index) : table_(table), index_(index), canSearch_(table.CanSearch(index)) {
    // The keys of a whole table are held in memory only where its index cannot be searched.
    if (canSearch_) return;
    const std::vector<bool> wanted = ColumnsOf(table, index);
    for (auto row = table.Next(std::nullopt); row.has_value(); row = table.Next(row))
      gathered_.insert(table.Encoder(index).RowKey(table.Read(*row, wanted)));
  }

  [[nodiscard]] bool Contain(const std::vector<Value>& values) {
    if (canSearch_) return !RowsWithKey(table_, index_, values).empty();
    const std::optional<IndexKey> key = table_.Encoder(index_).PrefixKey(values);
    return key.has_value() && gathered_.contains(*key);
  }

 private:
  Table& table_;
  std::size_t index_;
  bool canSearch_;
  std::set<IndexKey> gathered_;
};

/// Without keys there is no telling which texts are equal by a sort order that is not known here.
bool HasKnownOrder(Table& table, std::size_t index) {
  try {
    static_cast<void>(table.Encoder(index));
    return true;
  } catch (const Error&) {
    return false;
  }
}

/// A key with a null refers to nothing. A row that cannot be read ends the walk with a finding.
void CheckForeignRows(Table& table, std::size_t index, Table& primary, std::size_t primaryIndex,
                      const std::string& where, CheckReport& report) {
  const std::vector<std::size_t>& columns = table.Indexes()[index].columns;
  if (!HasKnownOrder(primary, primaryIndex)) {
    report.Remark(where + " joins texts in a sort order that is not known here; its rows were not compared.");
    return;
  }
  PrimaryKeys primaryKeys(primary, primaryIndex);
  const std::vector<bool> wanted = ColumnsOf(table, index);
  for (auto row = table.Next(std::nullopt); row.has_value(); row = table.Next(row)) {
    const RowValues values = table.Read(*row, wanted);
    std::vector<Value> key;
    key.reserve(columns.size());
    for (const std::size_t column : columns) key.push_back(values[column]);
    if (std::ranges::any_of(key, IsNull) || primaryKeys.Contain(key)) continue;
    report.Add(where + ": row " + std::to_string(row->row) + " of page " + std::to_string(row->page) + " of table '" +
               table.Name() + "' has no row in table '" + primary.Name() + "'.");
  }
}

/// One side of a relationship, seen from the table that it is listed in.
void CheckSide(Database& database, Table& table, const LogicalIndexDefinition& logical, const std::string& where,
               CheckReport& report) {
  const std::shared_ptr<Table> other = TableOfPage(database, logical.partnerTable);
  if (other == nullptr) {
    report.Add(where + " leads to page " + std::to_string(logical.partnerTable) + ", where no table is.");
    return;
  }
  const LogicalIndexDefinition* partner = FindPartner(*other, logical);
  if (partner == nullptr || !AreSides(table, logical, *partner)) {
    report.Add(where + " is not the same on its other side, table '" + other->Name() + "'.");
    return;
  }
  if (logical.side != Side::Foreign) return;
  // Indexes that are not there are a finding about the definition.
  if (logical.realIndex < table.Indexes().size() && partner->realIndex < other->Indexes().size())
    CheckForeignRows(table, logical.realIndex, *other, partner->realIndex, where, report);
}

}  // namespace

// By what the definitions say, not the rows of MSysRelationships: the definitions are what changes of rows obey.
void CheckRelationships(Database& database, Table& table, CheckReport& report) {
  for (const LogicalIndexDefinition& logical : table.Definition().logicalIndexes) {
    if (logical.kind != Kind::Relationship) continue;
    const std::string where = "The relationship '" + logical.name + "' of table '" + table.Name() + "'";
    report.Guard(where, [&] { CheckSide(database, table, logical, where, report); });
  }
}

}  // namespace tavi::access
