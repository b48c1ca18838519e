// The parts of the platform that Windows itself provides.
#include <gtest/gtest.h>
#include <windows.h>

#include <bit>
#include <fstream>

#include "access/file/support/TemporaryFolder.h"
#include "platform/values/Error.h"
#include "platform/values/WideText.h"
#include "platform/windows/SystemServices.h"
#include "util/Paths.h"
#include "util/SettingsStore.h"

namespace tavi {
namespace {

constexpr const wchar_t* kKey = L"Software\\TaviMembershipTest";

class SystemRegistryTest : public ::testing::Test {
 protected:
  ~SystemRegistryTest() override { ::RegDeleteTreeW(HKEY_CURRENT_USER, kKey); }
  static void Put(const wchar_t* name, DWORD type, const std::wstring& text) {
    ::RegSetKeyValueW(HKEY_CURRENT_USER, kKey, name, type, text.c_str(),
                      static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
  }
  static std::optional<std::string> Read(const std::string& name) {
    return SystemRegistry().ReadText(RegistryRoot::CurrentUser, windows::FromWide(kKey), name);
  }
};

TEST_F(SystemRegistryTest, TextsAreReadWhateverTheirLength) {
  Put(L"DB Folder", REG_SZ, L"C:\\Łódź");
  Put(L"Long", REG_SZ, std::wstring(1000, L'x'));
  EXPECT_EQ(Read("DB Folder"), "C:\\Łódź");
  EXPECT_EQ(Read("Long"), std::string(1000, 'x'));
}

TEST_F(SystemRegistryTest, OtherTypesAndMissingValuesAreNothing) {
  Put(L"Expanding", REG_EXPAND_SZ, L"%TEMP%");
  EXPECT_EQ(Read("Expanding"), std::nullopt);
  EXPECT_EQ(Read("Missing"), std::nullopt);
  EXPECT_EQ(SystemRegistry().ReadText(RegistryRoot::LocalMachine, "Software\\NoSuchKeyOfAnybody", "x"), std::nullopt);
}

TEST_F(SystemRegistryTest, ATextEndsAtItsFirstNul) {
  Put(L"Divided", REG_SZ, std::wstring(L"one\0two", 7));
  EXPECT_EQ(Read("Divided"), "one");
}

TEST(SystemFoldersTest, TheKnownFoldersHavePathsAndTheUnknownNone) {
  EXPECT_TRUE(SystemFolders().FolderPath(35).value_or("").starts_with("C:\\"));
  EXPECT_EQ(SystemFolders().FolderPath(0x7F), std::nullopt);
  const auto located = SystemFolders().FolderLocation(5);
  ASSERT_TRUE(located.has_value());
  EXPECT_TRUE(located->nonZeroReturn) << "which callers take for failure";
}

/// A shell whose calls answer what the test says, and which notes them.
class FakeShell {
 public:
  [[nodiscard]] std::string PathOf(std::int32_t number, bool create = false) {
    return SpecialFolderPath(SystemFolders(Calls()), number, create);
  }

  HRESULT pathResult = E_FAIL;
  HRESULT listResult = E_FAIL;
  BOOL listPathResult = TRUE;
  bool failsToLoad = false;
  std::wstring path = L"C:\\Łódź 橋";
  std::string calls;

