#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>

#include "access/catalog/Database.h"
#include "access/catalog/KeyLookup.h"
#include "access/file/DatabaseHeader.h"
#include "access/file/Format.h"
#include "access/file/PageAllocator.h"
#include "host/json/Json.h"
#include "host/support/Command.h"

namespace tavi::host {
namespace {

namespace fs = std::filesystem;

constexpr std::uint8_t kHyphenBehindSixElements = 0x1F;   // 7 + 4 * 6
constexpr std::uint8_t kHyphenBehindFiveElements = 0x1B;  // 7 + 4 * 5

/// A club's file with two members, and ways to hurt it.
class CheckCommand : public ::testing::Test {
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
  /// The first pages of a file in the older format.
  std::string FileOfAccess97() const {
    constexpr std::size_t kSmallPage = 2048;
    namespace header = access::format::header;
    access::Page page(access::format::kHeaderPage);
    std::ifstream(folder_.ClubFile(), std::ios::binary)
        .read(reinterpret_cast<char*>(page.AllMutable().data()), access::kPageSize);
    access::ToggleHeaderMask(page);
    page.Fill(header::kPasswordOffset, header::kPasswordSize, 0);
    page.SetU8(header::kVersionOffset, header::kVersionJet3);
    access::ApplyRc4(header::kMaskKey, page.AllMutable().subspan(header::kMaskOffset, header::kJet3MaskSize));
    std::string bytes(page.All().begin(), page.All().begin() + kSmallPage);
    bytes.resize(4 * kSmallPage);
    return bytes;
  }
  /// Puts a row under a key that another program would make, where letters that sort as two count as one place.
  void MoveToAnotherKey(const std::string& table, const std::string& index, const std::string& name) const {
    access::Database database(access::Pager::Open(access::NativeFileSystem(), folder_.ClubFile(), {}));
    access::WriteStatement statement(database.GetPager());
    const auto opened = database.OpenTable(table);
    const std::size_t place = static_cast<std::size_t>(
        std::ranges::find(opened->Indexes(), index, &access::Index::name) - opened->Indexes().begin());
    const access::RowPointer row = access::RowsWithValue(*opened, "Name", name).at(0);
    access::IndexEntry entry{opened->Encoder(place).RowKey(opened->Read(row)), row};
    ASSERT_TRUE(opened->Tree(place).Remove(entry));
    ASSERT_EQ(std::ranges::count(entry.key, kHyphenBehindSixElements), 1);
    std::ranges::replace(entry.key, kHyphenBehindSixElements, kHyphenBehindFiveElements);
    opened->Tree(place).Insert(entry);
    statement.Commit();
  }
  /// Takes a page that nobody will use.
  void LeakAPage() const {
    access::Database database(access::Pager::Open(access::NativeFileSystem(), folder_.ClubFile(), {}));
    access::WriteStatement statement(database.GetPager());
    static_cast<void>(access::PageAllocator(database.GetPager()).Allocate());
    statement.Commit();
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
  const auto json = Json::Parse(outcome.out);
  EXPECT_EQ(json["file"], folder_.ClubFile());
  EXPECT_EQ(json["sound"], false);
  EXPECT_EQ(json["findings"].size(), 1U);
  EXPECT_EQ(json["findings"][0]["part"], "counter");
  EXPECT_EQ(json["findings"][0]["table"], "Members");
  EXPECT_GT(json["rows"].Number(), 2);
}

TEST_F(CheckCommand, TellsOfNameKeysThatAreNotTheOnesMadeNow) {
  EXPECT_EQ(folder_.Run({"check"}).out.find("name keys"), std::string::npos);
  ASSERT_EQ(folder_.Run({"sql", "Update Members Set FuzzedLastName = 'OLDKEY' Where LastName = 'Dee'"}).code, 0);
  const Outcome outcome = folder_.Run({"check"});
  EXPECT_EQ(outcome.code, 0);
  EXPECT_NE(outcome.out.find("The stored name keys of 1 of 2 members"), std::string::npos) << outcome.out;
  EXPECT_EQ(Json::Parse(folder_.Run({"check", "--json"}).out)["staleNameKeys"], 1);
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
  const auto json = Json::Parse(folder_.Run({"check", "--json"}).out);
  EXPECT_EQ(json["rowsWithoutNumbers"].size(), 3U);
  EXPECT_EQ(json["moreRowsWithoutNumbers"], 0);
  EXPECT_EQ(json["sound"], true);
}

TEST_F(CheckCommand, ListsRowsWhoseNumbersCannotBeRead) {
  for (const char* statement :
       {"Drop Table Results",
        "Create Table Results (Competition Long, Player Long, Partner Long, ActualPercentage Text (20))",
        "Insert Into Results Values (3, 1, 2, '55.5')", "Insert Into Results Values (4, 1, 2, 'won')"}) {
    ASSERT_EQ(folder_.Run({"sql", statement}).code, 0) << statement;
  }
  const auto json = Json::Parse(folder_.Run({"check", "--json"}).out);
  EXPECT_EQ(json["rowsWithoutNumbers"],
            Json::Array({"Results: player 1 with partner 2 in competition 4 has no readable percentage."}));
}

// The members' keys were said to be stale for ever: the escapes of their names were taken for letters.
TEST_F(CheckCommand, KeysOfNamesThatAreStoredWithEscapesAreCurrent) {
  const std::string add = R"({"jsonrpc":"2.0","method":"AddNewMember","params":["100%","","Pool%Load"]})";
  ASSERT_EQ(folder_.Run({"rpc"}, add + "\n").code, 0);
  ASSERT_EQ(folder_.Query("Select LastName From Members Where FirstName = '100%p'"),
            (std::vector<std::string>{"Pool%pLoad"}));
  EXPECT_EQ(folder_.Run({"check"}).out.find("name keys"), std::string::npos);
}

TEST_F(CheckCommand, SaysThatAFileOfAccess97IsNotCheckedRatherThanDamaged) {
  const std::string old = folder_.Write("old.mdb", FileOfAccess97());
  const Outcome outcome = folder_.Run({"check", old});
  EXPECT_EQ(outcome.code, 2);
  EXPECT_EQ(outcome.out, "");
  EXPECT_NE(outcome.error.find("is in the format of Access 97, which is only read here and cannot be checked"),
            std::string::npos)
      << outcome.error;
}

// A statement missed rows that another program had entered under keys of its own.
TEST_F(CheckCommand, AnIndexWithAnotherProgramsKeysIsRemarkedOnNotSearchedAndMadeAnewBeforeAWrite) {
  ASSERT_EQ(folder_
                .Run({"sql"},
                     "Create Table People (Name Text(30));\nCreate Index ByName On People (Name);\n"
                     "Insert Into People Values ('Gro\u00DFe-Brauer');\n")
                .code,
            0);
  MoveToAnotherKey("People", "ByName", "Gro\u00DFe-Brauer");
  const Outcome check = folder_.Run({"check"});
  EXPECT_EQ(check.code, 0);
  EXPECT_NE(check.out.find("holds 1 of its 1 keys in an order other than this program's."), std::string::npos)
      << check.out;
  const std::string find = "Select Name From People Where Name = 'Gro\u00DFe-Brauer'";
  EXPECT_EQ(folder_.Query(find).size(), 1U);
  const std::vector<std::string> explain = {"sql", "--explain", find};
  EXPECT_EQ(folder_.Run(explain).out.find("index ByName"), std::string::npos);

  ASSERT_EQ(folder_.Run({"sql", "Insert Into People Values ('Zed')"}).code, 0);
  EXPECT_EQ(folder_.Run({"check"}).out.find("Remark, harmless"), std::string::npos);
  EXPECT_EQ(folder_.Query(find).size(), 1U);
}

TEST_F(CheckCommand, ASoundFileWithRemarksIsSound) {
  LeakAPage();
  EXPECT_EQ(folder_.Run({"check"}).out.find("Remark, harmless"), std::string::npos);
  const Outcome strict = folder_.Run({"check", "--strict"});
  EXPECT_EQ(strict.code, 0);
  EXPECT_NE(strict.out.find("Remark, harmless: Page "), std::string::npos) << strict.out;
  EXPECT_NE(strict.out.find("ClubMembers.mdb: sound ("), std::string::npos) << strict.out;
  const auto json = Json::Parse(folder_.Run({"check", "--strict", "--json"}).out);
  EXPECT_EQ(json["sound"], true);
  EXPECT_EQ(json["findings"].size(), 0U);
  ASSERT_EQ(json["remarks"].size(), 1U);
  EXPECT_EQ(json["remarks"][0]["part"], "file");
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
