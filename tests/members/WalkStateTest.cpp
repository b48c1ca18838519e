#include <gtest/gtest.h>

#include "facade/support/Club.h"
#include "names/NameText.h"

namespace tavi {
namespace {

using testing::Club;
using Texts = std::vector<std::string>;

/// What walks keep between calls, and what their beginnings and ends do to the file, in a club of three members and the
/// pairs 1-2 and 1-3.
class WalkStateTest : public ::testing::Test {
 protected:
  WalkStateTest() {
    club_->AddNewMember("John", "", "Smith", 46.0);
    club_->AddNewMember("Jane", "", "Smith", 55.0);
    club_->AddNewMember("Bob", "", "Dale");
    club_->AddRegularPair(1, 2);
    club_->AddRegularPair(1, 3);
  }
  ~WalkStateTest() override { club_->CloseDatabase(); }

  bool FirstMember() { return club_->GetFirstMember(number_, name_, par_, name_format::kFirstAndLast); }
  bool NextMember() { return club_->GetNextMember(number_, name_, par_, name_format::kFirstAndLast); }
  bool FirstPair(std::int16_t format = name_format::kFirstAndLast) {
    return club_->GetFirstPartnership(number_, name_, second_, secondName_, pair_, alternate_, par_, format);
  }
  bool NextPair() {
    return club_->GetNextPartnership(number_, name_, second_, secondName_, pair_, alternate_, par_,
                                     name_format::kFirstAndLast);
  }
  /// The higher numbers of the pairs of a whole walk.
  std::vector<std::int32_t> WalkPairs() {
    std::vector<std::int32_t> seen;
    for (bool more = FirstPair(); more; more = NextPair()) seen.push_back(second_);
    return seen;
  }
  Texts ActivePairs() { return club_.Rows("Select HigherPlayer From Partnerships Where Active <> 0"); }
  int RetirementsOf(const std::string& number) {
    return club_.Watch().CountOf("Update Partnerships set Active = 0 where LowerPlayer = " + number +
                                 " Or HigherPlayer = " + number);
  }
  void AddToEBUList(const std::string& values) {
    club_.Execute("Insert into EBUMembershipList (EBUNumber, FirstName, LastName, CountyCode, Location) Values " +
                  values);
  }

