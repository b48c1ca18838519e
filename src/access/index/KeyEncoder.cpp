#include "access/index/KeyEncoder.h"

#include <algorithm>
#include <bit>
#include <string>

#include "access/file/EngineError.h"
#include "access/file/Format.h"
#include "access/index/Collation.h"
#include "access/table/RowCodec.h"

// A key is made so that comparing unsigned bytes orders rows as their values would: the flag byte puts nulls first
// (descending: last), and each kind of value is changed until its bytes sort. No column says how long it is: values of
// fixed size need not, texts end with a byte below all of their codes, binary values count their last group. A
// descending column is inverted byte by byte, which turns its order around, but for the bytes that mark an end: they
// have to stay what a reader expects there.
//
// The bytes are those of Access: it finds rows by the keys that are made here, and the other way round. Where its order
// is odd (descending decimals, True before False), ours is, too.

namespace tavi::access {

namespace {

namespace key = format::key;

constexpr std::uint8_t kPositiveDecimal = 0xFF;
constexpr std::uint8_t kNegativeDecimal = 0x00;

/// Makes the bits of a float sort like unsigned numbers. Positive ones sort already, above the negative ones once the
/// sign bit is flipped; negative ones have to be turned around, as more magnitude means less. 1.1 is 3F F1 ... and
/// becomes BF F1 ..., -1.1 is BF F1 ... and becomes 40 0E ...
template <typename Unsigned>
Unsigned SortableFloat(Unsigned bits) {
  constexpr Unsigned kSign = Unsigned{1} << (sizeof(Unsigned) * 8U - 1U);
  return (bits & kSign) == 0 ? bits ^ kSign : ~bits;
}

}  // namespace

void KeyBytes::AddFlag(bool ascending) {
  bytes_.push_back(ascending ? key::kValueAscending : key::kValueDescending);
}

// The highest byte first, so that the first byte that differs decides.
void KeyBytes::AddBigEndian(std::uint64_t value, std::size_t size) {
  for (std::size_t i = size; i > 0; --i) bytes_.push_back(static_cast<std::uint8_t>(value >> (8U * (i - 1))));
}

void KeyBytes::InvertFrom(std::size_t start) {
  for (std::size_t i = start; i < bytes_.size(); ++i) bytes_[i] = static_cast<std::uint8_t>(~bytes_[i]);
}

void KeyBytes::AddNull(bool ascending) {
  bytes_.push_back(ascending ? key::kNullAscending : key::kNullDescending);
}

// Ascending, True sorts before False, as -1 does before 0.
void KeyBytes::AddBoolean(bool value, bool ascending) {
  AddFlag(ascending);
  bytes_.push_back(value ? key::kTrue : key::kFalse);
  if (!ascending) InvertFrom(bytes_.size() - 1);
}

void KeyBytes::AddByte(std::uint8_t value, bool ascending) {
  AddFlag(ascending);
  bytes_.push_back(value);
  if (!ascending) InvertFrom(bytes_.size() - 1);
}

// The flipped top bit puts negative numbers (two's complement) below the others: -1 as Integer is 7F FF, 0 is 80 00.
void KeyBytes::AddInteger(std::int64_t value, std::size_t size, bool ascending) {
  AddFlag(ascending);
  const std::size_t start = bytes_.size();
  AddBigEndian(static_cast<std::uint64_t>(value) ^ (std::uint64_t{1} << (size * 8U - 1U)), size);
  if (!ascending) InvertFrom(start);
}

void KeyBytes::AddSingle(float value, bool ascending) {
  AddFlag(ascending);
  const std::size_t start = bytes_.size();
  AddBigEndian(SortableFloat(std::bit_cast<std::uint32_t>(value)), sizeof(value));
  if (!ascending) InvertFrom(start);
}

void KeyBytes::AddDouble(double value, bool ascending) {
  AddFlag(ascending);
  const std::size_t start = bytes_.size();
  AddBigEndian(SortableFloat(std::bit_cast<std::uint64_t>(value)), sizeof(value));
  if (!ascending) InvertFrom(start);
}

void KeyBytes::AddDecimal(const Decimal& value, bool ascending) {
  AddFlag(ascending);
  bytes_.push_back(value.negative ? kNegativeDecimal : kPositiveDecimal);
  const std::size_t start = bytes_.size();
  AddBigEndian(value.high, sizeof(value.high));
  AddBigEndian(value.low, sizeof(value.low));
  // Inverted once for a negative number (more is less) and once for descending order: both together leave the magnitude
  // as it is. The sign before `start` is not inverted, which is the oddity.
  if (value.negative == ascending) InvertFrom(start);
}

// Groups keep a value from running into the next column: 09, more than any length of a last group, says that more
// follows, so a longer value sorts behind one that it begins with (descending before it: 09 is less than every inverted
// length). An empty value has no group.
void KeyBytes::AddBinary(std::span<const std::uint8_t> value, bool ascending) {
  AddFlag(ascending);
  while (!value.empty()) {
    const std::size_t start = bytes_.size();
    const std::size_t taken = std::min(value.size(), key::kGroupSize);
    const bool isLast = taken == value.size();
    bytes_.insert(bytes_.end(), value.begin(), value.begin() + static_cast<std::ptrdiff_t>(taken));
    bytes_.insert(bytes_.end(), key::kGroupSize - taken, 0);
    if (isLast) bytes_.push_back(static_cast<std::uint8_t>(taken));
    if (!ascending) InvertFrom(start);
    // Behind the inversion on purpose: the byte between groups is 09 in either order.
    if (!isLast) bytes_.push_back(key::kGroupContinues);
    value = value.subspan(taken);
  }
}

// The inverted key ends with FF (its 00); the 00 behind it is not inverted.
void KeyBytes::AddText(std::string_view value, bool ascending) {
  AddFlag(ascending);
  const std::size_t start = bytes_.size();
  AppendCollationKey(value, bytes_);
  if (ascending) return;
  InvertFrom(start);
  bytes_.push_back(key::kTextEnd);
}

namespace {

/// What Access does not index: OLE objects, and the complex columns of Access 2007.
bool HasKeys(ColumnType type) {
  return type != ColumnType::Ole && type != ColumnType::Complex;
}

/// Asked when an index is opened, not for each row: keys in a sort order that we cannot make would be put in wrong
/// places, where no other program finds them.
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

/// A value of another type than its column's is the caller's mistake: rows come converted (see ConvertForColumn). To
/// encode it as it is would make a key that nobody looks for.
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

// What is asked for is any value of a statement, so it is converted first, to what the column would hold if it were
// stored. One that cannot be stored there is no error: no index helps then, and the caller compares row by row.
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

// A Boolean has no null: a row without a value holds False.
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

// Only rows whose key is null altogether may be left out; with one value among several columns a row is always in.
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
      // The key holds the magnitude alone; 1.5 and 1.50 only agree at one scale.
      if (number.scale != column.scale) number = Expect<Decimal>(ConvertForColumn(number, column), column);
      return bytes.AddDecimal(number, ascending);
    }
    case ColumnType::Ole:
    case ColumnType::Complex:
      break;
  }
  // Only types without keys come here, and this raises their error.
  CheckColumn(column);
}

}  // namespace tavi::access
