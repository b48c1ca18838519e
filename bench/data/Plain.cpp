#include <unistd.h>

#include <array>
#include <random>

#include "access/file/FileSystem.h"
#include "composition/Composition.h"
#include "data/Data.h"
#include "data/TableWriter.h"
#include "store/cDatabase.h"

namespace tavi::bench {
namespace {

constexpr std::array kTowns = {"Aldham", "Bexley", "Corby",   "Derwent", "Eastham", "Fulford", "Garston", "Hexham",
                               "Ilford", "Jarrow", "Keswick", "Ludlow",  "Malton",  "Newark",  "Oakham",  "Penrith"};

constexpr std::array kOurTables = {
    "Create Table Items (ID Long, Num Long, Day Date, Name Text (40), Town Text (30), Price Double, Remark Text (80))",
    "Create Table Sales (ID Long, Item Long, Quantity Long, Amount Double)"};
constexpr std::array kSqliteTables = {
    "CREATE TABLE Items (ID INTEGER PRIMARY KEY, Num INTEGER, Day REAL, Name TEXT COLLATE NOCASE, Town TEXT COLLATE "
    "NOCASE, Price REAL, Remark TEXT COLLATE NOCASE)",
    "CREATE TABLE Sales (ID INTEGER PRIMARY KEY, Item INTEGER, Quantity INTEGER, Amount REAL)"};
constexpr std::array kOurIndexes = {"Create Index PrimaryKey On Items (ID) With Primary",
                                    "Create Index ItemsNum On Items (Num)", "Create Index ItemsDay On Items (Day)",
                                    "Create Index PrimaryKey On Sales (ID) With Primary"};
constexpr std::array kSqliteIndexes = {"Create Index ItemsNum On Items (Num)", "Create Index ItemsDay On Items (Day)"};

/// Letters that look like a name.
std::string Word(std::mt19937& random, std::size_t length) {
  constexpr std::string_view kVowels = "aeiou";
  constexpr std::string_view kConsonants = "bcdfghklmnprstvw";
  std::string word;
  while (word.size() < length) {
    word += kConsonants[random() % kConsonants.size()];
    word += kVowels[random() % kVowels.size()];
  }
  word[0] = static_cast<char>(word[0] - 'a' + 'A');
  return word;
}

void WriteItems(int rows, access::Database& ours, SqliteFile& sqlite) {
  std::mt19937 random(1);
  TableWriter items(ours, sqlite, "Items", {"ID", "Num", "Day", "Name", "Town", "Price", "Remark"});
  for (int id = 1; id <= rows; ++id) {
    const int number = static_cast<int>(random() % 1000);
    const Date day{Today().days - static_cast<double>(random() % 3650)};
    std::string name = Word(random, 4 + random() % 6) + " " + Word(random, 4 + random() % 8);
    std::string town = kTowns[random() % kTowns.size()];
    const double price = static_cast<double>(random() % 100'000) / 4.0;
    items.Add({id, number, day, std::move(name), std::move(town), price, Word(random, 20 + random() % 40)});
  }
  items.Finish();
}

void WriteSales(int rows, access::Database& ours, SqliteFile& sqlite) {
  std::mt19937 random(2);
  TableWriter sales(ours, sqlite, "Sales", {"ID", "Item", "Quantity", "Amount"});
  for (int id = 1; id <= rows / 3; ++id) {
    const int item = 1 + static_cast<int>(random() % static_cast<unsigned>(rows));
    sales.Add({id, item, static_cast<int>(random() % 12), static_cast<double>(random() % 10'000) / 4.0});
  }
  sales.Finish();
}

}  // namespace

Data::Data(const std::filesystem::path& folder)
    : folder_(folder.empty() ? std::filesystem::temp_directory_path() / ("tavi-bench-" + std::to_string(::getpid()))
                             : folder),
      isTemporary_(folder.empty()) {
  std::filesystem::create_directories(folder_);
}

Data::~Data() {
  std::error_code ignored;
  std::filesystem::remove_all(isTemporary_ ? folder_ : folder_ / ("copy-" + std::to_string(::getpid())), ignored);
}

FilePair Data::Plain(int rows) {
  const std::filesystem::path folder = folder_ / ("plain-" + std::to_string(rows));
  const FilePair files{folder / "plain.mdb", folder / "plain.sqlite"};
  const std::filesystem::path ready = folder / "ready";
  if (std::filesystem::exists(ready)) return files;
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder);
  CreateEmptyDatabase(files.ours.string(), Today());
  SqliteFile sqlite(files.sqlite.string());
  {
    OurFile ours(files.ours.string());
    for (const char* statement : kOurTables) ours.Run(statement);
    for (const char* statement : kSqliteTables) sqlite.Run(statement);
  }
  {
    access::Database ours(access::Pager::Open(access::NativeFileSystem(), files.ours.string(), {}));
    WriteItems(rows, ours, sqlite);
    WriteSales(rows, ours, sqlite);
    ours.GetPager().Close();
  }
  OurFile ours(files.ours.string());
  for (const char* statement : kOurIndexes) ours.Run(statement);
  for (const char* statement : kSqliteIndexes) sqlite.Run(statement);
  sqlite.Run("ANALYZE");
  ours.Close();
  std::filesystem::create_directory(ready);
  return files;
}

FilePair Data::Copy(const FilePair& files) {
  const std::filesystem::path folder = folder_ / ("copy-" + std::to_string(::getpid()));
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder);
  const FilePair copies{folder / files.ours.filename(), folder / files.sqlite.filename()};
  std::filesystem::copy_file(files.ours, copies.ours);
  std::filesystem::copy_file(files.sqlite, copies.sqlite);
  return copies;
}

}  // namespace tavi::bench
