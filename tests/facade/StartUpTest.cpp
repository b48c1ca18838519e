#include <gtest/gtest.h>

#include <thread>

#include "facade/MembershipDatabase.h"
#include "facade/ThreadStore.h"
#include "facade/support/FakeSurroundings.h"
#include "platform/TemporaryFolder.h"
#include "platform/support/ThisSystem.h"
#include "store/support/FakeFile.h"
#include "util/Paths.h"

namespace tavi {
namespace {

using testing::FakeFolders;
using testing::FakePlatform;
using testing::FakeRegistryValues;
using testing::TemporaryFolder;

constexpr const char* kLastResort = "C:\\My Documents\\Bridge\\Database";
constexpr auto kMachine = RegistryRoot::LocalMachine;
constexpr auto kUser = RegistryRoot::CurrentUser;

/// Starts public objects in surroundings that a test arranges, the log switched on.
class StartUpTest : public ::testing::Test {
 protected:
  StartUpTest() {
    fake_.platform->shellFolders = folders_;
    fake_.platform->registry = registry_;
    fake_.platform->settingsDocuments = std::make_shared<testing::MemorySettings>();
    // The settings file has a folder, so that machine-wide settings can be copied into it.
    folders_->folders[kCommonApplicationDataFolder | 0x8000] = folder_.Path();
  }
  ~StartUpTest() override { SetThreadStore(nullptr); }

  std::string StartedFolder() { return MembershipDatabase(fake_.platform).DatabaseFolder(); }
  void PutSetting(RegistryRoot root, const std::string& folder) { registry_->values[{root, "DB Folder"}] = folder; }
  std::string Log() { return log_.Text(); }

