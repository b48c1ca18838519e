#include <gtest/gtest.h>

#include "access/sql/support/SqlFile.h"

namespace tavi::access::test {
namespace {

using Texts = std::vector<std::string>;

TEST(Definition, TypesOfTheLanguageBecomeColumns) {
  SqlFile file;
  file.Run(
      "Create Table Types (A Long, B Integer, C Short, D Byte, E Single, F Double, G Currency, H Date, I Bit, "
      "J Text (10), K Memo, L Counter, M YesNo, N DateTime)");
  const auto rows = file.GetSession().OpenTable("Types");
  std::vector<ado::DataType> types;
  for (const auto& column : rows->Columns()) types.push_back(column.type);
  using ado::DataType;
  EXPECT_EQ(types,
            (std::vector{DataType::Integer, DataType::Integer, DataType::SmallInt, DataType::UnsignedTinyInt,
                         DataType::Single, DataType::Double, DataType::Currency, DataType::Date, DataType::Boolean,
                         DataType::WChar, DataType::WChar, DataType::Integer, DataType::Boolean, DataType::Date}));
  file.ExpectSound();
}

TEST(Definition, IndexesAreMadeUsedAndDropped) {
  SqlFile file;
  MakeClub(file);
  const std::string text = "Select MembershipNumber From Members Where LastName = 'Brown'";
  const Texts before = file.Rows(text);
  file.Run("Create Index LastName On Members (LastName Desc)");
  EXPECT_EQ(file.Explain(text), "Members: index LastName, LastName = 'Brown'; where LastName = 'Brown'\n");
  EXPECT_EQ(file.Rows(text), before);
  file.ExpectSound();
  file.Run("Drop Index LastName On Members");
  EXPECT_EQ(file.Explain(text), "Members: scan; where LastName = 'Brown'\n");
  EXPECT_EQ(file.Rows(text), before);
}

TEST(Definition, AUniqueIndexIsRefusedOverDuplicates) {
  SqlFile file;
  MakeClub(file);
  EXPECT_EQ(NumberOf(file.Refused("Create Unique Index LastName On Members (LastName)")), 0x80004005U);
  file.Run("Create Unique Index NumberAndName On Members (MembershipNumber, LastName)");
  file.ExpectSound();
}

TEST(Definition, AColumnMayBeAddedWithAUniqueIndex) {
  SqlFile file;
  MakeClub(file);
  file.Run("Alter Table ClubNames Add Column Code Text (5) Constraint CodeIndex Unique");
  file.Run("Insert into ClubNames (ClubName, Code) Values ('A', 'x')");
  EXPECT_EQ(NumberOf(file.Refused("Insert into ClubNames (ClubName, Code) Values ('B', 'X')")), 0x80004005U);
  file.ExpectSound();
}

TEST(Definition, AColumnTakesAnotherTypeWithItsValues) {
  SqlFile file;
  file.RunAll({"Create Table T (ID Counter Primary Key, A Long Default 7, B Text (10), C Memo)",
               "Insert into T (A, B, C) Values (5, '12', 'note')", "Insert into T (B) Values (Null)"});
  file.Run("Alter Table T Alter Column A Text (20)");
  file.Run("Alter Table T Alter Column B Double");
  file.Run("Alter Table T Alter Column C Text (100)");
  EXPECT_EQ(file.Rows("Select * From T"), (Texts{"1|5|12|note", "2|7|null|null"}));
  const auto rows = file.GetSession().OpenTable("T");
  EXPECT_EQ(rows->Columns()[1].type, ado::DataType::WChar);
  EXPECT_EQ(rows->Columns()[2].type, ado::DataType::Double);
  file.Run("Insert into T (B) Values (1.5)");
  EXPECT_EQ(file.Rows("Select A, B From T Where ID = 3"), (Texts{"7|1.5"})) << "the default stays";
  file.ExpectSound();
}

TEST(Definition, AColumnOfATableWithoutRowsBecomesACounter) {
  SqlFile file;
  file.RunAll({"Create Table T (A Long, B Text (5))", "Insert into T Values (5, 'x')", "Delete From T"});
  file.Run("Alter Table T Alter Column A Counter");
  file.RunAll({"Insert into T (B) Values ('y')", "Insert into T (B) Values ('z')"});
  EXPECT_EQ(file.Rows("Select * From T"), (Texts{"1|y", "2|z"}));
  file.ExpectSound();
}

TEST(Definition, ATextColumnGrowsInPlaceAndShrinksOnlyWhereTheValuesFit) {
  SqlFile file;
  file.RunAll({"Create Table T (A Text (5), Constraint K Primary Key (A))", "Insert into T Values ('abcde')"});
  file.Run("Alter Table T Alter Column A Text (9)");
  file.Run("Insert into T Values ('abcdefghi')");
  EXPECT_EQ(NumberOf(file.Refused("Alter Table T Alter Column A Text (5)")), 0x80004005U);
  EXPECT_EQ(file.Rows("Select A From T"), (Texts{"abcde", "abcdefghi"}));
  for (int i = 0; i < 300; ++i) file.Run("Alter Table T Alter Column A Text (" + std::to_string(10 + i % 2) + ")");
  file.ExpectSound();
}

TEST(Definition, ATypeThatTheValuesDoNotFitIsRefusedAndLeavesTheTable) {
  SqlFile file;
  file.RunAll({"Create Table T (A Text (5), B Long)", "Create Index I On T (B)", "Insert into T Values ('x', 1)"});
  EXPECT_EQ(NumberOf(file.Refused("Alter Table T Alter Column A Long")), 0x80040E07U);
  EXPECT_EQ(NumberOf(file.Refused("Alter Table T Alter Column B Text (5)")), 0x80004005U) << "an index uses it";
  EXPECT_EQ(NumberOf(file.Refused("Alter Table T Alter Column B Counter")), 0x80004005U);
  EXPECT_EQ(NumberOf(file.Refused("Alter Table T Alter Column C Long")), 0x80040E10U);
  EXPECT_EQ(file.Rows("Select * From T"), (Texts{"x|1"}));
  file.ExpectSound();
}

TEST(Definition, ForeignKeysAreEnforcedFromTheirDeclarationOn) {
  SqlFile file;
  file.RunAll({"Create Table P (ID Long Constraint PrimaryKey Primary Key, N Text (5))",
               "Create Table C (ID Counter Primary Key, P Long Constraint PC References P On Delete Cascade)",
               "Insert into P Values (1, 'a')", "Insert into C (P) Values (1)"});
  EXPECT_EQ(NumberOf(file.Refused("Insert into C (P) Values (2)")), 0x80040E2FU);
  file.Run("Delete From P");
  EXPECT_EQ(file.Rows("Select Count(*) From C"), (Texts{"0"}));
  EXPECT_THROW(file.Run("Drop Table P"), Error);
  file.Run("Alter Table C Drop Constraint PC");
  file.Run("Insert into C (P) Values (2)");
  EXPECT_THROW(file.Run("Alter Table C Add Foreign Key (P) References P (ID)"), Error) << "a row has no partner";
  file.RunAll({"Insert into P Values (2, 'b')", "Alter Table C Add Foreign Key (P) References P (ID) On Update Cascade",
               "Update P Set ID = 3"});
  EXPECT_EQ(file.Rows("Select P From C"), (Texts{"3"}));
  EXPECT_EQ(NumberOf(file.Refused("Create Table D (A Text (5) References C (P))")), 0x80004005U) << "no unique index";
  EXPECT_EQ(NumberOf(file.Refused("Create Table D (A Text (5) References P (ID))")), 0x80004005U) << "another type";
  EXPECT_FALSE(file.GetSession().HasTable("D"));
  file.ExpectSound();
}

TEST(Definition, AFailedCreateLeavesNothing) {
  SqlFile file;
  EXPECT_THROW(file.Run("Create Table Bad (A Long, B Long, Constraint K Primary Key (C))"), Error);
  EXPECT_FALSE(file.GetSession().HasTable("Bad"));
  file.Run("Create Table Bad (A Long)");
  file.Run("Drop Table Bad");
  EXPECT_FALSE(file.GetSession().HasTable("Bad"));
  EXPECT_EQ(NumberOf(file.Refused("Drop Table Bad")), 0x80040E37U);
  file.ExpectSound();
}

}  // namespace
}  // namespace tavi::access::test
