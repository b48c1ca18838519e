#include <gtest/gtest.h>

#include <algorithm>

#include "access/catalog/support/TestFile.h"
#include "access/file/Format.h"

namespace tavi::access::test {
namespace {

constexpr char kRowMissing[] = "You cannot add or change a record because a related record is required in table ";
constexpr char kRowsRelated[] = "The record cannot be deleted or changed because table ";

Relationship MakeRelationship(const std::string& primary, const std::string& foreign) {
  Relationship relationship;
  relationship.name = primary + foreign;
  relationship.primaryTable = primary;
  relationship.primaryColumns = {"ID"};
  relationship.foreignTable = foreign;
  relationship.foreignColumns = {primary};
  relationship.enforced = true;
  return relationship;
}

/// Clubs have teams, teams have players; a team may have a club, a player may have a team and another player as
/// captain.
class RelationshipTest : public testing::Test {
 protected:
  RelationshipTest() {
    file_.Write([&](Database& database) {
      for (const char* name : {"Clubs", "Teams", "Players"}) {
        TableDesign design;
        design.name = name;
        design.columns = {MakeColumn("ID", ColumnType::Text), MakeColumn("Clubs", ColumnType::Text),
                          MakeColumn("Teams", ColumnType::Text), MakeColumn("Players", ColumnType::Text)};
        design.indexes = {MakePrimaryKey("ID")};
        database.CreateTable(design, kNow);
      }
    });
  }

  void Relate(const std::string& primary, const std::string& foreign, bool updates, bool deletes) {
    Relationship relationship = MakeRelationship(primary, foreign);
    relationship.cascadeUpdates = updates;
    relationship.cascadeDeletes = deletes;
    file_.Write([&](Database& database) { database.CreateRelationship(relationship, kNow); });
    file_.ExpectSound();
  }
  void Add(const std::string& table, const NamedValues& values) {
    file_.Write([&](Database& database) { Insert(database, table, values); });
  }
  Error RefuseAdd(const std::string& table, const NamedValues& values) {
    return file_.Refused([&](Database& database) { Insert(database, table, values); });
  }
  RowPointer Find(const std::string& table, const std::string& id) {
    const std::vector<Value> ids = ColumnOf(file_.Get(), table, "ID");
    return AllPlaces(file_.Get(), table).at(static_cast<std::size_t>(std::ranges::find(ids, Value(id)) - ids.begin()));
  }
  void Change(const std::string& table, const std::string& id, const NamedValues& values) {
    const RowPointer row = Find(table, id);
    file_.Write([&](Database& database) { Update(database, table, row, values); });
  }
  Error RefuseChange(const std::string& table, const std::string& id, const NamedValues& values) {
    const RowPointer row = Find(table, id);
    return file_.Refused([&](Database& database) { Update(database, table, row, values); });
  }
  void Remove(const std::string& table, const std::string& id) {
    const RowPointer row = Find(table, id);
    file_.Write([&](Database& database) { database.OpenTable(table)->Delete(row); });
  }
  Error RefuseRemove(const std::string& table, const std::string& id) {
    const RowPointer row = Find(table, id);
    return file_.Refused([&](Database& database) { database.OpenTable(table)->Delete(row); });
  }
  std::vector<Value> All(const std::string& table, const std::string& column) {
    return ColumnOf(file_.Get(), table, column);
  }

