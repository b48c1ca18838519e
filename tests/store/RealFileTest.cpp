#include <gtest/gtest.h>

#include "platform/Matchers.h"
#include "store/OpenUse.h"
#include "store/support/ClubFile.h"

namespace tavi {
namespace {

using testing::ClubFile;
using testing::ElementsAre;
using testing::IsEmpty;

/// A store on a real file that a test first brings into an older state.
class RealFileTest : public ::testing::Test {
 protected:
  void Open() {
    club_.store.NewDatabase();
    club_.messages->shown.clear();
    club_.store.OpenDB();
    club_.store.CloseDB(false);
  }
  std::vector<std::string> Titles() const {
    std::vector<std::string> titles;
    for (const auto& message : club_.messages->shown) titles.push_back(message.title);
    return titles;
  }

  ClubFile club_;
};

TEST_F(RealFileTest, AMissingColumnIsAddedAndEveryMemberGetsItsDefault) {
  club_.Prepare({"Alter Table Members Drop Column Stratum", "Insert into Members (MembershipNumber) Values (1)",
                 "Insert into Members (MembershipNumber) Values (2)"});
  Open();
  EXPECT_THAT(Titles(), ElementsAre("Database Update Required"));
  EXPECT_THAT(club_.Column("Select Stratum From Members"), ElementsAre("0", "0"));
  Open();
  EXPECT_THAT(Titles(), IsEmpty());
}

TEST_F(RealFileTest, ColumnsAddedAsIntegerHold32Bits) {
  club_.Prepare({"Alter Table Members Drop Column Stratum", "Alter Table MasterPoints Drop Column SessionNo",
                 "Alter Table Competitions Drop Column NumberOfTables"});
  Open();
  constexpr auto kNumberOf32Bits = static_cast<std::int32_t>(ado::DataType::Integer);
  EXPECT_EQ(club_.ColumnTypes("Members")["Stratum"], kNumberOf32Bits);
  EXPECT_EQ(club_.ColumnTypes("MasterPoints")["SessionNo"], kNumberOf32Bits);
  EXPECT_EQ(club_.ColumnTypes("Competitions")["NumberOfTables"], kNumberOf32Bits);
}

TEST_F(RealFileTest, AFileWithoutTheGoverningBodysTableGetsItWithoutAMessage) {
  club_.Prepare({"Drop Table EBUMembershipList"});
  Open();
  EXPECT_THAT(Titles(), IsEmpty());
  EXPECT_EQ(club_.ColumnTypes("EBUMembershipList").size(), 5U);
}

TEST_F(RealFileTest, TheSecondDropOfDirectCreditWarns) {
  club_.Prepare({"Alter Table Settings Add Column DirectCreditMPs Bit"});
  Open();
  EXPECT_THAT(Titles(), ElementsAre("Database Update Required", "Database Update Warning"));
  EXPECT_FALSE(club_.ColumnTypes("Settings").contains("DirectCreditMPs"));
  Open();
  EXPECT_THAT(Titles(), IsEmpty());
}

TEST_F(RealFileTest, ATemporaryTotalOfAnotherTypeIsReplacedInTwoOpenings) {
  club_.Prepare(
      {"Alter Table MasterPoints Drop Column TempMPTotal", "Alter Table MasterPoints Add Column TempMPTotal Long"});
  Open();
  EXPECT_FALSE(club_.ColumnTypes("MasterPoints").contains("TempMPTotal"));
  Open();
  EXPECT_EQ(club_.ColumnTypes("MasterPoints").at("TempMPTotal"), 5);
  Open();
  EXPECT_THAT(Titles(), IsEmpty());
}

TEST_F(RealFileTest, OldKindsOfCompetitionsSurviveTheirColumn) {
  club_.Prepare({"Alter Table Competitions Drop Column IsExternal", "Alter Table Competitions Drop Column IsTeams",
                 "Alter Table Competitions Add Column ExternalType Text (1)",
                 "Insert into Competitions (CompetitionName, Individual, ExternalType) Values ('pairs', 0, 'P')",
                 "Insert into Competitions (CompetitionName, Individual, ExternalType) Values ('single', 0, 'I')",
                 "Insert into Competitions (CompetitionName, Individual, ExternalType) Values ('swiss', 0, 's')",
                 "Insert into Competitions (CompetitionName, Individual, ExternalType) Values ('teams', 0, 'T')",
                 "Insert into Competitions (CompetitionName, Individual, ExternalType) Values ('ours', 5, '')",
                 "Insert into Competitions (CompetitionName, Individual) Values ('plain', 5)"});
  Open();
  EXPECT_FALSE(club_.ColumnTypes("Competitions").contains("ExternalType"));
  const std::string order = " From Competitions Order By ID";
  EXPECT_THAT(club_.Column("Select Individual" + order), ElementsAre("0", "1", "0", "0", "5", "5"));
  EXPECT_THAT(club_.Column("Select IsSwiss" + order), ElementsAre("False", "False", "True", "False", "False", "False"));
  EXPECT_THAT(club_.Column("Select IsTeams" + order), ElementsAre("False", "False", "False", "True", "False", "False"));
  EXPECT_THAT(club_.Column("Select IsExternal" + order), ElementsAre("True", "True", "True", "True", "False", "False"));
}

TEST_F(RealFileTest, AwardsTakeTheColourOfTheirCompetition) {
  club_.Prepare({"Insert into Competitions (CompetitionName, MasterPointsColour) Values ('one', 2)",
                 "Insert into Competitions (CompetitionName) Values ('two')",
                 "Insert into MasterPoints (CompetitionID, Colour) Values (1, -1)",
                 "Insert into MasterPoints (CompetitionID, Colour) Values (1, 1)",
                 "Insert into MasterPoints (CompetitionID, Colour) Values (2, -1)",
                 "Insert into MasterPoints (CompetitionID, Colour) Values (9, -1)"});
  Open();
  EXPECT_THAT(club_.Column("Select Colour From MasterPoints Order By ID"), ElementsAre("2", "1", "-1", "-1"));
  const std::string before = club_.Content();
  Open();
  EXPECT_EQ(club_.Content(), before) << "the second opening has nothing to write";
}

TEST_F(RealFileTest, AwardsOfAnOlderFileAreMarkedAndThenRepaired) {
  club_.Prepare({"Alter Table MasterPoints Drop Column Colour",
                 "Insert into Competitions (CompetitionName, MasterPointsColour) Values ('one', 2)",
                 "Insert into MasterPoints (CompetitionID) Values (1)",
                 "Insert into MasterPoints (CompetitionID) Values (7)"});
  Open();
  EXPECT_THAT(club_.Column("Select Colour From MasterPoints Order By ID"), ElementsAre("2", "-1"));
}

TEST_F(RealFileTest, TextsComeBackAsTheyWere) {
  const std::array<std::string, 5> texts{"50% O'Neil", "one\r\ntwo", "Éloïse Łukasz Müller-Lüdenscheidt", "%p%c%l %",
                                         std::string(5000, 'x') + "\U0001F0A1"};
  int number = 0;
  for (const std::string& text : texts) {
    club_.store.Execute("Insert into Members (MembershipNumber, Notes) Values (" + std::to_string(++number) + ", " +
                        cDatabase::SQLString(text) + ")");
  }
  OpenUse use(club_.store);
  const auto rows = club_.store.OpenRecordset("Select Notes From Members Order By MembershipNumber");
  for (const std::string& text : texts) {
    EXPECT_EQ(cDatabase::GetTextField(*rows, "Notes"), text);
    rows->MoveNext();
  }
}

TEST_F(RealFileTest, DatesAreFoundByTheirNumber) {
  const Date day = Date::FromCivil(2024, 2, 29);
  club_.store.Execute("Insert into Competitions (CompetitionName, CompetitionDate) Values ('leap', " +
                      cDatabase::SQLDate(day) + ")");
  OpenUse use(club_.store);
  const auto rows =
      club_.store.OpenRecordset("Select * From Competitions Where CompetitionDate = " + cDatabase::SQLDate(day));
  ASSERT_FALSE(rows->AtEnd());
  EXPECT_EQ(cDatabase::GetDateField(*rows, "CompetitionDate", Date{}), day);
}

TEST_F(RealFileTest, TheSettingsRecordKeepsItsValues) {
  cDatabase& store = club_.store;
  store.SetLatestClubName("Hillcrest Bridge Club");
  EXPECT_EQ(store.NextMPCertificateNumber(), "HBC00001");
  EXPECT_EQ(store.NextMPCertificateNumber(), "HBC00002");
  store.SetLatestClubName("St. Anne's");
  EXPECT_EQ(store.LatestClubName(), "St. Anne's");
  EXPECT_EQ(store.NextMPCertificateNumber(), "SA00003");
  EXPECT_EQ(store.NextMPUploadNumber(), 1);
  store.SetMasterPointIssueMethod(2);
  EXPECT_EQ(store.MasterPointIssueMethod(), 2);
  store.SetCountyList("Kent,Surrey");
  EXPECT_EQ(store.CountyList(), "Kent,Surrey");
  EXPECT_EQ(store.LastUploadDate(), Date::FromCivil(2000, 12, 4));
  store.SetLastUploadDate(Date::FromCivil(2024, 3, 1));
  EXPECT_EQ(store.LastUploadDate(), Date::FromCivil(2024, 3, 1));
  EXPECT_EQ(store.OpenCount(), 0);
  EXPECT_THAT(club_.Column("Select Count(*) From Settings"), ElementsAre("1"));
}

TEST_F(RealFileTest, AMissingFileIsSaidWithItsPath) {
  club_.store.SetDatabaseFolder(club_.folder.Path("nowhere"));
  try {
    club_.store.OpenDB();
    FAIL();
  } catch (const Error& error) {
    EXPECT_TRUE(error.Is(ErrorNumber::Component));
    EXPECT_TRUE(error.Description().starts_with("Failed to open membership database " + club_.folder.Path("nowhere") +
                                                "\\ClubMembers.mdb:\r\n\r\n"));
  }
}

}  // namespace
}  // namespace tavi
