#pragma once

#include <vector>

#include "access/catalog/Database.h"

namespace tavi::access {

/// The pages of a file with the same contents as a database, laid out anew:
///
///   header             taken over as it is: sort order, code page, dates, key of an encoded file
///   tables             all of the catalogue, the system's included; each keeps its number (the page of its
///   definition),
///                      because other rows refer to it. What was not in the catalogue is gone.
///   columns            numbered 0, 1, ... in their old order, without gaps: dropped ones no longer count
///   rows, long values  value by value, in the order of the old pages
///   indexes            with the same names and numbers, built from the rows
///   counters           of rows and keys: counted; the last automatic number: the old one, or the greatest stored
///
/// Everything that lies in rows of the system's tables (properties, rights, relationships, stored queries, forms,
/// links) is kept with these rows. Joins the pager's open statement or makes a read statement. Holds the whole new file
/// in memory. Raises ProviderFailure when something cannot be read or an index cannot be built.
std::vector<Page> RebuildPages(Database& database);

}  // namespace tavi::access
