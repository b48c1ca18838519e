#pragma once

#include <string>
#include <vector>

#include "access/catalog/CheckReport.h"
#include "access/table/DataPage.h"

namespace tavi::access {

/// The row directory of a data page (of a table, or of long values); `owner` is what its owner field must hold.
/// Reports, with `where`, a page of another kind or owner, directory entries that do not fit, and a wrong count of free
/// bytes. A page that cannot be read further gives no entries.
std::vector<RowEntry> CheckDataPage(const Page& page, std::uint32_t owner, const std::string& where,
                                    CheckReport& report);

}  // namespace tavi::access
