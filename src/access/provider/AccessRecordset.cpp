// A record set on a result set of the engine: names become positions, and each call asks first whether record set and
// connection are still open. What can be changed is the result set's to say; one that was opened for reading only
// refuses before it is asked.
#include "access/provider/AccessConnection.h"
#include "access/sql/plan/ExecutionErrors.h"

namespace tavi::access {

AccessRecordset::AccessRecordset(std::shared_ptr<OpenFile> file, std::unique_ptr<sql::ResultSet> rows, bool isReadOnly)
    : file_(std::move(file)), rows_(std::move(rows)), isReadOnly_(isReadOnly) {
  // They do not change while the record set is open.
  for (const sql::ResultColumn& column : rows_->Columns()) fields_.push_back({column.name, column.type});
}

// The file may have been closed under a record set that a program still holds.
sql::ResultSet& AccessRecordset::Rows() const {
  if (!rows_) RaiseFailure("The record set is closed. Open it again.");
  if (file_->IsClosed()) RaiseFailure("The connection of the record set is closed. Open both again.");
  return *rows_;
}

// Fields may be named with their table, in any case of letters; the result set knows how. Only names that were found
// are remembered, so that a wrong one does not fill the list.
std::size_t AccessRecordset::PositionOf(std::string_view fieldName) const {
  const std::string name(fieldName);
  const auto known = positions_.find(name);
  if (known != positions_.end()) return known->second;
  const auto position = rows_->FindColumn(name);
  if (!position) {
    throw sql::EngineError(ErrorNumber::ProviderNoColumn,
                           "The record set has no field '" + name + "'. Correct the name or add it to the statement.");
  }
  positions_.emplace(name, *position);
  return *position;
}

bool AccessRecordset::AtEnd() const {
  return AsProvider([&] { return Rows().AtEnd(); });
}

void AccessRecordset::MoveNext() {
  AsProvider([&] { Rows().MoveNext(); });
}

void AccessRecordset::MovePrevious() {
  AsProvider([&] { Rows().MovePrevious(); });
}

// Values of the row as it is now, with what was set and not stored yet.
Value AccessRecordset::Get(std::string_view fieldName) const {
  return AsProvider([&] {
    sql::ResultSet& rows = Rows();
    return rows.Get(PositionOf(fieldName));
  });
}

// Asked where a change begins; without it Update has nothing to store.
void AccessRecordset::RefuseReadOnly() const {
  if (isReadOnly_) throw sql::NotUpdatableError("as it was opened for reading only");
}

void AccessRecordset::Set(std::string_view fieldName, const Value& value) {
  AsProvider([&] {
    sql::ResultSet& rows = Rows();
    RefuseReadOnly();
    rows.Set(PositionOf(fieldName), value);
  });
}

void AccessRecordset::AddNew() {
  AsProvider([&] {
    sql::ResultSet& rows = Rows();
    RefuseReadOnly();
    rows.AddNew();
  });
}

void AccessRecordset::Update() {
  AsProvider([&] { Rows().Update(); });
}

void AccessRecordset::CancelUpdate() {
  AsProvider([&] { Rows().CancelUpdate(); });
}

}  // namespace tavi::access
