#include <gtest/gtest.h>

#include "facade/ThreadStore.h"
#include "facade/support/Club.h"
#include "members/Partnerships.h"

namespace tavi {
namespace {

using testing::Club;
using Texts = std::vector<std::string>;

/// Regular pairs of a club with four members, through the public class.
class PairsTest : public ::testing::Test {
 protected:
  PairsTest() {
    club_->OpenDatabase();
    club_->AddNewMember("John", "", "Smith", 46.0);
    club_->AddNewMember("Jane", "", "Smith", 55.0);
    club_->AddNewMember("Bob", "C", "Dale");
    club_->AddNewMember("Kate", "", "Moor");
    club_->CloseDatabase();
  }
  ~PairsTest() override { EXPECT_EQ(club_.OpenCount(), 0) << "an operation left the file open"; }

  Texts StoredPairs() {
    return club_.Rows("Select LowerPlayer, HigherPlayer, HigherFirst, Handicap, KnownAs, Active From Partnerships");
  }
  std::string NameOfSmiths(std::int16_t format, bool transfer, bool alternate = false) {
    return club_->GetPairName(1, "", 2, "", format, transfer, alternate);
  }
  void ExpectRefusal(const std::function<void()>& operation, const std::string& message) {
    try {
      operation();
      FAIL() << "accepted";
    } catch (const Error& error) {
      EXPECT_TRUE(error.Is(ErrorNumber::Component));
      EXPECT_EQ(error.Source(), "cDatabase");
      EXPECT_EQ(error.Description(), message);
    }
  }

