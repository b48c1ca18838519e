#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "SourceDirectory.h"
#include "composition/Composition.h"
#include "facade/MembershipDatabase.h"
#include "facade/ThreadStore.h"
#include "platform/ConnectionTo.h"
#include "platform/TemporaryFolder.h"
#include "store/Layout.h"

namespace tavi {
namespace {

using testing::TemporaryFolder;

constexpr const char* kClubFileName = "ClubMembers.mdb";
constexpr Date kNow{45366.5};

/// What docs/where-things-are.md tells a user, for a home of the test's own.
class WhereThingsAreTest : public ::testing::Test {
 protected:
  WhereThingsAreTest() {
    setenv("HOME", home_.Path().c_str(), 1);
    for (const char* name : {"XDG_CONFIG_HOME", "TAVI_DRIVES"}) unsetenv(name);
  }
  ~WhereThingsAreTest() override {
    SetThreadStore(nullptr);
    unsetenv("TAVI_DRIVES");
  }

  static std::string Page() {
    const std::ifstream file(TAVI_SOURCE_DIR "/docs/where-things-are.md");
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
  }
  /// The example of a settings file on the page.
  static std::string Example() {
    const std::string page = Page();
    const std::string start = "```xml\n";
    const std::size_t from = page.find(start) + start.size();
    return page.substr(from, page.find("```", from) - from);
  }
  std::string StartedFolder() const { return MembershipDatabase().DatabaseFolder(); }
  void SwitchLogOn() const { home_.MakeFolder(".local/share/tavimembership/c/Diagnostics"); }
  std::string Log() const { return home_.ReadFile(".local/share/tavimembership/c/Diagnostics/Tallyman.txt"); }
  /// An empty club's file in a folder below the home.
  void MakeFile(const std::string& folder) const {
    home_.MakeFolder(folder);
    const std::string path = home_.Path(folder) + "/" + kClubFileName;
    CreateEmptyDatabase(path, kNow);
    const auto connection = MakePlatform({kNow})->databaseProvider->Open(ConnectionTo(path));
    CreateBaseFile(*connection);
    connection->Close();
  }

