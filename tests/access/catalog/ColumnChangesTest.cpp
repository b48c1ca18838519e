#include <gtest/gtest.h>

#include <algorithm>

#include "access/catalog/support/TestFile.h"

namespace tavi::access::test {
namespace {

class ColumnChangesTest : public testing::Test {
 protected:
  ColumnChangesTest() {
    file_.Write([](Database& database) {
      database.CreateTable(MakeMembers(), kNow);
      Insert(database, "Members", {{"Name", "one"}, {"Joined", Date{1}}, {"Notes", "first"}});
      Insert(database, "Members", {{"Name", "two"}});
    });
  }

  void AddColumn(const ColumnDesign& column) {
    file_.Write([&](Database& database) { database.AddColumn("Members", column, Date{46000}); });
  }
  void DropColumn(const std::string& column) {
    file_.Write([&](Database& database) { database.DropColumn("Members", column, Date{46000}); });
  }

  TestFile file_;
};

TEST_F(ColumnChangesTest, IndexesLiveThroughColumnsThatComeAndGo) {
  file_.Write([](Database& database) {
    for (int i = 0; i < 300; ++i) Insert(database, "Members", {{"Name", "member " + std::to_string(999 - i)}});
  });
  ColumnDesign level = MakeColumn("Level", ColumnType::Integer);
  level.required = true;
  level.defaultExpression = "7";
  AddColumn(level);
  file_.Write([](Database& database) {
    database.CreateIndex("Members", MakeIndex("ByLevel", {"Level", "Name"}), kNow);
    int number = 0;
    for (const RowPointer row : AllPlaces(database, "Members"))
      Update(database, "Members", row, {{"Level", ++number % 5}});
  });
  DropColumn("Joined");
  DropColumn("Notes");
  AddColumn(MakeColumn("Remark", ColumnType::Text));
  file_.Write([](Database& database) {
    Insert(database, "Members", {{"Name", "aa last of all"}, {"Level", 0}, {"Remark", "r"}});
    for (const RowPointer row : AllPlaces(database, "Members"))
      if (row.row % 7 == 0) database.OpenTable("Members")->Delete(row);
  });
  for (const char* index : {"PrimaryKey", "ByName", "ByLevel"})
    EXPECT_EQ(RowsByIndex(file_.Get(), "Members", index).size(), AllRows(file_.Get(), "Members").size()) << index;
  EXPECT_TRUE(file_.Refused([](Database& database) {
                     Insert(database, "Members", {{"Name", "without level"}});
                   })
                  .Is(ErrorNumber::ProviderIntegrity));
  file_.ExpectSound();
}

TEST_F(ColumnChangesTest, OldRowsReadNullInANewColumn) {
  AddColumn(MakeColumn("Number", ColumnType::Long));
  AddColumn(MakeColumn("Word", ColumnType::Text));
  AddColumn(MakeColumn("Flag", ColumnType::Boolean));
  AddColumn(MakeColumn("More", ColumnType::Memo));
  file_.ExpectSound();
  file_.Write([](Database& database) {
    Insert(database, "Members",
           {{"Name", "three"}, {"Number", 3}, {"Word", "w"}, {"Flag", true}, {"More", std::string(4500, 'x')}});
  });
  file_.ExpectSound();
  const std::vector<RowValues> rows = AllRows(file_.Get(), "Members");
  EXPECT_EQ(rows[0], (RowValues{1, "one", Date{1}, "first", Null{}, Null{}, false, Null{}}));
  EXPECT_EQ(rows[2], (RowValues{3, "three", Null{}, Null{}, 3, "w", true, std::string(4500, 'x')}));
}

TEST_F(ColumnChangesTest, OldRowsCanBeFilled) {
  AddColumn(MakeColumn("Number", ColumnType::Long));
  AddColumn(MakeColumn("Word", ColumnType::Text));
  file_.Write([](Database& database) {
    for (const RowPointer row : AllPlaces(database, "Members"))
      Update(database, "Members", row, {{"Number", 0}, {"Word", "none"}});
  });
  file_.ExpectSound();
  EXPECT_EQ(AllRows(file_.Get(), "Members")[0], (RowValues{1, "one", Date{1}, "first", 0, "none"}));
  EXPECT_EQ(AllRows(file_.Get(), "Members")[1], (RowValues{2, "two", Null{}, Null{}, 0, "none"}));
}

TEST_F(ColumnChangesTest, ANewAutomaticNumberNumbersTheRows) {
  file_.Write([](Database& database) {
    TableDesign design;
    design.name = "Plain";
    design.columns = {MakeColumn("Word", ColumnType::Text)};
    database.CreateTable(design, kNow);
    for (const char* word : {"a", "b", "c"}) Insert(database, "Plain", {{"Word", word}});
    ColumnDesign number = MakeColumn("Number", ColumnType::Long);
    number.autoNumber = true;
    database.AddColumn("Plain", number);
    Insert(database, "Plain", {{"Word", "d"}});
  });
  EXPECT_EQ(ColumnOf(file_.Get(), "Plain", "Number"), (std::vector<Value>{1, 2, 3, 4}));
  file_.ExpectSound();
}

TEST_F(ColumnChangesTest, TheFirstVariableColumnLeavesTheRowsReadable) {
  for (const ColumnType type : {ColumnType::Text, ColumnType::Memo, ColumnType::Binary, ColumnType::Ole}) {
    const std::string name = "Fixed " + std::to_string(static_cast<int>(type));
    file_.Write([&](Database& database) {
      TableDesign design;
      design.name = name;
      design.columns = {MakeColumn("Flag", ColumnType::Boolean), MakeColumn("Number", ColumnType::Byte)};
      design.indexes = {MakeIndex("Numbers", {"Number"})};
      database.CreateTable(design, kNow);
      for (int i = 0; i < 600; ++i) Insert(database, name, {{"Flag", i % 2 == 0}, {"Number", i % 200}});
      database.AddColumn(name, MakeColumn("First", type));
    });
    file_.ExpectSound();
    const std::vector<RowValues> rows = AllRows(file_.Get(), name);
    ASSERT_EQ(rows.size(), 600U);
    for (std::size_t i = 0; i < rows.size(); ++i)
      EXPECT_EQ(rows[i], (RowValues{i % 2 == 0, static_cast<std::uint8_t>(i % 200), Null{}}));
  }
}

TEST_F(ColumnChangesTest, RulesOfANewColumnAreKept) {
  ColumnDesign column = MakeColumn("Code", ColumnType::Text);
  column.required = true;
  column.defaultExpression = "'EBU'";
  AddColumn(column);
  file_.Reopen();
  const Error error = file_.Refused([](Database& database) { Insert(database, "Members", {}); });
  EXPECT_TRUE(error.Is(ErrorNumber::ProviderIntegrity));
  const ReadStatement statement(file_.Get().GetPager());
  EXPECT_EQ(file_.Get().OpenTable("Members")->Columns().back().defaultExpression, "'EBU'");
}

TEST_F(ColumnChangesTest, AnExistingColumnIsRefused) {
  const Error error =
      file_.Refused([](Database& database) { database.AddColumn("Members", MakeColumn("NAME", ColumnType::Long)); });
  EXPECT_TRUE(error.Is(ErrorNumber::ProviderBadStatus));
  EXPECT_EQ(error.Description(), "Field 'NAME' already exists in table 'Members'.");
}

TEST_F(ColumnChangesTest, ADroppedColumnIsGoneAndTheOthersStay) {
  DropColumn("JOINED");
  file_.ExpectSound();
  EXPECT_EQ(AllRows(file_.Get(), "Members")[0], (RowValues{1, "one", "first"}));
  file_.Write([](Database& database) { Insert(database, "Members", {{"Name", "three"}, {"Notes", "third"}}); });
  file_.ExpectSound();
  EXPECT_EQ(AllRows(file_.Get(), "Members")[2], (RowValues{3, "three", "third"}));
}

TEST_F(ColumnChangesTest, ADroppedMemoGivesItsPagesBack) {
  file_.Write([](Database& database) {
    for (int i = 0; i < 20; ++i) Insert(database, "Members", {{"Notes", std::string(6000, 'n')}});
  });
  DropColumn("Notes");
  file_.ExpectSound();
  file_.Write([](Database& database) {
    for (const RowPointer row : AllPlaces(database, "Members")) Update(database, "Members", row, {{"Name", "new"}});
  });
  file_.ExpectSound();
}

TEST_F(ColumnChangesTest, ARuleOfADroppedColumnDoesNotComeBack) {
  ColumnDesign column = MakeColumn("Code", ColumnType::Text);
  column.required = true;
  AddColumn(column);
  DropColumn("Code");
  AddColumn(MakeColumn("Code", ColumnType::Text));
  file_.Write([](Database& database) { Insert(database, "Members", {{"Name", "three"}}); });
  file_.ExpectSound();
}

TEST_F(ColumnChangesTest, AColumnAddedAfterADropReadsNullInOldRows) {
  for (int round = 0; round < 4; ++round) {
    AddColumn(MakeColumn("Last", round % 2 == 0 ? ColumnType::Double : ColumnType::Long));
    file_.Write([&](Database& database) {
      Insert(database, "Members", {{"Name", std::to_string(round)}, {"Last", round + 1}});
    });
    const std::vector<Value> last = ColumnOf(file_.Get(), "Members", "Last");
    for (std::size_t i = 0; i + 1 < last.size(); ++i) EXPECT_EQ(last[i], Value(Null{}));
    EXPECT_EQ(last.back(), round % 2 == 0 ? Value(round + 1.0) : Value(round + 1));
    file_.ExpectSound();
    DropColumn("Last");
    file_.ExpectSound();
  }
}

TEST_F(ColumnChangesTest, ANewFixedColumnLiesBehindTheBytesOfDroppedOnes) {
  AddColumn(MakeColumn("Big", ColumnType::Double));
  file_.Write([](Database& database) { Insert(database, "Members", {{"Big", 1.0}}); });
  DropColumn("Big");
  AddColumn(MakeColumn("Small", ColumnType::Integer));
  const ReadStatement statement(file_.Get().GetPager());
  const auto table = file_.Get().OpenTable("Members");
  // ID 4 bytes, Joined 8, Big 8.
  EXPECT_EQ(table->Columns()[table->FindColumn("Small").value()].definition.fixedOffset, 20);
}

TEST_F(ColumnChangesTest, UsedColumnsAndTheLastOneStay) {
  const auto drop = [&](const std::string& column) {
    return file_.Refused([&](Database& database) { database.DropColumn("Members", column); });
  };
  EXPECT_TRUE(drop("ID").Is(ErrorNumber::ProviderFailure));
  EXPECT_TRUE(drop("Name").Is(ErrorNumber::ProviderFailure));
  EXPECT_TRUE(drop("Nothing").Is(ErrorNumber::ProviderBadParameter));
  file_.Write([](Database& database) {
    database.DropIndex("Members", "ByName");
    database.DropIndex("Members", "PrimaryKey");
    database.DropColumn("Members", "Joined");
    database.DropColumn("Members", "Notes");
    database.DropColumn("Members", "ID");
  });
  EXPECT_TRUE(drop("Name").Is(ErrorNumber::ProviderFailure));
  file_.ExpectSound();
  EXPECT_EQ(AllRows(file_.Get(), "Members"), (std::vector<RowValues>{{"one"}, {"two"}}));
}

TEST_F(ColumnChangesTest, After255ColumnsNoneCanBeAddedWhateverWasDropped) {
  for (int i = 4; i < 255; ++i) {
    file_.Write([&](Database& database) {
      database.AddColumn("Members", MakeColumn("C" + std::to_string(i), ColumnType::Boolean));
      if (i % 10 != 0) database.DropColumn("Members", "C" + std::to_string(i));
    });
  }
  const Error error =
      file_.Refused([](Database& database) { database.AddColumn("Members", MakeColumn("Last", ColumnType::Long)); });
  EXPECT_TRUE(error.Is(ErrorNumber::ProviderFailure));
  EXPECT_EQ(error.Description().substr(0, 24), "Too many fields defined.");
  file_.Write([](Database& database) { Insert(database, "Members", {{"Name", "three"}, {"C250", true}}); });
  file_.ExpectSound();
}

TEST_F(ColumnChangesTest, ADefinitionGrowsPastAPageAndShrinksAgain) {
  for (int i = 0; i < 100; ++i) {
    AddColumn(MakeColumn("A column with quite a long name, number " + std::to_string(i),
                         i % 2 == 0 ? ColumnType::Text : ColumnType::Memo));
  }
  file_.ExpectSound();
  file_.Write([](Database& database) {
    Insert(database, "Members", {{"Name", "three"}, {"A column with quite a long name, number 99", "memo"}});
    for (int i = 0; i < 99; ++i)
      database.DropColumn("Members", "A column with quite a long name, number " + std::to_string(i));
  });
  file_.ExpectSound();
  EXPECT_EQ(AllRows(file_.Get(), "Members")[2], (RowValues{3, "three", Null{}, Null{}, "memo"}));
}

TEST_F(ColumnChangesTest, TheDateOfChangeIsKept) {
  const auto dates = [&] {
    const std::vector<Value> names = ColumnOf(file_.Get(), "MSysObjects", "Name");
    const std::vector<Value> changed = ColumnOf(file_.Get(), "MSysObjects", "DateUpdate");
    return changed.at(static_cast<std::size_t>(std::ranges::find(names, Value("Members")) - names.begin()));
  };
  EXPECT_EQ(dates(), Value(kNow));
  AddColumn(MakeColumn("Number", ColumnType::Long));
  EXPECT_EQ(dates(), Value(Date{46000}));
}

}  // namespace
}  // namespace tavi::access::test
