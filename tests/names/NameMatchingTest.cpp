#include "names/NameMatching.h"

#include <gtest/gtest.h>

namespace tavi {
namespace {

TEST(CompareNamePart, TheFirstRuleThatHoldsGivesTheScore) {
  EXPECT_EQ(CompareNamePart("Smith", "K1", "SMITH", "K2"), 4);
  EXPECT_EQ(CompareNamePart("Éloïse", "K1", "éLOÏSE", "K2"), 4);
  EXPECT_EQ(CompareNamePart("Smith", "K", "Smyth", "K"), 3);
  EXPECT_EQ(CompareNamePart("Smith", "K", "Smyth", "k"), 0) << "keys are compared exactly";
  EXPECT_EQ(CompareNamePart("John", "K1", "j", "K2"), 2);
  EXPECT_EQ(CompareNamePart("É", "K1", "éloïse", "K2"), 2) << "one letter, though two bytes";
  EXPECT_EQ(CompareNamePart("Jo", "K1", "John", "K2"), 0) << "two letters are no initial";
  EXPECT_EQ(CompareNamePart("John", "K1", "K", "K2"), 0);
  EXPECT_EQ(CompareNamePart("", "K1", "John", "K2"), 1);
  EXPECT_EQ(CompareNamePart("John", "K1", "", "K2"), 1);
  EXPECT_EQ(CompareNamePart("", "", "", ""), 4);
}

TEST(CompareInitials, TheFirstRuleThatHoldsGivesTheScore) {
  EXPECT_EQ(CompareInitials("AB", "ab"), 4);
  EXPECT_EQ(CompareInitials("", ""), 4);
  EXPECT_EQ(CompareInitials("", "AB"), 1);
  EXPECT_EQ(CompareInitials("AB", ""), 2) << "not symmetric";
  EXPECT_EQ(CompareInitials("AB", "CD"), 0);
  EXPECT_EQ(CompareInitials("J", "JA"), 2);
  EXPECT_EQ(CompareInitials("JA", "j"), 2);
  EXPECT_EQ(CompareInitials("AJ", "JAB"), 0) << "not in this order";
  EXPECT_EQ(CompareInitials("AC", "ABC"), 2);
  EXPECT_EQ(CompareInitials("AA", "ABC"), 0) << "each letter is used once";
  EXPECT_EQ(CompareInitials("é", "AÉ"), 2);
}

TEST(CombineMatchScores, TheSurnameWeighsMost) {
  EXPECT_EQ(CombineMatchScores(4, 4, 4), 444);
  EXPECT_EQ(CombineMatchScores(2, 1, 1), 121);
  EXPECT_EQ(CombineMatchScores(1, 2, 3), 312);
}

}  // namespace
}  // namespace tavi
