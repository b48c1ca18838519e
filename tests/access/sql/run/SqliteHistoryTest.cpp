// A random history of statements, run here and by SQLite: the contents are the same after each.
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <random>

#include "access/sql/support/SqlFile.h"
#include "platform/values/Convert.h"

namespace tavi::access::test {
namespace {

using Texts = std::vector<std::string>;

/// A SQLite database in memory.
class Sqlite {
 public:
  Sqlite() { sqlite3_open(":memory:", &database_); }
  ~Sqlite() { sqlite3_close(database_); }
  Sqlite(const Sqlite&) = delete;
  Sqlite& operator=(const Sqlite&) = delete;

  /// Runs a statement; false when it was refused.
  bool Run(const std::string& text) {
    return sqlite3_exec(database_, text.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
  }
  [[nodiscard]] int Changes() const { return sqlite3_changes(database_); }
  Texts Rows(const std::string& text) {
    Texts rows;
    sqlite3_stmt* statement = nullptr;
    EXPECT_EQ(sqlite3_prepare_v2(database_, text.c_str(), -1, &statement, nullptr), SQLITE_OK) << text;
    while (sqlite3_step(statement) == SQLITE_ROW) {
      std::string row;
      for (int i = 0; i < sqlite3_column_count(statement); ++i) row += (i == 0 ? "" : "|") + Text(statement, i);
      rows.push_back(row);
    }
    sqlite3_finalize(statement);
    return rows;
  }

 private:
  static std::string Text(sqlite3_stmt* statement, int column) {
    switch (sqlite3_column_type(statement, column)) {
      case SQLITE_NULL:
        return "null";
      case SQLITE_FLOAT:
        return NumberText(sqlite3_column_double(statement, column));
      default:
        return {reinterpret_cast<const char*>(sqlite3_column_text(statement, column)),
                static_cast<std::size_t>(sqlite3_column_bytes(statement, column))};
    }
  }

  sqlite3* database_ = nullptr;
};

/// Statements that both engines understand alike: whole numbers, doubles and lower-case words.
class Statements {
 public:
  explicit Statements(unsigned seed) : random_(seed) {}

  std::string Change() {
    switch (Pick(10)) {
      case 0:
      case 1:
      case 2:
      case 3:
        return "Insert into T (ID, A, B, C) Values (" + std::to_string(Pick(120)) + ", " + Number() + ", " + Double() +
               ", " + Word() + ")";
      case 4:
        return "Insert into U (X, Y) Select A, C From T Where " + Condition();
      case 5:
        return "Update T Set A = A + " + std::to_string(Pick(5)) + ", C = " + Word() + " Where " + Condition();
      case 6:
        return "Update T Set ID = ID + 1000 Where ID = " + std::to_string(Pick(120));
      case 7:
        return "Delete From T Where " + Condition() + " And ID Between " + std::to_string(Pick(80)) + " And " +
               std::to_string(Pick(40) + 80);
      case 8:
        return "Update U Set X = Null Where X = " + std::to_string(Pick(20));
      default:
        return "Delete From U Where X < " + std::to_string(Pick(6));
    }
  }

  std::string Query() {
    switch (Pick(6)) {
      case 0:
        return "Select ID, A, B, C From T Where " + Condition() + " Order By ID";
      case 1:
        return "Select C, Count(*), Sum(A), Min(ID), Max(B) From T Where " + Condition() + " Group By C Order By C";
      case 2:
        return "Select T.ID, U.X From T Inner Join U On T.A = U.X Where " + Condition() + " Order By T.ID, U.X";
      case 3:
        return "Select T.ID, U.Y From T Left Join U On T.ID = U.X Order By T.ID, U.Y";
      case 4:
        return "Select Distinct A, C From T Order By A, C";
      default:
        return "Select ID From T Where A In (Select X From U Where X > " + std::to_string(Pick(9)) + ") Order By ID";
    }
  }

 private:
  int Pick(int below) { return static_cast<int>(random_() % static_cast<unsigned>(below)); }
  std::string Number() { return Pick(8) == 0 ? "Null" : std::to_string(Pick(25)); }
  std::string Double() { return Pick(8) == 0 ? "Null" : std::to_string(Pick(90)) + ".25"; }
  std::string Word() {
    static const std::vector<std::string> kWords = {"'anna'", "'bob'", "'carl'", "'dora'", "'emil'", "Null"};
    return kWords[static_cast<std::size_t>(Pick(6))];
  }
  std::string Condition() {
    switch (Pick(6)) {
      case 0:
        return "A = " + std::to_string(Pick(25));
      case 1:
        return "A > " + std::to_string(Pick(25));
      case 2:
        return "B < " + std::to_string(Pick(90));
      case 3:
        return "(A = " + std::to_string(Pick(25)) + " Or C = 'bob')";
      case 4:
        return "C Is Not Null";
      default:
        return "ID < " + std::to_string(Pick(120));
    }
  }

  std::mt19937 random_;
};

class SqliteHistoryTest : public ::testing::TestWithParam<unsigned> {};

TEST_P(SqliteHistoryTest, ContentsStayTheSame) {
  SqlFile file;
  Sqlite other;
  file.RunAll({"Create Table T (ID Long Constraint PrimaryKey Primary Key, A Long, B Double, C Text (20))",
               "Create Index A On T (A)", "Create Table U (X Long, Y Text (20))"});
  other.Run("Create Table T (ID Integer Primary Key, A Integer, B Real, C Text)");
  other.Run("Create Table U (X Integer, Y Text)");
  Statements statements(GetParam());
  for (int step = 0; step < 500; ++step) {
    const std::string change = statements.Change();
    std::optional<std::int64_t> affected;
    try {
      affected = file.Run(change);
    } catch (const Error& error) {
      EXPECT_EQ(NumberOf(error), 0x80004005U) << change << ": " << error.Description();
    }
    ASSERT_EQ(affected.has_value(), other.Run(change)) << change;
    if (affected) {
      ASSERT_EQ(*affected, other.Changes()) << change;
    }
    const std::string query = statements.Query();
    ASSERT_EQ(file.Rows(query), other.Rows(query)) << query << "\n" << file.Explain(query);
  }
  EXPECT_EQ(file.Rows("Select * From T Order By ID"), other.Rows("Select * From T Order By ID"));
  EXPECT_EQ(file.Rows("Select * From U Order By X, Y"), other.Rows("Select * From U Order By X, Y"));
  file.ExpectSound();
}

INSTANTIATE_TEST_SUITE_P(Seeds, SqliteHistoryTest, ::testing::Values(1U, 2U, 3U, 4U));

}  // namespace
}  // namespace tavi::access::test
