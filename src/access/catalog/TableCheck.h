#pragma once

#include <map>
#include <memory>
#include <set>

#include "access/catalog/Check.h"
#include "access/catalog/LongValueCheck.h"
#include "access/catalog/PageOwners.h"

namespace tavi::access {

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
