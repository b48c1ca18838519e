// Members and pairs files brought into a club: what is touched, what is refused, and what a dry run shows.

#include <gtest/gtest.h>

#include "host/support/Command.h"
#include "platform/Matchers.h"

namespace tavi::host {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::UnorderedElementsAre;

constexpr const char* kThreeMembers =
    "club_number,ebu_number,title,first,initials,last,known_as,sex,email,phone,mobile,join_date,member_type,house,"
    "address,town,postcode,active\n"
    "7,00990101,Mrs,Ann,,Lee,,F,ann@example.org,01632 1,07700 1,2001-02-03,Junior,The Mill,1 Mill Lane,Ashby,AB1 "
    "2CD,y\n"
    "8,00990102,Mr,Robert,J,Ray,Bob,M,,,,,,,,,,y\n"
    "11,00990105,Mr,Old,,Timer,,M,,,,,,,,,,n\n";

constexpr const char* kAllOfThem =
    "Select MembershipNumber, EBUNumber, Title, FirstName, MiddleInitials, LastName, KnownAs, Sex, email, HomePhone, "
    "MobilePhone, DateOfJoining, MemberType, HouseID, Address, PostCode, Active, Handicap, FuzzedFirstName, "
    "FuzzedLastName, UniquenessFlag From Members Order By MembershipNumber";

class ImportTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(folder_.Run({"new", "--name", "Ashby Bridge Club"}).code, 0);
    const Outcome imported = Import(kThreeMembers);
    ASSERT_EQ(imported.code, 0) << imported.error;
  }

  Outcome Import(const std::string& text, std::vector<std::string> options = {}) {
    options.insert(options.begin(), {"members", "import", folder_.Write("members.csv", text)});
    return folder_.Run(options);
  }
  Outcome ImportPairs(const std::string& text, std::vector<std::string> options = {}) {
    options.insert(options.begin(), {"pairs", "import", folder_.Write("pairs.csv", text)});
    return folder_.Run(options);
  }
  /// The message of an import that is refused and changes nothing.
  std::string Refusal(const std::string& text, const std::vector<std::string>& options = {}) {
    const std::vector<std::string> before = folder_.Query(kAllOfThem);
    const Outcome outcome = Import(text, options);
    EXPECT_EQ(outcome.code, 1) << text;
    EXPECT_EQ(folder_.Query(kAllOfThem), before) << text;
    return outcome.error;
  }
  std::string FigureLine(const Outcome& outcome) {
    const std::size_t tab = outcome.out.find('\t', outcome.out.find('\n'));
    return tab == std::string::npos ? outcome.out + outcome.error : outcome.out.substr(tab + 1);
  }
  std::vector<std::string> Ann(const std::string& columns) {
    return folder_.Query("Select " + columns + " From Members Where MembershipNumber = 7");
  }

  CommandFolder folder_;
};

TEST_F(ImportTest, ColumnsThatAreNotInTheFileStayAsTheyAre) {
  ASSERT_EQ(folder_.Run({"sql", "Update Members Set Handicap = 47.5, Notes = 'kept', WorkPhone = '1'"}).code, 0);
  const Outcome imported = Import("club_number,first,last,email\n7,Ann,Lee,new@example.org\n11,Old,Timer,\n");
  EXPECT_EQ(FigureLine(imported), "0\t1\t1\n") << imported.error;
  EXPECT_THAT(Ann("email, EBUNumber, Title, Sex, HomePhone, MobilePhone, DateOfJoining, MemberType, HouseID, Address, "
                  "PostCode, Handicap, Notes, WorkPhone"),
              ElementsAre("new@example.org\t990101\tMrs\t2\t01632 1\t07700 1\t2001-02-03\tJunior\tThe Mill\t1 Mill "
                          "Lane%c%lAshby\tAB1 2CD\t47.5\tkept\t1"));
  EXPECT_THAT(folder_.Query("Select Active From Members Where MembershipNumber = 11"), ElementsAre("no"));
}

TEST_F(ImportTest, AnEmptyCellEmptiesItsFieldWhereTheColumnIsThere) {
  const Outcome imported = Import("club_number,title,phone,join_date,sex,ebu_number\n7,,,,,\n");
  EXPECT_EQ(FigureLine(imported), "0\t1\t0\n") << imported.error;
  EXPECT_THAT(Ann("Title, HomePhone, DateOfJoining, Sex, EBUNumber, MobilePhone"), ElementsAre("\t\t\t0\t\t07700 1"));
}

