#include <gtest/gtest.h>

#include "access/sql/support/SqlFile.h"

namespace tavi::access::test {
namespace {

struct RefusedStatement {
  const char* text;
  std::uint32_t number;
  const char* part;  // of the description
};

class ExecutionErrorTest : public ::testing::TestWithParam<RefusedStatement> {};

TEST_P(ExecutionErrorTest, SaysWhatIsWrong) {
  SqlFile file;
  MakeClub(file);
  const Error error = file.Refused(GetParam().text);
  EXPECT_EQ(NumberOf(error), GetParam().number) << GetParam().text << ": " << error.Description();
  EXPECT_NE(error.Description().find(GetParam().part), std::string::npos) << error.Description();
  EXPECT_EQ(error.Source(), "Microsoft JET Database Engine");
}

INSTANTIATE_TEST_SUITE_P(
    Statements, ExecutionErrorTest,
    ::testing::Values(
        RefusedStatement{"Select * From Nowhere", 0x80040E37U, "Nowhere"},
        RefusedStatement{"Update Nowhere Set X = 1", 0x80040E37U, "Nowhere"},
        RefusedStatement{"Insert into Nowhere (X) Values (1)", 0x80040E37U, "Nowhere"},
        RefusedStatement{"Delete From Nowhere", 0x80040E37U, "Nowhere"},
        RefusedStatement{"Select Shoe From Members", 0x80040E10U, "No value given for one or more required parameters"},
        RefusedStatement{"Select Members.Shoe From Members", 0x80040E10U, "Members.Shoe"},
        RefusedStatement{"Select FirstName From Members Where Shoe = 1", 0x80040E10U, "Shoe"},
        RefusedStatement{"Select FirstName From Members Order By Shoe", 0x80040E10U, "Shoe"},
        RefusedStatement{"Select FirstName From Members Where MembershipNumber In (Select Shoe From Results)",
                         0x80040E10U, "Shoe"},
        RefusedStatement{"Update Members Set Shoe = 1", 0x80040E10U, "Shoe"},
        RefusedStatement{"Insert into Members (Shoe) Values (1)", 0x80040E10U, "Shoe"},
        RefusedStatement{"Insert into Members (FirstName) Values (Shoe)", 0x80040E10U, "Shoe"},
        RefusedStatement{"Select ID From MasterPoints, Competitions", 0x80004005U, "more than one table"},
        RefusedStatement{"Select 1 From Members, Members", 0x80040E14U, "AS"},
        RefusedStatement{"Select FirstName, Count(*) From Members", 0x80040E14U, "FirstName"},
        RefusedStatement{"Select LastName From Members Group By FirstName", 0x80040E14U, "GROUP BY"},
        RefusedStatement{"Select FirstName From Members Where Count(*) > 1", 0x80040E14U, "WHERE"},
        RefusedStatement{"Select Sum(Count(*)) From Members", 0x80040E14U, "within another"},
        RefusedStatement{"Select * From Members Group By FirstName", 0x80040E14U, "SELECT *"},
        RefusedStatement{"Select *", 0x80040E14U, "FROM"},
        RefusedStatement{"Select FirstName From Members Order By 2", 0x80040E14U, "ORDER BY 2"},
        RefusedStatement{"Select FirstName From Members Union Select FirstName, LastName From Members", 0x80040E14U,
                         "columns"},
        RefusedStatement{"Select FirstName As A, LastName As a From Members", 0x80040E14U, "name"},
        RefusedStatement{"Select Sum(FirstName) From Members", 0x80040E07U, "Sum"},
        RefusedStatement{"Select FirstName From Members Where FirstName = 1", 0x80040E07U, "mismatch"},
        RefusedStatement{"Update Members Set FirstName = 'a', FirstName = 'b'", 0x80040E14U, "twice"},
        RefusedStatement{"Update Members Set Handicap = 'many'", 0x80040E07U, "Handicap"},
        RefusedStatement{"Selekt", 0x80040E14U, "Selekt"}));

TEST(ExecutionError, AReadOnlyFileIsNotChanged) {
  TestFile file;
  const std::string path = file.Path();
  file.Close();
  PagerOptions options;
  options.readOnly = true;
  Database database(Pager::Open(NativeFileSystem(), path, options));
  sql::Session session(database, std::make_shared<StillClock>());
  try {
    session.Run("Create Table T (A Long)");
    ADD_FAILURE() << "no error";
  } catch (const Error& error) {
    EXPECT_EQ(NumberOf(error), 0x80040E09U);
    EXPECT_NE(error.Description().find("Cannot update.  Database or object is read-only"), std::string::npos);
  }
  EXPECT_EQ(session.Run("Select 1").rows->Columns().size(), 1U);
}

TEST(ExecutionError, ADefaultThatCannotBeUsedNamesItsColumn) {
  SqlFile file;
  file.Run("Create Table T (A Long, B Long Default 'many')");
  const Error error = file.Refused("Insert into T (A) Values (1)");
  EXPECT_EQ(NumberOf(error), 0x80004005U);
  EXPECT_NE(error.Description().find("column 'B'"), std::string::npos);
  EXPECT_EQ(file.Run("Insert into T (A, B) Values (1, 2)"), 1);
}

}  // namespace
}  // namespace tavi::access::test
