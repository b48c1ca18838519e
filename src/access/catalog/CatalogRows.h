#pragma once

#include "access/catalog/Catalog.h"

/// Writes the rows of the system tables that stand for a table.
namespace tavi::access {

/// Adds the row of a new table to MSysObjects and its rights to MSysACEs: those that the container of tables hands
/// down, the creator's for the owner of the file.
void AddTableObject(Catalog& catalog, const std::string& name, PageNumber page, const PropertyBlob& properties,
                    Date now);

/// Removes an object's row and rights.
void RemoveObject(Catalog& catalog, const CatalogObject& object);

/// Puts new properties (null: the old ones stay) and the time of the change (none: the old one stays) into the row.
void ChangeObject(Catalog& catalog, const CatalogObject& object, const PropertyBlob* properties,
                  std::optional<Date> now);

/// A security id as files hold it: the masked form of a plain one (format::security), from the masked one of the
/// administrator.
Bytes MaskedSecurityId(std::span<const std::uint8_t, 2> maskedAdmin, std::span<const std::uint8_t, 2> plain);

}  // namespace tavi::access