  TemporaryFolder home_;
};

TEST_F(WhereThingsAreTest, TheClubsFileIsInTheDocumentsFolder) {
  MakeFile("Documents/Bridge/Database");
  const MembershipDatabase database;
  EXPECT_TRUE(database.DatabaseExists());
  EXPECT_EQ(database.DatabaseFileName(), home_.Path() + "/Documents\\Bridge\\Database\\ClubMembers.mdb");
}

TEST_F(WhereThingsAreTest, TheDocumentsFolderMayHaveAnotherName) {
  home_.WriteFile(".config/user-dirs.dirs", "XDG_DOCUMENTS_DIR=\"$HOME/Dokumente\"\n");
  EXPECT_EQ(StartedFolder(), home_.Path() + "/Dokumente\\Bridge\\Database");
}

TEST_F(WhereThingsAreTest, WithoutAHomeTheFolderIsOnTheDriveC) {
  unsetenv("HOME");
  setenv("TAVI_DRIVES", home_.Path().c_str(), 1);
  MakeFile("c/My Documents/Bridge/Database");
  const MembershipDatabase database;
  EXPECT_EQ(database.DatabaseFolder(), "C:\\My Documents\\Bridge\\Database");
  EXPECT_TRUE(database.DatabaseExists());
}

TEST_F(WhereThingsAreTest, TheFirstStartMakesTheSettingsFile) {
  EXPECT_EQ(StartedFolder(), home_.Path() + "/Documents\\Bridge\\Database");
  EXPECT_TRUE(home_.Has(".config/Madrigo/Settings.xml"));
}

TEST_F(WhereThingsAreTest, TheSettingsFileMayBeInAnotherFolder) {
  home_.WriteFile("configuration/Madrigo/Settings.xml", Example());
  setenv("XDG_CONFIG_HOME", home_.Path("configuration").c_str(), 1);
  EXPECT_EQ(StartedFolder(), "/srv/club/Smith & Sons");
  unsetenv("XDG_CONFIG_HOME");
  EXPECT_NE(StartedFolder(), "/srv/club/Smith & Sons");
}

TEST_F(WhereThingsAreTest, TheExampleOfASettingsFileWorks) {
  home_.WriteFile(".config/Madrigo/Settings.xml", Example());
  EXPECT_EQ(StartedFolder(), "/srv/club/Smith & Sons");
}

TEST_F(WhereThingsAreTest, ASingleEscapeIsReadToo) {
  std::string once = Example();
  const std::string twice = "&amp;amp;";
  once.replace(once.find(twice), twice.size(), "&amp;");
  home_.WriteFile(".config/Madrigo/Settings.xml", once);
  EXPECT_EQ(StartedFolder(), "/srv/club/Smith & Sons");
}

TEST_F(WhereThingsAreTest, ASettingsFileThatIsEmptyDamagedOrEnormousCountsAsNone) {
  std::string enormous = Example();
  enormous.insert(enormous.find("<software>"), "<!--" + std::string(std::size_t{4} << 20U, 'x') + "-->");
  std::string empty = Example();
  const std::string value = "/srv/club/Smith &amp;amp; Sons";
  empty.replace(empty.find(value), value.size(), "");
  for (const std::string& content : {std::string(), empty, Example().substr(0, 100), enormous}) {
    home_.WriteFile(".config/Madrigo/Settings.xml", content);
    EXPECT_EQ(StartedFolder(), home_.Path() + "/Documents\\Bridge\\Database");
  }
}

TEST_F(WhereThingsAreTest, TheLogIsOffUntilItsFolderIsThere) {
  static_cast<void>(StartedFolder());
  EXPECT_FALSE(home_.Has(".local/share/tavimembership"));
  SwitchLogOn();
  MembershipDatabase database;
  EXPECT_EQ(Log(), "TaviMembership Initialising\r\n");
  EXPECT_THROW(database.OpenDatabase(), Error);
  EXPECT_NE(Log().find("Failed to open membership database"), std::string::npos);
}

TEST_F(WhereThingsAreTest, TheLogAndTheDrivesMayBeElsewhere) {
  setenv("TAVI_DRIVES", home_.Path("drives").c_str(), 1);
  home_.MakeFolder("drives/c/Diagnostics");
  MakeFile("drives/d/Club");
  MembershipDatabase database;
  database.SetDatabaseFolder("D:\\Club");
  EXPECT_TRUE(database.DatabaseExists());
  EXPECT_EQ(home_.ReadFile("drives/c/Diagnostics/Tallyman.txt"), "TaviMembership Initialising\r\n");
}

TEST_F(WhereThingsAreTest, DriveLettersAreFoldersBelowTheUsersData) {
  MakeFile(".local/share/tavimembership/c/Club");
  MembershipDatabase database;
  for (const char* folder : {"C:\\Club", "c:/Club", "C:Club"}) {
    database.SetDatabaseFolder(folder);
    EXPECT_TRUE(database.DatabaseExists()) << folder;
  }
}

TEST_F(WhereThingsAreTest, TheLogOfChangesGoesWhenTheFileIsClosed) {
  MakeFile("club");
  MembershipDatabase database;
  database.SetDatabaseFolder(home_.Path("club"));
  database.OpenDatabase();
  database.AddNewMember("Ann", "", "Lee");
  EXPECT_TRUE(home_.Has("club/ClubMembers.mdb.redo"));
  database.CloseDatabase();
  EXPECT_FALSE(home_.Has("club/ClubMembers.mdb.redo"));
}

TEST_F(WhereThingsAreTest, ALogOfChangesThatDoesNotBelongIsSetAsideAndReported) {
  MakeFile("club");
  SwitchLogOn();
  const std::string notes(10'000, 'x');
  home_.WriteFile("club/ClubMembers.mdb.redo", notes);
  MembershipDatabase database;
  database.SetDatabaseFolder(home_.Path("club"));
  try {
    database.AddNewMember("Ann", "", "Lee");
    ADD_FAILURE() << "nobody was told";
  } catch (const Error& error) {
    EXPECT_NE(error.Description().find("ClubMembers.mdb.redo-setaside-1'"), std::string::npos) << error.Description();
  }
  EXPECT_EQ(home_.ReadFile("club/ClubMembers.mdb.redo-setaside-1"), notes);
  database.AddNewMember("Ann", "", "Lee");
}

TEST_F(WhereThingsAreTest, ThePageNamesThePlaces) {
  const std::string page = Page();
  for (const char* place : {"~/Documents/Bridge/Database/ClubMembers.mdb", "~/.config/Madrigo/Settings.xml",
                            "~/.local/share/tavimembership/c/Diagnostics/Tallyman.txt",
                            "mkdir -p ~/.local/share/tavimembership/c/Diagnostics", "`ClubMembers.mdb.redo`",
                            "`ClubMembers.mdb.redo-setaside-1`", "`TAVI_DRIVES`", "`XDG_CONFIG_HOME`"}) {
    EXPECT_NE(page.find(place), std::string::npos) << place;
  }
}

}  // namespace
}  // namespace tavi
