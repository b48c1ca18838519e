#pragma once

#include <string>
#include <vector>

#include "access/catalog/CheckReport.h"
#include "access/file/Page.h"

namespace tavi::access {

/// An entry of a data page's row directory.
struct RowSlot {
  std::size_t offset = 0;
  std::size_t length = 0;
  bool deleted = false;
  bool moved = false;        ///< holds a pointer to the row's bytes
  bool movedTarget = false;  ///< the bytes of a moved row

  [[nodiscard]] bool IsLive() const { return !deleted; }
};

/// The rows of a data page (of a table, or of long values); `owner` is what its owner field must hold. Reports, with
/// `where`, a page of another kind or owner, directory entries that do not fit, and a wrong count of free bytes. A page
/// that cannot be read further gives no rows.
std::vector<RowSlot> CheckDataPage(const Page& page, std::uint32_t owner, const std::string& where,
                                   CheckReport& report);

}  // namespace tavi::access
