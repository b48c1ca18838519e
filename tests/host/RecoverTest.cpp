#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "access/file/FileSystem.h"
#include "composition/Composition.h"
#include "host/json/Json.h"
#include "host/support/Command.h"
#include "platform/ConnectionTo.h"
#include "platform/Matchers.h"
#include "store/support/DamagedBytes.h"

namespace tavi::host {
namespace {

using testing::DamagedBytes;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace fs = std::filesystem;

class Recover : public ::testing::Test {
 protected:
  Recover() {
    std::string csv =
        "club_number,ebu_number,title,first,initials,last,known_as,sex,email,phone,mobile,join_date,"
        "member_type,house,address,town,postcode,active\n";
    for (int number = 1; number <= 40; ++number) {
      csv += std::to_string(number) + ",,,Ann,,Lee of Ashby " + std::to_string(number) + "," + std::string(40, 'k') +
             ",F,,,,,,," + std::string(50, 'a') + ",,,y\n";
    }
    EXPECT_EQ(folder_.RunIn(folder_.Path("old"), {"new", "--name", "Ashby Bridge Club"}).code, 0);
    const std::string members = folder_.Write("members.csv", csv);
    EXPECT_EQ(folder_.RunIn(folder_.Path("old"), {"members", "import", members}).code, 0);
  }

  [[nodiscard]] std::string OldFile() const { return folder_.Path("old/ClubMembers.mdb"); }
  /// Zeroes a page of the members; returns how many rows stood there.
  std::size_t LoseAPage() const {
    DamagedBytes bytes(ReadFile(OldFile()));
    const std::vector<std::size_t> pages = bytes.DataPagesOf(bytes.DefinitionOfTableWith("Lee of Ashby 1"));
    EXPECT_GE(pages.size(), 3U);
    const std::size_t lost = bytes.RowsOn(pages.at(1));
    bytes.ZeroPage(pages.at(1));
    folder_.Write("old/ClubMembers.mdb", bytes.Content());
    return lost;
  }
  [[nodiscard]] std::vector<std::string> NamesInClub() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder_.Club())) names.push_back(entry.path().filename().string());
    return names;
  }
  [[nodiscard]] std::size_t MemberCount() const { return folder_.Query("Select MembershipNumber From Members").size(); }

  CommandFolder folder_;
};

TEST_F(Recover, ASoundFileIsSavedWhollyIntoANewOne) {
  const Outcome outcome = folder_.Run({"recover", OldFile()});
  EXPECT_EQ(outcome.code, 0) << outcome.error;
  EXPECT_THAT(outcome.out, HasSubstr("Table\tFound\tSaved\tLost\tValues lost\tDamage\n"));
  EXPECT_THAT(outcome.out, HasSubstr("Members\t40\t40\t0\t0\t\n"));
  EXPECT_THAT(outcome.error, IsEmpty()) << "no progress outside of a terminal";
  EXPECT_EQ(MemberCount(), 40U);
  EXPECT_THAT(folder_.Query("Select ClubName From ClubNames"), ElementsAre("Ashby Bridge Club"));
}

TEST_F(Recover, WhatIsLostIsCountedAndSaidInWords) {
  const std::size_t lost = LoseAPage();
  const Outcome outcome = folder_.Run({"recover", OldFile()});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_THAT(outcome.out, HasSubstr("Members\t40\t" + std::to_string(40 - lost) + "\t" + std::to_string(lost) +
                                     "\t0\tA row could not be saved: The database is damaged: page "));
  EXPECT_EQ(MemberCount(), 40 - lost);
}

TEST_F(Recover, TheReportIsGivenAsJson) {
  const std::size_t lost = LoseAPage();
  const Outcome outcome = folder_.Run({"recover", OldFile(), "--json"});
  const Json report = Json::Parse(outcome.out);
  ASSERT_EQ(report["Tables"].size(), 9U);
  const Json& members = report["Tables"][5];
  EXPECT_EQ(members["Table"], "Members");
  EXPECT_EQ(members["Found"], 40);
  EXPECT_EQ(members["Lost"], lost);
  EXPECT_THAT(members["Damage"][0].Text(), HasSubstr("damaged"));
  EXPECT_TRUE(report["Problems"].empty());
}

