// What relationships ask of a change of rows. They are kept in both tables' definitions: each table has a logical index
// for its side, which names the other table by page and the other side by number. So a change asks only the table's own
// list, and finds the partner through it:
//
//   CheckPrimaryRows   a row is added, or its foreign key changes: the primary table must have the key
//   PlanKeyChange      a primary key changes: rows that refer to it follow, or refuse
//   PlanDelete         a row goes: rows that refer to it go too, lose their reference, or refuse
//
// All three look through indexes, never through tables, and change nothing; the changes are StoredTable's. A key with a
// null in it neither refers to a row nor is referred to.
#include "access/catalog/RelationshipRules.h"

#include <algorithm>
#include <set>

#include "access/catalog/ChangeErrors.h"
#include "access/catalog/KeyLookup.h"
#include "access/file/EngineError.h"
#include "access/file/Format.h"

namespace tavi::access {

namespace {

using Side = LogicalIndexDefinition::Side;
using Kind = LogicalIndexDefinition::Kind;

/// The other end of a relationship.
struct Partner {
  std::shared_ptr<StoredTable> table;
  std::size_t index = 0;  ///< position in Indexes()
};

[[noreturn]] void RaiseBrokenRelationship(const StoredTable& table, const LogicalIndexDefinition& logical) {
  RaiseDamage("the relationship '" + logical.name + "' of the table '" + table.Name() +
              "' leads to an index that does not exist or does not fit.");
}

std::vector<LogicalIndexDefinition> SidesOf(const StoredTable& table, Side side) {
  std::vector<LogicalIndexDefinition> result;
  for (const LogicalIndexDefinition& logical : table.Definition().logicalIndexes)
    if (logical.kind == Kind::Relationship && logical.side == side) result.push_back(logical);
  return result;
}

/// Sides that do not fit are damage, of which a write may make more: it is refused. Reading asks for no partner.
Partner FindPartner(const StoredTable& table, RelatedTables& related, const LogicalIndexDefinition& logical) {
  if (logical.realIndex >= table.Indexes().size()) RaiseBrokenRelationship(table, logical);
  Partner partner;
  partner.table = related.TableAt(logical.partnerTable);
  for (const LogicalIndexDefinition& candidate : partner.table->Definition().logicalIndexes) {
    if (candidate.number != logical.partnerNumber || candidate.kind != Kind::Relationship) continue;
    partner.index = candidate.realIndex;
    if (candidate.realIndex >= partner.table->Indexes().size() ||
        partner.table->Indexes()[candidate.realIndex].columns.size() !=
            table.Indexes()[logical.realIndex].columns.size()) {
      break;
    }
    return partner;
  }
  RaiseBrokenRelationship(table, logical);
}

/// The values of an index's columns; nothing when one of them is null.
std::optional<std::vector<Value>> KeyValues(const StoredTable& table, std::size_t index, const RowValues& row) {
  std::vector<Value> values;
  for (const std::size_t column : table.Indexes()[index].columns) {
    if (IsNull(row[column])) return std::nullopt;
    values.push_back(row[column]);
  }
  return values;
}

bool SameColumns(const StoredTable& table, std::size_t index, const RowValues& left, const RowValues& right) {
  return std::ranges::all_of(table.Indexes()[index].columns,
                             [&](std::size_t column) { return left[column] == right[column]; });
}

/// Rows of the foreign side that refer to a row of the primary side.
std::vector<RowPointer> Referring(const StoredTable& table, const LogicalIndexDefinition& primary,
                                  const Partner& foreign, const RowValues& row) {
  const auto values = KeyValues(table, primary.realIndex, row);
  if (!values.has_value()) return {};
  // Rows under keys of another program's making would be missed, and left without their partner.
  foreign.table->MakeSearchable(foreign.index);
  return RowsWithKey(*foreign.table, foreign.index, *values);
}

// A table may have several objects at a time; a row is known by the page of its table's definition and its place.
using RowIdentity = std::pair<PageNumber, RowPointer>;

RowIdentity IdentityOf(const TableRow& row) {
  return {row.table->Definition().page, row.row};
}

/// Follows cascading deletes from row to row.
/// Breadth first: `deleted` is the list of rows to be visited as well as the result. A row is visited once, so
/// relationships that lead in a circle come to an end. Whether a row that refuses is in the way is only known when all
/// that goes is known, since it may itself go through another relationship: hence the two lists that are looked through
/// at the end.
class DeletePlanner {
 public:
  explicit DeletePlanner(RelatedTables& related) : related_(related) {}

