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
