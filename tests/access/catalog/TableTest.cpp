#include "access/catalog/Table.h"

#include <gtest/gtest.h>

#include <algorithm>

#include <limits>

#include "access/catalog/support/TestFile.h"

namespace tavi::access::test {
namespace {

constexpr char kDuplicate[] =
    "The changes you requested to the table were not successful because they would create duplicate values in the "
    "index, primary key, or relationship. Change the data in the field or fields that contain duplicate data, remove "
    "the index, or redefine the index to permit duplicate entries and try again.";

std::vector<Page> AllPages(Database& database) {
  std::vector<Page> pages;
  for (PageNumber number = 0; number < database.GetPager().PageCount(); ++number)
    pages.push_back(*database.GetPager().Read(number));
  return pages;
}

bool SamePages(const std::vector<Page>& left, const std::vector<Page>& right) {
  if (left.size() != right.size()) return false;
  for (std::size_t i = 0; i < left.size(); ++i)
    if (!std::ranges::equal(left[i].All(), right[i].All())) return false;
  return true;
}

/// A file with the table Members.
class TableTest : public testing::Test {
 protected:
  TableTest() {
    file_.Write([](Database& database) { database.CreateTable(MakeMembers(), kNow); });
  }

  RowPointer Add(const std::string& name) {
    RowPointer place;
    file_.Write([&](Database& database) { place = Insert(database, "Members", {{"Name", name}}); });
    return place;
  }

