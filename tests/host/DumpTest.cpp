// The dump of a file, compared with literal text, and with what other readers made of real files.

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <sstream>

#include "SourceDirectory.h"
#include "access/catalog/Database.h"
#include "access/file/Format.h"
#include "host/json/Json.h"
#include "host/support/Command.h"

namespace tavi::host {
namespace {

namespace fs = std::filesystem;

std::map<std::string, std::string> ReadFolder(const fs::path& folder) {
  std::map<std::string, std::string> files;
  for (const auto& entry : fs::directory_iterator(folder))
    files[entry.path().filename().string()] = ReadFile(entry.path());
  return files;
}

fs::path SampleFolder() {
  return fs::path(TAVI_SAMPLE_FILES) / "access-files";
}

/// Statements on a file that is not a club's; ends with an error when one fails.
void RunStatements(const CommandFolder& folder, const std::string& file, const std::string& statements) {
  const Outcome outcome = folder.Run({"sql", "--file", file}, statements);
  ASSERT_EQ(outcome.code, 0) << outcome.error;
}

/// A club's file without its tables: the tests make their own.
std::string EmptyFile(const CommandFolder& folder) {
  const Outcome outcome = folder.Run({"new", "--name", "Any"});
  EXPECT_EQ(outcome.code, 0) << outcome.error;
  const Outcome dump = folder.Run({"dump", folder.ClubFile(), folder.Path("all")});
  EXPECT_EQ(dump.code, 0) << dump.error;
  std::string drops;
  for (const auto& [name, text] : ReadFolder(folder.Path("all")))
    if (name.ends_with(".tsv")) drops += "Drop Table [" + name.substr(0, name.size() - 4) + "];\n";
  RunStatements(folder, folder.ClubFile(), drops);
  return folder.ClubFile();
}

TEST(Dump, WritesColumnsIndexesAndRowsInAFixedForm) {
  const CommandFolder folder;
  const std::string file = EmptyFile(folder);
  RunStatements(
      folder, file,
      "Create Table [Zoë/1] (ID Counter Primary Key, Word Text(20) Not Null, Fee Currency, At DateTime, Notes "
      "Memo, Done Bit, Size Double);\n"
      "Create Index ByWord On [Zoë/1] (Word Desc);\n"
      "Insert Into [Zoë/1] (Word, Fee, At, Notes, Done, Size) Values ('b', 12.5, #2/1/2026 18:30:00#, "
      "'one\ttab', True, 0.1);\n"
      "Insert Into [Zoë/1] (Word) Values ('');\n"
      "Create Table Empty (A Short, B GUID);\n");
  const Outcome outcome = folder.Run({"dump", file, folder.Path("dump")});
  ASSERT_EQ(outcome.code, 0) << outcome.error;
  EXPECT_EQ(outcome.out, "");
  const auto files = ReadFolder(folder.Path("dump"));
  ASSERT_EQ(files.size(), 3U);
  EXPECT_EQ(files.at("Zo%C3%AB%2F1.tsv"),
            "ID\tWord\tFee\tAt\tNotes\tDone\tSize\n"
            "1\tb\t12.5\t2026-02-01T18:30:00\tone\\ttab\ttrue\t0.1\n"
            "2\t\t\\N\t\\N\t\\N\tfalse\t\\N\n");
  EXPECT_EQ(files.at("Empty.tsv"), "A\tB\n");
  EXPECT_EQ(files.at("schema.json"),
            R"({
  "jet": 4,
  "tables": [
    {
      "name": "Empty",
      "file": "Empty.tsv",
      "rows": 0,
      "columns": [
        {"name": "A", "type": "Integer", "number": 0, "length": 2, "variable": false, "autonumber": false, "required": false},
        {"name": "B", "type": "GUID", "number": 1, "length": 16, "variable": false, "autonumber": false, "required": false}
      ],
      "indexes": []
    },
    {
      "name": "Zoë/1",
      "file": "Zo%C3%AB%2F1.tsv",
      "rows": 2,
      "columns": [
        {"name": "ID", "type": "Long", "number": 0, "length": 4, "variable": false, "autonumber": true, "required": false},
        {"name": "Word", "type": "Text", "number": 1, "length": 20, "variable": true, "autonumber": false, "required": true},
        {"name": "Fee", "type": "Currency", "number": 2, "length": 8, "variable": false, "autonumber": false, "required": false},
        {"name": "At", "type": "DateTime", "number": 3, "length": 8, "variable": false, "autonumber": false, "required": false},
        {"name": "Notes", "type": "Memo", "number": 4, "length": 0, "variable": true, "autonumber": false, "required": false},
        {"name": "Done", "type": "Boolean", "number": 5, "length": 1, "variable": false, "autonumber": false, "required": false},
        {"name": "Size", "type": "Double", "number": 6, "length": 8, "variable": false, "autonumber": false, "required": false}
      ],
      "indexes": [
        {"name": "ByWord", "columns": [{"name": "Word", "ascending": false}], "unique": false, "primaryKey": false, "ignoreNulls": false, "required": false, "foreignKey": false},
        {"name": "PrimaryKey", "columns": [{"name": "ID", "ascending": true}], "unique": true, "primaryKey": true, "ignoreNulls": false, "required": true, "foreignKey": false}
      ]
    }
  ],
  "relationships": [],
  "linkedTables": []
}
)");
}

// The flag of automatic GUIDs stands on texts, too, in files of other programs.
TEST(Dump, OnlyColumnsThatCanCountAreAutomaticNumbers) {
  const CommandFolder folder;
  const std::string file = EmptyFile(folder);
  RunStatements(folder, file, "Create Table Words (ID Counter, Word Text(20), Mark GUID);\n");
  {
    access::Database database(access::Pager::Open(access::NativeFileSystem(), file, {}));
    access::WriteStatement statement(database.GetPager());
    access::TableDefinition words = database.OpenTable("Words")->Definition();
    for (access::ColumnDefinition& column : words.columns)
      column.flags |= access::format::column_flag::kAutonumber | access::format::column_flag::kAutonumberGuid;
    access::WriteTableDefinition(database.GetPager(), words, true);
    statement.Commit();
  }
  ASSERT_EQ(folder.Run({"dump", file, folder.Path("dump")}).code, 0);
  const auto schema = Json::Parse(ReadFolder(folder.Path("dump")).at("schema.json"));
  std::map<std::string, bool> automatic;
  for (const auto& column : schema["tables"][0]["columns"])
    automatic[column["name"].Text()] = column["autonumber"].Flag();
  EXPECT_EQ(automatic, (std::map<std::string, bool>{{"ID", true}, {"Word", false}, {"Mark", true}}));
}

// 64 letters take up to 576 bytes when they are escaped; a file system takes 255.
TEST(Dump, LongTableNamesOfOtherScriptsGetFilesOfTheirOwn) {
  const CommandFolder folder;
  const std::string file = EmptyFile(folder);
  std::string start;
  for (int i = 0; i < 63; ++i) start += "\u6F22";
  RunStatements(folder, file,
                "Create Table [" + start + "\u5B57] (A Long);\nCreate Table [" + start + "\u4EEE] (B Long);\n");
  const Outcome outcome = folder.Run({"dump", file, folder.Path("dump")});
  ASSERT_EQ(outcome.code, 0) << outcome.error;
  const auto files = ReadFolder(folder.Path("dump"));
  ASSERT_EQ(files.size(), 3U);
  const auto schema = Json::Parse(files.at("schema.json"));
  std::map<std::string, std::string> headers;
  for (const auto& table : schema["tables"]) {
    const std::string& name = table["file"].Text();
    EXPECT_LE(name.size(), 255U);
    EXPECT_TRUE(name.starts_with("%E6%BC%A2%E6%BC%A2"));
    headers[table["name"].Text()] = files.at(name);
  }
  EXPECT_EQ(headers, (std::map<std::string, std::string>{{start + "\u5B57", "A\n"}, {start + "\u4EEE", "B\n"}}));
}

TEST(Dump, ChangesNothingAndLeavesNoFileBeside) {
  const CommandFolder folder;
  ASSERT_EQ(folder.Run({"new", "--name", "Any"}).code, 0);
  const auto before = ReadFolder(folder.Club());
  ASSERT_EQ(folder.Run({"dump", folder.ClubFile(), folder.Path("dump")}).code, 0);
  EXPECT_TRUE(ReadFolder(folder.Club()) == before);
}

TEST(Dump, RefusesAFolderThatHoldsFiles) {
  const CommandFolder folder;
  ASSERT_EQ(folder.Run({"new", "--name", "Any"}).code, 0);
  const Outcome outcome = folder.Run({"dump", folder.ClubFile(), folder.Club()});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_NE(outcome.error.find("is not empty"), std::string::npos) << outcome.error;
}

TEST(Dump, GivesWhatOtherReadersReadInRealFiles) {
  if (!fs::exists(SampleFolder() / "expected")) GTEST_SKIP() << "the sample files are not beside this checkout";
  const CommandFolder folder;
  std::size_t compared = 0;
  for (const auto& entry : fs::directory_iterator(SampleFolder() / "expected")) {
    const std::string name = entry.path().filename().string();
    const Outcome outcome = folder.Run({"dump", (SampleFolder() / (name + ".mdb")).string(), folder.Path(name)});
    EXPECT_EQ(outcome.code, 0) << name << ": " << outcome.error;
    const auto expected = ReadFolder(entry.path());
    const auto actual = ReadFolder(folder.Path(name));
    for (const auto& [file, text] : expected) {
      ASSERT_TRUE(actual.contains(file)) << name << ", " << file;
      EXPECT_TRUE(actual.at(file) == text) << name << ", " << file;
    }
    EXPECT_EQ(actual.size(), expected.size()) << name;
    ++compared;
  }
  EXPECT_GE(compared, 30U);
}

}  // namespace
}  // namespace tavi::host
