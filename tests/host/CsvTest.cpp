#include "host/input/Csv.h"

#include <gtest/gtest.h>

#include "platform/Matchers.h"
#include "platform/values/Error.h"

namespace tavi::host {
namespace {

using testing::HasSubstr;

std::string CsvRefusal(const std::string& text) {
  try {
    CsvFile::Parse(text, "list.csv");
  } catch (const Error& error) {
    return error.Description();
  }
  return "it was read";
}

TEST(Csv, ReadsFieldsByTheNamesOfTheHeader) {
  const CsvFile file = CsvFile::Parse("Number,Name\r\n7, Ann Lee \r\n8,\"Ray, \"\"Bob\"\"\"\r\n", "list.csv");
  ASSERT_EQ(file.Rows().size(), 2U);
  EXPECT_EQ(file.Field(file.Rows()[0], "name"), "Ann Lee");
  EXPECT_EQ(file.Field(file.Rows()[1], "name"), "Ray, \"Bob\"");
  EXPECT_EQ(file.Field(file.Rows()[1], "telephone"), "");
}

TEST(Csv, CountsLinesThroughQuotedLineBreaks) {
  const CsvFile file = CsvFile::Parse("a,b\n1,\"x\ny\"\n2,z\n", "list.csv");
  EXPECT_EQ(file.Field(file.Rows()[0], "b"), "x\ny");
  EXPECT_EQ(file.Rows()[1].line, 4U);
}

TEST(Csv, TakesSemicolonsWhereTheHeaderHasNoComma) {
  const CsvFile file = CsvFile::Parse("a;b\n1;2,5\n", "list.csv");
  EXPECT_EQ(file.Field(file.Rows()[0], "b"), "2,5");
}

TEST(Csv, TakesTheSeparatorThatALineBeforeTheHeaderNames) {
  const CsvFile file = CsvFile::Parse("sep=;\r\na,x;b\r\n1;2,5\r\n", "list.csv");
  EXPECT_EQ(file.Field(file.Rows()[0], "a,x"), "1");
  EXPECT_EQ(file.Field(file.Rows()[0], "b"), "2,5");
  EXPECT_EQ(file.Rows()[0].line, 3U);
  EXPECT_EQ(CsvFile::Parse("sep=|\na|b\n1|2\n", "list.csv").ColumnNames(), (std::vector<std::string>{"a", "b"}));
  EXPECT_THAT(CsvRefusal("sep=;\n"), HasSubstr("the file is empty"));
}

TEST(Csv, TellsTheHeadersLineBehindALineThatNamesTheSeparator) {
  const CsvFile file = CsvFile::Parse("sep=;\r\na;b\r\n1;2\r\n", "list.csv");
  try {
    file.RefuseHeader("no");
    ADD_FAILURE() << "nothing was raised";
  } catch (const Error& error) {
    EXPECT_THAT(error.Description(), HasSubstr("list.csv:2: no"));
  }
}

TEST(Csv, PassesOverRowsThatHaveNoContents) {
  const CsvFile file = CsvFile::Parse("a,b\n\n,\n ,\"\"\n,,\n1,2\n", "list.csv");
  ASSERT_EQ(file.Rows().size(), 1U);
  EXPECT_EQ(file.Rows()[0].line, 6U);
}

TEST(Csv, KnowsLinesThatEndInCarriageReturnsAlone) {
  const CsvFile file = CsvFile::Parse("a;b\r1;2,5\r", "list.csv");
  ASSERT_EQ(file.Rows().size(), 1U);
  EXPECT_EQ(file.Field(file.Rows()[0], "b"), "2,5");
}

TEST(Csv, ReadsByteOrderMarksAndFallsBackToWindows1252) {
  EXPECT_TRUE(CsvFile::Parse("\xEF\xBB\xBFname\nAnn\n", "list.csv").HasColumn("name"));
  const CsvFile file = CsvFile::Parse("name\nZo\xEB\n", "list.csv");
  EXPECT_EQ(file.Field(file.Rows()[0], "name"), "Zoë");
}

TEST(Csv, RefusesInPlainWordsThatNameTheLine) {
  EXPECT_THAT(CsvRefusal(""), HasSubstr("list.csv:1: the file is empty"));
  EXPECT_THAT(CsvRefusal("a,b\n1\n"), HasSubstr("list.csv:2: the line has 1 fields; expected 2"));
  EXPECT_THAT(CsvRefusal("a,b\n1,\"2\n"), HasSubstr("list.csv:2: a quoted field is not closed"));
  EXPECT_THAT(CsvRefusal("a,A\n"), HasSubstr("stands twice in the header"));
}

}  // namespace
}  // namespace tavi::host
