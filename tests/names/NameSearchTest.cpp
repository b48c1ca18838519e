#include "names/NameSearch.h"

#include <gtest/gtest.h>

#include "names/support/LetterKeys.h"
#include "platform/Matchers.h"
#include "store/support/FakeFile.h"

namespace tavi {
namespace {

using testing::FakePlatform;
using testing::FakeRows;
using Numbers = std::vector<std::int32_t>;

struct Member {
  std::int32_t number;
  const char* first;
  const char* initials;
  const char* last;
};

class NameSearchTest : public ::testing::Test {
 protected:
  NameSearchTest() { store_.SetDatabaseFolder("C:\\Bridge"); }

  /// Rows that a search statement gives.
  void Answer(const std::string& statement, const std::vector<Member>& members, bool active = true) {
    FakeRows& rows = fake_.file->answers[statement];
    rows.fields = {"MembershipNumber", "FirstName", "MiddleInitials", "LastName",      "Active",
                   "KnownAs",          "Handicap",  "EBUNumber",      "UniquenessFlag"};
    rows.rows.clear();
    for (const Member& member : members) {
      rows.rows.push_back({member.number, std::string(member.first), std::string(member.initials),
                           std::string(member.last), active, Null(), 61.5, std::string("99"), std::int16_t{1}});
    }
  }
  void AnswerExact(const std::string& first, const std::string& initials, const std::string& last,
                   const std::vector<Member>& members, bool active = true) {
    Answer("Select MembershipNumber, Active from Members Where FirstName = '" + first + "' And MiddleInitials = '" +
               initials + "' And LastName = '" + last + "'",
           members, active);
  }
  void AnswerSameNames(const std::vector<Member>& members) {
    Answer("Select * from Members where FirstName = 'John' And LastName = 'Smith' And Active <> 0", members);
  }
  std::int32_t Find(const std::string& name, bool exact = false) { return FindMember(store_, name, exact); }

