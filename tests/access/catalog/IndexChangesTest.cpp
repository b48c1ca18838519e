#include <gtest/gtest.h>

#include "access/catalog/support/TestFile.h"

namespace tavi::access::test {
namespace {

class IndexChangesTest : public testing::Test {
 protected:
  IndexChangesTest() {
    TableDesign design;
    design.name = "T";
    design.columns = {MakeColumn("A", ColumnType::Long), MakeColumn("B", ColumnType::Text),
                      MakeColumn("C", ColumnType::Ole)};
    file_.Write([&](Database& database) { database.CreateTable(design, kNow); });
  }

  void Fill(int rows) {
    file_.Write([&](Database& database) {
      for (int i = 0; i < rows; ++i)
        Insert(database, "T", {{"A", (i * 7919) % rows}, {"B", "name " + std::to_string(i % 10)}});
    });
  }
  void Create(const IndexDesign& index) {
    file_.Write([&](Database& database) { database.CreateIndex("T", index, kNow); });
  }
  Error Refuse(const IndexDesign& index) {
    return file_.Refused([&](Database& database) { database.CreateIndex("T", index); });
  }

  TestFile file_;
};

TEST_F(IndexChangesTest, AnIndexOnAFilledTableGivesAllRowsInOrder) {
  Fill(2000);
  Create(MakePrimaryKey("A"));
  IndexDesign descending = MakeIndex("Down", {"A"});
  descending.columns[0].ascending = false;
  Create(descending);
  file_.ExpectSound();
  const std::vector<RowValues> up = RowsByIndex(file_.Get(), "T", "PrimaryKey");
  const std::vector<RowValues> down = RowsByIndex(file_.Get(), "T", "Down");
  ASSERT_EQ(up.size(), 2000U);
  ASSERT_EQ(down.size(), 2000U);
  for (int i = 0; i < 2000; ++i) {
    EXPECT_EQ(up[static_cast<std::size_t>(i)][0], Value(i));
    EXPECT_EQ(down[static_cast<std::size_t>(i)][0], Value(1999 - i));
  }
}

TEST_F(IndexChangesTest, ABuiltIndexTakesFurtherChanges) {
  Fill(1000);
  Create(MakeIndex("Both", {"B", "A"}));
  file_.Write([](Database& database) {
    for (int i = 1000; i < 1500; ++i) Insert(database, "T", {{"A", i}, {"B", "name 5"}});
    int i = 0;
    for (const RowPointer row : AllPlaces(database, "T"))
      if (++i % 4 == 0) database.OpenTable("T")->Delete(row);
  });
  file_.ExpectSound();
  EXPECT_EQ(RowsByIndex(file_.Get(), "T", "Both").size(), 1125U);
}

TEST_F(IndexChangesTest, StatisticsAreThoseOfTheRows) {
  Fill(100);
  Create(MakeIndex("ByB", {"B"}));
  const ReadStatement statement(file_.Get().GetPager());
  const IndexStatistics statistics = file_.Get().OpenTable("T")->Indexes()[0].statistics;
  EXPECT_EQ(statistics.entries, 100U);
  EXPECT_EQ(statistics.distinctKeys, 10U);
}

TEST_F(IndexChangesTest, RowsThatViolateTheIndexPreventIt) {
  Fill(100);
  IndexDesign unique = MakeIndex("Unique", {"B"});
  unique.unique = true;
  EXPECT_TRUE(Refuse(unique).Is(ErrorNumber::ProviderFailure));
  file_.Write([](Database& database) { Insert(database, "T", {{"B", "no number"}}); });
  EXPECT_TRUE(Refuse(MakePrimaryKey("A")).Is(ErrorNumber::ProviderIntegrity));
  unique = MakeIndex("Unique", {"A"});
  unique.unique = true;
  Create(unique);
  file_.Write([](Database& database) { Insert(database, "T", {{"B", "no number either"}}); });
  file_.ExpectSound();
}

TEST_F(IndexChangesTest, ImpossibleIndexesAreRefused) {
  EXPECT_TRUE(Refuse(MakeIndex("I", {"Nothing"})).Is(ErrorNumber::ProviderBadParameter));
  EXPECT_TRUE(Refuse(MakeIndex("I", {"C"})).Is(ErrorNumber::ProviderSyntax));
  EXPECT_TRUE(Refuse(MakeIndex("I", {"A", "a"})).Is(ErrorNumber::ProviderSyntax));
  EXPECT_TRUE(Refuse(MakeIndex("I", {})).Is(ErrorNumber::ProviderSyntax));
  EXPECT_TRUE(Refuse(MakeIndex("I.J", {"A"})).Is(ErrorNumber::ProviderSyntax));
  Create(MakePrimaryKey("A"));
  EXPECT_TRUE(Refuse(MakeIndex("primarykey", {"B"})).Is(ErrorNumber::ProviderFailure));
  IndexDesign second = MakePrimaryKey("B");
  second.name = "Second";
  EXPECT_EQ(Refuse(second).Description().substr(0, 27), "Primary key already exists.");
}

TEST_F(IndexChangesTest, ThirtyTwoIndexesAreTheMost) {
  for (int i = 0; i < 32; ++i) Create(MakeIndex("I" + std::to_string(i), {i % 2 == 0 ? "A" : "B"}));
  Fill(50);
  file_.ExpectSound();
  EXPECT_NE(Refuse(MakeIndex("I32", {"A"})).Description().find("too many indexes"), std::string::npos);
}

TEST_F(IndexChangesTest, AnIndexWithoutANameGetsOne) {
  IndexDesign key = MakePrimaryKey("A");
  key.name.clear();
  Create(key);
  Create(MakeIndex("", {"B"}));
  const ReadStatement statement(file_.Get().GetPager());
  EXPECT_EQ(file_.Get().OpenTable("T")->Indexes()[0].name, "PrimaryKey");
  EXPECT_EQ(file_.Get().OpenTable("T")->Indexes()[1].name, "Index1");
}

TEST_F(IndexChangesTest, ADroppedIndexLeavesTheOthersRight) {
  Create(MakePrimaryKey("A"));
  Create(MakeIndex("Middle", {"B"}));
  Create(MakeIndex("Last", {"B", "A"}));
  Fill(1000);
  file_.Write([](Database& database) { database.DropIndex("T", "MIDDLE"); });
  file_.ExpectSound();
  {
    const ReadStatement statement(file_.Get().GetPager());
    const auto table = file_.Get().OpenTable("T");
    ASSERT_EQ(table->Indexes().size(), 2U);
    EXPECT_EQ(table->Indexes()[1].name, "Last");
    EXPECT_EQ(table->Indexes()[1].statistics.distinctKeys, 1000U);
  }
  EXPECT_EQ(RowsByIndex(file_.Get(), "T", "Last").size(), 1000U);
  file_.Write([](Database& database) { database.DropIndex("T", "PrimaryKey"); });
  Fill(10);
  file_.ExpectSound();
  EXPECT_TRUE(
      file_.Refused([](Database& database) { database.DropIndex("T", "Middle"); }).Is(ErrorNumber::ProviderFailure));
}

}  // namespace
}  // namespace tavi::access::test