  Club club_;
  std::int32_t number_ = 77;
  std::int32_t second_ = 78;
  double par_ = 79.0;
  std::string name_ = "name";
  std::string secondName_ = "second";
  std::string pair_ = "pair";
  std::string alternate_ = "alternate";
};

using Numbers = std::vector<std::int32_t>;

TEST_F(WalkStateTest, AWalkWithoutRowsHasEndedAtOnce) {
  club_.Execute("Delete From Partnerships");
  club_.Execute("Delete From Members");
  EXPECT_FALSE(FirstMember());
  EXPECT_EQ(club_.OpenCount(), 0);
  EXPECT_FALSE(FirstPair());
  EXPECT_EQ(club_.OpenCount(), 0);
  EXPECT_FALSE(club_->GetFirstEBURecord(name_, secondName_, name_format::kFirstAndLast));
  EXPECT_EQ(club_.OpenCount(), 0);
  EXPECT_FALSE(NextMember());
}

TEST_F(WalkStateTest, ANextCallWithoutAWalkChangesNothing) {
  club_->OpenDatabase();
  club_.Watch().statements.clear();
  EXPECT_FALSE(NextMember());
  EXPECT_FALSE(NextPair());
  EXPECT_FALSE(club_->GetNextEBURecord(name_, secondName_, "no number")) << "the format is not even looked at";
  EXPECT_EQ(number_, 77);
  EXPECT_EQ(name_, "name");
  EXPECT_EQ(par_, 79.0);
  EXPECT_TRUE(club_.Watch().statements.empty());
  EXPECT_EQ(club_.OpenCount(), 1) << "and what was open stays open";
}

TEST_F(WalkStateTest, TheEndOfAWalkClosesTheFileUnderAResultUpdate) {
  club_->SetCompetition("Wednesday", Date::FromCivil(2025, 9, 17), false, 0, 0, 0, 5, 2, 0, false);
  EXPECT_EQ(club_.OpenCount(), 1);
  for (bool more = FirstMember(); more; more = NextMember()) EXPECT_EQ(club_.OpenCount(), 1);
  EXPECT_EQ(club_.OpenCount(), 0);
}

TEST_F(WalkStateTest, EachEndOfAWalkRetiresTheSamePlayersAgain) {
  club_->DeleteMember(3);
  EXPECT_EQ(WalkPairs(), (Numbers{2}));
  EXPECT_EQ(RetirementsOf("3"), 1);
  club_->EndGet();
  EXPECT_EQ(RetirementsOf("3"), 2);
  ASSERT_TRUE(FirstMember());
  EXPECT_EQ(RetirementsOf("3"), 3) << "beginning a walk of members ends the one before";
  club_->EndGet();
  EXPECT_EQ(ActivePairs(), (Texts{"2"}));
}

TEST_F(WalkStateTest, TheNextWalkOfPairsRetiresOnceMoreAndThenForgets) {
  club_->DeleteMember(3);
  EXPECT_EQ(WalkPairs(), (Numbers{2}));
  const auto reinstate = [this] {
    club_.Execute("Update Members Set Active = 1 Where MembershipNumber = 3");
    club_.Execute("Update Partnerships Set Active = 1 Where HigherPlayer = 3");
  };
  reinstate();
  EXPECT_EQ(WalkPairs(), (Numbers{2})) << "the end of the walk before parts the pair once more";
  reinstate();
  EXPECT_EQ(WalkPairs(), (Numbers{2, 3}));
  EXPECT_EQ(ActivePairs(), (Texts{"2", "3"}));
}

TEST_F(WalkStateTest, BothPlayersOfAPairMayBeRetired) {
  club_->DeleteMember(1);
  club_->DeleteMember(2);
  EXPECT_EQ(WalkPairs(), Numbers{});
  EXPECT_EQ(RetirementsOf("1"), 1) << "each number once, however many of its pairs were met";
  EXPECT_EQ(RetirementsOf("2"), 1);
  EXPECT_EQ(RetirementsOf("3"), 0);
  EXPECT_TRUE(ActivePairs().empty());
}

TEST_F(WalkStateTest, AMemberWithANegativeNumberCountsAsNone) {
  club_.Execute("Insert into Members (MembershipNumber, FirstName, LastName) Values (-5, 'Sam', 'Fox')");
  club_->AddRegularPair(-5, 2);
  EXPECT_EQ(WalkPairs(), (Numbers{2, 3}));
  EXPECT_EQ(club_.Rows("Select Active From Partnerships Where LowerPlayer = -5"), (Texts{"False"}));
}

TEST_F(WalkStateTest, InactivePairsAreGivenWhenAskedFor) {
  club_->DeletePair(1, 2);
  EXPECT_EQ(WalkPairs(), (Numbers{3}));
  club_->IncludeInactiveMembers = true;
  EXPECT_EQ(WalkPairs(), (Numbers{2, 3}));
  EXPECT_EQ(ActivePairs(), (Texts{"3"})) << "and stay inactive";
}

TEST_F(WalkStateTest, RetiredSpeaksOfTheMemberReturnedLastAndOnlyWhenInactiveOnesAreIncluded) {
  EXPECT_FALSE(club_->Retired());
  club_->DeleteMember(1);
  club_->IncludeInactiveMembers = true;
  ASSERT_TRUE(FirstMember());
  EXPECT_TRUE(club_->Retired());
  ASSERT_TRUE(NextMember());
  EXPECT_FALSE(club_->Retired());
  ASSERT_TRUE(FirstMember());
  EXPECT_TRUE(club_->Retired());
  club_->IncludeInactiveMembers = false;
  ASSERT_TRUE(FirstMember());
  EXPECT_FALSE(club_->Retired());
}

TEST_F(WalkStateTest, NobodyIsRetiredAnyMoreAfterTheEndOfAWalkAndInAnotherWalk) {
  club_->DeleteMember(3);
  club_->IncludeInactiveMembers = true;
  AddToEBUList("(1, 'Ann', 'Lee', 'SX', '')");
  const auto walkToTheRetiredMember = [this] {
    ASSERT_TRUE(FirstMember());
    ASSERT_TRUE(NextMember());
    ASSERT_TRUE(NextMember());
    ASSERT_TRUE(club_->Retired());
  };
  walkToTheRetiredMember();
  EXPECT_FALSE(NextMember());
  EXPECT_FALSE(club_->Retired()) << "the walk has come to its end";
  walkToTheRetiredMember();
  club_->EndGet();
  EXPECT_FALSE(club_->Retired()) << "the walk was ended";
  walkToTheRetiredMember();
  ASSERT_TRUE(FirstPair());
  EXPECT_FALSE(club_->Retired()) << "a walk of the pairs has begun";
  walkToTheRetiredMember();
  ASSERT_TRUE(club_->GetFirstEBURecord(name_, secondName_, name_format::kFirstAndLast));
  EXPECT_FALSE(club_->Retired()) << "a walk of the governing body's list has begun";
  walkToTheRetiredMember();
  club_.Execute("Delete From Partnerships");
  EXPECT_FALSE(FirstPair());
  EXPECT_FALSE(club_->Retired()) << "a walk without rows ends the one before too";
}

TEST_F(WalkStateTest, APairWhoseOrderIsNotStoredHasTheHigherNumberFirst) {
  club_.Execute("Update Partnerships Set HigherFirst = Null Where HigherPlayer = 2");
  ASSERT_TRUE(FirstPair());
  EXPECT_EQ(name_, "Jane Smith");
  EXPECT_EQ(number_, 2);
  EXPECT_EQ(secondName_, "John Smith");
}

TEST_F(WalkStateTest, APairWithoutAHandicapIsGivenLikeAnyOther) {
  club_.Execute("Update Partnerships Set Handicap = Null");
  EXPECT_EQ(WalkPairs(), (Numbers{2, 3}));
}

TEST_F(WalkStateTest, APairThatNamesNoPlayerIsPassedOverAndPartsNobody) {
  club_.Execute("Drop Table Partnerships");
  club_.Execute(
      "Create Table Partnerships (LowerPlayer Long, HigherPlayer Long, HigherFirst Short, Handicap Double, KnownAs "
      "Text (255), Active Bit, HandicalcSeed Double, HandicalcSeedDate Date)");
  const std::string insert = "Insert into Partnerships (LowerPlayer, HigherPlayer, HigherFirst, Active) Values ";
  club_.Execute(insert + "(Null, 2, 0, 1)");
  club_.Execute(insert + "(1, Null, 0, 1)");
  club_.Execute(insert + "(1, 3, 0, 1)");
  EXPECT_EQ(WalkPairs(), (Numbers{3}));
  EXPECT_EQ(club_.Watch().CountOf("Update Partnerships set Active = 0"), 0);
}

TEST_F(WalkStateTest, APairsOwnNameHasNoOtherOrder) {
  club_.Execute("Update Partnerships Set KnownAs = 'The Smiths' Where HigherPlayer = 2");
  ASSERT_TRUE(FirstPair());
  EXPECT_EQ(pair_, "The Smiths");
  EXPECT_EQ(alternate_, "");
  EXPECT_EQ(name_, "John Smith") << "the players keep theirs";
  ASSERT_TRUE(FirstPair(name_format::kSurnameFirst));
  EXPECT_EQ(pair_, "Smith, John & Jane");
  EXPECT_EQ(alternate_, "Smith, Jane & John");
}

TEST_F(WalkStateTest, ANullInTheGoverningBodysListIsAnErrorAndTheWalkStaysThere) {
  AddToEBUList("(1, 'John', Null, 'SX', 'Lewes')");
  const auto expectError = [this](const std::function<void()>& call) {
    try {
      call();
      FAIL() << "accepted";
    } catch (const Error& error) {
      EXPECT_TRUE(error.Is(ErrorNumber::TypeMismatch));
    }
    EXPECT_EQ(club_.OpenCount(), 1);
  };
  expectError([this] { static_cast<void>(club_->GetFirstEBURecord(name_, secondName_, name_format::kFirstAndLast)); });
  expectError([this] { static_cast<void>(club_->GetNextEBURecord(name_, secondName_, "5")); });
  EXPECT_EQ(secondName_, "second");
  club_->EndGet();
  EXPECT_FALSE(club_->GetNextEBURecord(name_, secondName_, "5"));
}

TEST_F(WalkStateTest, TheWalkOfTheListGivesTextsAsTheyStandWhileTheSearchUndoesEscapes) {
  AddToEBUList("(1, 'Jo%phn', 'Smith', 'SX', '50%p')");
  ASSERT_TRUE(club_->GetFirstEBURecord(name_, secondName_, name_format::kSurnameFirst));
  EXPECT_EQ(secondName_, "Smith, Jo%phn");
  club_->EndGet();
  const std::vector<EBUMembershipDetails> found = club_->SearchEBUList("", "Smith");
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].FirstName(), "Jo%hn");
  EXPECT_EQ(found[0].Location(), "50%");
}

