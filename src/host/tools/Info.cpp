#include "host/tools/Info.h"

#include <filesystem>
#include <ostream>

#include "host/sql/Query.h"
#include "host/text/PathText.h"
#include "host/tools/Connect.h"
#include "util/Paths.h"

namespace tavi::host {
namespace {

Value OneValue(ado::Connection& connection, const std::string& statement) {
  const std::unique_ptr<ado::Recordset> rows = connection.OpenRecordset(
      statement, ado::CursorType::ForwardOnly, ado::LockType::ReadOnly, ado::SourceKind::CommandText);
  return rows->AtEnd() ? Value() : rows->Get(rows->Fields().front().name);
}

}  // namespace

int ShowInfo(const Context& context) {
  const std::string file = context.ClubFile();
  const std::unique_ptr<ado::Connection> connection = Connect(context, file);
  const auto count = [&](const std::string& table) {
    return CellOf(OneValue(*connection, "Select Count(*) From " + table));
  };
  Table table({"What", "Value"});
  const std::string path = NativePath(file);
  table.Add({std::string("File"), path});
  table.Add({std::string("Bytes"), static_cast<std::int64_t>(std::filesystem::file_size(PathOf(path)))});
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
  context.Write(table);
  return kSucceeded;
}

}  // namespace tavi::host