  FakePlatform fake_;
  cDatabase store_{fake_.platform, {}};
};

TEST_F(NameSearchTest, AnExactActiveMemberIsTheAnswer) {
  AnswerExact("John", "A", "Smith", {{12, "", "", ""}, {13, "", "", ""}});
  EXPECT_EQ(Find("John A Smith"), 12) << "the first of two of exactly this name";
  EXPECT_EQ(Find("  John\tA  Smith", true), 12);
  EXPECT_EQ(store_.OpenCount(), 0);
}

TEST_F(NameSearchTest, ARetiredMemberOfExactlyThisNameIsNoAnswer) {
  AnswerExact("John", "A", "Smith", {{12, "", "", ""}}, false);
  AnswerSameNames({{14, "John", "A", "Smith"}});
  EXPECT_EQ(Find("John A Smith", true), -1);
  EXPECT_EQ(Find("John A Smith"), 14);
}

TEST_F(NameSearchTest, TwoMembersWhoFitMakeTheNameAmbiguous) {
  AnswerExact("John", "A", "Smith", {{12, "", "", ""}}, false);
  AnswerSameNames({{14, "John", "AB", "Smith"}, {15, "John", "C", "Smith"}, {16, "John", "", "Smith"}});
  EXPECT_EQ(Find("John A Smith"), -1);
}

TEST_F(NameSearchTest, InitialsThatFitFindTheOnlyMember) {
  AnswerSameNames({{15, "John", "C", "Smith"}, {14, "John", "AB", "Smith"}});
  EXPECT_EQ(Find("John A Smith"), 14);
}

TEST_F(NameSearchTest, ANameWithoutInitialsFindsNoMemberWhoHasSome) {
  AnswerSameNames({{14, "John", "AB", "Smith"}});
  EXPECT_EQ(Find("John Smith"), -1);
}

TEST_F(NameSearchTest, ASingleWordMeansAMemberWithoutSurname) {
  AnswerExact("Smith", "", "", {{7, "", "", ""}});
  EXPECT_EQ(Find("Smith"), 7);
  EXPECT_EQ(Find(""), -1);
}

TEST_F(NameSearchTest, AnEmptyNameMeansNobodyEvenWhereAMemberHasNoName) {
  AnswerExact("", "", "", {{7, "", "", ""}});
  EXPECT_EQ(Find(""), -1);
  EXPECT_EQ(Find("", true), -1);
  EXPECT_EQ(store_.OpenCount(), 0);
}

constexpr const char* kByBothKeys =
    "Select MembershipNumber, FirstName, MiddleInitials, LastName, KnownAs, Handicap, EBUNumber, UniquenessFlag from "
    "Members Where Active <> 0 And FuzzedFirstName = 'F:JOHN' And FuzzedLastName = 'S:O''NEIL'";

TEST_F(NameSearchTest, NearestMatchesComeBestFirstAndEqualOnesInTheOrderOfTheFile) {
  Answer(kByBothKeys, {{1, "John", "A", "O'Neil"},
                       {2, "John", "", "O'Neil"},
                       {3, "John", "B", "O'Neil"},
                       {4, "Bob", "", "O'Neil"},
                       {5, "john", "", "o'neil"}});
  EXPECT_EQ(FindNearestMatches(store_, "John O'Neil"), (Numbers{2, 5, 1, 3})) << "another first name is dropped";
  EXPECT_EQ(store_.OpenCount(), 0);
}

TEST_F(NameSearchTest, ASingleWordIsLookedForAsAFirstName) {
  Answer(
      "Select MembershipNumber, FirstName, MiddleInitials, LastName, KnownAs, Handicap, EBUNumber, UniquenessFlag from "
      "Members Where Active <> 0 And FuzzedFirstName = 'F:JOHN'",
      {{1, "John", "", "Smith"}, {2, "Peter", "", "John"}, {3, "john", "", "Dale"}});
  EXPECT_EQ(FindNearestMatches(store_, "John"), (Numbers{1, 3}));
}

TEST_F(NameSearchTest, AnEmptyNameHasNoMatchesAndOpensNothing) {
  EXPECT_TRUE(FindNearestMatches(store_, "").empty());
  EXPECT_EQ(fake_.file->opens, 0);
}

TEST_F(NameSearchTest, BlanksAloneMatchNobodyButMembersWithoutFirstNameOrSurname) {
  Answer(
      "Select MembershipNumber, FirstName, MiddleInitials, LastName, KnownAs, Handicap, EBUNumber, UniquenessFlag "
      "from Members Where Active <> 0",
      {{1, "John", "", "Smith"}, {2, "", "", ""}, {3, "", "A", ""}, {4, "", "", "Smith"}, {5, "John", "", ""}});
  for (const char* blanks : {" ", "  ", "\t"}) EXPECT_EQ(FindNearestMatches(store_, blanks), (Numbers{5, 4}));
}

TEST_F(NameSearchTest, ReadMemberRowTakesTheColumnsAndFlagTwo) {
  Answer("x", {{1, "John", "A", "Smith"}});
  const auto row = testing::MakeFakeRecordset(fake_.file->answers["x"]);
  const auto player = ReadMemberRow(*row, testing::Keys());
  EXPECT_EQ(player->MembershipNumber, 1);
  EXPECT_EQ(player->Name(10), "Smith, John A");
  EXPECT_EQ(player->KnownAs, "");
  EXPECT_EQ(player->Handicap, 61.5);
  EXPECT_EQ(player->EBUNumber, "99");
  EXPECT_EQ(player->UniquenessFlag, 2) << "whatever the row holds";
  EXPECT_EQ(player->FuzzedSurname(), "SSMTH");
}

TEST_F(NameSearchTest, ReadMemberRowWantsARow) {
  Answer("x", {});
  const auto row = testing::MakeFakeRecordset(fake_.file->answers["x"]);
  try {
    static_cast<void>(ReadMemberRow(*row, testing::Keys()));
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_TRUE(error.Is(ErrorNumber::Component));
    EXPECT_EQ(error.Source(), "TaviMembership");
    EXPECT_EQ(error.Description(), "End of Record Set");
  }
}

}  // namespace
}  // namespace tavi
