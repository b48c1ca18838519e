// Indexes whose keys another program made: letters that sort as two count there as one place before an accent or a
// mark, so that such a row stands elsewhere than where this program looks for it.
#include <gtest/gtest.h>
#include <algorithm>

#include "access/catalog/Compact.h"
#include "access/catalog/KeyLookup.h"
#include "access/catalog/StoredTable.h"
#include "access/catalog/support/TestFile.h"

namespace tavi::access::test {
namespace {

constexpr char kName[] = "Anna Wei\u00DF-B\u00E4r";
// Behind the end of the primary codes the accent stands one place earlier, and so does the hyphen.
constexpr std::uint8_t kPlace = 0x2F;       // 7 + 4 * 10 elements: where this program puts the hyphen
constexpr std::uint8_t kOtherPlace = 0x2B;  // 7 + 4 * 9

/// A table of names with an index that holds one row as another program would.
class KeyOrderTest : public testing::Test {
 protected:
  KeyOrderTest() {
    TableDesign design;
    design.name = "People";
    design.columns = {MakeColumn("ID", ColumnType::Long), MakeColumn("Name", ColumnType::Text)};
    design.indexes = {MakePrimaryKey("ID"), MakeIndex("ByName", {"Name"})};
    file_.Write([&](Database& database) {
      database.CreateTable(design, kNow);
      for (std::int32_t id = 1; id <= 200; ++id)
        Insert(database, "People", {{"ID", id}, {"Name", id == 77 ? kName : "person " + std::to_string(id)}});
    });
  }

  static std::size_t ByName(Table& table) {
    return static_cast<std::size_t>(std::ranges::find(table.Indexes(), "ByName", &Index::name) -
                                    table.Indexes().begin());
  }

  /// Puts the row of the name under the other program's key.
  void MakeForeign() {
    file_.Write([&](Database& database) {
      const auto table = database.OpenTable("People");
      BTree& tree = table->Tree(ByName(*table));
      const RowPointer row = RowsWithValue(*table, "Name", kName).at(0);
      IndexEntry entry{table->Encoder(ByName(*table)).RowKey(table->Read(row)), row};
      ASSERT_TRUE(tree.Remove(entry));
      const auto place = std::ranges::find(entry.key, kPlace);
      ASSERT_NE(place, entry.key.end());
      *place = kOtherPlace;
      tree.Insert(entry);
    });
    file_.Reopen();
  }

  bool CanSearch() {
    const ReadStatement statement(file_.Get().GetPager());
    const auto table = file_.Get().OpenTable("People");
    return table->CanSearch(ByName(*table));
  }

  TestFile file_;
};

TEST_F(KeyOrderTest, AnIndexMadeHereIsSearched) {
  EXPECT_TRUE(CanSearch());
}

TEST_F(KeyOrderTest, AnIndexInAnotherOrderIsNotSearchedAndItsRowsAreFound) {
  MakeForeign();
  EXPECT_FALSE(CanSearch());
  const ReadStatement statement(file_.Get().GetPager());
  const auto table = file_.Get().OpenTable("People");
  EXPECT_EQ(RowsWithValue(*table, "Name", kName).size(), 1U);
}

TEST_F(KeyOrderTest, ACheckSaysThatSuchAnIndexIsHarmless) {
  MakeForeign();
  const CheckResult result = CheckFile(file_.Get(), CheckKind::Ordinary);
  EXPECT_TRUE(result.findings.empty());
  ASSERT_EQ(result.remarks.size(), 1U);
  EXPECT_EQ(result.remarks[0].text,
            "The index 'ByName' of table 'People' holds 1 of its 200 keys in an order other than this program's. That "
            "does no harm: searches pass it by, and it is made anew before the table is next written, or by 'tavi "
            "compact'.");
}

TEST_F(KeyOrderTest, APlainNameUnderAWrongKeyIsDamageAllTheSame) {
  file_.Write([&](Database& database) {
    const auto table = database.OpenTable("People");
    BTree& tree = table->Tree(ByName(*table));
    const RowPointer row = RowsWithValue(*table, "Name", "person 5").at(0);
    IndexEntry entry{table->Encoder(ByName(*table)).RowKey(table->Read(row)), row};
    ASSERT_TRUE(tree.Remove(entry));
    entry.key[3] = 0x40;
    tree.Insert(entry);
  });
  file_.Reopen();
  const CheckResult result = CheckFile(file_.Get(), CheckKind::Ordinary);
  EXPECT_EQ(result.findings.size(), 2U);
}

TEST_F(KeyOrderTest, AWriteMakesTheIndexAnew) {
  MakeForeign();
  file_.Write([](Database& database) { Insert(database, "People", {{"ID", 201}, {"Name", "one more"}}); });
  EXPECT_TRUE(CanSearch());
  file_.ExpectSound();
}

TEST_F(KeyOrderTest, ADeletedRowLeavesNoEntryBehind) {
  MakeForeign();
  file_.Write([](Database& database) {
    const auto table = database.OpenTable("People");
    table->Delete(RowsWithValue(*table, "Name", kName).at(0));
  });
  file_.ExpectSound();
}

TEST_F(KeyOrderTest, AWriteThatIsRolledBackLeavesTheIndexUnsearched) {
  MakeForeign();
  {
    const WriteStatement statement(file_.Get().GetPager());
    Insert(file_.Get(), "People", {{"ID", 201}, {"Name", "one more"}});
  }
  EXPECT_FALSE(CanSearch());
}

TEST_F(KeyOrderTest, ARelationshipFindsItsPrimaryRowThere) {
  file_.Write([](Database& database) {
    database.DropIndex("People", "ByName");
    IndexDesign unique = MakeIndex("ByName", {"Name"});
    unique.unique = true;
    database.CreateIndex("People", unique);
    TableDesign design;
    design.name = "Letters";
    design.columns = {MakeColumn("Recipient", ColumnType::Text)};
    database.CreateTable(design, kNow);
    database.CreateRelationship({"Recipients", "People", {"Name"}, "Letters", {"Recipient"}, true, false, false}, kNow);
    Insert(database, "Letters", {{"Recipient", kName}});
  });
  MakeForeign();
  EXPECT_TRUE(CheckFile(file_.Get(), CheckKind::Ordinary).findings.empty());
  file_.Write([](Database& database) { Insert(database, "Letters", {{"Recipient", kName}}); });
  file_.ExpectSound();
}

TEST_F(KeyOrderTest, ACompactedFileHasTheIndexInThisOrder) {
  MakeForeign();
  file_.Close();
  CompactFile(NativeFileSystem(), file_.Path());
  file_.Reopen();
  EXPECT_TRUE(CanSearch());
  file_.ExpectSound();
}

// Nothing can be looked for in texts of another sort order, and a file that has them is sound.
TEST_F(KeyOrderTest, AnIndexOfAnUnknownSortOrderIsSaidToBeUnsearchedAndTheFileSound) {
  file_.Write([](Database& database) {
    TableDefinition german = database.OpenTable("People")->Definition();
    for (ColumnDefinition& column : german.columns)
      if (column.name == "Name") column.sortOrder = 1031;
    WriteTableDefinition(database.GetPager(), german, true);
  });
  file_.Reopen();
  EXPECT_FALSE(CanSearch());
  const CheckResult result = CheckFile(file_.Get(), CheckKind::Ordinary);
  EXPECT_TRUE(result.findings.empty());
  ASSERT_EQ(result.remarks.size(), 1U);
  EXPECT_NE(result.remarks[0].text.find("is in a sort order that is not known here"), std::string::npos);
}

}  // namespace
}  // namespace tavi::access::test
