#include <gtest/gtest.h>
#include <random>

#include "access/sql/parse/Lexer.h"
#include "access/sql/support/Parsing.h"
#include "platform/values/Error.h"

/// Hostile and broken texts end in an error, never in a crash.
namespace tavi::access::sql {
namespace {

/// Parses, and demands an answer or a syntax error with a description. True when it was a statement.
bool Survives(std::string_view text) {
  try {
    Parse(text);
    return true;
  } catch (const Error& error) {
    EXPECT_TRUE(error.Is(ErrorNumber::ProviderSyntax)) << text;
    EXPECT_FALSE(error.Description().empty());
    return false;
  }
}

std::string Repeated(std::string_view text, std::size_t count) {
  std::string result;
  for (std::size_t i = 0; i < count; ++i) result += text;
  return result;
}

constexpr std::string_view kStatements[] = {
    "Select Distinct Top 5 T.*, a + 1 As b, Count(*) From (T Inner Join U On T.x = U.x) Left Join [V W] v On x = y, Z "
    "Where a "
    "Between 1 And 2 And Not b In (1, 'x''y', #5/3/2001#) Or c Like 'x*' And d Is Not Null Group By a, b Having Sum(c) "
    "> 1.5 "
    "Union All Select 1, 2, 3 From T Where Exists (Select * From U Where a = All (Select b From V)) Order By a Desc, b",
    "Insert Into T (a, b, [c d]) Values (-1, 'O''Neil', IIf(Left(a, 2) = \"x\", &HFF, .5))",
    "Update A Inner Join B On A.x = B.x Set A.y = B.y + 1, z = Null Where A.w <> 0",
    "Delete T.* From T, U Where T.a = U.b",
    "Create Table T (a Counter Primary Key, b Text (50) Not Null Default 'x', Constraint K Unique (a, b Desc))",
    "Create Unique Index I On T (a, b Desc) With Ignore Null",
    "Alter Table T Add Column a Decimal (10, 2) Default 0",
};

TEST(ParserRobustness, EveryStartOfAStatementGivesAnAnswer) {
  for (const std::string_view statement : kStatements) {
    ASSERT_TRUE(Survives(statement)) << statement;
    for (std::size_t length = 0; length < statement.size(); ++length) Survives(statement.substr(0, length));
  }
}

TEST(ParserRobustness, MissingDoubledAndSwappedTokensGiveAnAnswer) {
  for (const std::string_view statement : kStatements) {
    const std::vector<Token> tokens = Tokenize(statement);
    for (std::size_t hurt = 0; hurt + 1 < tokens.size(); ++hurt) {
      std::string without;
      std::string doubled;
      std::string swapped;
      for (std::size_t i = 0; i + 1 < tokens.size(); ++i) {
        const std::string piece = std::string(statement.substr(tokens[i].position, tokens[i].length)) + " ";
        if (i != hurt) without += piece;
        doubled += i == hurt ? piece + piece : piece;
        swapped = i == hurt ? piece + swapped : swapped + piece;
      }
      Survives(without);
      Survives(doubled);
      Survives(swapped);
    }
  }
}

TEST(ParserRobustness, RandomTokensGiveAnAnswer) {
  constexpr std::string_view kPieces[] = {
      "Select", "From",   "Where",  "Group",   "By",     "Having", "Order", "Union",  "All", "Insert",
      "Into",   "Values", "Update", "Set",     "Delete", "Create", "Table", "Index",  "On",  "Alter",
      "Add",    "Drop",   "Column", "Primary", "Key",    "Inner",  "Left",  "Join",   "As",  "And",
      "Or",     "Not",    "In",     "Between", "Is",     "Null",   "Like",  "Exists", "Top", "Distinct",
      "(",      ")",      ",",      ".",       "*",      "+",      "-",     "/",      "=",   "<>",
      "&",      "^",      ";",      "a",       "T",      "[b c]",  "1",     "2.5",    "'x'", "#1/2/2003#",
      "Len",    "Count",  "Text",   "Long",    "Desc",   "Mod",    "!",     "&HFF",   "Yes"};
  constexpr std::uint32_t kSeed = 20240229;
  std::mt19937 random(kSeed);
  int understood = 0;
  for (int turn = 0; turn < 6000; ++turn) {
    std::string statement(turn % 2 == 0 ? "Select " : "");
    const std::size_t count = random() % 25;
    for (std::size_t i = 0; i < count; ++i) statement += std::string(kPieces[random() % std::size(kPieces)]) + " ";
    understood += Survives(statement) ? 1 : 0;
  }
  EXPECT_GT(understood, 3);
}

TEST(ParserRobustness, RandomBytesGiveAnAnswer) {
  constexpr std::uint32_t kSeed = 42;
  std::mt19937 random(kSeed);
  for (int turn = 0; turn < 2000; ++turn) {
    std::string statement(kStatements[random() % std::size(kStatements)]);
    for (int hurt = 0; hurt < 3; ++hurt) statement[random() % statement.size()] = static_cast<char>(random() % 256);
    Survives(statement);
  }
}

TEST(ParserRobustness, DeepNestingIsAnError) {
  constexpr std::size_t kMany = 5000;
  const std::string deep[] = {
      "Select " + Repeated("(", kMany) + "1" + Repeated(")", kMany),
      "Select " + Repeated("(", kMany),
      "Select " + Repeated("Not ", kMany) + "a",
      "Select " + Repeated("- ", kMany) + "a",
      "Select " + Repeated("a ^ (", kMany) + "1" + Repeated(")", kMany),
      "Select " + Repeated("Len(", kMany) + "1" + Repeated(")", kMany),
      "Select 1" + Repeated("+1", kMany),
      "Select a" + Repeated(" = a", kMany),
      "Select a" + Repeated(" Is Null", kMany),
      "Select " + Repeated("(Select ", kMany) + "1" + Repeated(")", kMany),
      "Select * From " + Repeated("(", kMany) + "T" + Repeated(")", kMany),
      "Select * From " + Repeated("(Select * From ", kMany / 2) + "T" + Repeated(")", kMany / 2),
      "Select * From T" + Repeated(", T", kMany),
      "Select * From T" + Repeated(" Inner Join T On a", kMany / 3),
      "Select 1" + Repeated(" Union Select 1", kMany / 2),
      "Select " + Repeated("(Select ", 150) + "1" + Repeated(Repeated("+1", 150) + ")", 150),
      "Select a Where " + Repeated("a In (Select a Where ", 2000) + "1",
  };
  for (const std::string& statement : deep) {
    try {
      Parse(statement);
      ADD_FAILURE() << "no error: " << statement.substr(0, 60);
    } catch (const Error& error) {
      EXPECT_NE(error.Description().find("nested more than 200 levels deep"), std::string::npos) << error.Description();
    }
  }
}

TEST(ParserRobustness, LongFlatStatementsAreFine) {
  EXPECT_TRUE(Survives("Select 1 Where a = 0" + Repeated(" Or a = 1", 5000)));
  EXPECT_TRUE(Survives("Select 1 Where a = 0" + Repeated(" And (a = 1 Or b = 2)", 2000)));
  EXPECT_TRUE(Survives("Select 1 Where a In (0" + Repeated(", 1", 15000) + ")"));
  EXPECT_TRUE(Survives("Select 0" + Repeated(", 1", 15000)));
  EXPECT_TRUE(Survives("Select 1" + Repeated("+1", 150)));
  EXPECT_TRUE(Survives("Select " + Repeated("(", 150) + "1" + Repeated(")", 150)));
}

TEST(ParserRobustness, TreesOfLongChainsAreShallow) {
  const Statement statement = Parse("Select 1 Where a = 0" + Repeated(" Or a = 1", 5000));
  EXPECT_LE(std::get<Select>(statement).where->depth, 16);
}

}  // namespace
}  // namespace tavi::access::sql
