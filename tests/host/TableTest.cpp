#include "host/json/Json.h"
#include "host/text/Table.h"

#include <gtest/gtest.h>

#include <sstream>

namespace tavi::host {
namespace {

Table Sample() {
  Table table({"Name", "Count", "Share"});
  table.Add({std::string("Zoë\tLee"), std::int64_t{7}, Decimals{12.5, 2}});
  table.Add({std::string("漢字"), std::int64_t{123}, Cell()});
  return table;
}

std::string Written(OutputFormat format) {
  std::ostringstream out;
  Sample().Write(out, format);
  return out.str();
}

TEST(Table, AlignsWhatATerminalShowsWithNumbersToTheRight) {
  EXPECT_EQ(Written(OutputFormat::Table),
            "Name      Count  Share\n"
            "--------  -----  -----\n"
            "Zoë\\tLee      7  12.50\n"
            "漢字        123\n");
}

TEST(Table, WritesTabSeparatedLinesWithEscapes) {
  EXPECT_EQ(Written(OutputFormat::Tabs), "Name\tCount\tShare\nZoë\\tLee\t7\t12.50\n漢字\t123\t\n");
}

TEST(Table, WritesCommaSeparatedLinesWithQuotesWhereTheyAreNeeded) {
  Table table({"Text", "Other"});
  table.Add({std::string("a,b"), std::string("say \"no\"")});
  table.Add({std::string("1 High Street\r\nAshby"), std::string(" x")});
  table.Add({std::string("\x1b[2J\u202e"), Cell()});
  std::ostringstream out;
  table.Write(out, OutputFormat::Csv);
  EXPECT_EQ(out.str(), "Text,Other\n\"a,b\",\"say \"\"no\"\"\"\n\"1 High Street\r\nAshby\",\" x\"\n\\x1b[2J\\u202e,\n");
  EXPECT_EQ(table.FormulaCount(), 0U);
}

TEST(Table, CommaSeparatedTextsThatAreFormulasBeginWithAnApostrophe) {
  Table table({"@Text", "Number"});
  const std::vector<std::string> formulas = {"=1+1", "+44 20", "-x",   "@SUM(1)", "\t=1",
                                             "\r=1", "\n=1",   "  =1", "\uFF1D1"};
  for (const std::string& formula : formulas) table.Add({formula, Decimals{-1.5, 1}});
  table.Add({std::string("1 = 1"), std::int64_t{-7}});
  std::ostringstream out;
  table.Write(out, OutputFormat::Csv);
  EXPECT_EQ(out.str(),
            "'@Text,Number\n'=1+1,-1.5\n'+44 20,-1.5\n'-x,-1.5\n'@SUM(1),-1.5\n\"'\t=1\",-1.5\n\"'\r=1\",-1.5\n"
            "\"'\n=1\",-1.5\n\"'  =1\",-1.5\n'\uFF1D1,-1.5\n1 = 1,-7\n");
  EXPECT_EQ(table.FormulaCount(), formulas.size() + 1);
}

TEST(Table, WritesJsonWithNullForNothing) {
  EXPECT_NE(Written(OutputFormat::JsonText).find("\"Share\": null"), std::string::npos);
  EXPECT_NE(Written(OutputFormat::JsonText).find("\"Share\": 12.5"), std::string::npos);
}

TEST(Table, WithoutRowsHasItsHeader) {
  std::ostringstream out;
  Table({"A", "B"}).Write(out, OutputFormat::Tabs);
  EXPECT_EQ(out.str(), "A\tB\n");
}

TEST(Table, StoredTextsCannotSteerATerminal) {
  Table table({"Na\x1bme"});
  table.Add({std::string("A\x1b[2J\u202eeeL")});
  std::ostringstream aligned;
  table.Write(aligned, OutputFormat::Table);
  EXPECT_EQ(aligned.str(), "Na\\x1bme\n-----------------\nA\\x1b[2J\\u202eeeL\n");
  std::ostringstream tabs;
  table.Write(tabs, OutputFormat::Tabs);
  EXPECT_EQ(tabs.str(), "Na\\x1bme\nA\\x1b[2J\\u202eeeL\n");
}

TEST(Table, TabSeparatedTextsTellABackslashFromAnEscape) {
  Table table({"Text"});
  table.Add({std::string("\\x1b\x1b")});
  std::ostringstream tabs;
  table.Write(tabs, OutputFormat::Tabs);
  EXPECT_EQ(tabs.str(), "Text\n\\\\x1b\\x1b\n");
}

TEST(Table, RoundsFiguresAsTheirDigitsSayInEveryFormat) {
  const auto shown = [](double value, OutputFormat format) {
    Table table({"F"});
    table.Add({Decimals{value, 2}});
    std::ostringstream out;
    table.Write(out, format);
    return out.str();
  };
  EXPECT_EQ(shown(34.825, OutputFormat::Tabs), "F\n34.82\n") << "the double is a little more than half-way";
  EXPECT_EQ(shown(33.995, OutputFormat::Tabs), "F\n34.00\n") << "the double is a little less than half-way";
  EXPECT_EQ(shown(52.355, OutputFormat::Table), "    F\n-----\n52.36\n");
  EXPECT_EQ(shown(34.825, OutputFormat::JsonText), "[\n  {\n    \"F\": 34.82\n  }\n]\n");
  EXPECT_EQ(shown(33.995, OutputFormat::JsonText), "[\n  {\n    \"F\": 34.0\n  }\n]\n");
  EXPECT_EQ(shown(-0.125, OutputFormat::Tabs), "F\n-0.12\n");
}

TEST(Table, JsonWritesWhatSteersATerminalAsEscapesOfTheSameValue) {
  const std::string stored = "A\x1b[2J\u202eeeL\u009b \x7f \\u202e \u2066x\u2069 Zoë\n\"q\" 漢";
  Table table({"Na\u202eme"});
  table.Add({stored});
  const std::string json = table.Json();
  EXPECT_EQ(json,
            "[\n  {\n    \"Na\\u202eme\": \"A\\u001b[2J\\u202eeeL\\u009b \\u007f \\\\u202e \\u2066x\\u2069 "
            "Zoë\\n\\\"q\\\" 漢\"\n  }\n]");
  EXPECT_EQ(Json::Parse(json)[0]["Na\u202eme"], stored);
}

TEST(Printable, ShowsWhatTurnsTheDirectionOfTextAsEscapes) {
  EXPECT_EQ(Printable("\u202a\u202b\u202c\u202d\u202e"), "\\u202a\\u202b\\u202c\\u202d\\u202e");
  EXPECT_EQ(Printable("\u2066\u2067\u2068\u2069"), "\\u2066\\u2067\\u2068\\u2069");
  EXPECT_EQ(Printable("\u2028\u2029"), "\\u2028\\u2029");
  EXPECT_EQ(Printable("לאה"), "לאה");
}

TEST(Printable, ShowsControlCharactersAsEscapes) {
  EXPECT_EQ(Printable("a\x1b[31mb\nc"), "a\\x1b[31mb\\nc");
  EXPECT_EQ(PrintableLines("One:\r\n\r\nTwo\x1b"), "One:\n  Two\\x1b");
}

}  // namespace
}  // namespace tavi::host