  testing::DiagnosticsLog log_;
  TemporaryFolder folder_;
  FakePlatform fake_;
  std::shared_ptr<FakeFolders> folders_ = std::make_shared<FakeFolders>();
  std::shared_ptr<FakeRegistryValues> registry_ = std::make_shared<FakeRegistryValues>();
};

TEST_F(StartUpTest, WithoutSpecialFoldersAndSettingsTheFolderOfLastResortIsTaken) {
  EXPECT_EQ(StartedFolder(), kLastResort);
}

TEST_F(StartUpTest, TheCommonDocumentsFolderIsTakenFirst) {
  folders_->folders = {{kCommonDocumentsFolder, "D:\\All"}, {kPersonalFolder, "D:\\Mine"}};
  EXPECT_EQ(StartedFolder(), "D:\\All\\Bridge\\Database");
}

TEST_F(StartUpTest, ThePersonalFolderIsTakenWhereThereAreNoCommonDocuments) {
  folders_->folders[kPersonalFolder] = "D:\\Mine\\";
  EXPECT_EQ(StartedFolder(), "D:\\Mine\\Bridge\\Database");
}

TEST_F(StartUpTest, AnEmptyAnswerForTheCommonDocumentsLeadsToThePersonalFolder) {
  folders_->folders = {{kCommonDocumentsFolder, ""}, {kPersonalFolder, "D:\\Mine"}};
  EXPECT_EQ(StartedFolder(), "D:\\Mine\\Bridge\\Database");
}

TEST_F(StartUpTest, AMachineWideSettingOverridesTheSpecialFolder) {
  folders_->folders[kCommonDocumentsFolder] = "D:\\All";
  PutSetting(kMachine, "E:\\Club");
  EXPECT_EQ(StartedFolder(), "E:\\Club");
}

TEST_F(StartUpTest, ASettingIsFoundWithoutSpecialFolders) {
  PutSetting(kUser, "E:\\Club");
  EXPECT_EQ(StartedFolder(), "E:\\Club");
}

TEST_F(StartUpTest, AUsersSettingWinsOverAMachineWideOne) {
  PutSetting(kMachine, "E:\\Machine");
  PutSetting(kUser, "E:\\User");
  EXPECT_EQ(StartedFolder(), "E:\\User");
}

TEST_F(StartUpTest, AnEmptySettingLeavesTheFolderThatWasFoundBefore) {
  PutSetting(kMachine, "E:\\Machine");
  PutSetting(kUser, "");
  EXPECT_EQ(StartedFolder(), "E:\\Machine");
}

TEST_F(StartUpTest, TheDocumentsFolderIsAskedForWithoutBeingMade) {
  class Asked : public ShellFolders {
   public:
    [[nodiscard]] std::optional<std::string> FolderPath(std::int32_t folderNumber) const override {
      numbers.push_back(folderNumber);
      return std::nullopt;
    }
    [[nodiscard]] std::optional<Location> FolderLocation(std::int32_t /*folderNumber*/) const override {
      return std::nullopt;
    }
    mutable std::vector<std::int32_t> numbers;
  };
  constexpr std::int32_t kMake = 0x8000;
  const auto shell = std::make_shared<Asked>();
  fake_.platform->shellFolders = shell;
  EXPECT_EQ(StartedFolder(), kLastResort);
  EXPECT_EQ(shell->numbers.front(), kCommonDocumentsFolder);
  for (const std::int32_t number : shell->numbers) {
    const bool isOfSettings = (number & ~kMake) == kCommonApplicationDataFolder;
    EXPECT_TRUE(isOfSettings || (number & kMake) == 0) << number;
  }
}

TEST_F(StartUpTest, AnErrorInOneStepIsLoggedAndTheNextStepTaken) {
  registry_->failing = kMachine;
  PutSetting(kUser, "E:\\User");
  EXPECT_EQ(StartedFolder(), "E:\\User");
  EXPECT_EQ(Log(),
            "TaviMembership Initialising\r\n"
            "Unexpected exception in TaviMembership initialisation: The registry is out of order.\r\n");
}

TEST_F(StartUpTest, AnErrorInTheLastStepLeavesWhatWasFound) {
  registry_->failing = kUser;
  PutSetting(kMachine, "E:\\Machine");
  EXPECT_EQ(StartedFolder(), "E:\\Machine");
}

TEST_F(StartUpTest, StartingIsLoggedAndOpensNoFile) {
  EXPECT_EQ(StartedFolder(), kLastResort);
  EXPECT_EQ(Log(), "TaviMembership Initialising\r\n");
  EXPECT_EQ(fake_.file->opens, 0);
}

TEST_F(StartUpTest, InactiveMembersAreNotIncludedAtFirst) {
  EXPECT_FALSE(MembershipDatabase(fake_.platform).IncludeInactiveMembers);
}

TEST_F(StartUpTest, TheFileNameIsTheFullPath) {
  MembershipDatabase database(fake_.platform);
  database.SetDatabaseFolder("E:\\Club");
  EXPECT_EQ(database.DatabaseFileName(), "E:\\Club\\ClubMembers.mdb");
}

TEST_F(StartUpTest, TheDatabaseExistsWhenItsFileDoes) {
  MembershipDatabase database(fake_.platform);
  database.SetDatabaseFolder(folder_.Path("club"));
  EXPECT_FALSE(database.DatabaseExists());
  folder_.WriteFile("club/ClubMembers.mdb", "anything");
  EXPECT_TRUE(database.DatabaseExists());
}

TEST_F(StartUpTest, AFolderOfTheFilesNameIsNoDatabase) {
  MembershipDatabase database(fake_.platform);
  folder_.MakeFolder("club/ClubMembers.mdb");
  database.SetDatabaseFolder(folder_.Path("club"));
  EXPECT_FALSE(database.DatabaseExists());
}

TEST_F(StartUpTest, ASecondObjectReplacesTheStoreAndClosesItsFile) {
  MembershipDatabase first(fake_.platform);
  first.OpenDatabase();
  const int closesBefore = fake_.file->closes;
  const MembershipDatabase second(fake_.platform);
  EXPECT_EQ(fake_.file->closes, closesBefore + 1);
  EXPECT_EQ(ThreadStore()->OpenCount(), 0);
}

TEST_F(StartUpTest, AllObjectsOfAThreadUseItsNewestStore) {
  MembershipDatabase first(fake_.platform);
  MembershipDatabase second(fake_.platform);
  second.SetDatabaseFolder("E:\\Club");
  EXPECT_EQ(first.DatabaseFolder(), "E:\\Club");
}

TEST_F(StartUpTest, ObjectsOfDifferentThreadsHaveStoresOfTheirOwn) {
  MembershipDatabase here(fake_.platform);
  here.SetDatabaseFolder("E:\\Here");
  std::thread([this] {
    MembershipDatabase there(fake_.platform);
    there.SetDatabaseFolder("E:\\There");
  }).join();
  EXPECT_EQ(here.DatabaseFolder(), "E:\\Here");
}

TEST_F(StartUpTest, AThreadWithoutAStoreIsToldSo) {
  const MembershipDatabase here(fake_.platform);
  std::thread([&here] {
    try {
      static_cast<void>(here.DatabaseFolder());
      ADD_FAILURE() << "no error";
    } catch (const Error& error) {
      EXPECT_TRUE(error.Is(ErrorNumber::NoObject));
    }
  }).join();
}

TEST_F(StartUpTest, TheEndOfAThreadClosesItsFile) {
  const int closesBefore = fake_.file->closes;
  int opens = 0;
  std::thread([&] {
    MembershipDatabase(fake_.platform).OpenDatabase();
    opens = fake_.file->opens - fake_.file->closes;
  }).join();
  EXPECT_EQ(opens, 1);
  EXPECT_EQ(fake_.file->closes, closesBefore + 1);
}

TEST_F(StartUpTest, CloseDatabaseClosesAtOnceHoweverOftenItWasOpened) {
  MembershipDatabase database(fake_.platform);
  for (int count = 0; count < 3; ++count) database.OpenDatabase();
  EXPECT_EQ(ThreadStore()->OpenCount(), 3);
  database.CloseDatabase();
  EXPECT_EQ(ThreadStore()->OpenCount(), 0);
  EXPECT_EQ(fake_.file->closes, fake_.file->opens);
}

TEST_F(StartUpTest, AnOpenedDatabaseStaysOpenAcrossOperations) {
  MembershipDatabase database(fake_.platform);
  database.OpenDatabase();
  EXPECT_EQ(database.GetHandicap(1), 50.0);
  EXPECT_EQ(ThreadStore()->OpenCount(), 1);
}

TEST_F(StartUpTest, WithoutAFolderOpeningIsRefused) {
  MembershipDatabase database(fake_.platform);
  database.SetDatabaseFolder("");
  try {
    database.OpenDatabase();
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_TRUE(error.Is(ErrorNumber::Component));
    EXPECT_EQ(error.Source(), "cDatabase");
    EXPECT_EQ(error.Description(), "Attempt to use database before path set.");
  }
}

TEST_F(StartUpTest, AFileThatCannotBeOpenedIsNamedWithTheReason) {
  MembershipDatabase database(fake_.platform);
  database.SetDatabaseFolder("E:\\Club");
  fake_.file->openFailures = 1;
  try {
    database.OpenDatabase();
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_TRUE(error.Is(ErrorNumber::Component));
    EXPECT_EQ(error.Description(),
              "Failed to open membership database E:\\Club\\ClubMembers.mdb:\r\n\r\nCould not find file.");
  }
}

TEST_F(StartUpTest, AFolderThatTheShellCannotTellIsLoggedAndTheFolderOfLastResortTaken) {
  class FailingFolders : public ShellFolders {
   public:
    [[nodiscard]] std::optional<std::string> FolderPath(std::int32_t /*folderNumber*/) const override {
      throw Error(ErrorNumber::InvalidArgument, "shell", "The library is missing.");
    }
    [[nodiscard]] std::optional<Location> FolderLocation(std::int32_t /*folderNumber*/) const override {
      return std::nullopt;
    }
  };
  fake_.platform->shellFolders = std::make_shared<FailingFolders>();
  EXPECT_EQ(StartedFolder(), kLastResort);
  EXPECT_NE(Log().find("SHGetFolderPath error: The library is missing.\r\n"), std::string::npos) << Log();
}

TEST_F(StartUpTest, AFolderInOtherLettersIsStoredThoughNothingIsCheckedAgain) {
  MembershipDatabase database(fake_.platform);
  database.SetDatabaseFolder("E:\\Club");
  database.OpenDatabase();
  database.CloseDatabase();
  const std::size_t statements = fake_.file->statements.size();
  database.SetDatabaseFolder("e:\\CLUB");
  EXPECT_EQ(database.DatabaseFolder(), "e:\\CLUB");
  database.OpenDatabase();
  database.CloseDatabase();
  EXPECT_EQ(fake_.file->statements.size(), statements);
}

}  // namespace
}  // namespace tavi
