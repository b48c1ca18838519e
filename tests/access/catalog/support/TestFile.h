#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "access/catalog/Check.h"
#include "access/catalog/Database.h"
#include "access/file/support/TemporaryFolder.h"
#include "platform/values/Error.h"

namespace tavi::access::test {

/// The time that tests give to changes.
inline constexpr Date kNow{45000.5};

/// A database file in a folder of its own.
class TestFile {
 public:
  /// A new, empty file.
  TestFile();
  /// A copy of a file.
  explicit TestFile(const std::string& original);

  [[nodiscard]] const std::string& Path() const { return path_; }
  [[nodiscard]] std::string Folder() const { return folder_.Path().string(); }
  [[nodiscard]] Database& Get() { return *database_; }
  /// Closes the file and opens it again.
  void Reopen();
  void Close();

  /// Runs changes as one committed statement.
  void Write(const std::function<void(Database&)>& changes);
  /// Runs changes that must be refused, and rolls them back. Returns the error; fails the test when there is none.
  Error Refused(const std::function<void(Database&)>& changes);
  /// Expects that a strict check finds nothing, now and after opening the file again.
  void ExpectSound();

 private:
  void Open();

  TemporaryFolder folder_;
  std::string path_;
  std::unique_ptr<Database> database_;
};

/// A row of a table by column names; the others are null.
using NamedValues = std::vector<std::pair<std::string, Value>>;
RowValues MakeRow(const Table& table, const NamedValues& values);
RowPointer Insert(Database& database, const std::string& table, const NamedValues& values);
/// Changes some columns of a row.
void Update(Database& database, const std::string& table, RowPointer row, const NamedValues& values);
/// The rows in page order, columns in the table's order.
std::vector<RowValues> AllRows(Database& database, const std::string& table);
std::vector<RowPointer> AllPlaces(Database& database, const std::string& table);
/// The rows of an index in key order.
std::vector<RowValues> RowsByIndex(Database& database, const std::string& table, const std::string& index);
/// One column of all rows.
std::vector<Value> ColumnOf(Database& database, const std::string& table, const std::string& column);

/// Shorthands for designs.
ColumnDesign MakeColumn(const std::string& name, ColumnType type, std::uint16_t length = 50);
IndexDesign MakeIndex(const std::string& name, const std::vector<std::string>& columns);
IndexDesign MakePrimaryKey(const std::string& column);
/// A table of members: ID (automatic number, primary key), Name Text(50), Joined Date, Notes Memo; an index on Name.
TableDesign MakeMembers();

/// The folder of sample files; empty when it is not there.
std::string SampleFile(const std::string& name);

}  // namespace tavi::access::test
