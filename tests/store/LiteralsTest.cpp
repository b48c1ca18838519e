#include <gtest/gtest.h>

#include "store/cDatabase.h"
#include "store/support/FakeFile.h"

namespace tavi {
namespace {

using testing::FakeRows;
using testing::MakeFakeRecordset;

TEST(SQLString, QuotesTrimsAndEscapes) {
  EXPECT_EQ(cDatabase::SQLString("Smith"), "'Smith'");
  EXPECT_EQ(cDatabase::SQLString("  Smith "), "'Smith'");
  EXPECT_EQ(cDatabase::SQLString("50% O'Neil"), "'50%p O''Neil'");
  EXPECT_EQ(cDatabase::SQLString("one\r\ntwo"), "'one%c%ltwo'");
  EXPECT_EQ(cDatabase::SQLString("100%c"), "'100%pc'") << "the percent sign is escaped first";
  EXPECT_EQ(cDatabase::SQLString("Éloïse"), "'Éloïse'");
}

TEST(SQLString, OfAnEmptyTextIsABlankOnlyWhenAskedFor) {
  EXPECT_EQ(cDatabase::SQLString("  ", true), "' '");
  EXPECT_EQ(cDatabase::SQLString("", true), "' '");
  EXPECT_EQ(cDatabase::SQLString("", false), "''");
  EXPECT_EQ(cDatabase::SQLString("x", true), "'x'");
}

TEST(SQLDate, IsTheDayNumberRoundedTiesToEven) {
  EXPECT_EQ(cDatabase::SQLDate(Date::FromCivil(2000, 1, 1)), "36526");
  EXPECT_EQ(cDatabase::SQLDate(Date{36526.75}), "36527");
  EXPECT_EQ(cDatabase::SQLDate(Date{36526.5}), "36526");
  EXPECT_EQ(cDatabase::SQLDate(Date{36527.5}), "36528");
  EXPECT_EQ(cDatabase::SQLDate(Date::FromCivil(1800, 1, 1)), "-36522");
  EXPECT_EQ(cDatabase::SQLDate(Date{}), "0");
  EXPECT_EQ(cDatabase::SQLDate(Date{-0.25}), "0");
}

class FieldReadersTest : public ::testing::Test {
 protected:
  std::unique_ptr<ado::Recordset> RowWith(const Value& value) {
    rows_ = FakeRows{{"F"}, {{value}}};
    return MakeFakeRecordset(rows_);
  }
  FakeRows rows_;
};

TEST_F(FieldReadersTest, TextComesBackAsItWasBeforeSQLString) {
  EXPECT_EQ(cDatabase::GetTextField(*RowWith(std::string("50%p O'Neil")), "F"), "50% O'Neil");
  EXPECT_EQ(cDatabase::GetTextField(*RowWith(std::string("one%c%ltwo")), "F"), "one\r\ntwo");
  EXPECT_EQ(cDatabase::GetTextField(*RowWith(std::string("100%pc")), "F"), "100%c");
}

TEST_F(FieldReadersTest, TextIsTrimmedOnlyWhenAskedFor) {
  EXPECT_EQ(cDatabase::GetTextField(*RowWith(std::string(" a ")), "F", false), " a ");
  EXPECT_EQ(cDatabase::GetTextField(*RowWith(std::string(" a ")), "F", true), "a");
}

TEST_F(FieldReadersTest, ANullTextGivesTheDefaultUnchanged) {
  EXPECT_EQ(cDatabase::GetTextField(*RowWith(Null()), "F", true, " 50%p "), " 50%p ");
}

TEST_F(FieldReadersTest, NumbersAreReadAsText) {
  EXPECT_EQ(cDatabase::GetTextField(*RowWith(std::int32_t{42}), "F"), "42");
}

TEST_F(FieldReadersTest, NullGivesTheDefault) {
  EXPECT_TRUE(cDatabase::GetBooleanField(*RowWith(Null()), "F", true));
  EXPECT_EQ(cDatabase::GetNumericField(*RowWith(Null()), "F", 50), 50);
  EXPECT_EQ(cDatabase::GetNonIntegerField(*RowWith(Null()), "F", 1.5), 1.5);
}

TEST_F(FieldReadersTest, ANullDateGivesTheDefaultWithoutItsTime) {
  const Date withTime{Date::FromCivil(2001, 5, 3).days + 14.5 / 24};
  EXPECT_EQ(cDatabase::GetDateField(*RowWith(Null()), "F", withTime), Date::FromCivil(2001, 5, 3));
  EXPECT_EQ(cDatabase::GetDateField(*RowWith(withTime), "F", Date{}), withTime) << "a stored time stays";
}

TEST_F(FieldReadersTest, ValuesAreConverted) {
  EXPECT_TRUE(cDatabase::GetBooleanField(*RowWith(std::int16_t{-1}), "F"));
  EXPECT_TRUE(cDatabase::GetBooleanField(*RowWith(std::int32_t{2}), "F"));
  EXPECT_FALSE(cDatabase::GetBooleanField(*RowWith(0.0), "F", true));
  EXPECT_EQ(cDatabase::GetNumericField(*RowWith(2.5), "F"), 2);
  EXPECT_EQ(cDatabase::GetNumericField(*RowWith(std::string("17")), "F"), 17);
  EXPECT_EQ(cDatabase::GetNonIntegerField(*RowWith(Currency{12500}), "F"), 1.25);
  EXPECT_EQ(cDatabase::GetDateField(*RowWith(std::int32_t{36526}), "F", Date{}), Date::FromCivil(2000, 1, 1));
}

TEST_F(FieldReadersTest, AMissingColumnGivesZeroAndNotTheDefault) {
  EXPECT_EQ(cDatabase::GetTextField(*RowWith(Null()), "X", false, "default"), "");
  EXPECT_FALSE(cDatabase::GetBooleanField(*RowWith(Null()), "X", true));
  EXPECT_EQ(cDatabase::GetNumericField(*RowWith(Null()), "X", 50), 0);
  EXPECT_EQ(cDatabase::GetNonIntegerField(*RowWith(Null()), "X", 50.0), 0.0);
  EXPECT_EQ(cDatabase::GetDateField(*RowWith(Null()), "X", Date{1.0}), Date{});
}

TEST_F(FieldReadersTest, AValueThatDoesNotConvertGivesZero) {
  EXPECT_FALSE(cDatabase::GetBooleanField(*RowWith(std::string("maybe")), "F", true));
  EXPECT_EQ(cDatabase::GetNumericField(*RowWith(std::string("x")), "F", 50), 0);
  EXPECT_EQ(cDatabase::GetNumericField(*RowWith(1e300), "F", 50), 0);
  EXPECT_EQ(cDatabase::GetNonIntegerField(*RowWith(std::string("x")), "F", 50.0), 0.0);
  EXPECT_EQ(cDatabase::GetDateField(*RowWith(std::string("x")), "F", Date{1.0}), Date{});
}

TEST_F(FieldReadersTest, WithoutACurrentRowEveryReaderGivesZero) {
  const auto row = RowWith(std::int32_t{7});
  row->MoveNext();
  EXPECT_EQ(cDatabase::GetNumericField(*row, "F", 50), 0);
}

TEST(BoolValue, IsTrueForEverythingButZero) {
  EXPECT_TRUE(cDatabase::BoolValue(-1));
  EXPECT_TRUE(cDatabase::CheckBoxValue(1));
  EXPECT_FALSE(cDatabase::BoolValue(0));
}

}  // namespace
}  // namespace tavi
