#include <gtest/gtest.h>

#include "SourceDirectory.h"
#include "host/sql/Query.h"
#include "host/support/Command.h"
#include "platform/Matchers.h"

namespace tavi::host {
namespace {

TEST(StatementText, SemicolonsWithinQuotesBracketsAndDatesBelongToTheStatement) {
  EXPECT_EQ(EndOfStatement("Select 1; Select 2"), 9U);
  EXPECT_EQ(EndOfStatement("Select ';' ;"), 12U);
  EXPECT_EQ(EndOfStatement("Select 'it''s;' ;"), 17U);
  EXPECT_EQ(EndOfStatement("Select \";\", [a;b], #1/2/2003;# ;"), 32U);
  EXPECT_EQ(EndOfStatement("Select 1"), std::nullopt);
  EXPECT_EQ(EndOfStatement("Select 'open;"), std::nullopt);
}

TEST(StatementText, TellsStatementsThatGiveRows) {
  EXPECT_TRUE(GivesRows("select 1"));
  EXPECT_TRUE(GivesRows("\n (Select 1) Union Select 2"));
  EXPECT_TRUE(GivesRows("Select 'x into y', [Into] From T"));
  EXPECT_TRUE(GivesRows("Explain Update T Set A = 1"));
  EXPECT_FALSE(GivesRows("Select * Into U From T"));
  EXPECT_FALSE(GivesRows("Insert Into T Select 1"));
  EXPECT_FALSE(GivesRows(""));
}

TEST(StatementText, MarksThePlaceInItsLine) {
  EXPECT_EQ(MarkPlace("Select a,\n b b c\nFrom T", 13), " b b c\n   ^");
  EXPECT_EQ(MarkPlace("Select", 100), "Select\n      ^");
  EXPECT_EQ(MarkPlace("Séléct é x", 9), "Séléct é x\n         ^");
}

class SqlCommand : public ::testing::Test {
 protected:
  SqlCommand() {
    const Outcome made = folder_.Run({"new", "--name", "Club"});
    EXPECT_EQ(made.code, 0) << made.error;
    EXPECT_EQ(folder_.Run({"sql", "Create Table T (ID Long Constraint PrimaryKey Primary Key, Name Text (20))"}).code,
              0);
    EXPECT_EQ(folder_.Run({"sql", "Insert into T Values (1, 'one')"}).code, 0);
  }

