// All changes of rows by statements and record sets go through here: values are converted to the columns' types, the
// table checks its rules and keeps the file's indexes, and then the indexes in memory learn of it. In this order, so
// that a refused change leaves them as they were.
#include "access/sql/run/TableChanges.h"

#include <algorithm>

#include "access/sql/expression/Evaluator.h"
#include "access/sql/expression/Functions.h"
#include "access/sql/parse/Parser.h"
#include "access/sql/plan/ExecutionErrors.h"
#include "access/table/RowCodec.h"

namespace tavi::access::sql {

void TableChanges::RefuseSystemTable(const Table& table) {
  if (table.IsSystem()) throw ReadOnlyError("'" + table.Name() + "' belongs to the database engine");
}

// Cascades change rows of other tables inside the catalogue, which nobody here sees.
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
  // In place: the caller sees what is stored, and the indexes in memory get the same.
  for (std::size_t i = 0; i < row.size(); ++i) row[i] = ConvertForStatement(row[i], table.Columns()[i].definition);
  const RowPointer pointer = table.Insert(row);
  memoryIndexes_.RowInserted(table, pointer, row);
  return pointer;
}

// Values that stay are not converted again. A row that stays as it is is not written: no page changes, and no log
// grows.
void TableChanges::Update(Table& table, RowPointer row, const RowValues& before, RowValues& after) {
  RefuseSystemTable(table);
  for (std::size_t i = 0; i < after.size(); ++i) {
    if (after[i] != before[i]) after[i] = ConvertForStatement(after[i], table.Columns()[i].definition);
  }
  if (before == after) return;
  table.Update(row, after);
  ForgetWhereChangesCascade(table);
  memoryIndexes_.RowUpdated(table, row, before, after);
}

// Indexes in memory keep the row's entry; who finds it asks the table whether the row exists.
void TableChanges::Delete(Table& table, RowPointer row) {
  RefuseSystemTable(table);
  table.Delete(row);
  ForgetWhereChangesCascade(table);
}

namespace {

/// More expressions than any file has; a bound all the same.
constexpr std::size_t kMostExpressions = 4096;

/// A default refers to no rows.
class DefaultScope final : public Scope {
 public:
  explicit DefaultScope(Date now) : now_(now) {}
  [[nodiscard]] Value ColumnValue(const Expression& column) const override {
    throw StatementError("A default value cannot name the column '" + column.name + "'.");
  }
  [[nodiscard]] Value AggregateValue(const Expression& call) const override {
    throw StatementError("A default value cannot use the function '" + call.name + "'.");
  }
  [[nodiscard]] std::vector<Value> SubselectValues(const Expression& /*expression*/,
                                                   std::size_t /*limit*/) const override {
    throw StatementError("A default value cannot hold a SELECT.");
  }
  [[nodiscard]] Date Now() const override { return now_; }

 private:
  Date now_;
};

}  // namespace

// Automatic numbers come from the table's counter, whatever default is written beside them. The expressions are
// remembered by their text, which many columns share ("0", "Date()").
Value Defaults::ValueFor(const Table& table, const Column& column, Date now) {
  const std::string& text = column.defaultExpression;
  if (text.empty() || column.definition.IsAutoNumber()) return Null{};
  try {
    if (parsed_.size() > kMostExpressions) parsed_.clear();
    ExpressionPointer& expression = parsed_[text];
    if (!expression) expression = ParseExpression(text, FindFunction);
    return ConvertForStatement(Evaluate(*expression, DefaultScope(now)), column.definition);
  } catch (const Error& error) {
    throw EngineError(ErrorNumber::ProviderFailure, "The default value of column '" + column.definition.name +
                                                        "' of table '" + table.Name() + "' (" + text +
                                                        ") cannot be used: " + error.Description() +
                                                        " Give the column a value in the statement.");
  }
}

}  // namespace tavi::access::sql
