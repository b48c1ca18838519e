#include "access/sql/run/ResultSet.h"

#include "access/sql/plan/ExecutionErrors.h"
#include "platform/values/Text.h"

namespace tavi::access::sql {

// By the shown name first: where two tables give the same name, that is "Table.Column" already.
std::optional<std::size_t> ResultSet::FindColumn(std::string_view name) const {
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    if (EqualIgnoringCase(columns_[i].name, name)) return i;
  }
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    const ResultColumn& column = columns_[i];
    if (!column.columnName.empty() && EqualIgnoringCase(column.table + "." + column.columnName, name)) return i;
  }
  return std::nullopt;
}

void ResultSet::Set(std::size_t /*column*/, const Value& /*value*/) {
  throw NotUpdatableError("rows that are computed and belong to no table");
}
void ResultSet::AddNew() {
  throw NotUpdatableError("rows that are computed and belong to no table");
}
// Nothing can be pending where nothing can be set.
void ResultSet::Update() {}
void ResultSet::CancelUpdate() {}

void RaiseNoCurrentRow() {
  throw EngineError(ErrorNumber::ProviderEndOfRecords,
                    "There is no current record: the record set is empty, or its end or beginning was passed.");
}

}  // namespace tavi::access::sql
