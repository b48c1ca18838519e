#include "names/NameText.h"

#include <gtest/gtest.h>

#include "names/support/LetterKeys.h"
#include "platform/values/Error.h"

namespace tavi {
namespace {

TEST(CollapseWhitespace, MakesOneBlankOfTabsAndRunsOfBlanks) {
  EXPECT_EQ(CollapseWhitespace("a\tb", false), "a b");
  EXPECT_EQ(CollapseWhitespace("a \t  b", false), "a b");
  EXPECT_EQ(CollapseWhitespace("  a  ", false), " a ");
  EXPECT_EQ(CollapseWhitespace("  a  ", true), "a");
  EXPECT_EQ(CollapseWhitespace(" \t ", true), "");
  EXPECT_EQ(CollapseWhitespace("", false), "");
  EXPECT_EQ(CollapseWhitespace("a\nb", true), "a\nb") << "line ends are no blanks";
}

TEST(SplitName, TakesFirstAndLastWordAndJoinsTheRest) {
  EXPECT_EQ(SplitName("John Smith"), (PlayerNameParts{"John", "", "Smith"}));
  EXPECT_EQ(SplitName("John A B Smith"), (PlayerNameParts{"John", "AB", "Smith"}));
  EXPECT_EQ(SplitName("Mary Ann Lee Jones"), (PlayerNameParts{"Mary", "AnnLee", "Jones"}));
  EXPECT_EQ(SplitName("Éloïse O'Neil-Łukasz"), (PlayerNameParts{"Éloïse", "", "O'Neil-Łukasz"}));
}

TEST(SplitName, ASingleWordIsAFirstName) {
  EXPECT_EQ(SplitName("Smith"), (PlayerNameParts{"Smith", "", ""}));
}

TEST(SplitName, AnEmptyTextHasEmptyParts) {
  EXPECT_EQ(SplitName(""), PlayerNameParts{});
  EXPECT_EQ(SplitName("  \t "), PlayerNameParts{});
}

TEST(SplitName, BlanksAndTabsAroundAndBetweenDoNotMatter) {
  EXPECT_EQ(SplitName("  Ann\t  Lee "), (PlayerNameParts{"Ann", "", "Lee"}));
}

TEST(SplitName, ChangesNoCaseAndKnowsNoTitles) {
  EXPECT_EQ(SplitName("dr van der berg"), (PlayerNameParts{"dr", "vander", "berg"}));
}

TEST(JoinNameParts, LeavesNoDoubleBlanks) {
  EXPECT_EQ(JoinNameParts("John", "AB", "Smith"), "John AB Smith");
  EXPECT_EQ(JoinNameParts("John", "", "Smith"), "John Smith");
  EXPECT_EQ(JoinNameParts("", "", "Smith"), "Smith");
  EXPECT_EQ(JoinNameParts("John", "", ""), "John");
  EXPECT_EQ(JoinNameParts("", "", ""), "");
}

TEST(ClearNameParts, EmptiesAll) {
  PlayerNameParts parts{"a", "b", "c"};
  ClearNameParts(parts);
  EXPECT_EQ(parts, PlayerNameParts{});
}

TEST(MakeFuzzedNames, AsksForTheSurnameFirstEachInItsMode) {
  const testing::LetterKeys keys;
  std::string first;
  std::string surname;
  MakeFuzzedNames(first, surname, {"John", "A", "Smith"}, keys);
  EXPECT_EQ(first, "FJHN");
  EXPECT_EQ(surname, "SSMTH");
  ASSERT_EQ(keys.calls.size(), 2U);
  EXPECT_EQ(keys.calls[0].first, NameKeyMode::Surname);
  EXPECT_EQ(keys.calls[1].second, "John");
}

TEST(MakeFuzzedNames, PassesOnAnErrorOfTheService) {
  class Broken : public NameKeyService {
   public:
    [[nodiscard]] std::string Key(NameKeyMode /*mode*/, std::string_view /*name*/) const override {
      throw Error(ErrorNumber::NoObject, "keys", "no service");
    }
  };
  std::string first;
  std::string surname;
  EXPECT_THROW(MakeFuzzedNames(first, surname, {}, Broken()), Error);
}

}  // namespace
}  // namespace tavi
