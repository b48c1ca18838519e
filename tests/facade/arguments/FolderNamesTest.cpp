#include <gtest/gtest.h>

#include <filesystem>

#include "composition/Composition.h"
#include "facade/MembershipDatabase.h"
#include "facade/ThreadStore.h"
#include "facade/support/FakeSurroundings.h"
#include "platform/TemporaryFolder.h"
#include "store/support/MemoryFolder.h"

namespace tavi {
namespace {

using namespace std::string_literals;
using testing::MemoryFolder;
using testing::TemporaryFolder;

/// Names of folders on the disk that hold a club with the member 1.
class FolderNamesTest : public ::testing::Test {
 protected:
  FolderNamesTest() {
    database_.SetDatabaseFolder(MakeClub("club"));
    database_.AddNewMember("Ann", "", "Lee");
  }
  ~FolderNamesTest() override {
    database_.CloseDatabase();
    SetThreadStore(nullptr);
  }

  std::shared_ptr<const Platform> OwnPlatform() const {
    auto platform = std::make_shared<Platform>(*MakePlatform({}));
    platform->shellFolders = testing::FoldersOfUser(folder_.Path("Documents"), folder_.Path("settings"));
    platform->settingsDocuments = std::make_shared<testing::MemorySettings>();
    return platform;
  }
  std::string MakeClub(const std::string& name) const {
    const MemoryFolder memory;
    memory.MakeClubFile("ClubMembers.mdb");
    folder_.WriteFile(name + "/ClubMembers.mdb", memory.ReadFile("ClubMembers.mdb"));
    return folder_.Path(name);
  }
  std::string OpeningError() {
    try {
      database_.OpenDatabase();
    } catch (const Error& error) {
      EXPECT_TRUE(error.Is(ErrorNumber::Component)) << error.Number();
      return error.Description();
    }
    return "opened";
  }

  TemporaryFolder folder_;
  MembershipDatabase database_{OwnPlatform()};
};

TEST_F(FolderNamesTest, AFolderNameWithANULNamesNoFile) {
  const std::string path = folder_.Path("club") + "/ClubMembers.mdb";
  database_.SetDatabaseFolder(path + "\0"s);
  EXPECT_FALSE(database_.DatabaseExists());
  EXPECT_EQ(OpeningError(), "Failed to open membership database " + path +
                                " \\ClubMembers.mdb:\r\n\r\nThe folder's name holds a NUL character; "
                                "choose another folder.");
}

TEST_F(FolderNamesTest, FoldersMayHaveNamesThatLookLikeConnectionStrings) {
  std::vector<std::string> names = {"a;Mode=Read;b", "O'Neil; Sons", " blank"};
  // Windows has no such names.
  if (std::filesystem::path::preferred_separator == '/') {
    for (const char* name : {"\"quoted\"; club", "both'kinds\";", "\";Data Source=club"}) names.emplace_back(name);
  }
  for (const std::string& name : names) {
    database_.SetDatabaseFolder(MakeClub(name));
    EXPECT_TRUE(database_.DatabaseExists());
    EXPECT_EQ(database_.AddNewMember("Bob", "", "Ray"), 1) << name << ": a club of its own";
    database_.SetEBUNumber(1, "77");
    EXPECT_EQ(database_.EnteredNumberToClubNumber(77), 1) << name;
  }
}

}  // namespace
}  // namespace tavi
