#include <gtest/gtest.h>

#include "names/cPartnership.h"
#include "names/support/LetterKeys.h"

namespace tavi {
namespace {

std::shared_ptr<cPlayerDetails> Player(const std::string& name) {
  auto player = std::make_shared<cPlayerDetails>(testing::Keys());
  player->SetName(name);
  return player;
}

cPartnership Pair(const std::string& first, const std::string& second) {
  return cPartnership(Player(first), Player(second));
}

TEST(cPartnership, ANewPairHasTwoEmptyPlayers) {
  const cPartnership pair(testing::Keys());
  EXPECT_EQ(pair.Handicap, 50.0);
  EXPECT_EQ(pair.KnownAs, "");
  EXPECT_EQ(pair.Player1->MembershipNumber, -1);
  EXPECT_NE(pair.Player1, pair.Player2);
}

TEST(cPartnership, TheOtherOrderSharesThePlayers) {
  cPartnership pair = Pair("John Smith", "Ann Lee");
  pair.KnownAs = "The Aces";
  pair.Handicap = 55.5;
  const cPartnership other = pair.OtherOrder();
  EXPECT_EQ(other.Player1, pair.Player2);
  EXPECT_EQ(other.Player2, pair.Player1);
  EXPECT_EQ(other.KnownAs, "The Aces");
  EXPECT_EQ(other.Handicap, 55.5);
}

TEST(cPartnership, BothNamesAreJoined) {
  EXPECT_EQ(Pair("John A Smith", "Ann Lee").Name(5, false, false), "John Smith & Ann Lee");
  EXPECT_EQ(Pair("John A Smith", "Ann Lee").Name(0, true, false), "John A Smith & Ann Lee");
  EXPECT_EQ(Pair("John Smith", "Ann Lee").Name(5, false, true), "Ann Lee & John Smith");
}

TEST(cPartnership, ASharedSurnameIsWrittenOnceWhenAskedFor) {
  const cPartnership pair = Pair("John Smith", "Jane SMITH");
  EXPECT_EQ(pair.Name(5, true, false), "John & Jane SMITH");
  EXPECT_EQ(pair.Name(5, true, true), "Jane & John Smith");
  EXPECT_EQ(pair.Name(10, true, false), "Smith, John & Jane");
  EXPECT_EQ(pair.Name(5, false, false), "John Smith & Jane SMITH");
  EXPECT_EQ(pair.Player1->Surname(), "Smith") << "the players themselves keep theirs";
}

TEST(cPartnership, ThePairsOwnNameIsShownExceptSurnameFirst) {
  cPartnership pair = Pair("John Smith", "Jane Lee");
  pair.KnownAs = "The Aces";
  EXPECT_EQ(pair.Name(0, false, false), "The Aces");
  EXPECT_EQ(pair.Name(9, true, false), "The Aces");
  EXPECT_EQ(pair.Name(5, false, true), "") << "there is no other order of it";
  EXPECT_EQ(pair.Name(10, false, false), "Smith, John & Lee, Jane");
  EXPECT_EQ(pair.Name(10, false, true), "Lee, Jane & Smith, John");
}

TEST(cPartnership, TheFamiliarFormatJoinsFamiliarNamesAndOffersNoSwap) {
  const cPartnership pair = Pair("John Smith", "Jane Lee");
  pair.Player1->KnownAs = "Jack";
  EXPECT_EQ(pair.Name(9, false, false), "Jack & Jane");
  EXPECT_EQ(pair.Name(9, false, true), "Jack & Jane");
  EXPECT_EQ(Pair("Jo Smith", "JO Lee").Name(9, false, true), "");
  EXPECT_EQ(Pair("Jo Smith", "JO Lee").Name(9, false, false), "Jo & JO");
}

TEST(cPartnership, AnEmptyNameLeavesJustTheOther) {
  EXPECT_EQ(Pair("", "Ann Lee").Name(5, false, false), "Ann Lee");
  EXPECT_EQ(Pair("John Smith", "").Name(5, false, false), "John Smith");
  EXPECT_EQ(Pair("", "").Name(5, false, false), "");
}

TEST(cPartnership, TheFamiliarFormatLeavesTheSeparatorOfAnEmptyName) {
  EXPECT_EQ(Pair("", "Ann Lee").Name(9, false, false), " & Ann");
  EXPECT_EQ(Pair("John Smith", "").Name(9, false, false), "John & ");
}

TEST(cPartnership, AnAmpersandAtAnEndIsTakenForAStrayOne) {
  const cPartnership pair = Pair("John Smith", "Jane Smith");
  pair.Player1->KnownAs = "&Co";
  EXPECT_EQ(pair.Name(9, false, false), "Co & Jane");
  pair.Player1->KnownAs = "";
  pair.Player2->KnownAs = "Co&";
  EXPECT_EQ(pair.Name(9, false, false), "John & Co");
}

TEST(cPartnership, APairsOwnNameIsShownAsItIs) {
  cPartnership pair = Pair("John Smith", "Jane Smith");
  pair.KnownAs = "& Sons  Ltd &";
  EXPECT_EQ(pair.Name(5, true, false), "& Sons  Ltd &");
}

TEST(cPartnership, TwoEmptySurnamesAreEqual) {
  EXPECT_EQ(Pair("John", "Jane").Name(5, true, false), "John & Jane");
  EXPECT_EQ(Pair("John", "Jane").Name(10, true, false), "John & Jane");
}

}  // namespace
}  // namespace tavi
