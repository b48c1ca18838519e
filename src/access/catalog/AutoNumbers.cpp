// Automatic numbers. The counter is the last number given out and lies in the table's definition, so a rollback takes
// it back with everything else. It is a hint that other programs may have left too low: the number behind it is looked
// for in the unique index on the column, where there is one, and when it is taken the next is the one behind the
// greatest that is stored. An ordinary insert so costs one search.
#include <limits>
#include <random>

#include "access/catalog/ChangeErrors.h"
#include "access/catalog/StoredTable.h"
#include "access/file/Format.h"
#include "platform/values/Text.h"

namespace tavi::access {

namespace {

constexpr char kRandomNumberDefault[] = "GenUniqueID()";

/// The unique index on this column alone; nothing when there is none.
std::optional<std::size_t> UniqueIndexOn(const StoredTable& table, std::size_t column) {
  const std::vector<Index>& indexes = table.Indexes();
  for (std::size_t i = 0; i < indexes.size(); ++i) {
    if (indexes[i].definition.unique && indexes[i].columns.size() == 1 && indexes[i].columns[0] == column) return i;
  }
  return std::nullopt;
}

bool IsTaken(StoredTable& table, std::size_t index, std::int32_t number) {
  const std::optional<IndexKey> key = table.Encoder(index).PrefixKey({number});
  return key.has_value() && table.Tree(index).ContainsKey(*key);
}

/// One way down the tree: the greatest key is the last entry, or the first where the index descends. Nulls stand at the
/// other end.
std::int32_t GreatestStored(StoredTable& table, std::size_t index, std::size_t column) {
  const auto cursor = table.Indexes()[index].ascending[0] ? table.Tree(index).SeekLast(std::nullopt, false)
                                                          : table.Tree(index).SeekFirst(std::nullopt);
  if (cursor->Current() == nullptr) return 0;
  const RowValues row = table.Read(cursor->Current()->row);
  const std::int32_t* number = std::get_if<std::int32_t>(&row[column]);
  return number == nullptr ? 0 : *number;
}

/// The counter stays where it is until the row is stored (KeepLastAutoNumber).
std::int32_t NextNumber(Pager& pager, StoredTable& table, std::size_t column) {
  constexpr std::int32_t kLast = std::numeric_limits<std::int32_t>::max();
  const std::optional<std::size_t> index = UniqueIndexOn(table, column);
  std::int32_t last = LastAutoNumber(pager, table.Definition());
  if (last < kLast && (!index.has_value() || !IsTaken(table, *index, last + 1))) return last + 1;
  // Only a number that is taken leads here, and only an index can tell that.
  if (last < kLast) last = GreatestStored(table, *index, column);
  if (last == kLast) RaiseNoAutoNumberLeft(table.Name(), table.Columns()[column].definition.name);
  return last + 1;
}

/// Without an index a number is taken unseen: for each row that is stored the chance to meet its number is one in four
/// thousand million.
std::int32_t RandomNumber(StoredTable& table, std::size_t column) {
  std::random_device source;
  const std::optional<std::size_t> index = UniqueIndexOn(table, column);
  for (;;) {
    const auto number = static_cast<std::int32_t>(source());
    if (number != 0 && (!index.has_value() || !IsTaken(table, *index, number))) return number;
  }
}

/// A random identifier, marked as such (version 4).
Guid RandomGuid() {
  std::random_device source;
  Guid guid;
  for (std::uint8_t& byte : guid.bytes) byte = static_cast<std::uint8_t>(source());
  guid.bytes[6] = static_cast<std::uint8_t>((guid.bytes[6] & 0x0FU) | 0x40U);
  guid.bytes[8] = static_cast<std::uint8_t>((guid.bytes[8] & 0x3FU) | 0x80U);
  return guid;
}

bool IsRandom(const Column& column) {
  return EqualIgnoringCase(Trim(column.defaultExpression), kRandomNumberDefault);
}

}  // namespace

void FillAutoNumbers(Pager& pager, StoredTable& table, RowValues& row) {
  for (std::size_t i = 0; i < table.Columns().size(); ++i) {
    const Column& column = table.Columns()[i];
    // A number that is given is taken as it is, as statements and recoveries do that keep their references.
    if (!IsNull(row[i])) continue;
    if (column.definition.IsAutoNumber()) {
      row[i] = IsRandom(column) ? RandomNumber(table, i) : NextNumber(pager, table, i);
    } else if (column.definition.IsAutoGuid()) {
      row[i] = RandomGuid();
    }
  }
}

void KeepLastAutoNumber(Pager& pager, const StoredTable& table, const RowValues& row) {
  for (std::size_t i = 0; i < table.Columns().size(); ++i) {
    const Column& column = table.Columns()[i];
    // Random numbers have no last one.
    if (!column.definition.IsAutoNumber() || IsRandom(column)) continue;
    const std::int32_t* number = std::get_if<std::int32_t>(&row[i]);
    if (number != nullptr && *number > LastAutoNumber(pager, table.Definition()))
      SetLastAutoNumber(pager, table.Definition(), *number);
  }
}

}  // namespace tavi::access
