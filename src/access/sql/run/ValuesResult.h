#pragma once

#include "access/sql/run/ResultSet.h"
#include "access/table/TableRows.h"

namespace tavi::access::sql {

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