  Club club_;
  std::string alias_ = "before";
  double par_ = 1.0;
};

TEST_F(PairsTest, ANewPairHasTheMeanHandicapAndNoName) {
  EXPECT_FALSE(club_->AddRegularPair(1, 2)) << "the result is always False";
  EXPECT_EQ(StoredPairs(), (Texts{"1 | 2 | 0 | 50.5 |  | True"}));
}

TEST_F(PairsTest, ThePairIsStoredInAscendingOrderWithTheOrderOfEntry) {
  club_->AddRegularPair(4, 3);
  EXPECT_EQ(StoredPairs(), (Texts{"3 | 4 | 1 | 50 |  | True"}));
  EXPECT_TRUE(club_->IsRegularPair(3, 4, alias_, par_));
  EXPECT_TRUE(club_->IsRegularPair(4, 3, alias_, par_));
}

TEST_F(PairsTest, AnActivePairIsLeftAsItIs) {
  club_->AddRegularPair(1, 2);
  club_->SetPairHandicap(1, 2, 60.0);
  EXPECT_FALSE(club_->AddRegularPair(2, 1));
  EXPECT_EQ(StoredPairs(), (Texts{"1 | 2 | 0 | 60 |  | True"}));
}

TEST_F(PairsTest, AnInactivePairIsReactivatedWithNewHandicapAndName) {
  MakeRegularPartnership(*ThreadStore(), 1, 2, 40.0, true, "Old name");
  club_->DeletePair(2, 1);
  EXPECT_EQ(StoredPairs(), (Texts{"1 | 2 | 0 | 40 | Old name | False"}));
  EXPECT_FALSE(club_->AddRegularPair(2, 1));
  EXPECT_EQ(StoredPairs(), (Texts{"1 | 2 | 0 | 50.5 |  | True"})) << "the order of entry stays";
}

TEST_F(PairsTest, APlayerCannotBePartneredWithThemself) {
  ExpectRefusal([this] { club_->AddRegularPair(1, 1); }, "You cannot partner a player with themself.");
  EXPECT_TRUE(StoredPairs().empty());
}

TEST_F(PairsTest, AnActivePairIsRefusedWhereItIsAskedFor) {
  club_->AddRegularPair(1, 2);
  ExpectRefusal([] { MakeRegularPartnership(*ThreadStore(), 1, 2, 45.0, true, ""); }, "Partnership already exists");
}

TEST_F(PairsTest, AHandicapOfZeroIsKept) {
  MakeRegularPartnership(*ThreadStore(), 1, 2, 0.0, false, "Ours");
  EXPECT_EQ(StoredPairs(), (Texts{"1 | 2 | 0 | 0 | Ours | True"}));
}

TEST_F(PairsTest, ARegularPairHasItsNameAndHandicapPassedBack) {
  MakeRegularPartnership(*ThreadStore(), 2, 1, 44.5, false, "The Smiths' pair");
  EXPECT_TRUE(club_->IsRegularPair(1, 2, alias_, par_));
  EXPECT_EQ(alias_, "The Smiths' pair");
  EXPECT_EQ(par_, 44.5);
}

TEST_F(PairsTest, AnUnknownPairHasNoNameAndTheNeutralHandicap) {
  EXPECT_FALSE(club_->IsRegularPair(1, 3, alias_, par_));
  EXPECT_EQ(alias_, "");
  EXPECT_EQ(par_, 50.0);
}

TEST_F(PairsTest, AnInactivePairIsNotRegular) {
  MakeRegularPartnership(*ThreadStore(), 1, 2, 44.5, false, "Ours");
  club_->DeletePair(1, 2);
  EXPECT_FALSE(club_->IsRegularPair(1, 2, alias_, par_));
  EXPECT_EQ(alias_, "");
  EXPECT_EQ(par_, 50.0);
}

TEST_F(PairsTest, AnInactivePairKeepsItsHandicap) {
  club_->AddRegularPair(1, 2);
  club_->DeletePair(1, 2);
  club_->SetPairHandicap(1, 2, 61.0);
  EXPECT_EQ(StoredPairs(), (Texts{"1 | 2 | 0 | 50.5 |  | False"}));
}

TEST_F(PairsTest, ASharedSurnameIsWrittenOnceWhenAskedFor) {
  EXPECT_EQ(NameOfSmiths(5, true), "John & Jane Smith");
  EXPECT_EQ(NameOfSmiths(10, true), "Smith, John & Jane");
  EXPECT_EQ(NameOfSmiths(5, false), "John Smith & Jane Smith");
  EXPECT_EQ(club_->GetPairName(1, "", 4, "", 5, true), "John Smith & Kate Moor");
}

TEST_F(PairsTest, TheOtherOrderIsTheAlternateName) {
  EXPECT_EQ(NameOfSmiths(5, true, true), "Jane & John Smith");
  EXPECT_EQ(NameOfSmiths(9, false, true), "John & Jane");
}

TEST_F(PairsTest, WhoIsNoMemberIsNamedAsGiven) {
  EXPECT_EQ(club_->GetPairName(1, "ignored", -1, "Mary Ann Lee", 5, false), "John Smith & Mary Lee");
  EXPECT_EQ(club_->GetPairName(99, "Sam Fox", -1, "", 5, false), "Sam Fox");
}

TEST_F(PairsTest, ARetiredMemberIsNamedAsGiven) {
  club_->DeleteMember(2);
  EXPECT_EQ(club_->GetPairName(1, "", 2, "Jane Jones", 5, false), "John Smith & Jane Jones");
}

TEST_F(PairsTest, AddingAnswersFalseWhateverItDid) {
  EXPECT_FALSE(club_->AddRegularPair(1, 2)) << "inserted";
  EXPECT_FALSE(club_->AddRegularPair(1, 2)) << "left alone";
  club_->DeletePair(1, 2);
  EXPECT_FALSE(club_->AddRegularPair(1, 2)) << "reactivated";
  EXPECT_EQ(StoredPairs().size(), 1U);
}

TEST_F(PairsTest, ThePlayersHandicapsAreReadBeforeTheyAreFoundToBeOne) {
  club_.Watch().statements.clear();
  ExpectRefusal([this] { club_->AddRegularPair(3, 3); }, "You cannot partner a player with themself.");
  EXPECT_EQ(club_.Watch().statements, Texts(2, "Select Handicap from Members where MembershipNumber = 3"));
}

TEST_F(PairsTest, AnActivePairThatIsRefusedStaysAsItIs) {
  MakeRegularPartnership(*ThreadStore(), 1, 2, 44.0, true, "Ours");
  ExpectRefusal([] { MakeRegularPartnership(*ThreadStore(), 2, 1, 45.0, true, "Theirs"); },
                "Partnership already exists");
  EXPECT_EQ(StoredPairs(), (Texts{"1 | 2 | 0 | 44 | Ours | True"}));
}

}  // namespace
}  // namespace tavi