TEST_F(Recover, AFileWithDataIsEmptiedOnlyWhenAskedFor) {
  ASSERT_EQ(folder_.Run({"new", "--name", "Current"}).code, 0);
  const Outcome refused = folder_.Run({"recover", OldFile()});
  EXPECT_EQ(refused.code, 2);
  EXPECT_THAT(refused.error, HasSubstr("--replace"));
  EXPECT_THAT(folder_.Query("Select ClubName From ClubNames"), ElementsAre("Current"));
  EXPECT_EQ(folder_.Run({"recover", OldFile(), "--replace"}).code, 0);
  EXPECT_THAT(folder_.Query("Select ClubName From ClubNames"), ElementsAre("Ashby Bridge Club"));
}

TEST_F(Recover, AnEmptyFileIsUsedAsItIs) {
  ASSERT_EQ(folder_.Run({"new"}).code, 0);
  EXPECT_EQ(folder_.Run({"recover", OldFile()}).code, 0);
  EXPECT_EQ(MemberCount(), 40U);
}

TEST_F(Recover, TheClubsOwnFileIsRefusedUnderWhateverName) {
  std::error_code noLinks;
  fs::create_directory_symlink(folder_.Path("old"), folder_.Path("link"), noLinks);
#ifdef _WIN32
  if (noLinks) GTEST_SKIP() << "users of Windows need a right of their own to make links";
#endif
  ASSERT_FALSE(noLinks) << noLinks.message();
  const std::string before = ReadFile(OldFile());
  const Outcome outcome =
      folder_.RunIn(folder_.Path("old"), {"recover", "--replace", folder_.Path("link/ClubMembers.mdb")});
  EXPECT_EQ(outcome.code, 2);
  EXPECT_THAT(outcome.error, HasSubstr("is the club's own file"));
  EXPECT_EQ(ReadFile(OldFile()), before);
}

TEST_F(Recover, WhatIsNoDatabaseLeavesNoNewFile) {
  EXPECT_EQ(folder_.Run({"recover", folder_.Path("missing.mdb")}).code, 2);
  const Outcome outcome = folder_.Run({"recover", folder_.Write("none.mdb", "no database")});
  EXPECT_EQ(outcome.code, 2);
  EXPECT_THAT(outcome.error, HasSubstr("Unrecognized database format '" + folder_.Path("none.mdb") + "'"));
  EXPECT_FALSE(fs::exists(folder_.Club()));
}

TEST_F(Recover, AFileThatIsNoClubsIsRefusedAndLeavesNothing) {
  const std::string other = folder_.Path("other.mdb");
  CreateEmptyDatabase(other, Date{45000});
  const auto connection = MakePlatform({})->databaseProvider->Open(ConnectionTo(other));
  connection->Execute("Create Table Albums (Title Text (50))");
  connection->Close();
  const Outcome outcome = folder_.Run({"recover", other});
  EXPECT_EQ(outcome.code, 2);
  EXPECT_THAT(outcome.error, HasSubstr(other + " is no club's file"));
  EXPECT_FALSE(fs::exists(folder_.Club()));
  ASSERT_EQ(folder_.Run({"new", "--name", "Current"}).code, 0);
  EXPECT_EQ(folder_.Run({"recover", "--replace", other}).code, 2);
  EXPECT_THAT(folder_.Query("Select ClubName From ClubNames"), ElementsAre("Current"));
  EXPECT_THAT(NamesInClub(), ElementsAre("ClubMembers.mdb"));
}

TEST_F(Recover, WhatAStoppedRunLeftIsClearedByTheNextOne) {
  fs::create_directories(folder_.Path("club/ClubMembers.mdb.work/deep"));
  for (const char* name : {"ClubMembers.mdb", "ClubMembers.mdb.redo", "old.mdb", "lock", "deep/old.mdb"})
    folder_.Write(std::string("club/ClubMembers.mdb.work/") + name, "left");
  EXPECT_EQ(folder_.Run({"recover", OldFile()}).code, 0);
  EXPECT_EQ(MemberCount(), 40U);
  EXPECT_THAT(NamesInClub(), ElementsAre("ClubMembers.mdb"));
}