  TestFile file_;
};

TEST_F(TableTest, InsertedRowsComeBack) {
  file_.Write([](Database& database) {
    Insert(database, "Members", {{"Name", "Éloïse"}, {"Joined", Date{36526}}, {"Notes", "likes notrump"}});
    Insert(database, "Members", {{"Name", "Łukasz"}});
  });
  file_.Reopen();
  const std::vector<RowValues> rows = AllRows(file_.Get(), "Members");
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_EQ(rows[0], (RowValues{1, "Éloïse", Date{36526}, "likes notrump"}));
  EXPECT_EQ(rows[1], (RowValues{2, "Łukasz", Null{}, Null{}}));
  file_.ExpectSound();
}

TEST_F(TableTest, IndexGivesRowsInOrder) {
  for (const char* name : {"Zoe", "anna", "Émile", "Bob", "eric"}) Add(name);
  std::vector<Value> names;
  for (const RowValues& row : RowsByIndex(file_.Get(), "Members", "ByName")) names.push_back(row[1]);
  EXPECT_EQ(names, (std::vector<Value>{"anna", "Bob", "Émile", "eric", "Zoe"}));
}

TEST_F(TableTest, ValuesAreConvertedToTheirColumns) {
  file_.Write([](Database& database) { Insert(database, "Members", {{"Name", 12.5}, {"Joined", "2001-05-03"}}); });
  const RowValues row = AllRows(file_.Get(), "Members").at(0);
  EXPECT_EQ(row[1], Value("12.5"));
  EXPECT_EQ(row[2], Value(Date::FromCivil(2001, 5, 3)));
}

TEST_F(TableTest, AutomaticNumbersGoUpAndAreNeverUsedAgain) {
  const RowPointer first = Add("one");
  const RowPointer second = Add("two");
  file_.Write([&](Database& database) {
    database.OpenTable("Members")->Delete(second);
    database.OpenTable("Members")->Delete(first);
  });
  Add("three");
  EXPECT_EQ(ColumnOf(file_.Get(), "Members", "ID"), std::vector<Value>{3});
}

TEST_F(TableTest, InsertTellsTheAutomaticNumber) {
  file_.Write([](Database& database) {
    const auto table = database.OpenTable("Members");
    RowValues row(4);
    table->Insert(row);
    EXPECT_EQ(row[0], Value(1));
  });
}

TEST_F(TableTest, AGreaterGivenNumberRaisesTheCounterASmallerOneDoesNot) {
  file_.Write([](Database& database) {
    Insert(database, "Members", {{"ID", 100}});
    Insert(database, "Members", {{"ID", -5}});
    Insert(database, "Members", {});
  });
  EXPECT_EQ(ColumnOf(file_.Get(), "Members", "ID"), (std::vector<Value>{100, -5, 101}));
  file_.ExpectSound();
}

TEST_F(TableTest, AutomaticNumberPassesStoredOnesWhenTheCounterWasSetBack) {
  file_.Write([](Database& database) {
    Insert(database, "Members", {{"ID", 50}});
    SetLastAutoNumber(database.GetPager(), database.OpenTable("Members")->Definition(), 49);
    Insert(database, "Members", {});
  });
  EXPECT_EQ(ColumnOf(file_.Get(), "Members", "ID"), (std::vector<Value>{50, 51}));
}

TEST_F(TableTest, AutomaticNumbersEndWithAnError) {
  file_.Write([](Database& database) {
    Insert(database, "Members", {{"ID", std::numeric_limits<std::int32_t>::max()}});
  });
  const Error error = file_.Refused([](Database& database) { Insert(database, "Members", {}); });
  EXPECT_TRUE(error.Is(ErrorNumber::ProviderFailure));
}

TEST_F(TableTest, AutomaticNumbersCannotBeChanged) {
  const RowPointer place = Add("one");
  const Error error = file_.Refused([&](Database& database) { Update(database, "Members", place, {{"ID", 9}}); });
  EXPECT_NE(error.Description().find("field not updateable"), std::string::npos);
}

TEST_F(TableTest, DuplicateKeyIsRefusedInTheKnownWordsAndLeavesNoTrace) {
  Add("one");
  WriteStatement statement(file_.Get().GetPager());
  const std::vector<Page> before = AllPages(file_.Get());
  try {
    Insert(file_.Get(), "Members", {{"ID", 1}, {"Name", "two"}, {"Notes", std::string(5000, 'x')}});
    FAIL();
  } catch (const Error& error) {
    EXPECT_TRUE(error.Is(ErrorNumber::ProviderFailure));
    EXPECT_EQ(error.Description().substr(0, sizeof kDuplicate - 1), kDuplicate);
  }
  EXPECT_TRUE(SamePages(before, AllPages(file_.Get())));
}

TEST_F(TableTest, UpdateToADuplicateKeyLeavesNoTrace) {
  file_.Write([](Database& database) {
    IndexDesign unique = MakeIndex("UniqueName", {"Name"});
    unique.unique = true;
    database.CreateIndex("Members", unique);
    Insert(database, "Members", {{"Name", "one"}});
    Insert(database, "Members", {{"Name", "two"}});
  });
  const RowPointer second = AllPlaces(file_.Get(), "Members").at(1);
  WriteStatement statement(file_.Get().GetPager());
  const std::vector<Page> before = AllPages(file_.Get());
  EXPECT_THROW(Update(file_.Get(), "Members", second, {{"Name", "ONE"}, {"Notes", "changed"}}), Error);
  EXPECT_TRUE(SamePages(before, AllPages(file_.Get())));
}

TEST_F(TableTest, AnUnchangedRowWritesNothing) {
  const RowPointer place = Add("one");
  WriteStatement statement(file_.Get().GetPager());
  const std::vector<Page> before = AllPages(file_.Get());
  Update(file_.Get(), "Members", place, {{"Name", "one"}});
  EXPECT_TRUE(SamePages(before, AllPages(file_.Get())));
}

TEST_F(TableTest, UpdateMovesOnlyTheEntriesOfChangedKeys) {
  const RowPointer place = Add("one");
  const auto rootsOf = [&] {
    std::vector<PageNumber> roots;
    for (const Index& index : file_.Get().OpenTable("Members")->Indexes()) roots.push_back(index.definition.root);
    return roots;
  };
  WriteStatement statement(file_.Get().GetPager());
  const std::vector<PageNumber> roots = rootsOf();
  const std::vector<Page> before = AllPages(file_.Get());
  Update(file_.Get(), "Members", place, {{"Notes", "no key"}});
  std::vector<Page> after = AllPages(file_.Get());
  for (const PageNumber root : roots) EXPECT_TRUE(std::ranges::equal(before[root].All(), after[root].All()));
  Update(file_.Get(), "Members", place, {{"Name", "ONE"}});
  after = AllPages(file_.Get());
  for (const PageNumber root : roots) EXPECT_TRUE(std::ranges::equal(before[root].All(), after[root].All()));
  Update(file_.Get(), "Members", place, {{"Name", "two"}});
  after = AllPages(file_.Get());
  EXPECT_FALSE(std::ranges::equal(before[roots[1]].All(), after[roots[1]].All()));
}

TEST_F(TableTest, UpdatedRowsComeBack) {
  for (int i = 0; i < 50; ++i) Add("member " + std::to_string(i));
  file_.Write([](Database& database) {
    int i = 0;
    for (const RowPointer place : AllPlaces(database, "Members")) {
      Update(
          database, "Members", place,
          {{"Name", "changed " + std::to_string(++i)}, {"Notes", std::string(static_cast<std::size_t>(i) * 100, 'n')}});
    }
  });
  file_.ExpectSound();
  const std::vector<RowValues> rows = AllRows(file_.Get(), "Members");
  ASSERT_EQ(rows.size(), 50U);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    EXPECT_EQ(rows[i][0], Value(static_cast<std::int32_t>(i + 1)));
    EXPECT_EQ(rows[i][3], Value(std::string((i + 1) * 100, 'n')));
  }
}

TEST_F(TableTest, DeletedRowsAreGoneFromEverywhere) {
  for (int i = 0; i < 300; ++i) Add("member " + std::to_string(i));
  file_.Write([](Database& database) {
    const auto table = database.OpenTable("Members");
    int i = 0;
    for (const RowPointer place : AllPlaces(database, "Members"))
      if (++i % 3 != 0) table->Delete(place);
  });
  file_.ExpectSound();
  EXPECT_EQ(AllRows(file_.Get(), "Members").size(), 100U);
  EXPECT_EQ(RowsByIndex(file_.Get(), "Members", "ByName").size(), 100U);
  EXPECT_EQ(RowsByIndex(file_.Get(), "Members", "PrimaryKey").size(), 100U);
}

TEST_F(TableTest, DeletingEverythingLeavesAnEmptyTable) {
  for (int i = 0; i < 300; ++i) Add(std::string(50, static_cast<char>('a' + i % 26)));
  file_.Write([](Database& database) {
    for (const RowPointer place : AllPlaces(database, "Members")) database.OpenTable("Members")->Delete(place);
  });
  file_.ExpectSound();
  EXPECT_TRUE(AllRows(file_.Get(), "Members").empty());
  Add("again");
  file_.ExpectSound();
}

TEST_F(TableTest, CountersOfDistinctKeysGoUpWithNewKeys) {
  for (const char* name : {"a", "b", "a", "c", "A"}) Add(name);
  file_.Reopen();
  const ReadStatement statement(file_.Get().GetPager());
  const auto table = file_.Get().OpenTable("Members");
  EXPECT_EQ(table->Indexes()[0].statistics.distinctKeys, 5U);
  EXPECT_EQ(table->Indexes()[1].statistics.distinctKeys, 3U);
  EXPECT_EQ(table->RowCount(), 5U);
}

TEST_F(TableTest, RollbackForgetsRowsAndTables) {
  Add("one");
  {
    WriteStatement statement(file_.Get().GetPager());
    Insert(file_.Get(), "Members", {{"Name", "two"}});
    TableDesign other = MakeMembers();
    other.name = "Other";
    file_.Get().CreateTable(other, kNow);
    EXPECT_NE(file_.Get().FindTable("Other"), nullptr);
  }
  {
    const ReadStatement statement(file_.Get().GetPager());
    EXPECT_EQ(file_.Get().FindTable("Other"), nullptr);
    EXPECT_EQ(file_.Get().OpenTable("Members")->RowCount(), 1U);
  }
  Add("three");
  EXPECT_EQ(ColumnOf(file_.Get(), "Members", "Name"), (std::vector<Value>{"one", "three"}));
  file_.ExpectSound();
}

TEST_F(TableTest, AnotherConnectionSeesWhatWasCommitted) {
  Database other(Pager::Open(NativeFileSystem(), file_.Path(), {}));
  EXPECT_TRUE(AllRows(other, "Members").empty());
  Add("one");
  EXPECT_EQ(AllRows(other, "Members").size(), 1U);
  file_.Write([](Database& database) {
    database.AddColumn("Members", MakeColumn("Sex", ColumnType::Integer));
    Insert(database, "Members", {{"Sex", std::int16_t{1}}});
  });
  EXPECT_EQ(ColumnOf(other, "Members", "Sex"), (std::vector<Value>{Null{}, std::int16_t{1}}));
}

TEST_F(TableTest, UnknownTableHasItsOwnError) {
  const Error error = file_.Refused([](Database& database) { static_cast<void>(database.OpenTable("Nobody")); });
  EXPECT_TRUE(error.Is(ErrorNumber::ProviderNoTable));
  EXPECT_NE(error.Description().find("'Nobody'"), std::string::npos);
}

TEST_F(TableTest, NamesIgnoreCaseAndTrailingBlanks) {
  const ReadStatement statement(file_.Get().GetPager());
  EXPECT_EQ(file_.Get().OpenTable("MEMBERS")->Name(), "Members");
  EXPECT_EQ(file_.Get().OpenTable("members ")->Name(), "Members");
  EXPECT_EQ(file_.Get().OpenTable("Members")->FindColumn("nAME"), 1U);
}

/// A table with rules: Required, AllowZeroLength, unique and required indexes.
class TableRulesTest : public testing::Test {
 protected:
  TableRulesTest() {
    TableDesign design;
    design.name = "Rules";
    design.columns = {MakeColumn("Key", ColumnType::Text),    MakeColumn("Needed", ColumnType::Text),
                      MakeColumn("Filled", ColumnType::Text), MakeColumn("A", ColumnType::Long),
                      MakeColumn("B", ColumnType::Long),      MakeColumn("Sparse", ColumnType::Long)};
    design.columns[1].required = true;
    design.columns[2].allowZeroLength = false;
    IndexDesign pair = MakeIndex("Pair", {"A", "B"});
    pair.unique = true;
    IndexDesign sparse = MakeIndex("Sparse", {"Sparse"});
    sparse.unique = true;
    sparse.ignoreNulls = true;
    design.indexes = {MakePrimaryKey("Key"), pair, sparse};
    file_.Write([&](Database& database) { database.CreateTable(design, kNow); });
  }