TEST_F(ImportTest, AnEmptyActiveCellBringsNobodyBack) {
  EXPECT_EQ(FigureLine(Import("club_number,active\n7,\n11,\n")), "0\t0\t2\n");
  EXPECT_EQ(FigureLine(Import("club_number,active\n7,n\n11,y\n")), "0\t2\t0\n");
  EXPECT_THAT(folder_.Query("Select Active From Members Order By MembershipNumber"), ElementsAre("no", "yes", "yes"));
}

TEST_F(ImportTest, TheSameImportTwiceChangesNothingTheSecondTime) {
  const std::string more =
      "club_number,ebu_number,first,last,address,town,known_as,email,join_date,active,member_type\n"
      "7,990101,Anne,Leigh,\"Line 1\r\nLine 2\",Ashby,Annie,50%@example.org,3/2/2002,y,\n"
      "12,,Éloïse,D'Arcy,,Upton,,,,,\n"
      ",00990200,Łukasz,Wójcik,5 Low Road,,,,,n,\n";
  ASSERT_EQ(FigureLine(Import(more)), "2\t1\t0\n");
  const std::vector<std::string> once = folder_.Query(kAllOfThem);
  const std::string bytes = ReadFile(folder_.ClubFile());
  EXPECT_EQ(FigureLine(Import(more)), "0\t0\t3\n");
  EXPECT_EQ(folder_.Query(kAllOfThem), once);
  EXPECT_TRUE(bytes == ReadFile(folder_.ClubFile()));
}

TEST_F(ImportTest, NewMembersHaveWhatTheFileGivesAndNoDateThatNobodyGave) {
  ASSERT_EQ(FigureLine(Import("club_number,first,last\n12,Bill,Smythe\n")), "1\t0\t0\n");
  EXPECT_THAT(folder_.Query("Select FirstName, LastName, FuzzedFirstName, FuzzedLastName, DateOfJoining, MemberType, "
                            "Active, Handicap, Sex From Members Where MembershipNumber = 12"),
              ElementsAre("Bill\tSmythe\tWILLIAM\tSMITH\t\tStandard\tyes\t50\t0"));
}

TEST_F(ImportTest, AMemberIsKnownByTheEbuNumberWhereTheClubNumberIsMissingOrNobodys) {
  ASSERT_EQ(FigureLine(Import("ebu_number,email\n990102,bob@example.org\n")), "0\t1\t0\n");
  const Outcome other = Import("club_number,ebu_number,phone\n99,00990102,123\n");
  EXPECT_EQ(FigureLine(other), "0\t1\t0\n");
  EXPECT_THAT(other.error, HasSubstr("members.csv:2: nobody has the club number 99; taken for member 8, Robert Ray"));
  EXPECT_THAT(folder_.Query("Select MembershipNumber, email, HomePhone From Members Where EBUNumber = '990102'"),
              ElementsAre("8\tbob@example.org\t123"));
}

TEST_F(ImportTest, ANewMemberWithoutAClubNumberGetsTheNextOne) {
  ASSERT_EQ(FigureLine(Import("club_number,ebu_number,first,last\n,990300,Cat,Fox\n40,,Dan,Orr\n,990301,Eve,Poe\n")),
            "3\t0\t0\n");
  EXPECT_THAT(folder_.Query("Select MembershipNumber, FirstName From Members Where MembershipNumber > 11"),
              UnorderedElementsAre("41\tCat", "40\tDan", "42\tEve"));
}

TEST_F(ImportTest, NumbersOfTwoMembersInOneLineAreRefused) {
  EXPECT_THAT(
      Refusal("club_number,ebu_number,email\n7,990102,x\n"),
      HasSubstr("members.csv:2: the club number is that of member 7, Ann Lee, but the EBU number 990102 is that "
                "of member 8, Robert Ray"));
  EXPECT_THAT(Refusal("club_number,ebu_number,email\n7,,x\n,990101,y\n"),
              HasSubstr("members.csv:3: line 2 is about the same member, 7, Ann Lee"));
  ASSERT_EQ(folder_.Run({"sql", "Update Members Set EBUNumber = '5' Where MembershipNumber <> 7"}).code, 0);
  EXPECT_THAT(Refusal("ebu_number,email\n5,x\n"), HasSubstr("that of two members"));
}

