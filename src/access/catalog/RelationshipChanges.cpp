// Relationships made and dropped. One that is enforced stands in three places, which are changed in one statement:
//
//   definitions         a logical index in each of the two tables, each with the number and table of the other:
//                         primary side  ".rB"  on the unique index that is there already
//                         foreign side  under the relationship's name, on an index of its own over the foreign columns
//   MSysRelationships   a row for each pair of columns: names, flags, how many pairs, which of them
//   MSysObjects         a row of type 8 in the container of relationships, with its rights
//
// One that is not enforced has rows only. Rows that break the rule are found last, by searching the primary index for
// each foreign row, and then the statement is rolled back; so there is no check that runs ahead of the changes.
#include <algorithm>

#include "access/catalog/Catalog.h"
#include "access/catalog/ChangeErrors.h"
#include "access/catalog/DefinitionChanges.h"
#include "access/catalog/KeyLookup.h"
#include "access/catalog/Names.h"
#include "access/catalog/SystemTables.h"
#include "access/catalog/TableLayout.h"
#include "access/file/EngineError.h"

namespace tavi::access {

namespace {

namespace names = system_name;
using Kind = LogicalIndexDefinition::Kind;
using Side = LogicalIndexDefinition::Side;

/// Directions do not matter for finding equal keys; the index of the foreign side is made ascending.
std::vector<IndexColumn> FindColumns(const StoredTable& table, const std::vector<std::string>& columns) {
  std::vector<IndexColumn> found;
  for (const std::string& name : columns) {
    const auto position = table.FindColumn(name);
    if (!position.has_value()) RaiseNoColumn(table.Name(), name);
    found.push_back({table.Columns()[*position].definition.id, true});
  }
  return found;
}

/// Values of different types have no keys in common, not even when they compare as equal.
void RefuseOtherTypes(const StoredTable& primary, const StoredTable& foreign, const Relationship& relationship) {
  FindColumns(primary, relationship.primaryColumns);
  FindColumns(foreign, relationship.foreignColumns);
  for (std::size_t i = 0; i < relationship.primaryColumns.size(); ++i) {
    const auto typeIn = [](const StoredTable& table, const std::string& column) {
      return table.Columns()[table.FindColumn(column).value()].definition.type;
    };
    if (typeIn(primary, relationship.primaryColumns[i]) == typeIn(foreign, relationship.foreignColumns[i])) continue;
    RaiseFailure("Relationship must be on the same number of fields with the same data types. The fields '" +
                 relationship.primaryColumns[i] + "' of '" + primary.Name() + "' and '" +
                 relationship.foreignColumns[i] + "' of '" + foreign.Name() + "' differ.");
  }
}

/// The unique index on exactly these columns, in any direction.
std::uint32_t UniqueIndexOn(const StoredTable& table, const std::vector<IndexColumn>& columns) {
  const std::vector<RealIndexDefinition>& indexes = table.Definition().realIndexes;
  for (std::uint32_t i = 0; i < indexes.size(); ++i) {
    if (indexes[i].unique &&
        std::ranges::equal(indexes[i].columns, columns, {}, &IndexColumn::columnId, &IndexColumn::columnId)) {
      return i;
    }
  }
  RaiseFailure(
      "No unique index found for the referenced field of the primary table. Make one on exactly the fields of "
      "the table '" +
      table.Name() + "' that the relationship refers to.");
}

/// Numbers of logical indexes are never given twice while any higher one is there; gaps stay.
std::uint32_t NextNumber(const TableDefinition& definition) {
  std::uint32_t number = 0;
  for (const LogicalIndexDefinition& logical : definition.logicalIndexes) number = std::max(number, logical.number + 1);
  return number;
}

/// The primary side has no name of its own: ".rB", ".rC", ... ".rZ", ".rBA" ...
std::string PrimarySideName(const TableDefinition& definition) {
  for (std::size_t number = 1;; ++number) {
    std::string name;
    for (std::size_t rest = number; rest > 0; rest /= 26)
      name.insert(name.begin(), static_cast<char>('A' + static_cast<char>(rest % 26)));
    name.insert(0, ".r");
    const auto isTaken = [&](const LogicalIndexDefinition& logical) { return SameName(logical.name, name); };
    if (std::ranges::none_of(definition.logicalIndexes, isTaken)) return name;
  }
}

/// Both sides say how the relationship cascades, and must say the same.
LogicalIndexDefinition MakeSide(const Relationship& relationship, Side side) {
  LogicalIndexDefinition logical;
  logical.kind = Kind::Relationship;
  logical.side = side;
  logical.cascadeUpdates =
      relationship.cascadeUpdates ? format::logical_index::kCascadeYes : format::logical_index::kCascadeNo;
  logical.cascadeDeletes =
      relationship.cascadeDeletes ? format::logical_index::kCascadeYes : format::logical_index::kCascadeNo;
  return logical;
}

/// A foreign row with a null in its key refers to nothing and needs no partner. Costs a search in the primary index for
/// each row of the foreign table.
void RefuseOrphans(StoredTable& foreign, std::size_t index, StoredTable& primary, std::size_t primaryIndex) {
  primary.MakeSearchable(primaryIndex);
  std::vector<bool> wanted(foreign.Columns().size());
  for (const std::size_t column : foreign.Indexes()[index].columns) wanted[column] = true;
  foreign.Rows().Walk([&](RowPointer place) {
    const RowValues row = foreign.Read(place, wanted);
    std::vector<Value> key;
    for (const std::size_t column : foreign.Indexes()[index].columns) key.push_back(row[column]);
    if (std::ranges::any_of(key, IsNull) || !RowsWithKey(primary, primaryIndex, key).empty()) return true;
    RaiseFailure(
        "Can't create this relationship and enforce referential integrity. Data in the table '" + foreign.Name() +
        "' violates referential integrity rules: there are records without a related one in '" + primary.Name() + "'.");
  });
}

/// Puts both sides into the definitions and builds the index of the foreign side. A table may be related to itself.
void CreateSides(Catalog& catalog, const Relationship& relationship) {
  Pager& pager = catalog.GetPager();
  const std::shared_ptr<StoredTable> primary = catalog.OpenTable(relationship.primaryTable);
  const std::shared_ptr<StoredTable> foreign = catalog.OpenTable(relationship.foreignTable);
  TableDefinition primaryDefinition = primary->Definition();
  TableDefinition foreignDefinition = foreign->Definition();
  // Of a table that is related to itself there must be one changed definition and not two, of which the second written
  // would undo the first: `target` is then the primary one.
  const bool isOneTable = primaryDefinition.page == foreignDefinition.page;
  TableDefinition& target = isOneTable ? primaryDefinition : foreignDefinition;

  LogicalIndexDefinition primarySide = MakeSide(relationship, Side::Primary);
  primarySide.realIndex = UniqueIndexOn(*primary, FindColumns(*primary, relationship.primaryColumns));
  primarySide.name = PrimarySideName(primaryDefinition);
  primarySide.number = NextNumber(primaryDefinition);
  primarySide.partnerTable = foreignDefinition.page;
  LogicalIndexDefinition foreignSide = MakeSide(relationship, Side::Foreign);
  foreignSide.name = relationship.name;
  foreignSide.realIndex = static_cast<std::uint32_t>(target.realIndexes.size());
  // In one table the primary side, which is not in the list yet, takes the next number, and this one that behind it.
  foreignSide.number = NextNumber(target) + (isOneTable ? 1 : 0);
  foreignSide.partnerTable = primaryDefinition.page;
  primarySide.partnerNumber = foreignSide.number;
  foreignSide.partnerNumber = primarySide.number;

  RealIndexDefinition real;
  real.columns = FindColumns(*foreign, relationship.foreignColumns);
  real.flags = IndexFlags(real);
  // Asked before each side is added: in one table both must find room.
  RefuseFullIndexList(primaryDefinition, primary->Name());
  primaryDefinition.logicalIndexes.push_back(primarySide);
  RefuseFullIndexList(target, foreign->Name());
  target.logicalIndexes.push_back(foreignSide);
  target.realIndexes.push_back(real);
  SortRecords(primaryDefinition);
  SortRecords(target);
  AllocateParts(pager, target, 0);
  WriteTableDefinition(pager, primaryDefinition, true);
  if (!isOneTable) WriteTableDefinition(pager, target, true);
  catalog.Forget();

  // Entries are made through the altered definition, and the orphans are looked for only now, as both indexes are
  // there.
  const std::shared_ptr<StoredTable> altered = catalog.OpenTable(relationship.foreignTable);
  FillIndex(pager, *altered, foreignSide.realIndex);
  RefuseOrphans(*altered, foreignSide.realIndex, *catalog.OpenTable(relationship.primaryTable), primarySide.realIndex);
}

/// In these rows "object" is the foreign table and "referenced object" the primary one. A single column makes one row,
/// a key of three columns three, numbered from 0.
void AddRelationshipRows(Catalog& catalog, const Relationship& relationship) {
  std::uint32_t flags = relationship.enforced ? 0 : format::catalog::kRelationNotEnforced;
  if (relationship.cascadeUpdates) flags |= format::catalog::kRelationCascadeUpdates;
  if (relationship.cascadeDeletes) flags |= format::catalog::kRelationCascadeDeletes;
  const std::shared_ptr<StoredTable> table = catalog.TableAt(format::kRelationshipsTablePage);
  const std::size_t count = relationship.primaryColumns.size();
  for (std::size_t i = 0; i < count; ++i) {
    SystemRow row(*table);
    row.Set(names::kRelationship, relationship.name)
        .Set(names::kRelationFlags, static_cast<std::int32_t>(flags))
        .Set(names::kColumnCount, static_cast<std::int32_t>(count))
        .Set(names::kColumnNumber, static_cast<std::int32_t>(i))
        .Set(names::kObject, relationship.foreignTable)
        .Set(names::kColumn, relationship.foreignColumns[i])
        .Set(names::kReferencedObject, relationship.primaryTable)
        .Set(names::kReferencedColumn, relationship.primaryColumns[i]);
    table->Insert(row.Values());
  }
}

const CatalogObject* FindRelationshipObject(Catalog& catalog, std::string_view name) {
  const std::vector<CatalogObject>& objects = catalog.Objects();
  const auto found = std::ranges::find_if(objects, [&](const CatalogObject& object) {
    return object.type == format::catalog::kTypeRelationship && SameName(object.name, name);
  });
  return found == objects.end() ? nullptr : &*found;
}

/// Takes the sides of a relationship out of a table's definition; the index of the foreign side goes when nothing else
/// uses it.
void DropSides(Catalog& catalog, std::string_view tableName, std::string_view relationship) {
  Pager& pager = catalog.GetPager();
  const std::shared_ptr<StoredTable> table = catalog.OpenTable(tableName);
  TableDefinition definition = table->Definition();
  const auto side = std::ranges::find_if(definition.logicalIndexes, [&](const LogicalIndexDefinition& logical) {
    return logical.side == Side::Foreign && SameName(logical.name, relationship);
  });
  if (side == definition.logicalIndexes.end()) return;
  // A copy: the record goes with the next line, and its numbers are needed to find the other side.
  const LogicalIndexDefinition dropped = *side;
  definition.logicalIndexes.erase(side);
  const bool isShared = std::ranges::any_of(definition.logicalIndexes, [&](const LogicalIndexDefinition& other) {
    return other.realIndex == dropped.realIndex;
  });
  if (isShared) {
    WriteTableDefinition(pager, definition, true);
  } else {
    RemoveRealIndex(pager, *table, definition, dropped.realIndex);
  }
  catalog.Forget();

  // Read anew after the first side is gone: the primary table may be this very one. Its index stays, as it was there
  // before the relationship.
  TableDefinition primary = catalog.TableAt(dropped.partnerTable)->Definition();
  std::erase_if(primary.logicalIndexes, [&](const LogicalIndexDefinition& logical) {
    return logical.side == Side::Primary && logical.number == dropped.partnerNumber;
  });
  WriteTableDefinition(pager, primary, true);
  catalog.Forget();
}

}  // namespace

void CreateRelationship(Catalog& catalog, const Relationship& relationship, Date now) {
  CheckName(relationship.name, "relationship");
  if (FindRelationshipObject(catalog, relationship.name) != nullptr)
    RaiseFailure("A relationship named '" + relationship.name + "' already exists. Give it another name.");
  const CatalogObject primary = ChangeableTable(catalog, relationship.primaryTable);
  const CatalogObject foreign = ChangeableTable(catalog, relationship.foreignTable);
  const std::size_t count = relationship.primaryColumns.size();
  // Ten columns are what an index has room for, and the foreign side is one.
  if (count == 0 || count > format::real_index::kMaximumColumnCount || relationship.foreignColumns.size() != count)
    throw Error(ErrorNumber::ProviderSyntax, kErrorSource,
                "The relationship '" + relationship.name + "' needs 1 to 10 pairs of columns.");
  RefuseOtherTypes(*catalog.OpenTable(primary.name), *catalog.OpenTable(foreign.name), relationship);
  if (relationship.enforced) CreateSides(catalog, relationship);
  AddRelationshipRows(catalog, relationship);
  NewObject object;
  object.id = FreeObjectId(catalog);
  object.container = format::catalog::kRelationshipsId;
  object.type = format::catalog::kTypeRelationship;
  object.name = relationship.name;
  AddObject(catalog, object, now);
}

void DropRelationship(Catalog& catalog, std::string_view name) {
  const std::vector<Relationship>& all = catalog.Relationships();
  const auto found =
      std::ranges::find_if(all, [&](const Relationship& candidate) { return SameName(candidate.name, name); });
  if (found == all.end()) RaiseFailure("There is no relationship named '" + std::string(name) + "'.");
  // The rows that it is read from are about to go. NOLINTNEXTLINE(performance-unnecessary-copy-initialization)
  const Relationship relationship = *found;
  if (relationship.enforced) DropSides(catalog, relationship.foreignTable, relationship.name);
  const std::shared_ptr<StoredTable> table = catalog.TableAt(format::kRelationshipsTablePage);
  for (const RowPointer row : RowsWithValue(*table, names::kRelationship, relationship.name)) table->Delete(row);
  if (const CatalogObject* object = FindRelationshipObject(catalog, relationship.name))
    RemoveObject(catalog, CatalogObject(*object));
  catalog.Forget();
}

}  // namespace tavi::access