TEST_F(Recover, WhatAStoppedRunLeftIsClearedByWhateverUsesTheClub) {
  ASSERT_EQ(folder_.Run({"new"}).code, 0);
  for (const char* command : {"members", "info", "handicaps"}) {
    fs::create_directories(folder_.Path("club/ClubMembers.mdb.work/deep"));
    for (const char* name : {"ClubMembers.mdb", "going-to-its-place", "old.mdb", "lock", "deep/old.mdb"})
      folder_.Write(std::string("club/ClubMembers.mdb.work/") + name, "left");
    EXPECT_EQ(folder_.Run({command}).code, 0);
    EXPECT_THAT(NamesInClub(), ElementsAre("ClubMembers.mdb")) << command;
  }
}

TEST_F(Recover, CanBeRepeatedUntilTheClubIsChanged) {
  ASSERT_EQ(folder_.Run({"recover", OldFile()}).code, 0);
  fs::create_directories(folder_.Path("club/ClubMembers.mdb.work"));
  for (const char* name : {"old.mdb", "lock"}) folder_.Write(std::string("club/ClubMembers.mdb.work/") + name, "left");
  EXPECT_EQ(folder_.Run({"recover", OldFile()}).code, 0) << "without --replace";
  EXPECT_THAT(NamesInClub(), ElementsAre("ClubMembers.mdb"));
  EXPECT_EQ(folder_.Run({"sql", "Update Members Set Notes = 'New' Where MembershipNumber = 1"}).code, 0);
  EXPECT_EQ(folder_.Run({"recover", OldFile()}).code, 2);
  EXPECT_THAT(folder_.Query("Select Distinct Notes From Members Where MembershipNumber = 1"), ElementsAre("New"));
  EXPECT_THAT(NamesInClub(), ElementsAre("ClubMembers.mdb"));
}

TEST_F(Recover, AFolderThatALinkOfTheWorkFoldersNameLeadsToIsLeftAlone) {
  ASSERT_EQ(folder_.Run({"new"}).code, 0);
  fs::create_directories(folder_.Path("others"));
  for (const char* name : {"lock", "precious"}) folder_.Write(std::string("others/") + name, "mine");
  std::error_code noLinks;
  fs::create_directory_symlink(folder_.Path("others"), folder_.Path("club/ClubMembers.mdb.work"), noLinks);
#ifdef _WIN32
  if (noLinks) GTEST_SKIP() << "users of Windows need a right of their own to make links";
#endif
  EXPECT_EQ(folder_.Run({"members"}).code, 0);
  EXPECT_TRUE(fs::exists(folder_.Path("others/precious")));
  EXPECT_TRUE(fs::exists(folder_.Path("others/lock")));
}

TEST_F(Recover, AnotherRunThatIsStillWorkingIsLeftAlone) {
  fs::create_directories(folder_.Path("club/ClubMembers.mdb.work"));
  const std::string lock = folder_.Write("club/ClubMembers.mdb.work/lock", "");
  const auto file = access::NativeFileSystem()->Open(lock, access::FileSystem::OpenMode::ReadWrite);
  ASSERT_TRUE(file->TryLock(0, 1, access::File::LockKind::Exclusive));
  const std::string work = folder_.Write("club/ClubMembers.mdb.work/old.mdb", "in use");
  EXPECT_NE(folder_.Run({"members"}).code, 0);
  for (const Outcome& outcome : {folder_.Run({"recover", OldFile()}), folder_.Run({"new"})}) {
    EXPECT_NE(outcome.code, 0);
    EXPECT_THAT(outcome.error, HasSubstr("another program is making or recovering this club"));
  }
  EXPECT_EQ(ReadFile(work), "in use");
}