TEST_F(WalkStateTest, TheFormatOfTheListIsANumberHoweverItIsWritten) {
  for (const char* format : {"10", " 10 ", "10.0", "1e1"}) {
    AddToEBUList("(1, 'Ann', 'Lee', 'SX', '')");
    AddToEBUList("(2, 'John', 'Smith', 'SX', '')");
    ASSERT_TRUE(club_->GetFirstEBURecord(name_, secondName_, name_format::kFirstAndLast));
    EXPECT_EQ(secondName_, "Ann Lee");
    ASSERT_TRUE(club_->GetNextEBURecord(name_, secondName_, format));
    EXPECT_EQ(secondName_, "Smith, John") << format;
    club_->EndGet();
    club_.Execute("Delete From EBUMembershipList");
  }
}

TEST_F(WalkStateTest, ASearchGivesAllFiveTextsAndEmptyOnesForNulls) {
  AddToEBUList("(1, 'John', 'Smith', 'SX', 'Lewes')");
  AddToEBUList("(2, Null, 'Smith', Null, Null)");
  const std::vector<EBUMembershipDetails> found = club_->SearchEBUList("", "smith");
  ASSERT_EQ(found.size(), 2U) << "the database ignores case";
  EXPECT_EQ(found[0].EBUNumber(), "1");
  EXPECT_EQ(found[0].FirstName(), "John");
  EXPECT_EQ(found[0].LastName(), "Smith");
  EXPECT_EQ(found[0].CountyCode(), "SX");
  EXPECT_EQ(found[0].Location(), "Lewes");
  EXPECT_EQ(found[1].EBUNumber(), "2");
  EXPECT_EQ(found[1].FirstName() + found[1].CountyCode() + found[1].Location(), "");
  EXPECT_EQ(club_->SearchEBUList(" ", "Smith").size(), 0U) << "only a name that is empty exactly is left out";
  EXPECT_EQ(club_.OpenCount(), 0);
}

TEST_F(WalkStateTest, BlankAddressesAreLeftOutAndOthersTrimmed) {
  EXPECT_TRUE(club_->AllEmailAddresses().empty()) << "no address at all";
  club_.Execute("Update Members Set email = '   ' Where MembershipNumber = 1");
  club_.Execute("Update Members Set email = ' jane@example.org ' Where MembershipNumber = 2");
  EXPECT_EQ(club_->AllEmailAddresses(), (Texts{"jane@example.org"}));
  club_.Execute("Update Members Set email = 'JANE@example.org'");
  EXPECT_THROW(static_cast<void>(club_->AllEmailAddresses()), Error);
  EXPECT_EQ(club_.OpenCount(), 0);
}

}  // namespace
}  // namespace tavi
