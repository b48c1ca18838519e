#pragma once

#include <map>
#include <string>

#include "access/catalog/Table.h"
#include "access/sql/parse/Statement.h"
#include "access/sql/plan/MemoryIndexes.h"
#include "platform/values/Date.h"

namespace tavi::access::sql {

/// Changes rows of tables on behalf of statements and record sets and keeps the indexes in memory in step. Used inside
/// a write statement. System tables are refused with ProviderPermission.
class TableChanges {
 public:
  explicit TableChanges(MemoryIndexes& memoryIndexes) : memoryIndexes_(memoryIndexes) {}

  /// Adds a row; `row` gets the stored values, its automatic number among them.
  RowPointer Insert(Table& table, RowValues& row);
  /// Replaces `before` (all values of the row) by `after`; nothing is done when they are the same. `after` gets the
  /// stored values.
  void Update(Table& table, RowPointer row, const RowValues& before, RowValues& after);
  void Delete(Table& table, RowPointer row);

 private:
  static void RefuseSystemTable(const Table& table);
  void ForgetWhereChangesCascade(const Table& table);

  MemoryIndexes& memoryIndexes_;
};

/// Evaluates the default expressions of columns, which are parsed once and remembered.
class Defaults {
 public:
  /// The value that a new row gets in a column that the statement does not name, converted to the column's type; null
  /// when the column has no default. Raises ProviderFailure, naming the column, for a default that cannot be evaluated.
  [[nodiscard]] Value ValueFor(const Table& table, const Column& column, Date now);

 private:
  std::map<std::string, ExpressionPointer> parsed_;
};

}  // namespace tavi::access::sql
