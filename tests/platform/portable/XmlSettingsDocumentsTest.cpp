#include "platform/portable/PortableServices.h"

#include <gtest/gtest.h>

#include "platform/TemporaryFolder.h"
#include "platform/values/Error.h"

namespace tavi {
namespace {

using Path = std::vector<std::string>;

class XmlSettingsDocumentsTest : public ::testing::Test {
 protected:
  std::unique_ptr<SettingsDocument> Load(const std::string& content) {
    folder_.WriteFile("Settings.xml", content);
    return documents_.Load(folder_.Path("Settings.xml"));
  }
  std::string Stored() const { return folder_.ReadFile("Settings.xml"); }

  testing::TemporaryFolder folder_;
  XmlSettingsDocuments documents_{[](const std::string& path) { return path; }};
};

TEST_F(XmlSettingsDocumentsTest, ReadsTheTextOfAnElement) {
  const auto document = Load("<?xml version=\"1.0\"?>\n<settings><a><b>\n  C:\\Bridge &amp; more\n</b></a></settings>");
  EXPECT_EQ(document->Text({"settings", "a", "b"}), "C:\\Bridge & more");
  EXPECT_EQ(document->Text({"settings", "a"}), "") << "an element that only holds others has no text of its own";
  EXPECT_FALSE(document->Text({"settings", "x"}).has_value());
  EXPECT_FALSE(document->Text({"settings", "x", "b"}).has_value());
  EXPECT_FALSE(document->Text({}).has_value());
}

TEST_F(XmlSettingsDocumentsTest, ACommentDoesNotEndAText) {
  EXPECT_EQ(Load("<settings><a>one<!-- and --><![CDATA[ two]]></a></settings>")->Text({"settings", "a"}), "one two");
}

TEST_F(XmlSettingsDocumentsTest, SetTextCreatesWhatIsMissingAndSaveKeepsTheRest) {
  const auto document = Load("<?xml version=\"1.0\"?>\n<!-- ours --><settings><other x=\"1\">kept</other></settings>");
  document->SetText({"settings", "a", "b"}, "1 < 2 & \"3\"");
  document->SetText({"settings", "a", "b"}, "2 < 3 & \"4\"");
  document->Save();
  EXPECT_NE(Stored().find("<?xml version=\"1.0\"?>"), std::string::npos);
  EXPECT_NE(Stored().find("<!-- ours -->"), std::string::npos);
  EXPECT_NE(Stored().find("<other x=\"1\">kept</other>"), std::string::npos);
  EXPECT_NE(Stored().find("<b>2 &lt; 3 &amp; \"4\"</b>"), std::string::npos) << Stored();
  EXPECT_EQ(documents_.Load(folder_.Path("Settings.xml"))->Text({"settings", "a", "b"}), "2 < 3 & \"4\"");
  EXPECT_EQ(folder_.FileCount(), 1U) << "the new file has replaced the old one";
}

TEST_F(XmlSettingsDocumentsTest, RefusesWhatIsNoXmlAndNamesTheFile) {
  for (const char* content : {"", "no XML", "<settings>", "<settings><a></settings>", "<!-- only this -->"}) {
    try {
      static_cast<void>(Load(content));
      ADD_FAILURE() << content;
    } catch (const Error& error) {
      EXPECT_TRUE(error.Is(ErrorNumber::InvalidArgument));
      EXPECT_NE(error.Description().find(folder_.Path("Settings.xml")), std::string::npos) << error.Description();
    }
  }
}

TEST_F(XmlSettingsDocumentsTest, RefusesMissingAndHugeFilesAndFolders) {
  EXPECT_THROW(static_cast<void>(documents_.Load(folder_.Path("None.xml"))), Error);
  EXPECT_THROW(static_cast<void>(documents_.Load(folder_.Path())), Error);
  const std::string huge = "<settings>" + std::string(std::size_t{5} << 20U, ' ') + "</settings>";
  EXPECT_THROW(static_cast<void>(Load(huge)), Error);
}

TEST_F(XmlSettingsDocumentsTest, RefusesElementsNestedVeryDeep) {
  const auto nested = [](std::size_t depth) {
    std::string content;
    for (std::size_t level = 0; level < depth; ++level) content += "<a>";
    for (std::size_t level = 0; level < depth; ++level) content += "</a>";
    return content;
  };
  EXPECT_THROW(static_cast<void>(Load(nested(200000))), Error);
  EXPECT_NO_THROW(static_cast<void>(Load(nested(50))));
}

TEST_F(XmlSettingsDocumentsTest, EntityDefinitionsAreNotExpanded) {
  const auto document = Load("<!DOCTYPE s [<!ENTITY e \"boom\">]><settings><a>&e;</a></settings>");
  EXPECT_EQ(document->Text({"settings", "a"}), "&e;");
}

TEST_F(XmlSettingsDocumentsTest, RefusesNamesThatNoElementCanHaveAndForeignRoots) {
  const auto document = Load("<settings/>");
  for (const char* name : {"", "a b", "1a", "a<b", "-a"}) {
    EXPECT_THROW(document->SetText({"settings", name}, "x"), Error) << name;
  }
  EXPECT_NO_THROW(document->SetText({"settings", "a-1._é"}, "x"));
  EXPECT_THROW(Load("<other/>")->SetText({"settings", "a"}, "x"), Error);
  EXPECT_THROW(Load("<settings/>")->SetText({}, "x"), Error);
}

TEST_F(XmlSettingsDocumentsTest, ASaveThatFailsLeavesTheOldFileAndRaisesAnError) {
  const auto document = Load("<settings/>");
  std::filesystem::remove_all(folder_.Path());
  EXPECT_THROW(document->Save(), Error);
}

}  // namespace
}  // namespace tavi
