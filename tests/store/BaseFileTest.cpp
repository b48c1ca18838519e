#include "store/Layout.h"

#include <gtest/gtest.h>

#include "platform/Matchers.h"
#include "platform/values/Convert.h"
#include "store/support/ClubFile.h"

namespace tavi {
namespace {

using testing::ClubFile;
using testing::ElementsAre;
using Types = std::map<std::string, std::int32_t>;

constexpr std::int32_t kShort = 2;
constexpr std::int32_t kLong = 3;
constexpr std::int32_t kDouble = 5;
constexpr std::int32_t kCurrency = 6;
constexpr std::int32_t kDate = 7;
constexpr std::int32_t kBoolean = 11;
constexpr std::int32_t kText = 130;

TEST(BaseFile, TheFirstOpenChangesNothingAndShowsNoMessage) {
  ClubFile club;
  const std::string before = club.Content();
  club.store.OpenDB();
  club.store.CloseDB(false);
  EXPECT_TRUE(club.messages->shown.empty());
  EXPECT_EQ(club.Content(), before);
  EXPECT_EQ(club.folder.FileCount(), 1U) << "nothing is left beside the file";
}

TEST(BaseFile, HasEveryColumnOfTheLayoutWithItsType) {
  const ClubFile club;
  EXPECT_EQ(club.ColumnTypes("Members"), (Types{{"MembershipNumber", kLong},
                                                {"EBUNumber", kText},
                                                {"Title", kText},
                                                {"FirstName", kText},
                                                {"MiddleInitials", kText},
                                                {"LastName", kText},
                                                {"FuzzedFirstName", kText},
                                                {"FuzzedLastName", kText},
                                                {"KnownAs", kText},
                                                {"Sex", kLong},
                                                {"DOB", kDate},
                                                {"email", kText},
                                                {"HouseID", kText},
                                                {"Address", kText},
                                                {"PostCode", kText},
                                                {"HomePhone", kText},
                                                {"WorkPhone", kText},
                                                {"MobilePhone", kText},
                                                {"Notes", kText},
                                                {"MemberType", kText},
                                                {"DateOfJoining", kDate},
                                                {"SubsPaid", kDate},
                                                {"SubsDue", kDate},
                                                {"AmountOwing", kCurrency},
                                                {"Privacy", kBoolean},
                                                {"Active", kBoolean},
                                                {"Handicap", kDouble},
                                                {"UniquenessFlag", kLong},
                                                {"Stratum", kLong},
                                                {"HandicalcSeed", kDouble},
                                                {"HandicalcSeedDate", kDate}}));
  EXPECT_EQ(club.ColumnTypes("Partnerships"), (Types{{"LowerPlayer", kLong},
                                                     {"HigherPlayer", kLong},
                                                     {"HigherFirst", kShort},
                                                     {"Handicap", kDouble},
                                                     {"KnownAs", kText},
                                                     {"Active", kBoolean},
                                                     {"HandicalcSeed", kDouble},
                                                     {"HandicalcSeedDate", kDate}}));
  EXPECT_EQ(club.ColumnTypes("Competitions"), (Types{{"ID", kLong},
                                                     {"CompetitionName", kText},
                                                     {"CompetitionDate", kDate},
                                                     {"Individual", kShort},
                                                     {"ScoringMethod", kShort},
                                                     {"ButlerType", kShort},
                                                     {"MasterPointsType", kShort},
                                                     {"IncludeInHandicapCalculations", kShort},
                                                     {"NumberOfTables", kLong},
                                                     {"NumberOfWinners", kShort},
                                                     {"MasterPointsColour", kLong},
                                                     {"IsTeams", kBoolean},
                                                     {"IsSwiss", kBoolean},
                                                     {"IsExternal", kBoolean},
                                                     {"QualiFinal", kBoolean},
                                                     {"NatCode", kText}}));
  EXPECT_EQ(club.ColumnTypes("Results"), (Types{{"Competition", kLong},
                                                {"Player", kLong},
                                                {"Partner", kLong},
                                                {"ActualPercentage", kDouble},
                                                {"NetPercentage", kDouble}}));
  EXPECT_EQ(club.ColumnTypes("MasterPoints"), (Types{{"ID", kLong},
                                                     {"MembershipNumber", kLong},
                                                     {"NonMemberName", kText},
                                                     {"CompetitionID", kLong},
                                                     {"SessionNo", kLong},
                                                     {"MasterPoints", kDouble},
                                                     {"Colour", kLong},
                                                     {"Status", kShort},
                                                     {"RecordUpdated", kShort},
                                                     {"TempMPTotal", kDouble},
                                                     {"MPTotalsString", kText}}));
  EXPECT_EQ(club.ColumnTypes("Settings"), (Types{{"MasterPointMethod", kShort},
                                                 {"LastMPCertificate", kLong},
                                                 {"LastMPUploadNo", kLong},
                                                 {"MPCertificatePrefix", kText},
                                                 {"CountyList", kText},
                                                 {"LastUploadDate", kDate},
                                                 {"LastGotEBUNos", kDate}}));
  EXPECT_EQ(club.ColumnTypes("ClubNames"),
            (Types{{"ClubID", kLong}, {"ClubName", kText}, {"ClubEBUNumber", kText}, {"Affiliation", kText}}));
  EXPECT_EQ(club.ColumnTypes("ClubPolicies"),
            (Types{{"MemberType", kText}, {"SpecificDate", kShort}, {"SubsDueDate", kDate}, {"Subs", kCurrency}}));
  EXPECT_EQ(club.ColumnTypes("HandicalcSettings"), (Types{{"MaxWeeks", kShort},
                                                          {"MaxResults", kShort},
                                                          {"SamePartnerWeighting", kShort},
                                                          {"RegularPairMultiplier", kDouble},
                                                          {"RegularPairAdd", kDouble},
                                                          {"UnknownPlayerHandicap", kDouble},
                                                          {"Disabled", kBoolean}}));
  EXPECT_EQ(club.ColumnTypes("EBUMembershipList"), (Types{{"EBUNumber", kLong},
                                                          {"FirstName", kText},
                                                          {"LastName", kText},
                                                          {"CountyCode", kText},
                                                          {"Location", kText}}));
}

TEST(BaseFile, NewRowsGetTheDefaults) {
  const ClubFile club;
  club.Prepare({"Insert into Members (MembershipNumber) Values (1)",
                "Insert into Partnerships (LowerPlayer, HigherPlayer) Values (1, 2)",
                "Insert into Competitions (CompetitionName) Values ('Club night')",
                "Insert into MasterPoints (MembershipNumber) Values (1)",
                "Insert into ClubNames (ClubName) Values ('Hillcrest')"});
  EXPECT_THAT(club.Column("Select Active From Members"), ElementsAre("True"));
  EXPECT_THAT(club.Column("Select Handicap From Members"), ElementsAre("50"));
  EXPECT_THAT(club.Column("Select Sex From Members"), ElementsAre("0"));
  EXPECT_THAT(club.Column("Select Stratum From Members"), ElementsAre("0"));
  EXPECT_THAT(club.Column("Select Privacy From Members"), ElementsAre("False"));
  EXPECT_THAT(club.Column("Select UniquenessFlag From Members"), ElementsAre("Null"));
  EXPECT_THAT(club.Column("Select Active From Partnerships"), ElementsAre("True"));
  EXPECT_THAT(club.Column("Select NatCode From Competitions"), ElementsAre("EBU"));
  EXPECT_THAT(club.Column("Select IsTeams From Competitions"), ElementsAre("False"));
  EXPECT_THAT(club.Column("Select SessionNo From MasterPoints"), ElementsAre("-1"));
  EXPECT_THAT(club.Column("Select Colour From MasterPoints"), ElementsAre("-1"));
  EXPECT_THAT(club.Column("Select Affiliation From ClubNames"), ElementsAre("EBU"));
}

TEST(BaseFile, IdentifiersCountByThemselves) {
  const ClubFile club;
  club.Prepare({"Insert into ClubNames (ClubName) Values ('One')", "Insert into ClubNames (ClubName) Values ('Two')"});
  EXPECT_THAT(club.Column("Select ClubID From ClubNames Order By ClubID"), ElementsAre("1", "2"));
}

TEST(BaseFile, KeysForbidASecondRow) {
  const ClubFile club;
  const auto connection = club.Connect();
  connection->Execute("Insert into Members (MembershipNumber) Values (1)");
  EXPECT_THROW(connection->Execute("Insert into Members (MembershipNumber) Values (1)"), Error);
  connection->Execute("Insert into Partnerships (LowerPlayer, HigherPlayer) Values (1, 2)");
  connection->Execute("Insert into Partnerships (LowerPlayer, HigherPlayer) Values (1, 3)");
  EXPECT_THROW(connection->Execute("Insert into Partnerships (LowerPlayer, HigherPlayer) Values (1, 2)"), Error);
}

TEST(BaseFile, EveryTextColumnTakesAnEmptyText) {
  const ClubFile club;
  const std::map<std::string, std::string> keys{
      {"Members", "MembershipNumber"},   {"Partnerships", "LowerPlayer, HigherPlayer"},
      {"Competitions", "Individual"},    {"MasterPoints", "Status"},
      {"Settings", "MasterPointMethod"}, {"ClubPolicies", "SpecificDate"}};
  for (const auto& [table, key] : keys) {
    std::string columns = key;
    std::string values = table == "Partnerships" ? "1, 2" : "1";
    for (const auto& [column, type] : club.ColumnTypes(table)) {
      if (type != kText) continue;
      columns += ", " + column;
      values += ", ''";
    }
    club.Prepare({"Insert into " + table + " (" + columns + ") Values (" + values + ")"});
    for (const auto& [column, type] : club.ColumnTypes(table)) {
      if (type != kText) continue;
      EXPECT_THAT(club.Column("Select " + column + " From " + table), ElementsAre("")) << table << "." << column;
    }
  }
}

TEST(BaseFile, HasOneRowOfHandicapSettingsAndNoOtherRow) {
  const ClubFile club;
  EXPECT_THAT(club.Column("Select MaxWeeks & ' ' & MaxResults & ' ' & SamePartnerWeighting & ' ' & "
                          "RegularPairMultiplier & ' ' & RegularPairAdd & ' ' & UnknownPlayerHandicap & ' ' & Disabled "
                          "From HandicalcSettings"),
              ElementsAre("0 0 50 1 0 50 0"));
  for (const char* table : {"Members", "Partnerships", "Competitions", "Results", "MasterPoints", "Settings",
                            "ClubNames", "ClubPolicies", "EBUMembershipList"}) {
    EXPECT_THAT(club.Column("Select Count(*) From " + std::string(table)), ElementsAre("0")) << table;
  }
}

TEST(BaseFile, CannotBeMadeTwice) {
  const ClubFile club;
  const auto connection = club.Connect();
  EXPECT_THROW(CreateBaseFile(*connection), Error);
}

}  // namespace
}  // namespace tavi
