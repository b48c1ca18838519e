#include <gtest/gtest.h>

#include "access/sql/expression/FormatText.h"
#include "platform/values/Date.h"

/// Tables of values, patterns and what Format makes of them.
namespace tavi::access::sql {
namespace {

struct NumberCase {
  double number;
  std::string_view pattern;
  std::string_view text;
};

TEST(Format, Numbers) {
  const NumberCase cases[] = {
      {5, "0", "5"},
      {5, "000", "005"},
      {5.5, "0", "6"},
      {2.5, "0", "3"},
      {-2.5, "0", "-3"},
      {0.4, "#", ""},
      {0, "#", ""},
      {0, "0.00", "0.00"},
      {1.005, "0.00", "1.01"},
      {1.2, "0.00", "1.20"},
      {1.2, "0.##", "1.2"},
      {1, "0.##", "1."},
      {0.5, "#.00", ".50"},
      {0.5, ".00", ".50"},
      {12.5, ".00", "12.50"},
      {1234567.891, "#,##0.00", "1,234,567.89"},
      {123, "#,##0", "123"},
      {0, "#,##0", "0"},
      {1234, "0,000,000", "0,001,234"},
      {1234567, "0,", "1235"},
      {1234567, "0.0,,", "1234567.0"},
      {1234567, "#,##0,", "1,235"},
      {1234567, "0,,.00", "1.23"},
      {0.256, "0%", "26%"},
      {0.256, "0.0%", "25.6%"},
      {-1234.5, "#,##0.0", "-1,234.5"},
      {-5, "0;(0)", "(5)"},
      {5, "0;(0)", "5"},
      {0, "0;(0);nil", "nil"},
      {0, "0;(0)", "0"},
      {-5, "0;;\\z", "-5"},
      {999.999, "0.00", "1000.00"},
      {12345, "0.00E+00", "1.23E+04"},
      {0.00012, "0.00E+00", "1.20E-04"},
      {9.999, "0.00E+00", "1.00E+01"},
      {12345, "0.0E-0", "1.2E4"},
      {0, "0.00E+00", "0.00E+00"},
      {12345, "00.0E+00", "12.3E+03"},
      {5, "\"No. \"0", "No. 5"},
      {5, "\\#0", "#5"},
      {1234, "00-00", "12-34"},
      {5551234, "(000) 0-0", "(55512) 3-4"},
      {-0.001, "0.00", "0.00"},
      {1e15, "0", "1000000000000000"},
      {1e-10, "0.00", "0.00"},
      {123456789012345678.0, "0", "123456789012346000"},
      {5.25, "Fixed", "5.25"},
      {1234.5, "Standard", "1,234.50"},
      {1234.5, "currency", "1,234.50"},
      {0.5, "Percent", "50.00%"},
      {1234.5, "Scientific", "1.23E+03"},
      {5, "Yes/No", "Yes"},
      {-5, "Yes/No", "Yes"},
      {0, "True/False", "False"},
      {1, "On/Off", "On"},
      {1.5, "General Number", "1.5"},
      {1.5, "", "1.5"},
      {37014, "yyyy-mm-dd", "2001-05-03"},
  };
  for (const NumberCase& one : cases)
    EXPECT_EQ(FormatText(one.number, one.pattern), one.text) << one.number << " " << one.pattern;
}

TEST(Format, OtherKindsOfNumbers) {
  EXPECT_EQ(FormatText(Currency{123456}, "0.000"), "12.346");
  EXPECT_EQ(FormatText(Currency{-123456}, "0.0000"), "-12.3456");
  EXPECT_EQ(FormatText(Decimal{false, 5, 7766279631452241921U, 0}, "#,##0"), "100,000,000,000,000,000,001");
  EXPECT_EQ(FormatText(std::int16_t{7}, "000"), "007");
  EXPECT_EQ(FormatText(true, "0"), "-1");
  EXPECT_EQ(FormatText(true, "Yes/No"), "Yes");
  EXPECT_EQ(FormatText(std::string("12.5"), "0.00"), "12.50");
  EXPECT_EQ(FormatText(std::string("abc"), "0.00"), "abc");
}

struct DateCase {
  std::string_view date;
  std::string_view pattern;
  std::string_view text;
};

TEST(Format, Dates) {
  const DateCase cases[] = {
      {"2001-05-03", "d m yy", "3 5 01"},
      {"2001-05-03", "dd/mm/yyyy", "03/05/2001"},
      {"2001-05-03", "ddd d mmm yyyy", "Thu 3 May 2001"},
      {"2001-09-03", "dddd d mmmm", "Monday 3 September"},
      {"2001-05-03", "d mmm yyyy", "3 May 2001"},
      {"2001-05-03T14:05:09", "hh:nn:ss", "14:05:09"},
      {"2001-05-03T14:05:09", "h:n:s", "14:5:9"},
      {"2001-05-03T14:05:09", "hh:mm", "14:05"},
      {"2001-05-03T14:05:09", "h:mm AM/PM", "2:05 PM"},
      {"2001-05-03T00:05:09", "h:nna/p", "12:05a"},
      {"2001-05-03T12:00:00", "hh AMPM", "12 PM"},
      {"2001-05-03T14:05:09", "General Date", "03/05/2001 14:05:09"},
      {"2001-05-03", "General Date", "03/05/2001"},
      {"1899-12-30T14:05:09", "c", "14:05:09"},
      {"2001-05-03", "Long Date", "3 May 2001"},
      {"2001-05-03", "Medium Date", "03-May-01"},
      {"2001-05-03", "Short Date", "03/05/2001"},
      {"2001-05-03T14:05:09", "Long Time", "14:05:09"},
      {"2001-05-03T14:05:09", "Medium Time", "02:05 PM"},
      {"2001-05-03T14:05:09", "Short Time", "14:05"},
      {"2001-05-03", "w ww y q", "5 18 123 2"},
      {"2001-05-03", "\"day\" d \\d", "day 3 d"},
      {"2001-05-03", "yyyymmdd", "20010503"},
      {"2001-05-03T14:05:09", "mm hh mm", "05 14 05"},
      {"2001-05-03", "0", "37014"},
      {"2001-05-03", "\"open", "open"},
      {"2001-05-03", "d\\", "3"},
  };
  for (const DateCase& one : cases) {
    EXPECT_EQ(FormatText(*Date::FromIso(one.date), one.pattern), one.text) << one.date << " " << one.pattern;
  }
  EXPECT_EQ(FormatText(std::string("3/5/2001"), "yyyy-mm-dd"), "2001-05-03");
  EXPECT_EQ(FormatText(std::string("no date"), "yyyy-mm-dd"), "no date");
}

TEST(Format, Texts) {
  const auto format = [](std::string_view text, std::string_view pattern) {
    return FormatText(std::string(text), pattern);
  };
  EXPECT_EQ(format("abc", ">"), "ABC");
  EXPECT_EQ(format("ÉA", "<"), "éa");
  EXPECT_EQ(format("abc", "@@@@@"), "  abc");
  EXPECT_EQ(format("abc", "!@@@@@"), "abc  ");
  EXPECT_EQ(format("abc", "&&&&&"), "abc");
  EXPECT_EQ(format("5551234", "@@@-@@@@"), "555-1234");
  EXPECT_EQ(format("abcdef", "@@"), "abcdef");
  EXPECT_EQ(format("abcdef", "@-@"), "abcde-f");
  EXPECT_EQ(format("abcdef", "!@-@"), "a-bcdef");
  EXPECT_EQ(format("abc", ">@@@@"), " ABC");
}

}  // namespace
}  // namespace tavi::access::sql
