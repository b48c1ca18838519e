// The command from its arguments to its output and exit code, on real files.

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "host/CommandLine.h"
#include "host/json/Json.h"
#include "host/support/Command.h"
#include "platform/Matchers.h"

namespace tavi::host {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::UnorderedElementsAre;

constexpr const char* kMembers =
    "club_number,ebu_number,title,first,initials,last,known_as,sex,email,phone,mobile,join_date,member_type,house,"
    "address,town,"
    "postcode,active\n"
    "7,00990101,Mrs,Ann,,Lee,,F,ann@example.org,,,2001-02-03,Standard,,1 Mill Lane,Ashby,AB1 2CD,y\n"
    "8,00990102,Mr,Robert,J,Ray,Bob,M,,,,,,,,,,y\n"
    "9,,Ms,Éloïse,,D'Arcy,,F,,,,,,,,,,y\n"
    "10,00990104,Mr,Łukasz,,Wójcik,,M,,,,,,,,,,y\n"
    "11,00990105,Mr,Old,,Timer,,M,,,,,,,,,,n\n";

std::string PlayerXml(const std::string& name, const std::string& number = "") {
  return "<PLAYER><PLAYER_NAME>" + name + "</PLAYER_NAME>" +
         (number.empty() ? "" : "<NATIONAL_ID_NUMBER>" + number + "</NATIONAL_ID_NUMBER>") + "</PLAYER>";
}

std::string PairXml(const std::string& number, const std::string& percentage, const std::string& players,
                    const std::string& more = "") {
  return "<PAIR><PAIR_NUMBER>" + number + "</PAIR_NUMBER><PERCENTAGE>" + percentage + "</PERCENTAGE>" + more + players +
         "</PAIR>\n";
}

std::string AwardXml(const std::string& hundredths) {
  return "<MASTER_POINTS><MASTER_POINTS_AWARDED>" + hundredths +
         "</MASTER_POINTS_AWARDED><MASTER_POINT_TYPE>BLACK</MASTER_POINT_TYPE></MASTER_POINTS>";
}

std::string Evening(const std::string& pairs, const std::string& date = "06/01/2026",
                    const std::string& name = "Tuesday") {
  return "<USEBIO Version=\"1.2\"><EVENT EVENT_TYPE=\"PAIRS\"><EVENT_DESCRIPTION>" + name +
         "</EVENT_DESCRIPTION><DATE>" + date + "</DATE><PARTICIPANTS>\n" + pairs + "</PARTICIPANTS></EVENT></USEBIO>\n";
}

const std::string kTwoPairs =
    PairXml("1", "60.00", PlayerXml("Ann Lee", "990101") + PlayerXml("Bob Ray", "00990102"),
            "<PLACE>1</PLACE>" + AwardXml("24")) +
    PairXml("2", "40.00", PlayerXml("Eloise Darcy") + PlayerXml("Vera Visitor", "123456"), "<PLACE>2</PLACE>");

class Command : public ::testing::Test {
 protected:
  void MakeClub() {
    ASSERT_EQ(folder_.Run({"new", "--name", "Ashby Bridge Club"}).code, 0);
    const Outcome imported = folder_.Run({"members", "import", folder_.Write("members.csv", kMembers)});
    ASSERT_EQ(imported.code, 0) << imported.error;
  }

