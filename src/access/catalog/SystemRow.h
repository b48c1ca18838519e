#pragma once

#include <string_view>

#include "access/catalog/StoredTable.h"

namespace tavi::access {

/// A row of a system table, by column names. A column that the table lacks raises ProviderFailure (the file is
/// damaged).
class SystemRow {
 public:
  /// A row of nulls.
  explicit SystemRow(const Table& table) : table_(table), values_(table.Columns().size()) {}
  SystemRow(const Table& table, RowValues values) : table_(table), values_(std::move(values)) {}

  SystemRow& Set(std::string_view column, Value value);
  [[nodiscard]] const Value& Get(std::string_view column) const;
  /// The value as a number; 0 when it is null or of another type.
  [[nodiscard]] std::int32_t Number(std::string_view column) const;
  /// The value as a text; empty when it is null or of another type.
  [[nodiscard]] std::string Text(std::string_view column) const;
  /// The value as bytes; empty when it is null or of another type.
  [[nodiscard]] Bytes Binary(std::string_view column) const;

  [[nodiscard]] RowValues& Values() { return values_; }

 private:
  [[nodiscard]] std::size_t Position(std::string_view column) const;

  const Table& table_;
  RowValues values_;
};

/// Which columns of a table to read.
std::vector<bool> WantedColumns(const Table& table, const std::vector<const char*>& columns);

}  // namespace tavi::access
