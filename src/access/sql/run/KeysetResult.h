#pragma once

#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "access/sql/plan/PreparedStatement.h"
#include "access/sql/run/ResultSet.h"
#include "access/sql/run/RowScope.h"
#include "access/sql/run/StatementRunner.h"

namespace tavi::access::sql {

/// Row pointers of a result, and the places among them where nothing can be read.
struct Keyset {
  std::vector<std::uint32_t> keys;      ///< packed, one for each source of the plan, row after row
  std::map<std::size_t, Error> damage;  ///< by the number of the row
};

/// All rows of a table. A place of it that is damaged counts as a row that cannot be read.
Keyset CollectWholeTable(Table& table);

/// Rows of tables, held as pointers and read when they are reached. Columns that come straight from a table can be
/// changed; rows can be added when there is one table. Moving goes past damage: reading raises what is wrong, for the
/// columns that it concerns.
class KeysetResult final : public ResultSet {
 public:
  /// Called inside a statement.
  KeysetResult(StatementRunner& runner, std::shared_ptr<const PreparedStatement> prepared,
               std::vector<ResultColumn> columns, Keyset keyset);

  [[nodiscard]] bool AtEnd() const override { return !isAdding_ && position_ >= Count(); }
  void MoveNext() override;
  void MovePrevious() override;
  [[nodiscard]] Value Get(std::size_t column) override;
  void Set(std::size_t column, const Value& value) override;
  void AddNew() override;
  void Update() override;
  void CancelUpdate() override;

 private:
  /// Rows read together. They are out of date when the session has changed anything since.
  struct Block {
    std::size_t first = 0;
    std::uint64_t changeCount = 0;
    std::vector<std::optional<std::vector<SourceRow>>> rows;  // nothing for a row that is gone
  };
  using Place = std::pair<std::size_t, std::size_t>;  // source, column

  [[nodiscard]] std::size_t Count() const { return keys_.size() / width_; }
  [[nodiscard]] RowPointer PointerAt(std::size_t row, std::size_t source) const;
  [[nodiscard]] bool IsRead(std::size_t row) const;
  /// Reads a row, and with it some that follow, unless it is at hand.
  const std::optional<std::vector<SourceRow>>& RowAt(std::size_t row);
  void ReadBlock(std::size_t first, std::size_t count);
  /// The values of a source that cannot be read as a whole stay empty.
  [[nodiscard]] std::optional<std::vector<SourceRow>> ReadRow(std::size_t row);
  /// False when the row is gone. Raises an error for a damaged one.
  [[nodiscard]] bool ReadSource(std::size_t row, std::size_t source, SourceRow& target);
  /// The value of a column of a row that cannot be read as a whole.
  [[nodiscard]] Value ReadAlone(const SourceRow& row, std::size_t source, std::size_t column);
  [[nodiscard]] bool IsShown(std::size_t source) const;
  /// Takes the tables anew from the catalogue. Raises ProviderFailure when their columns are no longer the same.
  void RefreshTables();
  [[nodiscard]] Value ComputedValue(std::size_t column, const std::vector<SourceRow>& rows);
  /// The table column behind an output column. Raises kNotUpdatableNumber when there is none.
  [[nodiscard]] Place PlaceOf(std::size_t column) const;
  void StoreEdits();
  void StoreNewRow();
  void RefuseReadOnly() const;

  StatementRunner& runner_;
  std::shared_ptr<const PreparedStatement> prepared_;
  std::shared_ptr<const SelectPlan> heldPlan_;
  const SelectPlan& plan_;
  std::size_t width_;
  std::vector<std::shared_ptr<Table>> tables_;
  std::vector<std::uint32_t> keys_;
  std::map<std::size_t, Error> damage_;
  std::size_t position_ = 0;
  std::size_t nextBlockSize_ = 1;
  Block block_;
  bool isAdding_ = false;
  RowValues newRow_;
  std::map<Place, Value> edits_;
};

}  // namespace tavi::access::sql
