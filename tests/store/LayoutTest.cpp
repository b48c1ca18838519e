#include <gtest/gtest.h>

#include "platform/Matchers.h"
#include "platform/support/ThisSystem.h"
#include "store/cDatabase.h"
#include "store/support/FakeFile.h"

namespace tavi {
namespace {

using testing::ElementsAre;
using testing::FakePlatform;
using testing::FakeRows;
using testing::IsEmpty;
using Statements = std::vector<std::string>;

class LayoutTest : public ::testing::Test {
 protected:
  LayoutTest() { store_.SetDatabaseFolder("C:\\Bridge"); }

  void Open() {
    store_.OpenDB();
    store_.CloseDB(false);
  }
  void OpenAgain() {
    store_.NewDatabase();
    fake_.file->statements.clear();
    fake_.messages->shown.clear();
    Open();
  }
  void Remove(const std::string& table, const std::string& column) { fake_.file->tables[table].erase(column); }
  void Add(const std::string& table, const std::string& column) { fake_.file->tables[table][column] = "Long"; }
  Statements Alterations() const { return fake_.file->StatementsWith("Alter"); }
  Statements Updates() const { return fake_.file->StatementsWith("Update"); }
  void FailAdding(ErrorNumber number, const std::string& description = "refused") {
    fake_.file->failures.emplace_back("Add Column", Error(number, "Microsoft JET", description));
  }