  CommandFolder folder_;
};

TEST_F(SqlCommand, ExplainShowsTheIndexAndLeavesTheRows) {
  std::string more;
  for (int i = 2; i < 100; ++i) more += "Insert into T (ID) Values (" + std::to_string(i) + ");";
  EXPECT_EQ(folder_.Run({"sql"}, more).code, 0);
  const Outcome outcome = folder_.Run({"sql", "--explain", "Delete From T Where ID = 1"});
  EXPECT_EQ(outcome.code, 0) << outcome.error;
  EXPECT_EQ(outcome.out, "Plan\nT: index PrimaryKey, ID = 1; where ID = 1\n");
  EXPECT_EQ(folder_.Query("Select Name From T Where ID = 1"), (std::vector<std::string>{"one"}));
}

TEST_F(SqlCommand, ErrorsPointAtThePlace) {
  const Outcome outcome = folder_.Run({"sql", "Select *\nForm T"});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_EQ(outcome.error.substr(0, outcome.error.find("tavi:")), "Form T\n^\n");
  EXPECT_EQ(folder_.Run({"sql", "--explain", "Select *\nForm T"}).error, outcome.error);
}

TEST_F(SqlCommand, StatementsArePipedIn) {
  const Outcome outcome = folder_.Run({"sql"},
                                      "Insert into T\n Values (2, 'a;b'); Insert into T Values (3, 'c');\r\n\n"
                                      "Select Name From T Order By ID Desc;\nSelect Count(*) As N From T");
  EXPECT_EQ(outcome.code, 0) << outcome.error;
  EXPECT_EQ(outcome.out, "Rows\n1\nRows\n1\nName\nc\na;b\none\nN\n3\n");
}

TEST_F(SqlCommand, PipedStatementsMayComeFromAnEditorOfWindows) {
  const Outcome outcome = folder_.Run({"sql"}, "\xEF\xBB\xBFSelect Count(*) As Found\r\nFrom T;\r\n.columns T\r\n");
  EXPECT_EQ(outcome.code, 0) << outcome.error;
  EXPECT_THAT(outcome.out, testing::StartsWith("Found\n"));
  EXPECT_THAT(outcome.out, testing::EndsWith("Column\tType\nID\tLong\nName\tText\n"));
}

TEST_F(SqlCommand, PipedTextsOverSeveralLinesKeepTheirCarriageReturns) {
  const Outcome outcome = folder_.Run({"sql"}, "Insert into T\r\nValues (2, 'a\r\nb\nc');\r\n.quit\r\nnonsense;\r\n");
  EXPECT_EQ(outcome.code, 0) << outcome.error;
  EXPECT_EQ(folder_.Query("Select Name From T Where ID = 2"), (std::vector<std::string>{"a\\r\\nb\\nc"}));
  EXPECT_EQ(folder_.Run({"sql"}, "Selct 1\r\n;").error.substr(0, 9), "Selct 1\n^");
}

TEST_F(SqlCommand, APathIsAPathWhateverIsInIt) {
  const std::string odd = folder_.Path("a;Data Source=b=c 'd'");
  ASSERT_EQ(folder_.RunIn(odd, {"new", "--name", "Odd"}).code, 0);
  EXPECT_EQ(folder_.RunIn(odd, {"sql", "Select ClubName From ClubNames"}).out, "ClubName\nOdd\n");
  const std::string file = odd + "/ClubMembers.mdb";
  EXPECT_EQ(folder_.Run({"sql", "--file", file, "Select ClubName From ClubNames"}).out, "ClubName\nOdd\n");
  EXPECT_NE(folder_.RunIn(odd, {"info"}).out.find("Club\tOdd\n"), std::string::npos);
  EXPECT_EQ(
      folder_.RunIn(odd, {"members", "import", folder_.Write("m.csv", "club_number,first,last\n1,Ann,Lee\n")}).code, 0);
  EXPECT_EQ(folder_.RunIn(odd, {"check"}).code, 0);
  EXPECT_EQ(folder_.RunIn(odd, {"recover", "--replace", folder_.ClubFile()}).code, 0);
  EXPECT_EQ(folder_.RunIn(odd, {"sql", "Select ClubName From ClubNames"}).out, "ClubName\nClub\n");
}

TEST_F(SqlCommand, APathCannotNameAnotherFileBehindASemicolon) {
  const Outcome outcome = folder_.Run({"sql", "--file", "/nothing;Data Source=" + folder_.ClubFile(), "Select 1"});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_EQ(outcome.out, "");
}

TEST_F(SqlCommand, TheFirstErrorEndsAPipedRun) {
  const Outcome outcome =
      folder_.Run({"sql"}, "Insert into T Values (2, 'x'); Insert into T Values (2, 'y'); Delete From T;");
  EXPECT_EQ(outcome.code, 1);
  EXPECT_NE(outcome.error, "");
  EXPECT_EQ(folder_.Query("Select Name From T"), (std::vector<std::string>{"one", "x"}));
}

TEST_F(SqlCommand, APipedRunGoesOnAfterErrorsWhenToldSo) {
  const Outcome outcome =
      folder_.Run({"sql"}, ".bail off\nInsert into T Values (1, 'again');\nInsert into T Values (2, 'x');");
  EXPECT_EQ(outcome.code, 1);
  EXPECT_EQ(folder_.Query("Select Name From T"), (std::vector<std::string>{"one", "x"}));
}

TEST_F(SqlCommand, SeveralStatementsCanBeOne) {
  const Outcome kept = folder_.Run(
      {"sql"}, "Begin; Insert into T Values (2, 'x'); Begin Transaction; Delete From T; Rollback; Commit Transaction;");
  EXPECT_EQ(kept.code, 0) << kept.error;
  EXPECT_EQ(folder_.Query("Select Name From T Order By ID"), (std::vector<std::string>{"one", "x"}));
  EXPECT_EQ(folder_.Run({"sql"}, "Begin; Delete From T; Rollback;").code, 0);
  EXPECT_EQ(folder_.Query("Select Name From T Order By ID"), (std::vector<std::string>{"one", "x"}));
  EXPECT_EQ(folder_.Run({"sql"}, "Commit;").code, 1);
}

TEST_F(SqlCommand, AnUnfinishedTransactionIsRolledBackAndSaid) {
  const std::string said =
      "tavi: The transaction was not committed, so all that was done in it has been rolled back.\n";
  for (const char* input : {"Begin; Delete From T; Select Count(*) As N From T;",
                            "Begin; Begin; Delete From T; Commit;\n.quit\nCommit;", "Begin; Delete From T; Begin"}) {
    const Outcome outcome = folder_.Run({"sql"}, input);
    EXPECT_EQ(outcome.code, 1) << input;
    EXPECT_EQ(outcome.error, said) << input;
  }
  const Outcome afterError = folder_.Run({"sql"}, "Begin; Delete From T; Selct; Commit;");
  EXPECT_EQ(afterError.code, 1);
  EXPECT_THAT(afterError.error, testing::EndsWith(said));
  const Outcome alone = folder_.Run({"sql", "Begin"});
  EXPECT_EQ(alone.code, 1);
  EXPECT_EQ(alone.error, said);
  EXPECT_EQ(folder_.Query("Select Name From T"), (std::vector<std::string>{"one"}));
}

TEST_F(SqlCommand, CommandsListTablesAndColumns) {
  const Outcome tables = folder_.Run({"sql"}, ".tables\n");
  EXPECT_NE(tables.out.find("\nMembers\n"), std::string::npos) << tables.out;
  EXPECT_EQ(tables.out.find("MSys"), std::string::npos);
  for (const char* written : {"T", "[T]", "t;", "[T] ;"}) {
    EXPECT_EQ(folder_.Run({"sql"}, ".columns " + std::string(written) + "\n").out,
              "Column\tType\nID\tLong\nName\tText\n");
  }
  EXPECT_EQ(folder_.Run({"sql"}, ".explain on\nDelete From T;\n.explain off\nSelect ID From T;").out,
            "Plan\nT: scan\nID\n1\n");
  EXPECT_NE(folder_.Run({"sql"}, ".help").out.find(".quit"), std::string::npos);
  EXPECT_EQ(folder_.Run({"sql"}, ".quit\nDelete From T;").out, "");
  EXPECT_EQ(folder_.Run({"sql"}, ".flush\n.flush on\nDelete From T Where ID = 99;\n.flush off\nSelect ID From T;").code,
            0);
  EXPECT_EQ(folder_.Run({"sql"}, ".flush sometimes\n").code, 1);
  EXPECT_EQ(folder_.Run({"sql"}, ".nonsense\n").code, 1);
  EXPECT_EQ(folder_.Run({"sql"}, ".columns Nothing\n").code, 1);
}

TEST_F(SqlCommand, AnotherFileCanBeNamed) {
  const Outcome outcome = folder_.Run({"sql", "--file", folder_.ClubFile(), "Select Name From T"});
  EXPECT_EQ(outcome.out, "Name\none\n") << outcome.error;
  EXPECT_EQ(folder_.Run({"sql", "--file", folder_.Path("nothing.mdb"), "Select 1"}).code, 1);
}

TEST_F(SqlCommand, TheFileItselfCanBeNamedInPlaceOfItsFolder) {
  const std::string copy = folder_.Path("other.mdb");
  std::filesystem::copy_file(folder_.ClubFile(), copy);
  EXPECT_EQ(folder_.RunIn(copy, {"sql", "Select Name From T"}).out, "Name\none\n");
  EXPECT_EQ(folder_.RunIn(folder_.ClubFile(), {"members"}).code, 0);
  const Outcome refused = folder_.RunIn(copy, {"members"});
  EXPECT_EQ(refused.code, 1);
  EXPECT_NE(refused.error.find("Name the folder"), std::string::npos) << refused.error;
}

TEST_F(SqlCommand, TheShellAtATerminalEditsLinesAndKeepsAHistory) {
#ifdef _WIN32
  GTEST_SKIP() << "there is no program that gives another one a terminal";
#endif
  // `script` gives the program a terminal; Up fetches the statement of the session before.
  const std::string tavi = std::string(TAVI_PROGRAM) + " --db " + folder_.Club() + " sql";
  const std::string environment = "TERM=xterm TAVI_HISTORY=" + folder_.Path("state/history");
  const std::string first = folder_.Write("first", "Begin;\rSelect Name From T\r;\rCommit;\r.quit\r");
  const std::string second = folder_.Write("second", "\x1b[A\x1b[A\r.quit\r");
  const auto run = [&](const std::string& keys) {
    return RunProgram("cat " + keys + " | " + environment + " script -qec '" + tavi + "' /dev/null");
  };
  const std::string shown = run(first).text;
  EXPECT_NE(shown.find("one"), std::string::npos);
  EXPECT_NE(shown.find("tavi*> "), std::string::npos) << shown;
  const ProgramOutput again = run(second);
  EXPECT_NE(again.text.find("one"), std::string::npos) << again.text;
  EXPECT_NE(again.text.find("tavi> "), std::string::npos) << again.text;
}

TEST_F(SqlCommand, CtrlCGivesUpTheStatementAndNotTheShell) {
#ifdef _WIN32
  GTEST_SKIP() << "there is no program that gives another one a terminal";
#endif
  std::string rows;
  for (int i = 2; i < 60; ++i) rows += "Insert into T (ID) Values (" + std::to_string(i) + ");";
  ASSERT_EQ(folder_.Run({"sql"}, rows).code, 0);
  // Would go on for hours.
  const std::string endless = folder_.Write(
      "endless",
      "Update T Set Name = 'two' Where (Select Count(*) From T As A, T As B, T As C, T As D, T As E, T As F) > 0;\r");
  const std::string key = folder_.Write("key", "\x03");
  const std::string more = folder_.Write("more", "Select 'go' & 'ing on';\r.quit\r");
  const std::string tavi = std::string(TAVI_PROGRAM) + " --db " + folder_.Club() + " sql";
  const std::string shown =
      RunProgram("(cat " + endless + "; sleep 0.5; for i in 1 2 3 4 5 6; do cat " + key + "; sleep 0.5; done; cat " +
                 more + ") | TERM=xterm TAVI_HISTORY=" + folder_.Path("history") + " timeout 60 script -qec '" + tavi +
                 "' /dev/null")
          .text;
  EXPECT_NE(shown.find("The statement was cancelled. Nothing of it was stored."), std::string::npos) << shown;
  EXPECT_EQ(folder_.Query("Select Count(*) From T Where Name = 'two'"), (std::vector<std::string>{"0"}));
}

}  // namespace
}  // namespace tavi::host
