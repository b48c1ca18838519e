#include "access/catalog/support/TestFile.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "SourceDirectory.h"
#include "access/file/Pager.h"

namespace tavi::access::test {

TestFile::TestFile() : path_(folder_.File("test.mdb")) {
  Database::CreateFile(*NativeFileSystem(), path_, kNow);
  Open();
}

TestFile::TestFile(const std::string& original) : path_(folder_.File("test.mdb")) {
  std::filesystem::copy_file(original, path_);
  std::filesystem::permissions(path_, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  Open();
}

void TestFile::Open() {
  database_ = std::make_unique<Database>(Pager::Open(NativeFileSystem(), path_, {}));
}

void TestFile::Close() {
  if (database_ == nullptr) return;
  database_->GetPager().Close();
  database_.reset();
}

void TestFile::Reopen() {
  Close();
  Open();
}

void TestFile::Write(const std::function<void(Database&)>& changes) {
  WriteStatement statement(database_->GetPager());
  changes(*database_);
  statement.Commit();
}

Error TestFile::Refused(const std::function<void(Database&)>& changes) {
  WriteStatement statement(database_->GetPager());
  try {
    changes(*database_);
  } catch (const Error& error) {
    return error;
  }
  ADD_FAILURE() << "the change was not refused";
  return {ErrorNumber::ProviderFailure, "", ""};
}

void TestFile::ExpectSound() {
  EXPECT_EQ(CheckDatabase(*database_, CheckKind::Strict), std::vector<std::string>());
  Reopen();
  EXPECT_EQ(CheckDatabase(*database_, CheckKind::Strict), std::vector<std::string>());
}

RowValues MakeRow(const Table& table, const NamedValues& values) {
  RowValues row(table.Columns().size());
  for (const auto& [name, value] : values) row.at(table.FindColumn(name).value()) = value;
  return row;
}

RowPointer Insert(Database& database, const std::string& table, const NamedValues& values) {
  const auto opened = database.OpenTable(table);
  RowValues row = MakeRow(*opened, values);
  return opened->Insert(row);
}

void Update(Database& database, const std::string& table, RowPointer row, const NamedValues& values) {
  const auto opened = database.OpenTable(table);
  RowValues changed = opened->Read(row);
  for (const auto& [name, value] : values) changed.at(opened->FindColumn(name).value()) = value;
  opened->Update(row, changed);
}

std::vector<RowPointer> AllPlaces(Database& database, const std::string& table) {
  const ReadStatement statement(database.GetPager());
  const auto opened = database.OpenTable(table);
  std::vector<RowPointer> places;
  for (auto row = opened->Next(std::nullopt); row.has_value(); row = opened->Next(row)) places.push_back(*row);
  return places;
}

std::vector<RowValues> AllRows(Database& database, const std::string& table) {
  const ReadStatement statement(database.GetPager());
  std::vector<RowValues> rows;
  for (const RowPointer place : AllPlaces(database, table)) rows.push_back(database.OpenTable(table)->Read(place));
  return rows;
}

std::vector<RowValues> RowsByIndex(Database& database, const std::string& table, const std::string& index) {
  const ReadStatement statement(database.GetPager());
  const auto opened = database.OpenTable(table);
  std::vector<RowValues> rows;
  for (std::size_t i = 0; i < opened->Indexes().size(); ++i) {
    if (opened->Indexes()[i].name != index) continue;
    for (auto cursor = opened->Tree(i).SeekFirst(std::nullopt); cursor->Current() != nullptr; cursor->Next())
      rows.push_back(opened->Read(cursor->Current()->row));
  }
  return rows;
}

std::vector<Value> ColumnOf(Database& database, const std::string& table, const std::string& column) {
  std::vector<Value> values;
  const std::vector<RowValues> rows = AllRows(database, table);
  const ReadStatement statement(database.GetPager());
  const std::size_t position = database.OpenTable(table)->FindColumn(column).value();
  for (const RowValues& row : rows) values.push_back(row.at(position));
  return values;
}

ColumnDesign MakeColumn(const std::string& name, ColumnType type, std::uint16_t length) {
  ColumnDesign column;
  column.name = name;
  column.type = type;
  column.length = length;
  return column;
}

IndexDesign MakeIndex(const std::string& name, const std::vector<std::string>& columns) {
  IndexDesign index;
  index.name = name;
  for (const std::string& column : columns) index.columns.push_back({column, true});
  return index;
}

IndexDesign MakePrimaryKey(const std::string& column) {
  IndexDesign index = MakeIndex("PrimaryKey", {column});
  index.primaryKey = true;
  return index;
}

TableDesign MakeMembers() {
  TableDesign table;
  table.name = "Members";
  table.columns = {MakeColumn("ID", ColumnType::Long), MakeColumn("Name", ColumnType::Text),
                   MakeColumn("Joined", ColumnType::Date), MakeColumn("Notes", ColumnType::Memo)};
  table.columns[0].autoNumber = true;
  table.indexes = {MakePrimaryKey("ID"), MakeIndex("ByName", {"Name"})};
  return table;
}

std::string SampleFile(const std::string& name) {
  const auto path = std::filesystem::path(TAVI_SAMPLE_FILES) / "access-files" / name;
  return std::filesystem::exists(path) ? path.string() : std::string();
}

}  // namespace tavi::access::test