  FakePlatform fake_;
  cDatabase store_{fake_.platform, {}};
};

constexpr const char* kRepairSource =
    "Select MasterPointsColour, Colour from MasterPoints Inner Join Competitions On MasterPoints.CompetitionID = "
    "Competitions.ID Where Colour < 0";

TEST_F(LayoutTest, ACurrentFileQueuesNothingAndShowsNoMessage) {
  Open();
  EXPECT_THAT(Alterations(), IsEmpty());
  EXPECT_THAT(Updates(), IsEmpty());
  EXPECT_TRUE(fake_.messages->shown.empty());
  EXPECT_EQ(store_.OpenCount(), 0);
}

TEST_F(LayoutTest, ColumnsAreLookedForInTheirFixedOrder) {
  Open();
  const auto column = [](const char* table, const char* name) {
    return "Select Top 1 " + std::string(name) + " From " + table;
  };
  EXPECT_THAT(
      fake_.file->StatementsWith("Select Top 1"),
      ElementsAre(column("Settings", "LastMPCertificate"), column("Settings", "LastMPUploadNo"),
                  column("Settings", "MPCertificatePrefix"), column("Settings", "CountyList"),
                  column("Settings", "LastUploadDate"), column("Settings", "MasterPointMethod"),
                  column("Settings", "DirectCreditMPs"), column("Settings", "DirectCreditMPs"),
                  column("Members", "HandicalcSeed"), column("Members", "HandicalcSeedDate"),
                  column("Members", "UniquenessFlag"), column("Members", "Sex"), column("Members", "HouseID"),
                  column("Members", "PostCode"), column("Members", "DOB"), column("Members", "Title"),
                  column("Members", "Stratum"), column("Members", "Privacy"), column("MasterPoints", "TempMPTotal"),
                  column("MasterPoints", "MPTotalsString"), column("MasterPoints", "Colour"),
                  column("MasterPoints", "SessionNo"), column("Partnerships", "HandicalcSeed"),
                  column("Partnerships", "HandicalcSeedDate"), column("Competitions", "NumberOfTables"),
                  column("Competitions", "NumberOfWinners"), column("Competitions", "MasterPointsColour"),
                  column("Competitions", "IsTeams"), column("Competitions", "IsSwiss"),
                  column("Competitions", "IsExternal"), column("Competitions", "QualiFinal"),
                  column("ClubNames", "Affiliation"), column("Competitions", "GoverningBody"),
                  column("Competitions", "NatCode"), column("Competitions", "ExternalType"),
                  column("Competitions", "MasterPointsCode"), column("HandicalcSettings", "Disabled")));
}

TEST_F(LayoutTest, AMissingColumnIsAddedAndFilledAfterTheMessage) {
  Remove("Members", "Stratum");
  Open();
  EXPECT_THAT(Alterations(), ElementsAre("Alter Table Members Add Column Stratum Integer"));
  EXPECT_EQ(Updates().at(0), "Update Members Set Stratum = 0");
  ASSERT_EQ(fake_.messages->shown.size(), 1U);
  EXPECT_EQ(fake_.messages->shown[0].icon, MessageBoxIcon::Information);
  EXPECT_EQ(fake_.messages->shown[0].title, "Database Update Required");
  EXPECT_EQ(fake_.messages->shown[0].text,
            "I need to update your club membership database file to make it compatible compatible with the latest "
            "software version. When you click OK, this update will take place automatically.");
  OpenAgain();
  EXPECT_THAT(Alterations(), IsEmpty());
}

TEST_F(LayoutTest, ChangesAreAppliedInTheOrderOfTheQueueWithLengthsOfTexts) {
  Remove("Members", "Title");
  Remove("Settings", "MPCertificatePrefix");
  Remove("HandicalcSettings", "Disabled");
  Remove("Members", "Privacy");
  Add("Competitions", "GoverningBody");
  Open();
  EXPECT_THAT(Alterations(), ElementsAre("Alter Table Settings Add Column MPCertificatePrefix Text (4)",
                                         "Alter Table Members Add Column Title Text (20)",
                                         "Alter Table Members Add Column Privacy bit",
                                         "Alter Table Competitions Drop Column GoverningBody",
                                         "Alter Table HandicalcSettings Add Column Disabled Bit"));
}

TEST_F(LayoutTest, TheAffiliationOfOldClubNamesIsTheGoverningBodySetting) {
  Remove("ClubNames", "Affiliation");
  Remove("Competitions", "NatCode");
  fake_.governingBody = "O'WBU";
  Open();
  EXPECT_THAT(Alterations(), ElementsAre("Alter Table ClubNames Add Column Affiliation Text (10)",
                                         "Alter Table Competitions Add Column NatCode Text (20)"));
  EXPECT_THAT(Updates(),
              ElementsAre("Update ClubNames Set Affiliation = 'O''WBU'", "Update Competitions Set NatCode = 'EBU'"))
      << "these two columns need no conversion of old data";
}

TEST_F(LayoutTest, WithoutASettingTheAffiliationIsEbu) {
  Remove("ClubNames", "Affiliation");
  Open();
  EXPECT_THAT(Updates(), ElementsAre("Update ClubNames Set Affiliation = 'EBU'"));
}

TEST_F(LayoutTest, TheGoverningBodysTableIsMadeWithoutAMessage) {
  fake_.file->tables.erase("EBUMembershipList");
  Open();
  EXPECT_EQ(fake_.file->statements.at(0),
            "Create Table EBUMembershipList (EBUNumber Long PRIMARY KEY, FirstName Text (50), LastName Text (50), "
            "CountyCode Text (4), Location Text (50))");
  EXPECT_TRUE(fake_.file->tables.contains("EBUMembershipList"));
  EXPECT_TRUE(fake_.messages->shown.empty());
}

TEST_F(LayoutTest, DirectCreditIsDroppedTwiceAndTheSecondTimeWarns) {
  Add("Settings", "DirectCreditMPs");
  Open();
  EXPECT_THAT(Alterations(), ElementsAre("Alter Table Settings Drop Column DirectCreditMPs",
                                         "Alter Table Settings Drop Column DirectCreditMPs"));
  ASSERT_EQ(fake_.messages->shown.size(), 2U);
  EXPECT_EQ(fake_.messages->shown[1].icon, MessageBoxIcon::Information);
  EXPECT_EQ(fake_.messages->shown[1].title, "Database Update Warning");
  EXPECT_EQ(fake_.messages->shown[1].text,
            "Failed to remove obsolete column DirectCreditMPs from database table Settings\r\n\r\nMicrosoft Access "
            "reports error number 0x80040E10: nothing to drop");
}

TEST_F(LayoutTest, ATemporaryTotalOfAnotherTypeIsReplacedInTwoOpenings) {
  fake_.file->tables["MasterPoints"]["TempMPTotal"] = "Long";
  Open();
  EXPECT_THAT(Alterations(), ElementsAre("Alter Table MasterPoints Drop Column TempMPTotal"));
  OpenAgain();
  EXPECT_THAT(Alterations(), ElementsAre("Alter Table MasterPoints Add Column TempMPTotal Double"));
  OpenAgain();
  EXPECT_THAT(Alterations(), IsEmpty());
}

TEST_F(LayoutTest, TheFieldLimitIsShownOncePerStoreHoweverManyColumnsFail) {
  Remove("Members", "Stratum");
  Remove("Members", "Sex");
  FailAdding(ErrorNumber::ProviderFailure, "Too many fields defined.");
  Open();
  ASSERT_EQ(fake_.messages->shown.size(), 2U);
  EXPECT_EQ(fake_.messages->shown[1].icon, MessageBoxIcon::Critical);
  EXPECT_EQ(fake_.messages->shown[1].title, "Error updating database layout");
  EXPECT_EQ(fake_.messages->shown[1].text,
            "Your database has reached the maximum number of field updates. This is a limitation of Microsoft Access "
            "databases. If you have Microsoft Access installed on your computer you can fix the problem as follows:"
            "\r\n\r\n1. Close the Club Database Manager application.\r\n2. Start Microsoft Access and open your Club "
            "Membership \r\n    Database file.\r\n3. Click on the \"Tools\" menu and choose \"Database "
            "Utilities...\"\r\n    then \"Compact and Repair Database\"\r\n\r\nIf you do not have Microsoft Access, "
            "please contact your supplier of the Bexmoor Club Option Pack, who should be able to help you fix your "
            "database.");
  OpenAgain();
  EXPECT_EQ(fake_.messages->shown.size(), 1U) << "only the announcement";
  EXPECT_EQ(store_.OpenCount(), 0);
}

TEST_F(LayoutTest, AColumnThatCouldNotBeAddedIsNotFilled) {
  Remove("Members", "Stratum");
  FailAdding(ErrorNumber::ProviderFailure);
  Open();
  EXPECT_THAT(fake_.file->StatementsWith("Update Members"), IsEmpty());
}

TEST_F(LayoutTest, AColumnThatExistsAlreadyIsPassedOverInSilence) {
  Remove("Members", "Stratum");
  FailAdding(ErrorNumber::ProviderBadStatus);
  Open();
  EXPECT_EQ(fake_.messages->shown.size(), 1U) << "only the announcement";
}

TEST_F(LayoutTest, OtherFailuresAreShownEachAndTheNextChangeIsApplied) {
  Remove("Members", "Sex");
  Remove("Members", "Stratum");
  FailAdding(ErrorNumber::ProviderPermission, "The file is read-only.");
  Open();
  ASSERT_EQ(fake_.messages->shown.size(), 3U);
  EXPECT_EQ(fake_.messages->shown[2].icon, MessageBoxIcon::Exclamation);
  EXPECT_EQ(fake_.messages->shown[2].title, "Error updating database layout");
  EXPECT_EQ(fake_.messages->shown[2].text, "MS Access reports the following error:\r\n\r\nThe file is read-only.");
  EXPECT_EQ(store_.OpenCount(), 0);
}

TEST_F(LayoutTest, KindsOfCompetitionsAreCarriedOverBeforeTheirOldColumnGoes) {
  Add("Competitions", "ExternalType");
  Remove("Competitions", "IsExternal");
  Open();
  const Statements expected{"Alter Table Competitions Add Column IsExternal Bit",
                            "Update Competitions Set IsExternal = 0",
                            "Update Competitions Set Individual = 0, IsSwiss = 0, IsTeams = 0, IsExternal = 1, "
                            "ExternalType = Null Where ExternalType = 'P'",
                            "Update Competitions Set Individual = 1, IsSwiss = 0, IsTeams = 0, IsExternal = 1, "
                            "ExternalType = Null Where ExternalType = 'I'",
                            "Update Competitions Set Individual = 0, IsSwiss = 1, IsTeams = 0, IsExternal = 1, "
                            "ExternalType = Null Where ExternalType = 'S'",
                            "Update Competitions Set Individual = 0, IsSwiss = 0, IsTeams = 1, IsExternal = 1, "
                            "ExternalType = Null Where ExternalType = 'T'",
                            "Alter Table Competitions Drop Column ExternalType"};
  Statements changes;
  for (const std::string& statement : fake_.file->statements) {
    if (statement.find(" Competitions ") != std::string::npos && !statement.starts_with("Select")) {
      changes.push_back(statement);
    }
  }
  EXPECT_EQ(changes, expected);
}

TEST_F(LayoutTest, AnIsExternalColumnThatWasThereKeepsItsValues) {
  Add("Competitions", "ExternalType");
  Open();
  EXPECT_EQ(
      Updates().at(0),
      "Update Competitions Set Individual = 0, IsSwiss = 0, IsTeams = 0, ExternalType = Null Where ExternalType = 'P'");
}

TEST_F(LayoutTest, TheOldColumnStaysWhileItsContentCouldNotBeCarriedOver) {
  Add("Competitions", "ExternalType");
  fake_.file->failures.emplace_back("ExternalType = 'S'", Error(ErrorNumber::ProviderSyntax, "Microsoft JET", "no"));
  Open();
  EXPECT_TRUE(fake_.file->HasColumn("Competitions", "ExternalType"));
}

TEST_F(LayoutTest, AwardsWithoutAColourAreMarkedAfterAMainChangeOnly) {
  const std::string marking = "Update MasterPoints Set Colour = -1 Where Colour Is Null";
  Open();
  EXPECT_THAT(fake_.file->StatementsWith(marking), IsEmpty());
  Remove("MasterPoints", "SessionNo");
  OpenAgain();
  EXPECT_THAT(Updates(), ElementsAre("Update MasterPoints Set SessionNo = -1", marking));
}

TEST_F(LayoutTest, MarkedAwardsTakeTheColourOfTheirCompetitionWhereItHasOne) {
  FakeRows& rows = fake_.file->answers[kRepairSource];
  rows.fields = {"MasterPointsColour", "Colour"};
  rows.rows = {{std::int32_t{2}, std::int32_t{-1}}, {Null(), std::int32_t{-1}}, {std::int32_t{0}, std::int32_t{-1}}};
  Open();
  EXPECT_EQ(rows.rows[0][1], Value(std::int32_t{2}));
  EXPECT_EQ(rows.rows[1][1], Value(std::int32_t{-1}));
  EXPECT_EQ(rows.rows[2][1], Value(std::int32_t{0}));
}

TEST_F(LayoutTest, AFailingRepairIsLoggedAndDoesNotStopTheOpening) {
  const testing::DiagnosticsLog log;
  fake_.file->failures.emplace_back("Inner Join", Error(ErrorNumber::ProviderNoTable, "Microsoft JET", "no table"));
  EXPECT_NO_THROW(Open());
  EXPECT_EQ(log.Text(), "Database layout: repairing the colours of awards failed: no table\r\n");
}

}  // namespace
}  // namespace tavi
