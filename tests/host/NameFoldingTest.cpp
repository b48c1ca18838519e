#include "host/scoring/MemberDirectory.h"

#include <gtest/gtest.h>

namespace tavi::host {
namespace {

TEST(NameFolding, WritingsOfOneNameFoldAlike) {
  EXPECT_EQ(FoldName("Renée Fontaine-Brook"), FoldName("RENEE FONTAINE BROOK"));
  EXPECT_EQ(FoldName("Hamish MacAllister"), FoldName("hamish Mcallister"));
  EXPECT_EQ(FoldName("Eileen O'Brien"), FoldName("Eileen O’Brien"));
  EXPECT_EQ(FoldName("Rohan D Souza"), FoldName("Rohan D'Souza"));
  EXPECT_EQ(FoldName("Łukasz Wójcik"), "LUKASZWOJCIK");
  EXPECT_NE(FoldName("John Hall"), FoldName("John Hill"));
}

TEST(NameFolding, CleansWhatDoesNotBelongToAName) {
  EXPECT_EQ(CleanWrittenName(" Dr  Fiona MacLeod (sub) "), "Fiona MacLeod");
  EXPECT_EQ(CleanWrittenName("Peter Hall 2"), "Peter Hall");
  EXPECT_EQ(CleanWrittenName("A. Featherstonehaugh"), "A Featherstonehaugh");
  EXPECT_EQ(CleanWrittenName("MacLeod, Fiona"), "Fiona MacLeod");
  EXPECT_EQ(CleanWrittenName("Rev Green"), "Rev Green");
}

TEST(NameFolding, AQuestionMarkStandsForALetterThatHadNoPlace) {
  EXPECT_TRUE(FoldedEqual(FoldName("?ukasz W?jcik"), FoldName("Łukasz Wójcik")));
  EXPECT_FALSE(FoldedEqual(FoldName("?ukas"), FoldName("Łukasz")));
}

TEST(NameFolding, OneSlipIsALetterLostAddedChangedOrTwoExchanged) {
  EXPECT_TRUE(WithinOneSlip("DUVAL", "DUAVL"));
  EXPECT_TRUE(WithinOneSlip("DUVAL", "DUVAAL"));
  EXPECT_TRUE(WithinOneSlip("DUVAL", "DUVL"));
  EXPECT_TRUE(WithinOneSlip("DUVAL", "DUVEL"));
  EXPECT_TRUE(WithinOneSlip("DUVAL", "DUVAL"));
  EXPECT_FALSE(WithinOneSlip("DUVAL", "DEVEL"));
  EXPECT_FALSE(WithinOneSlip("DUVAL", "DUV"));
}

}  // namespace
}  // namespace tavi::host
