#include "util/SettingsStore.h"

#include <gtest/gtest.h>

#include <map>
#include <tuple>

#include "platform/TemporaryFolder.h"
#include "platform/support/ThisSystem.h"
#include "platform/values/Error.h"
#include "util/Paths.h"

namespace tavi {
namespace {

constexpr auto kMachine = RegistryRoot::LocalMachine;
constexpr auto kUser = RegistryRoot::CurrentUser;

/// A registry that holds what the test puts in and counts the questions.
class FakeRegistry : public Registry {
 public:
  using Key = std::tuple<RegistryRoot, std::string, std::string>;
  [[nodiscard]] std::optional<std::string> ReadText(RegistryRoot root, std::string_view keyPath,
                                                    std::string_view valueName) const override {
    ++questions;
    const auto found = values.find(Key(root, std::string(keyPath), std::string(valueName)));
    return found == values.end() ? std::nullopt : std::optional<std::string>(found->second);
  }
  std::map<Key, std::string> values;
  mutable int questions = 0;
};

/// Special folders that nobody knows.
class NoFolders : public ShellFolders {
 public:
  [[nodiscard]] std::optional<std::string> FolderPath(std::int32_t /*folderNumber*/) const override {
    return std::nullopt;
  }
  [[nodiscard]] std::optional<Location> FolderLocation(std::int32_t /*folderNumber*/) const override {
    return std::nullopt;
  }
};

/// Knows the folder of settings files alone: "config" in the test's, made when it is asked for.
class ConfigurationFolder : public NoFolders {
 public:
  explicit ConfigurationFolder(const testing::TemporaryFolder& parent) : parent_(parent) {}
  [[nodiscard]] std::optional<std::string> FolderPath(std::int32_t folderNumber) const override {
    constexpr std::int32_t kCreate = 0x8000;
    if (folderNumber != (kCommonApplicationDataFolder | kCreate)) return std::nullopt;
    parent_.MakeFolder("config");
    return parent_.Path("config");
  }

 private:
  const testing::TemporaryFolder& parent_;
};

/// Knows the folder of settings files alone, whatever is at its place.
class FixedFolder : public NoFolders {
 public:
  explicit FixedFolder(std::string path) : path_(std::move(path)) {}
  [[nodiscard]] std::optional<std::string> FolderPath(std::int32_t /*folderNumber*/) const override { return path_; }

 private:
  std::string path_;
};

class SettingsStoreTest : public ::testing::Test {
 protected:
  static constexpr const char* kFile = "config/Madrigo/Settings.xml";

  SettingsStoreTest() {
    platform_.registry = registry_;
    platform_.settingsDocuments = testing::SettingsDocumentsOfThisSystem();
    platform_.shellFolders = std::make_shared<ConfigurationFolder>(folder_);
  }

  std::string Get(RegistryRoot root, const std::string& name = kDatabaseFolderSetting) {
    return GetSetting(platform_, root, kSettingsKey, name, "default");
  }
  void PutIntoRegistry(RegistryRoot root, const std::string& value) {
    registry_->values[{root, kSettingsKey, kDatabaseFolderSetting}] = value;
  }
  void PutIntoFile(const std::string& element) {
    folder_.WriteFile(kFile, "<settings><hkey_local_machine><software><pelmont><bridge><clubdatabase>" + element +
                                 "</clubdatabase></bridge></pelmont></software></hkey_local_machine></settings>");
  }

