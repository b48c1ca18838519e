#include <gtest/gtest.h>

#include <limits>

#include "access/catalog/Compact.h"
#include "access/catalog/support/TestFile.h"

namespace tavi::access::test {
namespace {

/// Two files with a table of the same columns, whose rows are compared.
class RowComparison : public testing::Test {
 protected:
  RowComparison() {
    for (TestFile* file : {&left_, &right_}) {
      file->Write([](Database& database) {
        TableDesign design;
        design.name = "Results";
        design.columns = {MakeColumn("Name", ColumnType::Text), MakeColumn("Score", ColumnType::Double),
                          MakeColumn("Notes", ColumnType::Memo)};
        database.CreateTable(design, kNow);
      });
    }
  }

  static void Add(TestFile& file, const char* name, double score, const std::string& notes = "") {
    file.Write([&](Database& database) {
      Insert(database, "Results", {{"Name", name}, {"Score", score}, {"Notes", notes}});
    });
  }
  bool IsSame() {
    const ReadStatement leftStatement(left_.Get().GetPager());
    const ReadStatement rightStatement(right_.Get().GetPager());
    return HaveSameRows(*left_.Get().OpenTable("Results"), *right_.Get().OpenTable("Results"));
  }

  TestFile left_;
  TestFile right_;
};

TEST_F(RowComparison, RowsMayLieElsewhere) {
  const std::string longText(9000, 'x');
  Add(left_, "Ann", 1, longText);
  Add(left_, "Bob", 2);
  Add(right_, "Bob", 2);
  EXPECT_FALSE(IsSame());
  Add(right_, "Ann", 1, longText);
  EXPECT_TRUE(IsSame());
}

TEST_F(RowComparison, OneByteOfALongTextCounts) {
  Add(left_, "Ann", 1, std::string(9000, 'x'));
  Add(right_, "Ann", 1, std::string(8999, 'x') + "y");
  EXPECT_FALSE(IsSame());
}

TEST_F(RowComparison, EqualRowsAreCounted) {
  for (const char* name : {"Ann", "Ann", "Bob"}) Add(left_, name, 1);
  for (const char* name : {"Ann", "Bob", "Bob"}) Add(right_, name, 1);
  EXPECT_FALSE(IsSame());
}

TEST_F(RowComparison, NumbersAreComparedByTheirBits) {
  Add(left_, "Ann", std::numeric_limits<double>::quiet_NaN());
  Add(right_, "Ann", std::numeric_limits<double>::quiet_NaN());
  EXPECT_TRUE(IsSame());
  Add(left_, "Bob", 0.0);
  Add(right_, "Bob", -0.0);
  EXPECT_FALSE(IsSame());
}

TEST_F(RowComparison, ColumnsCount) {
  right_.Write([](Database& database) { database.AddColumn("Results", MakeColumn("More", ColumnType::Long)); });
  EXPECT_FALSE(IsSame());
}

}  // namespace
}  // namespace tavi::access::test
