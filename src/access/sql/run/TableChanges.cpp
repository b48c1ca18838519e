#include "access/sql/run/TableChanges.h"

#include <algorithm>

#include "access/sql/plan/ExecutionErrors.h"
#include "access/table/RowCodec.h"

namespace tavi::access::sql {

void TableChanges::RefuseSystemTable(const Table& table) {
  if (table.IsSystem()) throw ReadOnlyError("'" + table.Name() + "' belongs to the database engine");
}

void TableChanges::ForgetWhereChangesCascade(const Table& table) {
  const auto& indexes = table.Definition().logicalIndexes;
  const bool cascades = std::any_of(indexes.begin(), indexes.end(), [](const LogicalIndexDefinition& index) {
    return index.kind == LogicalIndexDefinition::Kind::Relationship &&
           (index.cascadeUpdates == 1 || index.cascadeDeletes == 1);
  });
  if (cascades) memoryIndexes_.Clear();
}

RowPointer TableChanges::Insert(Table& table, RowValues& row) {
  RefuseSystemTable(table);
  for (std::size_t i = 0; i < row.size(); ++i) row[i] = ConvertForColumn(row[i], table.Columns()[i].definition);
  const RowPointer pointer = table.Insert(row);
  memoryIndexes_.RowInserted(table, pointer, row);
  return pointer;
}

void TableChanges::Update(Table& table, RowPointer row, const RowValues& before, RowValues& after) {
  RefuseSystemTable(table);
  for (std::size_t i = 0; i < after.size(); ++i) {
    if (after[i] != before[i]) after[i] = ConvertForColumn(after[i], table.Columns()[i].definition);
  }
  if (before == after) return;
  table.Update(row, after);
  ForgetWhereChangesCascade(table);
  memoryIndexes_.RowUpdated(table, row, before, after);
}

void TableChanges::Delete(Table& table, RowPointer row) {
  RefuseSystemTable(table);
  table.Delete(row);
  ForgetWhereChangesCascade(table);
}

}  // namespace tavi::access::sql