TEST_F(ImportTest, AClearlyOtherNameIsRefused) {
  for (const char* other : {"Zoe,Quartermain", "John,Lee", "Ann,Quartermain", "Robert,Ray"}) {
    EXPECT_THAT(Refusal("club_number,first,last\n7," + std::string(other) + "\n"),
                HasSubstr("members.csv:2: the number is that of member 7, Ann Lee, but the name here is"))
        << other;
    EXPECT_THAT(Refusal("ebu_number,first,last\n990101," + std::string(other) + "\n"),
                HasSubstr("clearly another one"));
  }
  EXPECT_THAT(Refusal("club_number,ebu_number,first,last\n7,990101,Zoe,Quartermain\n"),
              HasSubstr("clearly another one"));
  EXPECT_THAT(Refusal("club_number,first\n8,William\n"), HasSubstr("clearly another one"));
}

TEST_F(ImportTest, ANameThatIsSpeltOrShortenedOtherwiseIsTheMembers) {
  for (const char* same : {"Ann,Lee", "Anne,Leigh", "A,Lee", "ANN,LEE", "Ann,Lee-Jones", ",Lee", "Ann,"}) {
    EXPECT_EQ(Import("club_number,first,last\n7," + std::string(same) + "\n").code, 0) << same;
    ASSERT_EQ(Import("club_number,ebu_number,first,last\n7,990101,Ann,Lee\n").code, 0);
  }
  EXPECT_EQ(Import("club_number,first,last\n8,Bobby,Ray\n").code, 0);
  EXPECT_THAT(folder_.Query("Select FirstName, FuzzedFirstName From Members Where MembershipNumber = 8"),
              ElementsAre("Bobby\tROBERT"));
}

TEST_F(ImportTest, OnePartOfANameChangesWhereBothNumbersAgree) {
  const Outcome married = Import("club_number,ebu_number,first,last\n7,990101,Ann,Quartermain\n");
  EXPECT_EQ(FigureLine(married), "0\t1\t0\n");
  EXPECT_THAT(married.error, HasSubstr("is called Ann Quartermain from now on; both numbers agree"));
}

TEST_F(ImportTest, ASecondMemberOfTheSameNameIsRefusedUnlessAllowed) {
  const std::string again = "club_number,first,last\n12,ann,LEE\n";
  EXPECT_THAT(Refusal(again), HasSubstr("members.csv:2: member 7, Ann Lee, bears the same name"));
  EXPECT_THAT(Refusal("club_number,first,last\n12,Old,Timer\n"), HasSubstr("Old Timer (retired), bears the same name"));
  EXPECT_THAT(Refusal("club_number,first,last\n12,New,Twin\n13,New,Twin\n"), HasSubstr("bears the same name"));
  EXPECT_EQ(FigureLine(Import("club_number,first,initials,last\n14,Ann,Q,Lee\n")), "1\t0\t0\n");
  EXPECT_EQ(FigureLine(Import(again, {"--allow-namesakes"})), "1\t0\t0\n");
  EXPECT_EQ(FigureLine(Import(again)), "0\t0\t1\n");
}

TEST_F(ImportTest, InitialsThatTheFileDoesNotHaveTellNobodyApart) {
  EXPECT_THAT(Refusal("club_number,first,last\n12,Robert,Ray\n"), HasSubstr("Robert Ray, bears the same name"));
  EXPECT_EQ(FigureLine(Import("club_number,first,initials,last\n12,Robert,,Ray\n")), "1\t0\t0\n");
  EXPECT_EQ(FigureLine(Import("club_number,first,last\n7,Ann,Lee\n8,Robert,Ray\n")), "0\t0\t2\n");
}

// It was taken for member 0: each import said that it had changed him, and changed nobody.
TEST_F(ImportTest, ARowWithoutANumberIsNobodyWhomAFileCanMean) {
  for (const char* statement :
       {"Drop Index PrimaryKey On Members", "Alter Table Members Alter Column MembershipNumber Long",
        "Insert Into Members (FirstName, LastName, EBUNumber) Values ('Ida', 'Stray', '990188')"}) {
    ASSERT_EQ(folder_.Run({"sql", statement}).code, 0) << statement;
  }
  const std::string ida = "ebu_number,first,last,email\n990188,Ida,Stray,ida@example.org\n";
  EXPECT_EQ(FigureLine(Import(ida)), "1\t0\t0\n");
  EXPECT_EQ(FigureLine(Import(ida)), "0\t0\t1\n");
  EXPECT_THAT(folder_.Query("Select MembershipNumber From Members Where email = 'ida@example.org'"), ElementsAre("12"));
}

