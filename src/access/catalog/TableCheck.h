#pragma once

#include <map>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "access/catalog/Check.h"
#include "access/catalog/CheckReport.h"
#include "access/catalog/PageOwners.h"
#include "access/table/DataPage.h"
#include "access/table/TableDefinition.h"

namespace tavi::access {

/// The row directory of a data page (of a table, or of long values); `owner` is what its owner field must hold.
/// Reports, with `where`, a page of another kind or owner, directory entries that do not fit, and a wrong count of free
/// bytes. A page that cannot be read further gives no entries.
std::vector<RowEntry> CheckDataPage(const Page& page, std::uint32_t owner, const std::string& where,
                                    CheckReport& report);

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

/// Checks one table: its definition, pages, rows, long values, counters and indexes.
class TableCheck {
 public:
  TableCheck(Pager& pager, Table& table, PageOwners& owners, CheckReport& report);

  void Run();

 private:
  void CheckDefinition();
  void CheckColumns();
  void CheckPages();
  void CheckRows(PageNumber number, const std::vector<RowEntry>& entries);
  void CheckMoved(const Page& page, const RowEntry& entry, RowPointer row);
  void CheckRow(std::span<const std::uint8_t> bytes, RowPointer row);
  void CheckTargets();
  void CheckCounters();
  [[nodiscard]] std::string Where(const std::string& part) const;

  Pager& pager_;
  Table& table_;
  const TableDefinition& definition_;
  PageOwners& owners_;
  CheckReport& report_;
  std::string name_;
  std::map<PageNumber, std::vector<RowEntry>> pages_;
  std::map<std::uint16_t, LongValueCheck> longValues_;  ///< by column id
  std::set<RowPointer> movedTargets_;                   ///< those that a row points to
  std::uint32_t liveRows_ = 0;
};

/// Checks one index against the rows of its table; see IndexCheck.cpp.
void CheckIndex(Pager& pager, Table& table, std::size_t index, PageOwners& owners, CheckReport& report);

/// Checks that the relationships in which a table is the foreign side hold, and that both sides agree about them.
void CheckRelationships(Database& database, Table& table, CheckReport& report);

}  // namespace tavi::access
