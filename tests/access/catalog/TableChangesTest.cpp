#include <gtest/gtest.h>

#include "access/catalog/support/TestFile.h"

namespace tavi::access::test {
namespace {

class TableChangesTest : public testing::Test {
 protected:
  Error RefuseTable(const TableDesign& design) {
    return file_.Refused([&](Database& database) { database.CreateTable(design, kNow); });
  }
  TableDesign Named(const std::string& name) {
    TableDesign design = MakeMembers();
    design.name = name;
    return design;
  }

  TestFile file_;
};

TEST_F(TableChangesTest, ANewTableIsListedAndEmpty) {
  file_.Write([](Database& database) { database.CreateTable(MakeMembers(), kNow); });
  file_.ExpectSound();
  const ReadStatement statement(file_.Get().GetPager());
  const std::vector<CatalogEntry> tables = file_.Get().Tables();
  ASSERT_EQ(tables.size(), 5U);
  EXPECT_EQ(tables[4].name, "Members");
  EXPECT_FALSE(tables[4].isSystem);
  const auto table = file_.Get().OpenTable("Members");
  EXPECT_EQ(table->Definition().page, tables[4].page);
  EXPECT_EQ(table->RowCount(), 0U);
  ASSERT_EQ(table->Indexes().size(), 2U);
  EXPECT_EQ(table->Indexes()[0].name, "PrimaryKey");
  EXPECT_TRUE(table->Indexes()[0].primaryKey);
  EXPECT_TRUE(table->Indexes()[0].definition.unique);
}

TEST_F(TableChangesTest, ColumnsKeepTheirOrderRulesAndDefaults) {
  TableDesign design;
  design.name = "T";
  design.columns = {MakeColumn("zeta", ColumnType::Text), MakeColumn("alpha", ColumnType::Long),
                    MakeColumn("Memo", ColumnType::Memo)};
  design.columns[0].required = true;
  design.columns[0].allowZeroLength = false;
  design.columns[0].defaultExpression = "'EBU'";
  design.columns[1].defaultExpression = "-1";
  file_.Write([&](Database& database) { database.CreateTable(design, kNow); });
  file_.Reopen();
  const ReadStatement statement(file_.Get().GetPager());
  const auto table = file_.Get().OpenTable("T");
  const std::vector<Column>& columns = table->Columns();
  ASSERT_EQ(columns.size(), 3U);
  EXPECT_EQ(columns[0].definition.name, "zeta");
  EXPECT_EQ(columns[0].definition.length, 100);
  EXPECT_TRUE(columns[0].required);
  EXPECT_FALSE(columns[0].allowZeroLength);
  EXPECT_EQ(columns[0].defaultExpression, "'EBU'");
  EXPECT_TRUE(columns[0].definition.IsCompressed());
  EXPECT_EQ(columns[1].defaultExpression, "-1");
  EXPECT_FALSE(columns[1].required);
  EXPECT_TRUE(columns[2].allowZeroLength);
}

TEST_F(TableChangesTest, ExistingNamesAreRefusedInAnyCase) {
  file_.Write([](Database& database) { database.CreateTable(MakeMembers(), kNow); });
  const Error error = RefuseTable(Named("MEMBERS"));
  EXPECT_TRUE(error.Is(ErrorNumber::ProviderFailure));
  EXPECT_EQ(error.Description(), "Table 'MEMBERS' already exists.");
  EXPECT_TRUE(RefuseTable(Named("msysobjects")).Is(ErrorNumber::ProviderFailure));
}

TEST_F(TableChangesTest, ImpossibleNamesAreRefused) {
  for (const std::string& name :
       std::vector<std::string>{"", "  ", " x", "a.b", "a!b", "a`b", "a[b", "a]b", "a\tb", std::string(65, 'x')}) {
    EXPECT_TRUE(RefuseTable(Named(name)).Is(ErrorNumber::ProviderSyntax)) << name;
    TableDesign design = Named("T");
    design.columns[1].name = name;
    design.indexes.clear();
    EXPECT_TRUE(RefuseTable(design).Is(ErrorNumber::ProviderSyntax)) << name;
  }
  file_.Write([&](Database& database) {
    database.CreateTable(Named(std::string(64, 'x')), kNow);
    database.CreateTable(Named("Größe & Maß (2), it's"), kNow);
  });
  file_.ExpectSound();
}

TEST_F(TableChangesTest, ImpossibleColumnsAreRefused) {
  const auto refuse = [&](const ColumnDesign& column) {
    TableDesign design;
    design.name = "T";
    design.columns = {column};
    return RefuseTable(design).Is(ErrorNumber::ProviderSyntax);
  };
  EXPECT_TRUE(refuse(MakeColumn("T", ColumnType::Text, 256)));
  EXPECT_TRUE(refuse(MakeColumn("T", ColumnType::Text, 0)));
  EXPECT_TRUE(refuse(MakeColumn("B", ColumnType::Binary, 511)));
  EXPECT_TRUE(refuse(MakeColumn("C", ColumnType::Complex)));
  ColumnDesign decimal = MakeColumn("N", ColumnType::Numeric);
  decimal.precision = 29;
  EXPECT_TRUE(refuse(decimal));
  decimal.precision = 4;
  decimal.scale = 5;
  EXPECT_TRUE(refuse(decimal));
  ColumnDesign number = MakeColumn("A", ColumnType::Double);
  number.autoNumber = true;
  EXPECT_TRUE(refuse(number));
  TableDesign empty;
  empty.name = "T";
  EXPECT_TRUE(RefuseTable(empty).Is(ErrorNumber::ProviderSyntax));
}

TEST_F(TableChangesTest, ADoubleColumnIsRefused) {
  TableDesign design = Named("T");
  design.columns.push_back(MakeColumn("NAME", ColumnType::Long));
  const Error error = RefuseTable(design);
  EXPECT_TRUE(error.Is(ErrorNumber::ProviderBadStatus));
  EXPECT_EQ(error.Description(), "Field 'NAME' already exists in table 'T'.");
}

TEST_F(TableChangesTest, TwoAutomaticNumbersAreRefused) {
  TableDesign design = Named("T");
  design.columns.push_back(MakeColumn("Second", ColumnType::Long));
  design.columns.back().autoNumber = true;
  EXPECT_TRUE(RefuseTable(design).Is(ErrorNumber::ProviderSyntax));
}

TEST_F(TableChangesTest, ADefinitionMayTakeSeveralPages) {
  TableDesign design;
  design.name = "Wide";
  for (int i = 0; i < 200; ++i) {
    design.columns.push_back(MakeColumn("A column with a long name, number " + std::to_string(i),
                                        i % 3 == 0 ? ColumnType::Text : ColumnType::Integer));
  }
  design.indexes = {MakeIndex("First", {design.columns[0].name}), MakeIndex("Last", {design.columns[199].name})};
  file_.Write([&](Database& database) {
    database.CreateTable(design, kNow);
    Insert(database, "Wide", {{design.columns[0].name, "first"}, {design.columns[199].name, std::int16_t{199}}});
  });
  file_.ExpectSound();
  const ReadStatement statement(file_.Get().GetPager());
  const auto table = file_.Get().OpenTable("Wide");
  EXPECT_GT(TableDefinitionPages(file_.Get().GetPager(), table->Definition().page).size(), 2U);
  const RowValues row = AllRows(file_.Get(), "Wide").at(0);
  EXPECT_EQ(row[0], Value("first"));
  EXPECT_EQ(row[199], Value(std::int16_t{199}));
}

TEST_F(TableChangesTest, TheColumnAfter255IsRefused) {
  TableDesign design;
  design.name = "T";
  for (int i = 0; i < 256; ++i) design.columns.push_back(MakeColumn("C" + std::to_string(i), ColumnType::Boolean));
  const Error error = RefuseTable(design);
  EXPECT_TRUE(error.Is(ErrorNumber::ProviderFailure));
  EXPECT_EQ(error.Description().substr(0, 24), "Too many fields defined.");
  design.columns.pop_back();
  file_.Write([&](Database& database) {
    database.CreateTable(design, kNow);
    Insert(database, "T", {{"C254", true}});
  });
  file_.ExpectSound();
}

TEST_F(TableChangesTest, ATableWhoseRowsFitNoPageIsRefused) {
  TableDesign design;
  design.name = "T";
  for (int i = 0; i < 255; ++i) design.columns.push_back(MakeColumn("C" + std::to_string(i), ColumnType::Guid));
  EXPECT_EQ(RefuseTable(design).Description().substr(0, 20), "Record is too large.");
}

TEST_F(TableChangesTest, ADroppedTableLeavesNothing) {
  file_.Write([](Database& database) { database.CreateTable(MakeMembers(), kNow); });
  file_.Write([](Database& database) {
    for (int i = 0; i < 300; ++i)
      Insert(database, "Members", {{"Name", std::to_string(i)}, {"Notes", std::string(5000, 'x')}});
  });
  file_.Write([](Database& database) { database.DropTable("MEMBERS"); });
  file_.ExpectSound();
  {
    const ReadStatement statement(file_.Get().GetPager());
    EXPECT_EQ(file_.Get().Tables().size(), 4U);
    EXPECT_EQ(file_.Get().FindTable("Members"), nullptr);
    EXPECT_EQ(file_.Get().OpenTable("MSysACEs")->RowCount(), 16U);
  }
  const PageNumber before = file_.Get().GetPager().PageCount();
  file_.Write([](Database& database) {
    database.CreateTable(MakeMembers(), kNow);
    Insert(database, "Members", {{"Name", "again"}});
  });
  file_.ExpectSound();
  EXPECT_EQ(file_.Get().GetPager().PageCount(), before);
}

TEST_F(TableChangesTest, MissingAndSystemTablesCannotBeDropped) {
  EXPECT_TRUE(file_.Refused([](Database& database) { database.DropTable("Nobody"); }).Is(ErrorNumber::ProviderNoTable));
  EXPECT_TRUE(
      file_.Refused([](Database& database) { database.DropTable("MSysACEs"); }).Is(ErrorNumber::ProviderPermission));
}

TEST_F(TableChangesTest, ManyTablesFit) {
  file_.Write([&](Database& database) {
    for (int i = 0; i < 60; ++i) {
      const std::string name = "Table " + std::to_string(i);
      database.CreateTable(Named(name), kNow);
      Insert(database, name, {{"Name", name}});
    }
  });
  file_.ExpectSound();
  file_.Write([&](Database& database) {
    for (int i = 0; i < 60; i += 2) database.DropTable("Table " + std::to_string(i));
  });
  file_.ExpectSound();
  const ReadStatement statement(file_.Get().GetPager());
  EXPECT_EQ(file_.Get().Tables().size(), 34U);
}

}  // namespace
}  // namespace tavi::access::test
