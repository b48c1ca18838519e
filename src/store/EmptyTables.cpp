// Tables are emptied whichever way they refer to each other. Which one has to come first is not looked up in the
// relationships but found by trying: a round deletes whatever can be deleted, and another one follows as long as that
// was something. What then is left is kept by a table that is not among these.
#include "store/EmptyTables.h"

#include "platform/values/Convert.h"

namespace tavi {
namespace {

/// False when a relationship forbids it.
bool TryToDelete(cDatabase& database, const std::string& fromAndWhere) {
  try {
    database.Execute("Delete from " + fromAndWhere);
    return true;
  } catch (const Error& error) {
    if (!error.Is(ErrorNumber::ProviderIntegrity)) throw;
    return false;
  }
}

/// Deletes what can be deleted, by the numbers in the table's first column: the key, in those that are referred to.
// Row by row, so that one row that others refer to does not keep the rest of its table.
void DeletePiecemeal(cDatabase& database, const std::string& table) {
  std::vector<std::string> numbers;
  const auto rows = database.OpenRecordset("Select * From " + table, ado::CursorType::ForwardOnly);
  const std::string column = rows->Fields().front().name;
  for (; !rows->AtEnd(); rows->MoveNext()) {
    const Value value = rows->Get(column);
    if (std::holds_alternative<std::int32_t>(value)) numbers.push_back(ToText(value));
  }
  rows->Close();
  for (const std::string& number : numbers) {
    static_cast<void>(TryToDelete(database, table + " Where " + column + " = " + number));
  }
}

}  // namespace

bool HasRelationships(cDatabase& database) {
  try {
    return CountRows(database, "MSysRelationships") > 0;
  } catch (const Error&) {
    return false;
  }
}

void EmptyTables(cDatabase& database, const std::vector<std::string>& tables) {
  std::vector<std::string> left = tables;
  // A table can be emptied once those that refer to it are empty.
  for (std::size_t before = left.size() + 1; left.size() < before;) {
    before = left.size();
    std::erase_if(left, [&](const std::string& table) { return TryToDelete(database, table); });
  }
  for (const std::string& table : left) DeletePiecemeal(database, table);
}

std::int64_t CountRows(cDatabase& database, const std::string& table) {
  const auto rows = database.OpenRecordset("Select Count(*) As Found From " + table, ado::CursorType::ForwardOnly);
  return ToInt32(rows->Get("Found"));
}

}  // namespace tavi
