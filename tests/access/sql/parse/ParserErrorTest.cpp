#include <gtest/gtest.h>

#include "access/sql/support/Parsing.h"
#include "platform/values/Error.h"

/// A table of texts that are no statements and what the parser says of them.
namespace tavi::access::sql {
namespace {

struct ErrorCase {
  std::string_view text;
  std::string_view message;
};

template <typename ParseText>
std::string MessageOf(std::string_view text, ParseText parse) {
  try {
    parse(text);
  } catch (const Error& error) {
    EXPECT_TRUE(error.Is(ErrorNumber::ProviderSyntax)) << text;
    EXPECT_EQ(error.Source(), "Microsoft JET Database Engine");
    return error.Description();
  }
  return "no error";
}

std::string MessageOf(std::string_view text) {
  return MessageOf(text, [](std::string_view statement) { Parse(statement); });
}

TEST(ParserErrors, SayWhatWasFoundExpectedAndWhere) {
  const ErrorCase cases[] = {
      {"",
       "Invalid SQL statement: it begins with none of SELECT, INSERT, UPDATE, DELETE, CREATE, ALTER, DROP, "
       "BEGIN, COMMIT and ROLLBACK (character 1 of \"\")."},
      {"Selct a From T",
       "Invalid SQL statement: it begins with none of SELECT, INSERT, UPDATE, DELETE, CREATE, ALTER, DROP, "
       "BEGIN, COMMIT and ROLLBACK (character 1 of \"Selct a From T\")."},
      {"Select a b From T",
       "Syntax error (missing operator) in query expression 'a b' of the SELECT statement: 'b' was found where an "
       "operator or "
       "the end of the statement was expected (character 10 of \"Select a b From T\")."},
      {"Select a From T Where b = 'O'Neil'",
       "Syntax error in string: the text that begins here lacks its closing quote (character 34 of \"...From T Where b "
       "= "
       "'O'Neil'\")."},
      {"Select a From T Where b = 1 c",
       "Syntax error (missing operator) in query expression 'b = 1 c' of the WHERE clause: 'c' was found where an "
       "operator or "
       "the end of the statement was expected (character 29 of \"...ct a From T Where b = 1 c\")."},
      {"Select From T",
       "Syntax error in SELECT statement: 'From' was found where a value, a column name or a function was expected "
       "(character "
       "8 of \"Select From T\")."},
      {"Select a, From T",
       "Syntax error in SELECT statement: 'From' was found where a value, a column name or a function was expected "
       "(character "
       "11 of \"Select a, From T\")."},
      {"Select a From",
       "Syntax error in FROM clause: the statement ends here where a table name was expected (character 14 of "
       "\"Select a From\")."},
      {"Select a From Where b",
       "Syntax error in FROM clause: 'Where' was found where a table name was expected (character 15 of \"Select a "
       "From Where "
       "b\")."},
      {"Select a From T Where",
       "Syntax error in WHERE clause: the statement ends here where a value, a column name or a function was expected "
       "(character 22 of \"Select a From T Where\")."},
      {"Select a From T Order a",
       "Syntax error in ORDER BY clause: 'a' was found where BY was expected (character 23 of \"Select a From T Order "
       "a\")."},
      {"Select a From (T",
       "Syntax error in FROM clause: the statement ends here where ')' was expected (character 17 of \"Select a From "
       "(T\")."},
      {"Select a From T Inner Join U",
       "Syntax error in FROM clause: the statement ends here where ON was expected (character 29 of \"...ct a From T "
       "Inner Join "
       "U\")."},
      {"Select a From T; Select b From U",
       "Syntax error in FROM clause: 'Select' was found where the end of the statement was expected (character 18 of "
       "\"Select a "
       "From T; Select b From U\")."},
      {"Select Top 1.5 a From T",
       "Syntax error in SELECT statement: '1.5' was found where the number of rows (0 to 2147483647) was expected "
       "(character "
       "12 of \"Select Top 1.5 a From T\")."},
      {"Insert Into T (a, b) Values (1)",
       "Number of query values and destination fields are not the same: 1 values, 2 fields (character 29 of \"...rt "
       "Into T (a, "
       "b) Values (1)\")."},
      {"Insert T Values (1)",
       "Syntax error in INSERT INTO statement: 'T' was found where INTO was expected (character 8 of \"Insert T Values "
       "(1)\")."},
      {"Insert Into T (a) Set b = 1",
       "Syntax error in INSERT INTO statement: 'Set' was found where VALUES or SELECT was expected (character 19 of "
       "\"Insert "
       "Into T (a) Set b = 1\")."},
      {"Update T a = 1",
       "Syntax error in UPDATE statement: '=' was found where SET was expected (character 12 of \"Update T a = 1\")."},
      {"Delete T.a From T",
       "Syntax error in DELETE statement: 'a' was found where '*' was expected (character 10 of \"Delete T.a From "
       "T\")."},
      {"Create Table T (a Lung)",
       "Syntax error in column definition: 'Lung' was found where a data type (such as TEXT, LONG, DOUBLE or DATE) was "
       "expected (character 19 of \"Create Table T (a Lung)\")."},
      {"Create Table T (a Text (256))",
       "Syntax error in column definition: '256' was found where the column's length (1 to 255) was expected "
       "(character 25 of "
       "\"Create Table T (a Text (256))\")."},
      {"Create Table T (a Text (0))",
       "Syntax error in column definition: '0' was found where the column's length (1 to 255) was expected (character "
       "25 of \"Create Table T (a Text "
       "(0))\")."},
      {"Create Table T ()",
       "Syntax error in column definition: ')' was found where a column name was expected (character 17 of \"Create "
       "Table T "
       "()\")."},
      {"Create Table T (Primary Key (a))",
       "Syntax error in CREATE TABLE statement: it has no columns (character 32 of \"...Table T (Primary Key (a))\")."},
      {"Create Table T (a Counter (5, 1))",
       "Syntax error in column definition: '5' was found where the first automatic number (1) was expected (character "
       "28 of \"...ate Table T (a Counter (5, 1))\")."},
      {"Create Table T (a Long References U (b, c))",
       "A relationship needs as many columns in one table as in the other (character 24 of \"Create Table T (a Long "
       "References U (b, c))\")."},
      {"Create View V As Select a From T",
       "Syntax error in CREATE statement: 'View' was found where TABLE or INDEX was expected (character 8 of \"Create "
       "View V As "
       "Select a From ...\")."},
      {"Alter Table T Alter Column a Text (5) Unique",
       "Keys and references are added by ADD CONSTRAINT (character 45 of \"...Column a Text (5) Unique\")."},
      {"Drop T",
       "Syntax error in DROP statement: 'T' was found where TABLE or INDEX was expected (character 6 of \"Drop T\")."},
      {"Select * From A Full Outer Join B On x = y",
       "Access has no full outer joins: unite a left join and a right join with UNION (character 17 of \"Select * From "
       "A Full "
       "Outer Join B On x =...\")."},
      {"Select * From T In 'other.mdb'",
       "Tables of other files cannot be named in a statement (character 17 of \"Select * From T In 'other.mdb'\")."},
  };
  for (const ErrorCase& one : cases) EXPECT_EQ(MessageOf(one.text), one.message) << one.text;
}

TEST(ParserErrors, PlacesAreCountedInCharactersNotBytes) {
  EXPECT_EQ(MessageOf("Select Éé From T Where )"),
            "Syntax error in WHERE clause: ')' was found where a value, a column name or a function was expected "
            "(character 24 "
            "of \"Select Éé From T Where )\").");
}

TEST(ParserErrors, FunctionsAreCheckedWithTheStatement) {
  const ErrorCase cases[] = {
      {"Select Foo(1)", "Undefined function 'Foo' in expression (character 8 of \"Select Foo(1)\")."},
      {"Select Len()",
       "Wrong number of arguments used with function 'Len' in expression (character 8 of \"Select Len()\")."},
      {"Select Len('a', 2)",
       "Wrong number of arguments used with function 'Len' in expression (character 8 of \"Select Len('a', 2)\")."},
      {"Select Sum(a, b) From T",
       "Wrong number of arguments used with function 'Sum' in expression (character 8 of \"Select Sum(a, b) From "
       "T\")."},
      {"Select Sum(*) From T",
       "Wrong number of arguments used with function 'Sum' in expression (character 8 of \"Select Sum(*) From T\")."},
      {"Select Len(*) From T",
       "Wrong number of arguments used with function 'Len' in expression (character 8 of \"Select Len(*) From T\")."},
      {"Select Len(Distinct a) From T",
       "DISTINCT has no meaning in 'Len' (character 8 of \"Select Len(Distinct a) From T\")."},
  };
  for (const ErrorCase& one : cases) EXPECT_EQ(MessageOf(one.text), one.message) << one.text;
}

TEST(ParserErrors, ExpressionsToo) {
  const auto messageOf = [](std::string_view text) {
    return MessageOf(text, [](std::string_view expression) { ParseExpression(expression); });
  };
  EXPECT_EQ(
      messageOf(""),
      "Syntax error in expression: the statement ends here where a value, a column name or a function was expected "
      "(character 1 of \"\").");
  EXPECT_EQ(
      messageOf("1 2"),
      "Syntax error (missing operator) in query expression '1 2' of the expression: '2' was found where an operator or "
      "the end of the expression was expected (character 3 of \"1 2\").");
  EXPECT_EQ(messageOf("a Is 5"),
            "Syntax error in expression: '5' was found where NULL was expected (character 6 of \"a Is 5\").");
  EXPECT_EQ(
      messageOf("a Between 1"),
      "Syntax error in expression: the statement ends here where AND was expected (character 12 of \"a Between 1\").");
  EXPECT_EQ(messageOf("a In ()"),
            "Syntax error in expression: ')' was found where a value, a column name or a function was expected "
            "(character 7 of "
            "\"a In ()\").");
}

}  // namespace
}  // namespace tavi::access::sql