  CommandFolder folder_;
};

TEST_F(Command, HelpSucceedsAndWrongUseGivesTwo) {
  EXPECT_EQ(folder_.Run({"--help"}).code, 0);
  EXPECT_THAT(folder_.Run({"score", "--help"}).out, HasSubstr("FILE"));
  EXPECT_EQ(folder_.Run({}).code, 2);
  EXPECT_EQ(folder_.Run({"frobnicate"}).code, 2);
  EXPECT_EQ(folder_.Run({"score"}).code, 2);
  std::istringstream in;
  std::ostringstream out;
  std::ostringstream error;
  EXPECT_EQ(RunCommandLine({"--db", folder_.Club(), "--today", "yesterday", "members"}, Terminal{in, out, error}), 2);
  EXPECT_THAT(error.str(), HasSubstr("\"yesterday\" is no date; expected yyyy-mm-dd"));
}

TEST_F(Command, NewMakesAnEmptyClubAndRefusesToReplaceOne) {
  EXPECT_EQ(folder_.Run({"new", "--name", "Ashby Bridge Club"}).code, 0);
  EXPECT_TRUE(std::filesystem::exists(folder_.ClubFile()));
  EXPECT_THAT(folder_.Query("Select ClubName From ClubNames"), ElementsAre("Ashby Bridge Club"));
  const auto size = std::filesystem::file_size(folder_.ClubFile());
  const Outcome again = folder_.Run({"new", "--name", "Other"});
  EXPECT_EQ(again.code, 1);
  EXPECT_THAT(again.error, HasSubstr("exists already"));
  EXPECT_EQ(std::filesystem::file_size(folder_.ClubFile()), size);
}

TEST_F(Command, AFolderWithoutAFileIsAnErrorThatNamesTheFile) {
  std::filesystem::create_directories(folder_.Club());
  const Outcome outcome = folder_.Run({"members"});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_THAT(outcome.error, HasSubstr("Failed to open membership database"));
  EXPECT_THAT(outcome.error, HasSubstr("\n  Could not find file '" + folder_.ClubFile() + "'"));
  EXPECT_TRUE(std::filesystem::is_empty(folder_.Club()));
}

TEST_F(Command, AFileThatIsNoDatabaseIsRefusedAndLeftAlone) {
  std::filesystem::create_directories(folder_.Club());
  folder_.Write("club/ClubMembers.mdb", std::string(8192, 'x'));
  const Outcome outcome = folder_.Run({"members"});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_THAT(outcome.error, HasSubstr("Failed to open membership database"));
  EXPECT_EQ(std::filesystem::file_size(folder_.ClubFile()), 8192U);
}

TEST_F(Command, AFileMarkedReadOnlyIsNotChanged) {
  MakeClub();
  std::filesystem::permissions(folder_.ClubFile(), std::filesystem::perms::owner_read);
  const auto before = std::filesystem::last_write_time(folder_.ClubFile());
  const Outcome outcome = folder_.Run({"score", folder_.Write("week.xml", Evening(kTwoPairs))});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_THAT(outcome.error, HasSubstr("read-only"));
  EXPECT_EQ(std::filesystem::last_write_time(folder_.ClubFile()), before);
}

TEST_F(Command, ImportedMembersAreStoredIntactAndListed) {
  MakeClub();
  EXPECT_THAT(folder_.Query("Select LastName, EBUNumber From Members Where MembershipNumber = 7"),
              ElementsAre("Lee\t990101"));
  EXPECT_THAT(folder_.Query("Select FirstName, LastName From Members Where MembershipNumber = 9"),
              ElementsAre("Éloïse\tD'Arcy"));
  const Outcome listed = folder_.Run({"members"});
  EXPECT_THAT(listed.out, HasSubstr("10\tWójcik, Łukasz\t990104\t50.00\tyes"));
  EXPECT_THAT(listed.out, Not(HasSubstr("Timer")));
  EXPECT_THAT(folder_.Run({"members", "--all"}).out, HasSubstr("11\tTimer, Old\t"));
}

TEST_F(Command, ImportingAgainAddsNobody) {
  MakeClub();
  const Outcome again = folder_.Run({"members", "import", folder_.Write("members.csv", kMembers)});
  EXPECT_THAT(again.out, HasSubstr("\t0\t0\t5"));
  EXPECT_THAT(folder_.Query("Select Count(*) From Members"), ElementsAre("5"));
}

TEST_F(Command, AMembersFileWithOneWrongLineStoresNobody) {
  ASSERT_EQ(folder_.Run({"new"}).code, 0);
  const auto refusal = [&](const std::string& line) {
    const Outcome outcome = folder_.Run({"members", "import", folder_.Write("members.csv", kMembers + line)});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_THAT(folder_.Query("Select Count(*) From Members"), ElementsAre("0"));
    return outcome.error;
  };
  EXPECT_THAT(refusal("x,,,A,,B,,,,,,,,,,,,\n"), HasSubstr("members.csv:7: club_number is \"x\""));
  EXPECT_THAT(refusal("7,,,A,,B,,,,,,,,,,,,\n"), HasSubstr("given to two members"));
  EXPECT_THAT(refusal("12,,,A,,B,,X,,,,,,,,,,\n"), HasSubstr("sex is"));
  EXPECT_THAT(refusal("12,,,A,,B,,,,,,2001-02-30,,,,,,\n"), HasSubstr("join_date"));
  EXPECT_THAT(refusal("12,,A title that is longer than twenty characters,A,,B,,,,,,,,,,,,\n"), HasSubstr("Title has"));
  EXPECT_THAT(refusal("12,,,,,,,,,,,,,,,,,\n"), HasSubstr("no name"));
}

TEST_F(Command, PairsAreImportedOnlyWhenBothPlayersAreMembers) {
  MakeClub();
  const Outcome refused =
      folder_.Run({"pairs", "import", folder_.Write("bad.csv", "club_number_1,club_number_2\n7,8\n7,99\n")});
  EXPECT_EQ(refused.code, 1);
  EXPECT_THAT(refused.error, HasSubstr("bad.csv:3: there is no member number 99"));
  EXPECT_THAT(folder_.Query("Select Count(*) From Partnerships"), ElementsAre("0"));
  const std::string file =
      folder_.Write("pairs.csv", "club_number_1,club_number_2,known_as,active\n8,7,,y\n9,10,The Mix,y\n");
  EXPECT_EQ(folder_.Run({"pairs", "import", file}).code, 0);
  const Outcome listed = folder_.Run({"pairs"});
  EXPECT_THAT(listed.out, HasSubstr("8\tRobert Ray\t7\tAnn Lee\tRobert Ray & Ann Lee\t50.00\tyes"));
  EXPECT_THAT(listed.out, HasSubstr("The Mix"));
}

TEST_F(Command, PairsAndHandicapsShowRowsWhoseNumbersAreEmpty) {
  MakeClub();
  ASSERT_EQ(
      folder_.Run({"pairs", "import", folder_.Write("pairs.csv", "club_number_1,club_number_2\n7,8\n9,10\n")}).code, 0);
  for (const char* statement : {"Update Partnerships Set Handicap = Null, HigherFirst = Null Where LowerPlayer = 7",
                                "Update Members Set Handicap = Null Where MembershipNumber = 9"}) {
    ASSERT_EQ(folder_.Run({"sql", statement}).code, 0);
  }
  const Outcome pairs = folder_.Run({"pairs"});
  EXPECT_EQ(pairs.code, 0) << pairs.error;
  EXPECT_THAT(pairs.out, HasSubstr("8\tRobert Ray\t7\tAnn Lee\tRobert Ray & Ann Lee\t50.00\tyes"));
  const Outcome handicaps = folder_.Run({"handicaps"});
  EXPECT_EQ(handicaps.code, 0) << handicaps.error;
  EXPECT_THAT(handicaps.out, HasSubstr("pair\t8\t7\tRobert Ray & Ann Lee\t50.00"));
  EXPECT_THAT(handicaps.out, HasSubstr("member\t9\t\t"));
  EXPECT_THAT(handicaps.out, HasSubstr("pair\t9\t10\t"));
}

TEST_F(Command, PairsAndHandicapsShowPairsThatLackAPlayersNumber) {
  MakeClub();
  for (const char* statement :
       {"Drop Table Partnerships",
        "Create Table Partnerships (LowerPlayer Long, HigherPlayer Long, HigherFirst Short, Handicap Double, KnownAs "
        "Text (255), Active Bit, HandicalcSeed Double, HandicalcSeedDate Date)",
        "Insert Into Partnerships Values (7, 8, 0, 51, Null, 1, Null, Null)",
        "Insert Into Partnerships Values (7, Null, 0, 52, Null, 1, Null, Null)",
        "Insert Into Partnerships Values (7, Null, Null, Null, '50%p', 1, Null, Null)",
        "Insert Into Partnerships Values (Null, 8, 0, 54, Null, 0, Null, Null)"}) {
    ASSERT_EQ(folder_.Run({"sql", statement}).code, 0) << statement;
  }
  const std::string header = "First\tFirst player\tSecond\tSecond player\tPair\tHandicap\tActive\n";
  const std::string active =
      "7\tAnn Lee\t8\tRobert Ray\tAnn Lee & Robert Ray\t51.00\tyes\n"
      "7\tAnn Lee\t\t\tAnn Lee\t52.00\tyes\n"
      "\t\t7\tAnn Lee\t50%\t\tyes\n";
  EXPECT_EQ(folder_.Run({"pairs"}).out, header + active);
  EXPECT_EQ(folder_.Run({"pairs", "--all"}).out, header + active + "\t\t8\tRobert Ray\tRobert Ray\t\tno\n");
  EXPECT_THAT(folder_.Run({"handicaps"}).out, testing::EndsWith("pair\t7\t8\tAnn Lee & Robert Ray\t51.00\n"
                                                                "pair\t7\t\tAnn Lee\t52.00\n"
                                                                "pair\t\t7\t50%\t\n"));
}

TEST_F(Command, CommaSeparatedOutputKeepsSpreadsheetsFromRunningTextsAndSaysSo) {
  MakeClub();
  ASSERT_EQ(folder_.Run({"sql", "Update Members Set FirstName = '=HYPERLINK(\"x\")' Where MembershipNumber = 7"}).code,
            0);
  const std::string query = "Select FirstName, Handicap - 51 As H From Members Where MembershipNumber = 7";
  const Outcome outcome = folder_.Run({"--csv", "sql", query});
  EXPECT_EQ(outcome.out, "FirstName,H\n\"'=HYPERLINK(\"\"x\"\")\",-1\n");
  EXPECT_EQ(
      outcome.error,
      "note: 1 text begins like a formula and has an apostrophe before it here, so that no spreadsheet runs it\n");
  EXPECT_EQ(folder_.Run({"--csv", "pairs"}).error, "");
  EXPECT_EQ(folder_.Run({"--csv", "--json", "pairs"}).code, 2);
}

TEST_F(Command, ScoringStoresResultsAwardsAndHandicapsAndSaysWhoIsNoMember) {
  MakeClub();
  const Outcome scored = folder_.Run({"score", folder_.Write("week.xml", Evening(kTwoPairs))});
  ASSERT_EQ(scored.code, 0) << scored.error;
  EXPECT_THAT(scored.out, HasSubstr("1\t1\tAnn Lee & Robert Ray\t60.00\t60.00\t50.00\t60.00\t0.24"));
  EXPECT_THAT(scored.error, HasSubstr("Vera Visitor is not a member"));
  EXPECT_THAT(folder_.Query("Select Player, Partner, ActualPercentage, NetPercentage From Results Order By Player"),
              ElementsAre("7\t8\t60\t60", "9\t-1\t40\t40"));
  EXPECT_THAT(folder_.Query("Select MembershipNumber, MasterPoints, SessionNo, RecordUpdated From MasterPoints"),
              UnorderedElementsAre("7\t0.24\t1\t1", "8\t0.24\t1\t1"));
  EXPECT_THAT(folder_.Query("Select Handicap From Members Where MembershipNumber = 7"), ElementsAre("60"));
  EXPECT_THAT(folder_.Query("Select CompetitionName, Individual, NatCode From Competitions"),
              ElementsAre("Tuesday\t0\tEBU"));
}

TEST_F(Command, ARetiredMemberIsRecognisedByNumberOnly) {
  MakeClub();
  const std::string pairs = PairXml("1", "60", PlayerXml("Old Timer", "990105") + PlayerXml("Ann Lee")) +
                            PairXml("2", "40", PlayerXml("Bob Ray") + PlayerXml("Eloise Darcy"));
  const Outcome scored = folder_.Run({"score", folder_.Write("week.xml", Evening(pairs))});
  ASSERT_EQ(scored.code, 0) << scored.error;
  EXPECT_THAT(scored.error, HasSubstr("no longer an active member"));
  EXPECT_THAT(folder_.Query("Select Player, Partner From Results Order By Partner"), ElementsAre("11\t7", "8\t9"));
}

TEST_F(Command, AMemberWhoseNumberNobodyHasIsRecognisedByTheNameWhichIsSaid) {
  MakeClub();
  const std::string pairs = PairXml("1", "60", PlayerXml("Ann Lee", "999999") + PlayerXml("Bob Ray"));
  const Outcome scored = folder_.Run({"score", folder_.Write("week.xml", Evening(pairs))});
  ASSERT_EQ(scored.code, 0) << scored.error;
  const std::string remark = "no member has the national number 999999; taken for the member of that name";
  EXPECT_THAT(scored.error, HasSubstr("Ann Lee: " + remark));
  EXPECT_EQ(scored.error.find("taken for"), scored.error.rfind("taken for"))
      << "who gives no number has none that is unknown";
  EXPECT_THAT(folder_.Query("Select Player, Partner From Results"), ElementsAre("7\t8"));
}

TEST_F(Command, ScoringTheSameFileTwiceChangesNothing) {
  MakeClub();
  const std::string file = folder_.Write("week.xml", Evening(kTwoPairs));
  ASSERT_EQ(folder_.Run({"score", file}).code, 0);
  const auto contents = [&] {
    return std::make_tuple(
        folder_.Query("Select Player, Partner, ActualPercentage, NetPercentage From Results Order By Player"),
        folder_.Query(
            "Select MembershipNumber, NonMemberName, MasterPoints, ID From MasterPoints Order By MembershipNumber"),
        folder_.Query("Select ID, CompetitionName, CompetitionDate From Competitions"),
        folder_.Query("Select MembershipNumber, Handicap From Members Order By MembershipNumber"));
  };
  const auto first = contents();
  ASSERT_EQ(folder_.Run({"score", file}).code, 0);
  EXPECT_EQ(contents(), first);
}

TEST_F(Command, OddCompetitionNamesAreFoundAgain) {
  MakeClub();
  const std::string file =
      folder_.Write("week.xml", Evening(kTwoPairs, "06/01/2026", " 100% of O&apos;Neil&apos;s\n\"Cup\" "));
  ASSERT_EQ(folder_.Run({"score", file}).code, 0);
  ASSERT_EQ(folder_.Run({"score", file}).code, 0);
  EXPECT_THAT(folder_.Query("Select CompetitionName From Competitions"), ElementsAre("100 of O'Neil's \"Cup\""));
}

TEST_F(Command, NonMembersNamesAreStoredIntact) {
  MakeClub();
  const std::string pairs =
      PairXml("1", "55", PlayerXml("O&apos;Neil 50% Jr") + PlayerXml("Иван Петров"), AwardXml("10"));
  ASSERT_EQ(folder_.Run({"score", folder_.Write("week.xml", Evening(pairs))}).code, 0);
  EXPECT_THAT(folder_.Query("Select NonMemberName From MasterPoints"),
              UnorderedElementsAre("O'Neil 50%p Jr", "Иван Петров"));
  EXPECT_THAT(folder_.Query("Select Count(*) From Results"), ElementsAre("0"));
}

TEST_F(Command, OfSeveralFilesTheGoodOnesAreStoredAndTheBadOnesListed) {
  MakeClub();
  const std::string good = folder_.Write("good.xml", Evening(kTwoPairs));
  const std::string bad =
      folder_.Write("bad.xml", Evening(PairXml("1", "140", PlayerXml("Ann Lee") + PlayerXml("Bob Ray")), "13/01/2026"));
  const Outcome outcome = folder_.Run({"score", bad, good});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_THAT(outcome.error, HasSubstr("bad.xml:2: PERCENTAGE is 140; expected 0 to 100"));
  EXPECT_THAT(folder_.Query("Select CompetitionName, CompetitionDate From Competitions"),
              ElementsAre("Tuesday\t2026-01-06"));
}

TEST_F(Command, AFileOfEventsIsStoredWholeOrNotAtAll) {
  MakeClub();
  ASSERT_EQ(folder_.Run({"score", folder_.Write("first.xml", Evening(kTwoPairs))}).code, 0);
  const auto contents = [&] {
    return std::make_tuple(folder_.Query("Select * From Competitions"),
                           folder_.Query("Select * From Results Order By Player"),
                           folder_.Query("Select * From MasterPoints Order By ID"),
                           folder_.Query("Select MembershipNumber, Handicap From Members Order By MembershipNumber"));
  };
  const auto before = contents();
  ASSERT_EQ(
      folder_.Run({"sql", "Create Unique Index OnePerSize On MasterPoints (MasterPoints, MembershipNumber)"}).code, 0);
  const auto pairs = [](const std::string& firstScore, const std::string& secondScore) {
    return PairXml("1", firstScore, PlayerXml("Ann Lee") + PlayerXml("Vera Visitor"), AwardXml("24")) +
           PairXml("2", secondScore, PlayerXml("Bob Ray") + PlayerXml("Eloise Darcy"), AwardXml("12"));
  };
  // The second event gives Ann Lee as many points as the first one did.
  std::string events = Evening(pairs("70", "30"), "13/01/2026", "Morning");
  const std::string afternoon = Evening(pairs("65", "35"), "13/01/2026", "Afternoon");
  const std::size_t begin = afternoon.find("<EVENT ");
  events.insert(events.find("</USEBIO>"), afternoon.substr(begin, afternoon.find("</USEBIO>") - begin));
  const Outcome outcome = folder_.Run({"score", folder_.Write("two.xml", events)});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_THAT(outcome.error, HasSubstr("two.xml: nothing of it was stored: "));
  EXPECT_EQ(contents(), before);
}

TEST_F(Command, APlayerListedTwiceIsRefusedBeforeAnythingIsStored) {
  MakeClub();
  const std::string pairs = PairXml("1", "60", PlayerXml("Ann Lee", "990101") + PlayerXml("Bob Ray")) +
                            PairXml("2", "40", PlayerXml("Ann Lee") + PlayerXml("X Y"));
  const Outcome outcome = folder_.Run({"score", folder_.Write("week.xml", Evening(pairs))});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_THAT(outcome.error, HasSubstr("Ann Lee is listed twice"));
  EXPECT_THAT(folder_.Query("Select Count(*) From Competitions"), ElementsAre("0"));
}

TEST_F(Command, TwoVisitorsMayBearOneName) {
  MakeClub();
  const auto evening = [&](const std::string& first, const std::string& second) {
    return folder_.Write(
        "week.xml",
        Evening(PairXml("1", "60", PlayerXml("Ann Lee") + PlayerXml("John Smith", first), AwardXml("24")) +
                PairXml("2", "40", PlayerXml("Bob Ray") + PlayerXml("John Smith", second), AwardXml("12"))));
  };
  EXPECT_EQ(folder_.Run({"score", evening("", "")}).code, 0);
  EXPECT_EQ(folder_.Run({"score", evening("555001", "")}).code, 0);
  const Outcome scored = folder_.Run({"score", evening("555001", "555002")});
  EXPECT_EQ(scored.code, 0) << scored.error;
  EXPECT_THAT(folder_.Query("Select NonMemberName, MasterPoints From MasterPoints Where MembershipNumber = -1"),
              UnorderedElementsAre("John Smith\t0.24", "John Smith\t0.12"));
  EXPECT_THAT(folder_.Run({"score", evening("555001", "555001")}).error, HasSubstr("John Smith is listed twice"));
}

// The evening was refused, because the member was listed twice.
TEST_F(Command, AVisitorMayBearTheNameOfAMemberWhoPlaysToo) {
  MakeClub();
  const auto evening = [&](const std::string& member, const std::string& visitor) {
    return folder_.Write("week.xml",
                         Evening(PairXml("1", "60", PlayerXml("Ann Lee", visitor) + PlayerXml("X Y"), AwardXml("24")) +
                                 PairXml("2", "40", PlayerXml("Bob Ray") + PlayerXml("Ann Lee", member))));
  };
  const Outcome scored = folder_.Run({"score", evening("990101", "555001")});
  EXPECT_EQ(scored.code, 0) << scored.error;
  EXPECT_THAT(scored.error,
              HasSubstr("Ann Lee: the national number 555001 is not that of the member Ann Lee, who plays "
                        "too; stored by name"));
  EXPECT_THAT(folder_.Query("Select Player, Partner, ActualPercentage From Results"), ElementsAre("8\t7\t40"));
  EXPECT_THAT(folder_.Query("Select MembershipNumber, NonMemberName From MasterPoints"),
              UnorderedElementsAre("-1\tAnn Lee", "-1\tX Y"));
  EXPECT_THAT(folder_.Run({"score", evening("", "555001")}).error, HasSubstr("Ann Lee is listed twice"))
      << "nobody knows who is who";
}

TEST_F(Command, FindGivesTheMemberOrThoseWhoSoundAlike) {
  MakeClub();
  const Outcome found = folder_.Run({"find", "Ann Lee"});
  EXPECT_THAT(found.out, HasSubstr("7\tAnn Lee\t990101\t50.00\t444\tsame name"));
  EXPECT_EQ(found.code, 0) << found.error;
  EXPECT_THAT(folder_.Run({"find", "Anne", "Lea"}).out,
              HasSubstr("7\tAnn Lee\t990101\t50.00\t334\tsurname sounds alike, first name sounds alike"));
  EXPECT_EQ(folder_.Run({"find", "Nobody Whatsoever"}).code, 1);
}

TEST_F(Command, FindShowsTheBestMatchFirstAndWhy) {
  MakeClub();
  ASSERT_EQ(folder_
                .Run({"members", "import",
                      folder_.Write("more.csv",
                                    "club_number,first,initials,last\n"
                                    "21,Katherine,,Smyth\n22,Kate,,Smith\n"
                                    "23,Cathy,,Smith\n24,John,,Smith\n")})
                .code,
            0);
  EXPECT_EQ(folder_.Run({"find", "Kate Smith"}).out,
            "Number\tName\tEBU number\tHandicap\tWeight\tMatch\n"
            "22\tKate Smith\t\t50.00\t444\tsame name\n"
            "23\tCathy Smith\t\t50.00\t434\tfirst name sounds alike\n"
            "21\tKatherine Smyth\t\t50.00\t334\tsurname sounds alike, first name is short for Katherine\n");
}

TEST_F(Command, KeysWritesAKeyALine) {
  const Outcome outcome = folder_.Run({"keys"}, "first\tBill\nfirst\tWilliam\r\nlast\tSmythe\nlast\tSMITH\nfirst\t\n");
  EXPECT_EQ(outcome.code, 0) << outcome.error;
  EXPECT_EQ(outcome.out, "WILLIAM\nWILLIAM\nSMITH\nSMITH\n\n");
  EXPECT_EQ(folder_.Run({"keys"}, "").out, "");
}

TEST_F(Command, KeysSaysWhichLineItDoesNotUnderstand) {
  for (const char* line : {"middle\tBill\n", "first Bill\n", "\n", "First\tBill\n"}) {
    const Outcome outcome = folder_.Run({"keys"}, std::string("last\tSmith\n") + line);
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(outcome.out, "SMITH\n");
    EXPECT_THAT(outcome.error, HasSubstr("line 2 is \""));
    EXPECT_THAT(outcome.error, HasSubstr("expected \"first\" or \"last\", a tab and a name"));
  }
}

TEST_F(Command, JsonIsReadByAProgram) {
  MakeClub();
  const auto members = Json::Parse(folder_.Run({"members", "--json"}).out);
  ASSERT_EQ(members.size(), 4U);
  EXPECT_EQ(members[0]["Number"], 7);
  const auto scored = Json::Parse(folder_.Run({"--json", "score", folder_.Write("week.xml", Evening(kTwoPairs))}).out);
  EXPECT_EQ(scored[0]["events"][0]["ranking"][0]["Net"], 60.0);
  EXPECT_EQ(scored[0]["stored"], true);
}

TEST_F(Command, SqlShowsRowsCountsChangesAndExplainsErrors) {
  MakeClub();
  EXPECT_THAT(folder_.Run({"sql", "Update Members Set Stratum = 2 Where MembershipNumber < 9"}).out, HasSubstr("2"));
  const Outcome wrong = folder_.Run({"sql", "Selct * From Members"});
  EXPECT_EQ(wrong.code, 1);
  EXPECT_THAT(wrong.error, Not(IsEmpty()));
  EXPECT_THAT(folder_.Run({"sql", "Select * From Nowhere"}).error, HasSubstr("Nowhere"));
}

TEST_F(Command, InfoTellsWhereTheFileIsAndWhatIsInIt) {
  MakeClub();
  const Outcome info = folder_.Run({"info"});
  EXPECT_THAT(info.out, HasSubstr("File\t" + InCell(folder_.ClubFile())));
  EXPECT_THAT(info.out, HasSubstr("Members\t5"));
  EXPECT_THAT(info.out, HasSubstr("Active members\t4"));
}

TEST_F(Command, HandicapsAreListedAndRecalculated) {
  MakeClub();
  ASSERT_EQ(folder_.Run({"score", folder_.Write("week.xml", Evening(kTwoPairs))}).code, 0);
  ASSERT_EQ(folder_.Run({"sql", "Update Members Set Handicap = 1"}).code, 0);
  EXPECT_THAT(folder_.Run({"handicaps"}).out, HasSubstr("member\t7\t\tAnn Lee\t1.00"));
  EXPECT_THAT(folder_.Run({"handicaps", "--recalculate"}).out, HasSubstr("member\t7\t\tAnn Lee\t60.00"));
}

#ifndef _WIN32
// The second reader is a program of POSIX systems.
TEST_F(Command, MdbtoolsReadsWhatWasWritten) {
  if (!RunProgram("command -v mdb-tables").succeeded) GTEST_SKIP() << "mdbtools is not installed";
  MakeClub();
  ASSERT_EQ(folder_.Run({"score", folder_.Write("week.xml", Evening(kTwoPairs))}).code, 0);
  const std::string file = "'" + folder_.ClubFile() + "'";
  const std::string tables = RunProgram("mdb-tables -1 " + file).text;
  for (const char* table : {"Members", "Partnerships", "Competitions", "Results", "MasterPoints", "Settings",
                            "ClubNames", "ClubPolicies", "HandicalcSettings", "EBUMembershipList"}) {
    EXPECT_THAT(tables, HasSubstr(std::string(table) + "\n"));
  }
  const std::string members = RunProgram("mdb-export " + file + " Members").text;
  EXPECT_THAT(members, HasSubstr("\"Éloïse\""));
  EXPECT_THAT(RunProgram("mdb-export " + file + " Results").text, HasSubstr(",7,8,60,60"));
  EXPECT_THAT(RunProgram("mdb-schema " + file + " access").text, HasSubstr("[MembershipNumber]"));
}
#endif

}  // namespace
}  // namespace tavi::host
