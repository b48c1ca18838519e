#include "access/catalog/CatalogRows.h"

#include <algorithm>

#include "access/catalog/KeyLookup.h"
#include "access/catalog/SystemRow.h"
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
Bytes ReadOwner(Catalog& catalog) {
  for (const CatalogObject& object : catalog.Objects()) {
    if (static_cast<std::uint32_t>(object.id) != format::catalog::kDatabaseId) continue;
    const std::shared_ptr<StoredTable> table = catalog.TableAt(format::kObjectsTablePage);
    return SystemRow(*table, table->Read(object.row, WantedColumns(*table, {names::kOwner}))).Binary(names::kOwner);
  }
  RaiseDamage("the catalogue has no row of the database itself (MSysDb).");
}

Bytes CreatorOf(const Bytes& owner) {
  if (owner.size() != format::security::kAdmin.size()) return {};
  return MaskedSecurityId(std::span<const std::uint8_t, 2>(owner.data(), 2), format::security::kCreator);
}

/// What the container of tables hands down to a new one. The creator's rights become the owner's.
std::vector<Right> InheritedRights(Catalog& catalog, const Bytes& owner) {
  const std::shared_ptr<StoredTable> table = catalog.TableAt(format::kAcesTablePage);
  const Bytes creator = CreatorOf(owner);
  std::vector<Right> rights;
  const auto container = static_cast<std::int32_t>(format::catalog::kTablesId);
  for (const RowPointer place : RowsWithValue(*table, names::kObjectId, container)) {
    const SystemRow row(*table, table->Read(place));
    if (row.Get(names::kInheritable) != Value(true)) continue;
    Right right{row.Binary(names::kSid), static_cast<std::uint32_t>(row.Number(names::kAcm))};
    if (right.securityId == creator) right.securityId = owner;
    const auto known = std::ranges::find(rights, right.securityId, &Right::securityId);
    if (known != rights.end()) {
      known->mask |= right.mask;
    } else {
      rights.push_back(std::move(right));
    }
  }
  return rights;
}

}  // namespace

Bytes MaskedSecurityId(std::span<const std::uint8_t, 2> maskedAdmin, std::span<const std::uint8_t, 2> plain) {
  Bytes result;
  for (std::size_t i = 0; i < plain.size(); ++i)
    result.push_back(static_cast<std::uint8_t>(maskedAdmin[i] ^ format::security::kAdmin[i] ^ plain[i]));
  return result;
}

void AddTableObject(Catalog& catalog, const std::string& name, PageNumber page, const PropertyBlob& properties,
                    Date now) {
  const std::shared_ptr<StoredTable> objects = catalog.TableAt(format::kObjectsTablePage);
  const Bytes owner = ReadOwner(catalog);
  const std::vector<Right> rights = InheritedRights(catalog, owner);
  const auto id = static_cast<std::int32_t>(page);

  SystemRow row(*objects);
  row.Set(names::kId, id)
      .Set(names::kParentId, static_cast<std::int32_t>(format::catalog::kTablesId))
      .Set(names::kName, name)
      .Set(names::kType, format::catalog::kTypeTable)
      .Set(names::kFlags, std::int32_t{0})
      .Set(names::kDateCreate, now)
      .Set(names::kDateUpdate, now)
      .Set(names::kOwner, owner);
  if (!properties.IsEmpty()) row.Set(names::kLvProp, properties.Serialize());
  objects->Insert(row.Values());

  const std::shared_ptr<StoredTable> aces = catalog.TableAt(format::kAcesTablePage);
  for (const Right& right : rights) {
    SystemRow ace(*aces);
    ace.Set(names::kObjectId, id)
        .Set(names::kAcm, static_cast<std::int32_t>(right.mask))
        .Set(names::kInheritable, false)
        .Set(names::kSid, right.securityId);
    aces->Insert(ace.Values());
  }
  catalog.Forget();
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
