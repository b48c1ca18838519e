#pragma once

#include <cstddef>

#include "access/catalog/Database.h"
#include "platform/Platform.h"

namespace tavi::host {

/// How the keys that a club's file stores for names (see names/NameKeys.h) compare with the ones that are made now.
struct NameKeyCount {
  std::size_t members = 0;
  std::size_t stale = 0;  ///< members with a key that is not the one made now: searches by similar names miss them
};

/// Counts them; all zero for a file that is no club's. Raises the engine's error where the members cannot be read.
NameKeyCount CountNameKeys(access::Database& database, const NameKeyService& keys);

}  // namespace tavi::host
