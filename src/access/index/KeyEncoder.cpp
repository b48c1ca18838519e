#include "access/index/KeyEncoder.h"

#include <algorithm>
#include <string>

#include "access/file/EngineError.h"
#include "access/index/Collation.h"
#include "access/index/KeyBytes.h"
#include "access/table/RowCodec.h"

namespace tavi::access {

namespace {

bool HasKeys(ColumnType type) {
  return type != ColumnType::Ole && type != ColumnType::Complex;
}

void CheckColumn(const ColumnDefinition& column) {
  if (!HasKeys(column.type)) {
    RaiseFailure("Column " + column.name + " cannot be used in an index: its type (code " +
                 std::to_string(static_cast<unsigned>(column.type)) + ") has no order.");
  }
  if (IsText(column.type) && !IsSupportedSortOrder(column.sortOrder, column.sortVersion)) {
    RaiseFailure("Column " + column.name + " cannot be used in an index: texts in the sort order " +
                 std::to_string(column.sortOrder) + ", version " + std::to_string(column.sortVersion) +
                 ", cannot be sorted here, only those in the order General (1033, version 0). Open the file in the "
                 "program that made it, or compact it there with the sort order General.");
  }
}

template <typename Type>
const Type& Expect(const Value& value, const ColumnDefinition& column) {
  const auto* held = std::get_if<Type>(&value);
  if (held == nullptr) RaiseFailure("The value for index column " + column.name + " is not of the column's type.");
  return *held;
}

}  // namespace

KeyEncoder::KeyEncoder(const TableDefinition& table, const RealIndexDefinition& index)
    : ignoreNulls_(index.ignoreNulls) {
  for (const IndexColumn& part : index.columns) {
    const auto column = std::ranges::find(table.columns, part.columnId, &ColumnDefinition::id);
    if (column == table.columns.end()) {
      RaiseDamage("the index with root page " + std::to_string(index.root) + " of the table with definition page " +
                  std::to_string(table.page) + " uses column " + std::to_string(part.columnId) +
                  ", which does not exist.");
    }
    CheckColumn(*column);
    positions_.push_back(static_cast<std::size_t>(column - table.columns.begin()));
    columns_.push_back(*column);
    ascending_.push_back(part.ascending);
  }
}

IndexKey KeyEncoder::RowKey(const RowValues& row) const {
  IndexKey key;
  for (std::size_t part = 0; part < positions_.size(); ++part) AppendColumn(row.at(positions_[part]), part, key);
  return key;
}

std::optional<IndexKey> KeyEncoder::PrefixKey(const std::vector<Value>& values) const {
  if (values.size() > columns_.size()) return std::nullopt;
  IndexKey key;
  for (std::size_t part = 0; part < values.size(); ++part) {
    try {
      AppendColumn(ConvertForColumn(values[part], columns_[part]), part, key);
    } catch (const Error&) {
      return std::nullopt;
    }
  }
  return key;
}

bool KeyEncoder::IsNullColumn(const RowValues& row, std::size_t part) const {
  return columns_[part].type != ColumnType::Boolean && IsNull(row.at(positions_[part]));
}

bool KeyEncoder::AllNull(const RowValues& row) const {
  for (std::size_t part = 0; part < positions_.size(); ++part)
    if (!IsNullColumn(row, part)) return false;
  return true;
}

bool KeyEncoder::AnyNull(const RowValues& row) const {
  for (std::size_t part = 0; part < positions_.size(); ++part)
    if (IsNullColumn(row, part)) return true;
  return false;
}

bool KeyEncoder::HasEntry(const RowValues& row) const {
  return !ignoreNulls_ || !AllNull(row);
}

void KeyEncoder::AppendColumn(const Value& value, std::size_t part, IndexKey& key) const {
  const ColumnDefinition& column = columns_[part];
  const bool ascending = ascending_[part];
  KeyBytes bytes(key);
  if (IsNull(value)) {
    // A Boolean is never null.
    if (column.type == ColumnType::Boolean) return bytes.AddBoolean(false, ascending);
    return bytes.AddNull(ascending);
  }
  switch (column.type) {
    case ColumnType::Boolean:
      return bytes.AddBoolean(Expect<bool>(value, column), ascending);
    case ColumnType::Byte:
      return bytes.AddByte(Expect<std::uint8_t>(value, column), ascending);
    case ColumnType::Integer:
      return bytes.AddInteger(Expect<std::int16_t>(value, column), sizeof(std::int16_t), ascending);
    case ColumnType::Long:
      return bytes.AddInteger(Expect<std::int32_t>(value, column), sizeof(std::int32_t), ascending);
    case ColumnType::Currency:
      return bytes.AddInteger(Expect<Currency>(value, column).tenThousandths, sizeof(std::int64_t), ascending);
    case ColumnType::Single:
      return bytes.AddSingle(Expect<float>(value, column), ascending);
    case ColumnType::Double:
      return bytes.AddDouble(Expect<double>(value, column), ascending);
    case ColumnType::Date:
      return bytes.AddDouble(Expect<Date>(value, column).days, ascending);
    case ColumnType::Binary:
    case ColumnType::FixedBinary:
      return bytes.AddBinary(Expect<Bytes>(value, column), ascending);
    case ColumnType::Text:
    case ColumnType::Memo:
      return bytes.AddText(Expect<std::string>(value, column), ascending);
    case ColumnType::Guid:
      return bytes.AddBinary(Expect<Guid>(value, column).bytes, ascending);
    case ColumnType::Numeric: {
      Decimal number = Expect<Decimal>(value, column);
      if (number.scale != column.scale) number = Expect<Decimal>(ConvertForColumn(number, column), column);
      return bytes.AddDecimal(number, ascending);
    }
    case ColumnType::Ole:
    case ColumnType::Complex:
      break;
  }
  CheckColumn(column);
}

}  // namespace tavi::access
