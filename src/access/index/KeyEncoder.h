#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "access/table/TableDefinition.h"
#include "access/table/TableRows.h"
#include "platform/values/Value.h"

namespace tavi::access {

/// Writes the bytes of index keys, one column after another:
///
///   null        00                        descending FF
///   otherwise   7F value                  descending 80 value, its bits inverted (with the exceptions below)
///
///   whole numbers  big-endian, top bit flipped (Byte: as it is)
///   floats, dates  big-endian; positive: sign bit flipped, negative: all bits inverted
///   Boolean        00 True, FF False
///   binary, GUID   groups of 8 bytes, each but the last followed by 09, the last padded with 00 and followed by its
///                  length; descending the 09 bytes are not inverted
///   Numeric        FF and the 16 bytes of the magnitude, big-endian; negative: 00 and the magnitude inverted;
///                  descending only the magnitude is inverted, so that mixed signs sort wrongly, as in Access
///   text           the collation key; descending followed by an uninverted 00
///
/// Example: Long 2 and the text "a":  7F 80 00 00 02  7F 4A 01 00,  descending  80 7F FF FF FD  80 B5 FE FF 00
class KeyBytes {
 public:
  /// Appends to `bytes`, which must outlive this object.
  explicit KeyBytes(std::vector<std::uint8_t>& bytes) : bytes_(bytes) {}

  void AddNull(bool ascending);
  void AddBoolean(bool value, bool ascending);
  void AddByte(std::uint8_t value, bool ascending);
  /// A signed number of `size` bytes (2, 4 or 8).
  void AddInteger(std::int64_t value, std::size_t size, bool ascending);
  void AddSingle(float value, bool ascending);
  void AddDouble(double value, bool ascending);
  void AddDecimal(const Decimal& value, bool ascending);
  void AddBinary(std::span<const std::uint8_t> value, bool ascending);
  void AddText(std::string_view value, bool ascending);

 private:
  void AddFlag(bool ascending);
  void AddBigEndian(std::uint64_t value, std::size_t size);
  void InvertFrom(std::size_t start);

  std::vector<std::uint8_t>& bytes_;
};

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
