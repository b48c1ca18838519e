#pragma once

#include <map>
#include <set>
#include <span>

#include "access/catalog/CheckReport.h"
#include "access/catalog/DataPageCheck.h"
#include "access/catalog/PageOwners.h"
#include "access/table/TableDefinition.h"

namespace tavi::access {

/// Checks the long values (Memo, OLE) of one column: each is complete and used by one row, and none is left over.
class LongValueCheck {
 public:
  /// Claims and reads the column's pages. `where` names table and column.
  LongValueCheck(Pager& pager, std::string where, const LongValueMaps& maps, PageOwners& owners, CheckReport& report);

  /// Checks a value by its descriptor as it stands in a row.
  void Use(std::span<const std::uint8_t> descriptor, RowPointer row);
  /// Remarks on what no row uses. Call it after all rows.
  void ReportUnused();

 private:
  struct Part {
    std::size_t offset = 0;
    std::size_t length = 0;
    bool used = false;
  };

  [[nodiscard]] Part* Take(RowPointer place, const std::string& value);
  void UseSingle(RowPointer place, std::size_t length, const std::string& value);
  void UseChain(RowPointer place, std::size_t length, const std::string& value);

  Pager& pager_;
  std::string where_;
  CheckReport& report_;
  std::map<RowPointer, Part> parts_;
  std::set<PageNumber> freeSpacePages_;
};

}  // namespace tavi::access
