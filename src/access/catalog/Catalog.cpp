// What is remembered of the system tables, so that opening a table does not walk them each time: the objects, their
// names, the relationships, and the tables that were opened.
//
// All of it is dropped together when it may have become untrue. Other users' commits and all rollbacks make the pager's
// generation grow, which every question compares first (Refresh). One's own changes do not, so whoever changes a
// definition or a system table's rows says so (Forget). A table that was handed out stays usable for who holds it, with
// what it knew.
//
// Costs: the first question after a change walks the system table that it is about, MSysObjects without its long
// values; every other one is a look-up.
#include "access/catalog/Catalog.h"

#include <algorithm>

#include "access/catalog/ChangeErrors.h"
#include "access/catalog/Names.h"
#include "access/catalog/SystemTables.h"
#include "access/file/EngineError.h"
#include "access/file/Format.h"
#include "platform/values/Text.h"

namespace tavi::access {

namespace {

namespace names = system_name;

/// A damaged row, with nulls or values of other types, still is an object, with the number 0 or an empty name: one such
/// row must not cost a file all its tables.
CatalogObject MakeObject(const SystemRow& row, RowPointer place) {
  CatalogObject object;
  object.id = row.Number(names::kId);
  object.parentId = row.Number(names::kParentId);
  object.type = static_cast<std::int16_t>(row.Number(names::kType));
  object.flags = static_cast<std::uint32_t>(row.Number(names::kFlags));
  object.name = row.Text(names::kName);
  object.row = place;
  return object;
}

/// One row of MSysRelationships: a pair of columns.
struct RelationshipPair {
  std::int32_t place = 0;
  std::string primaryColumn;
  std::string foreignColumn;
};

Relationship MakeRelationship(const SystemRow& row) {
  const auto flags = static_cast<std::uint32_t>(row.Number(names::kRelationFlags));
  Relationship relationship;
  relationship.name = row.Text(names::kRelationship);
  relationship.primaryTable = row.Text(names::kReferencedObject);
  relationship.foreignTable = row.Text(names::kObject);
  // The flag says what is not done; a row without flags is that of an enforced relationship.
  relationship.enforced = (flags & format::catalog::kRelationNotEnforced) == 0;
  relationship.cascadeUpdates = (flags & format::catalog::kRelationCascadeUpdates) != 0;
  relationship.cascadeDeletes = (flags & format::catalog::kRelationCascadeDeletes) != 0;
  return relationship;
}

}  // namespace

bool CatalogObject::IsTable() const {
  return type == format::catalog::kTypeTable;
}

bool CatalogObject::IsLinked() const {
  return type == format::catalog::kTypeLinkedTable || type == format::catalog::kTypeOdbcTable;
}

bool CatalogObject::IsSystem() const {
  return (flags & format::catalog::kFlagSystemMask) != 0;
}

void Catalog::Forget() {
  objects_.reset();
  byName_.clear();
  relationships_.reset();
  tables_.clear();
}

void Catalog::Refresh() {
  if (generation_ == pager_.Generation()) return;
  Forget();
  generation_ = pager_.Generation();
}

const std::vector<CatalogObject>& Catalog::Objects() {
  Refresh();
  if (objects_.has_value()) return *objects_;
  const std::shared_ptr<StoredTable> table = OpenSystemTable(format::kObjectsTablePage, names::kObjects);
  const std::vector<bool> wanted =
      WantedColumns(*table, {names::kId, names::kParentId, names::kName, names::kType, names::kFlags});
  std::vector<CatalogObject> objects;
  table->Rows().Walk([&](RowPointer place) {
    objects.push_back(MakeObject(SystemRow(*table, table->Read(place, wanted)), place));
    return true;
  });
  // Forms, reports and containers may have a table's name. Of two tables with one name the first keeps it.
  for (std::size_t i = 0; i < objects.size(); ++i) {
    const bool named = objects[i].IsTable() || objects[i].IsLinked() || objects[i].type == format::catalog::kTypeQuery;
    if (named) byName_.emplace(NameKey(objects[i].name), i);
  }
  objects_ = std::move(objects);
  return *objects_;
}

const CatalogObject* Catalog::FindNamed(std::string_view name) {
  const std::vector<CatalogObject>& objects = Objects();
  const auto found = byName_.find(NameKey(name));
  return found == byName_.end() ? nullptr : &objects[found->second];
}

std::shared_ptr<StoredTable> Catalog::OpenTable(std::string_view name) {
  const CatalogObject* object = FindNamed(name);
  if (object == nullptr) RaiseNoTable(name);
  if (object->IsLinked())
    RaiseFailure("The table '" + object->name +
                 "' is a link to another database, which is not followed. Open that one.");
  // Names are shared with queries, so that this is found and can be said.
  if (!object->IsTable())
    RaiseFailure("'" + object->name + "' is a query stored in the database; stored queries cannot be run here.");
  const auto page = static_cast<PageNumber>(object->id);
  // Asked for by this name, while the page may be another object's too: what is opened bears the name of the first.
  const std::string itsName = object->name;
  std::shared_ptr<StoredTable> table = TableAt(page);
  if (!EqualIgnoringCase(table->Name(), itsName)) RefuseManyNames(page, itsName);
  return table;
}

// One wrong number in the catalogue must not cost a table its name; hundreds would have one table read hundreds of
// times.
void Catalog::RefuseManyNames(PageNumber page, const std::string& name) {
  constexpr std::ptrdiff_t kMostNames = 4;
  const auto count = std::ranges::count_if(Objects(), [&](const CatalogObject& object) {
    return object.IsTable() && static_cast<PageNumber>(object.id) == page;
  });
  if (count <= kMostNames) return;
  RaiseDamage("the table '" + name + "' is one of " + std::to_string(count) +
              " that have the same definition, which begins on page " + std::to_string(page) + ".");
}

// A table is known by the page of its definition, which is its number in the catalogue as well. The sides of
// relationships refer to it by that.
std::shared_ptr<StoredTable> Catalog::TableAt(PageNumber page) {
  const std::vector<CatalogObject>& objects = Objects();
  const auto known = tables_.find(page);
  if (known != tables_.end()) return known->second;
  const auto object = std::ranges::find_if(objects, [&](const CatalogObject& candidate) {
    return candidate.IsTable() && static_cast<PageNumber>(candidate.id) == page;
  });
  if (object == objects.end())
    RaiseDamage("page " + std::to_string(page) + " is named as a table, but the catalogue has no such table.");
  PropertyBlob properties;
  bool isWhole = true;
  try {
    properties = Properties(*object);
  } catch (const Error&) {
    // They say what may be written; what is there can be read without them.
    if (pager_.InWrite()) throw;
    isWhole = false;
  }
  auto table = std::make_shared<StoredTable>(pager_, object->name, object->IsSystem(),
                                             ReadTableDefinition(pager_, page), properties, this);
  // Otherwise a later write statement would be handed the table without its rules.
  if (isWhole) tables_.emplace(page, table);
  return table;
}

// The system's own tables are opened by their fixed pages: what the catalogue says of them lies in one of them.
std::shared_ptr<StoredTable> Catalog::OpenSystemTable(PageNumber page, const char* name) {
  Refresh();
  const auto known = tables_.find(page);
  if (known != tables_.end()) return known->second;
  auto table =
      std::make_shared<StoredTable>(pager_, name, true, ReadTableDefinition(pager_, page), PropertyBlob(), this);
  tables_.emplace(page, table);
  return table;
}

// Fetched for one object at a time, since they are long values on pages of their own.
PropertyBlob Catalog::Properties(const CatalogObject& object) {
  const std::shared_ptr<StoredTable> table = OpenSystemTable(format::kObjectsTablePage, names::kObjects);
  const Bytes blob =
      SystemRow(*table, table->Read(object.row, WantedColumns(*table, {names::kLvProp}))).Binary(names::kLvProp);
  try {
    return blob.empty() ? PropertyBlob() : PropertyBlob::Parse(blob);
  } catch (const Error& error) {
    throw Error(error.Number(), error.Source(), "The table '" + object.name + "': " + error.Description());
  }
}

// Rows of one relationship lie anywhere in the table: they are gathered by its name and put into the order of their
// pairs. The relationship's own columns are the same in each of its rows.
const std::vector<Relationship>& Catalog::Relationships() {
  Refresh();
  if (relationships_.has_value()) return *relationships_;
  const std::shared_ptr<StoredTable> table = OpenSystemTable(format::kRelationshipsTablePage, names::kRelationships);
  std::map<std::string, std::pair<Relationship, std::vector<RelationshipPair>>> byName;
  table->Rows().Walk([&](RowPointer place) {
    const SystemRow row(*table, table->Read(place));
    auto& [relationship, pairs] = byName[NameKey(row.Text(names::kRelationship))];
    relationship = MakeRelationship(row);
    pairs.push_back({row.Number(names::kColumnNumber), row.Text(names::kReferencedColumn), row.Text(names::kColumn)});
    return true;
  });
  std::vector<Relationship> result;
  for (auto& [key, entry] : byName) {
    auto& [relationship, pairs] = entry;
    std::ranges::sort(pairs, {}, &RelationshipPair::place);
    for (const RelationshipPair& pair : pairs) {
      relationship.primaryColumns.push_back(pair.primaryColumn);
      relationship.foreignColumns.push_back(pair.foreignColumn);
    }
    result.push_back(std::move(relationship));
  }
  relationships_ = std::move(result);
  return *relationships_;
}

}  // namespace tavi::access
