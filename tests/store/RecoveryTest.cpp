#include <gtest/gtest.h>

#include <filesystem>

#include "platform/ConnectionTo.h"
#include "platform/Matchers.h"
#include "platform/TemporaryFolder.h"
#include "platform/support/ThisSystem.h"
#include "store/Recovery.h"
#include "store/support/ClubFile.h"
#include "store/support/DamagedBytes.h"

namespace tavi {
namespace {

using testing::AllOf;
using testing::ClubFile;
using testing::DamagedBytes;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using Texts = std::vector<std::string>;

class FixedRegistry : public Registry {
 public:
  explicit FixedRegistry(std::string governingBody) : governingBody_(std::move(governingBody)) {}
  [[nodiscard]] std::optional<std::string> ReadText(RegistryRoot root, std::string_view keyPath,
                                                    std::string_view valueName) const override {
    const bool isAsked = root == RegistryRoot::CurrentUser && keyPath == "Software\\Pelmont\\Bridge\\ClubDatabase" &&
                         valueName == "Governing Body";
    return isAsked ? std::optional(governingBody_) : std::nullopt;
  }

 private:
  std::string governingBody_;
};

class RecordedProgress : public RecoveryObserver {
 public:
  void Show(const std::string& table, std::int64_t done, std::int64_t stated) override {
    steps.push_back(table + " " + std::to_string(done) + "/" + std::to_string(stated));
  }
  Texts steps;
};

/// An old file beside the club's current one, which has been in use, so that its next identifiers are others.
class RecoveryTest : public ::testing::Test {
 protected:
  RecoveryTest() {
    club_.Prepare({"Insert into Competitions (CompetitionName) Values ('gone')",
                   "Insert into Competitions (CompetitionName) Values ('gone too')",
                   "Insert into Members (MembershipNumber, LastName) Values (99, 'Gone')"});
    club_.folder.MakeClubFile("old.mdb");
  }

  [[nodiscard]] std::string OldPath() const { return club_.folder.Path("old.mdb"); }
  [[nodiscard]] std::string OldContent() const { return club_.folder.ReadFile("old.mdb"); }
  [[nodiscard]] std::unique_ptr<ado::Connection> Connect() const {
    return club_.platform->databaseProvider->Open(ConnectionTo(OldPath()));
  }
  void Old(const Texts& statements) const {
    const auto connection = Connect();
    for (const std::string& statement : statements) connection->Execute(statement);
    connection->Close();
  }
  void AddOldMembers(int count) const {
    const auto connection = Connect();
    for (int number = 1; number <= count; ++number) {
      connection->Execute("Insert into Members (MembershipNumber, FirstName, LastName, Notes) Values (" +
                          std::to_string(number) + ", 'Ann', 'MemberOfOld" + std::to_string(number) + "', '" +
                          std::string(120, 'n') + "')");
    }
    connection->Close();
  }
  /// Breaks the old file.
  void Damage(const std::function<void(DamagedBytes&)>& damage) const {
    DamagedBytes bytes(OldContent());
    damage(bytes);
    club_.folder.WriteFile("old.mdb", bytes.Content());
  }
  RecoveryReport Recover() { return club_.store.RecoverData(OldPath()); }
  [[nodiscard]] static const RecoveredTable& Find(const RecoveryReport& report, const std::string& table) {
    for (const RecoveredTable& found : report.tables) {
      if (found.name == table) return found;
    }
    throw std::logic_error("no report of " + table);
  }
  [[nodiscard]] static std::string Figures(const RecoveryReport& report, const std::string& table) {
    const RecoveredTable& found = Find(report, table);
    return std::to_string(found.found) + " " + std::to_string(found.saved) + " " + std::to_string(found.lost) + " " +
           std::to_string(found.valuesLost);
  }
  /// The text of the one message shown, after a look at its title.
  [[nodiscard]] std::string Message() const {
    EXPECT_EQ(club_.messages->shown.size(), 1U);
    if (club_.messages->shown.empty()) return "";
    EXPECT_EQ(club_.messages->shown[0].title, "Database Recovery Error");
    return club_.messages->shown[0].text;
  }
  void UseGoverningBody(const std::string& body) {
    auto platform = std::make_shared<Platform>(*club_.platform);
    platform->registry = std::make_shared<FixedRegistry>(body);
    other_ = std::make_unique<cDatabase>(platform, NameSteps());
    other_->SetDatabaseFolder(club_.folder.Path());
  }

