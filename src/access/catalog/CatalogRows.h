#pragma once

#include "access/catalog/Catalog.h"
#include "access/file/Format.h"

/// Writes the rows of the system tables that stand for objects.
namespace tavi::access {

/// A new object: its row in MSysObjects, and the container whose rights it inherits.
struct NewObject {
  std::int32_t id = 0;
  std::uint32_t container = format::catalog::kTablesId;
  std::int16_t type = format::catalog::kTypeTable;
  std::string name;
  PropertyBlob properties;
};

/// Adds the row of a new object to MSysObjects and its rights to MSysACEs: those that the container hands down, the
/// creator's for the owner of the file.
void AddObject(Catalog& catalog, const NewObject& object, Date now);

/// A number for a new object that is no table.
std::int32_t FreeObjectId(Catalog& catalog);

/// Removes an object's row and rights.
void RemoveObject(Catalog& catalog, const CatalogObject& object);

/// Puts new properties (null: the old ones stay) and the time of the change (none: the old one stays) into the row.
void ChangeObject(Catalog& catalog, const CatalogObject& object, const PropertyBlob* properties,
                  std::optional<Date> now);

/// A security id as files hold it: the masked form of a plain one (format::security), from the masked one of the
/// administrator.
Bytes MaskedSecurityId(std::span<const std::uint8_t, 2> maskedAdmin, std::span<const std::uint8_t, 2> plain);

}  // namespace tavi::access
