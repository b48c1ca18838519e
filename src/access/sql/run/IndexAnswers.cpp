#include "access/sql/run/IndexAnswers.h"

#include <algorithm>
#include <cmath>

#include "platform/values/Convert.h"

namespace tavi::access::sql {

namespace {

/// Nulls at an end of an index that are passed over; with more, reading all rows is no worse.
constexpr int kMostNulls = 1000;
/// Entries of one key from which on the next key is looked for, in place of walking to it.
constexpr int kWalkedEntries = 8;

/// True when the plan reads every row of one table, in the order of a scan, and need not.
bool ReadsWholeTable(const SelectPlan& plan) {
  return plan.usesFileIndexes && plan.sources.size() == 1 && plan.sources[0].table && plan.root &&
         plan.root->kind == PlanNode::Kind::Access && plan.root->path.kind == AccessPath::Kind::Scan &&
         plan.root->filters.empty() && !plan.orderWalk;
}

/// Types whose equal values are the same in every respect, but for a zero with a sign.
bool IsNumberOrDate(ColumnType type) {
  switch (type) {
    case ColumnType::Byte:
    case ColumnType::Integer:
    case ColumnType::Long:
    case ColumnType::Currency:
    case ColumnType::Single:
    case ColumnType::Double:
    case ColumnType::Date:
      return true;
    default:
      return false;
  }
}

/// A searchable index of just this column; nothing when there is none.
std::optional<std::size_t> IndexOf(Table& table, std::size_t column) {
  if (!IsNumberOrDate(table.Columns()[column].definition.type)) return std::nullopt;
  for (std::size_t i = 0; i < table.Indexes().size(); ++i) {
    const std::vector<std::size_t>& columns = table.Indexes()[i].columns;
    if (columns.size() == 1 && columns.front() == column && table.CanSearch(i)) return i;
  }
  return std::nullopt;
}

Value ReadColumn(Table& table, RowPointer row, std::size_t column) {
  std::vector<bool> wanted(table.Columns().size(), false);
  wanted[column] = true;
  return std::move(table.Read(row, wanted)[column]);
}

/// Of equal values the first row's is the answer, which matters for zeros alone; no order is to be had of what is no
/// number.
bool IsUnmistakable(const Value& value) {
  const bool isFloating = std::holds_alternative<double>(value) || std::holds_alternative<float>(value) ||
                          std::holds_alternative<Date>(value);
  if (!isFloating) return true;
  const double number = ToDouble(value);
  return std::isfinite(number) && number != 0.0;
}

/// The least or greatest value of a column, null when all are; nothing when no index tells.
std::optional<Value> EndOfColumn(Table& table, std::size_t column, bool greatest) {
  const auto index = IndexOf(table, column);
  if (!index) return std::nullopt;
  const BTree& tree = table.Tree(*index);
  const bool fromBack = greatest == table.Indexes()[*index].ascending.front();
  const auto cursor = fromBack ? tree.SeekLast(std::nullopt, false) : tree.SeekFirst(std::nullopt);
  for (int nulls = 0; cursor->Current() != nullptr && nulls < kMostNulls; ++nulls) {
    Value value = ReadColumn(table, cursor->Current()->row, column);
    if (!IsNull(value)) return IsUnmistakable(value) ? std::optional<Value>(std::move(value)) : std::nullopt;
    if (fromBack) {
      cursor->Previous();
    } else {
      cursor->Next();
    }
  }
  return cursor->Current() == nullptr ? std::optional<Value>(Null{}) : std::nullopt;
}

/// The column of the plan's one table that an expression names.
std::optional<std::size_t> ColumnOf(const SelectPlan& plan, const Expression& expression) {
  if (expression.kind != ExpressionKind::Column) return std::nullopt;
  const Slot slot = plan.SlotOf(expression);
  return slot.kind == Slot::Kind::Column && slot.depth == 0 ? std::optional<std::size_t>(slot.column) : std::nullopt;
}

/// The first bytes that sort behind all keys of this length up to `key`; false when there are none.
bool Advance(IndexKey& key) {
  while (!key.empty() && key.back() == 0xFF) key.pop_back();
  if (key.empty()) return false;
  ++key.back();
  return true;
}

}  // namespace

bool AggregateWithoutRows(const SelectPlan& plan, std::vector<Aggregator>& aggregators) {
  if (!ReadsWholeTable(plan)) return false;
  Table& table = *plan.sources[0].table;
  std::vector<Value> ends(aggregators.size());
  for (std::size_t i = 0; i < aggregators.size(); ++i) {
    if (aggregators[i].CountsRows()) continue;
    if (!aggregators[i].IsMinimum() && !aggregators[i].IsMaximum()) return false;
    const auto column = ColumnOf(plan, *plan.aggregates[i]->arguments[0]);
    auto end = column ? EndOfColumn(table, *column, aggregators[i].IsMaximum()) : std::nullopt;
    if (!end) return false;
    ends[i] = std::move(*end);
  }
  std::optional<std::int64_t> count;
  for (std::size_t i = 0; i < aggregators.size(); ++i) {
    if (!aggregators[i].CountsRows()) {
      aggregators[i].Add(ends[i]);
    } else {
      if (!count) count = table.CountRows();
      aggregators[i].AddRows(*count);
    }
  }
  return true;
}

// Entries of one key stand in the order of their rows, which is that of a scan.
std::optional<std::vector<RowPointer>> FirstRowsOfKeys(const SelectPlan& plan) {
  if (!ReadsWholeTable(plan) || plan.grouped || !plan.unionParts.empty() || plan.select->top ||
      plan.outputs.size() != 1)
    return std::nullopt;
  const auto& slot = plan.outputs[0].slot;
  if (!slot || slot->kind != Slot::Kind::Column || slot->depth != 0) return std::nullopt;
  Table& table = *plan.sources[0].table;
  const auto index = IndexOf(table, slot->column);
  if (!index || table.Indexes()[*index].definition.ignoreNulls) return std::nullopt;
  const BTree& tree = table.Tree(*index);
  std::vector<RowPointer> rows;
  IndexKey key;
  int walked = 0;
  auto cursor = tree.SeekFirst(std::nullopt);
  while (cursor->Current() != nullptr) {
    if (rows.empty() || cursor->Current()->key != key) {
      key = cursor->Current()->key;
      rows.push_back(cursor->Current()->row);
      walked = 0;
    }
    if (++walked < kWalkedEntries) {
      cursor->Next();
      continue;
    }
    IndexKey next = key;
    if (!Advance(next)) break;
    cursor = tree.SeekFirst(next);
    walked = 0;
  }
  std::sort(rows.begin(), rows.end());
  return rows;
}

}  // namespace tavi::access::sql
