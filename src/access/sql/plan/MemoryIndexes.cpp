// Indexes in memory of columns without one in the file. Making one costs a walk over the table, so it is made when it
// will pay: when one statement looks up many values (a join), at the second request for single ones, or when plans that
// had to do without it have together cost as much as a scan of the table. What an index has shown of a column (rows per
// value) is remembered when the index itself is dropped, so that later plans estimate better.
//
// An index gives candidates only. A changed row is added under its new value and stays under the old one, a deleted one
// stays; so changes cost no search in it, and whoever looks up checks that the row is there and what it holds. The
// session's own changes are entered as they are made. A change by anybody else, and a rollback, shows in the pager's
// generation and drops every index.
#include "access/sql/plan/MemoryIndexes.h"

#include <algorithm>
#include <cmath>

#include "access/sql/plan/ValueKey.h"
#include "platform/values/Error.h"

namespace tavi::access::sql {

// By what stays the same when the table is read anew: the page of its definition and the column's number in the file.
MemoryIndexes::Key MemoryIndexes::KeyOf(const Table& table, std::size_t column) {
  return {table.Definition().page, table.Columns()[column].definition.id};
}

// Requests count from the beginning again: where another program writes all the time, an index made at once would be
// dropped before it has paid.
void MemoryIndexes::DropWhenStale() {
  const std::uint64_t generation = pager_->Generation();
  if (generation == generation_) return;
  for (auto& [key, entry] : entries_) {
    if (!entry.index) continue;
    entry.index.reset();
    entry.requests = 0;
    entry.spentWithout = 0;
  }
  generation_ = generation;
}

// What is built, or due to be built, is free for the plan. What the worth of a due one is that has never been built
// some rows of the table tell: an index of a column that holds the same value everywhere would only be in the way.
MemoryIndexes::Estimate MemoryIndexes::EstimateFor(Table& table, std::size_t column, double rowCount) {
  Estimate estimate{kCostOfEntry * rowCount, std::sqrt(rowCount)};
  const auto found = entries_.find(KeyOf(table, column));
  if (found == entries_.end()) return estimate;
  Entry& entry = found->second;
  const bool isBuilt = entry.index && pager_->Generation() == generation_;
  const bool isDue = entry.spentWithout >= rowCount;
  if (isBuilt || isDue) estimate.setup = 0;
  if (isDue && !entry.rowsPerKey) entry.rowsPerKey = SampleRowsPerKey(table, column, rowCount);
  if (entry.rowsPerKey) estimate.rowsPerKey = *entry.rowsPerKey;
  return estimate;
}

void MemoryIndexes::NotePlan(const std::vector<Considered>& considered, double cost) {
  for (const auto& [table, column] : considered) {
    Entry& entry = entries_[KeyOf(*table, column)];
    if (!entry.index) entry.spentWithout += cost;
  }
}

// A planned index may still not be made: a table that has shrunk below the limit is scanned by the caller, and so is
// one for whose single look-up the walk would not pay.
const HashIndex* MemoryIndexes::Find(Table& table, std::size_t column, bool manyLookUps,
                                     FunctionReference<void()> beforeRow) {
  DropWhenStale();
  Entry& entry = entries_[KeyOf(table, column)];
  entry.lastUse = ++uses_;
  ++entry.requests;
  if (entry.index) return &*entry.index;
  const std::uint32_t rows = table.RowCount();
  if (rows < kMinimumRows || rows > kMaximumEntries) return nullptr;
  const bool pays = manyLookUps || entry.requests >= kRequestsThatPay || entry.spentWithout >= rows;
  if (!pays) return nullptr;
  entry.index = Build(table, column, beforeRow);
  entry.rowsPerKey = entry.index->RowsPerKey();
  MakeRoom(kMaximumEntries);
  return &*entry.index;
}

// Stretches of rows from all over the table. Values that a sample shows once stand for as many others as the table is
// larger, by the square root; those that it shows again are likely to be all that there are of their kind.
std::optional<double> MemoryIndexes::SampleRowsPerKey(Table& table, std::size_t column, double rowCount) const {
  constexpr PageNumber kStretches = 16;
  constexpr int kRowsOfAStretch = 16;
  constexpr std::uint8_t kBehindLastRow = 255;
  std::vector<bool> wanted(table.Columns().size(), false);
  wanted[column] = true;
  std::map<std::uint64_t, int> seen;  // how often, by hash
  double rows = 0;
  try {
    std::optional<RowPointer> row;
    for (PageNumber stretch = 0; stretch < kStretches; ++stretch) {
      const RowPointer place{pager_->PageCount() / kStretches * stretch, kBehindLastRow};
      row = table.Next(!row || *row < place ? place : *row);
      for (int i = 0; i < kRowsOfAStretch && row; ++i, row = table.Next(row)) {
        const Value value = table.Read(*row, wanted)[column];
        ++rows;
        if (!IsNull(value)) ++seen[HashOf(value)];
      }
      if (!row) break;
    }
  } catch (const Error&) {
    return std::nullopt;  // whoever needs the damaged rows will say so
  }
  double values = 0;
  double distinct = 0;
  for (const auto& [hash, times] : seen) {
    values += times;
    distinct += times == 1 ? std::sqrt(std::max(1.0, rowCount / rows)) : 1.0;
  }
  if (values == 0) return 1.0;
  return std::max(1.0, rowCount * values / rows / distinct);
}

// Nulls are left out: no look-up asks for them, as nothing equals null.
HashIndex MemoryIndexes::Build(Table& table, std::size_t column, FunctionReference<void()> beforeRow) {
  std::vector<bool> wanted(table.Columns().size(), false);
  wanted[column] = true;
  std::vector<HashIndex::Entry> entries;
  for (auto row = table.Next(std::nullopt); row; row = table.Next(row)) {
    beforeRow();
    const RowValues values = table.Read(*row, wanted);
    if (!IsNull(values[column])) entries.emplace_back(HashOf(values[column]), row->Packed());
  }
  return HashIndex(std::move(entries));
}

// The index used last stays whatever its size: somebody is about to look up in it. It has at most kMaximumEntries when
// it is made.
void MemoryIndexes::MakeRoom(std::size_t entries) {
  while (true) {
    std::size_t total = 0;
    Entry* oldest = nullptr;
    for (auto& [key, entry] : entries_) {
      if (!entry.index) continue;
      total += entry.index->Size();
      if (oldest == nullptr || entry.lastUse < oldest->lastUse) oldest = &entry;
    }
    if (total <= entries || oldest == nullptr || oldest->lastUse == uses_) return;
    oldest->index.reset();
  }
}

void MemoryIndexes::RowInserted(const Table& table, RowPointer row, const RowValues& values) {
  for (std::size_t column = 0; column < values.size() && !entries_.empty(); ++column) {
    const auto found = entries_.find(KeyOf(table, column));
    if (found == entries_.end() || !found->second.index || IsNull(values[column])) continue;
    found->second.index->Add(HashOf(values[column]), row.Packed());
  }
}

// Only a value that differs gets an entry; under an equal one the row is there already.
void MemoryIndexes::RowUpdated(const Table& table, RowPointer row, const RowValues& before, const RowValues& after) {
  for (std::size_t column = 0; column < after.size() && !entries_.empty(); ++column) {
    const auto found = entries_.find(KeyOf(table, column));
    if (found == entries_.end() || !found->second.index || IsNull(after[column])) continue;
    if (!SameKey(before[column], after[column])) found->second.index->Add(HashOf(after[column]), row.Packed());
  }
}

void MemoryIndexes::Clear() {
  entries_.clear();
}

}  // namespace tavi::access::sql
