// The parts of the platform that Windows itself provides.
#include <gtest/gtest.h>
#include <windows.h>

#include <fstream>

#include "access/file/support/TemporaryFolder.h"
#include "platform/values/Error.h"
#include "platform/values/WideText.h"
#include "platform/windows/OutsideNameKeys.h"
#include "platform/windows/SystemFolders.h"
#include "platform/windows/SystemRegistry.h"
#include "platform/windows/SystemXmlDocuments.h"

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