 private:
  ShellCalls Calls() {
    return {[this](HWND owner, int number, HANDLE token, DWORD flags, wchar_t* target) {
              if (failsToLoad) throw Error(ErrorNumber::InvalidArgument, "shell", "no such library");
              EXPECT_TRUE(owner == nullptr && token == nullptr && flags == 0);
              calls += "path " + std::to_string(number) + " ";
              path.copy(target, path.size());
              return pathResult;
            },
            [this](HWND owner, int number, ITEMIDLIST** list) {
              EXPECT_EQ(std::bit_cast<std::uintptr_t>(owner), 100U);
              calls += "list " + std::to_string(number) + " ";
              *list = listResult == S_OK ? static_cast<ITEMIDLIST*>(::CoTaskMemAlloc(sizeof(ITEMIDLIST))) : nullptr;
              return listResult;
            },
            [this](const ITEMIDLIST* list, wchar_t* target) {
              EXPECT_NE(list, nullptr);
              calls += "listpath ";
              path.copy(target, path.size());
              return listPathResult;
            }};
  }
};

TEST(ShellCallsTest, TheFirstCallIsEnoughWhenItReturnsZeroOrOne) {
  FakeShell shell;
  for (const HRESULT result : {S_OK, S_FALSE}) {
    shell.calls.clear();
    shell.pathResult = result;
    EXPECT_EQ(shell.PathOf(46), "C:\\Łódź 橋");
    EXPECT_EQ(shell.calls, "path 46 ");
  }
}

TEST(ShellCallsTest, AnEmptyPathIsAnAnswer) {
  FakeShell shell;
  shell.pathResult = S_FALSE;
  shell.path.clear();
  EXPECT_EQ(shell.PathOf(46), "");
  EXPECT_EQ(shell.calls, "path 46 ");
}

TEST(ShellCallsTest, AnyOtherResultLeadsToTheOlderCallsWhosePathCountsWhenTheyReturnZero) {
  FakeShell shell;
  shell.pathResult = 2;
  shell.listResult = S_OK;
  shell.listPathResult = FALSE;
  EXPECT_EQ(shell.PathOf(5), "C:\\Łódź 橋");
  EXPECT_EQ(shell.calls, "path 5 list 5 listpath ");
}

TEST(ShellCallsTest, ANonZeroReturnOfTheOlderCallLeadsOnToThePersonalFolder) {
  FakeShell shell;
  shell.listResult = S_OK;
  EXPECT_EQ(shell.PathOf(46), "");
  EXPECT_EQ(shell.calls, "path 46 list 46 listpath path 5 list 5 listpath ");
}

TEST(ShellCallsTest, AFailureToLocateAsksForNoPath) {
  FakeShell shell;
  shell.listResult = S_FALSE;
  EXPECT_EQ(shell.PathOf(5), "");
  EXPECT_EQ(shell.calls, "path 5 list 5 ");
}

TEST(ShellCallsTest, TheCreateBitGoesIntoAllCallsAndKeepsFromThePersonalFolder) {
  FakeShell shell;
  EXPECT_EQ(shell.PathOf(46, true), "");
  EXPECT_EQ(shell.calls, "path 32814 list 32814 ");
}

TEST(ShellCallsTest, AnErrorInTheFirstCallLeadsToTheOlderOnes) {
  FakeShell shell;
  shell.failsToLoad = true;
  shell.listResult = S_OK;
  shell.listPathResult = FALSE;
  EXPECT_EQ(shell.PathOf(46), "C:\\Łódź 橋");
  EXPECT_EQ(shell.calls, "list 46 listpath ");
}

TEST(OutsideNameKeysTest, TheClassIsNotRegisteredHere) {
  EXPECT_FALSE(OutsideNameKeys::IsRegistered());
  EXPECT_THROW(static_cast<void>(OutsideNameKeys().Key(NameKeyMode::Surname, "Smith")), Error);
}

class SystemXmlDocumentsTest : public ::testing::Test {
 protected:
  void Write(const std::string& content) const { std::ofstream(folder_.Path() / "s.xml", std::ios::binary) << content; }
  [[nodiscard]] std::unique_ptr<SettingsDocument> Load() const {
    return SystemXmlDocuments().Load(folder_.File("s.xml"));
  }
  access::test::TemporaryFolder folder_;
};

TEST_F(SystemXmlDocumentsTest, TextsAreReadWithoutTheWhiteSpaceAroundThem) {
  Write("<settings>\r\n  <a>\r\n    <b> C:\\Bridge &amp;amp; more </b>\r\n  </a>\r\n</settings>\r\n");
  EXPECT_EQ(Load()->Text({"settings", "a", "b"}), "C:\\Bridge &amp; more");
  EXPECT_EQ(Load()->Text({"settings", "a", "c"}), std::nullopt);
}

TEST_F(SystemXmlDocumentsTest, WhatIsSetIsSavedWithTheElementsThatWereMissing) {
  Write("<settings><a/></settings>");
  {
    const auto document = Load();
    document->SetText({"settings", "a", "DB_Folder"}, "Łódź <&>");
    document->Save();
  }
  EXPECT_EQ(Load()->Text({"settings", "a", "DB_Folder"}), "Łódź <&>");
}

/// A shell that has one folder for everything.
class OneFolder : public ShellFolders {
 public:
  explicit OneFolder(std::string path) : path_(std::move(path)) {}
  [[nodiscard]] std::optional<std::string> FolderPath(std::int32_t /*number*/) const override { return path_; }
  [[nodiscard]] std::optional<Location> FolderLocation(std::int32_t /*number*/) const override { return std::nullopt; }

 private:
  std::string path_;
};

TEST_F(SystemXmlDocumentsTest, KeysWithSlashesBlanksAndAccentsAreElementsOfTheSettingsFile) {
  Platform platform;
  platform.shellFolders = std::make_shared<OneFolder>(folder_.Path().string());
  platform.settingsDocuments = std::make_shared<SystemXmlDocuments>();
  SettingsFile file(platform);
  file.SetValue("Software/My Club\\ÉVEN", "Some Value", "a<b>&amp; 橋");
  file.Save();
  const auto document = SystemXmlDocuments().Load(folder_.File("Madrigo\\Settings.xml"));
  EXPECT_EQ(document->Text({"settings", "hkey_local_machine", "software", "my_club", "éven", "Some_Value"}),
            "a&lt;b&gt;&amp;amp; 橋");
  EXPECT_EQ(SettingsFile(platform).Value("SOFTWARE\\my club\\éven", "Some Value"), "a<b>&amp; 橋");
}

TEST_F(SystemXmlDocumentsTest, WhatIsNoXmlIsRefusedWithItsName) {
  Write("<settings><a>");
  try {
    static_cast<void>(Load());
    FAIL();
  } catch (const Error& error) {
    EXPECT_NE(error.Description().find("s.xml"), std::string::npos) << error.Description();
  }
  EXPECT_THROW(static_cast<void>(SystemXmlDocuments().Load(folder_.File("missing.xml"))), Error);
}

}  // namespace
}  // namespace tavi
