// Clubs in folders, and with files, as there are on Windows.
#include <gtest/gtest.h>
#include <windows.h>

#include "composition/Composition.h"
#include "facade/MembershipDatabase.h"
#include "facade/ThreadStore.h"
#include "platform/ConnectionTo.h"
#include "platform/TemporaryFolder.h"
#include "platform/values/WideText.h"
#include "store/Layout.h"
#include "util/Paths.h"

namespace tavi {
namespace {

using windows::ToWidePath;

constexpr Date kNow{45931.0};

class ClubFoldersTest : public ::testing::Test {
 protected:
  ~ClubFoldersTest() override {
    SetThreadStore(nullptr);
    // The standard library does not reach the long ones.
    for (const std::string& file : files_) ::DeleteFileW(ToWidePath(file).c_str());
    for (auto folder = folders_.rbegin(); folder != folders_.rend(); ++folder) {
      EXPECT_NE(::RemoveDirectoryW(ToWidePath(*folder).c_str()), 0) << *folder << " is not empty";
    }
  }

  /// Makes a folder in another one.
  std::string MakeFolder(const std::string& parent, const std::string& name) {
    folders_.push_back(parent + "\\" + name);
    EXPECT_NE(::CreateDirectoryW(ToWidePath(folders_.back()).c_str(), nullptr), 0) << folders_.back();
    return folders_.back();
  }
  /// Makes an empty club's file in a folder, and a public object on it.
  std::unique_ptr<MembershipDatabase> MakeClub(const std::string& folder) {
    files_.push_back(folder + "\\ClubMembers.mdb");
    CreateEmptyDatabase(files_.back(), kNow);
    const auto connection = platform_->databaseProvider->Open(ConnectionTo("\"" + files_.back() + "\""));
    CreateBaseFile(*connection);
    connection->Close();
    auto club = std::make_unique<MembershipDatabase>(platform_);
    club->SetDatabaseFolder(folder);
    return club;
  }
  /// What another program would find under the folder's name as the system spells it.
  [[nodiscard]] bool HasFile(const std::string& folder, const std::string& name) const {
    return ::GetFileAttributesW(ToWidePath(folder + "\\" + name).c_str()) != INVALID_FILE_ATTRIBUTES;
  }
  static std::string FailureOf(const std::function<void()>& action) {
    try {
      action();
    } catch (const Error& error) {
      return error.Description();
    }
    return "";
  }

  testing::TemporaryFolder home_;
  std::shared_ptr<const Platform> platform_ = MakePlatform({kNow});
  std::vector<std::string> folders_;
  std::vector<std::string> files_;
};

TEST_F(ClubFoldersTest, NamesInAllScriptsAreUsedAsTheyAre) {
  for (const char* name : {"Bridgeklubb Åse Ø", "Клуб", "橋牌", "\xF0\x9F\x82\xA1 Aces", "a b; c='d'"}) {
    const std::string folder = MakeFolder(home_.Path(), name);
    const auto club = MakeClub(folder);
    ASSERT_TRUE(club->DatabaseExists()) << name;
    club->OpenDatabase();
    EXPECT_EQ(club->AddNewMember("Zoë", "", "Łukasz"), 1) << name;
    EXPECT_TRUE(HasFile(folder, "ClubMembers.mdb.redo")) << name;
    club->CloseDatabase();
    EXPECT_FALSE(HasFile(folder, "ClubMembers.mdb.redo")) << name;
    EXPECT_EQ(club->FindMember("Zoë Łukasz"), 1) << name;
  }
}

TEST_F(ClubFoldersTest, APathMayBeLongerThanOldProgramsAllow) {
  std::string folder = home_.Path();
  while (folder.size() < 600) folder = MakeFolder(folder, std::string(90, 'x'));
  const auto club = MakeClub(folder);
  ASSERT_TRUE(club->DatabaseExists());
  club->OpenDatabase();
  EXPECT_EQ(club->AddNewMember("Ann", "", "Lee"), 1);
  club->CloseDatabase();
  EXPECT_EQ(club->FindMember("Ann Lee"), 1);
  EXPECT_FALSE(HasFile(folder, "ClubMembers.mdb.redo"));
}

TEST_F(ClubFoldersTest, SlashesAndOtherCapitalsLeadToTheSameFile) {
  const std::string folder = MakeFolder(home_.Path(), "Club");
  const auto club = MakeClub(folder);
  club->AddNewMember("Ann", "", "Lee");
  std::string other = folder;
  std::replace(other.begin(), other.end(), '\\', '/');
  other.replace(other.size() - 4, 4, "CLUB");
  club->SetDatabaseFolder(other);
  EXPECT_TRUE(club->DatabaseExists());
  EXPECT_EQ(club->FindMember("Ann Lee"), 1);
  club->SetDatabaseFolder(folder + "\\");
  EXPECT_EQ(club->FindMember("Ann Lee"), 1);
}

TEST_F(ClubFoldersTest, AFileWithTheReadOnlyAttributeIsReadAndNotWritten) {
  const auto club = MakeClub(MakeFolder(home_.Path(), "Club"));
  club->AddNewMember("Ann", "", "Lee");
  club->CloseDatabase();
  const std::wstring file = ToWidePath(files_.back());
  ::SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_READONLY);
  EXPECT_EQ(club->FindMember("Ann Lee"), 1);
  EXPECT_NE(FailureOf([&] { club->AddNewMember("Bob", "", "Lee"); }), "");
  club->CloseDatabase();
  ::SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_NORMAL);
  EXPECT_EQ(club->AddNewMember("Bob", "", "Lee"), 2);
}

TEST_F(ClubFoldersTest, AFileThatAnotherProgramHasToItselfIsSaidToBeInUse) {
  const auto club = MakeClub(MakeFolder(home_.Path(), "Club"));
  const HANDLE alone = ::CreateFileW(ToWidePath(files_.back()).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                     OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  ASSERT_NE(alone, INVALID_HANDLE_VALUE);
  const std::string failure = FailureOf([&] { club->OpenDatabase(); });
  EXPECT_NE(failure.find("file already in use"), std::string::npos) << failure;
  ::CloseHandle(alone);
  EXPECT_EQ(club->AddNewMember("Ann", "", "Lee"), 1);
}

TEST_F(ClubFoldersTest, ByDefaultTheClubIsInTheCommonDocuments) {
  const MembershipDatabase database(platform_);
  EXPECT_EQ(database.DatabaseFolder(),
            platform_->shellFolders->FolderPath(kCommonDocumentsFolder).value_or("none") + "\\Bridge\\Database");
}

}  // namespace
}  // namespace tavi
