// A statement that somebody asks to give up.
#include <gtest/gtest.h>

#include "access/sql/plan/ExecutionErrors.h"
#include "access/sql/support/SqlFile.h"

namespace tavi::access::test {
namespace {

using Texts = std::vector<std::string>;

class CancelTest : public ::testing::Test {
 protected:
  static constexpr int kRows = 50;

  CancelTest() : session_(file_.File().Get(), std::make_shared<StillClock>(), {}, [this] { return Asked(); }) {
    file_.Run("Create Table T (ID Long Constraint PrimaryKey Primary Key, A Long)");
    for (int i = 0; i < kRows; ++i) file_.Run("Insert into T Values (" + std::to_string(i) + ", 1)");
  }

  /// Says yes from the `patience_`th time on.
  bool Asked() { return ++asked_ > patience_; }

  /// Expects that the statement is given up when it is asked to at the `patience`th row.
  void ExpectCancelled(const std::string& text, int patience) {
    asked_ = 0;
    patience_ = patience;
    try {
      const auto rows = session_.Run(text).rows;
      while (rows && !rows->AtEnd()) rows->MoveNext();
      ADD_FAILURE() << text << " was not given up at row " << patience;
    } catch (const Error& error) {
      EXPECT_EQ(NumberOf(error), sql::kCancelledNumber) << error.Description();
    }
    EXPECT_EQ(asked_, patience + 1) << "it went on after it was asked to stop";
  }

  SqlFile file_;
  int asked_ = 0;
  int patience_ = 1'000'000;
  sql::Session session_;
};

TEST_F(CancelTest, AQueryIsGivenUpAtAnyRow) {
  for (const int patience : {0, 1, kRows - 1}) {
    ExpectCancelled("Select A, Count(*) From T Group By A", patience);
    ExpectCancelled("Select * From T Where A = 1 Order By ID Desc", patience);
    ExpectCancelled("Select * From T Where ID In (Select ID From T Where A = 1)", patience);
    ExpectCancelled("Select * From T As A, T As B", patience);
  }
}

TEST_F(CancelTest, FetchingTheRowsIsGivenUpToo) {
  ExpectCancelled("Select ID From T", kRows + 3);
}

class CancelledSortTest : public CancelTest {
 protected:
  static constexpr int kManyRows = 32 * kRows;

  CancelledSortTest() {
    for (int rows = kRows; rows < kManyRows; rows *= 2) {
      const std::string more = std::to_string(rows);
      file_.Run("Insert into T (ID, A) Select ID + " + more + ", 1 From T");
    }
  }

  /// Expects that the statement asks in its sort, after all of its rows have been read and before one is fetched.
  void ExpectSortCancelled(const std::string& text, int rowsRead) {
    asked_ = 0;
    patience_ = rowsRead;
    try {
      static_cast<void>(session_.Run(text));
      ADD_FAILURE() << text << " was not given up in its sort";
    } catch (const Error& error) {
      EXPECT_EQ(NumberOf(error), sql::kCancelledNumber) << error.Description();
    }
    EXPECT_EQ(asked_, patience_ + 1);
    asked_ = 0;
    patience_ = 1'000'000;
    const auto rows = session_.Run(text).rows;
    EXPECT_GT(asked_, rowsRead + kManyRows / 256) << "it asks too seldom in the sort";
    EXPECT_LT(asked_, rowsRead + kManyRows) << "it asks too often in the sort";
  }
};

TEST_F(CancelledSortTest, IsGivenUpWhateverIsSorted) {
  ExpectSortCancelled("Select * From T Order By A, ID Mod 7", kManyRows);
  ExpectSortCancelled("Select Distinct A, ID From T Order By A, ID Mod 7", kManyRows);
  ExpectSortCancelled("Select ID, Count(*) From T Group By ID Order By Count(*)", kManyRows);
  ExpectSortCancelled("Select ID From T Union All Select A From T Order By ID", 2 * kManyRows);
}

TEST_F(CancelledSortTest, IsGivenUpWhereOnlyTheFirstRowsAreKept) {
  asked_ = 0;
  patience_ = 1'000'000;
  static_cast<void>(session_.Run("Select Top 10 * From T Order By A, ID Mod 7"));
  const int asked = asked_;
  EXPECT_GT(asked, kManyRows) << "it asks while it drops rows";
  for (const int patience : {kManyRows / 2, kManyRows, asked - 1}) {
    ExpectCancelled("Select Top 10 * From T Order By A, ID Mod 7", patience);
  }
}

TEST_F(CancelledSortTest, AnIndexInMemoryIsGivenUpWhileItIsMade) {
  const std::string text = "Select * From T Where A = 5";
  const auto askedBy = [&] {
    asked_ = 0;
    static_cast<void>(session_.Run(text));
    return asked_;
  };
  patience_ = 1'000'000;
  EXPECT_EQ(askedBy(), kManyRows) << "a scan";
  ExpectCancelled(text, kManyRows / 2);
  patience_ = 1'000'000;
  EXPECT_EQ(askedBy(), kManyRows) << "the index is made, after an attempt that was given up";
  EXPECT_EQ(askedBy(), 0) << "the index is used";
}

TEST_F(CancelTest, NothingIsStoredOfAChangeThatIsGivenUp) {
  for (const int patience : {0, 5, kRows - 1, kRows + 5, 2 * kRows - 1}) {
    ExpectCancelled("Update T Set A = 2", patience);
    ExpectCancelled("Delete From T", patience);
    ExpectCancelled("Insert into T (ID, A) Select ID + 1000, A From T", patience);
    EXPECT_EQ(file_.Rows("Select Count(*), Min(A), Max(A) From T"), (Texts{"50|1|1"}));
  }
  file_.ExpectSound();
}

TEST_F(CancelTest, TheNextStatementRuns) {
  ExpectCancelled("Update T Set A = 2", 3);
  patience_ = 1'000'000;
  EXPECT_EQ(session_.Run("Update T Set A = 3").affected, kRows);
  EXPECT_EQ(file_.Rows("Select Min(A) From T"), (Texts{"3"}));
}

}  // namespace
}  // namespace tavi::access::test
