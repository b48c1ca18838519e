#include "platform/values/Date.h"

#include <gtest/gtest.h>

#include <limits>

#include "platform/values/Error.h"

namespace tavi {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

TEST(Date, CountsDaysSinceTheThirtiethOfDecember1899) {
  EXPECT_EQ(Date::FromCivil(1899, 12, 30).days, 0.0);
  EXPECT_EQ(Date::FromCivil(1899, 12, 29).days, -1.0);
  EXPECT_EQ(Date::FromCivil(2000, 1, 1).days, 36526.0);
  EXPECT_EQ(Date::FromCivil(100, 1, 1).days, -657434.0);
  EXPECT_EQ(Date::FromCivil(9999, 12, 31).days, 2958465.0);
}

TEST(Date, RefusesDaysThatDoNotExist) {
  const auto refused = [](int year, int month, int day) {
    try {
      static_cast<void>(Date::FromCivil(year, month, day));
      return false;
    } catch (const Error& error) {
      return error.Is(ErrorNumber::InvalidArgument);
    }
  };
  EXPECT_TRUE(refused(2001, 2, 29));
  EXPECT_TRUE(refused(2001, 13, 1));
  EXPECT_TRUE(refused(2001, 0, 1));
  EXPECT_TRUE(refused(2001, 1, 0));
  EXPECT_TRUE(refused(2001, 1, 257));
  EXPECT_TRUE(refused(99, 1, 1));
  EXPECT_TRUE(refused(10000, 1, 1));
  EXPECT_FALSE(refused(2000, 2, 29));
}

TEST(Date, CivilIsTheInverseOfFromCivil) {
  for (int day = -657434; day <= 2958465; day += 97) {
    const CivilDay civil = Date{static_cast<double>(day)}.Civil();
    ASSERT_EQ(Date::FromCivil(civil.year, civil.month, civil.day).DayNumber(), day);
  }
}

TEST(Date, TheFractionIsThePositiveTimeOfDayBeforeTheZeroDateToo) {
  EXPECT_EQ(Date{-1.25}.Iso(), "1899-12-29T06:00:00");
  EXPECT_EQ(Date{-0.25}.Iso(), "1899-12-30T06:00:00");
  EXPECT_EQ(Date{1.25}.Iso(), "1899-12-31T06:00:00");
  EXPECT_EQ(Date::FromIso("1899-12-29T06:00:00"), Date{-1.25});
}

TEST(Date, SecondOfDayNeverReachesTheNextDay) {
  EXPECT_EQ(Date{36526.75}.SecondOfDay(), 64800);
  EXPECT_EQ(Date{36526.9999999}.SecondOfDay(), 86399);
  EXPECT_EQ(Date{36526.0}.SecondOfDay(), 0);
}

TEST(Date, DayOnlyDropsTheTime) {
  EXPECT_EQ(Date{36526.9}.DayOnly(), Date{36526.0});
  EXPECT_EQ(Date{-1.9}.DayOnly(), Date{-1.0});
}

TEST(Date, ValuesOfDamagedFilesAreReadAsTheNearestDay) {
  EXPECT_EQ(Date{1e300}.Iso(), "9999-12-31");
  EXPECT_EQ(Date{-1e300}.Iso(), "0100-01-01");
  EXPECT_EQ(Date{std::numeric_limits<double>::infinity()}.SecondOfDay(), 0);
  EXPECT_EQ(Date{kNan}.DayNumber(), 0);
  EXPECT_EQ(Date{kNan}.SecondOfDay(), 0);
}

TEST(Date, AddYearsTurnsTheLeapDayIntoTheTwentyEighth) {
  EXPECT_EQ(Date::FromCivil(2000, 2, 29).AddYears(1), Date::FromCivil(2001, 2, 28));
  EXPECT_EQ(Date::FromCivil(2000, 2, 29).AddYears(4), Date::FromCivil(2004, 2, 29));
  EXPECT_EQ(Date{36526.5}.AddYears(-1).Iso(), "1999-01-01T12:00:00");
  EXPECT_EQ(Date{36526.5}.AddYears(-110).Iso(), "1890-01-01T12:00:00");
  EXPECT_THROW(static_cast<void>(Date{36526.0}.AddYears(std::numeric_limits<int>::max())), Error);
}

TEST(Date, WritesTheIsoFormWithATimeOnlyWhenThereIsOne) {
  EXPECT_EQ(Date::FromCivil(2001, 5, 3).Iso(), "2001-05-03");
  EXPECT_EQ(Date{37014.604166666664}.Iso(), "2001-05-03T14:30:00");
}

TEST(Date, WritesDayMonthYearInEnglish) {
  EXPECT_EQ(Date::FromCivil(2001, 5, 3).DayMonthYear(), "3 May 2001");
  EXPECT_EQ(Date::FromCivil(2000, 12, 31).DayMonthYear(), "31 Dec 2000");
}

TEST(Date, ReadsTheIsoForm) {
  EXPECT_EQ(Date::FromIso("2001-05-03"), Date::FromCivil(2001, 5, 3));
  EXPECT_EQ(Date::FromIso("2001-05-03T12:00:00"), Date{37014.5});
  EXPECT_EQ(Date::FromIso("2001-05-03 12:00:00"), Date{37014.5});
}

TEST(Date, ReadsNothingFromOtherTexts) {
  for (const char* text :
       {"", "2001-5-3", "2001-02-29", "2001/05/03", "2001-05-03T", "2001-05-03T24:00:00", "2001-05-03T12:00",
        "2001-05-03x12:00:00", "20x1-05-03", "2001-05-03T12:60:00", "2001-05-0"}) {
    EXPECT_FALSE(Date::FromIso(text).has_value()) << text;
  }
}

}  // namespace
}  // namespace tavi
