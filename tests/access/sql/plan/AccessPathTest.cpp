// Every way to an answer gives the same answer: scan, index of the file, index in memory, and a plain evaluation of the
// condition over all rows.
#include <gtest/gtest.h>
#include <random>

#include "access/sql/support/SqlFile.h"

namespace tavi::access::test {
namespace {

using Texts = std::vector<std::string>;

constexpr int kRows = 200;
constexpr int kConditions = 250;

/// A table with every kind of column, some of them indexed, and a second one to join with.
void MakeTables(SqlFile& file) {
  file.RunAll(
      {"Create Table T (ID Counter Constraint PrimaryKey Primary Key, A Long, B Short, C Text (20), D Date, "
       "E Double, F Bit, G Long, H Currency)",
       "Create Index AB On T (A, B)", "Create Index C On T (C)", "Create Index D On T (D Desc)",
       "Create Index E On T (E)", "Create Index H On T (H, A Desc)", "Create Table U (X Long, Y Text (20))"});
  std::mt19937 random(7);
  const auto pick = [&](int below) { return static_cast<int>(random() % static_cast<unsigned>(below)); };
  const std::vector<std::string> words = {"'smith'", "'Smith'", "'O''Neil'", "'ONeil'", "'Müller'",
                                          "'zoë'",   "'co-op'", "''",        "' x'",    "'x '"};
  const auto orNull = [&](const std::string& text) { return pick(10) == 0 ? std::string("Null") : text; };
  for (int i = 0; i < kRows; ++i) {
    file.Run("Insert into T (A, B, C, D, E, F, G, H) Values (" + orNull(std::to_string(pick(20) - 5)) + ", " +
             orNull(std::to_string(pick(4))) + ", " + orNull(words[static_cast<std::size_t>(pick(10))]) + ", " +
             orNull(std::to_string(45000 + pick(9))) + ", " + orNull(std::to_string(pick(50)) + ".5") + ", " +
             std::to_string(pick(2)) + ", " + orNull(std::to_string(pick(30))) + ", " +
             orNull(std::to_string(pick(8)) + ".25") + ")");
  }
  for (int i = 0; i < 60; ++i) {
    file.Run("Insert into U Values (" + orNull(std::to_string(pick(25))) + ", " +
             orNull(words[static_cast<std::size_t>(pick(10))]) + ")");
  }
}

/// Small random conditions over the columns of T.
class Conditions {
 public:
  explicit Conditions(unsigned seed) : random_(seed) {}

  std::string Next(int depth = 2) {
    if (depth == 0 || Pick(3) == 0) return Simple();
    const std::string left = Next(depth - 1);
    const std::string right = Next(depth - 1);
    if (Pick(6) == 0) return "Not (" + left + ")";
    return "(" + left + (Pick(2) == 0 ? " And " : " Or ") + right + ")";
  }

 private:
  int Pick(int below) { return static_cast<int>(random_() % static_cast<unsigned>(below)); }
  std::string Number(int below) { return std::to_string(Pick(below) - 2) + (Pick(4) == 0 ? ".5" : ""); }
  std::string Word() {
    static const std::vector<std::string> kWords = {"'SMITH'", "'o''neil'", "'oneil'", "'muller'", "'müller'",
                                                    "'x'",     "'coop'",    "'s'",     "''",       "'ZOË'"};
    return kWords[static_cast<std::size_t>(Pick(10))];
  }
  std::string Simple() {
    static const std::vector<std::string> kOperators = {" = ", " = ", " < ", " <= ", " > ", " >= ", " <> "};
    const std::string op = kOperators[static_cast<std::size_t>(Pick(7))];
    switch (Pick(12)) {
      case 0:
        return "A" + op + Number(20);
      case 1:
        return Number(20) + op + "A";
      case 2:
        return "B" + op + Number(5);
      case 3:
        return "C" + op + Word();
      case 4:
        return "D" + op + std::to_string(44998 + Pick(12)) + (Pick(3) == 0 ? ".5" : "");
      case 5:
        return "E" + op + Number(50);
      case 6:
        return "G" + op + Number(30);
      case 7:
        return "A Between " + Number(20) + " And " + Number(20);
      case 8:
        return "G In (" + Number(30) + ", Null, " + Number(30) + ")";
      case 9:
        return "C In (" + Word() + ", " + Word() + ")";
      case 10:
        return "H" + op + Number(8) + "25";
      default:
        return "F = " + std::to_string(Pick(3) - 1);
    }
  }