  ClubFile club_;
  std::unique_ptr<cDatabase> other_;
};

// ---------------------------------------------------------------------------------------------------------------------
// Sound files
// ---------------------------------------------------------------------------------------------------------------------

TEST_F(RecoveryTest, EveryTableOfTheOldFileReplacesTheCurrentOne) {
  Old({"Insert into ClubNames (ClubName, ClubEBUNumber, Affiliation) Values ('Hillcrest', '123', 'WBU')",
       "Insert into ClubPolicies (MemberType, Subs) Values ('Junior', 5)",
       "Insert into Competitions (CompetitionName) Values ('Tuesday')",
       "Update HandicalcSettings Set MaxWeeks = 26, Disabled = -1",
       "Insert into MasterPoints (MembershipNumber, Colour, MasterPoints) Values (7, 2, 24)",
       "Insert into Members (MembershipNumber, FirstName, LastName, Notes, DOB, Active) Values (7, 'Ann', 'O''Neil', "
       "'" +
           std::string(3000, 'm') + "', 20000, 0)",
       "Insert into Partnerships (LowerPlayer, HigherPlayer, KnownAs) Values (7, 8, 'A&B')",
       "Insert into Results (Player, ActualPercentage) Values (7, 55.5)",
       "Insert into Settings (LastMPCertificate, CountyList) Values (41, 'Kent')"});
  const RecoveryReport report = Recover();
  EXPECT_FALSE(report.IsSomethingLost());
  EXPECT_TRUE(club_.messages->shown.empty());
  for (const RecoveredTable& table : report.tables) EXPECT_EQ(Figures(report, table.name), "1 1 0 0") << table.name;
  EXPECT_EQ(report.tables.size(), 9U);
  EXPECT_THAT(club_.Column("Select Affiliation From ClubNames"), ElementsAre("WBU"));
  EXPECT_THAT(club_.Column("Select MemberType From ClubPolicies"), ElementsAre("Junior"));
  EXPECT_THAT(club_.Column("Select CompetitionName From Competitions"), ElementsAre("Tuesday"));
  EXPECT_THAT(club_.Column("Select Disabled From HandicalcSettings"), ElementsAre("True"));
  EXPECT_THAT(club_.Column("Select MasterPoints From MasterPoints"), ElementsAre("24"));
  EXPECT_THAT(club_.Column("Select LastName From Members"), ElementsAre("O'Neil"));
  EXPECT_THAT(club_.Column("Select Notes From Members"), ElementsAre(std::string(3000, 'm')));
  EXPECT_THAT(club_.Column("Select Active From Members"), ElementsAre("False"));
  EXPECT_THAT(club_.Column("Select KnownAs From Partnerships"), ElementsAre("A&B"));
  EXPECT_THAT(club_.Column("Select ActualPercentage From Results"), ElementsAre("55.5"));
  EXPECT_THAT(club_.Column("Select LastMPCertificate From Settings"), ElementsAre("41"));
  EXPECT_EQ(club_.store.OpenCount(), 0);
}

TEST_F(RecoveryTest, ResultsAndAwardsFollowTheirCompetitionToItsNewNumber) {
  // Awards have identifiers that competitions have too; they must not be taken for each other.
  Old({"Insert into Competitions (CompetitionName) Values ('one')",
       "Insert into Competitions (CompetitionName) Values ('two')",
       "Insert into MasterPoints (CompetitionID, MembershipNumber, Colour) Values (2, 1, 0)",
       "Insert into MasterPoints (CompetitionID, MembershipNumber, Colour) Values (1, 2, 0)",
       "Insert into Results (Competition, Player) Values (1, 1)",
       "Insert into Results (Competition, Player) Values (2, 2)", "Insert into ClubNames (ClubName) Values ('first')",
       "Insert into ClubNames (ClubName) Values ('second')"});
  EXPECT_FALSE(Recover().IsSomethingLost());
  EXPECT_THAT(club_.Column("Select ID From Competitions Order By ID"), ElementsAre("3", "4"));
  EXPECT_THAT(
      club_.Column("Select CompetitionName From Competitions, MasterPoints Where CompetitionID = Competitions.ID "
                   "Order By MembershipNumber"),
      ElementsAre("two", "one"));
  EXPECT_THAT(club_.Column("Select CompetitionName From Competitions, Results Where Competition = ID Order By Player"),
              ElementsAre("one", "two"));
  EXPECT_EQ(club_.store.LatestClubName(), "second");
}

TEST_F(RecoveryTest, WhatReferredToNoCompetitionDoesNotGetAnothersNumber) {
  Old({"Insert into Competitions (CompetitionName) Values ('one')",
       "Insert into Results (Competition, Player) Values (3, 1)",
       "Insert into Results (Competition, Player) Values (0, 2)", "Insert into Results (Player) Values (3)"});
  const RecoveryReport report = Recover();
  EXPECT_FALSE(report.IsSomethingLost());
  EXPECT_THAT(club_.Column("Select Competition From Results Order By Player"), ElementsAre("Null", "0", "Null"));
  EXPECT_THAT(
      Find(report, "Results").remarks,
      ElementsAre("Rows that refer to a competition that was not saved, or was not there, and belong to none now: 1."));
}

TEST_F(RecoveryTest, AwardsWithoutColourAndSessionGetMinusOneAndThenTheColourOfTheirCompetition) {
  Old({"Alter Table MasterPoints Drop Column Colour", "Alter Table MasterPoints Drop Column SessionNo",
       "Insert into Competitions (CompetitionName, MasterPointsColour) Values ('one', 2)",
       "Insert into MasterPoints (CompetitionID, MembershipNumber) Values (1, 1)",
       "Insert into MasterPoints (CompetitionID, MembershipNumber) Values (0, 2)"});
  EXPECT_FALSE(Recover().IsSomethingLost());
  EXPECT_THAT(club_.Column("Select Colour From MasterPoints Order By MembershipNumber"), ElementsAre("2", "-1"));
  EXPECT_THAT(club_.Column("Select SessionNo From MasterPoints"), ElementsAre("-1", "-1"));
}

TEST_F(RecoveryTest, DefaultsAlsoTakeThePlaceOfEmptyValues) {
  Old({"Insert into Competitions (CompetitionName, NatCode) Values ('one', Null)",
       "Insert into MasterPoints (MembershipNumber, Colour, SessionNo) Values (1, Null, Null)",
       "Insert into Members (MembershipNumber, Handicap) Values (1, Null)"});
  EXPECT_FALSE(Recover().IsSomethingLost());
  EXPECT_THAT(club_.Column("Select NatCode From Competitions"), ElementsAre("EBU"));
  EXPECT_THAT(club_.Column("Select SessionNo From MasterPoints"), ElementsAre("-1"));
  EXPECT_THAT(club_.Column("Select Handicap From Members"), ElementsAre("Null")) << "no default was said";
}

TEST_F(RecoveryTest, AColumnWithoutADefaultKeepsWhatTheNewFileGivesToIt) {
  Old({"Alter Table Members Drop Column Active", "Insert into Members (MembershipNumber) Values (1)"});
  EXPECT_FALSE(Recover().IsSomethingLost());
  EXPECT_THAT(club_.Column("Select Active From Members"), ElementsAre("True"));
}

TEST_F(RecoveryTest, ClubNamesWithoutAffiliationGetTheGoverningBodyOfTheSettings) {
  Old({"Alter Table ClubNames Drop Column Affiliation", "Insert into ClubNames (ClubName) Values ('one')"});
  UseGoverningBody("WBU");
  EXPECT_FALSE(other_->RecoverData(OldPath()).IsSomethingLost());
  EXPECT_THAT(club_.Column("Select Affiliation From ClubNames"), ElementsAre("WBU"));
}

TEST_F(RecoveryTest, AGoverningBodyThatIsNoDefaultIsReportedAndTheOtherTablesAreSaved) {
  club_.Prepare({"Insert into ClubNames (ClubName) Values ('current')"});
  Old({"Insert into ClubNames (ClubName) Values ('old')", "Insert into Members (MembershipNumber) Values (1)"});
  UseGoverningBody("EBU,WBU");
  const RecoveryReport report = other_->RecoverData(OldPath());
  EXPECT_TRUE(report.IsSomethingLost());
  const RecoveredTable& names = Find(report, "ClubNames");
  ASSERT_TRUE(names.error);
  EXPECT_EQ(names.error->Source(), "Recovery");
  EXPECT_EQ(names.error->Description(), "Illegal defaults setting");
  EXPECT_THAT(Message(), HasSubstr("ClubNames: 0 of 1 rows saved\r\n  Illegal defaults setting"));
  EXPECT_THAT(club_.Column("Select ClubName From ClubNames"), ElementsAre("current"));
  EXPECT_THAT(club_.Column("Select MembershipNumber From Members"), ElementsAre("1"));
}

TEST_F(RecoveryTest, RowsWithoutIdentifierAreSavedAndReported) {
  Old({"Drop Table Competitions", "Create Table Competitions (CompetitionName Text (255), QualiFinal Bit)",
       "Insert into Competitions (CompetitionName) Values ('one')",
       "Insert into Competitions (CompetitionName) Values ('two')",
       "Insert into Members (MembershipNumber) Values (1)"});
  const RecoveryReport report = Recover();
  const RecoveredTable& competitions = Find(report, "Competitions");
  ASSERT_TRUE(competitions.error);
  EXPECT_EQ(competitions.error->Source(), "Recover");
  EXPECT_EQ(competitions.error->Description(), "ID field not found in old record");
  EXPECT_THAT(Message(), HasSubstr("ID field not found in old record"));
  EXPECT_THAT(club_.Column("Select CompetitionName From Competitions"), ElementsAre("one", "two"));
  EXPECT_THAT(club_.Column("Select MembershipNumber From Members"), ElementsAre("1"));
}

TEST_F(RecoveryTest, NegativeIdentifiersAreReportedAndTheirRowsSaved) {
  Old({"Insert into Competitions (ID, CompetitionName) Values (-5, 'one')",
       "Insert into Results (Competition, Player) Values (-5, 1)"});
  const RecoveryReport report = Recover();
  ASSERT_TRUE(Find(report, "Competitions").error);
  EXPECT_EQ(Find(report, "Competitions").error->Description(), "ID field not found in old record");
  EXPECT_THAT(Message(), HasSubstr("ID field not found in old record"));
  EXPECT_THAT(club_.Column("Select CompetitionName From Competitions"), ElementsAre("one"));
  EXPECT_THAT(club_.Column("Select Competition From Results"), ElementsAre("-5")) << "never another competition's";
}

TEST_F(RecoveryTest, NegativeIdentifiersAreMappedWhenTheyAreAccepted) {
  Old({"Insert into Competitions (ID, CompetitionName) Values (-5, 'one')",
       "Insert into Competitions (ID, CompetitionName) Values (-1, 'two')",
       "Insert into MasterPoints (ID, CompetitionID, MembershipNumber) Values (-70, -5, 7)",
       "Insert into ClubNames (ClubID, ClubName) Values (-2, 'Hillcrest')",
       "Insert into Results (Competition, Player) Values (-1, 1)"});
  Recovery recovery(club_.store, nullptr);
  recovery.AcceptNegativeIdentifiers();
  EXPECT_FALSE(recovery.Run(OldPath()).IsSomethingLost());
  EXPECT_THAT(club_.Column("Select ID From Competitions Where ID < 1"), IsEmpty());
  EXPECT_THAT(club_.Column("Select CompetitionName From Competitions, MasterPoints Where CompetitionID = "
                           "Competitions.ID"),
              ElementsAre("one"));
  EXPECT_THAT(club_.Column("Select CompetitionName From Competitions, Results Where Competition = ID"),
              ElementsAre("two"));
  EXPECT_EQ(club_.Column("Select ID From MasterPoints Where ID > 0").size(), 1U);
  EXPECT_EQ(club_.Column("Select ClubID From ClubNames Where ClubID > 0").size(), 1U);
}

TEST_F(RecoveryTest, KindsOfOldCompetitionsAreCarriedOver) {
  Texts statements{"Alter Table Competitions Drop Column QualiFinal", "Alter Table Competitions Drop Column IsExternal",
                   "Alter Table Competitions Drop Column IsTeams", "Alter Table Competitions Drop Column IsSwiss",
                   "Alter Table Competitions Add Column ExternalType Text (1)"};
  for (const char* code : {"P", "I", "s", "T", "X", ""}) {
    statements.push_back(
        "Insert into Competitions (CompetitionName, Individual, ScoringMethod, ExternalType) Values ('" +
        std::string(code) + " ', 5, 3, '" + code + "')");
  }
  Old(statements);
  EXPECT_FALSE(Recover().IsSomethingLost());
  const std::string order = " From Competitions Order By ID";
  EXPECT_THAT(club_.Column("Select Individual" + order), ElementsAre("0", "1", "0", "0", "5", "5"));
  EXPECT_THAT(club_.Column("Select IsSwiss" + order), ElementsAre("False", "False", "True", "False", "False", "False"));
  EXPECT_THAT(club_.Column("Select IsTeams" + order), ElementsAre("False", "False", "False", "True", "False", "False"));
  EXPECT_THAT(club_.Column("Select IsExternal" + order), ElementsAre("True", "True", "True", "True", "False", "False"));
  EXPECT_THAT(club_.Column("Select ScoringMethod" + order), ElementsAre("3", "3", "3", "3", "3", "3"));
}

TEST_F(RecoveryTest, AFileThatHasTheCurrentColumnIsNotConverted) {
  Old({"Alter Table Competitions Add Column ExternalType Text (1)",
       "Insert into Competitions (CompetitionName, Individual, ExternalType) Values ('teams', 5, 'T')"});
  EXPECT_FALSE(Recover().IsSomethingLost());
  EXPECT_THAT(club_.Column("Select Individual From Competitions"), ElementsAre("5"));
  EXPECT_THAT(club_.Column("Select IsTeams From Competitions"), ElementsAre("False"));
}

TEST_F(RecoveryTest, TheCurrentFileGetsTheCurrentLayoutFirst) {
  club_.store.OpenDB();
  club_.store.CloseDB(true);
  club_.Prepare({"Alter Table Members Drop Column Stratum"});
  Old({"Insert into Members (MembershipNumber, Stratum) Values (1, 3)"});
  EXPECT_FALSE(Recover().IsSomethingLost());
  EXPECT_THAT(club_.Column("Select Stratum From Members"), ElementsAre("3"));
}

TEST_F(RecoveryTest, NameFlagsAreRefreshed) {
  Old({"Insert into Members (MembershipNumber, FirstName, LastName) Values (1, 'John', 'Smith')",
       "Insert into Members (MembershipNumber, FirstName, LastName) Values (2, 'John', 'Smyth')"});
  Recover();
  EXPECT_THAT(club_.Column("Select UniquenessFlag From Members"), ElementsAre("2", "2"));
}

TEST_F(RecoveryTest, RecoveringAgainStartsEachTableAnew) {
  AddOldMembers(3);
  Recover();
  Recover();
  EXPECT_THAT(club_.Column("Select MembershipNumber From Members Order By MembershipNumber"),
              ElementsAre("1", "2", "3"));
}

TEST_F(RecoveryTest, TheTablesAreLoggedInTheirOrder) {
  const testing::DiagnosticsLog log;
  Recover();
  EXPECT_EQ(log.Text(),
            "Recovering ClubNames:ClubID\r\nRecovering ClubPolicies\r\nRecovering Competitions:ID\r\n"
            "Recovering HandicalcSettings\r\nRecovering MasterPoints:ID\r\nRecovering Members\r\n"
            "Recovering Partnerships\r\nRecovering Results\r\nRecovering Settings\r\n");
}

TEST_F(RecoveryTest, ProgressIsShownRowByRow) {
  AddOldMembers(2);
  RecordedProgress progress;
  club_.store.RecoverData(OldPath(), &progress);
  EXPECT_THAT(progress.steps, testing::IsSupersetOf({"ClubNames 0/0", "Members 0/2", "Members 1/2", "Members 2/2"}));
}

// ---------------------------------------------------------------------------------------------------------------------
// Relationships that the current file enforces
// ---------------------------------------------------------------------------------------------------------------------

TEST_F(RecoveryTest, RowsThatARelationshipRefusesAreTriedAgainAtTheEnd) {
  // Awards are copied before members. The current file's own award keeps its member from being deleted first.
  club_.Prepare({"Insert into MasterPoints (MembershipNumber) Values (99)",
                 "Alter Table MasterPoints Add Constraint ItsMember Foreign Key (MembershipNumber) References Members "
                 "(MembershipNumber)"});
  Old({"Insert into Competitions (CompetitionName) Values ('one')", "Insert into Members (MembershipNumber) Values (7)",
       "Insert into MasterPoints (CompetitionID, MembershipNumber, Colour) Values (1, 7, 0)"});
  const RecoveryReport report = Recover();
  EXPECT_FALSE(report.IsSomethingLost());
  EXPECT_EQ(Figures(report, "MasterPoints"), "1 1 0 0");
  EXPECT_TRUE(club_.messages->shown.empty());
  EXPECT_THAT(club_.Column("Select MembershipNumber From Members"), ElementsAre("7"));
  EXPECT_THAT(club_.Column("Select CompetitionName From Competitions, MasterPoints Where CompetitionID = "
                           "Competitions.ID And MembershipNumber = 7"),
              ElementsAre("one"));
}

TEST_F(RecoveryTest, TheCurrentRowsAreGoneBeforeTheFirstNewOneRefersToThem) {
  // Awards are copied before members: one of the old file's may refer to a current member of the same number.
  club_.Prepare({"Insert into Partnerships (LowerPlayer, HigherPlayer) Values (99, 100)",
                 "Alter Table Partnerships Add Constraint ItsPlayer Foreign Key (LowerPlayer) References Members "
                 "(MembershipNumber)",
                 "Alter Table MasterPoints Add Constraint ItsMember Foreign Key (MembershipNumber) References Members "
                 "(MembershipNumber) On Delete Cascade"});
  Old({"Insert into Members (MembershipNumber, LastName) Values (99, 'Saved')",
       "Insert into MasterPoints (MembershipNumber, Colour) Values (99, 0)"});
  const RecoveryReport report = Recover();
  EXPECT_FALSE(report.IsSomethingLost());
  EXPECT_TRUE(club_.messages->shown.empty());
  EXPECT_THAT(club_.Column("Select LastName From Members"), ElementsAre("Saved"));
  EXPECT_THAT(club_.Column("Select MembershipNumber From MasterPoints"), ElementsAre("99"));
}

TEST_F(RecoveryTest, RowsThatARelationshipStillRefusesAtTheEndAreLost) {
  club_.Prepare(
      {"Alter Table MasterPoints Add Constraint ItsMember Foreign Key (MembershipNumber) References Members "
       "(MembershipNumber)"});
  Old({"Insert into Members (MembershipNumber) Values (7)", "Insert into MasterPoints (MembershipNumber) Values (8)",
       "Insert into MasterPoints (MembershipNumber) Values (7)",
       "Insert into MasterPoints (MembershipNumber) Values (8)"});
  const RecoveryReport report = Recover();
  EXPECT_EQ(Figures(report, "MasterPoints"), "3 1 2 0");
  EXPECT_THAT(Find(report, "MasterPoints").remarks,
              ElementsAre("A row could not be saved: You cannot add or change a record because a related record is "
                          "required in table 'Members'."));
  EXPECT_THAT(Message(), HasSubstr("MasterPoints: 1 of 3 rows saved\r\n  A row could not be saved: "));
  EXPECT_THAT(club_.Column("Select MembershipNumber From MasterPoints"), ElementsAre("7"));
}

TEST_F(RecoveryTest, ResultsFollowACompetitionThatIsSavedAtTheEnd) {
  const std::string organiser = "Alter Table Competitions Add Column Organiser Long";
  club_.Prepare({organiser,
                 "Alter Table Competitions Add Constraint ItsOrganiser Foreign Key (Organiser) References Members "
                 "(MembershipNumber)"});
  Old({organiser, "Insert into Members (MembershipNumber) Values (7)",
       "Insert into Competitions (CompetitionName, Organiser) Values ('kept', 7)",
       "Insert into Competitions (CompetitionName, Organiser) Values ('lost', 8)",
       "Insert into Results (Competition, Player) Values (1, 1)",
       "Insert into Results (Competition, Player) Values (2, 2)"});
  const RecoveryReport report = Recover();
  EXPECT_EQ(Figures(report, "Competitions"), "2 1 1 0");
  EXPECT_EQ(Figures(report, "Results"), "2 2 0 0");
  EXPECT_THAT(club_.Column("Select CompetitionName From Competitions, Results Where Competition = ID And Player = 1"),
              ElementsAre("kept"));
  EXPECT_THAT(club_.Column("Select Competition From Results Where Player = 2"), ElementsAre("Null"));
  EXPECT_THAT(
      Find(report, "Results").remarks,
      ElementsAre("Rows that refer to a competition that was not saved, or was not there, and belong to none now: 1."));
}

TEST_F(RecoveryTest, RowsOfTheCurrentFileThatCannotBeDeletedAreSaid) {
  club_.Prepare({"Insert into Members (MembershipNumber, LastName) Values (98, 'Gone too')",
                 "Create Table Lockers (Place Long, Holder Long Constraint OfMember References Members "
                 "(MembershipNumber))",
                 "Insert into Lockers Values (1, 99)"});
  Old({"Insert into Members (MembershipNumber) Values (1)"});
  const RecoveryReport report = Recover();
  EXPECT_EQ(Figures(report, "Members"), "1 1 0 0");
  EXPECT_THAT(club_.Column("Select MembershipNumber From Members Order By MembershipNumber"), ElementsAre("1", "99"));
  EXPECT_THAT(Message(), HasSubstr("Members: 1 of 1 rows saved\r\n  Rows that stood in the table before could not be "
                                   "deleted and are still there: 1. The record cannot be deleted"));
}

// ---------------------------------------------------------------------------------------------------------------------
// What cannot be saved
// ---------------------------------------------------------------------------------------------------------------------

TEST_F(RecoveryTest, AFileThatCannotBeOpenedIsReportedBeforeAnythingIsEmptied) {
  club_.folder.WriteFile("old.mdb", "no database");
  const RecoveryReport report = Recover();
  ASSERT_TRUE(report.failure);
  EXPECT_THAT(Message(), HasSubstr("Unrecognized database format"));
  EXPECT_TRUE(report.tables.empty());
  EXPECT_THAT(club_.Column("Select LastName From Members"), ElementsAre("Gone"));
}

TEST_F(RecoveryTest, TheCurrentFileIsNotRecoveredIntoItselfInWhateverSpelling) {
  const std::string folder = club_.folder.Path();
  for (const std::string& path : {club_.store.DatabaseFilePath(), folder + "/ClubMembers.mdb",
                                  folder + "\\ClubMembers.mdb", folder + "/clubMEMBERS.MDB"}) {
    club_.messages->shown.clear();
    const RecoveryReport report = club_.store.RecoverData(path);
    ASSERT_TRUE(report.failure) << path;
    EXPECT_THAT(Message(), HasSubstr("is the current one"));
    EXPECT_THAT(club_.Column("Select LastName From Members"), ElementsAre("Gone"));
  }
}

TEST_F(RecoveryTest, TheCurrentFileIsNotRecoveredIntoItselfOverLinksAndDetours) {
  const testing::TemporaryFolder folder;
  folder.WriteFile("ClubMembers.mdb", club_.Content());
  cDatabase store(MakePlatform({ClubFile::kNow, club_.messages}), NameSteps());
  store.SetDatabaseFolder(folder.Path());
  std::error_code noLink;
  std::filesystem::create_hard_link(folder.Path("ClubMembers.mdb"), folder.Path("hard.mdb"), noLink);
  ASSERT_FALSE(noLink) << noLink.message();
  std::filesystem::create_symlink(folder.Path("ClubMembers.mdb"), folder.Path("soft.mdb"), noLink);
#ifndef _WIN32
  ASSERT_FALSE(noLink) << noLink.message();
#endif
  std::vector<std::string> paths{folder.Path() + "/./ClubMembers.mdb", folder.Path() + "//ClubMembers.mdb",
                                 folder.Path("hard.mdb")};
  // Users of Windows need a right of their own to make these.
  if (!noLink) paths.push_back(folder.Path("soft.mdb"));
  for (const std::string& path : paths) {
    const RecoveryReport report = store.RecoverData(path);
    ASSERT_TRUE(report.failure) << path;
    EXPECT_THAT(report.failure->Description(), HasSubstr("is the current one"));
  }
  EXPECT_EQ(folder.ReadFile("ClubMembers.mdb"), club_.Content());
}

TEST_F(RecoveryTest, TheCurrentFileIsNotRecoveredIntoItselfWithBlanksAroundItsName) {
  const std::string path = club_.store.DatabaseFilePath();
  for (const std::string& spelling : {path + " ", path + "\t", " " + path, "  " + path + "  "}) {
    EXPECT_TRUE(club_.store.RecoverData(spelling).failure) << "'" << spelling << "'";
    EXPECT_THAT(club_.Column("Select LastName From Members"), ElementsAre("Gone"));
  }
}

TEST_F(RecoveryTest, TheFileThatIsOpenIsNotRecoveredIntoItselfThoughAnotherFolderWasSet) {
  const std::string folder = club_.store.DatabaseFolder();
  const std::string path = club_.store.DatabaseFilePath();
  club_.store.OpenDB();
  club_.store.SetDatabaseFolder(folder + "/elsewhere");
  const RecoveryReport report = club_.store.RecoverData(path);
  ASSERT_TRUE(report.failure);
  EXPECT_THAT(report.failure->Description(), HasSubstr("is the current one"));
  club_.store.CloseDB(true);
  club_.store.SetDatabaseFolder(folder);
  EXPECT_THAT(club_.Column("Select LastName From Members"), ElementsAre("Gone"));
}

TEST_F(RecoveryTest, NameKeysOfAnotherFunctionAreMadeAnew) {
  Old(
      {"Insert into Members (MembershipNumber, FirstName, LastName, FuzzedFirstName, FuzzedLastName) Values (1, "
       "'Bill', 'Smyth', 'B400', 'S530')"});
  const RecoveryReport report = Recover();
  EXPECT_FALSE(report.IsSomethingLost());
  EXPECT_THAT(club_.Column("Select FuzzedFirstName & '/' & FuzzedLastName From Members"), ElementsAre("WILLIAM/SMITH"));
}

TEST_F(RecoveryTest, ATableThatTheOldFileLacksIsReportedButNothingIsLost) {
  Old({"Drop Table ClubPolicies"});
  const RecoveryReport report = Recover();
  EXPECT_FALSE(Find(report, "ClubPolicies").isInOldFile);
  EXPECT_FALSE(report.IsSomethingLost());
  EXPECT_THAT(Message(), HasSubstr("ClubPolicies: 0 of 0 rows saved"));
}

TEST_F(RecoveryTest, TextsThatAreTooLongAreShortenedAndReported) {
  Old({"Alter Table Members Drop Column Title", "Alter Table Members Add Column Title Text (100)",
       "Insert into Members (MembershipNumber, Title) Values (1, '" + std::string(30, 'x') + "')"});
  const RecoveryReport report = Recover();
  EXPECT_EQ(Figures(report, "Members"), "1 1 0 1");
  EXPECT_THAT(Message(), HasSubstr("\"" + std::string(30, 'x') + "\" of Title was shortened to 20 characters."));
  EXPECT_THAT(club_.Column("Select Title From Members"), ElementsAre(std::string(20, 'x')));
}

TEST_F(RecoveryTest, OfALongTextThatIsShortenedTheReportHasTheBeginning) {
  Old({"Alter Table Members Drop Column Title", "Alter Table Members Add Column Title Text (100)",
       "Insert into Members (MembershipNumber, Title) Values (1, '" + std::string(61, 'x') + "')"});
  static_cast<void>(Recover());
  EXPECT_THAT(Message(), HasSubstr("\"" + std::string(60, 'x') + "...\" of Title was shortened to 20 characters."));
}

TEST_F(RecoveryTest, ASecondRowWithTheKeyOfAnotherIsLostAndReported) {
  Old({"Drop Index PrimaryKey On Members", "Insert into Members (MembershipNumber, LastName) Values (1, 'a')",
       "Insert into Members (MembershipNumber, LastName) Values (1, 'b')",
       "Insert into Members (MembershipNumber, LastName) Values (2, 'c')"});
  const RecoveryReport report = Recover();
  EXPECT_EQ(Figures(report, "Members"), "3 2 1 0");
  EXPECT_THAT(Message(), HasSubstr("Members: 2 of 3 rows saved\r\n  A row could not be saved: "));
  EXPECT_THAT(club_.Column("Select LastName From Members"), ElementsAre("a", "c"));
}

TEST_F(RecoveryTest, APageOfZerosCostsItsRowsOnly) {
  AddOldMembers(60);
  std::size_t lost = 0;
  Damage([&](DamagedBytes& bytes) {
    const auto pages = bytes.DataPagesOf(bytes.DefinitionOfTableWith("MemberOfOld1"));
    ASSERT_GE(pages.size(), 3U);
    lost = bytes.RowsOn(pages[1]);
    bytes.ZeroPage(pages[1]);
  });
  const std::string before = OldContent();
  const RecoveryReport report = Recover();
  EXPECT_GT(lost, 1U);
  EXPECT_EQ(Figures(report, "Members"), "60 " + std::to_string(60 - lost) + " " + std::to_string(lost) + " 0");
  EXPECT_EQ(club_.Column("Select MembershipNumber From Members").size(), 60 - lost);
  EXPECT_THAT(Message(), HasSubstr("A row could not be saved: The database is damaged: page "));
  EXPECT_EQ(OldContent(), before);
}

TEST_F(RecoveryTest, ARowOutsideOfItsPageCostsItselfAndTheOneBehind) {
  AddOldMembers(60);
  Damage([](DamagedBytes& bytes) {
    bytes.MisplaceRow(bytes.DataPagesOf(bytes.DefinitionOfTableWith("MemberOfOld1")).front(), 2);
  });
  EXPECT_EQ(Figures(Recover(), "Members"), "60 58 2 0");
}

TEST_F(RecoveryTest, ALongValueWhosePageIsGoneCostsItselfOnly) {
  AddOldMembers(3);
  Old({"Update Members Set Notes = '" + std::string(3000, 'q') + "' Where MembershipNumber = 2"});
  Damage([](DamagedBytes& bytes) { bytes.ZeroPage(bytes.PageWith(std::string(1000, 'q'))); });
  EXPECT_EQ(Figures(Recover(), "Members"), "3 3 0 1");
  EXPECT_THAT(club_.Column("Select Notes From Members Order By MembershipNumber"),
              ElementsAre(std::string(120, 'n'), "Null", std::string(120, 'n')));
  EXPECT_THAT(Message(), HasSubstr("Members: 3 of 3 rows saved\r\n  The database is damaged: "));
}

TEST_F(RecoveryTest, DamagedIndexesCostNothing) {
  AddOldMembers(60);
  Damage([](DamagedBytes& bytes) {
    const auto pages = bytes.IndexPagesOf(bytes.DefinitionOfTableWith("MemberOfOld1"));
    ASSERT_GE(pages.size(), 6U);
    for (const std::size_t page : pages) bytes.ZeroPage(page);
  });
  EXPECT_EQ(Figures(Recover(), "Members"), "60 60 0 0");
  EXPECT_TRUE(club_.messages->shown.empty());
}

TEST_F(RecoveryTest, DamagedPropertiesOfTheOldTablesCostNothing) {
  AddOldMembers(3);
  Damage([](DamagedBytes& bytes) {
    const std::size_t page = bytes.PageWith("DefaultValue");
    ASSERT_NE(page, 0U);
    bytes.ZeroPage(page);
  });
  EXPECT_EQ(Figures(Recover(), "Members"), "3 3 0 0");
  EXPECT_TRUE(club_.messages->shown.empty());
  try {
    Old({"Insert into Members (MembershipNumber) Values (4)"});
    ADD_FAILURE() << "what the properties forbid is not known, so nothing may be written";
  } catch (const Error& error) {
    EXPECT_THAT(error.Description(), HasSubstr("damaged"));
  }
}

TEST_F(RecoveryTest, ADamagedDefinitionCostsItsTableOnly) {
  AddOldMembers(5);
  Old({"Insert into Results (Player) Values (7)"});
  Damage([](DamagedBytes& bytes) { bytes.ZeroPage(bytes.DefinitionOfTableWith("MemberOfOld1")); });
  const RecoveryReport report = Recover();
  EXPECT_TRUE(report.IsSomethingLost());
  EXPECT_TRUE(Find(report, "Members").IsSomethingLost());
  EXPECT_THAT(Message(),
              AllOf(HasSubstr("Members: 0 of 0 rows saved\r\n  The database is damaged: "), Not(HasSubstr("Results"))));
  EXPECT_EQ(Figures(report, "Results"), "1 1 0 0");
}

TEST_F(RecoveryTest, OfAFileCutShortWhatIsLeftIsSaved) {
  AddOldMembers(60);
  std::size_t left = 0;
  Damage([&](DamagedBytes& bytes) {
    const auto pages = bytes.DataPagesOf(bytes.DefinitionOfTableWith("MemberOfOld1"));
    for (const std::size_t page : pages) left += page == pages.back() ? 0 : bytes.RowsOn(page);
    bytes.CutBefore(pages.back());
  });
  const RecoveryReport report = Recover();
  EXPECT_EQ(Figures(report, "Members"), "60 " + std::to_string(left) + " " + std::to_string(60 - left) + " 0");
  EXPECT_THAT(Message(), HasSubstr("The table states 60 rows; " + std::to_string(left) + " of them can be read."));
}

TEST_F(RecoveryTest, WhatTheOldFilesLogHoldsIsSavedToo) {
  AddOldMembers(3);
  const auto connection = Connect();
  connection->Execute("Insert into Members (MembershipNumber, LastName) Values (4, 'in the log')");
  // The file and its log as they were while it was open: what a crash leaves behind.
  const std::string file = OldContent();
  const std::string log = club_.folder.ReadFile("old.mdb.redo");
  ASSERT_FALSE(log.empty());
  connection->Close();
  club_.folder.WriteFile("old.mdb", file);
  club_.folder.WriteFile("old.mdb.redo", log);
  EXPECT_EQ(Figures(Recover(), "Members"), "4 4 0 0");
}

}  // namespace
}  // namespace tavi