TEST_F(ImportTest, AnUnknownColumnIsAnErrorThatSuggestsTheNearestName) {
  EXPECT_THAT(Refusal("club_number,emial\n7,x\n"),
              HasSubstr("members.csv:1: the column \"emial\" is not known, did you mean email?"));
  EXPECT_THAT(Refusal("Club Number,first,last\n7,Ann,Lee\n"), HasSubstr("did you mean club_number?"));
  const std::string error = Refusal("club_number,post-code,xyzzyx\n7,x,y\n");
  EXPECT_THAT(error, HasSubstr("\"post-code\" is not known, did you mean postcode?"));
  EXPECT_THAT(error, HasSubstr("\"xyzzyx\" is not known; known are club_number, ebu_number"));
  EXPECT_THAT(Refusal("club_number,Family_Name\n7,Lee\n"),
              HasSubstr("\"Family_Name\" is not known, did you mean last?"));
  const Outcome passed = Import("club_number,emial,title\n7,x,Ms\n", {"--ignore-unknown"});
  EXPECT_EQ(FigureLine(passed), "0\t1\t0\n");
  EXPECT_THAT(passed.error, HasSubstr("the column \"emial\" was passed over"));
  EXPECT_EQ(FigureLine(Import("club_number,title,,\n7,Mrs,,\n")), "0\t1\t0\n");
  EXPECT_THAT(Refusal("club_number,title,\n7,Mrs,x\n"), HasSubstr("the column \"\" is not known"));
  EXPECT_THAT(Refusal("first,last\nAnn,Lee\n"), HasSubstr("neither club_number nor ebu_number"));
  EXPECT_THAT(Refusal("club_number,first,last\n,Ann,Lee\n"), HasSubstr("members.csv:2: the member has no number"));
}

TEST_F(ImportTest, ADryRunShowsEachChangeAndStoresNothing) {
  const std::vector<std::string> before = folder_.Query(kAllOfThem);
  const Outcome shown =
      Import("club_number,first,last,email,phone\n7,Ann,Lee,,01632 9\n8,Robert,Ray,,\n12,Cat,Fox,cat@example.org,\n",
             {"--dry-run"});
  EXPECT_EQ(shown.code, 0);
  EXPECT_EQ(shown.out,
            "Number\tName\tChange\tField\tOld\tNew\n"
            "7\tAnn Lee\tchanged\temail\tann@example.org\t\n"
            "7\tAnn Lee\tchanged\tphone\t01632 1\t01632 9\n"
            "12\tCat Fox\tadded\tfirst\t\tCat\n"
            "12\tCat Fox\tadded\tlast\t\tFox\n"
            "12\tCat Fox\tadded\temail\t\tcat@example.org\n"
            "12\tCat Fox\tadded\tmember_type\t\tStandard\n"
            "12\tCat Fox\tadded\tactive\t\ty\n");
  EXPECT_THAT(shown.error, HasSubstr("nothing was stored; it would be 1 added, 1 changed, 1 left"));
  EXPECT_EQ(folder_.Query(kAllOfThem), before);
}

TEST_F(ImportTest, AnAddressIsChangedWithoutTheTownAndTheTownWithoutTheAddress) {
  ASSERT_EQ(FigureLine(Import("club_number,address\n7,2 New Road\n")), "0\t1\t0\n");
  EXPECT_THAT(Ann("Address"), ElementsAre("2 New Road%c%lAshby"));
  ASSERT_EQ(FigureLine(Import("club_number,town\n7,Upton\n")), "0\t1\t0\n");
  EXPECT_THAT(Ann("Address"), ElementsAre("2 New Road%c%lUpton"));
  EXPECT_EQ(FigureLine(Import("club_number,address\n7,2 New Road\n")), "0\t0\t1\n");
}

TEST_F(ImportTest, WhatFailsHalfWayStoresNothing) {
  ASSERT_EQ(folder_.Run({"sql", "Update Members Set email = 'm' & MembershipNumber"}).code, 0);
  ASSERT_EQ(folder_.Run({"sql", "Create Unique Index OneAddress On Members (email) With Ignore Null"}).code, 0);
  EXPECT_THAT(Refusal("club_number,first,last,email\n7,Ann,Lee,new@example.org\n12,Cat,Fox,both@example.org\n"
                      "13,Dan,Orr,both@example.org\n"),
              HasSubstr("duplicate values"));
  ASSERT_EQ(folder_.Run({"sql", "Create Unique Index OneName On Partnerships (KnownAs)"}).code, 0);
  EXPECT_EQ(ImportPairs("club_number_1,club_number_2,known_as\n7,8,Twice\n7,11,Twice\n").code, 1);
  EXPECT_THAT(folder_.Query("Select Count(*) From Partnerships"), ElementsAre("0"));
}