  DeletePlan Plan(StoredTable& table, RowPointer row) {
    visited_.insert({table.Definition().page, row});
    Visit(table, row);
    for (std::size_t next = 0; next < plan_.deleted.size(); ++next) {
      const TableRow current = plan_.deleted[next];
      Visit(*current.table, current.row);
    }
    for (const TableRow& kept : restricted_)
      if (!visited_.contains(IdentityOf(kept))) RaiseRelatedRows(kept.table->Name());
    std::erase_if(plan_.detached,
                  [&](const DeletePlan::Detached& detached) { return visited_.contains(IdentityOf(detached.row)); });
    return std::move(plan_);
  }

 private:
  void Visit(StoredTable& table, RowPointer row) {
    // Nearly all tables end here, before their row is read.
    const std::vector<LogicalIndexDefinition> sides = SidesOf(table, Side::Primary);
    if (sides.empty()) return;
    const RowValues values = table.Read(row);
    for (const LogicalIndexDefinition& side : sides) {
      const Partner foreign = FindPartner(table, related_, side);
      for (const RowPointer child : Referring(table, side, foreign, values)) Add(side, foreign, child);
    }
  }

  /// What the relationship says for deletes: rows go too, lose their reference, or hold the row that they refer to.
  void Add(const LogicalIndexDefinition& side, const Partner& foreign, RowPointer child) {
    const TableRow row{foreign.table, child};
    if (side.cascadeDeletes == format::logical_index::kCascadeYes) {
      if (visited_.insert(IdentityOf(row)).second) plan_.deleted.push_back(row);
    } else if (side.cascadeDeletes == format::logical_index::kCascadeSetNull) {
      plan_.detached.push_back({row, foreign.table->Indexes()[foreign.index].columns});
    } else {
      restricted_.push_back(row);
    }
  }

  RelatedTables& related_;
  DeletePlan plan_;
  std::set<RowIdentity> visited_;
  std::vector<TableRow> restricted_;
};

}  // namespace

void CheckPrimaryRows(StoredTable& table, RelatedTables& related, const RowValues* before, const RowValues& after) {
  for (const LogicalIndexDefinition& side : SidesOf(table, Side::Foreign)) {
    // A damaged relationship refuses every write of the table, also one that leaves its columns alone.
    const Partner primary = FindPartner(table, related, side);
    if (before != nullptr && SameColumns(table, side.realIndex, *before, after)) continue;
    const auto values = KeyValues(table, side.realIndex, after);
    if (!values.has_value()) continue;
    primary.table->MakeSearchable(primary.index);
    const std::optional<IndexKey> key = primary.table->Encoder(primary.index).PrefixKey(*values);
    if (key.has_value() && primary.table->Tree(primary.index).ContainsKey(*key)) continue;
    // A row may refer to itself, and is not stored yet when that is asked.
    const bool isItself = primary.table->Definition().page == table.Definition().page && key.has_value() &&
                          table.Encoder(primary.index).RowKey(after) == *key;
    if (!isItself) RaiseNoRelatedRow(primary.table->Name());
  }
}

DeletePlan PlanDelete(StoredTable& table, RelatedTables& related, RowPointer row) {
  return DeletePlanner(related).Plan(table, row);
}

std::vector<FollowingUpdate> PlanKeyChange(StoredTable& table, RelatedTables& related, const RowValues& before,
                                           const RowValues& after) {
  std::vector<FollowingUpdate> following;
  for (const LogicalIndexDefinition& side : SidesOf(table, Side::Primary)) {
    const Partner foreign = FindPartner(table, related, side);
    if (SameColumns(table, side.realIndex, before, after)) continue;
    // Values that differ in case or trailing blanks alone have one key, by which rows still find each other.
    const KeyEncoder& encoder = table.Encoder(side.realIndex);
    if (encoder.RowKey(before) == encoder.RowKey(after)) continue;
    for (const RowPointer child : Referring(table, side, foreign, before)) {
      if (side.cascadeUpdates != format::logical_index::kCascadeYes) RaiseRelatedRows(foreign.table->Name());
      FollowingUpdate update{{foreign.table, child}, {}};
      const std::vector<std::size_t>& from = table.Indexes()[side.realIndex].columns;
      const std::vector<std::size_t>& to = foreign.table->Indexes()[foreign.index].columns;
      // Columns of the two indexes go together by their position in the key.
      for (std::size_t i = 0; i < to.size(); ++i) update.values.emplace_back(to[i], after[from[i]]);
      following.push_back(std::move(update));
    }
  }
  return following;
}

}  // namespace tavi::access