TEST_F(Recover, AClubFileThatIsDamagedItselfIsReplacedAllTheSame) {
  ASSERT_EQ(folder_.Run({"new", "--name", "Current"}).code, 0);
  DamagedBytes bytes(ReadFile(folder_.ClubFile()));
  bytes.ZeroPage(bytes.DefinitionOfTableWith("Current"));
  folder_.Write("club/ClubMembers.mdb", bytes.Content());
  const Outcome outcome = folder_.Run({"recover", "--replace", OldFile()});
  EXPECT_EQ(outcome.code, 0) << outcome.error;
  EXPECT_THAT(outcome.error, HasSubstr("has been made anew"));
  EXPECT_EQ(MemberCount(), 40U);
  EXPECT_EQ(folder_.Run({"check", "--strict"}).code, 0);
}

TEST_F(Recover, AClubFileThatIsInUseStaysAsItIs) {
  ASSERT_EQ(folder_.Run({"new", "--name", "Current"}).code, 0);
  const auto connection = MakePlatform({})->databaseProvider->Open(ConnectionTo(folder_.ClubFile()));
  const Outcome outcome = folder_.Run({"recover", "--replace", OldFile()});
  EXPECT_EQ(outcome.code, 2);
  EXPECT_THAT(outcome.error, HasSubstr("in use"));
  connection->Close();
  EXPECT_THAT(folder_.Query("Select ClubName From ClubNames"), ElementsAre("Current"));
}

TEST_F(Recover, NegativeNumbersOfAnOldFileAreNumberedAnewAndFollowed) {
  for (const char* statement :
       {"Insert Into Competitions (ID, CompetitionName) Values (-1073741824, 'Tuesday')",
        "Insert Into MasterPoints (ID, CompetitionID, MembershipNumber) Values (-12, -1073741824, 7)",
        "Insert Into Results (Competition, Player) Values (-1073741824, 7)"})
    ASSERT_EQ(folder_.RunIn(folder_.Path("old"), {"sql", statement}).code, 0);
  const Outcome outcome = folder_.Run({"recover", OldFile()});
  EXPECT_EQ(outcome.code, 0) << outcome.out << outcome.error;
  EXPECT_THAT(folder_.Query("Select ID From Competitions"), ElementsAre("1"));
  EXPECT_THAT(folder_.Query("Select Competition From Results"), ElementsAre("1"));
  EXPECT_THAT(folder_.Query("Select CompetitionID From MasterPoints Where ID = 1"), ElementsAre("1"));
}

TEST_F(Recover, RowsThatATableOfTheClubsOwnRefersToStayAndAreSaid) {
  ASSERT_EQ(folder_.Run({"new"}).code, 0);
  for (const char* statement : {"Insert Into Competitions (CompetitionName) Values ('Gala')",
                                "Create Table Prizes (Event Long Constraint OfEvent References Competitions (ID))",
                                "Insert Into Prizes Values (1)"})
    ASSERT_EQ(folder_.Run({"sql", statement}).code, 0);
  ASSERT_EQ(
      folder_.RunIn(folder_.Path("old"), {"sql", "Insert Into Competitions (CompetitionName) Values ('Cup')"}).code, 0);
  const Outcome outcome = folder_.Run({"recover", "--replace", OldFile()});
  EXPECT_EQ(outcome.code, 0) << outcome.error;
  EXPECT_THAT(outcome.out, HasSubstr("could not be deleted and are still there: 1. "));
  EXPECT_THAT(folder_.Query("Select CompetitionName From Competitions, Prizes Where ID = Event"), ElementsAre("Gala"));
  EXPECT_THAT(folder_.Query("Select CompetitionName From Competitions Order By ID"), ElementsAre("Gala", "Cup"));
}

TEST_F(Recover, AClubWithoutStoredHandicapSettingsGetsThoseOfANewOne) {
  ASSERT_EQ(folder_.RunIn(folder_.Path("old"), {"sql", "Delete From HandicalcSettings"}).code, 0);
  EXPECT_EQ(folder_.Run({"recover", OldFile()}).code, 0);
  EXPECT_THAT(folder_.Query("Select SamePartnerWeighting From HandicalcSettings Where Disabled = 0"),
              ElementsAre("50"));
}

TEST_F(Recover, StoredHandicapSettingsAreKept) {
  ASSERT_EQ(folder_.RunIn(folder_.Path("old"), {"sql", "Update HandicalcSettings Set MaxWeeks = 26"}).code, 0);
  EXPECT_EQ(folder_.Run({"recover", OldFile()}).code, 0);
  EXPECT_THAT(folder_.Query("Select MaxWeeks From HandicalcSettings"), ElementsAre("26"));
}