TEST_F(ImportTest, FlagsThatTellNamesakesApartAreBroughtUpToDate) {
  ASSERT_EQ(Import("club_number,first,last\n12,Ann,Lowe\n").code, 0);
  EXPECT_THAT(folder_.Query("Select MembershipNumber, UniquenessFlag From Members Where FirstName = 'Ann'"),
              UnorderedElementsAre("7\t2", "12\t2"));
}

TEST_F(ImportTest, OfAPairOnlyWhatTheFileSaysIsTouched) {
  ASSERT_EQ(FigureLine(ImportPairs("club_number_1,club_number_2,known_as,active\n8,7,The Mix,n\n")), "1\t0\t0\n");
  EXPECT_EQ(FigureLine(ImportPairs("club_number_1,club_number_2\n7,8\n")), "0\t0\t1\n");
  EXPECT_EQ(FigureLine(ImportPairs("club_number_1,club_number_2,active\n7,8,\n")), "0\t0\t1\n");
  EXPECT_THAT(folder_.Query("Select HigherFirst, KnownAs, Active, Handicap From Partnerships"),
              ElementsAre("1\tThe Mix\tno\t50"));
  EXPECT_EQ(FigureLine(ImportPairs("club_number_1,club_number_2,known_as\n8,7,\n")), "0\t1\t0\n");
  EXPECT_EQ(FigureLine(ImportPairs("ebu_number_1,ebu_number_2,active\n00990101,990102,y\n")), "0\t1\t0\n");
  EXPECT_THAT(folder_.Query("Select KnownAs, Active From Partnerships"), ElementsAre("\tyes"));
}

TEST_F(ImportTest, ADryRunOfPairsShowsEachChange) {
  const std::string file = "club_number_1,club_number_2,known_as,active\n8,7,The Mix,\n";
  EXPECT_EQ(ImportPairs(file, {"--dry-run"}).out,
            "Number\tName\tChange\tField\tOld\tNew\n"
            "8 & 7\tRobert Ray & Ann Lee\tadded\tknown_as\t\tThe Mix\n"
            "8 & 7\tRobert Ray & Ann Lee\tadded\tactive\t\ty\n");
  EXPECT_THAT(folder_.Query("Select Count(*) From Partnerships"), ElementsAre("0"));
  ASSERT_EQ(ImportPairs(file).code, 0);
  EXPECT_EQ(FigureLine(ImportPairs(file)), "0\t0\t1\n");
}

TEST_F(ImportTest, PairsWithAnotherNameOrAnUnknownColumnAreRefused) {
  const auto refusal = [&](const std::string& text) {
    const Outcome outcome = ImportPairs(text);
    EXPECT_EQ(outcome.code, 1);
    EXPECT_THAT(folder_.Query("Select Count(*) From Partnerships"), ElementsAre("0"));
    return outcome.error;
  };
  const std::string header = "club_number_1,club_number_2,player_1,player_2\n";
  EXPECT_THAT(refusal(header + "7,8,Ann Lee,Zoe Quartermain\n"),
              HasSubstr("pairs.csv:2: the number is that of member 8, Robert Ray, but the name here is Zoe"));
  EXPECT_THAT(refusal("club_number_1,clubnumber_2\n7,8\n"), HasSubstr("did you mean club_number_2?"));
  EXPECT_THAT(refusal("club_number_1,ebu_number_2\n7,990101\n"), HasSubstr("is paired with themself"));
  EXPECT_THAT(refusal("club_number_1,club_number_2\n7,8\n8,7\n"), HasSubstr("pairs.csv:3: the pair stands twice"));
  EXPECT_THAT(refusal("club_number_1,ebu_number_2\n7,123\n"), HasSubstr("there is no member number 123 (EBU)"));
  EXPECT_EQ(ImportPairs(header + "7,8,\"Lee, Ann\",Bob Ray\n").code, 0);
}

TEST_F(ImportTest, AColumnOfPairsThatHasNoPlaceInTheFileIsToldOf) {
  const Outcome outcome = ImportPairs("club_number_1,club_number_2,since\n7,11,2020-01-01\n");
  EXPECT_EQ(outcome.code, 0);
  EXPECT_THAT(outcome.error, HasSubstr("the column \"since\" was passed over"));
  EXPECT_THAT(outcome.error, HasSubstr("member 11, Old Timer, is retired"));
}

}  // namespace
}  // namespace tavi::host
