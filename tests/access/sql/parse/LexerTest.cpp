#include <gtest/gtest.h>

#include "access/sql/parse/Lexer.h"
#include "access/sql/support/Parsing.h"
#include "platform/values/Error.h"

namespace tavi::access::sql {
namespace {

std::string KindsOf(std::string_view statement) {
  std::string text;
  for (const Token& token : Tokenize(statement)) {
    if (token.kind == TokenKind::End) break;
    if (!text.empty()) text += " ";
    switch (token.kind) {
      case TokenKind::Name:
        text += "name:" + token.text;
        break;
      case TokenKind::QuotedName:
        text += "quoted:" + token.text;
        break;
      case TokenKind::Literal:
        text += ValueText(token.value);
        break;
      default:
        text += token.text;
    }
  }
  return text;
}

TEST(Lexer, TokensNeedNoBlanksBetweenThem) {
  EXPECT_EQ(KindsOf("'John'Order By FirstName"), "'John' name:Order name:By name:FirstName");
  EXPECT_EQ(KindsOf("a<=b<>c>=d"), "name:a <= name:b <> name:c >= name:d");
  EXPECT_EQ(KindsOf("0Order"), "0L name:Order");
}

TEST(Lexer, TextsDoubleTheirQuotes) {
  EXPECT_EQ(KindsOf("'O''Neil'"), "'O'Neil'");
  EXPECT_EQ(KindsOf(R"("say ""hello""")"), R"('say "hello"')");
  EXPECT_EQ(KindsOf("''"), "''");
  EXPECT_EQ(KindsOf("\"it's\""), "'it's'");
}

TEST(Lexer, NamesMayBeQuotedAndHoldAnyLetters) {
  EXPECT_EQ(KindsOf("[Two words] `Order` Łukasz Müller_2 Left$"),
            "quoted:Two words quoted:Order name:Łukasz name:Müller_2 name:Left$");
}

TEST(Lexer, WholeNumbersAreLongAndOthersDouble) {
  EXPECT_EQ(KindsOf("12 2147483647 2147483648 12.5 .5 5. 1e3 1.5E-3"),
            "12L 2147483647L 2147483648 12.5 0.5 5 1000 0.0015");
  EXPECT_EQ(KindsOf("1e 2e+"), "1L name:e 2L name:e +");
}

TEST(Lexer, RadixNumbersStandOnlyWhereAnOperandMay) {
  EXPECT_EQ(KindsOf("&HFF &o17 (&hFFFFFFFF)"), "255L & name:o17 ( -1L )");
  EXPECT_EQ(KindsOf("a &HFF"), "name:a & name:HFF");
}

TEST(Lexer, DatesAreReadMonthFirst) {
  EXPECT_EQ(KindsOf("#5/3/2001#"), "#2001-05-03#");
  EXPECT_EQ(KindsOf("#2001-05-03 14:30:00#"), "#2001-05-03T14:30:00#");
}

TEST(Lexer, PositionsAreByteOffsets) {
  const std::vector<Token> tokens = Tokenize("É = 'x'");
  ASSERT_EQ(tokens.size(), 4U);
  EXPECT_EQ(tokens[1].position, 3U);
  EXPECT_EQ(tokens[2].position, 5U);
  EXPECT_EQ(tokens[2].length, 3U);
}

TEST(Lexer, WhatHasNoMeaningIsAnErrorThatShowsThePlace) {
  const auto messageOf = [](std::string_view statement) -> std::string {
    try {
      Tokenize(statement);
    } catch (const Error& error) {
      EXPECT_TRUE(error.Is(ErrorNumber::ProviderSyntax));
      return error.Description();
    }
    return {};
  };
  EXPECT_EQ(
      messageOf("Select 'abc"),
      "Syntax error in string: the text that begins here lacks its closing quote (character 8 of \"Select 'abc\").");
  EXPECT_EQ(messageOf("Select [abc"),
            "Syntax error: the name that begins here lacks its closing ] (character 8 of \"Select [abc\").");
  EXPECT_EQ(messageOf("É []"), "Syntax error: the brackets hold no name (character 3 of \"É []\").");
  EXPECT_EQ(messageOf("#5/3/2001"),
            "Syntax error in date: the date that begins here lacks its closing # (character 1 of \"#5/3/2001\").");
  EXPECT_EQ(
      messageOf("a = #31/31/2001#"),
      "Syntax error in date: write #month/day/year#, #year-month-day# or #hours:minutes:seconds# (character 5 of \"a = "
      "#31/31/2001#\").");
  EXPECT_EQ(messageOf("1e999"),
            "Syntax error in number: it is out of the range of numbers (character 1 of \"1e999\").");
  EXPECT_EQ(messageOf("&H123456789"),
            "Syntax error in number: it has more than 32 bits (character 1 of \"&H123456789\").");
  EXPECT_EQ(messageOf("a != b"),
            "Syntax error: '!=' is no operator, unequal is written '<>' (character 3 of \"a != b\").");
  EXPECT_EQ(messageOf("a = ?"), "Syntax error: the character '?' has no meaning here (character 5 of \"a = ?\").");
  EXPECT_EQ(messageOf(std::string_view("a\0b", 3)),
            "Syntax error: a control character has no meaning here (character 2 of \"a b\").");
}

TEST(Lexer, AStatementHasAtMost64000Characters) {
  const std::string longest(kMaximumStatementLength, ' ');
  EXPECT_EQ(Tokenize(longest).size(), 1U);
  EXPECT_THROW(Tokenize(longest + " "), Error);
  std::string accented = "'";
  for (std::size_t i = 2; i < kMaximumStatementLength; ++i) accented += "é";
  EXPECT_EQ(Tokenize(accented + "'").size(), 2U);
}

}  // namespace
}  // namespace tavi::access::sql
