// BEGIN, COMMIT and ROLLBACK: how they are written, how they nest, and that nothing that a session remembers outlives a
// rollback.
#include <gtest/gtest.h>

#include "access/sql/run/Session.h"
#include "access/sql/support/SqlFile.h"
#include "platform/values/Error.h"

namespace tavi::access::test {
namespace {

class TransactionTest : public ::testing::Test {
 protected:
  void SetUp() override {
    file_.RunAll({"Create Table Members (ID Counter Constraint K Primary Key, Name Text (50), Points Long)",
                  "Create Unique Index ByName On Members (Name)",
                  "Insert Into Members (Name, Points) Values ('Ann', 1)",
                  "Insert Into Members (Name, Points) Values ('Bob', 2)"});
  }
  std::vector<std::string> Names() { return file_.Rows("Select Name From Members Order By ID"); }
  using Texts = std::vector<std::string>;

  SqlFile file_;
};

TEST_F(TransactionTest, IsWrittenInSeveralWays) {
  for (const char* begin : {"BEGIN", "begin transaction;"}) {
    for (const char* end :
         {"COMMIT", "Commit Transaction", "commit work;", "ROLLBACK", "Rollback Transaction ;", "rollback work"}) {
      EXPECT_EQ(file_.Run(begin), 0);
      EXPECT_EQ(file_.File().Get().GetPager().TransactionLevel(), 1) << begin;
      EXPECT_EQ(file_.Run(end), 0);
      EXPECT_EQ(file_.File().Get().GetPager().TransactionLevel(), 0) << end;
    }
  }
  for (const char* wrong :
       {"Begin Work", "Begin Transaction Transaction", "Commit Members", "Rollback To Members", "Commit 'now'"}) {
    EXPECT_EQ(NumberOf(file_.Refused(wrong)), 0x80040E14U) << wrong;
  }
  EXPECT_EQ(file_.Rows("Explain Begin"), Texts{"definition, no plan"});
  EXPECT_EQ(file_.File().Get().GetPager().TransactionLevel(), 0);
}

TEST_F(TransactionTest, ItsWordsAreNamesElsewhere) {
  file_.RunAll({"Create Table [Begin] (Commit Long, Rollback Long, Transaction Long, Work Long)",
                "Insert Into [Begin] (Commit, Rollback, Transaction, Work) Values (1, 2, 3, 4)"});
  EXPECT_EQ(file_.Rows("Select Commit, Rollback, Transaction, Work From Begin"), Texts{"1|2|3|4"});
}

TEST_F(TransactionTest, WithoutOneThereIsNothingToEnd) {
  EXPECT_EQ(NumberOf(file_.Refused("Commit")), 0x80004005U);
  EXPECT_EQ(NumberOf(file_.Refused("Rollback")), 0x80004005U);
}

TEST_F(TransactionTest, OthersSeeTheStateBeforeUntilTheCommit) {
  const auto other = file_.NewUser();
  file_.RunAll({"Begin", "Insert Into Members (Name) Values ('Cid')", "Delete From Members Where Name = 'Ann'",
                "Create Table New (A Long)"});
  EXPECT_EQ(Names(), (Texts{"Bob", "Cid"}));
  EXPECT_EQ(other->Rows("Select Name From Members Order By ID"), (Texts{"Ann", "Bob"}));
  EXPECT_FALSE(other->GetSession().HasTable("New"));
  file_.Run("Commit");
  EXPECT_EQ(other->Rows("Select Name From Members Order By ID"), (Texts{"Bob", "Cid"}));
  EXPECT_TRUE(other->GetSession().HasTable("New"));
  file_.ExpectSound();
}

TEST_F(TransactionTest, AStatementThatFailsUndoesOnlyItself) {
  file_.RunAll({"Begin", "Insert Into Members (Name, Points) Values ('Cid', 3)"});
  EXPECT_EQ(NumberOf(file_.Refused("Update Members Set Name = 'Ann' Where Points >= 2")), 0x80004005U);
  EXPECT_EQ(NumberOf(file_.Refused("Insert Into Members (Name) Select Name From Members")), 0x80004005U);
  EXPECT_EQ(Names(), (Texts{"Ann", "Bob", "Cid"}));
  file_.RunAll({"Insert Into Members (Name) Values ('Dan')", "Commit"});
  EXPECT_EQ(Names(), (Texts{"Ann", "Bob", "Cid", "Dan"}));
  file_.ExpectSound();
}

TEST_F(TransactionTest, TheyNest) {
  file_.RunAll({"Begin", "Insert Into Members (Name) Values ('outer')", "Begin",
                "Insert Into Members (Name) Values ('inner')", "Rollback"});
  EXPECT_EQ(Names(), (Texts{"Ann", "Bob", "outer"}));
  file_.RunAll({"Begin", "Insert Into Members (Name) Values ('kept')", "Commit"});
  EXPECT_EQ(Names(), (Texts{"Ann", "Bob", "outer", "kept"}));
  file_.Run("Rollback");
  EXPECT_EQ(Names(), (Texts{"Ann", "Bob"}));
  file_.ExpectSound();
}

TEST_F(TransactionTest, DefinitionsAreRolledBackWithAllThatIsRememberedOfThem) {
  const Texts before = file_.Rows("Select * From Members");
  file_.RunAll({"Begin", "Alter Table Members Add Column Club Text (20) Default 'none'",
                "Insert Into Members (Name) Values ('Cid')", "Drop Index ByName On Members",
                "Insert Into Members (Name) Values ('Ann')", "Create Table Results (ID Counter, Player Long)",
                "Create Index ByPlayer On Results (Player)", "Insert Into Results (Player) Values (7)",
                "Alter Table Members Alter Column Points Text (10)"});
  EXPECT_EQ(file_.Rows("Select Name, Points, Club From Members Where ID > 2"),
            (Texts{"Cid|null|none", "Ann|null|none"}));
  EXPECT_EQ(file_.Rows("Select * From Results"), Texts{"1|7"});
  file_.Run("Rollback");
  EXPECT_EQ(file_.Rows("Select * From Members"), before);
  EXPECT_EQ(NumberOf(file_.Refused("Select Club From Members")), 0x80040E10U);
  EXPECT_EQ(NumberOf(file_.Refused("Select * From Results")), 0x80040E37U);
  EXPECT_EQ(NumberOf(file_.Refused("Insert Into Members (Name) Values ('Ann')")), 0x80004005U);
  EXPECT_EQ(NumberOf(file_.Refused("Insert Into Members (Name, Points) Values ('Eve', 'many')")), 0x80040E07U);
  file_.Run("Create Table Results (ID Long)");
  EXPECT_EQ(file_.Rows("Select Count(*) From Results"), Texts{"0"});
  file_.ExpectSound();
}

TEST_F(TransactionTest, ADroppedTableComesBackWithItsRowsAndIndexes) {
  file_.RunAll(
      {"Begin", "Drop Table Members", "Create Table Members (ID Long)", "Insert Into Members (ID) Values (5)"});
  EXPECT_EQ(file_.Rows("Select * From Members"), Texts{"5"});
  file_.Run("Rollback");
  EXPECT_EQ(file_.Rows("Select Name From Members Where Name = 'Bob'"), Texts{"Bob"});
  EXPECT_NE(file_.Explain("Select * From Members Where Name = 'Bob'").find("index ByName"), std::string::npos);
  file_.ExpectSound();
}

TEST_F(TransactionTest, AutomaticNumbersGoOnWhereTheFileStands) {
  file_.RunAll({"Begin", "Insert Into Members (Name) Values ('Cid')", "Insert Into Members (Name) Values ('Dan')",
                "Rollback", "Insert Into Members (Name) Values ('Eve')"});
  EXPECT_EQ(file_.Rows("Select ID From Members Where Name = 'Eve'"), Texts{"3"});
}

TEST_F(TransactionTest, IndexesInMemoryForgetWhatWasRolledBack) {
  file_.Run("Create Table Long1 (A Long, B Text (10))");
  for (int i = 0; i < 60; ++i) {
    file_.Run("Insert Into Long1 (A, B) Values (" + std::to_string(i) + ", 'b" + std::to_string(i) + "')");
  }
  const std::string find = "Select L.B From Long1 As K Inner Join Long1 As L On K.A = L.A Where K.A = 7";
  const auto look = [&] {
    Texts rows;
    for (int times = 0; times < 3; ++times) rows = file_.Rows(find);
    return rows;
  };
  EXPECT_EQ(look(), Texts{"b7"});
  file_.RunAll({"Begin", "Update Long1 Set A = 1000 Where A = 7", "Insert Into Long1 (A, B) Values (7, 'new')"});
  EXPECT_EQ(look(), Texts{"new"});
  file_.RunAll({"Begin", "Update Long1 Set B = 'newer' Where A = 7"});
  EXPECT_EQ(look(), Texts{"newer"});
  file_.Run("Rollback");
  EXPECT_EQ(look(), Texts{"new"});
  file_.Run("Rollback");
  EXPECT_EQ(look(), Texts{"b7"});
}

TEST_F(TransactionTest, ResultSetsShowTheRowsAsTheyAreAfterARollback) {
  const auto rows = file_.Open("Select Name, Points From Members Order By ID");
  file_.RunAll({"Begin", "Update Members Set Points = 100"});
  EXPECT_EQ(rows->Get(1), Value(std::int32_t{100}));
  file_.Run("Rollback");
  EXPECT_EQ(rows->Get(1), Value(std::int32_t{1}));
  file_.Run("Begin");
  rows->Set(1, Value(std::int32_t{50}));
  rows->Update();
  rows->AddNew();
  rows->Set(0, Value(std::string("Cid")));
  rows->Update();
  EXPECT_EQ(rows->Get(0), Value(std::string("Cid")));
  file_.Run("Rollback");
  EXPECT_THROW(static_cast<void>(rows->Get(0)), Error);
  rows->MovePrevious();
  EXPECT_EQ(rows->Get(0), Value(std::string("Bob")));
  rows->MovePrevious();
  EXPECT_EQ(rows->Get(1), Value(std::int32_t{1}));
}

TEST_F(TransactionTest, AResultSetOnATableThatARollbackTookAwaySaysSo) {
  file_.RunAll(
      {"Begin", "Create Table New (A Long)", "Insert Into New (A) Values (1)", "Insert Into New (A) Values (2)"});
  const auto rows = file_.Open("Select A From New");
  file_.Run("Rollback");
  try {
    static_cast<void>(rows->Get(0));
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_EQ(error.Description(),
              "The table 'New' has been altered since the record set was opened. Open the record set again.");
  }
}

TEST_F(TransactionTest, ATableThatHasGrownAndShrunkIsPlannedAnew) {
  file_.Run("Create Table Many (A Long)");
  file_.RunAll({"Begin", "Insert Into Many (A) Select A.ID From Members A, Members B, Members C, Members D"});
  EXPECT_EQ(file_.Rows("Select Count(*) From Many"), Texts{"16"});
  for (int i = 0; i < 5; ++i) file_.Run("Insert Into Many (A) Select A.A From Many A");
  EXPECT_EQ(file_.Rows("Select Count(*) From Many"), Texts{"512"});
  file_.Run("Rollback");
  EXPECT_EQ(file_.Rows("Select Count(*) From Many"), Texts{"0"});
  EXPECT_EQ(file_.Rows("Select * From Many"), Texts{});
  file_.ExpectSound();
}

}  // namespace
}  // namespace tavi::access::test
