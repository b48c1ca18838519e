#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "access/catalog/Database.h"
#include "access/file/Format.h"
#include "host/support/Command.h"

namespace tavi::host {
namespace {

namespace fs = std::filesystem;

std::string ReadFile(const std::string& path) {
  std::ifstream stream(path, std::ios::binary);
  std::ostringstream text;
  text << stream.rdbuf();
  return text.str();
}

/// A club's file with two members, and ways to hurt it.
class CheckCommand : public testing::Test {
 protected:
  CheckCommand() {
    EXPECT_EQ(folder_.Run({"new", "--name", "Any"}).code, 0);
    const std::string csv = folder_.Write("members.csv", "club_number,first,last\n1,Ann,Bee\n2,Cy,Dee\n");
    EXPECT_EQ(folder_.Run({"members", "import", csv}).code, 0);
  }

  access::TableDefinition Members() const {
    access::Database database(access::Pager::Open(access::NativeFileSystem(), folder_.ClubFile(), {}));
    const access::ReadStatement statement(database.GetPager());
    return database.OpenTable("Members")->Definition();
  }
  void SetByte(std::size_t page, std::size_t offset, char value) const {
    std::fstream stream(folder_.ClubFile(), std::ios::binary | std::ios::in | std::ios::out);
    stream.seekp(static_cast<std::streamoff>(page * access::kPageSize + offset));
    stream.put(value);
  }

