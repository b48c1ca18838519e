#pragma once

#include <initializer_list>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "access/file/Pager.h"
#include "access/file/support/MemoryFileSystem.h"
#include "access/table/TableDefinition.h"
#include "access/table/TableRows.h"

namespace tavi::access::test {

/// A column to be made; the rest of its record follows from these.
struct ColumnPlan {
  std::string name;
  ColumnType type = ColumnType::Long;
  std::uint16_t length = 0;   // bytes of Text and Binary
  bool isCompressed = false;  // Text and Memo
  bool isFixed = true;        // of types that may be either, or variable Long
  std::uint8_t precision = 18;
  std::uint8_t scale = 0;
};
[[nodiscard]] ColumnPlan TextColumn(const std::string& name, std::uint16_t characters, bool isCompressed = true);

/// A definition with columns of ids 0, 1, ...; without a page and maps.
[[nodiscard]] TableDefinition PlanTable(const std::vector<ColumnPlan>& columns);
/// The only column of such a definition.
[[nodiscard]] ColumnDefinition PlanColumn(const ColumnPlan& plan);

/// One table in a small database in memory, in a write statement that stays open.
class TestTable {
 public:
  explicit TestTable(const std::vector<ColumnPlan>& columns);
  ~TestTable();
  TestTable(const TestTable&) = delete;
  TestTable& operator=(const TestTable&) = delete;

  [[nodiscard]] Pager& File() { return *pager_; }
  [[nodiscard]] TableDefinition& Definition() { return definition_; }
  [[nodiscard]] TableRows& Rows() { return rows_; }

  /// Ends the statement, keeping what it did, and begins the next one.
  void Commit();
  /// Ends the statement without a trace, and begins the next one.
  void Rollback();

  /// The live rows in the order of Next.
  [[nodiscard]] std::vector<RowPointer> AllRows();
  [[nodiscard]] std::vector<PageNumber> DataPages();
  [[nodiscard]] std::vector<PageNumber> LongValuePages(std::size_t column);
  /// Adds a column as a changed table gets one: old rows are not touched.
  void AddColumn(const ColumnPlan& column);
  /// Takes a column out of the definition.
  void DropColumn(const std::string& name);
  /// Gives a column without long-value maps none of its own, as Access may do until the first value needs a page.
  void ForgetMaps(std::size_t column);

  /// What is wrong with the pages: free bytes, owners, usage maps, pages that belong to nobody or to two. Empty when
  /// all is well.
  [[nodiscard]] std::vector<std::string> Faults();

 private:
  void CheckDataPage(PageNumber number, std::uint32_t owner, std::vector<std::string>& faults);
  void CheckPages(RowPointer owned, RowPointer withRoom, std::uint32_t owner, std::multiset<PageNumber>& used,
                  std::vector<std::string>& faults);

  std::shared_ptr<MemoryFileSystem> files_;
  std::unique_ptr<Pager> pager_;
  TableDefinition definition_;
  TableRows rows_;
};

}  // namespace tavi::access::test
