#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "access/sql/plan/Plan.h"
#include "access/table/TableRows.h"
#include "platform/values/Value.h"

namespace tavi::access::sql {

/// The rows that a statement gave, one of them current; the first one after opening. Every call that touches the file
/// is a statement of its own; rows can be changed and deleted by others between two calls. A row deleted meanwhile is
/// skipped on moving; reading it raises 0x80040E23. Used during the life of its session.
class ResultSet {
 public:
  explicit ResultSet(std::vector<ResultColumn> columns) : columns_(std::move(columns)) {}
  virtual ~ResultSet() = default;
  ResultSet(const ResultSet&) = delete;
  ResultSet& operator=(const ResultSet&) = delete;

  [[nodiscard]] const std::vector<ResultColumn>& Columns() const { return columns_; }
  /// The position of a column, by its name or "Table.Column", ignoring case; of several with the name the first.
  [[nodiscard]] std::optional<std::size_t> FindColumn(std::string_view name) const;

  [[nodiscard]] virtual bool AtEnd() const = 0;
  /// At the end they raise ProviderEndOfRecords, MovePrevious before the first row. Pending changes are stored first.
  virtual void MoveNext() = 0;
  virtual void MovePrevious() = 0;
  /// The value of a column of the current row (or the row being added), pending changes included.
  [[nodiscard]] virtual Value Get(std::size_t column) = 0;

  /// Changes the current row: Set fills the edit buffer, Update stores it as one statement, Cancel drops it. AddNew
  /// begins a new row of defaults; once stored it is the current one. Raise kNotUpdatableNumber where the rows are
  /// values and no table's rows (groups, DISTINCT, unions) or the column is an expression.
  virtual void Set(std::size_t column, const Value& value);
  virtual void AddNew();
  virtual void Update();
  virtual void CancelUpdate();

 private:
  std::vector<ResultColumn> columns_;
};

/// ProviderEndOfRecords, for using or leaving a row when there is none.
[[noreturn]] void RaiseNoCurrentRow();

/// Rows that are held as values: groups, DISTINCT, unions, schema lists. Read-only.
class ValuesResult final : public ResultSet {
 public:
  ValuesResult(std::vector<ResultColumn> columns, std::vector<RowValues> rows)
      : ResultSet(std::move(columns)), rows_(std::move(rows)) {}

  [[nodiscard]] bool AtEnd() const override { return position_ >= rows_.size(); }
  void MoveNext() override {
    if (AtEnd()) RaiseNoCurrentRow();
    ++position_;
  }
  void MovePrevious() override {
    if (position_ == 0) RaiseNoCurrentRow();
    --position_;
  }
  [[nodiscard]] Value Get(std::size_t column) override {
    if (AtEnd()) RaiseNoCurrentRow();
    return rows_[position_].at(column);
  }

 private:
  std::vector<RowValues> rows_;
  std::size_t position_ = 0;
};

}  // namespace tavi::access::sql