  CommandFolder folder_;
};

TEST_F(CheckCommand, TellsThatTheClubsFileIsSound) {
  const Outcome outcome = folder_.Run({"check"});
  EXPECT_EQ(outcome.code, 0) << outcome.error;
  EXPECT_NE(outcome.out.find("ClubMembers.mdb: sound ("), std::string::npos) << outcome.out;
  EXPECT_EQ(folder_.Run({"check", folder_.ClubFile(), "--strict"}).code, 0);
}

TEST_F(CheckCommand, NamesWhatIsWrongAndSaysWhatToDo) {
  SetByte(Members().page, access::format::table::kRowCountOffset, 9);
  const std::string before = ReadFile(folder_.ClubFile());
  const Outcome outcome = folder_.Run({"check"});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_NE(outcome.out.find("The counter of table 'Members' says 9 rows; there are 2."), std::string::npos)
      << outcome.out;
  EXPECT_NE(outcome.out.find("damaged (1 finding)"), std::string::npos) << outcome.out;
  EXPECT_NE(outcome.out.find("tavi compact"), std::string::npos) << outcome.out;
  EXPECT_EQ(ReadFile(folder_.ClubFile()), before);
}

TEST_F(CheckCommand, AdvisesABackupWhenRowsAreHurt) {
  const access::TableDefinition members = Members();
  SetByte(members.ownedPages.page, access::format::kPageTypeOffset, 7);
  const Outcome outcome = folder_.Run({"check"});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_NE(outcome.out.find("restore it from a backup"), std::string::npos) << outcome.out;
}

TEST_F(CheckCommand, WritesJson) {
  SetByte(Members().page, access::format::table::kRowCountOffset, 9);
  const Outcome outcome = folder_.Run({"check", "--json"});
  EXPECT_EQ(outcome.code, 1);
  const auto json = nlohmann::json::parse(outcome.out);
  EXPECT_EQ(json["file"], folder_.ClubFile());
  EXPECT_EQ(json["sound"], false);
  EXPECT_EQ(json["findings"].size(), 1U);
  EXPECT_EQ(json["findings"][0]["part"], "counter");
  EXPECT_EQ(json["findings"][0]["table"], "Members");
  EXPECT_GT(json["rows"], 2);
}

TEST_F(CheckCommand, TellsOfNameKeysThatAreNotTheOnesMadeNow) {
  EXPECT_EQ(folder_.Run({"check"}).out.find("name keys"), std::string::npos);
  ASSERT_EQ(folder_.Run({"sql", "Update Members Set FuzzedLastName = 'OLDKEY' Where LastName = 'Dee'"}).code, 0);
  const Outcome outcome = folder_.Run({"check"});
  EXPECT_EQ(outcome.code, 0);
  EXPECT_NE(outcome.out.find("The stored name keys of 1 of 2 members"), std::string::npos) << outcome.out;
  EXPECT_EQ(nlohmann::json::parse(folder_.Run({"check", "--json"}).out)["staleNameKeys"], 1);
  ASSERT_EQ(folder_.Run({"members", "import", folder_.Path("members.csv")}).code, 0);
  EXPECT_EQ(folder_.Run({"check"}).out.find("name keys"), std::string::npos);
}

TEST_F(CheckCommand, ListsRowsWithoutTheNumbersThatHandicapsAreMadeOf) {
  EXPECT_EQ(folder_.Run({"check"}).out.find("lack a number"), std::string::npos);
  for (const char* statement :
       {"Insert Into Results (Competition, Player, Partner, ActualPercentage) Values (3, 1, 2, 55)",
        "Insert Into Results (Competition, Player, Partner) Values (4, 1, 2)",
        "Insert Into Results (Competition, Player) Values (5, 1)", "Drop Table Partnerships",
        "Create Table Partnerships (LowerPlayer Long, HigherPlayer Long, HigherFirst Short, Handicap Double, KnownAs "
        "Text (255), Active Bit, HandicalcSeed Double, HandicalcSeedDate Date)",
        "Insert Into Partnerships (LowerPlayer) Values (2)"}) {
    ASSERT_EQ(folder_.Run({"sql", statement}).code, 0) << statement;
  }
  const Outcome outcome = folder_.Run({"check"});
  EXPECT_EQ(outcome.code, 0) << "the file is sound all the same";
  EXPECT_NE(outcome.out.find("complete or delete them with 'tavi sql':\n"
                             "  Results: player 1 with partner 2 in competition 4 has no percentage.\n"
                             "  Results: player 1 with partner (none) in competition 5 has no percentage.\n"
                             "  Partnerships: the pair of 2 and (none) lacks a player's number.\n"),
            std::string::npos)
      << outcome.out;
  const auto json = nlohmann::json::parse(folder_.Run({"check", "--json"}).out);
  EXPECT_EQ(json["rowsWithoutNumbers"].size(), 3U);
  EXPECT_EQ(json["moreRowsWithoutNumbers"], 0);
  EXPECT_EQ(json["sound"], true);
}

// The members' keys were said to be stale for ever: the escapes of their names were taken for letters.
TEST_F(CheckCommand, KeysOfNamesThatAreStoredWithEscapesAreCurrent) {
  const std::string add = R"({"jsonrpc":"2.0","method":"AddNewMember","params":["100%","","Pool%Load"]})";
  ASSERT_EQ(folder_.Run({"rpc"}, add + "\n").code, 0);
  ASSERT_EQ(folder_.Query("Select LastName From Members Where FirstName = '100%p'"),
            (std::vector<std::string>{"Pool%pLoad"}));
  EXPECT_EQ(folder_.Run({"check"}).out.find("name keys"), std::string::npos);
}

TEST_F(CheckCommand, SaysThatAFileCannotBeOpened) {
  const std::string text = folder_.Write("letter.mdb", std::string(9000, 'x'));
  const Outcome outcome = folder_.Run({"check", text});
  EXPECT_EQ(outcome.code, 2);
  EXPECT_NE(outcome.error.find("It is not an Access database."), std::string::npos) << outcome.error;
  EXPECT_EQ(folder_.Run({"check", folder_.Path("nothing.mdb")}).code, 2);
}

TEST_F(CheckCommand, FindsTheEndOfAFileMissing) {
  fs::resize_file(folder_.ClubFile(), fs::file_size(folder_.ClubFile()) - 8 * access::kPageSize);
  EXPECT_EQ(folder_.Run({"check"}).code, 1);
  fs::resize_file(folder_.ClubFile(), fs::file_size(folder_.ClubFile()) - 1);
  EXPECT_EQ(folder_.Run({"check"}).code, 2);
}

}  // namespace
}  // namespace tavi::host
