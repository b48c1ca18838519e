#include "names/NameKeys.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace tavi {
namespace {

using TwoTexts = std::pair<const char*, const char*>;

void ExpectSame(std::string (*key)(std::string_view), std::initializer_list<TwoTexts> pairs) {
  for (const auto& [left, right] : pairs) EXPECT_EQ(key(left), key(right)) << left << " / " << right;
}

void ExpectDifferent(std::string (*key)(std::string_view), std::initializer_list<TwoTexts> pairs) {
  for (const auto& [left, right] : pairs) EXPECT_NE(key(left), key(right)) << left << " / " << right;
}

TEST(SurnameKey, IgnoresCaseAccentsAndPunctuation) {
  ExpectSame(SurnameKey, {{"Smith", "SMITH"},
                          {"Müller", "Muller"},
                          {"Müller", "Mueller"},
                          {"Łukasiewicz", "lukasiewicz"},
                          {"Núñez", "nunez"},
                          {"O'Neil", "ONeil"},
                          {"O’Neil", "O Neil"},
                          {"Smith-Jones", "Smith Jones"},
                          {"Fitz Gerald", "Fitzgerald"},
                          {"de Jong", "Dejong"},
                          {"van der Meer", "Vandermeer"}});
}

TEST(SurnameKey, TakesTheUsualSpellingsOfOneNameForOne) {
  ExpectSame(
      SurnameKey,
      {{"MacLeod", "McLeod"},      {"MacLeod", "McCloud"},    {"M'Donald", "MacDonald"}, {"Mackenzie", "McKenzie"},
       {"McCrae", "MacRae"},       {"St John", "Saint John"}, {"Stephens", "Stevens"},   {"Smith", "Smyth"},
       {"Smith", "Smythe"},        {"Philips", "Phillips"},   {"Brown", "Browne"},       {"Clark", "Clarke"},
       {"Read", "Reid"},           {"Reade", "Reed"},         {"Wright", "Right"},       {"Knott", "Nott"},
       {"Mathews", "Matthews"},    {"Dixon", "Dickson"},      {"Allen", "Alan"},         {"Metcalf", "Metcalfe"},
       {"Thompson", "Thomson"},    {"Hansen", "Hanson"},      {"Burleigh", "Burley"},    {"Whyte", "White"},
       {"Rhodes", "Rodes"},        {"Jeffries", "Jefferys"},  {"O'Brien", "Brien"},      {"Chumley", "Cholmondeley"},
       {"Choudhury", "Chowdhury"}, {"Hussain", "Husain"},     {"Petersen", "Peters"},    {"Sørensen", "Sorenson"}});
}

TEST(SurnameKey, ForgivesASlipOfTheHand) {
  ExpectSame(SurnameKey, {{"Henderson", "Hendersno"},
                          {"Henderson", "Hendeson"},
                          {"Henderson", "Hendersom"},
                          {"Henderson", "Henderrson"},
                          {"Whitehouse", "Whtiehouse"},
                          {"Chamberlain", "Chanberlain"}});
}

TEST(SurnameKey, TellsDifferentNamesApart) {
  ExpectDifferent(SurnameKey, {{"Smith", "Jones"},
                               {"Brown", "Green"},
                               {"Hall", "Hill"},
                               {"Hill", "Hull"},
                               {"Taylor", "Turner"},
                               {"Wood", "Ward"},
                               {"Allen", "Lane"},
                               {"Johnson", "Jackson"},
                               {"Harris", "Harrison"},
                               {"Williams", "Williamson"},
                               {"Ainsworth", "Unsworth"},
                               {"McGregor", "McGrath"}});
}

TEST(SurnameKey, KnowsNoShortForms) {
  EXPECT_NE(SurnameKey("Bill"), SurnameKey("William"));
}

TEST(FirstNameKey, TakesTheUsualSpellingsOfOneNameForOne) {
  ExpectSame(FirstNameKey, {{"Stephen", "Steven"},
                            {"Catherine", "Katherine"},
                            {"Kathryn", "Catherine"},
                            {"Geoffrey", "Jeffrey"},
                            {"Gillian", "Jillian"},
                            {"Philip", "Phillip"},
                            {"Anne", "Ann"},
                            {"Sheila", "Shiela"},
                            {"Jackie", "Jacky"},
                            {"Debbie", "Debby"},
                            {"Éloïse", "Eloise"},
                            {"Jamie-Leigh", "Jamieleigh"},
                            {"Jamie-Leigh", "Jamie Leigh"},
                            {"Aoife", "Eefa"},
                            {"Siân", "Sian"},
                            {"Muhammad", "Mohammed"}});
}

TEST(FirstNameKey, TakesShortFormsForTheFullNames) {
  ExpectSame(FirstNameKey, {{"Bill", "William"},
                            {"Will", "William"},
                            {"Bob", "Robert"},
                            {"Liz", "Elizabeth"},
                            {"Kate", "Catherine"},
                            {"Peggy", "Margaret"},
                            {"Mike", "Michael"},
                            {"Tony", "Anthony"},
                            {"Dick", "Richard"},
                            {"Nige", "Nigel"},
                            {"Hamish", "hamish"},
                            {"SUE", "Susan"}});
}

TEST(FirstNameKey, ForgivesASlipOfTheHand) {
  ExpectSame(FirstNameKey,
             {{"Margaret", "Nargaret"}, {"Karen", "Kaern"}, {"Christopher", "Chrstopher"}, {"Peggy", "Pegggy"}});
}

TEST(FirstNameKey, TellsCommonNamesApart) {
  ExpectDifferent(FirstNameKey, {{"John", "Jane"},
                                 {"John", "Jean"},
                                 {"John", "Joan"},
                                 {"Mary", "Martha"},
                                 {"Peter", "Patrick"},
                                 {"Alan", "Ellen"},
                                 {"Michael", "Malcolm"},
                                 {"Christopher", "Christine"},
                                 {"Francis", "Frances"},
                                 {"Alexander", "Alexandra"},
                                 {"Nicholas", "Nicola"},
                                 {"Margaret", "Mary"},
                                 {"Robert", "Rupert"},
                                 {"Joan", "Jane"}});
}

TEST(NameKeys, AreShortPlainCapitalsAndNeverEmptyForAName) {
  const std::string longName(10'000, 'K');
  for (const std::string& name : {std::string("Smith"),
                                  std::string("Жук"),
                                  std::string("'"),
                                  std::string("123"),
                                  std::string("H"),
                                  std::string("GH"),
                                  std::string("W"),
                                  std::string("E"),
                                  std::string("\xFF\xFE"),
                                  std::string("李明"),
                                  std::string("😀"),
                                  std::string("\u0301"),
                                  std::string("\0", 1),
                                  std::string("ßß"),
                                  std::string("Ann\xC3"),
                                  std::string("\t"),
                                  longName,
                                  longName + "abcdefghijklmnopqrstuvwxyz" + longName,
                                  std::string(10'000, 'a'),
                                  std::string("Жу́ков Smith"),
                                  std::string("محمد"),
                                  std::string("अमित"),
                                  std::string("김")}) {
    for (const std::string& key : {SurnameKey(name), FirstNameKey(name)}) {
      EXPECT_FALSE(key.empty()) << name.substr(0, 50);
      EXPECT_LE(key.size(), 50U);
      EXPECT_TRUE(std::all_of(key.begin(), key.end(), [](char character) {
        return (character >= 'A' && character <= 'Z') || (character >= '0' && character <= '9');
      })) << key;
    }
  }
}

TEST(NameKeys, OfOtherScriptsFitTheirColumnsHoweverTheNumbersOfTheirLettersFall) {
  // Letters whose numbers have three, four and five digits, so that each place of the limit is met.
  for (const std::string letter : {"ж", "李", "각", "𠀀"}) {
    for (const std::string beginning : {"", "ж", "жж", "жжж", "жжжж"}) {
      std::string name = beginning;
      for (int count = 1; count <= 60; ++count) {
        name += letter;
        EXPECT_LE(FirstNameKey(name).size(), 50U) << name;
        EXPECT_LE(SurnameKey(name).size(), 50U) << name;
      }
      EXPECT_EQ(FirstNameKey(name).size(), 50U) << name;
    }
  }
}

TEST(NameKeys, OfOtherScriptsThatFittedAreStillTheWholeNumbersOfTheirLetters) {
  EXPECT_EQ(FirstNameKey("жж"), "2416416");
  EXPECT_EQ(SurnameKey("李小龍"), "2674E5C0F9F8D");
}

TEST(NameKeys, OfAnInitialAreNoName) {
  EXPECT_NE(FirstNameKey("C"), FirstNameKey("K"));
  EXPECT_EQ(FirstNameKey("c."), FirstNameKey("C"));
  for (char letter = 'A'; letter <= 'Z'; ++letter) {
    for (const char* name : {"John", "Ann", "Ed", "Jo", "Al", "Oh", "Eve", "Ian", "Guy"}) {
      EXPECT_NE(FirstNameKey(std::string(1, letter)), FirstNameKey(name)) << letter;
      EXPECT_NE(SurnameKey(std::string(1, letter)), SurnameKey(name)) << letter;
    }
  }
}

TEST(NameKeys, AreEmptyForAnEmptyName) {
  EXPECT_EQ(SurnameKey(""), "");
  EXPECT_EQ(FirstNameKey("  "), "");
}

TEST(NameKeys, OfComposedAndDecomposedWritingsAreOne) {
  for (const auto& key : {SurnameKey, FirstNameKey}) {
    ExpectSame(key, {{"Éloïse", "E\u0301loi\u0308se"},
                     {"Nguyễn", "Nguye\u0302\u0303n"},
                     {"Nguyễn", "Nguye\u0303\u0302n"},
                     {"Ångström", "A\u030Angstro\u0308m"},
                     {"Йовков", "И\u0306овков"},
                     {"Μαρία", "Μαρι\u0301α"},
                     {"김철수", "\u1100\u1175\u11B7\u110E\u1165\u11AF\u1109\u116E"},
                     {"が", "か\u3099"}});
  }
}

TEST(NameKeys, OfOtherAlphabetsTellNamesApartAndIgnoreCase) {
  for (const auto& key : {SurnameKey, FirstNameKey}) {
    ExpectSame(key, {{"Жук", "жук"}, {"Σωκράτης", "ΣΩΚΡΑΤΗΣ"}});
    const std::set<std::string> keys{key("Жук"),  key("Жак"), key("李"), key("明"), key("😀"),   key("Σ"),
                                     key("محمد"), key("김"),  key("12"), key("21"), key("अमित")};
    EXPECT_EQ(keys.size(), 11U);
  }
}

TEST(NameKeys, OfMixedAlphabetsGoByTheOneWithMoreLetters) {
  EXPECT_EQ(SurnameKey("Smith Ж"), SurnameKey("Smith"));
  EXPECT_EQ(SurnameKey("Жуковский A"), SurnameKey("Жуковский"));
  EXPECT_EQ(FirstNameKey("Ann 😀"), FirstNameKey("Ann"));
  EXPECT_EQ(FirstNameKey("Ann2"), FirstNameKey("Ann"));
}

TEST(NameKeys, OfInvalidBytesAreThoseOfTheRest) {
  EXPECT_EQ(SurnameKey("Smi\xFFth"), SurnameKey("Smith"));
  EXPECT_EQ(SurnameKey("Smith\xC3"), SurnameKey("Smith"));
}

TEST(ShortForms, AreKnownInOneDirection) {
  EXPECT_TRUE(IsShortFormOf("Kate", "Katherine"));
  EXPECT_TRUE(IsShortFormOf("Bill", "William"));
  EXPECT_TRUE(IsShortFormOf("peggy", "MARGARET"));
  EXPECT_FALSE(IsShortFormOf("William", "Bill"));
  EXPECT_FALSE(IsShortFormOf("Bill", "Robert"));
  EXPECT_FALSE(IsShortFormOf("Stephen", "Stephenn"));
  EXPECT_FALSE(IsShortFormOf("", "William"));
  EXPECT_FALSE(IsShortFormOf("Bill", ""));
}

}  // namespace
}  // namespace tavi
