#include "access/sql/plan/MemoryIndexes.h"

#include <cmath>

#include "access/sql/plan/ValueKey.h"

namespace tavi::access::sql {

MemoryIndexes::Key MemoryIndexes::KeyOf(const Table& table, std::size_t column) {
  return {table.Definition().page, table.Columns()[column].definition.id};
}

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

MemoryIndexes::Estimate MemoryIndexes::EstimateFor(const Table& table, std::size_t column, double rowCount) const {
  Estimate estimate{kCostOfEntry * rowCount, std::sqrt(rowCount)};
  const auto found = entries_.find(KeyOf(table, column));
  if (found == entries_.end()) return estimate;
  const Entry& entry = found->second;
  const bool isBuilt = entry.index && pager_->Generation() == generation_;
  const bool isDue = entry.spentWithout >= rowCount;
  if (isBuilt || isDue) estimate.setup = 0;
  if (isDue) estimate.rowsPerKey = 1;
  if (entry.rowsPerKey) estimate.rowsPerKey = *entry.rowsPerKey;
  return estimate;
}

void MemoryIndexes::NotePlan(const std::vector<Considered>& considered, double cost) {
  for (const auto& [table, column] : considered) {
    Entry& entry = entries_[KeyOf(*table, column)];
    if (!entry.index) entry.spentWithout += cost;
  }
}

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
