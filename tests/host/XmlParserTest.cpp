#include "host/results/Xml.h"

#include <gtest/gtest.h>

#include "platform/Matchers.h"
#include "platform/values/Error.h"

namespace tavi::host {
namespace {

using testing::HasSubstr;

std::string XmlRefusal(const std::string& text) {
  try {
    ParseXml(text, "week.xml");
  } catch (const Error& error) {
    return error.Description();
  }
  return "it was read";
}

TEST(XmlParser, GivesElementsWithAttributesTextAndLines) {
  const XmlElement root =
      ParseXml("<?xml version='1.0'?>\n<a x='1' y = \"two\">\n <b>in</b>\n <c/>\n <b />\n</a >\n", "f");
  EXPECT_EQ(root.name, "a");
  EXPECT_EQ(root.line, 2U);
  EXPECT_EQ(root.Attribute("x"), "1");
  EXPECT_EQ(root.Attribute("y"), "two");
  EXPECT_EQ(root.Attribute("z"), "");
  EXPECT_EQ(root.text, "");
  ASSERT_EQ(root.children.size(), 3U);
  EXPECT_EQ(root.Children("b").size(), 2U);
  EXPECT_EQ(root.Children("b")[1]->line, 5U);
  ASSERT_NE(root.Child("b"), nullptr);
  EXPECT_EQ(root.Child("b")->text, "in");
  EXPECT_EQ(root.Child("d"), nullptr);
}

TEST(XmlParser, ResolvesEntitiesAndKeepsAmpersandsThatBeginNone) {
  EXPECT_EQ(ParseXml("<a>O&apos;Neil &amp; &lt;Zo&#xEB;&#62; &quot;</a>", "f").text, "O'Neil & <Zoë> \"");
  EXPECT_EQ(ParseXml("<a>Smith & Jones; R&D &what; &#; &#x; &#12x;</a>", "f").text,
            "Smith & Jones; R&D &what; &#; &#x; &#12x;");
  EXPECT_EQ(ParseXml("<a x='R&amp;D &lt;\t\r\n&#65;'/>", "f").Attribute("x"), "R&D <  A");
}

TEST(XmlParser, GivesTheReplacementCharacterForNumbersOfNoCharacter) {
  EXPECT_EQ(ParseXml("<a>&#0;&#xD800;&#x110000;</a>", "f").text, "\uFFFD\uFFFD\uFFFD");
  EXPECT_EQ(ParseXml("<a>&#99999999999;</a>", "f").text, "&#99999999999;");
}

TEST(XmlParser, JoinsTheTextAroundCommentsAndTakesMarkedTextAsItIs) {
  EXPECT_EQ(ParseXml("<a>Ann<!-- <b> --> <?x <y> ?>Lee<![CDATA[ & <Bob>]]></a>", "f").text, "AnnLee & <Bob>");
}

TEST(XmlParser, PassesOverADocumentTypeThatDefinesNoEntity) {
  EXPECT_EQ(ParseXml("<!DOCTYPE a SYSTEM 'a.dtd' [<!ELEMENT a (b)>]>\n<a/>", "f").line, 2U);
  EXPECT_THAT(XmlRefusal("\n<!DOCTYPE a [\n<!ENTITY x 'y'>]><a/>"), HasSubstr("week.xml:3: the document type defines"));
}

TEST(XmlParser, RefusesWhatIsNotWellFormedAndNamesTheLine) {
  EXPECT_THAT(XmlRefusal("<a>\n<b>\n</a>"),
              HasSubstr("week.xml:3: not well-formed XML (the end tag a stands where b of line 2 is open)"));
  EXPECT_THAT(XmlRefusal("<a>\n<b></b>\n"),
              HasSubstr("week.xml:3: not well-formed XML (the element a of line 1 has no end"));
  EXPECT_THAT(XmlRefusal("</a>"), HasSubstr("the end tag a ends nothing"));
  EXPECT_THAT(XmlRefusal("<a></a"), HasSubstr("the end tag a has no end"));
  EXPECT_THAT(XmlRefusal("<a"), HasSubstr("the tag a has no end"));
  EXPECT_THAT(XmlRefusal("<a\n<b/>"), HasSubstr("week.xml:2: not well-formed XML (the tag a has no end"));
  EXPECT_THAT(XmlRefusal("<a><1/></a>"), HasSubstr("a tag has no name"));
  EXPECT_THAT(XmlRefusal("<a></>"), HasSubstr("an end tag has no name"));
  EXPECT_THAT(XmlRefusal("<a x/>"), HasSubstr("the attribute x has no value"));
  EXPECT_THAT(XmlRefusal("<a x=1/>"), HasSubstr("the attribute x has no value between quotes"));
  EXPECT_THAT(XmlRefusal("<a x='1/>"), HasSubstr("the value of x has no closing quote"));
  EXPECT_THAT(XmlRefusal("<a x='1'y='2'/>"), HasSubstr("the tag a has no end"));
  EXPECT_THAT(XmlRefusal("<a>\n<!-- x</a>"), HasSubstr("week.xml:2: the file ends inside markup; expected -->"));
  EXPECT_THAT(XmlRefusal("no markup"), HasSubstr("there is no element in it"));
}

TEST(XmlParser, RefusesElementsThatAreTooManyOrLieTooDeep) {
  std::string deepest;
  for (std::size_t i = 0; i < kMaximumElementDepth; ++i) deepest = "<a>" + deepest + "</a>";
  EXPECT_EQ(XmlRefusal(deepest), "it was read");
  EXPECT_THAT(XmlRefusal("<a>" + deepest + "</a>"), HasSubstr("more than 64 deep"));
  std::string many = "<a>";
  for (std::size_t i = 0; i < kMaximumElements; ++i) many += "<b/>";
  EXPECT_THAT(XmlRefusal(many + "</a>"), HasSubstr("more than 1000000 elements"));
}

}  // namespace
}  // namespace tavi::host