TEST_F(Recover, TheGoverningBodysListStays) {
  ASSERT_EQ(folder_.Run({"new"}).code, 0);
  ASSERT_EQ(folder_.Run({"sql", "Insert Into EBUMembershipList (EBUNumber, LastName) Values (7, 'Listed')"}).code, 0);
  EXPECT_EQ(folder_.Run({"recover", OldFile()}).code, 0);
  EXPECT_THAT(folder_.Query("Select LastName From EBUMembershipList"), ElementsAre("Listed"));
}

TEST_F(Recover, AFileCutInTheMiddleOfAPageIsReadToItsEnd) {
  DamagedBytes bytes(ReadFile(OldFile()));
  const std::vector<std::size_t> pages = bytes.DataPagesOf(bytes.DefinitionOfTableWith("Lee of Ashby 1"));
  bytes.CutBefore(pages.back(), 3000);
  const Outcome outcome = folder_.Run({"recover", folder_.Write("cut.mdb", bytes.Content())});
  EXPECT_EQ(outcome.code, 1) << outcome.error;
  std::size_t onWholePages = 0;
  for (const std::size_t page : pages) onWholePages += page == pages.back() ? 0 : bytes.RowsOn(page);
  EXPECT_GE(MemberCount(), onWholePages);
  EXPECT_LT(MemberCount(), 40U);
  EXPECT_EQ(ReadFile(folder_.Path("cut.mdb")), bytes.Content());
}

TEST_F(Recover, AnOldFileWithALogKeepsBoth) {
  for (const std::string& content : {std::string("a log of something else"), std::string(500, 'x')}) {
    const std::string log = folder_.Write("old/ClubMembers.mdb.redo", content);
    const std::string before = ReadFile(OldFile());
    const Outcome outcome = folder_.Run({"recover", "--replace", OldFile()});
    EXPECT_EQ(outcome.code, 0) << outcome.error;
    EXPECT_NE(outcome.error.find("the log beside " + OldFile()), std::string::npos) << outcome.error;
    EXPECT_EQ(ReadFile(OldFile()), before);
    EXPECT_EQ(ReadFile(log), content);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder_.Path("old")), {}), 2);
  }
}

TEST_F(Recover, WhatACrashLeftInTheLogIsSavedAndStaysThere) {
  const auto connection = MakePlatform({})->databaseProvider->Open(ConnectionTo(OldFile()));
  connection->Execute("Insert into Members (MembershipNumber, LastName) Values (99, 'in the log')");
  const std::string file = ReadFile(OldFile());
  const std::string log = ReadFile(OldFile() + ".redo");
  ASSERT_FALSE(log.empty());
  connection->Close();
  folder_.Write("old/ClubMembers.mdb", file);
  folder_.Write("old/ClubMembers.mdb.redo", log);
  EXPECT_EQ(folder_.Run({"recover", OldFile()}).code, 0);
  EXPECT_EQ(MemberCount(), 41U);
  EXPECT_EQ(ReadFile(OldFile()), file);
  EXPECT_EQ(ReadFile(OldFile() + ".redo"), log);
}

TEST_F(Recover, AFirstPageThatIsGoneCostsNothing) {
  DamagedBytes bytes(ReadFile(OldFile()));
  bytes.ZeroPage(0);
  const Outcome outcome = folder_.Run({"recover", folder_.Write("headless.mdb", bytes.Content())});
  EXPECT_EQ(outcome.code, 0) << outcome.error;
  EXPECT_EQ(MemberCount(), 40U);
}

TEST_F(Recover, AFileThatMayOnlyBeReadIsRead) {
  fs::permissions(OldFile(), fs::perms::owner_read);
  EXPECT_EQ(folder_.Run({"recover", OldFile()}).code, 0);
  EXPECT_EQ(MemberCount(), 40U);
}

TEST_F(Recover, TheOldFileMustBeNamed) {
  EXPECT_EQ(folder_.Run({"recover"}).code, 2);
}

}  // namespace
}  // namespace tavi::host