  testing::TemporaryFolder folder_;
  std::shared_ptr<FakeRegistry> registry_ = std::make_shared<FakeRegistry>();
  Platform platform_;
};

TEST_F(SettingsStoreTest, TheFirstMachineWideQuestionMakesTheFileWithoutValues) {
  EXPECT_EQ(Get(kMachine), "default");
  EXPECT_EQ(folder_.ReadFile(kFile),
            "<settings>\r\n  <hkey_local_machine>\r\n    <software>\r\n      <pelmont>\r\n      </pelmont>\r\n"
            "    </software>\r\n  </hkey_local_machine>\r\n</settings>\r\n");
}

TEST_F(SettingsStoreTest, AMachineWideValueOfTheFileWinsAndTheRegistryIsNotAsked) {
  PutIntoFile("<DB_Folder>D:\\Club</DB_Folder>");
  PutIntoRegistry(kMachine, "C:\\Other");
  EXPECT_EQ(Get(kMachine), "D:\\Club");
  EXPECT_EQ(registry_->questions, 0);
}

TEST_F(SettingsStoreTest, AMachineWideValueOfTheRegistryIsCopiedIntoTheFile) {
  PutIntoRegistry(kMachine, "C:\\Other");
  EXPECT_EQ(Get(kMachine), "C:\\Other");
  registry_->values.clear();
  EXPECT_EQ(Get(kMachine), "C:\\Other");
  const auto document = platform_.settingsDocuments->Load(folder_.Path(kFile));
  EXPECT_EQ(
      document->Text({"settings", "hkey_local_machine", "software", "pelmont", "bridge", "clubdatabase", "DB_Folder"}),
      "C:\\Other");
}

TEST_F(SettingsStoreTest, PerUserValuesAreReadFromTheRegistryOnlyAndNeverCopied) {
  PutIntoFile("<DB_Folder>D:\\Club</DB_Folder>");
  EXPECT_EQ(Get(kUser), "default");
  const std::string before = folder_.ReadFile(kFile);
  PutIntoRegistry(kUser, "C:\\Mine");
  EXPECT_EQ(Get(kUser), "C:\\Mine");
  EXPECT_EQ(folder_.ReadFile(kFile), before);
}

TEST_F(SettingsStoreTest, APerUserQuestionMakesNoFile) {
  EXPECT_EQ(Get(kUser), "default");
  EXPECT_FALSE(folder_.Has("config"));
}

TEST_F(SettingsStoreTest, AnEmptyDatabaseFolderLeavesTheDefault) {
  PutIntoFile("<DB_Folder></DB_Folder>");
  PutIntoRegistry(kMachine, "");
  PutIntoRegistry(kUser, "");
  EXPECT_EQ(Get(kMachine), "default");
  EXPECT_EQ(Get(kUser), "default");
}

TEST_F(SettingsStoreTest, AnEmptyValueOfAnyOtherSettingIsFound) {
  registry_->values[{kUser, kSettingsKey, kGoverningBodySetting}] = "";
  EXPECT_EQ(Get(kUser, kGoverningBodySetting), "");
  registry_->values[{kMachine, kSettingsKey, kGoverningBodySetting}] = "";
  EXPECT_EQ(Get(kMachine, kGoverningBodySetting), "");
  registry_->values.clear();
  EXPECT_EQ(Get(kMachine, kGoverningBodySetting), "") << "the empty value stands in the file now";
  PutIntoFile("<Governing_Body/>");
  registry_->values[{kMachine, kSettingsKey, kGoverningBodySetting}] = "WBU";
  EXPECT_EQ(Get(kMachine, kGoverningBodySetting), "") << "the file's value wins";
}

TEST_F(SettingsStoreTest, MarkupCharactersStandInTheFileEscapedTwice) {
  PutIntoRegistry(kMachine, "a<b>&c");
  EXPECT_EQ(Get(kMachine), "a<b>&c");
  EXPECT_NE(folder_.ReadFile(kFile).find("<DB_Folder>a&amp;lt;b&amp;gt;&amp;amp;c</DB_Folder>"), std::string::npos)
      << folder_.ReadFile(kFile);
  registry_->values.clear();
  EXPECT_EQ(Get(kMachine), "a<b>&c");
}

TEST_F(SettingsStoreTest, KeysAreLowerCasedAndBlanksBecomeUnderscores) {
  SettingsFile file(platform_);
  file.SetValue("Software/My Club\\Éven", "Some Value", "x");
  file.Save();
  const auto document = platform_.settingsDocuments->Load(folder_.Path(kFile));
  EXPECT_EQ(document->Text({"settings", "hkey_local_machine", "software", "my_club", "éven", "Some_Value"}), "x");
  EXPECT_EQ(SettingsFile(platform_).Value("SOFTWARE\\my club\\éven", "Some Value"), "x");
}

TEST_F(SettingsStoreTest, AFileThatIsNoXmlNeverFailsAReadAndIsLeftAlone) {
  for (const char* content : {"this is no XML", "<settings><hkey_local_machine>", "<", "<!-- no end", "\xFF\xFE<"}) {
    folder_.WriteFile(kFile, content);
    registry_->values.clear();
    EXPECT_EQ(Get(kMachine), "default") << content;
    PutIntoRegistry(kMachine, "C:\\Other");
    EXPECT_EQ(Get(kMachine), "C:\\Other") << content;
    EXPECT_EQ(folder_.ReadFile(kFile), content);
  }
}

TEST_F(SettingsStoreTest, AnEmptyFileOrOneWithoutARootIsMadeWhole) {
  for (const char* content : {"", "  \r\n", "\xEF\xBB\xBF", "<?xml version=\"1.0\"?>\r\n", "<!-- <settings> -->\n"}) {
    folder_.WriteFile(kFile, content);
    registry_->values.clear();
    EXPECT_EQ(Get(kMachine), "default") << content;
    EXPECT_TRUE(folder_.ReadFile(kFile).starts_with("<settings>\r\n")) << content;
    folder_.WriteFile(kFile, content);
    PutIntoRegistry(kMachine, "C:\\Other");
    EXPECT_EQ(Get(kMachine), "C:\\Other") << content;
    registry_->values.clear();
    EXPECT_EQ(Get(kMachine), "C:\\Other") << "copied; " << content;
  }
}

TEST_F(SettingsStoreTest, WithoutAFolderTheRegistryAndTheDefaultStandIn) {
  platform_.shellFolders = std::make_shared<NoFolders>();
  EXPECT_EQ(Get(kMachine), "default");
  PutIntoRegistry(kMachine, "C:\\Other");
  EXPECT_EQ(Get(kMachine), "C:\\Other");
}

TEST_F(SettingsStoreTest, AFileThatCannotBeMadeIsNoErrorUnlessAValueIsToBeCopied) {
  folder_.WriteFile("config", "a file where the folder of settings should be");
  platform_.shellFolders = std::make_shared<FixedFolder>(folder_.Path("config"));
  EXPECT_EQ(Get(kMachine), "default");
  PutIntoRegistry(kMachine, "C:\\Other");
  EXPECT_THROW(static_cast<void>(Get(kMachine)), Error);
}

TEST_F(SettingsStoreTest, AValueThatNoXmlFileCanHoldIsRefusedAndTheFileStaysAsItIs) {
  EXPECT_EQ(Get(kMachine), "default");
  const std::string before = folder_.ReadFile(kFile);
  PutIntoRegistry(kMachine, "C:\\Cl\x01ub");
  EXPECT_THROW(static_cast<void>(Get(kMachine)), Error);
  EXPECT_EQ(folder_.ReadFile(kFile), before);
}

/// Settings documents that can be read, without values, and not saved.
class UnsavableDocuments : public SettingsDocuments {
 public:
  [[nodiscard]] std::unique_ptr<SettingsDocument> Load(const std::string& /*path*/) const override {
    class Document : public SettingsDocument {
     public:
      [[nodiscard]] std::optional<std::string> Text(const std::vector<std::string>& /*path*/) const override {
        return std::nullopt;
      }
      void SetText(const std::vector<std::string>& /*path*/, std::string_view /*text*/) override {}
      void Save() override { throw Error(ErrorNumber::BadSubscript, "XML", "The document cannot be saved."); }
    };
    return std::make_unique<Document>();
  }
};

TEST_F(SettingsStoreTest, AnErrorWhileTheFileIsSavedKeepsNumberSourceAndText) {
  platform_.settingsDocuments = std::make_shared<UnsavableDocuments>();
  EXPECT_EQ(Get(kMachine), "default") << "nothing to copy, nothing to save";
  PutIntoRegistry(kMachine, "C:\\Other");
  try {
    static_cast<void>(Get(kMachine));
    FAIL() << "the value was not copied";
  } catch (const Error& error) {
    EXPECT_TRUE(error.Is(ErrorNumber::BadSubscript));
    EXPECT_EQ(error.Source(), "XML");
    EXPECT_EQ(error.Description(), "The document cannot be saved.");
  }
}

}  // namespace
}  // namespace tavi
