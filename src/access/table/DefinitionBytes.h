#pragma once

#include <span>
#include <vector>

#include "access/table/TableDefinition.h"

namespace tavi::access {

/// The bytes of a definition put together from its pages, cut to its length.
std::vector<std::uint8_t> ReadDefinitionBytes(Pager& pager, PageNumber page);
/// Understands the bytes of a definition. `page` is for the result and for messages.
TableDefinition ParseTableDefinition(std::span<const std::uint8_t> bytes, PageNumber page);
/// The bytes of a definition, counters zero, the header of the first page with its free bytes and link zero.
std::vector<std::uint8_t> SerializeTableDefinition(const TableDefinition& definition);

}  // namespace tavi::access
