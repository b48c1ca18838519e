#include "store/support/ClubFile.h"

#include "platform/values/Convert.h"

namespace tavi::testing {

std::vector<std::string> ClubFile::Column(const std::string& statement) const {
  const auto connection = Connect();
  const auto rows = connection->OpenRecordset(statement, ado::CursorType::ForwardOnly, ado::LockType::ReadOnly,
                                              ado::SourceKind::CommandText);
  std::vector<std::string> values;
  for (; !rows->AtEnd(); rows->MoveNext()) {
    const Value value = rows->Get(rows->Fields().front().name);
    values.push_back(IsNull(value) ? "Null" : ToText(value));
  }
  rows->Close();
  connection->Close();
  return values;
}

std::map<std::string, std::int32_t> ClubFile::ColumnTypes(const std::string& table) const {
  const auto connection = Connect();
  std::map<std::string, std::int32_t> types;
  const auto rows = connection->OpenSchema(ado::SchemaKind::Columns);
  for (; !rows->AtEnd(); rows->MoveNext()) {
    if (ToText(rows->Get("TABLE_NAME")) != table) continue;
    types[ToText(rows->Get("COLUMN_NAME"))] = ToInt32(rows->Get("DATA_TYPE"));
  }
  rows->Close();
  connection->Close();
  return types;
}

}  // namespace tavi::testing
