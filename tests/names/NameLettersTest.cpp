#include "names/NameLetters.h"

#include <gtest/gtest.h>

namespace tavi {
namespace {

TEST(NameLetters, AreThePlainCapitalsOfAName) {
  EXPECT_EQ(PlainLetters("Müller-Lüdenscheidt"), "MULLERLUDENSCHEIDT");
  EXPECT_EQ(PlainLetters("O'Neil"), "ONEIL");
  EXPECT_EQ(PlainLetters("Łukasz Æsop Straße Đorđe ﬁ Ｗ"), "LUKASZAESOPSTRASSEDORDEFIW");
  EXPECT_EQ(PlainLetters("e\u0301"), "E");
  EXPECT_EQ(PlainLetters("ế"), "E");
  EXPECT_EQ(PlainLetters("Жук 2"), "");
}

TEST(NameLetters, CountTheLettersOfOtherAlphabetsButNotDigitsAndEmoji) {
  const NameLetters letters = LettersOf("Жу́к 2 😀 X");
  EXPECT_EQ(letters.latin, "X");
  EXPECT_EQ(letters.others, U"ЖУК2😀");
  EXPECT_EQ(letters.otherLetters, 3U);
}

TEST(SurnamePrefix, WritesMacMcAndMInOneWay) {
  for (const char* name : {"MACDONALD", "MCDONALD", "MDONALD"}) EXPECT_EQ(WithPlainPrefix(name), "MCDONALD");
  for (const char* name : {"MACRAE", "MCRAE", "MCCRAE", "MACCRAE"}) EXPECT_EQ(WithPlainPrefix(name), "MCRAE");
  EXPECT_EQ(WithPlainPrefix("MACKAY"), WithPlainPrefix("MCKAY"));
}

TEST(SurnamePrefix, LeavesNamesThatOnlyBeginAlike) {
  for (const char* name : {"MACE", "MACEY", "MACK", "MARTIN", "MBEKI", "SAINT", "SAINTS", "", "M", "MC"}) {
    EXPECT_EQ(WithPlainPrefix(name), name);
  }
}

TEST(SurnamePrefix, WritesSaintAsSt) {
  EXPECT_EQ(WithPlainPrefix("SAINTJOHN"), "STJOHN");
  EXPECT_EQ(WithPlainPrefix("STJOHN"), "STJOHN");
}

}  // namespace
}  // namespace tavi