  TestFile file_;
};

TEST_F(RelationshipTest, IsListed) {
  Relate("Clubs", "Teams", true, false);
  const ReadStatement statement(file_.Get().GetPager());
  const std::vector<Relationship> all = file_.Get().Relationships();
  ASSERT_EQ(all.size(), 1U);
  EXPECT_EQ(all[0].name, "ClubsTeams");
  EXPECT_EQ(all[0].primaryTable, "Clubs");
  EXPECT_EQ(all[0].foreignColumns, std::vector<std::string>{"Clubs"});
  EXPECT_TRUE(all[0].enforced);
  EXPECT_TRUE(all[0].cascadeUpdates);
  EXPECT_FALSE(all[0].cascadeDeletes);
}

TEST_F(RelationshipTest, ForeignRowsNeedTheirPrimaryRow) {
  Relate("Clubs", "Teams", false, false);
  const Error error = RefuseAdd("Teams", {{"ID", "t"}, {"Clubs", "c"}});
  EXPECT_TRUE(error.Is(ErrorNumber::ProviderIntegrity));
  EXPECT_EQ(error.Description(), std::string(kRowMissing) + "'Clubs'.");
  Add("Teams", {{"ID", "free"}});
  Add("Clubs", {{"ID", "c"}});
  Add("Teams", {{"ID", "t"}, {"Clubs", "C"}});
  EXPECT_EQ(RefuseChange("Teams", "t", {{"Clubs", "d"}}).Description(), std::string(kRowMissing) + "'Clubs'.");
  Change("Teams", "t", {{"Teams", "any"}});
  Change("Teams", "t", {{"Clubs", Null{}}});
  file_.ExpectSound();
}

TEST_F(RelationshipTest, PrimaryRowsInUseStayAsTheyAre) {
  Relate("Clubs", "Teams", false, false);
  Add("Clubs", {{"ID", "c"}});
  Add("Clubs", {{"ID", "unused"}});
  Add("Teams", {{"ID", "t"}, {"Clubs", "c"}});
  const Error error = RefuseRemove("Clubs", "c");
  EXPECT_TRUE(error.Is(ErrorNumber::ProviderIntegrity));
  EXPECT_EQ(error.Description(), std::string(kRowsRelated) + "'Teams' includes related records.");
  EXPECT_EQ(RefuseChange("Clubs", "c", {{"ID", "d"}}).Description(),
            std::string(kRowsRelated) + "'Teams' includes related records.");
  Change("Clubs", "c", {{"Players", "not the key"}});
  Change("Clubs", "c", {{"ID", "C"}});
  Change("Clubs", "unused", {{"ID", "still unused"}});
  Remove("Clubs", "still unused");
  Remove("Teams", "t");
  Remove("Clubs", "C");
  file_.ExpectSound();
}

TEST_F(RelationshipTest, ChangesCascadeThroughSeveralTables) {
  Relate("Clubs", "Teams", true, true);
  Relate("Teams", "Players", true, true);
  Add("Clubs", {{"ID", "c"}});
  Add("Teams", {{"ID", "t"}, {"Clubs", "c"}});
  Add("Teams", {{"ID", "other"}});
  for (const char* id : {"p", "q"}) Add("Players", {{"ID", id}, {"Teams", "t"}});
  Add("Players", {{"ID", "r"}, {"Teams", "other"}});
  Change("Clubs", "c", {{"ID", "club"}});
  EXPECT_EQ(All("Teams", "Clubs"), (std::vector<Value>{"club", Null{}}));
  Change("Teams", "t", {{"ID", "team"}});
  EXPECT_EQ(All("Players", "Teams"), (std::vector<Value>{"team", "team", "other"}));
  file_.ExpectSound();
  Remove("Clubs", "club");
  EXPECT_EQ(All("Teams", "ID"), std::vector<Value>{"other"});
  EXPECT_EQ(All("Players", "ID"), std::vector<Value>{"r"});
  file_.ExpectSound();
}

TEST_F(RelationshipTest, ACascadeThatMeetsARestrictionLeavesNoTrace) {
  Relate("Clubs", "Teams", false, true);
  Relate("Teams", "Players", false, false);
  Add("Clubs", {{"ID", "c"}});
  Add("Teams", {{"ID", "t"}, {"Clubs", "c"}});
  Add("Players", {{"ID", "p"}, {"Teams", "t"}});
  const RowPointer club = Find("Clubs", "c");
  file_.Write([&](Database& database) { EXPECT_THROW(database.OpenTable("Clubs")->Delete(club), Error); });
  EXPECT_EQ(All("Teams", "ID"), std::vector<Value>{"t"});
  file_.ExpectSound();
}

TEST_F(RelationshipTest, ADeletedRowLeavesNullsWhereTheFileDeclaresIt) {
  file_.Write([](Database& database) {
    TableDesign one;
    one.name = "House";
    one.columns = {MakeColumn("ID", ColumnType::Long)};
    one.indexes = {MakePrimaryKey("ID")};
    database.CreateTable(one, kNow);
    TableDesign many;
    many.name = "Person";
    many.columns = {MakeColumn("House", ColumnType::Long), MakeColumn("Name", ColumnType::Text)};
    database.CreateTable(many, kNow);
    database.CreateRelationship({"HousePerson", "House", {"ID"}, "Person", {"House"}, true, false, true}, kNow);
    for (const char* table : {"House", "Person"}) {
      TableDefinition definition = database.OpenTable(table)->Definition();
      for (LogicalIndexDefinition& logical : definition.logicalIndexes)
        if (logical.side != LogicalIndexDefinition::Side::None)
          logical.cascadeDeletes = format::logical_index::kCascadeSetNull;
      WriteTableDefinition(database.GetPager(), definition, true);
    }
    for (const int id : {1, 2}) Insert(database, "House", {{"ID", id}});
    for (const int house : {1, 2, 1}) Insert(database, "Person", {{"House", house}, {"Name", "any"}});
  });
  file_.Reopen();
  file_.Write([](Database& database) { database.OpenTable("House")->Delete(AllPlaces(database, "House").front()); });
  EXPECT_EQ(ColumnOf(file_.Get(), "Person", "House"), (std::vector<Value>{Null{}, 2, Null{}}));
  EXPECT_EQ(RowsByIndex(file_.Get(), "Person", "HousePerson").size(), 3U);
  file_.ExpectSound();
}

TEST_F(RelationshipTest, ATableCanReferToItself) {
  Relate("Players", "Players", true, true);
  Add("Players", {{"ID", "self"}, {"Players", "self"}});
  EXPECT_EQ(RefuseAdd("Players", {{"ID", "p"}, {"Players", "nobody"}}).Description(),
            std::string(kRowMissing) + "'Players'.");
  Add("Players", {{"ID", "a"}, {"Players", "self"}});
  Add("Players", {{"ID", "b"}, {"Players", "a"}});
  Change("Players", "self", {{"ID", "captain"}});
  EXPECT_EQ(All("Players", "Players"), (std::vector<Value>{"captain", "captain", "a"}));
  file_.ExpectSound();
  Remove("Players", "captain");
  EXPECT_TRUE(All("Players", "ID").empty());
  file_.ExpectSound();
}

TEST_F(RelationshipTest, ALongChainOfRowsCascades) {
  Relate("Players", "Players", false, true);
  file_.Write([](Database& database) {
    Insert(database, "Players", {{"ID", "0"}});
    for (int i = 1; i < 3000; ++i)
      Insert(database, "Players", {{"ID", std::to_string(i)}, {"Players", std::to_string(i - 1)}});
  });
  Remove("Players", "0");
  EXPECT_TRUE(All("Players", "ID").empty());
  file_.ExpectSound();
}

TEST_F(RelationshipTest, RowsThatViolateItPreventIt) {
  Add("Teams", {{"ID", "t"}, {"Clubs", "nowhere"}});
  const Error error =
      file_.Refused([](Database& database) { database.CreateRelationship(MakeRelationship("Clubs", "Teams"), kNow); });
  EXPECT_NE(error.Description().find("violates referential integrity rules"), std::string::npos);
}

TEST_F(RelationshipTest, NeedsAUniqueIndex) {
  Relationship relationship = MakeRelationship("Clubs", "Teams");
  relationship.primaryColumns = {"Players"};
  const Error error = file_.Refused([&](Database& database) { database.CreateRelationship(relationship, kNow); });
  EXPECT_EQ(error.Description().substr(0, 26), "No unique index found for ");
}

TEST_F(RelationshipTest, HoldsTablesColumnsAndIndexesInPlace) {
  Relate("Clubs", "Teams", false, false);
  const auto refuse = [&](const std::function<void(Database&)>& change) {
    return file_.Refused(change).Is(ErrorNumber::ProviderFailure);
  };
  EXPECT_TRUE(refuse([](Database& database) { database.DropTable("Clubs"); }));
  EXPECT_TRUE(refuse([](Database& database) { database.DropTable("Teams"); }));
  EXPECT_TRUE(refuse([](Database& database) { database.DropIndex("Clubs", "PrimaryKey"); }));
  EXPECT_TRUE(refuse([](Database& database) { database.DropIndex("Teams", "ClubsTeams"); }));
  EXPECT_TRUE(refuse([](Database& database) { database.DropColumn("Teams", "Clubs"); }));
  file_.Write([](Database& database) { database.DropRelationship("clubsteams"); });
  file_.ExpectSound();
  file_.Write([](Database& database) {
    EXPECT_TRUE(database.Relationships().empty());
    database.DropColumn("Teams", "Clubs");
    database.DropTable("Clubs");
  });
  file_.ExpectSound();
}

TEST_F(RelationshipTest, OneThatIsNotEnforcedOnlyStandsInTheCatalogue) {
  Relationship relationship = MakeRelationship("Clubs", "Teams");
  relationship.enforced = false;
  file_.Write([&](Database& database) { database.CreateRelationship(relationship, kNow); });
  Add("Teams", {{"ID", "t"}, {"Clubs", "nowhere"}});
  file_.ExpectSound();
  const ReadStatement statement(file_.Get().GetPager());
  EXPECT_FALSE(file_.Get().Relationships().at(0).enforced);
}

TEST(RelationshipOfAccess, IsEnforcedInACopyOfARealFile) {
  const std::string sample = SampleFile("indexTestV2000.mdb");
  if (sample.empty()) GTEST_SKIP() << "the sample files are not beside this checkout";
  TestFile file(sample);
  // Table1.otherfk1 -> Table2.id cascades deletes, Table1.otherfk2 -> Table3.id cascades updates.
  EXPECT_EQ(file.Refused([](Database& database) {
                  Insert(database, "Table1", {{"id", 9}, {"otherfk1", 77}, {"otherfk2", 10}});
                })
                .Description(),
            std::string(kRowMissing) + "'Table2'.");
  file.Write([](Database& database) {
    Insert(database, "Table1", {{"id", 9}, {"otherfk1", 2}, {"otherfk2", 12}, {"otherfk3", 0}});
  });
  const std::vector<RowPointer> third = AllPlaces(file.Get(), "Table3");
  file.Write([&](Database& database) { Update(database, "Table3", third.at(1), {{"id", 99}}); });
  EXPECT_EQ(ColumnOf(file.Get(), "Table1", "otherfk2"), (std::vector<Value>{10, 99, 99, 13, 12}));
  EXPECT_THROW(file.Write([&](Database& database) { database.OpenTable("Table3")->Delete(third.at(1)); }), Error);
  const std::vector<RowPointer> second = AllPlaces(file.Get(), "Table2");
  file.Write([&](Database& database) { database.OpenTable("Table2")->Delete(second.at(1)); });
  EXPECT_EQ(ColumnOf(file.Get(), "Table1", "otherfk1"), (std::vector<Value>{0, 2, 2}));
  EXPECT_EQ(CheckDatabase(file.Get()), std::vector<std::string>());
}

}  // namespace
}  // namespace tavi::access::test
