// The rows that stand for an object: one in MSysObjects, and one in MSysACEs for each holder of rights. A new object
// has the rights that its container hands down; for a table in a file of our own making these are two:
//
//   container Tables   Creator  000F00FE  inheritable     Users  000FFEFF  inheritable
//   the new table      Admin    000F00FE                  Users  000FFEFF
//
// Without rights Access opens a table for its owner alone. All of it goes through the tables' own changes of rows, so
// that their indexes are kept; the catalogue then forgets what it has read.
#include <algorithm>

#include "access/catalog/Catalog.h"
#include "access/catalog/KeyLookup.h"
#include "access/catalog/SystemTables.h"
#include "access/file/EngineError.h"
#include "access/file/Format.h"

namespace tavi::access {

namespace {

namespace names = system_name;

/// One row of MSysACEs.
struct Right {
  Bytes securityId;
  std::uint32_t mask = 0;
};

/// The masked administrator: the owner of the database object, which every file has.
/// All other security ids are told from this one, since the bytes that mask them are the same in all rows of a file.
Bytes ReadOwner(Catalog& catalog) {
  for (const CatalogObject& object : catalog.Objects()) {
    if (static_cast<std::uint32_t>(object.id) != format::catalog::kDatabaseId) continue;
    const std::shared_ptr<StoredTable> table = catalog.TableAt(format::kObjectsTablePage);
    return SystemRow(*table, table->Read(object.row, WantedColumns(*table, {names::kOwner}))).Binary(names::kOwner);
  }
  RaiseDamage("the catalogue has no row of the database itself (MSysDb).");
}

/// An id of another length is that of a workgroup of the club's own; there is no creator's id to be told from it.
Bytes CreatorOf(const Bytes& owner) {
  if (owner.size() != format::security::kAdmin.size()) return {};
  return MaskedSecurityId(std::span<const std::uint8_t, 2>(owner.data(), 2), format::security::kCreator);
}

/// What a container hands down to a new object. The creator's rights become the owner's.
std::vector<Right> InheritedRights(Catalog& catalog, std::uint32_t container, const Bytes& owner) {
  const std::shared_ptr<StoredTable> table = catalog.TableAt(format::kAcesTablePage);
  const Bytes creator = CreatorOf(owner);
  std::vector<Right> rights;
  for (const RowPointer place : RowsWithValue(*table, names::kObjectId, static_cast<std::int32_t>(container))) {
    const SystemRow row(*table, table->Read(place));
    if (row.Get(names::kInheritable) != Value(true)) continue;
    Right right{row.Binary(names::kSid), static_cast<std::uint32_t>(row.Number(names::kAcm))};
    if (right.securityId == creator) right.securityId = owner;
    const auto known = std::ranges::find(rights, right.securityId, &Right::securityId);
    // The owner may have rights of his own beside those of the creator: one row holds both.
    if (known != rights.end()) {
      known->mask |= right.mask;
    } else {
      rights.push_back(std::move(right));
    }
  }
  return rights;
}

}  // namespace

// Masks are exclusive-or, so the mask falls out when a masked id meets the plain one that it stands for.
Bytes MaskedSecurityId(std::span<const std::uint8_t, 2> maskedAdmin, std::span<const std::uint8_t, 2> plain) {
  Bytes result;
  for (std::size_t i = 0; i < plain.size(); ++i)
    result.push_back(static_cast<std::uint8_t>(maskedAdmin[i] ^ format::security::kAdmin[i] ^ plain[i]));
  return result;
}

void AddObject(Catalog& catalog, const NewObject& object, Date now) {
  const std::shared_ptr<StoredTable> objects = catalog.TableAt(format::kObjectsTablePage);
  const Bytes owner = ReadOwner(catalog);
  const std::vector<Right> rights = InheritedRights(catalog, object.container, owner);

  SystemRow row(*objects);
  row.Set(names::kId, object.id)
      .Set(names::kParentId, static_cast<std::int32_t>(object.container))
      .Set(names::kName, object.name)
      .Set(names::kType, object.type)
      .Set(names::kFlags, std::int32_t{0})
      .Set(names::kDateCreate, now)
      .Set(names::kDateUpdate, now)
      .Set(names::kOwner, owner);
  if (!object.properties.IsEmpty()) row.Set(names::kLvProp, object.properties.Serialize());
  objects->Insert(row.Values());

  const std::shared_ptr<StoredTable> aces = catalog.TableAt(format::kAcesTablePage);
  for (const Right& right : rights) {
    SystemRow ace(*aces);
    ace.Set(names::kObjectId, object.id)
        .Set(names::kAcm, static_cast<std::int32_t>(right.mask))
        .Set(names::kInheritable, false)
        .Set(names::kSid, right.securityId);
    aces->Insert(ace.Values());
  }
  catalog.Forget();
}

// Numbers from 0x80000000 upwards, which are the negative ones, belong to objects that are no tables. The containers'
// fixed numbers are positive.
std::int32_t FreeObjectId(Catalog& catalog) {
  auto id = static_cast<std::int32_t>(format::catalog::kFirstFreeId);
  for (const CatalogObject& object : catalog.Objects())
    if (object.id < 0) id = std::max(id, object.id + 1);
  return id;
}

void RemoveObject(Catalog& catalog, const CatalogObject& object) {
  const std::shared_ptr<StoredTable> objects = catalog.TableAt(format::kObjectsTablePage);
  const std::shared_ptr<StoredTable> aces = catalog.TableAt(format::kAcesTablePage);
  for (const RowPointer ace : RowsWithValue(*aces, names::kObjectId, object.id)) aces->Delete(ace);
  objects->Delete(object.row);
  catalog.Forget();
}

void ChangeObject(Catalog& catalog, const CatalogObject& object, const PropertyBlob* properties,
                  std::optional<Date> now) {
  const std::shared_ptr<StoredTable> objects = catalog.TableAt(format::kObjectsTablePage);
  SystemRow row(*objects, objects->Read(object.row));
  if (now.has_value()) row.Set(names::kDateUpdate, *now);
  if (properties != nullptr)
    row.Set(names::kLvProp, properties->IsEmpty() ? Value(Null{}) : Value(properties->Serialize()));
  objects->Update(object.row, row.Values());
  catalog.Forget();
}

}  // namespace tavi::access
