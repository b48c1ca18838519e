#include "host/tools/Sql.h"

#include <filesystem>
#include <ostream>
#include <type_traits>

#include "host/results/XmlElement.h"
#include "platform/values/Convert.h"
#include "platform/values/Text.h"
#include "util/NativePath.h"

namespace tavi::host {
namespace {

std::unique_ptr<ado::Connection> Connect(const Context& context) {
  return context.platform->databaseProvider->Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + context.ClubFile());
}

/// True when a statement gives rows. SELECT ... INTO makes a table instead.
bool GivesRows(const std::string& statement) {
  const std::string tidy = UpperCase(TidyText(statement));
  const bool select = tidy.starts_with("SELECT") || tidy.starts_with("(");
  return select && tidy.find(" INTO ") == std::string::npos;
}

Value OneValue(ado::Connection& connection, const std::string& statement) {
  const std::unique_ptr<ado::Recordset> rows = connection.OpenRecordset(
      statement, ado::CursorType::ForwardOnly, ado::LockType::ReadOnly, ado::SourceKind::CommandText);
  return rows->AtEnd() ? Value() : rows->Get(rows->Fields().front().name);
}

}  // namespace

Cell CellOf(const Value& value) {
  return std::visit(
      [&](const auto& content) -> Cell {
        using Type = std::decay_t<decltype(content)>;
        if constexpr (std::is_same_v<Type, Null>)
          return std::monostate{};
        else if constexpr (std::is_same_v<Type, bool>)
          return content;
        else if constexpr (std::is_same_v<Type, std::string>)
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

int RunSql(const Context& context, const std::string& statement) {
  const std::unique_ptr<ado::Connection> connection = Connect(context);
  if (!GivesRows(statement)) {
    const std::int64_t rows = connection->Execute(statement);
    connection->Close();
    Table table({"Rows"});
    table.Add({rows});
    table.Write(context.out, context.format);
    return kSucceeded;
  }
  const std::unique_ptr<ado::Recordset> rows = connection->OpenRecordset(
      statement, ado::CursorType::ForwardOnly, ado::LockType::ReadOnly, ado::SourceKind::CommandText);
  std::vector<std::string> names;
  for (const ado::Field& field : rows->Fields()) names.push_back(field.name);
  Table table(names);
  for (; !rows->AtEnd(); rows->MoveNext()) {
    std::vector<Cell> row;
    for (const std::string& name : names) row.push_back(CellOf(rows->Get(name)));
    table.Add(std::move(row));
  }
  table.Write(context.out, context.format);
  return kSucceeded;
}

int ShowInfo(const Context& context) {
  const std::string file = context.ClubFile();
  const std::unique_ptr<ado::Connection> connection = Connect(context);
  const auto count = [&](const std::string& table) {
    return CellOf(OneValue(*connection, "Select Count(*) From " + table));
  };
  Table table({"What", "Value"});
  const std::string path = NativePath(file);
  table.Add({std::string("File"), path});
  table.Add({std::string("Bytes"), static_cast<std::int64_t>(std::filesystem::file_size(path))});
  table.Add({std::string("Club"),
             CellOf(OneValue(*connection, "Select Top 1 ClubName From ClubNames Order By ClubID Desc"))});
  table.Add({std::string("Members"), count("Members")});
  table.Add({std::string("Active members"), count("Members Where Active <> 0")});
  table.Add({std::string("Regular pairs"), count("Partnerships Where Active <> 0")});
  table.Add({std::string("Competitions"), count("Competitions")});
  table.Add({std::string("Results"), count("Results")});
  table.Add({std::string("Master-point awards"), count("MasterPoints")});
  table.Add(
      {std::string("First event"), CellOf(OneValue(*connection, "Select Min(CompetitionDate) From Competitions"))});
  table.Add(
      {std::string("Last event"), CellOf(OneValue(*connection, "Select Max(CompetitionDate) From Competitions"))});
  connection->Close();
  table.Write(context.out, context.format);
  return kSucceeded;
}

}  // namespace tavi::host
