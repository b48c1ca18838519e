#include "names/NameKeys.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "names/NameLetters.h"
#include "names/ShortForms.h"

namespace tavi {
namespace {

using Pair = std::pair<const char*, const char*>;

void ExpectSame(std::string (*key)(std::string_view), std::initializer_list<Pair> pairs) {
  for (const auto& [left, right] : pairs) EXPECT_EQ(key(left), key(right)) << left << " / " << right;
}

void ExpectDifferent(std::string (*key)(std::string_view), std::initializer_list<Pair> pairs) {
  for (const auto& [left, right] : pairs) EXPECT_NE(key(left), key(right)) << left << " / " << right;
}

TEST(NameLetters, AreThePlainCapitalsOfAName) {
  EXPECT_EQ(PlainLetters("Müller-Lüdenscheidt"), "MULLERLUDENSCHEIDT");
  EXPECT_EQ(PlainLetters("O'Neil"), "ONEIL");
  EXPECT_EQ(PlainLetters("Łukasz Æsop Straße"), "LUKASZAESOPSTRASSE");
  EXPECT_EQ(PlainLetters("e\u0301"), "E") << "an accent on its own";
  EXPECT_EQ(PlainLetters("Жук 2"), "");
}

TEST(SurnameKey, IgnoresCaseAccentsAndPunctuation) {
  ExpectSame(SurnameKey, {{"Smith", "SMITH"},
                          {"Müller", "Muller"},
                          {"Müller", "Mueller"},
                          {"O'Neil", "ONeil"},
                          {"O'Neil", "O Neil"},
                          {"Smith-Jones", "Smith Jones"},
                          {"de Jong", "Dejong"}});
}

TEST(SurnameKey, TakesTheUsualSpellingsOfOneNameForOne) {
  ExpectSame(SurnameKey, {{"MacLeod", "McLeod"},
                          {"Mackenzie", "McKenzie"},
                          {"St John", "Saint John"},
                          {"Stephens", "Stevens"},
                          {"Smith", "Smyth"},
                          {"Smith", "Smythe"},
                          {"Philips", "Phillips"},
                          {"Brown", "Browne"},
                          {"Clark", "Clarke"},
                          {"Read", "Reid"},
                          {"Wright", "Right"},
                          {"Knott", "Nott"},
                          {"Mathews", "Matthews"},
                          {"Lamb", "Lam"},
                          {"Dixon", "Dickson"},
                          {"Allen", "Alan"}});
}

TEST(SurnameKey, TellsDifferentNamesApart) {
  ExpectDifferent(SurnameKey, {{"Smith", "Jones"},
                               {"Brown", "Green"},
                               {"Hall", "Hill"},
                               {"Taylor", "Turner"},
                               {"Wood", "Ward"},
                               {"Allen", "Lane"}});
}

TEST(FirstNameKey, TakesTheUsualSpellingsOfOneNameForOne) {
  ExpectSame(FirstNameKey, {{"Stephen", "Steven"},
                            {"Catherine", "Katherine"},
                            {"Geoffrey", "Jeffrey"},
                            {"Gillian", "Jillian"},
                            {"Philip", "Phillip"},
                            {"Anne", "Ann"},
                            {"Sheila", "Shiela"},
                            {"Jackie", "Jacky"},
                            {"Debbie", "Debby"},
                            {"Éloïse", "Eloise"},
                            {"Jamie-Leigh", "Jamieleigh"}});
}

TEST(FirstNameKey, TakesShortFormsForTheFullNames) {
  ExpectSame(FirstNameKey, {{"Bill", "William"},
                            {"Bob", "Robert"},
                            {"Liz", "Elizabeth"},
                            {"Kate", "Catherine"},
                            {"Mike", "Michael"},
                            {"Tony", "Anthony"},
                            {"SUE", "Susan"}});
}

TEST(FirstNameKey, TellsCommonNamesApart) {
  ExpectDifferent(FirstNameKey, {{"John", "Jane"},
                                 {"John", "Jean"},
                                 {"Mary", "Martha"},
                                 {"Peter", "Patrick"},
                                 {"Alan", "Ellen"},
                                 {"Michael", "Malcolm"}});
}

TEST(SurnameKey, KnowsNoShortForms) {
  EXPECT_NE(SurnameKey("Bill"), SurnameKey("William"));
}

TEST(NameKeys, AreShortPlainAndNeverEmptyForAName) {
  const std::string longName(500, 'K');
  for (const std::string& name : {std::string("Smith"), std::string("Жук"), std::string("'"), std::string("123"),
                                  std::string("H"), std::string("GH"), std::string("W"), std::string("\xFF\xFE"),
                                  std::string("李明"), longName + "abcdefghijklmnopqrstuvwxyz" + longName}) {
    for (const std::string& key : {SurnameKey(name), FirstNameKey(name)}) {
      EXPECT_FALSE(key.empty()) << name;
      EXPECT_LE(key.size(), 50U);
      EXPECT_TRUE(
          std::all_of(key.begin(), key.end(), [](char character) { return character > ' ' && character < 127; }));
    }
  }
}

TEST(NameKeys, AreEmptyForAnEmptyName) {
  EXPECT_EQ(SurnameKey(""), "");
  EXPECT_EQ(FirstNameKey("  "), "");
}

TEST(NameKeys, OfOtherScriptsTellNamesApartAndIgnoreCase) {
  EXPECT_EQ(SurnameKey("Жук"), SurnameKey("жук"));
  EXPECT_NE(SurnameKey("Жук"), SurnameKey("Жак"));
}

TEST(ShortForms, AreFoundByTheirExactLetters) {
  EXPECT_EQ(FullFormOf("BILL"), "WILLIAM");
  EXPECT_EQ(FullFormOf("BILLS"), "");
  EXPECT_EQ(FullFormOf(""), "");
}

}  // namespace
}  // namespace tavi
