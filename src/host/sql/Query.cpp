#include "host/sql/Query.h"

#include <type_traits>

#include "host/sql/StatementText.h"
#include "platform/values/Convert.h"

namespace tavi::host {

Cell CellOf(const Value& value) {
  return std::visit(
      [&](const auto& content) -> Cell {
        using Type = std::decay_t<decltype(content)>;
        if constexpr (std::is_same_v<Type, Null>)
          return std::monostate{};
        else if constexpr (std::is_same_v<Type, bool> || std::is_same_v<Type, std::string>)
          return content;
        else if constexpr (std::is_integral_v<Type>)
          return static_cast<std::int64_t>(content);
        else if constexpr (std::is_floating_point_v<Type>)
          return static_cast<double>(content);
        else
          return ToText(value);
      },
      value);
}

Table Query(ado::Connection& connection, const std::string& statement) {
  if (!GivesRows(statement)) {
    Table table({"Rows"});
    table.Add({connection.Execute(statement)});
    return table;
  }
  const std::unique_ptr<ado::Recordset> rows = connection.OpenRecordset(
      statement, ado::CursorType::ForwardOnly, ado::LockType::ReadOnly, ado::SourceKind::CommandText);
  std::vector<std::string> names;
  for (const ado::Field& field : rows->Fields()) names.push_back(field.name);
  Table table(names);
  for (; !rows->AtEnd(); rows->MoveNext()) {
    std::vector<Cell> row;
    for (const std::string& name : names) row.push_back(CellOf(rows->Get(name)));
    table.Add(std::move(row));
  }
  return table;
}

bool RollBackUnfinished(ado::Connection& connection) {
  if (connection.TransactionLevel() == 0) return false;
  while (connection.TransactionLevel() > 0) connection.RollbackTrans();
  return true;
}

std::string TypeName(ado::DataType type) {
  switch (type) {
    case ado::DataType::SmallInt:
      return "Short";
    case ado::DataType::Integer:
      return "Long";
    case ado::DataType::Single:
      return "Single";
    case ado::DataType::Double:
      return "Double";
    case ado::DataType::Currency:
      return "Currency";
    case ado::DataType::Date:
      return "DateTime";
    case ado::DataType::Boolean:
      return "Bit";
    case ado::DataType::UnsignedTinyInt:
      return "Byte";
    case ado::DataType::Guid:
      return "Guid";
    case ado::DataType::Binary:
      return "Binary";
    case ado::DataType::WChar:
      return "Text";
    case ado::DataType::Numeric:
      return "Decimal";
    case ado::DataType::LongVarBinary:
      return "OLE";
  }
  return "Unknown";
}

}  // namespace tavi::host