  Error RefuseRow(const NamedValues& values) {
    return file_.Refused([&](Database& database) { Insert(database, "Rules", values); });
  }
  void Accept(const NamedValues& values) {
    file_.Write([&](Database& database) { Insert(database, "Rules", values); });
  }

  TestFile file_;
};

TEST_F(TableRulesTest, RequiredColumnRefusesNull) {
  const Error error = RefuseRow({{"Key", "k"}});
  EXPECT_TRUE(error.Is(ErrorNumber::ProviderIntegrity));
  EXPECT_EQ(error.Description(),
            "The field 'Rules.Needed' cannot contain a Null value because the Required property for this field is set "
            "to True. Enter a value in this field.");
}

TEST_F(TableRulesTest, ZeroLengthIsRefusedWhereTheFileSaysSo) {
  const Error error = RefuseRow({{"Key", "k"}, {"Needed", ""}, {"Filled", ""}});
  EXPECT_EQ(error.Description(), "Field 'Rules.Filled' cannot be a zero-length string.");
  Accept({{"Key", "k"}, {"Needed", ""}});
}

TEST_F(TableRulesTest, PrimaryKeyRefusesNull) {
  const Error error = RefuseRow({{"Needed", "n"}});
  EXPECT_TRUE(error.Is(ErrorNumber::ProviderIntegrity));
  EXPECT_EQ(error.Description().substr(0, 48), "Index or primary key cannot contain a Null value");
}

TEST_F(TableRulesTest, UniqueIndexTakesManyRowsWithoutAnyKeyButChecksHalfKeys) {
  Accept({{"Key", "1"}, {"Needed", "n"}});
  Accept({{"Key", "2"}, {"Needed", "n"}});
  Accept({{"Key", "3"}, {"Needed", "n"}, {"A", 1}});
  EXPECT_TRUE(RefuseRow({{"Key", "4"}, {"Needed", "n"}, {"A", 1}}).Is(ErrorNumber::ProviderFailure));
  Accept({{"Key", "5"}, {"Needed", "n"}, {"B", 1}});
  Accept({{"Key", "6"}, {"Needed", "n"}, {"A", 1}, {"B", 1}});
  file_.ExpectSound();
}

TEST_F(TableRulesTest, KeysThatDifferInCaseOrTrailingBlanksAreTheSame) {
  Accept({{"Key", "Strasse"}, {"Needed", "n"}});
  for (const char* key : {"STRASSE", "strasse ", "Straße"})
    EXPECT_TRUE(RefuseRow({{"Key", key}, {"Needed", "n"}}).Is(ErrorNumber::ProviderFailure)) << key;
  Accept({{"Key", "Stra-sse"}, {"Needed", "n"}});
}

TEST_F(TableRulesTest, IndexThatIgnoresNullsLeavesThemOut) {
  Accept({{"Key", "1"}, {"Needed", "n"}});
  Accept({{"Key", "2"}, {"Needed", "n"}, {"Sparse", 7}});
  EXPECT_EQ(RowsByIndex(file_.Get(), "Rules", "Sparse").size(), 1U);
  const RowPointer second = AllPlaces(file_.Get(), "Rules").at(1);
  file_.Write([&](Database& database) { Update(database, "Rules", second, {{"Sparse", Null{}}}); });
  EXPECT_TRUE(RowsByIndex(file_.Get(), "Rules", "Sparse").empty());
  file_.ExpectSound();
}

TEST_F(TableRulesTest, RowsOfTheWrongSizeAreRefused) {
  const Error error = file_.Refused([](Database& database) {
    RowValues row(2);
    database.OpenTable("Rules")->Insert(row);
  });
  EXPECT_NE(error.Description().find("has 6 fields"), std::string::npos);
}

TEST(TableTypes, EveryTypeComesBackAndCanBeIndexed) {
  TestFile file;
  TableDesign design;
  design.name = "All types";
  const std::vector<std::pair<ColumnType, Value>> types = {
      {ColumnType::Boolean, true},
      {ColumnType::Byte, std::uint8_t{200}},
      {ColumnType::Integer, std::int16_t{-300}},
      {ColumnType::Long, 70000},
      {ColumnType::Currency, Currency{-11000}},
      {ColumnType::Single, 1.5F},
      {ColumnType::Double, -2.25},
      {ColumnType::Date, Date{-1.25}},
      {ColumnType::Text, "漢字 and Latin"},
      {ColumnType::Binary, Bytes{0, 1, 2, 255}},
      {ColumnType::Guid, Guid{{15, 196, 155, 123, 230, 86, 66, 40, 174, 220, 223, 139, 223, 76, 74, 100}}},
      {ColumnType::Numeric, Decimal{true, 0, 123456, 4}},
      {ColumnType::Memo, std::string(9000, 'm')},
      {ColumnType::Ole, Bytes(20000, 0xAB)},
  };
  NamedValues values;
  for (std::size_t i = 0; i < types.size(); ++i) {
    ColumnDesign column = MakeColumn("C" + std::to_string(i), types[i].first);
    column.scale = 4;
    design.columns.push_back(column);
    values.emplace_back(column.name, types[i].second);
    if (types[i].first == ColumnType::Memo || types[i].first == ColumnType::Ole) continue;
    IndexDesign index = MakeIndex("I" + std::to_string(i), {column.name});
    index.columns[0].ascending = i % 2 == 0;
    design.indexes.push_back(index);
  }
  file.Write([&](Database& database) {
    database.CreateTable(design, kNow);
    Insert(database, "All types", values);
    Insert(database, "All types", {});
  });
  file.ExpectSound();
  const std::vector<RowValues> rows = AllRows(file.Get(), "All types");
  ASSERT_EQ(rows.size(), 2U);
  for (std::size_t i = 0; i < types.size(); ++i) {
    EXPECT_EQ(rows[0][i], types[i].second) << "type " << i;
    EXPECT_EQ(rows[1][i], types[i].first == ColumnType::Boolean ? Value(false) : Value(Null{})) << "type " << i;
  }
}

TEST(TableTypes, GuidNumbersAreMadeAndDiffer) {
  TestFile file;
  TableDesign design;
  design.name = "Guids";
  design.columns = {MakeColumn("G", ColumnType::Guid)};
  design.columns[0].autoNumber = true;
  design.indexes = {MakePrimaryKey("G")};
  file.Write([&](Database& database) {
    database.CreateTable(design, kNow);
    Insert(database, "Guids", {});
    Insert(database, "Guids", {});
  });
  const std::vector<Value> guids = ColumnOf(file.Get(), "Guids", "G");
  EXPECT_TRUE(std::holds_alternative<Guid>(guids.at(0)));
  EXPECT_NE(guids.at(0), guids.at(1));
  file.ExpectSound();
}

}  // namespace
}  // namespace tavi::access::test
