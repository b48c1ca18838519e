// Files written here are read by programs of others: mdbtools.

#include <gtest/gtest.h>

#include <algorithm>

#include <array>
#include <cstdio>
#include <optional>

#include "access/catalog/support/TestFile.h"

namespace tavi::access::test {
namespace {

/// What a command prints; nothing when it cannot be run or fails.
std::optional<std::string> RunCommand(const std::string& command) {
  std::FILE* pipe = popen((command + " 2>/dev/null").c_str(), "r");
  if (pipe == nullptr) return std::nullopt;
  std::string output;
  std::array<char, 4096> buffer{};
  for (std::size_t count = 0; (count = std::fread(buffer.data(), 1, buffer.size(), pipe)) > 0;)
    output.append(buffer.data(), count);
  if (pclose(pipe) != 0) return std::nullopt;
  return output;
}

class SecondReader : public testing::Test {
 protected:
  void SetUp() override {
    if (!RunCommand("mdb-ver --version")) GTEST_SKIP() << "mdbtools is not installed";
  }
  std::string Read(const std::string& command, const std::string& arguments = "") {
    file_.Close();
    const std::optional<std::string> output = RunCommand(command + " '" + file_.Path() + "' " + arguments);
    file_.Reopen();
    EXPECT_TRUE(output.has_value()) << command;
    return output.value_or("");
  }

  TestFile file_;
};

TEST_F(SecondReader, SeesTheVersionOfANewFile) {
  EXPECT_EQ(Read("mdb-ver"), "JET4\n");
}

TEST_F(SecondReader, ListsTables) {
  file_.Write([](Database& database) {
    for (const char* name : {"Members", "Second"}) {
      TableDesign design = MakeMembers();
      design.name = name;
      database.CreateTable(design, kNow);
    }
  });
  EXPECT_EQ(Read("mdb-tables -1"), "Members\nSecond\n");
  file_.Write([](Database& database) { database.DropTable("Members"); });
  EXPECT_EQ(Read("mdb-tables -1"), "Second\n");
}

TEST_F(SecondReader, SeesColumnsIndexesAndRelationships) {
  file_.Write([](Database& database) {
    database.CreateTable(MakeMembers(), kNow);
    TableDesign results;
    results.name = "Results";
    results.columns = {MakeColumn("Player", ColumnType::Long), MakeColumn("Score", ColumnType::Double)};
    database.CreateTable(results, kNow);
    database.CreateRelationship({"MembersResults", "Members", {"ID"}, "Results", {"Player"}, true, false, true}, kNow);
  });
  const std::string schema = Read("mdb-schema", "postgres");
  for (const char* part :
       {"CREATE TABLE IF NOT EXISTS \"members\"", "\"id\"\t\t\tSERIAL", "\"name\"\t\t\tVARCHAR (50)", "TIMESTAMP",
        "CREATE INDEX \"members_byname_idx\"", "PRIMARY KEY (\"id\")", "DOUBLE PRECISION",
        "FOREIGN KEY (\"player\") REFERENCES \"Members\"(\"id\") ON DELETE CASCADE"}) {
    EXPECT_NE(schema.find(part), std::string::npos) << part << "\n" << schema;
  }
}

TEST_F(SecondReader, ReadsRowsThroughChangesOfRowsAndColumns) {
  file_.Write([](Database& database) {
    database.CreateTable(MakeMembers(), kNow);
    for (int i = 0; i < 5; ++i)
      Insert(database, "Members", {{"Name", "Éloïse " + std::to_string(i)}, {"Joined", Date{36526.5}}});
    const std::vector<RowPointer> rows = AllPlaces(database, "Members");
    database.OpenTable("Members")->Delete(rows.at(1));
    Update(database, "Members", rows.at(2), {{"Name", "Łukasz"}, {"Notes", std::string(100, 'n')}});
    database.AddColumn("Members", MakeColumn("Sex", ColumnType::Integer));
    database.DropColumn("Members", "Joined");
    database.AddColumn("Members", MakeColumn("House", ColumnType::Text));
    Insert(database, "Members", {{"Name", "new"}, {"Sex", 1}, {"House", "h"}});
  });
  EXPECT_EQ(Read("mdb-export", "Members"),
            "ID,Name,Notes,Sex,House\n"
            "1,\"Éloïse 0\",,,\n"
            "3,\"Łukasz\",\"" +
                std::string(100, 'n') +
                "\",,\n"
                "4,\"Éloïse 3\",,,\n"
                "5,\"Éloïse 4\",,,\n"
                "6,\"new\",,1,\"h\"\n");
}

TEST_F(SecondReader, ReadsRowsThatAreOlderThanTheFirstVariableColumn) {
  file_.Write([](Database& database) {
    TableDesign design;
    design.name = "Flags";
    design.columns = {MakeColumn("Flag", ColumnType::Boolean)};
    database.CreateTable(design, kNow);
    for (int i = 0; i < 3; ++i) Insert(database, "Flags", {{"Flag", i == 1}});
    database.AddColumn("Flags", MakeColumn("Word", ColumnType::Text));
    Insert(database, "Flags", {{"Word", "new"}});
  });
  EXPECT_EQ(Read("mdb-export", "Flags"), "Flag,Word\n0,\n1,\n0,\n0,\"new\"\n");
}

TEST_F(SecondReader, ReadsALargeTable) {
  file_.Write([](Database& database) {
    database.CreateTable(MakeMembers(), kNow);
    for (int i = 0; i < 3000; ++i) Insert(database, "Members", {{"Name", "member " + std::to_string(i)}});
  });
  EXPECT_EQ(Read("mdb-count", "Members"), "3000\n");
  const std::string rows = Read("mdb-export -H", "Members");
  EXPECT_EQ(std::ranges::count(rows, '\n'), 3000);
  EXPECT_NE(rows.find("\n3000,\"member 2999\",,\n"), std::string::npos);
}

}  // namespace
}  // namespace tavi::access::test
