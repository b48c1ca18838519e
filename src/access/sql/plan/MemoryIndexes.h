#pragma once

#include <cstdint>
#include <map>
#include <optional>

#include "access/catalog/Table.h"
#include "access/sql/plan/FunctionReference.h"
#include "access/sql/plan/ValueKey.h"

namespace tavi::access::sql {

/// Indexes in memory for columns that have none in the file: built when they pay, kept between statements, kept in step
/// with the session's own changes, and dropped when anything else may have changed the file.
class MemoryIndexes {
 public:
  explicit MemoryIndexes(Pager& pager) : pager_(&pager) {}

  /// Tables with fewer rows are scanned.
  static constexpr std::uint32_t kMinimumRows = 24;
  /// What building costs for each row, in rows of a scan; less than one, as an index will be used again.
  static constexpr double kCostOfEntry = 0.2;
  /// Requests for a column from which on an index pays when each looks up one value.
  static constexpr int kRequestsThatPay = 2;
  /// The most entries that all indexes together hold (16 bytes each).
  static constexpr std::size_t kMaximumEntries = 2'000'000;

  /// What a plan must reckon with for look-ups in a column, in rows of a scan.
  struct Estimate {
    double setup = 0;       ///< to be paid once, by the first look-up
    double rowsPerKey = 1;  ///< rows that a look-up gives
  };
  /// Call inside a statement: some rows may be read.
  [[nodiscard]] Estimate EstimateFor(Table& table, std::size_t column, double rowCount);

  /// A column that a plan could have looked up in an index in memory.
  struct Considered {
    const Table* table;
    std::size_t column;
  };
  /// Tells what a plan costs in which these columns were considered. When plans without an index have cost as much as
  /// it takes to build it, the next plan may have it for nothing, if by some rows of the table it is worth anything.
  void NotePlan(const std::vector<Considered>& considered, double cost);

  /// The index of a column, built now if need be; null when it does not pay (yet). `manyLookUps` says that this
  /// statement will look up more than once. `beforeRow` is called before each row that goes into a new index, and may
  /// raise. Call inside a statement. Valid until the next call of any function but Find.
  [[nodiscard]] const HashIndex* Find(Table& table, std::size_t column, bool manyLookUps,
                                      FunctionReference<void()> beforeRow);

  /// To be called after each change that the session makes to a table.
  void RowInserted(const Table& table, RowPointer row, const RowValues& values);
  void RowUpdated(const Table& table, RowPointer row, const RowValues& before, const RowValues& after);
  /// Drops everything; needed when tables are made or altered.
  void Clear();

 private:
  struct Key {
    PageNumber table = 0;
    std::uint16_t columnId = 0;
    auto operator<=>(const Key&) const = default;
  };
  struct Entry {
    std::optional<HashIndex> index;
    std::optional<double> rowsPerKey;
    int requests = 0;
    double spentWithout = 0;  // cost of plans that were made without the index
    std::uint64_t lastUse = 0;
  };

  [[nodiscard]] static Key KeyOf(const Table& table, std::size_t column);
  void DropWhenStale();
  /// Rows that a look-up is likely to give, by some rows of the table; nothing when they cannot be read.
  [[nodiscard]] std::optional<double> SampleRowsPerKey(Table& table, std::size_t column, double rowCount) const;
  [[nodiscard]] static HashIndex Build(Table& table, std::size_t column, FunctionReference<void()> beforeRow);
  void MakeRoom(std::size_t entries);

  Pager* pager_;
  std::uint64_t generation_ = 0;
  std::uint64_t uses_ = 0;
  std::map<Key, Entry> entries_;
};

}  // namespace tavi::access::sql
