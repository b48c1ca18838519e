#include <filesystem>
#include <fstream>
#include <ostream>

#include "access/catalog/Compact.h"
#include "host/commands/CheckProgressBar.h"
#include "host/commands/Commands.h"
#include "host/commands/OpenFile.h"
#include "host/dump/DatabaseDump.h"
#include "host/sql/Query.h"
#include "host/text/PathText.h"
#include "platform/values/Error.h"
#include "store/cDatabase.h"
#include "util/Paths.h"

// Commands on the file as such, whoever's it is, and how commands open one. Info and dump only read; compact replaces
// the file, which the engine does as a whole (access/catalog/Compact.h).
namespace tavi::host {

std::unique_ptr<access::Database> OpenToRead(const Context& context, const std::string& file) {
  access::PagerOptions options;
  options.readOnly = true;
  // What the engine has to say without an error.
  options.report = [&context](const std::string& note) { context.error << "tavi: " << PrintableLines(note) << '\n'; };
  return std::make_unique<access::Database>(access::Pager::Open(access::NativeFileSystem(), NativePath(file), options));
}

std::unique_ptr<ado::Connection> Connect(const Context& context, const std::string& file) {
  return context.platform->databaseProvider->Open(ConnectionText(file));
}

namespace {

/// The first field of the first row; null when there is none.
Value OneValue(ado::Connection& connection, const std::string& statement) {
  const std::unique_ptr<ado::Recordset> rows = connection.OpenRecordset(
      statement, ado::CursorType::ForwardOnly, ado::LockType::ReadOnly, ado::SourceKind::CommandText);
  return rows->AtEnd() ? Value() : rows->Get(rows->Fields().front().name);
}

}  // namespace

// All questions over one connection, so that the figures are of one opening of the file.
int ShowInfo(const Context& context) {
  const std::string file = context.ClubFile();
  // By the provider, as all programs open it: what is told is what they see.
  const std::unique_ptr<ado::Connection> connection = Connect(context, file);
  const auto count = [&](const std::string& table) {
    return CellOf(OneValue(*connection, "Select Count(*) From " + table));
  };
  Table table({"What", "Value"});
  const std::string path = NativePath(file);
  table.Add({std::string("File"), path});
  table.Add({std::string("Bytes"), static_cast<std::int64_t>(std::filesystem::file_size(PathOf(path)))});
  table.Add({std::string("Club"),
             // The row with the greatest number is the name in use.
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

namespace {

namespace fs = std::filesystem;

[[noreturn]] void RefuseFolder(const std::string& folder, const std::string& why) {
  throw Error(ErrorNumber::InvalidArgument, "tavi", "the folder " + folder + " " + why);
}

/// A folder that is there must be empty; one that is not is made.
void MakeFolder(const std::string& folder) {
  std::error_code code = MakeFolders(folder);
  if (code) RefuseFolder(folder, "cannot be made: " + ReasonOf(code));
  const bool isEmpty = NamesIn(folder, code).empty();
  if (code) RefuseFolder(folder, "cannot be read: " + ReasonOf(code));
  if (!isEmpty)
    RefuseFolder(folder,
                 "is not empty; name a new one, so that no other file is taken for a "
                 "table of this dump");
}

void WriteFile(const fs::path& path, const std::string& text) {
  std::ofstream stream(path, std::ios::binary);
  stream << text;
  // Closing writes the rest, and only then it shows whether all of it could be.
  stream.close();
  if (!stream)
    throw Error(ErrorNumber::InvalidArgument, "tavi", TextOf(path) + " cannot be written; is the disk full?");
}

}  // namespace

int Dump(const Context& context, const std::string& file, const std::string& folder) {
  // The file first: a wrong name must not leave an empty folder.
  const std::unique_ptr<access::Database> database = OpenToRead(context, file);
  const std::string target = AbsolutePath(NativePath(folder));
  MakeFolder(target);
  // The names of the files are safe in any file system (DatabaseDump.h), whatever tables are called.
  DumpDatabase(*database, [&](const std::string& name, const std::string& text) {
    WriteFile(PathOf(JoinPath(target, NativePath(name))), text);
  });
  return kSucceeded;
}

int Compact(const Context& context, const std::string& file) {
  const std::string path = NativePath(file.empty() ? context.AccessFile() : file);
  access::CompactResult result;
  {
    // The bar is gone before the table is written.
    CheckProgressBar bar(context);
    // The new file takes the place of the old one in one step, which is kept as a backup; nobody else may have it open.
    result = access::CompactFile(access::NativeFileSystem(), path, bar.Progress());
  }
  Table table({"What", "Value"});
  table.Add({std::string("File"), path});
  table.Add({std::string("Bytes before"), static_cast<std::int64_t>(result.bytesBefore)});
  table.Add({std::string("Bytes after"), static_cast<std::int64_t>(result.bytesAfter)});
  table.Add({std::string("Backup"), result.backup});
  context.Write(table);
  return kSucceeded;
}

}  // namespace tavi::host
