#pragma once

#include <optional>
#include <vector>

#include "access/table/TableDefinition.h"
#include "access/table/TableRows.h"
#include "platform/values/Value.h"

namespace tavi::access {

/// The bytes of an index key, compared as unsigned bytes.
using IndexKey = std::vector<std::uint8_t>;

/// Makes the keys of one physical index from row values. Keeps copies of what it needs of the definitions.
class KeyEncoder {
 public:
  /// Raises ProviderFailure when a column does not exist or is of a type or sort order that cannot be encoded.
  KeyEncoder(const TableDefinition& table, const RealIndexDefinition& index);

  /// The key of a row (values in the order of TableDefinition::columns, each null or of its column's type). Raises
  /// ProviderFailure for a value of another type.
  [[nodiscard]] IndexKey RowKey(const RowValues& row) const;
  /// The key bytes of the first values.size() index columns: a prefix of every key whose columns have these values.
  /// Values are converted to the columns' types first (see ConvertForColumn); nothing when one does not convert or when
  /// there are more values than columns. Conversion can round: then the prefix is that of the rounded values, and
  /// whoever asked for more than equality after rounding must look at the rows as well.
  [[nodiscard]] std::optional<IndexKey> PrefixKey(const std::vector<Value>& values) const;

  /// True when every key column of the row is null, when any is.
  [[nodiscard]] bool AllNull(const RowValues& row) const;
  [[nodiscard]] bool AnyNull(const RowValues& row) const;
  /// True when the row has an entry in the index at all (an index may leave out rows whose key is all null).
  [[nodiscard]] bool HasEntry(const RowValues& row) const;
  /// Positions of the key columns in TableDefinition::columns.
  [[nodiscard]] const std::vector<std::size_t>& Positions() const { return positions_; }

 private:
  [[nodiscard]] bool IsNullColumn(const RowValues& row, std::size_t part) const;
  void AppendColumn(const Value& value, std::size_t part, IndexKey& key) const;

  std::vector<std::size_t> positions_;
  std::vector<ColumnDefinition> columns_;
  std::vector<bool> ascending_;
  bool ignoreNulls_;
};

}  // namespace tavi::access