  std::mt19937 random_;
};

class AccessPathTest : public ::testing::Test {
 protected:
  AccessPathTest() {
    MakeTables(file_);
    scan_ = file_.NewUser({false, false});
    indexes_ = file_.NewUser({true, false});
    memory_ = file_.NewUser({false, true});
  }

  void ExpectSameRows(const std::string& text) {
    const Texts expected = scan_->Rows(text);
    EXPECT_EQ(indexes_->Rows(text), expected) << text << "\n" << indexes_->GetSession().Explain(text);
    EXPECT_EQ(memory_->Rows(text), expected) << text << "\n" << memory_->GetSession().Explain(text);
    EXPECT_EQ(file_.Rows(text), expected) << text << "\n" << file_.Explain(text);
  }

  SqlFile file_;
  std::unique_ptr<OtherUser> scan_, indexes_, memory_;
};

TEST_F(AccessPathTest, EveryWayGivesTheSameRows) {
  Conditions conditions(11);
  for (int i = 0; i < kConditions; ++i) ExpectSameRows("Select * From T Where " + conditions.Next());
}

TEST_F(AccessPathTest, ConditionsHoldForExactlyTheRowsGiven) {
  // The condition as a value of the select list is computed row by row, without any path.
  Conditions conditions(13);
  for (int i = 0; i < kConditions; ++i) {
    const std::string condition = conditions.Next();
    Texts expected;
    const auto all = scan_->GetSession().Run("Select ID, IIf(" + condition + ", 1, 0) As Holds From T").rows;
    for (; !all->AtEnd(); all->MoveNext()) {
      if (ValueText(all->Get(1)) == "1") expected.push_back(ValueText(all->Get(0)));
    }
    EXPECT_EQ(file_.Rows("Select ID From T Where " + condition), expected) << condition;
  }
}

TEST_F(AccessPathTest, JoinsGiveTheSameRows) {
  Conditions conditions(17);
  for (int i = 0; i < 12; ++i) {
    const std::string condition = conditions.Next();
    for (const char* join : {"T Inner Join U On T.A = U.X", "T Left Join U On T.C = U.Y", "U Left Join T On U.X = T.G",
                             "T Inner Join U On (T.C = U.Y And T.A < U.X)"}) {
      const std::string text = "Select ID, X, Y From " + std::string(join) + " Where " + condition;
      ExpectSameRows(text + " Order By ID, X, Y");
    }
  }
}

TEST_F(AccessPathTest, AJoinEqualsAConditionOverAllPairs) {
  EXPECT_EQ(file_.Rows("Select ID, X, Y From T Inner Join U On T.G = U.X Order By ID, X, Y"),
            scan_->Rows("Select ID, X, Y From T, U Where G - X = 0 Order By ID, X, Y"));
}

TEST_F(AccessPathTest, TopByIndexGivesTheSameRows) {
  for (const char* order :
       {"ID", "ID Desc", "A, B", "A Desc, B Desc", "A Desc, B", "D", "D Desc", "C", "C Desc", "E"}) {
    for (const int top : {1, 3, 10}) {
      const std::string text = "Select Top " + std::to_string(top) + " ID From T Order By " + order;
      ExpectSameRows(text);
      ExpectSameRows("Select Top " + std::to_string(top) + " ID From T Where A > 3 Order By " + order);
    }
  }
}

TEST_F(AccessPathTest, AnswersOfAnIndexAloneAreThoseOfAllRows) {
  const std::vector<std::string> questions = {"Select Count(*) From T",
                                              "Select Min(D), Max(D), Count(*) From T",
                                              "Select Min(E) From T",
                                              "Select Max(E) From T",
                                              "Select Min(C), Max(H) From T",
                                              "Select Min(ID), Max(ID) From T",
                                              "Select Distinct D From T",
                                              "Select Distinct E From T",
                                              "Select Distinct E From T Order By E Desc",
                                              "Select Distinct C From T",
                                              "Select ID From T Where E In (Select E From T)",
                                              "Select X From U Where X In (Select ID From T)",
                                              "Select X From U Where X Not In (Select ID From T)",
                                              "Select X From U Where X Not In (Select D From T)"};
  const auto expectSame = [&] {
    for (const std::string& question : questions) ExpectSameRows(question);
  };
  expectSame();
  for (const char* change :
       {"Update T Set E = 0 Where E < 5", "Delete From T Where ID < 20", "Insert into T (E, D) Values (-7.25, 44000)",
        "Update T Set D = 46000 Where ID = 30", "Update T Set E = -E", "Update T Set D = Null", "Delete From T"}) {
    file_.Run(change);
    expectSame();
  }
}

TEST_F(AccessPathTest, AColumnThatHoldsOneValueIsNotLookedUpInMemory) {
  file_.RunAll({"Create Table Evenings (ID Long Constraint PrimaryKey Primary Key, Method Short)",
                "Create Table Scores (Evening Long, Player Long)", "Create Index Player On Scores (Player)",
                "Create Index Evening On Scores (Evening)"});
  for (int evening = 0; evening < 100; ++evening) {
    file_.Run("Insert into Evenings Values (" + std::to_string(evening) + ", 0)");
    for (int i = 0; i < 10; ++i) {
      file_.Run("Insert into Scores Values (" + std::to_string(evening) + ", " +
                std::to_string((evening * 7 + i) % 50) + ")");
    }
  }
  const auto question = [](int player) {
    return "Select Evening From Scores Inner Join Evenings On Scores.Evening = Evenings.ID Where Player = " +
           std::to_string(player) + " And Method = 0";
  };
  for (int player = 0; player < 50; ++player) {
    const std::string plan = file_.Explain(question(player));
    EXPECT_EQ(plan.find("in memory"), std::string::npos) << player << "\n" << plan;
    EXPECT_EQ(file_.Rows(question(player)).size(), 20U);
  }
}

TEST_F(AccessPathTest, IndexesInMemoryFollowChanges) {
  const std::string text = "Select ID From T Where G = 7";
  for (int i = 0; i < 4; ++i) ExpectSameRows(text);
  sql::Session& session = memory_->GetSession();
  for (const char* change :
       {"Insert into T (G) Values (7)", "Update T Set G = 7 Where G = 8", "Update T Set G = 9 Where ID < 50",
        "Delete From T Where G = 7 And ID > 150", "Insert into T (G) Values ('7')", "Update T Set G = 7 Where G = 9"}) {
    session.Run(change);
    EXPECT_EQ(memory_->Rows(text), scan_->Rows(text)) << change;
    EXPECT_FALSE(memory_->Rows(text).empty());
  }
  EXPECT_THROW(session.Run("Insert into T (G, ID) Select 7, ID From T"), Error);
  ExpectSameRows(text);
  file_.Run("Update T Set G = 7 Where G = 10");
  ExpectSameRows(text);
}

TEST_F(AccessPathTest, PlansNameTheirPaths) {
  EXPECT_EQ(file_.Explain("Select * From T Where ID = 5"), "T: index PrimaryKey, ID = 5; where ID = 5\n");
  EXPECT_EQ(file_.Explain("Select * From T Where A = 5 And B = 1"),
            "T: index AB, A = 5, B = 1; where A = 5 and B = 1\n");
  EXPECT_EQ(file_.Explain("Select * From T Where A = 5 Or C = 'x'"),
            "T: any of {index AB, A = 5} {index C, C = 'x'}; where (A = 5 Or C = 'x')\n");
  EXPECT_EQ(file_.Explain("Select * From T Where G = 5"), "T: index in memory, G = 5; where G = 5\n");
  EXPECT_EQ(file_.Explain("Select * From T Where D > 45000 Order By B"),
            "T: index D, D from 45000; where D > 45000\nsort in memory\n");
  EXPECT_EQ(file_.Explain("Select * From T Where G > 5"), "T: scan; where G > 5\n");
}

TEST_F(AccessPathTest, ExplainBeforeAStatementGivesThePlanAsRowsAndRunsNothing) {
  EXPECT_EQ(file_.Rows("Explain Select * From T Where D > 45000 Order By B"),
            (Texts{"T: index D, D from 45000; where D > 45000", "sort in memory"}));
  const Texts before = file_.Rows("Select * From T");
  EXPECT_EQ(file_.Rows("EXPLAIN\n Delete From T Where ID = 5"), (Texts{"T: index PrimaryKey, ID = 5; where ID = 5"}));
  EXPECT_EQ(file_.Rows("Select * From T"), before);
  EXPECT_EQ(file_.Rows("Explain Create Table V (X Long)"), (Texts{"definition, no plan"}));
  EXPECT_EQ(NumberOf(file_.Refused("Explain Select Nothing From T")), 0x80040E10U);
  EXPECT_EQ(NumberOf(file_.Refused("Explain")), 0x80040E14U);
}

TEST_F(AccessPathTest, OuterJoinsNestedDeeplyInInnerJoinsArePlannedOnce) {
  // A plan of each part anew in each place of each order would take longer than anybody waits.
  std::string from = "(T As T0 Left Join U As U0 On T0.A = U0.X)";
  for (int i = 1; i < 11; ++i) {
    const std::string n = std::to_string(i);
    from = "(" + from + " Inner Join (T As T" + n + " Left Join U As U" + n + " On T" + n + ".A = U" + n +
           ".X) On T0.ID = T" + n + ".ID)";
    if (i % 2 == 0) from = "(" + from + " Left Join U As V" + n + " On V" + n + ".X = T0.ID + 1000)";
  }
  const std::string text = "Select Count(*) From " + from + " Where T0.ID = 3";
  EXPECT_EQ(file_.Rows(text).size(), 1U);
}

TEST_F(AccessPathTest, AnIndexInMemoryIsBuiltWhenPlansWithoutItHaveCostAsMuch) {
  const std::string text = "Select ID From T Where H > 3 And G = 7";
  for (int i = 0; i < 20; ++i) memory_->Rows("Select ID From T Where G = " + std::to_string(i) + " And E > 1");
  EXPECT_NE(memory_->GetSession().Explain("Select ID From T Where G = 25 And E > 1").find("index in memory"),
            std::string::npos);
  ExpectSameRows(text);
}

TEST_F(AccessPathTest, AConditionOverAnOuterJoinWithinInnerJoinsHolds) {
  for (const char* where : {"T.A + U.X > 10", "U.X Is Null", "V.X = T.A And U.Y = V.Y", "Not (U.X > V.X)"}) {
    ExpectSameRows("Select T.ID, U.X, V.X From (T Left Join U On T.A = U.X) Inner Join U As V On T.G = V.X Where " +
                   std::string(where) + " Order By T.ID, U.X, U.Y, V.X, V.Y");
  }
}

TEST_F(AccessPathTest, ValuesOfAnotherKindAreLeftToTheComparison) {
  EXPECT_EQ(NumberOf(file_.Refused("Select * From T Where A = 'five'")), 0x80040E07U);
  EXPECT_EQ(NumberOf(file_.Refused("Select * From T Where C = 5")), 0x80040E07U);
  ExpectSameRows("Select * From T Where A = 3000000000");
  ExpectSameRows("Select * From T Where B = 70000 Or A = Null");
}

}  // namespace
}  // namespace tavi::access::test
