#include <gtest/gtest.h>

#include "names/cPlayerDetails.h"
#include "names/support/LetterKeys.h"

namespace tavi {
namespace {

cPlayerDetails Player(const std::string& first, const std::string& initials, const std::string& surname) {
  cPlayerDetails player(testing::Keys());
  player.SetNameComponents(first, initials, surname);
  return player;
}

TEST(cPlayerDetails, ANewRecordIsEmpty) {
  const cPlayerDetails player(testing::Keys());
  EXPECT_EQ(player.MembershipNumber, -1);
  EXPECT_EQ(player.Handicap, 50.0);
  EXPECT_EQ(player.UniquenessFlag, 4);
  EXPECT_EQ(player.KnownAs, "");
  EXPECT_EQ(player.EBUNumber, "");
  EXPECT_EQ(player.NameParts(), PlayerNameParts{});
  EXPECT_TRUE(IsNull(player.CandidateWeight));
  EXPECT_EQ(player.FuzzedSurname(), "S");
  EXPECT_EQ(player.FuzzedFirstName(), "F");
}

TEST(cPlayerDetails, ClearMakesARecordNewAgain) {
  cPlayerDetails player = Player("John", "A", "Smith");
  player.MembershipNumber = 7;
  player.Handicap = 61.5;
  player.UniquenessFlag = 1;
  player.KnownAs = "Jack";
  player.EBUNumber = "123";
  player.CandidateWeight = std::int16_t{444};
  player.Clear();
  EXPECT_EQ(player.MembershipNumber, -1);
  EXPECT_EQ(player.Handicap, 50.0);
  EXPECT_EQ(player.UniquenessFlag, 4);
  EXPECT_EQ(player.NameParts(), PlayerNameParts{});
  EXPECT_EQ(player.KnownAs, "");
  EXPECT_EQ(player.EBUNumber, "");
  EXPECT_EQ(player.FuzzedSurname(), "S");
  EXPECT_EQ(player.FuzzedFirstName(), "F");
  EXPECT_TRUE(IsNull(player.CandidateWeight));
}

TEST(cPlayerDetails, CloneCopiesEverythingButTheCandidateWeight) {
  cPlayerDetails player = Player("John", "A", "Smith");
  player.MembershipNumber = 7;
  player.Handicap = 61.5;
  player.UniquenessFlag = 2;
  player.KnownAs = "Jack";
  player.EBUNumber = "123";
  player.CandidateWeight = std::int16_t{444};
  const auto copy = player.Clone();
  EXPECT_EQ(copy->NameParts(), player.NameParts());
  EXPECT_EQ(copy->MembershipNumber, 7);
  EXPECT_EQ(copy->Handicap, 61.5);
  EXPECT_EQ(copy->UniquenessFlag, 2);
  EXPECT_EQ(copy->KnownAs, "Jack");
  EXPECT_EQ(copy->EBUNumber, "123");
  EXPECT_EQ(copy->FuzzedSurname(), "SSMTH");
  EXPECT_TRUE(IsNull(copy->CandidateWeight));
  copy->SetSurname("Brown");
  EXPECT_EQ(player.Surname(), "Smith");
}

TEST(cPlayerDetails, KeysAlwaysBelongToTheCurrentNames) {
  cPlayerDetails player(testing::Keys());
  player.SetFirstName("  John ");
  EXPECT_EQ(player.FirstName(), "  John ") << "kept as given";
  EXPECT_EQ(player.FuzzedFirstName(), "F  JHN ");
  player.SetSurname("Smith");
  EXPECT_EQ(player.FuzzedSurname(), "SSMTH");
  player.SetName("Ann Lee Brown");
  EXPECT_EQ(player.Initials(), "Lee");
  EXPECT_EQ(player.FuzzedFirstName(), "FNN");
  EXPECT_EQ(player.FuzzedSurname(), "SBRWN");
  player.SetNameComponents("Bob", "", "Holt");
  EXPECT_EQ(player.FuzzedSurname(), "SHLT");
}

TEST(cPlayerDetails, SettingInitialsAsksForNoKey) {
  const auto keys = std::make_shared<testing::LetterKeys>();
  cPlayerDetails player(keys);
  EXPECT_EQ(keys->calls.size(), 2U);
  player.SetInitials("A");
  EXPECT_EQ(keys->calls.size(), 2U);
  player.SetSurname("Smith");
  EXPECT_EQ(keys->calls.size(), 4U) << "both keys are made anew";
}

TEST(cPlayerDetails, TheFamiliarNameIsKnownAsOrTheFirstName) {
  cPlayerDetails player = Player("John", "", "Smith");
  EXPECT_EQ(player.FamiliarName(), "John");
  player.KnownAs = "Jack";
  EXPECT_EQ(player.FamiliarName(), "Jack");
}

TEST(cPlayerDetails, SurnamesAreComparedIgnoringCase) {
  EXPECT_TRUE(Player("A", "", "O'NEIL").SameSurnameAs(Player("B", "", "o'Neil")));
  EXPECT_FALSE(Player("A", "", "Smith").SameSurnameAs(Player("B", "", "Smyth")));
}

TEST(cPlayerDetails, EveryFormatShowsItsParts) {
  const cPlayerDetails player = Player("John", "AB", "Smith");
  EXPECT_EQ(player.Name(0), "John AB Smith");
  EXPECT_EQ(player.Name(1), "John");
  EXPECT_EQ(player.Name(2), "AB");
  EXPECT_EQ(player.Name(3), "Smith");
  EXPECT_EQ(player.Name(4), "JohnAB");
  EXPECT_EQ(player.Name(5), "John Smith");
  EXPECT_EQ(player.Name(6), "John Smith");
  EXPECT_EQ(player.Name(7), "John AB Smith");
  EXPECT_EQ(player.Name(8), "John S");
  EXPECT_EQ(player.Name(9), "John");
  EXPECT_EQ(player.Name(10), "Smith, John AB");
  EXPECT_EQ(player.Name(11), "John AB Smith");
  EXPECT_EQ(player.Name(-1), "John AB Smith");
}

TEST(cPlayerDetails, TheUniquenessFlagMakesSomeFormatsShowMore) {
  cPlayerDetails player = Player("John", "AB", "Smith");
  const auto named = [&player](std::int16_t flag, std::int16_t format) {
    player.UniquenessFlag = flag;
    return player.Name(format);
  };
  for (const std::int16_t flag : {std::int16_t{0}, std::int16_t{1}}) {
    EXPECT_EQ(named(flag, 6), "John AB Smith");
    EXPECT_EQ(named(flag, 8), "John AB Smith");
    EXPECT_EQ(named(flag, 9), "John AB Smith");
    EXPECT_EQ(named(flag, 5), "John Smith");
  }
  EXPECT_EQ(named(2, 6), "John Smith");
  EXPECT_EQ(named(2, 8), "John Smith");
  EXPECT_EQ(named(2, 9), "John Smith");
  EXPECT_EQ(named(3, 8), "John S");
  EXPECT_EQ(named(3, 9), "John S");
  EXPECT_EQ(named(4, 8), "John S");
  EXPECT_EQ(named(4, 9), "John");
  EXPECT_EQ(named(-1, 6), "John AB Smith");
  EXPECT_EQ(named(-1, 8), "John S");
  EXPECT_EQ(named(1, 1), "John");
}

TEST(cPlayerDetails, TheFamiliarFormatShowsKnownAsUntouched) {
  cPlayerDetails player = Player("John", "AB", "Smith");
  player.KnownAs = " Big  John ";
  player.UniquenessFlag = 1;
  EXPECT_EQ(player.Name(9), " Big  John ");
}

TEST(cPlayerDetails, TheFirstLetterIsACharacterAndNotAByte) {
  EXPECT_EQ(Player("Ann", "", "Éclair").Name(8), "Ann É");
  EXPECT_EQ(Player("Ann", "", "").Name(8), "Ann");
}

TEST(cPlayerDetails, SurnameFirstLeavesNoStrayComma) {
  EXPECT_EQ(Player("", "", "Smith").Name(10), "Smith");
  EXPECT_EQ(Player("John", "A", "").Name(10), "John A");
  EXPECT_EQ(Player("", "A", "Smith").Name(10), "Smith, A");
  EXPECT_EQ(Player("", "", "").Name(10), "");
}

TEST(cPlayerDetails, NamesAreTidied) {
  EXPECT_EQ(Player(" John ", "", " van  der\tBerg").Name(0), "John van der Berg");
  EXPECT_EQ(Player("", "A", "Smith").Name(0), "A Smith");
}

TEST(cPlayerDetails, MatchWeightCombinesTheScores) {
  const cPlayerDetails member = Player("John", "", "Smith");
  EXPECT_EQ(member.MatchWeight(Player("J", "", "Smith")), 424);
  EXPECT_EQ(member.MatchWeight(Player("john", "", "SMITH")), 444);
  EXPECT_EQ(member.MatchWeight(Player("Jahn", "", "Smyth")), 334);
  EXPECT_EQ(member.MatchWeight(Player("", "", "Smith")), 414);
  EXPECT_EQ(member.MatchWeight(Player("J", "A", "")), 121) << "the smallest weight of all";
}

TEST(cPlayerDetails, MatchWeightIsZeroForAnotherPlayer) {
  const cPlayerDetails member = Player("John", "A", "Smith");
  EXPECT_EQ(member.MatchWeight(Player("John", "A", "Brown")), 0);
  EXPECT_EQ(member.MatchWeight(Player("Bob", "A", "Smith")), 0);
  EXPECT_EQ(member.MatchWeight(Player("John", "B", "Smith")), 0);
  EXPECT_EQ(member.MatchWeight(Player("", "A", "")), 0) << "nothing was compared";
}

TEST(cPlayerDetails, MatchWeightIsNotSymmetricInTheInitials) {
  EXPECT_EQ(Player("John", "A", "Smith").MatchWeight(Player("John", "", "Smith")), 442);
  EXPECT_EQ(Player("John", "", "Smith").MatchWeight(Player("John", "A", "Smith")), 441);
}

TEST(cPlayerDetails, TwoEmptyNamesDoNotMatch) {
  EXPECT_EQ(Player("", "A", "").MatchWeight(Player("", "A", "")), 0);
}

}  // namespace
}  // namespace tavi
